// Propagation over parametric diagrams: the stopping-distance sample, the
// ways names reach values, cycles, reported problems and the trace.

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "sim/diagram_builder.h"
#include "sim/propagation.h"
#include "io/diagram_reader.h"

namespace {

using modelyne::core::EdgeType;
using modelyne::core::ShapeType;
using namespace modelyne::core::sim::parametric;
using modelyne::test::Diagram;

PropagationResult run(const Diagram& d) { return propagate(d.nodes, d.edges); }

double valueOf(const PropagationResult& r, const std::string& name) {
  const ValueEntry* v = r.find(name);
  if (v == nullptr) {
    ADD_FAILURE() << "no value named " << name;
    return std::nan("");
  }
  return v->value;
}

std::vector<std::string> errorTexts(const PropagationResult& r) {
  std::vector<std::string> out;
  for (const auto& e : r.errors) out.push_back(e.nodeId + ": " + e.message);
  return out;
}

// Expected figures worked out by hand: v = 100 / 3.6, a = 0.7 * 9.81,
// reaction = v * 1.2, braking = v^2 / (2 a), stopping = their sum.
void expectStoppingDistance(const PropagationResult& r) {
  EXPECT_TRUE(r.converged);
  EXPECT_EQ(r.sweeps, 1u);
  EXPECT_TRUE(r.errors.empty()) << ::testing::PrintToString(errorTexts(r));
  EXPECT_TRUE(r.unresolved.empty());
  EXPECT_DOUBLE_EQ(valueOf(r, "v"), 27.77777777777778);
  EXPECT_DOUBLE_EQ(valueOf(r, "decel"), 6.867);
  EXPECT_DOUBLE_EQ(valueOf(r, "reactionDistance"), 33.333333333333336);
  EXPECT_DOUBLE_EQ(valueOf(r, "brakingDistance"), 56.18209831597532);
  EXPECT_DOUBLE_EQ(valueOf(r, "stoppingDistance"), 89.51543164930865);

  // Value properties in drawing order, each with what produced it.
  std::vector<std::string> names;
  for (const auto& v : r.values) names.push_back(v.name);
  EXPECT_EQ(names, (std::vector<std::string>{"speed", "friction", "gravity", "reactionTime", "v", "decel",
                                             "reactionDistance", "brakingDistance", "stoppingDistance"}));
  const ValueEntry* stopping = r.find("stoppingDistance");
  EXPECT_EQ(stopping->equationText, "total: s = d1 + d2");
  EXPECT_EQ(stopping->nodeId, "vp_stoppingDist");
  EXPECT_FALSE(stopping->given);
  const ValueEntry* speed = r.find("speed");
  EXPECT_TRUE(speed->given);
  EXPECT_EQ(speed->equation, -1);
  EXPECT_EQ(speed->value, 100.0);

  // Given values are read first (with their source), then every equation is
  // evaluated after the ones it reads from, then the pass ends.
  ASSERT_GE(r.trace.size(), 4u);
  const std::pair<const char*, std::uint32_t> reads[] = {
      {"speed", 0}, {"friction", 1}, {"gravity", 2}, {"reactionTime", 2}};
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(r.trace[i].code, TraceCode::valueRead);
    EXPECT_EQ(r.trace[i].name, reads[i].first);
    EXPECT_EQ(r.trace[i].detail, reads[i].second);
  }
  std::vector<std::string> evaluated;
  for (std::size_t i = 0; i < r.trace.size(); ++i) {
    EXPECT_EQ(r.trace[i].sequence, i + 1);
    if (r.trace[i].code == TraceCode::equationEvaluated) evaluated.push_back(r.trace[i].name);
  }
  EXPECT_EQ(evaluated.size(), 5u);
  const auto position = [&](const std::string& n) {
    return std::find(evaluated.begin(), evaluated.end(), n) - evaluated.begin();
  };
  EXPECT_LT(position("v"), position("reactionDistance"));
  EXPECT_LT(position("decel"), position("brakingDistance"));
  EXPECT_LT(position("brakingDistance"), position("stoppingDistance"));
  EXPECT_LT(position("reactionDistance"), position("stoppingDistance"));
  EXPECT_EQ(r.trace.back().code, TraceCode::converged);
  EXPECT_EQ(r.trace.back().name, "");
}

