#pragma once
// Random expression texts for tests and benchmarks, from a seeded engine so
// that every run sees the same texts.

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace modelyne::test {

struct ExpressionShape {
  int maxDepth = 4;
  bool zeroDivisors = true;      // allow divisors that may be exactly zero
  bool signBeforePower = true;   // allow "-a^b" (a sign directly before a power)
  std::vector<std::string> names{"a", "b", "c", "d", "e"};
};

class ExpressionGenerator {
 public:
  explicit ExpressionGenerator(std::uint64_t seed, ExpressionShape shape = {})
      : rng_(seed), shape_(std::move(shape)) {}

  std::string next() { return expression(shape_.maxDepth); }

 private:
  int pick(int n) { return std::uniform_int_distribution<int>(0, n - 1)(rng_); }

  std::string literal() {
    switch (pick(4)) {
      case 0: return std::to_string(1 + pick(9));
      case 1: return std::to_string(pick(100)) + "." + std::to_string(pick(1000));
      case 2: return std::to_string(1 + pick(9)) + "e" + std::to_string(pick(3) - 1);
      default: return "0." + std::to_string(1 + pick(99));
    }
  }

  std::string operand(int depth) {
    const int k = pick(depth > 0 ? 4 : 2);
    if (k == 0) return literal();
    if (k == 1) return shape_.names[static_cast<std::size_t>(pick(static_cast<int>(shape_.names.size())))];
    if (k == 2) return "(" + expression(depth - 1) + ")";
    return shape_.signBeforePower ? "-" + operand(depth - 1) : "-(" + expression(depth - 1) + ")";
  }

  std::string power(int depth) {
    if (depth <= 0 || pick(5) != 0) return operand(depth);
    std::string base = operand(depth - 1);
    if (!shape_.signBeforePower && base[0] == '-') base = "(" + base + ")";
    // Small exponents keep values finite most of the time.
    const std::string exponent = pick(2) == 0 ? std::to_string(pick(4)) : "(" + operand(0) + ")";
    return base + "^" + exponent;
  }

  std::string term(int depth) {
    std::string s = power(depth);
    for (int i = pick(3); i > 0; --i) {
      if (pick(2) == 0) {
        s += " * " + power(depth - 1);
      } else if (shape_.zeroDivisors) {
        s += " / " + power(depth - 1);
      } else {
        s += " / ((" + power(depth - 1) + ") ^ 2 + 1)";
      }
    }
    return s;
  }

  std::string expression(int depth) {
    std::string s = term(depth);
    for (int i = pick(3); i > 0; --i) s += (pick(2) == 0 ? " + " : " - ") + term(depth - 1);
    return s;
  }

  std::mt19937_64 rng_;
  ExpressionShape shape_;
};

}  // namespace modelyne::test
