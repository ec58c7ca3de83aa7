#include "core/json_string.h"

#include <cstdio>

#include "core/text_chars.h"

namespace modelyne::core {

void appendJsonString(std::string& out, std::string_view s) {
  out += '"';
  std::size_t i = 0;
  while (i < s.size()) {
    const auto c = static_cast<unsigned char>(s[i]);
    if (c >= 0x80) {
      const Utf8Step step = decodeUtf8(s, i);
      if (step.valid) out.append(s.substr(i, step.length));
      else out += "\\ufffd";
      i += step.length;
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
          out += static_cast<char>(c);
        }
    }
    ++i;
  }
  out += '"';
}

std::string jsonString(std::string_view s) {
  std::string out;
  out.reserve(s.size() + 2);
  appendJsonString(out, s);
  return out;
}

}  // namespace modelyne::core
