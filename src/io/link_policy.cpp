#include "io/link_policy.h"

#include <algorithm>
#include <string>
#include <system_error>

namespace modelyne::io {

namespace {

char lower(char c) noexcept { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }
bool isSlash(char c) noexcept { return c == '/' || c == '\\'; }
bool isAlpha(char c) noexcept { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

bool endsWithNoCase(std::string_view s, std::string_view suffix) {
  if (s.size() < suffix.size()) return false;
  for (std::size_t i = 0; i < suffix.size(); ++i)
    if (lower(s[s.size() - suffix.size() + i]) != suffix[i]) return false;
  return true;
}

// Names that Windows maps to devices in every folder, with or without an extension.
constexpr std::string_view kDeviceNames[] = {"con",  "prn",  "aux",  "nul",  "com1", "com2", "com3", "com4",
                                             "com5", "com6", "com7", "com8", "com9", "lpt1", "lpt2", "lpt3",
                                             "lpt4", "lpt5", "lpt6", "lpt7", "lpt8", "lpt9", "conin$", "conout$"};

bool hasDeviceComponent(std::string_view path) {
  std::size_t start = 0;
  while (start <= path.size()) {
    std::size_t end = start;
    while (end < path.size() && !isSlash(path[end])) ++end;
    std::string_view part = path.substr(start, end - start);
    const std::size_t dot = part.find('.');
    if (dot != std::string_view::npos) part = part.substr(0, dot);
    while (!part.empty() && part.back() == ' ') part.remove_suffix(1);
    std::string low(part);
    std::transform(low.begin(), low.end(), low.begin(), lower);
    for (std::string_view d : kDeviceNames)
      if (low == d) return true;
    start = end + 1;
  }
  return false;
}

// A URL or other address with a scheme ("https:", "file:", "mailto:",
// "shell:"): a letter, then letters, digits, "+", "-" or "." and a colon.
// A single letter before the colon is a drive, not a scheme.
bool hasScheme(std::string_view t) {
  if (t.empty() || !isAlpha(t[0])) return false;
  std::size_t i = 1;
  while (i < t.size() && (isAlpha(t[i]) || (t[i] >= '0' && t[i] <= '9') || t[i] == '+' || t[i] == '-' || t[i] == '.'))
    ++i;
  return i < t.size() && t[i] == ':' && i >= 2;
}

}  // namespace

bool isLinkTargetAllowed(std::string_view target, const std::filesystem::path& baseDir) {
  // Surrounding blanks are a copy-and-paste accident, not part of the name.
  while (!target.empty() && (target.front() == ' ' || target.front() == '\t')) target.remove_prefix(1);
  while (!target.empty() && (target.back() == ' ' || target.back() == '\t')) target.remove_suffix(1);
  if (target.empty()) return false;
  for (char c : target)
    if (static_cast<unsigned char>(c) < 0x20) return false;
  if (hasScheme(target)) return false;
  // "\\server\share", "//server/share", "\\?\UNC\..." and the device space "\\.\".
  if (target.size() >= 2 && isSlash(target[0]) && isSlash(target[1])) return false;
  // A colon anywhere but after a leading drive letter names an alternate data stream.
  const std::size_t colon = target.find(':');
  if (colon != std::string_view::npos && !(colon == 1 && isAlpha(target[0]) && target.find(':', 2) == std::string_view::npos))
    return false;
  if (hasDeviceComponent(target)) return false;

  std::string name(target);
  while (name.size() > 1 && isSlash(name.back()) && !(name.size() == 3 && name[1] == ':')) name.pop_back();
  if (endsWithNoCase(name, ".xml")) return true;

  std::filesystem::path p(name);
  if (p.is_relative() && !baseDir.empty()) p = baseDir / p;
  std::error_code ec;
  return std::filesystem::is_directory(p, ec);
}

}  // namespace modelyne::io
