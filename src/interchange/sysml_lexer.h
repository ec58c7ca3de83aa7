#pragma once
/// Tokens of SysML v2 and KerML text: names (plain and 'quoted'), strings,
/// numbers, symbols and the regular comments `/* ... */` that carry text
/// into the model. Notes (`// ...` and `//* ... */`) and white space are
/// skipped. Every token knows its 1-based line and column (in bytes).
///
///   interchange::LexResult lx = interchange::lexSysml(text);
///   for (const Token& t : lx.tokens) ...;         // ends with TokenKind::end
///   for (const SyntaxError& e : lx.errors) ...;   // bad bytes, unterminated text
///
/// Invalid UTF-8, control characters and characters of no token are reported
/// and skipped; the token list is always usable.

#include <cstdint>
#include <string_view>
#include <vector>

#include "interchange/report.h"

namespace modelyne::interchange {

enum class TokenKind : std::uint8_t {
  name,        ///< identifier or reserved word
  quotedName,  ///< 'unrestricted name', text includes the quotes
  string,      ///< "string value", text includes the quotes
  number,
  symbol,      ///< operators and punctuation
  comment,     ///< /* regular comment */, text includes the delimiters
  end,         ///< end of input
};

struct Token {
  TokenKind kind = TokenKind::end;
  std::string_view text;  ///< points into the lexed source
  std::uint32_t line = 0;
  std::uint32_t column = 0;

  bool is(std::string_view s) const noexcept {
    return (kind == TokenKind::name || kind == TokenKind::symbol) && text == s;
  }
  bool isName() const noexcept { return kind == TokenKind::name || kind == TokenKind::quotedName; }
};

struct LexResult {
  std::vector<Token> tokens;  ///< always ends with one TokenKind::end
  std::vector<SyntaxError> errors;
};

/// Splits `source` into tokens; the views point into `source`.
LexResult lexSysml(std::string_view source);

/// The name a name token stands for: quotes removed and escapes resolved.
std::string unquoteName(std::string_view tokenText);

}  // namespace modelyne::interchange
