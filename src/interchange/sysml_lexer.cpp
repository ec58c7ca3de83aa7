#include "interchange/sysml_lexer.h"

#include <array>
#include <cstdio>
#include <string>

namespace modelyne::interchange {

namespace {

// Symbols, longest first so that the first match is the longest.
constexpr std::array<std::string_view, 40> kSymbols{
    "!==", "===", ":>>", "::>", "!=", "==", "<=", ">=", "::", ":>", ":=", "->", "=>", "..",
    ".?",  "??",  "**",  "@@",  "!",  "#",  "$",  "%",  "&",  "(",  ")",  "*",  "+",  ",",
    "-",   ".",   "/",   ":",   ";",  "<",  "=",  ">",  "?",  "@",  "[",  "]"};
constexpr std::string_view kSingleExtra = "^{|}~";

// Errors past this many are not recorded: a binary file would otherwise
// produce one per byte.
constexpr std::size_t kMaxErrors = 100;

bool isNameStart(unsigned char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || c >= 0x80; }
bool isNameChar(unsigned char c) { return isNameStart(c) || (c >= '0' && c <= '9'); }
bool isDigit(unsigned char c) { return c >= '0' && c <= '9'; }

/// Length of a well-formed UTF-8 sequence at `i`, 0 when malformed.
std::size_t utf8At(std::string_view s, std::size_t i) {
  const auto c = static_cast<unsigned char>(s[i]);
  if (c < 0x80) return 1;
  std::size_t n = 0;
  std::uint32_t cp = 0;
  if ((c & 0xE0) == 0xC0) n = 2, cp = c & 0x1F;
  else if ((c & 0xF0) == 0xE0) n = 3, cp = c & 0x0F;
  else if ((c & 0xF8) == 0xF0) n = 4, cp = c & 0x07;
  else return 0;
  if (i + n > s.size()) return 0;
  for (std::size_t k = 1; k < n; ++k) {
    const auto d = static_cast<unsigned char>(s[i + k]);
    if ((d & 0xC0) != 0x80) return 0;
    cp = (cp << 6) | (d & 0x3F);
  }
  if ((n == 2 && cp < 0x80) || (n == 3 && cp < 0x800) || (n == 4 && cp < 0x10000) || cp > 0x10FFFF ||
      (cp >= 0xD800 && cp <= 0xDFFF))
    return 0;
  return n;
}

class Lexer {
 public:
  explicit Lexer(std::string_view s) : s_(s) {}

  LexResult run() {
    LexResult out;
    out.tokens.reserve(s_.size() / 4 + 1);
    while (true) {
      skipSpaceAndNotes(out);
      if (i_ >= s_.size()) break;
      const std::uint32_t line = line_, col = column();
      const std::size_t start = i_;
      const auto c = static_cast<unsigned char>(s_[i_]);
      TokenKind kind = TokenKind::symbol;
      if (c == '/' && peek(1) == '*') {
        kind = TokenKind::comment;
        if (!skipPast("*/", 2, out)) error(out, line, col, "Expected '*/' to close the comment that begins here.");
      } else if (c == '\'') {
        kind = TokenKind::quotedName;
        if (!skipQuoted('\'', out)) error(out, line, col, "Expected a closing ' for the name that begins here.");
      } else if (c == '"') {
        kind = TokenKind::string;
        if (!skipQuoted('"', out)) error(out, line, col, "Expected a closing \" for the string that begins here.");
      } else if (isDigit(c)) {
        kind = TokenKind::number;
        lexNumber();
      } else if (isNameStart(c)) {
        if (c >= 0x80 && utf8At(s_, i_) == 0) {
          badByte(out, line, col);
          continue;
        }
        kind = TokenKind::name;
        while (i_ < s_.size() && isNameChar(static_cast<unsigned char>(s_[i_]))) {
          const std::size_t n = utf8At(s_, i_);
          if (n == 0) break;
          i_ += n;
        }
      } else if (!lexSymbol()) {
        if (c < 0x20 || c == 0x7F) {
          char buf[64];
          std::snprintf(buf, sizeof buf, "Unexpected control character 0x%02X; expected a statement.", c);
          error(out, line, col, buf);
        } else {
          error(out, line, col, std::string("Unexpected character '") + static_cast<char>(c) + "'; expected a statement.");
        }
        ++i_;
        continue;
      }
      out.tokens.push_back({kind, s_.substr(start, i_ - start), line, col});
    }
    out.tokens.push_back({TokenKind::end, s_.substr(s_.size()), line_, column()});
    return out;
  }

 private:
  std::uint32_t column() const { return static_cast<std::uint32_t>(i_ - lineStart_ + 1); }
  char peek(std::size_t k) const { return i_ + k < s_.size() ? s_[i_ + k] : '\0'; }

