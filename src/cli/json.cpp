#include "cli/json.h"

#include <cstdio>

namespace modelyne::cli {

namespace {

// Length of the well-formed UTF-8 sequence at `s[i]`, or 0 when the bytes
// there are not one (overlong forms, surrogates and values above U+10FFFF
// included).
std::size_t utf8Length(std::string_view s, std::size_t i) {
  const auto b = [&](std::size_t k) { return static_cast<unsigned char>(s[i + k]); };
  const auto cont = [&](std::size_t k) { return i + k < s.size() && (b(k) & 0xC0) == 0x80; };
  const unsigned char c = b(0);
  if (c < 0x80) return 1;
  if (c >= 0xC2 && c <= 0xDF) return cont(1) ? 2 : 0;
  if (c >= 0xE0 && c <= 0xEF) {
    if (!cont(1) || !cont(2)) return 0;
    if (c == 0xE0 && b(1) < 0xA0) return 0;
    if (c == 0xED && b(1) >= 0xA0) return 0;
    return 3;
  }
  if (c >= 0xF0 && c <= 0xF4) {
    if (!cont(1) || !cont(2) || !cont(3)) return 0;
    if (c == 0xF0 && b(1) < 0x90) return 0;
    if (c == 0xF4 && b(1) >= 0x90) return 0;
    return 4;
  }
  return 0;
}

}  // namespace

std::string jsonString(std::string_view s) {
  std::string out = "\"";
  for (std::size_t i = 0; i < s.size(); ++i) {
    const char ch = s[i];
    const auto c = static_cast<unsigned char>(ch);
    if (c >= 0x80) {
      // Bytes that are not UTF-8 would make the whole document invalid JSON.
      const std::size_t n = utf8Length(s, i);
      if (n == 0) {
        out += "\\ufffd";
      } else {
        out.append(s.substr(i, n));
        i += n - 1;
      }
      continue;
    }
    switch (c) {
      case '"': out += "\\\""; break;
      case '\\': out += "\\\\"; break;
      case '\n': out += "\\n"; break;
      case '\r': out += "\\r"; break;
      case '\t': out += "\\t"; break;
      case '\b': out += "\\b"; break;
      case '\f': out += "\\f"; break;
      default:
        if (c < 0x20) {
          char buf[8];
          std::snprintf(buf, sizeof buf, "\\u%04x", c);
          out += buf;
        } else {
          out += ch;
        }
    }
  }
  out += '"';
  return out;
}

std::string jsonStringArray(std::span<const std::string> items) {
  if (items.empty()) return "[]\n";
  std::string out = "[\n";
  for (std::size_t i = 0; i < items.size(); ++i) {
    out += "  " + jsonString(items[i]);
    out += i + 1 < items.size() ? ",\n" : "\n";
  }
  out += "]\n";
  return out;
}

}  // namespace modelyne::cli
