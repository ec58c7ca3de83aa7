#include "io/xml_chars.h"

#include <cstdio>

#include "core/text_chars.h"

namespace modelyne::io {

namespace {

/// XML 1.0's Char production.
bool xmlAllows(std::uint32_t c) {
  return c == 0x9 || c == 0xA || c == 0xD || (c >= 0x20 && c <= 0xD7FF) || (c >= 0xE000 && c <= 0xFFFD) ||
         (c >= 0x10000 && c <= 0x10FFFF);
}

}  // namespace

std::optional<XmlTextFault> firstXmlTextFault(std::string_view text) {
  std::size_t i = 0;
  while (i < text.size()) {
    const core::Utf8Step step = core::decodeUtf8(text, i);
    if (!step.valid) return XmlTextFault{XmlTextFault::Kind::byte, static_cast<unsigned char>(text[i]), i};
    if (!xmlAllows(step.codePoint)) return XmlTextFault{XmlTextFault::Kind::character, step.codePoint, i};
    i += step.length;
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