  void error(LexResult& out, std::uint32_t line, std::uint32_t col, std::string message) {
    if (out.errors.size() < kMaxErrors) out.errors.push_back({line, col, std::move(message)});
  }
  void badByte(LexResult& out, std::uint32_t line, std::uint32_t col) {
    char buf[80];
    std::snprintf(buf, sizeof buf, "Invalid UTF-8 byte 0x%02X; expected text in UTF-8.",
                  static_cast<unsigned char>(s_[i_]));
    error(out, line, col, buf);
    ++i_;
  }

  /// Advances over one character inside text, keeping line count and
  /// reporting malformed UTF-8 once per token.
  void advanceInText(LexResult& out, bool& reported) {
    const std::size_t n = utf8At(s_, i_);
    if (s_[i_] == '\n') {
      ++i_;
      ++line_;
      lineStart_ = i_;
      return;
    }
    if (n == 0) {
      if (!reported) {
        reported = true;
        char buf[80];
        std::snprintf(buf, sizeof buf, "Invalid UTF-8 byte 0x%02X; expected text in UTF-8.",
                      static_cast<unsigned char>(s_[i_]));
        error(out, line_, column(), buf);
      }
      ++i_;
      return;
    }
    i_ += n;
  }

  void skipSpaceAndNotes(LexResult& out) {
    while (i_ < s_.size()) {
      const char c = s_[i_];
      if (c == '\n') {
        ++i_;
        ++line_;
        lineStart_ = i_;
      } else if (c == ' ' || c == '\t' || c == '\r' || c == '\f') {
        ++i_;
      } else if (c == '/' && peek(1) == '/' && peek(2) == '*') {
        const std::uint32_t line = line_, col = column();
        if (!skipPast("*/", 3, out)) error(out, line, col, "Expected '*/' to close the note that begins here.");
      } else if (c == '/' && peek(1) == '/') {
        bool reported = false;
        while (i_ < s_.size() && s_[i_] != '\n') advanceInText(out, reported);
      } else {
        return;
      }
    }
  }

  /// Skips the opening (`skip` bytes) and everything up to and including
  /// `close`; false when the text ends first.
  bool skipPast(std::string_view close, std::size_t skip, LexResult& out) {
    i_ += skip;
    bool reported = false;
    while (i_ < s_.size()) {
      if (s_.compare(i_, close.size(), close) == 0) {
        i_ += close.size();
        return true;
      }
      advanceInText(out, reported);
    }
    return false;
  }

  bool skipQuoted(char quote, LexResult& out) {
    ++i_;
    bool reported = false;
    while (i_ < s_.size()) {
      const char c = s_[i_];
      if (c == quote) {
        ++i_;
        return true;
      }
      if (c == '\\' && i_ + 1 < s_.size() && s_[i_ + 1] != '\n') ++i_;
      advanceInText(out, reported);
    }
    return false;
  }

  void lexNumber() {
    while (i_ < s_.size() && isDigit(static_cast<unsigned char>(s_[i_]))) ++i_;
    if (peek(0) == '.' && isDigit(static_cast<unsigned char>(peek(1)))) {
      ++i_;
      while (i_ < s_.size() && isDigit(static_cast<unsigned char>(s_[i_]))) ++i_;
    }
    if ((peek(0) == 'e' || peek(0) == 'E') &&
        (isDigit(static_cast<unsigned char>(peek(1))) ||
         ((peek(1) == '+' || peek(1) == '-') && isDigit(static_cast<unsigned char>(peek(2)))))) {
      i_ += 2;
      while (i_ < s_.size() && isDigit(static_cast<unsigned char>(s_[i_]))) ++i_;
    }
  }

  bool lexSymbol() {
    for (std::string_view sym : kSymbols) {
      if (s_.compare(i_, sym.size(), sym) == 0) {
        i_ += sym.size();
        return true;
      }
    }
    if (kSingleExtra.find(s_[i_]) != std::string_view::npos) {
      ++i_;
      return true;
    }
    return false;
  }

  std::string_view s_;
  std::size_t i_ = 0;
  std::size_t lineStart_ = 0;
  std::uint32_t line_ = 1;
};

}  // namespace

LexResult lexSysml(std::string_view source) { return Lexer(source).run(); }

std::string unquoteName(std::string_view t) {
  if (t.size() < 2 || t.front() != '\'' || t.back() != '\'') return std::string(t);
  std::string out;
  out.reserve(t.size() - 2);
  for (std::size_t i = 1; i + 1 < t.size(); ++i) {
    char c = t[i];
    if (c == '\\' && i + 2 < t.size()) {
      c = t[++i];
      if (c == 'n') c = '\n';
      else if (c == 't') c = '\t';
    }
    out += c;
  }
  return out;
}

}  // namespace modelyne::interchange
