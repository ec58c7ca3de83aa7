#include "io/quoted_text.h"

namespace modelyne::io {

namespace {

// Length of the UTF-8 sequence a lead byte starts (1 for a stray byte).
std::size_t sequenceLength(unsigned char lead) noexcept {
  if (lead >= 0xF0 && lead <= 0xF4) return 4;
  if (lead >= 0xE0) return lead <= 0xEF ? 3 : 1;
  if (lead >= 0xC2) return 2;
  return 1;
}

}  // namespace

std::string shortenedText(std::string_view text) {
  std::size_t at = 0;
  std::size_t chars = 0;
  while (at < text.size() && chars < kQuotedTextMax) {
    std::size_t n = sequenceLength(static_cast<unsigned char>(text[at]));
    // A sequence cut short or with a wrong continuation byte: its lead byte alone.
    for (std::size_t k = 1; k < n; ++k)
      if (at + k >= text.size() || (static_cast<unsigned char>(text[at + k]) & 0xC0) != 0x80) n = 1;
    at += n;
    ++chars;
  }
  std::string s(text.substr(0, at));
  if (at < text.size()) s.append("\u2026");
  return s;
}

std::string quotedText(std::string_view text, char quote) {
  std::string s(1, quote);
  s.append(shortenedText(text));
  s.push_back(quote);
  return s;
}

}  // namespace modelyne::io
