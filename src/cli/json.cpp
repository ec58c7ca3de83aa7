#include "cli/json.h"

#include <cstdio>

namespace modelyne::cli {

std::string jsonString(std::string_view s) {
  std::string out = "\"";
  for (const char ch : s) {
    const auto c = static_cast<unsigned char>(ch);
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
