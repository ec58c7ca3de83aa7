#include "io/xml_scan.h"

#include <algorithm>
#include <cstring>
#include <functional>

#include "io/xml_escape.h"

namespace modelyne::io::detail {

namespace {

bool isSpace(char c) noexcept { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

}  // namespace

bool findAttribute(std::string_view tag, std::string_view name, std::string_view& value) {
  std::size_t i = 0;
  const std::size_t n = tag.size();
  if (i < n && tag[i] == '<') ++i;
  while (i < n && !isSpace(tag[i]) && tag[i] != '>' && tag[i] != '/') ++i;  // element name
  bool found = false;
  while (i < n) {
    while (i < n && isSpace(tag[i])) ++i;
    if (i >= n || tag[i] == '>' || tag[i] == '/') break;
    const std::size_t nameBegin = i;
    while (i < n && !isSpace(tag[i]) && tag[i] != '=' && tag[i] != '>' && tag[i] != '/') ++i;
    const std::string_view attrName = tag.substr(nameBegin, i - nameBegin);
    while (i < n && isSpace(tag[i])) ++i;
    if (i >= n || tag[i] != '=') {
      if (attrName.empty()) break;
      continue;  // a name without a value: skip it
    }
    ++i;
    while (i < n && isSpace(tag[i])) ++i;
    if (i >= n || (tag[i] != '"' && tag[i] != '\'')) break;
    const char quote = tag[i++];
    const std::size_t close = tag.find(quote, i);
    if (close == std::string_view::npos) break;
    if (attrName == name) {
      value = tag.substr(i, close - i);
      found = true;
    }
    i = close + 1;
  }
  return found;
}

std::string attributeOr(std::string_view tag, std::string_view name, std::string_view fallback) {
  std::string_view raw;
  if (!findAttribute(tag, name, raw)) return std::string(fallback);
  return decodeXml(raw);
}

void widenToLines(std::string_view text, std::size_t& begin, std::size_t& end) {
  std::size_t b = begin;
  while (b > 0 && (text[b - 1] == ' ' || text[b - 1] == '\t')) --b;
  std::size_t e = end;
  while (e < text.size() && (text[e] == ' ' || text[e] == '\t')) ++e;
  const bool startsLine = b == 0 || text[b - 1] == '\n';
  bool endsLine = e == text.size();
  if (e < text.size() && text[e] == '\r') ++e;
  if (e < text.size() && text[e] == '\n') {
    ++e;
    endsLine = true;
  }
  if (startsLine && endsLine) {
    begin = b;
    end = e;
  }
}

std::size_t findText(std::string_view hay, std::string_view needle, std::size_t from) {
  if (from > hay.size()) return std::string_view::npos;
  if (needle.size() < 4) return hay.find(needle, from);
  const auto begin = hay.begin() + static_cast<std::ptrdiff_t>(from);
  const auto it = std::search(begin, hay.end(), std::boyer_moore_horspool_searcher(needle.begin(), needle.end()));
  return it == hay.end() ? std::string_view::npos : static_cast<std::size_t>(it - hay.begin());
}

std::size_t lineAt(std::string_view text, std::size_t offset) {
  offset = std::min(offset, text.size());
  return static_cast<std::size_t>(std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(offset), '\n')) + 1;
}

std::size_t LineCounter::lineAt(std::size_t offset) {
  if (offset < pos_) {  // asked out of order: count again from the start
    pos_ = 0;
    line_ = 1;
  }
  offset = std::min(offset, text_.size());
  const char* p = text_.data() + pos_;
  const char* end = text_.data() + offset;
  while (p < end) {
    const void* nl = std::memchr(p, '\n', static_cast<std::size_t>(end - p));
    if (!nl) break;
    ++line_;
    p = static_cast<const char*>(nl) + 1;
  }
  pos_ = offset;
  return line_;
}

}  // namespace modelyne::io::detail
