// The compiled form gives the same bits as direct evaluation, on chosen and
// on random expressions, with the same unresolved flag.

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "sim/compiled_expression.h"
#include "sim/expression.h"
#include "sim/random_expressions.h"

namespace {

using modelyne::core::sim::parametric::CompiledExpression;
using modelyne::core::sim::parametric::EvaluateExpression;
using modelyne::core::sim::parametric::VariableTable;

// Identical bits; a NaN's sign and payload depend on which operand the
// processor saw first, which the language leaves to the compiler.
bool sameBits(double a, double b) {
  if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
  return std::memcmp(&a, &b, sizeof a) == 0;
}

TEST(CompiledExpression, MatchesDirectEvaluationBitForBit) {
  const char* texts[] = {"8 / 0 + 1", "-2^2", "2^-1", "x / (y - 3) + 1", "-x^2 * -y",
                         "1 - x / zero", "0.1 + 0.2 * x", "2 * (x + y) / 3", "x^y^0.5", "-0 * x",
                         "missing + x", "(x)", "3 - (4 - (5 - x))"};
  const VariableTable table{{"x", 1.25}, {"y", 3.0}, {"zero", 0.0}};
  for (const char* t : texts) {
    SCOPED_TRACE(t);
    const auto direct = EvaluateExpression(t, table);
    const auto compiled = CompiledExpression::compile(t).evaluate(table);
    EXPECT_TRUE(sameBits(direct.value, compiled.value)) << direct.value << " vs " << compiled.value;
    EXPECT_EQ(direct.unresolved, compiled.unresolved);
  }
}

TEST(CompiledExpression, MatchesDirectEvaluationOnRandomExpressions) {
  modelyne::test::ExpressionGenerator gen(20261122, {5, true, true, {"a", "b", "c", "d", "nope"}});
  std::vector<double> slots;
  for (int i = 0; i < 3000; ++i) {
    const std::string text = gen.next();
    SCOPED_TRACE(text);
    const VariableTable table{{"a", 0.5 + i % 7}, {"b", -1.5}, {"c", 0.0}, {"d", 1e-3 * i}};
    const auto direct = EvaluateExpression(text, table);
    const auto program = CompiledExpression::compile(text);
    const bool missing = program.bind(table, slots);
    const double compiled = program.evaluate(slots);
    ASSERT_TRUE(sameBits(direct.value, compiled)) << direct.value << " vs " << compiled;
    ASSERT_EQ(direct.unresolved, missing);
  }
}

TEST(CompiledExpression, ListsItsNamesAndRunsWithChangingValues) {
  const auto program = CompiledExpression::compile("v^2 / (2 * a) + v * t - v");
  ASSERT_EQ(program.variables(), (std::vector<std::string>{"v", "a", "t"}));
  EXPECT_EQ(program.slotOf("t"), 2);
  EXPECT_EQ(program.slotOf("T"), -1);
  const double first[] = {20.0, 5.0, 1.0};
  const double second[] = {10.0, 0.0, 2.0};  // the zero divisor gives 0.0 for that term
  EXPECT_EQ(program.evaluate(first), 40.0 + 20.0 - 20.0);
  EXPECT_EQ(program.evaluate(second), 0.0 + 20.0 - 10.0);
  // Constants fold, loads fuse into operations.
  EXPECT_EQ(CompiledExpression::compile("2 * 3 + 4 ^ 0.5").size(), 1u);
  EXPECT_EQ(CompiledExpression::compile("x * 2").size(), 1u);
  EXPECT_EQ(CompiledExpression::compile("a * b + c / (d + 1)").size(), 4u);
}

TEST(CompiledExpression, HandlesDeepStacks) {
  // Right-nested parentheses keep every left operand on the stack.
  std::string text;
  for (int i = 0; i < 150; ++i) text += "x * x - (";
  text += "x";
  text += std::string(150, ')');
  const VariableTable table{{"x", 1.0}};
  EXPECT_EQ(CompiledExpression::compile(text).evaluate(table).value, EvaluateExpression(text, table).value);
}

}  // namespace
