#pragma once
/// Small ASCII text helpers shared by the plan parser, the prompts and the
/// interpreter (internal to modelyne_ai).

#include <string>
#include <string_view>

namespace modelyne::ai::text {

inline bool isSpace(char c) noexcept {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f' || c == '\v';
}
inline bool isAlnum(char c) noexcept {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}
inline bool isUpper(char c) noexcept { return c >= 'A' && c <= 'Z'; }
inline char toLower(char c) noexcept { return isUpper(c) ? static_cast<char>(c - 'A' + 'a') : c; }

inline std::string_view trim(std::string_view s) noexcept {
  while (!s.empty() && isSpace(s.front())) s.remove_prefix(1);
  while (!s.empty() && isSpace(s.back())) s.remove_suffix(1);
  return s;
}

inline std::string lower(std::string_view s) {
  std::string out(s);
  for (char& c : out) c = toLower(c);
  return out;
}

inline bool iequals(std::string_view a, std::string_view b) noexcept {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i)
    if (toLower(a[i]) != toLower(b[i])) return false;
  return true;
}

/// Whether lower-case `needle` occurs in lower-case `hay` as whole words
/// (no letter or digit right before or after the occurrence).
inline bool containsWholeWord(std::string_view hay, std::string_view needle) noexcept {
  if (needle.empty()) return false;
  std::size_t pos = 0;
  while ((pos = hay.find(needle, pos)) != std::string_view::npos) {
    const bool before = pos == 0 || !isAlnum(hay[pos - 1]);
    const std::size_t end = pos + needle.size();
    const bool after = end >= hay.size() || !isAlnum(hay[end]);
    if (before && after) return true;
    pos += 1;
  }
  return false;
}

}  // namespace modelyne::ai::text
