// Our values against muParser's on random expressions that avoid the
// deliberate differences (no zero divisor, no sign directly before "^").

#include <gtest/gtest.h>
#include <muParser.h>

#include <cmath>
#include <string>

#include "sim/expression.h"
#include "sim/random_expressions.h"

namespace {

using modelyne::core::sim::parametric::EvaluateExpression;
using modelyne::core::sim::parametric::VariableTable;

bool agree(double ours, double theirs) {
  if (std::isnan(ours) || std::isnan(theirs)) return std::isnan(ours) && std::isnan(theirs);
  if (std::isinf(ours) || std::isinf(theirs)) return ours == theirs;
  // muParser turns small integer powers into products, which may round in
  // the last bits differently from the power function.
  return std::abs(ours - theirs) <= 1e-9 * std::max(1.0, std::abs(theirs));
}

TEST(MuParserDifferential, AgreesOnRandomExpressions) {
  double a = 0, b = 0, c = 0, d = 0, e = 0;
  mu::Parser parser;
  parser.DefineVar("a", &a);
  parser.DefineVar("b", &b);
  parser.DefineVar("c", &c);
  parser.DefineVar("d", &d);
  parser.DefineVar("e", &e);
  modelyne::test::ExpressionGenerator gen(7, {4, false, false, {"a", "b", "c", "d", "e"}});
  int compared = 0;
  for (int i = 0; i < 5000; ++i) {
    const std::string text = gen.next();
    a = 0.75 + (i % 5);
    b = 1.5;
    c = 2.0 + i * 1e-3;
    d = 0.3;
    e = 3.25;
    const VariableTable table{{"a", a}, {"b", b}, {"c", c}, {"d", d}, {"e", e}};
    const auto ours = EvaluateExpression(text, table);
    ASSERT_FALSE(ours.unresolved) << text;
    parser.SetExpr(text);
    const double theirs = parser.Eval();
    ASSERT_TRUE(agree(ours.value, theirs)) << text << ": " << ours.value << " vs " << theirs;
    ++compared;
  }
  EXPECT_EQ(compared, 5000);
}

TEST(MuParserDifferential, DiffersWhereWeMeanTo) {
  // The two deliberate differences, so that the generator's restrictions
  // stay justified.
  mu::Parser parser;
  parser.SetExpr("-2^2");
  EXPECT_EQ(parser.Eval(), -4.0);
  EXPECT_EQ(EvaluateExpression("-2^2", {}).value, 4.0);
  parser.SetExpr("1/0");
  EXPECT_TRUE(std::isinf(parser.Eval()));
  EXPECT_EQ(EvaluateExpression("1/0", {}).value, 0.0);
}

}  // namespace
