// The expression language: values, precedence, the deliberate rules
// (zero divisor, sign before "^", unknown names), the four syntax errors
// and the nesting limit, with the place of the fault.

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>
#include <string>

#include "sim/compiled_expression.h"
#include "sim/expression.h"

namespace {

using modelyne::core::sim::parametric::CompiledExpression;
using modelyne::core::sim::parametric::EvaluateExpression;
using modelyne::core::sim::parametric::kMaxNestingDepth;
using modelyne::core::sim::parametric::ParseError;
using modelyne::core::sim::parametric::VariableTable;

const VariableTable kTable{{"x", 2.0}, {"y", 3.0}, {"mass", 1500.0}, {"_a1", 0.5}, {"zero", 0.0}};

// Expression, expected value (exact), whether a name is unresolved.
struct ValueCase {
  const char* text;
  double value;
  bool unresolved;
};

const ValueCase kValueCases[] = {
    // precedence and associativity
    {"1 + 2 * 3", 7.0, false},
    {"(1 + 2) * 3", 9.0, false},
    {"2^3^2", 512.0, false},
    {"10 - 4 - 3", 3.0, false},
    {"64 / 4 / 2", 8.0, false},
    {"2 * 3 ^ 2", 18.0, false},
    // the zero divisor makes the term 0.0 and parsing goes on
    {"8 / 0 + 1", 1.0, false},
    {"8 / 0 * 5 + 2", 2.0, false},
    {"8 / zero", 0.0, false},
    {"8 / (x - 2) - 1", -1.0, false},
    {"8 / -0", 0.0, false},
    // signs: a run of pluses is dropped, the sign binds tighter than "^"
    {"-2^2", 4.0, false},
    {"2^-1", 0.5, false},
    {"+++5", 5.0, false},
    {"+ + 5", 5.0, false},
    {"--3", 3.0, false},
    {"-+-+-3", -3.0, false},
    {"-x^2", 4.0, false},
    {"-(x^2)", -4.0, false},
    {"3 - -2", 5.0, false},
    // number literals
    {"1.5e3", 1500.0, false},
    {"1.5E+3", 1500.0, false},
    {"25e-1", 2.5, false},
    {".5", 0.5, false},
    {"5.", 5.0, false},
    {"1e+", 1.0, false},  // a marker with no digits after its sign: the conversion reads "1"
    {"0.1 + 0.2", 0.30000000000000004, false},
    {"123456789012345678901234567890", 123456789012345678901234567890.0, false},
    {"0.000000000000000000000000001", 1e-27, false},
    // names: exact, case-sensitive; unknown ones count as 0.0
    {"x * y + mass", 1506.0, false},
    {"_a1 * 4", 2.0, false},
    {"X + 1", 1.0, true},
    {"Mass", 0.0, true},
    {"x * unknown + y", 3.0, true},
    // white space of every kind between tokens
    {"\t1\n+\r2\v*\f3 ", 7.0, false},
};

TEST(EvaluateExpression, ComputesTheGrammar) {
  for (const auto& c : kValueCases) {
    SCOPED_TRACE(c.text);
    const auto r = EvaluateExpression(c.text, kTable);
    EXPECT_EQ(r.value, c.value);
    EXPECT_EQ(r.unresolved, c.unresolved);
    bool flag = false;
    EXPECT_EQ(EvaluateExpression(c.text, kTable, flag), c.value);
    EXPECT_EQ(flag, c.unresolved);
  }
}

TEST(EvaluateExpression, PowerFollowsTheStandardFunction) {
  EXPECT_TRUE(std::isnan(EvaluateExpression("(-8)^(1/3)", kTable).value));
  EXPECT_EQ(EvaluateExpression("0^0", kTable).value, 1.0);
  EXPECT_EQ(EvaluateExpression("10^400", kTable).value, HUGE_VAL);
}

// Expression, message, offset of the fault.
struct ErrorCase {
  const char* text;
  const char* message;
  std::size_t position;
};

const ErrorCase kErrorCases[] = {
    {"1 2", "trailing input", 2},
    {"(1 + 2", "missing ')'", 6},
    {"(1 + 2 3)", "missing ')'", 7},
    {"1 +", "unexpected end", 3},
    {"2 ^", "unexpected end", 3},
    {"", "unexpected end", 0},
    {"   ", "unexpected end", 3},
    {"-", "unexpected end", 1},
    {"#", "unexpected character", 0},
    {"1 + #", "unexpected character", 4},
    {")", "unexpected character", 0},
    {"1 #", "trailing input", 2},
    {"1)", "trailing input", 1},
    {"x y", "trailing input", 2},
    {"1.2.3", "trailing input", 3},
    {"1e", "trailing input", 1},  // the marker is taken only when a character follows it
    {"1ex", "trailing input", 2},
    {"0x10", "trailing input", 1},
    {"\xC3\xA9", "unexpected character", 0},
    {"2 ** 3", "unexpected character", 3},
    {"1 + * 2", "unexpected character", 4},
};

TEST(EvaluateExpression, ReportsSyntaxErrors) {
  for (const auto& c : kErrorCases) {
    SCOPED_TRACE(c.text);
    try {
      EvaluateExpression(c.text, kTable);
      ADD_FAILURE() << "no error";
    } catch (const ParseError& e) {
      EXPECT_STREQ(e.what(), c.message);
      EXPECT_EQ(e.position(), c.position);
    }
    try {
      CompiledExpression::compile(c.text);
      ADD_FAILURE() << "compiled without error";
    } catch (const ParseError& e) {
      EXPECT_STREQ(e.what(), c.message);
      EXPECT_EQ(e.position(), c.position);
    }
  }
}

TEST(EvaluateExpression, SyntaxErrorsCarryTheirColumn) {
  try {
    EvaluateExpression("1 + * 2", kTable);
    ADD_FAILURE() << "no error";
  } catch (const ParseError& e) {
    EXPECT_EQ(e.column(), 5u);
  }
  try {
    CompiledExpression::compile("\t(x");
    ADD_FAILURE() << "no error";
  } catch (const ParseError& e) {
    EXPECT_STREQ(e.what(), "missing ')'");
    EXPECT_EQ(e.column(), 4u);
  }
}

TEST(EvaluateExpression, LetsTheLiteralConversionErrorsThrough) {
  EXPECT_THROW(EvaluateExpression(".", kTable), std::invalid_argument);
  EXPECT_THROW(EvaluateExpression("1 + .e5", kTable), std::invalid_argument);
  EXPECT_THROW(EvaluateExpression("1e999", kTable), std::out_of_range);
  EXPECT_THROW(EvaluateExpression("1e-400", kTable), std::out_of_range);
  EXPECT_THROW(CompiledExpression::compile("1e999"), std::out_of_range);
}

TEST(EvaluateExpression, RefusesAbsurdNestingWithoutExhaustingTheStack) {
  const int deep = kMaxNestingDepth;
  const std::string ok = std::string(deep, '(') + "1" + std::string(deep, ')');
  EXPECT_EQ(EvaluateExpression(ok, kTable).value, 1.0);

  const std::string tooDeep = std::string(100000, '(') + "1" + std::string(100000, ')');
  try {
    EvaluateExpression(tooDeep, kTable);
    ADD_FAILURE() << "no error";
  } catch (const ParseError& e) {
    EXPECT_STREQ(e.what(), "nesting too deep");
    EXPECT_EQ(e.position(), static_cast<std::size_t>(deep));
  }
  std::string tower = "2";
  for (int i = 0; i < 100000; ++i) tower += "^1";
  for (int compiled = 0; compiled < 2; ++compiled) {
    try {
      if (compiled) CompiledExpression::compile(tower);
      else EvaluateExpression(tower, kTable);
      ADD_FAILURE() << "no error";
    } catch (const ParseError& e) {
      EXPECT_STREQ(e.what(), "nesting too deep");
      EXPECT_EQ(e.column(), 2u * kMaxNestingDepth + 2);  // the "^" after 200 of them
    }
  }

  // A long run of signs is no nesting at all.
  EXPECT_EQ(EvaluateExpression(std::string(100001, '-') + "4", kTable).value, -4.0);
}

}  // namespace
