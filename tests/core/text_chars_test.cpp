// Cleaning text the system produces itself: which characters go, which
// stay, and how broken UTF-8 is mended.
#include <gtest/gtest.h>

#include "core/text_chars.h"

namespace modelyne::core {
namespace {

TEST(CleanText, DropsControlsKeepsTextAndMendsBytes) {
  // Nothing to clean: the same bytes, multi-byte characters included.
  EXPECT_EQ(cleanText("Brake \xE2\x86\x92 wheel\n\tok \xF0\x9F\x9A\x97"), "Brake \xE2\x86\x92 wheel\n\tok \xF0\x9F\x9A\x97");
  // C0 controls other than line feed and tab, DEL and C1 controls go.
  EXPECT_EQ(cleanText(std::string("a\x07" "b\x1B[31mc\x7F" "d\xC2\x85" "e\0f", 16)), "ab[31mcdef");
  // Carriage returns: dropped before a line feed, a lone one becomes one.
  EXPECT_EQ(cleanText("one\r\ntwo\rthree\r"), "one\ntwo\nthree\n");
  // Each byte that is not UTF-8 becomes one U+FFFD: a stray continuation,
  // a truncated sequence, an overlong form, a surrogate, past U+10FFFF.
  EXPECT_EQ(cleanText("x\x80y"), "x\xEF\xBF\xBDy");
  EXPECT_EQ(cleanText("x\xE2\x86"), "x\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(cleanText("\xC0\xAF"), "\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(cleanText("\xED\xA0\x80"), "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(cleanText("\xF4\x90\x80\x80"), "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");
  // XML's two non-characters go; U+FFFD itself stays.
  EXPECT_EQ(cleanText("a\xEF\xBF\xBE" "b\xEF\xBF\xBF" "c\xEF\xBF\xBD"), "abc\xEF\xBF\xBD");
  EXPECT_EQ(cleanText(""), "");
}

}  // namespace
}  // namespace modelyne::core
