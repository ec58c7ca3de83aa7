// "x^2" gives the standard library's pow(x, 2) bit for bit in both
// evaluators, although it is mostly computed as x * x: the library's pow
// is not correctly rounded, so the rounded product alone differs from it for
// about one random double in 1,700 (the first cases below are such values).

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "sim/compiled_expression.h"
#include "sim/expression.h"

namespace {

using modelyne::core::sim::parametric::CompiledExpression;
using modelyne::core::sim::parametric::EvaluateExpression;

// The library's pow with an exponent the optimiser cannot see (it would
// otherwise rewrite pow(x, 2.0) as x * x).
double libraryPow(double x) {
  volatile double two = 2.0;
  return std::pow(x, two);
}

bool sameBits(double a, double b) {
  if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
  return std::memcmp(&a, &b, sizeof a) == 0;
}

double fromBits(std::uint64_t u) {
  double d;
  std::memcpy(&d, &u, sizeof d);
  return d;
}

std::vector<double> squareCases() {
  std::vector<double> v = {
      // Where the library's pow and the rounded product x * x disagree.
      0x1.dcb70c55aef45p-197, -0x1.66cb116c5f0a9p-267, -0x1.8d82180a1d7e6p+250, 0x1.72ae83ede4dadp-385,
      -0x1.fc723465e4b17p+290, 0x1.975056402e2f6p+259, 0x1.1b0f7520a0d4p+341,
      // Zeros, subnormals, the edges of the normal range, overflow, non-finite.
      0.0, -0.0, DBL_TRUE_MIN, -DBL_TRUE_MIN, 0x1.8p-1060, DBL_MIN, -DBL_MIN, 0x1p-450, 0x1.fffffffffffffp-451,
      0x1p+500, 0x1.0000000000001p+500, 1e154, 1.3407807929942596e154, 1e200, -1e300, DBL_MAX, -DBL_MAX,
      std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
      std::numeric_limits<double>::quiet_NaN(), -std::numeric_limits<double>::quiet_NaN(),
      // Ordinary values, negatives, values whose square is just below a power of two.
      1.0, -1.0, 2.0, -3.0, 0.1, -0.1, 1.5, 1e-3, 12345.678, 0x1.fffffffffffffp-1, 0x1.6a09e667f3bcdp+0};
  std::mt19937_64 rng(20250101);
  for (int i = 0; i < 200000; ++i) v.push_back(fromBits(rng()));                       // any bit pattern
  for (int i = 0; i < 200000; ++i) v.push_back(1.0 + static_cast<double>(rng() >> 11) * 0x1p-53);  // [1, 2)
  for (int i = 0; i < 20000; ++i) v.push_back(fromBits(rng() & 0x800FFFFFFFFFFFFFu));  // subnormal
  return v;
}

TEST(Power, SquareIsTheLibraryPowBitForBit) {
  const auto direct = CompiledExpression::compile("x^2");
  const auto negated = CompiledExpression::compile("(-x)^2");
  std::size_t mismatches = 0;
  for (const double x : squareCases()) {
    const double expected = libraryPow(x);
    const double one = EvaluateExpression("x^2", {{"x", x}}).value;
    const double two = direct.evaluate(std::vector<double>{x});
    const double three = negated.evaluate(std::vector<double>{x});
    const double four = EvaluateExpression("x ^ (1 + 1)", {{"x", x}}).value;
    if (!sameBits(one, expected) || !sameBits(two, expected) || !sameBits(three, libraryPow(-x)) ||
        !sameBits(four, expected)) {
      if (++mismatches <= 5) ADD_FAILURE() << std::hexfloat << x << ": " << one << " " << two << " " << three;
    }
  }
  EXPECT_EQ(mismatches, 0u);
}

TEST(Power, SquareOfAVariableIsOneInstruction) {
  // Loading x and calling pow would be two.
  EXPECT_EQ(CompiledExpression::compile("x^2").size(), 1u);
  EXPECT_EQ(CompiledExpression::compile("(x + y)^2").size(), 2u);
  EXPECT_EQ(CompiledExpression::compile("3^2").size(), 1u);  // folded to a constant
  EXPECT_EQ(CompiledExpression::compile("3^2").evaluate(std::vector<double>{}), 9.0);
}

}  // namespace
