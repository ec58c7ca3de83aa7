#include "io/xml_chars.h"

#include <cstdio>

namespace modelyne::io {

namespace {

/// XML 1.0's Char production.
bool xmlAllows(std::uint32_t c) {
  return c == 0x9 || c == 0xA || c == 0xD || (c >= 0x20 && c <= 0xD7FF) || (c >= 0xE000 && c <= 0xFFFD) ||
         (c >= 0x10000 && c <= 0x10FFFF);
}

bool continuation(unsigned char b) { return (b & 0xC0) == 0x80; }

}  // namespace

std::optional<XmlTextFault> firstXmlTextFault(std::string_view text) {
  std::size_t i = 0;
  while (i < text.size()) {
    const auto b = static_cast<unsigned char>(text[i]);
    if (b < 0x80) {
      if (!xmlAllows(b)) return XmlTextFault{XmlTextFault::Kind::character, b, i};
      ++i;
      continue;
    }
    // Length and lowest value of the sequence a lead byte starts; anything
    // shorter, overlong, a surrogate or past U+10FFFF is not UTF-8.
    std::size_t length = 0;
    std::uint32_t c = 0;
    std::uint32_t lowest = 0;
    if ((b & 0xE0) == 0xC0) { length = 2; c = b & 0x1Fu; lowest = 0x80; }
    else if ((b & 0xF0) == 0xE0) { length = 3; c = b & 0x0Fu; lowest = 0x800; }
    else if ((b & 0xF8) == 0xF0) { length = 4; c = b & 0x07u; lowest = 0x10000; }
    else return XmlTextFault{XmlTextFault::Kind::byte, b, i};
    if (i + length > text.size()) return XmlTextFault{XmlTextFault::Kind::byte, b, i};
    for (std::size_t k = 1; k < length; ++k) {
      const auto next = static_cast<unsigned char>(text[i + k]);
      if (!continuation(next)) return XmlTextFault{XmlTextFault::Kind::byte, b, i};
      c = (c << 6) | (next & 0x3Fu);
    }
    if (c < lowest || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF))
      return XmlTextFault{XmlTextFault::Kind::byte, b, i};
    if (!xmlAllows(c)) return XmlTextFault{XmlTextFault::Kind::character, c, i};
    i += length;
  }
  return std::nullopt;
}

std::string describeXmlTextFault(const XmlTextFault& fault) {
  char buf[64];
  if (fault.kind == XmlTextFault::Kind::byte)
    std::snprintf(buf, sizeof buf, "the byte 0x%02X, which is not UTF-8", static_cast<unsigned>(fault.value));
  else
    std::snprintf(buf, sizeof buf, "U+%04X, which XML 1.0 does not allow", static_cast<unsigned>(fault.value));
  return buf;
}

}  // namespace modelyne::io
