#include "io/xml_escape.h"

#include <cstring>

namespace modelyne::io {

namespace {

// The replacement of each byte that needs one, nullptr for the rest.
const char* replacementOf(unsigned char c) noexcept {
  switch (c) {
    case '"': return "&quot;";
    case '&': return "&amp;";
    case '\'': return "&apos;";
    case '<': return "&lt;";
    case '>': return "&gt;";
    default: return nullptr;
  }
}

struct Entity {
  std::string_view name;  // without '&' and ';'
  char ch;
};
constexpr Entity kEntities[] = {{"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}};

}  // namespace

void appendEscaped(std::string& out, std::string_view text) {
  const char* p = text.data();
  const char* end = p + text.size();
  const char* run = p;
  for (; p != end; ++p) {
    if (const char* rep = replacementOf(static_cast<unsigned char>(*p))) {
      out.append(run, static_cast<std::size_t>(p - run));
      out.append(rep);
      run = p + 1;
    }
  }
  out.append(run, static_cast<std::size_t>(end - run));
}

std::string escapeXml(std::string_view text) {
  std::string out;
  out.reserve(text.size() + 8);
  appendEscaped(out, text);
  return out;
}

void appendDecoded(std::string& out, std::string_view raw) {
  const char* p = raw.data();
  const char* end = p + raw.size();
  while (p != end) {
    const void* amp = std::memchr(p, '&', static_cast<std::size_t>(end - p));
    if (!amp) {
      out.append(p, static_cast<std::size_t>(end - p));
      return;
    }
    const char* a = static_cast<const char*>(amp);
    out.append(p, static_cast<std::size_t>(a - p));
    p = a + 1;
    bool decoded = false;
    for (const Entity& e : kEntities) {
      const std::size_t n = e.name.size();
      if (static_cast<std::size_t>(end - p) > n && std::memcmp(p, e.name.data(), n) == 0 && p[n] == ';') {
        out.push_back(e.ch);
        p += n + 1;
        decoded = true;
        break;
      }
    }
    if (!decoded) out.push_back('&');
  }
}

void assignDecoded(std::string& out, std::string_view raw) {
  if (std::memchr(raw.data(), '&', raw.size()) == nullptr) {
    out.assign(raw.data(), raw.size());
    return;
  }
  out.clear();
  appendDecoded(out, raw);
}

std::string decodeXml(std::string_view raw) {
  std::string out;
  assignDecoded(out, raw);
  return out;
}

}  // namespace modelyne::io
