#include "sim/expression.h"

#include <cmath>
#include <cstdint>
#include <string>

#include "sim/detail/parser.h"

namespace modelyne::core::sim::parametric {

namespace {

// ---- Literal conversion

// Powers of ten that a double holds exactly.
constexpr double kExactPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                        1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                        1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// When the digits form an integer below 2^53 and the power of ten is exact,
// one correctly rounded multiplication or division gives the correctly
// rounded value, the same bits as the library conversion. Returns false
// when the literal needs the full conversion.
bool convertQuickly(std::string_view s, double& out) noexcept {
  std::uint64_t mantissa = 0;
  int significant = 0;
  int fractionDigits = 0;
  bool anyDigit = false;
  bool inFraction = false;
  std::size_t i = 0;
  for (; i < s.size(); ++i) {
    const char c = s[i];
    if (c == '.') {
      inFraction = true;
      continue;
    }
    if (!detail::isDigit(c)) break;
    anyDigit = true;
    if (mantissa != 0 || c != '0') {
      if (++significant > 19) return false;
      mantissa = mantissa * 10 + static_cast<std::uint64_t>(c - '0');
    }
    if (inFraction) ++fractionDigits;
  }
  if (!anyDigit) return false;  // "." or ".e5": the library conversion rejects it
  int exponent = 0;
  if (i < s.size()) {  // an exponent marker; without digits the conversion ignores it
    std::size_t j = i + 1;
    bool negative = false;
    if (j < s.size() && (s[j] == '+' || s[j] == '-')) negative = s[j++] == '-';
    if (j < s.size()) {
      if (s.size() - j > 4) return false;
      for (; j < s.size(); ++j) exponent = exponent * 10 + (s[j] - '0');
      if (negative) exponent = -exponent;
    }
  }
  if (mantissa == 0) {
    out = 0.0;
    return true;
  }
  if (mantissa > (std::uint64_t{1} << 53)) return false;
  const int power = exponent - fractionDigits;
  if (power < -22 || power > 22) return false;
  const double m = static_cast<double>(mantissa);
  out = power >= 0 ? m * kExactPowersOfTen[power] : m / kExactPowersOfTen[-power];
  return true;
}

// ---- Direct evaluation

class EvaluatingSink {
 public:
  using Value = double;
  explicit EvaluatingSink(const VariableTable& values) noexcept : values_(values) {}

  double number(double v) const noexcept { return v; }
  double name(std::string_view name, std::size_t) {
    key_.assign(name);
    const auto it = values_.find(key_);
    if (it == values_.end()) {
      unresolved = true;
      return 0.0;
    }
    return it->second;
  }
  static double add(double a, double b) noexcept { return a + b; }
  static double subtract(double a, double b) noexcept { return a - b; }
  static double multiply(double a, double b) noexcept { return a * b; }
  static double divide(double a, double b) noexcept { return detail::divide(a, b); }
  static double power(double a, double b) noexcept { return detail::power(a, b); }
  static double negate(double a) noexcept { return -a; }

  bool unresolved = false;

 private:
  const VariableTable& values_;
  std::string key_;  // reused, so a lookup allocates at most once per evaluation
};

}  // namespace

double detail::convertLiteral(std::string_view literal) {
  double value;
  if (convertQuickly(literal, value)) return value;
  return std::stod(std::string(literal));
}

Evaluation EvaluateExpression(std::string_view text, const VariableTable& values) {
  EvaluatingSink sink(values);
  detail::Parser<EvaluatingSink> parser(text, sink);
  const double v = parser.parse();
  return {v, sink.unresolved};
}

double EvaluateExpression(std::string_view text, const VariableTable& values, bool& unresolved) {
  const Evaluation e = EvaluateExpression(text, values);
  if (e.unresolved) unresolved = true;
  return e.value;
}

}  // namespace modelyne::core::sim::parametric
