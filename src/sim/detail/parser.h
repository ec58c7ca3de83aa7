#pragma once
// The one parser of the expression language, shared by the direct evaluator
// and the compiler so that both accept exactly the same texts and fail with
// the same errors. `Sink` decides what an operand or operation produces: a
// number (evaluation) or code (compilation). Internal to modelyne_sim.

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
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

/// The standard library's power function. The exponent goes through a
/// volatile so that the optimiser cannot turn pow(x, 2.0) into x * x, which
/// the library's pow does not always equal.
inline double libraryPower(double base, double exponent) noexcept {
  const volatile double hidden = exponent;
  return std::pow(base, hidden);
}

// Where the square of x and the error of its rounding are both exact
// doubles (no overflow, no underflow in Dekker's product).
inline constexpr double kSquareFastMin = 0x1p-450;
inline constexpr double kSquareFastMax = 0x1p+500;
// Veltkamp's constant: splits a double into two halves of 26 bits.
inline constexpr double kSplitter = 0x1p27 + 1.0;
// The rounded product x * x is the library's pow(x, 2) unless the exact
// square lies near the midpoint between two doubles, where pow, which is not
// always correctly rounded, may round the other way. glibc's pow is within
// 0.509 units in the last place from its exp plus 1.5 * 2^-68 relative error
// of log scaled by |y log x| * 2^53: at most 0.54 units over the whole range,
// 0.512 for x within 2^-16 .. 2^16. When the exact square is at most 1
// minus that far from the product (in units of the spacing below it), pow
// cannot reach the other neighbour; a margin of 0.01 is kept.
inline constexpr double kSquareSafeError = 0.45;
inline constexpr double kSquareSafeErrorNearOne = 0.478;
inline constexpr double kNearOneMin = 0x1p-16;
inline constexpr double kNearOneMax = 0x1p+16;

/// `libraryPower(x, 2.0)`, bit for bit: one multiplication when the exact
/// square is clearly nearer to the product than to any other double, the
/// library otherwise (about one value in twenty, and zero, subnormal, huge,
/// infinite and NaN bases).
inline double square(double x) noexcept {
  const double product = x * x;
  const double magnitude = std::fabs(x);
  if (magnitude >= kSquareFastMin && magnitude <= kSquareFastMax) {
    const double c = kSplitter * x;
    const double high = c - (c - x);
    const double low = x - high;
    const double error = ((high * high - product) + 2.0 * high * low) + low * low;  // exact
    // The spacing of doubles just below the product (half the usual one when
    // the product is a power of two): its exponent, times 2^-52.
    constexpr std::uint64_t kExponentBits = 0x7FF0000000000000u;
    const double spacing =
        std::bit_cast<double>((std::bit_cast<std::uint64_t>(product) - 1) & kExponentBits) * 0x1p-52;
    const bool nearOne = magnitude >= kNearOneMin && magnitude <= kNearOneMax;
    if (std::fabs(error) <= (nearOne ? kSquareSafeErrorNearOne : kSquareSafeError) * spacing) return product;
  }
  return libraryPower(x, 2.0);
}

/// "^": the standard library's power function; the square, by far the most
/// common exponent, mostly without calling it.
inline double power(double a, double b) noexcept { return b == 2.0 ? square(a) : libraryPower(a, b); }

template <class Sink>
class Parser {
 public:
  using Value = typename Sink::Value;

  Parser(std::string_view text, Sink& sink) noexcept : text_(text), sink_(sink) {}

  Value parse() {
    Value v = expression();
    skipBlanks();
    if (pos_ < text_.size()) fail("trailing input");
    return v;
  }

 private:
  [[noreturn]] void fail(const char* message) const { throw ParseError(message, pos_); }

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
    if (++depth_ > kMaxNestingDepth) fail("nesting too deep");
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
    if (pos_ >= text_.size()) fail("unexpected end");
    const char c = text_[pos_];
    if (c == '(') {
      enter();
      ++pos_;
      Value v = expression();
      skipBlanks();
      if (pos_ >= text_.size() || text_[pos_] != ')') fail("missing ')'");
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
    fail("unexpected character");
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