TEST(Propagation, StoppingDistanceBuiltInCode) { expectStoppingDistance(run(modelyne::test::stoppingDistanceDiagram())); }

TEST(Propagation, StoppingDistanceSampleFile) {
  std::ifstream in(MODELYNE_SOURCE_DIR "/samples/par-stopping-distance.xml", std::ios::binary);
  ASSERT_TRUE(in) << "sample missing";
  std::stringstream text;
  text << in.rdbuf();
  auto content = modelyne::io::parseDiagram(text.str());
  ASSERT_TRUE(content.has_value());
  expectStoppingDistance(propagate(content->nodes, content->edges));
}

TEST(Propagation, ResolvesNamesWithoutParameters) {
  // Names with no parameter mean value properties of that name; other names
  // are values of the constraint's own, usable as intermediates. A property
  // typed by a constraint block takes the block's equations; a constraint
  // with no equation property reads the "{...}" part of its label.
  Diagram d;
  d.value("m", "mass = 1200 kg")
      .value("acc", "acceleration", {{"value", "2.5"}})
      .value("f", "force : N")
      .value("p", "power")
      .value("spd", "speed = 10")
      .node("def", ShapeType::sysmlConstraintBlock, 0, 0, 100, 60, "Newton",
            {{"equation", "k = mass * acceleration\nforce = k"}})
      .node("use", ShapeType::sysmlConstraintProperty, 200, 0, 100, 60, "newton : Newton")
      .node("pw", ShapeType::sysmlConstraintUsage, 400, 0, 100, 60, "powerLaw {power = force * speed}");
  const auto r = run(d);
  EXPECT_TRUE(r.errors.empty()) << ::testing::PrintToString(errorTexts(r));
  EXPECT_EQ(valueOf(r, "force"), 3000.0);
  EXPECT_EQ(valueOf(r, "power"), 30000.0);
  EXPECT_EQ(valueOf(r, "newton.k"), 3000.0);
  EXPECT_EQ(r.find("power")->equationText, "powerLaw: power = force * speed");
  // The block serves as a definition only: its equations run once, for "newton".
  EXPECT_EQ(r.equations.size(), 3u);
  EXPECT_EQ(r.find("Newton.k"), nullptr);
}

TEST(Propagation, BindsParametersByEdgeBeforeGeometry) {
  // "x" sits on the border of c1 but is joined to c2 by a line, so it is c2's.
  Diagram d;
  d.value("vin", "input = 4")
      .value("vout", "output")
      .node("c1", ShapeType::sysmlConstraintProperty, 0, 0, 100, 60, "first", {{"equation", "y = x + 100"}})
      .node("c2", ShapeType::sysmlConstraintProperty, 300, 0, 100, 60, "second", {{"equation", "y = x * 2"}})
      .node("px", ShapeType::sysmlConstraintParameter, 90, 20, 20, 20, "x")
      .node("py", ShapeType::sysmlConstraintParameter, 390, 20, 20, 20, "y")
      .edge("own", "c2", "px", EdgeType::association)
      .bind("px", "vin")
      .bind("vout", "py");
  const auto r = run(d);
  EXPECT_EQ(valueOf(r, "output"), 8.0);
  // c1's own "x" has no value: it is reported and counts as 0.
  EXPECT_EQ(valueOf(r, "first.y"), 100.0);
  EXPECT_EQ(r.unresolved, (std::vector<std::string>{"first.x"}));
}

