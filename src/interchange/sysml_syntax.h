#pragma once
/// The statement tree of a SysML v2 (or KerML) text: a recursive-descent
/// reader that splits the text into statements, each a header of tokens
/// (expressions kept as tokens with their brackets balanced) and an optional
/// body of further statements. What a header means is read later
/// (sysml_header.h); this level knows only where statements begin and end.
///
///   interchange::SyntaxTree tree = interchange::parseSysml(std::move(text));
///   for (const Statement& s : tree.statements) tree.header(s) ...;
///   for (const SyntaxError& e : tree.errors) ...;   // line, column, what was expected
///
/// A statement that cannot be read is reported and skipped up to the next
/// `;` or the end of its body; reading goes on with the next statement.
/// Bodies nest at most kMaxNesting deep; deeper ones are reported and skipped
/// without recursion, so no input can exhaust the stack.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "interchange/report.h"
#include "interchange/sysml_lexer.h"

namespace modelyne::interchange {

inline constexpr std::size_t kMaxNesting = 200;
/// Texts above this size are refused whole.
inline constexpr std::size_t kMaxSysmlBytes = 16u << 20;

struct Statement {
  std::uint32_t first = 0;  ///< index of the first header token
  std::uint32_t end = 0;    ///< one past the last header token (`;` and body excluded)
  bool hasBody = false;
  bool semicolon = false;   ///< ended with `;` (an expression may end at its owner's `}`)
  std::vector<Statement> body;
};

struct SyntaxTree {
  /// The text the tokens point into; shared so that moving or copying the
  /// tree keeps the views valid.
  std::shared_ptr<const std::string> source;
  std::vector<Token> tokens;  ///< ends with TokenKind::end
  std::vector<Statement> statements;
  std::vector<SyntaxError> errors;  ///< in source order
  bool refused = false;       ///< nothing was read (text too large)

  std::span<const Token> header(const Statement& s) const {
    return std::span<const Token>(tokens).subspan(s.first, s.end - s.first);
  }
  const Token& firstToken(const Statement& s) const { return tokens[s.first]; }
};

/// Reads `text` into statements. Never throws for bad input.
SyntaxTree parseSysml(std::string text);

}  // namespace modelyne::interchange
