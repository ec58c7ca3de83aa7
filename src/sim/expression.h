#pragma once
/// The parametric expression language: `EvaluateExpression` parses an
/// arithmetic expression over named values and computes it in one pass
/// (recursive descent, evaluated while parsed). Syntax errors throw
/// `ParseError`; unknown names read as 0.0 and raise the unresolved flag;
/// a division by exactly zero makes the term 0.0; a leading sign binds
/// tighter than "^" (-2^2 is 4). These rules are deliberate and kept.

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>

namespace modelyne::core::sim::parametric {

/// Named values, looked up by exact, case-sensitive name.
using VariableTable = std::unordered_map<std::string, double>;

/// A syntax error. `what()` is exactly one of "unexpected end",
/// "missing ')'", "unexpected character" or "trailing input", or, for
/// nesting deeper than `kMaxNestingDepth`, "nesting too deep" at the opening
/// "(" or "^" that goes too deep. `position()` is the byte offset in the
/// expression text where the fault was found; `column()` is the same place
/// counted from 1 (everything the parser accepts is ASCII, so bytes and
/// characters agree up to the fault).
class ParseError : public std::runtime_error {
 public:
  ParseError(const char* message, std::size_t position)
      : std::runtime_error(message), position_(position) {}
  std::size_t position() const noexcept { return position_; }
  std::size_t column() const noexcept { return position_ + 1; }

 private:
  std::size_t position_;
};

/// Deepest nesting of parentheses and chained "^" that a parse accepts.
inline constexpr int kMaxNestingDepth = 200;

/// Value of an expression and whether it named a value the table lacks.
struct Evaluation {
  double value = 0.0;
  bool unresolved = false;
};

/// Parses and evaluates `text` against `values`. Throws `ParseError` on a
/// syntax error; a number literal that the standard string-to-double
/// conversion rejects lets that conversion's own exception through
/// (std::invalid_argument for ".", std::out_of_range for "1e999").
Evaluation EvaluateExpression(std::string_view text, const VariableTable& values);

/// The same, reporting the unresolved flag through `unresolved` (set when a
/// name is missing, never cleared).
double EvaluateExpression(std::string_view text, const VariableTable& values, bool& unresolved);

}  // namespace modelyne::core::sim::parametric
