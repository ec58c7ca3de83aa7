#pragma once
// The one parser of the expression language, shared by the direct evaluator
// and the compiler so that both accept exactly the same texts and fail with
// the same errors. `Sink` decides what an operand or operation produces: a
// number (evaluation) or code (compilation). Internal to modelyne_sim.

#include <cstddef>
#include <string_view>

#include "sim/expression.h"

namespace modelyne::core::sim::parametric::detail {

inline bool isBlank(char c) noexcept {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f';
}
inline bool isDigit(char c) noexcept { return c >= '0' && c <= '9'; }
inline bool isLetter(char c) noexcept { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
inline bool isNameStart(char c) noexcept { return isLetter(c) || c == '_'; }
inline bool isNameChar(char c) noexcept { return isNameStart(c) || isDigit(c); }

/// Converts a number literal exactly as std::stod does (same value, same
/// exceptions), without its cost in the common case.
double convertLiteral(std::string_view literal);

/// The zero-divisor rule: dividing by exactly zero gives 0.0.
inline double divide(double a, double b) noexcept { return b == 0.0 ? 0.0 : a / b; }

template <class Sink>
class Parser {
 public:
  using Value = typename Sink::Value;

  Parser(std::string_view text, Sink& sink) noexcept : text_(text), sink_(sink) {}

  Value parse() {
    Value v = expression();
    skipBlanks();
    if (pos_ < text_.size()) throw ParseError("trailing input", pos_);
    return v;
  }

 private:
  void skipBlanks() noexcept {
    while (pos_ < text_.size() && isBlank(text_[pos_])) ++pos_;
  }
  bool take(char c) noexcept {
    skipBlanks();
    if (pos_ < text_.size() && text_[pos_] == c) {
      ++pos_;
      return true;
    }
    return false;
  }
  void enter() {
    if (++depth_ > kMaxNestingDepth) throw ParseError("unexpected character", pos_);
  }

  Value expression() {
    Value v = term();
    for (;;) {
      if (take('+')) {
        Value r = term();
        v = sink_.add(v, r);
      } else if (take('-')) {
        Value r = term();
        v = sink_.subtract(v, r);
      } else {
        return v;
      }
    }
  }

  Value term() {
    Value v = power();
    for (;;) {
      if (take('*')) {
        Value r = power();
        v = sink_.multiply(v, r);
      } else if (take('/')) {
        Value r = power();
        v = sink_.divide(v, r);
      } else {
        return v;
      }
    }
  }

  // The exponent is itself a power, so "^" groups to the right.
  Value power() {
    Value base = unary();
    skipBlanks();
    if (pos_ < text_.size() && text_[pos_] == '^') {
      enter();
      ++pos_;
      Value exponent = power();
      --depth_;
      return sink_.power(base, exponent);
    }
    return base;
  }

  // A run of signs: pluses are dropped, each minus negates what follows.
  // Counting them instead of recursing keeps a long run off the stack; two
  // negations give back the same bits, so the result is the same.
  Value unary() {
    bool negate = false;
    for (;;) {
      skipBlanks();
      if (pos_ < text_.size() && text_[pos_] == '+') {
        ++pos_;
      } else if (pos_ < text_.size() && text_[pos_] == '-') {
        negate = !negate;
        ++pos_;
      } else {
        break;
      }
    }
    Value v = primary();
    return negate ? sink_.negate(v) : v;
  }

  Value primary() {
    skipBlanks();
    if (pos_ >= text_.size()) throw ParseError("unexpected end", pos_);
    const char c = text_[pos_];
    if (c == '(') {
      enter();
      ++pos_;
      Value v = expression();
      skipBlanks();
      if (pos_ >= text_.size() || text_[pos_] != ')') throw ParseError("missing ')'", pos_);
      ++pos_;
      --depth_;
      return v;
    }
    if (isDigit(c) || c == '.') return sink_.number(convertLiteral(scanLiteral()));
    if (isNameStart(c)) {
      const std::size_t start = pos_;
      while (pos_ < text_.size() && isNameChar(text_[pos_])) ++pos_;
      return sink_.name(text_.substr(start, pos_ - start), start);
    }
    throw ParseError("unexpected character", pos_);
  }

  // Digits with at most one ".", then an exponent marker when some character
  // follows it, an optional sign and digits.
  std::string_view scanLiteral() noexcept {
    const std::size_t start = pos_;
    bool dot = false;
    while (pos_ < text_.size()) {
      const char c = text_[pos_];
      if (isDigit(c)) {
        ++pos_;
      } else if (c == '.' && !dot) {
        dot = true;
        ++pos_;
      } else {
        break;
      }
    }
    if (pos_ + 1 < text_.size() && (text_[pos_] == 'e' || text_[pos_] == 'E')) {
      ++pos_;
      if (text_[pos_] == '+' || text_[pos_] == '-') ++pos_;
      while (pos_ < text_.size() && isDigit(text_[pos_])) ++pos_;
    }
    return text_.substr(start, pos_ - start);
  }

  std::string_view text_;
  Sink& sink_;
  std::size_t pos_ = 0;
  int depth_ = 0;
};

}  // namespace modelyne::core::sim::parametric::detail
