#include "core/text_chars.h"

namespace modelyne::core {

Utf8Step decodeUtf8(std::string_view text, std::size_t at) noexcept {
  const auto b = static_cast<unsigned char>(text[at]);
  if (b < 0x80) return {b, 1, true};
  std::size_t length = 0;
  std::uint32_t c = 0;
  std::uint32_t lowest = 0;
  if ((b & 0xE0) == 0xC0) {
    length = 2, c = b & 0x1Fu, lowest = 0x80;
  } else if ((b & 0xF0) == 0xE0) {
    length = 3, c = b & 0x0Fu, lowest = 0x800;
  } else if ((b & 0xF8) == 0xF0) {
    length = 4, c = b & 0x07u, lowest = 0x10000;
  } else {
    return {};
  }
  if (at + length > text.size()) return {};
  for (std::size_t k = 1; k < length; ++k) {
    const auto next = static_cast<unsigned char>(text[at + k]);
    if ((next & 0xC0) != 0x80) return {};
    c = (c << 6) | (next & 0x3Fu);
  }
  if (c < lowest || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) return {};
  return {c, length, true};
}

bool isUnwantedControl(std::uint32_t c) noexcept {
  return (c < 0x20 && c != '\n' && c != '\t') || (c >= 0x7F && c <= 0x9F);
}

std::string cleanText(std::string_view text) {
  std::string out;
  std::size_t copied = 0;  // text[copied, i) still to be copied as it is
  std::size_t i = 0;
  auto flush = [&](std::size_t upTo) { out.append(text.substr(copied, upTo - copied)); };
  bool changed = false;
  while (i < text.size()) {
    const Utf8Step step = decodeUtf8(text, i);
    const bool keep = step.valid && !isUnwantedControl(step.codePoint) && step.codePoint != 0xFFFE &&
                      step.codePoint != 0xFFFF;
    if (keep) {
      i += step.length;
      continue;
    }
    flush(i);
    changed = true;
    if (!step.valid) {
      out += "\xEF\xBF\xBD";
    } else if (step.codePoint == '\r' && (i + 1 >= text.size() || text[i + 1] != '\n')) {
      out += '\n';
    }
    i += step.length;
    copied = i;
  }
  if (!changed) return std::string(text);
  flush(text.size());
  return out;
}

}  // namespace modelyne::core
