#include "check/text.h"

namespace modelyne::check {

namespace {
bool isSpace(char c) noexcept {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}
char lower(char c) noexcept { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }
}  // namespace

std::string_view property(const core::Node& node, const std::string& key) {
  const auto it = node.properties.find(key);
  return it == node.properties.end() ? std::string_view{} : std::string_view{it->second};
}

std::string_view trimmed(std::string_view text) noexcept {
  while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
  return text;
}

std::string keyword(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (const char c : text) {
    const char l = lower(c);
    if ((l >= 'a' && l <= 'z') || (l >= '0' && l <= '9')) out.push_back(l);
  }
  return out;
}

bool equalsIgnoreCase(std::string_view a, std::string_view b) noexcept {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i)
    if (lower(a[i]) != lower(b[i])) return false;
  return true;
}

}  // namespace modelyne::check
