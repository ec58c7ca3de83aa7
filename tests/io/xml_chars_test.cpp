// Which texts XML 1.0 can carry: the first fault, its kind, value and
// offset, and how it is described.
#include <gtest/gtest.h>

#include <string>

#include "io/xml_chars.h"

namespace modelyne::io {
namespace {

using Kind = XmlTextFault::Kind;

// Text, whether it is clean, and otherwise the first fault.
struct Case {
  std::string text;
  bool clean;
  Kind kind;
  std::uint32_t value;
  std::size_t offset;
};

TEST(XmlChars, FirstFaultOfEachKind) {
  const Case cases[] = {
      {"", true, {}, 0, 0},
      {"plain ASCII & <markup>", true, {}, 0, 0},
      {"tab\there\nline\rcarriage", true, {}, 0, 0},
      {"Gr\xC3\xB6\xC3\x9F" "e \xE5\x88\xB6\xE5\xBE\xA1 \xF0\x9F\x98\x80", true, {}, 0, 0},  // 2-, 3- and 4-byte characters
      {"\xEF\xBF\xBD", true, {}, 0, 0},                       // U+FFFD, the last one allowed below U+10000
      {"bell\x07", false, Kind::character, 0x07, 4},
      {std::string("nul\0x", 5), false, Kind::character, 0x00, 3},
      {"\x0B\x0C", false, Kind::character, 0x0B, 0},
      {"esc\x1B[2J", false, Kind::character, 0x1B, 3},
      {"\x7F", true, {}, 0, 0},                               // DEL: discouraged, not excluded
      {"x\xEF\xBF\xBE", false, Kind::character, 0xFFFE, 1},
      {"x\xEF\xBF\xBF", false, Kind::character, 0xFFFF, 1},
      {"ab\xFF", false, Kind::byte, 0xFF, 2},
      {"\x80", false, Kind::byte, 0x80, 0},                   // a continuation byte alone
      {"\xC3", false, Kind::byte, 0xC3, 0},                   // cut short at the end
      {"\xC3(", false, Kind::byte, 0xC3, 0},                  // cut short by another character
      {"\xC0\xAF", false, Kind::byte, 0xC0, 0},               // overlong '/'
      {"\xED\xA0\x80", false, Kind::byte, 0xED, 0},           // a surrogate
      {"\xF4\x90\x80\x80", false, Kind::byte, 0xF4, 0},       // past U+10FFFF
      {"\xF8\x88\x80\x80\x80", false, Kind::byte, 0xF8, 0},   // five-byte form
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    const auto fault = firstXmlTextFault(c.text);
    ASSERT_EQ(fault.has_value(), !c.clean);
    if (!fault) continue;
    EXPECT_EQ(fault->kind, c.kind);
    EXPECT_EQ(fault->value, c.value);
    EXPECT_EQ(fault->offset, c.offset);
  }
}

TEST(XmlChars, Descriptions) {
  EXPECT_EQ(describeXmlTextFault({Kind::character, 0x07, 0}), "U+0007, which XML 1.0 does not allow");
  EXPECT_EQ(describeXmlTextFault({Kind::character, 0xFFFE, 0}), "U+FFFE, which XML 1.0 does not allow");
  EXPECT_EQ(describeXmlTextFault({Kind::byte, 0xFF, 0}), "the byte 0xFF, which is not UTF-8");
}

}  // namespace
}  // namespace modelyne::io