TEST(Propagation, IteratesCyclesUntilTheySettle) {
  Diagram d;
  d.value("r", "root = 1")  // start value of Newton's iteration for the square root of 2
      .node("newton", ShapeType::sysmlConstraintProperty, 0, 0, 100, 60, "sqrt2",
            {{"equation", "root = (root + 2 / root) / 2"}})
      .node("pair", ShapeType::sysmlConstraintProperty, 300, 0, 100, 60, "pair",
            {{"equation", "x = y / 2 + 1\ny = x / 2"}});
  const auto r = run(d);
  EXPECT_TRUE(r.converged);
  EXPECT_NEAR(valueOf(r, "root"), std::sqrt(2.0), 1e-12);
  EXPECT_NEAR(valueOf(r, "pair.x"), 4.0 / 3.0, 1e-8);
  EXPECT_NEAR(valueOf(r, "pair.y"), 2.0 / 3.0, 1e-8);
  EXPECT_GT(r.sweeps, 5u);
  EXPECT_LT(r.sweeps, kIterationLimit);
  // One convergence event per cycle, change within the tolerance; the
  // cycle's values without a value start at 0.0.
  int cycles = 0, starts = 0;
  for (const auto& e : r.trace) {
    if (e.code == TraceCode::converged && !e.name.empty()) {
      ++cycles;
      EXPECT_LE(e.before, kTolerance);
      EXPECT_EQ(e.after, kTolerance);
    }
    if (e.code == TraceCode::valueRead && e.detail == 3) ++starts;
  }
  EXPECT_EQ(cycles, 2);
  EXPECT_EQ(starts, 2);  // pair.x and pair.y; root has its given start value
  EXPECT_TRUE(r.unresolved.empty());
}

TEST(Propagation, ReportsACycleThatDoesNotSettle) {
  Diagram d;
  d.value("n", "n = 0").node("c", ShapeType::sysmlConstraintProperty, 0, 0, 100, 60, "counter", {{"equation", "n = n + 1"}});
  const auto r = run(d);
  EXPECT_FALSE(r.converged);
  EXPECT_EQ(r.sweeps, kIterationLimit);
  EXPECT_EQ(valueOf(r, "n"), 100.0);
  ASSERT_EQ(r.errors.size(), 1u);
  EXPECT_EQ(r.errors[0].nodeId, "c");
  EXPECT_EQ(r.errors[0].message, "The cycle through 'n' did not settle within 100 sweeps (last change 1.000000).");
  const auto& last = r.trace[r.trace.size() - 2];
  EXPECT_EQ(last.code, TraceCode::converged);
  EXPECT_EQ(last.name, "n");
  EXPECT_EQ(last.before, 1.0);
  EXPECT_EQ(last.detail, kIterationLimit);
}

TEST(Propagation, ReportsProblemsWithoutStopping) {
  Diagram d;
  d.value("a", "a = 2")
      .value("bad", "b", {{"value", "heavy"}})
      .value("dup", "a2 = 5")
      .node("blk", ShapeType::sysmlBlock, 2000, 2000, 50, 50, "Car")
      .node("c", ShapeType::sysmlConstraintProperty, 0, 0, 100, 60, "calc",
            {{"equation", "x = a * (2 + \ny = a +* 1\nz = ghost + a\nx = 1\nno equals here\n2 = a\nw = 1e999"}})
      .node("lonely", ShapeType::sysmlConstraintParameter, 5000, 5000, 20, 20, "p")
      .bind("a", "blk");
  const auto r = run(d);
  const std::vector<std::string> expected{
      "blk: Binding connector 'b1' must join value properties and constraint parameters; it is ignored.",
      "bad: Value property 'b' has the value \"heavy\", which is not a number; it is ignored.",
      "lonely: Constraint parameter 'p' belongs to no constraint; draw it on a constraint's border or connect it to one.",
      "c: Constraint 'calc', equation \"x = a * (2 +\": unexpected end at column 13.",
      "c: Constraint 'calc', equation \"y = a +* 1\": unexpected character at column 8.",
      "c: Constraint 'calc', equation \"no equals here\": expected target = expression.",
      "c: Constraint 'calc', equation \"2 = a\": the target '2' is not a name.",
      "c: Constraint 'calc', equation \"w = 1e999\": a number is out of range.",
  };
  EXPECT_EQ(errorTexts(r), expected);
  // Equations that do not parse also say so in fields: the evaluator's
  // message and the column in the line.
  std::vector<std::string> syntax;
  for (const auto& e : r.errors)
    if (!e.syntaxError.empty()) syntax.push_back(std::to_string(e.column) + " " + e.syntaxError);
  EXPECT_EQ(syntax, (std::vector<std::string>{"13 unexpected end", "8 unexpected character",
                                              "15 expected target = expression", "1 the target is not a name",
                                              "0 number out of range"}));
  // "x = 1" is the first equation for x that parses, so it stands.
  EXPECT_EQ(valueOf(r, "calc.x"), 1.0);
  EXPECT_EQ(valueOf(r, "calc.z"), 2.0);
  EXPECT_EQ(r.unresolved, (std::vector<std::string>{"calc.ghost"}));
  EXPECT_TRUE(r.converged);

  int parseErrors = 0, unresolved = 0;
  for (const auto& e : r.trace) {
    if (e.code == TraceCode::parseError) ++parseErrors;
    if (e.code == TraceCode::unresolvedName) {
      ++unresolved;
      EXPECT_EQ(e.name, "calc.ghost");
    }
  }
  EXPECT_EQ(parseErrors, 5);
  EXPECT_EQ(unresolved, 1);
  EXPECT_EQ(r.trace[2].code, TraceCode::parseError);
  EXPECT_EQ(r.trace[2].name, "x");
  EXPECT_EQ(r.trace[2].detail, 9u);  // offset of the fault within the expression " a * (2 +"
}

TEST(Propagation, RejectsASecondEquationForTheSameValue) {
  Diagram d;
  d.value("t", "total")
      .node("c1", ShapeType::sysmlConstraintProperty, 0, 0, 100, 60, "one", {{"equation", "total = 1"}})
      .node("c2", ShapeType::sysmlConstraintProperty, 300, 0, 100, 60, "two", {{"equation", "total = 2"}});
  const auto r = run(d);
  EXPECT_EQ(valueOf(r, "total"), 1.0);
  ASSERT_EQ(r.errors.size(), 1u);
  EXPECT_EQ(r.errors[0].message,
            "Constraint 'two', equation \"total = 2\": 'total' is already computed by \"total = 1\" of 'one'; "
            "this equation is ignored.");
  EXPECT_FALSE(r.equations[1].valid);
}

TEST(Propagation, EvaluatesALongChainInReverseDrawingOrder) {
  // x0 = 1, x(i) = x(i-1) + 1, drawn last-first: the order comes from the
  // dependencies, and the chain is walked without recursion.
  constexpr int kLength = 10000;
  Diagram d;
  for (int i = 0; i <= kLength; ++i) d.value("v" + std::to_string(i), "x" + std::to_string(i));
  d.nodes.front().text = "x0 = 1";
  for (int i = kLength; i >= 1; --i)
    d.node("c" + std::to_string(i), ShapeType::sysmlConstraintProperty, 0, 0, 0, 0, "c" + std::to_string(i),
           {{"equation", "x" + std::to_string(i) + " = x" + std::to_string(i - 1) + " + 1"}});
  const auto r = run(d);
  EXPECT_TRUE(r.converged);
  EXPECT_EQ(r.sweeps, 1u);
  EXPECT_EQ(valueOf(r, "x10000"), 10001.0);
  EXPECT_TRUE(r.unresolved.empty());
}

TEST(Propagation, BoundValuePropertiesShareOneValue) {
  Diagram d;
  d.value("v1", "speed = 10")
      .value("v2", "velocity")
      .value("v3", "speedCopy = 12")
      .value("out", "double")
      .node("c", ShapeType::sysmlConstraintProperty, 0, 0, 100, 60, "twice", {{"equation", "double = 2 * velocity"}})
      .bind("v1", "v2")
      .bind("v2", "v3");
  const auto r = run(d);
  // velocity is speed: the first of the bound properties names the value.
  EXPECT_EQ(valueOf(r, "double"), 20.0);
  EXPECT_EQ(r.find("speed")->valueNodeIds, (std::vector<std::string>{"v1", "v2", "v3"}));
  ASSERT_EQ(r.errors.size(), 1u);
  EXPECT_EQ(r.errors[0].nodeId, "v3");
  EXPECT_EQ(r.errors[0].message,
            "Value property 'speedCopy' is bound to 'speed' but gives another value; the value of 'speed' is used.");
}

}  // namespace
