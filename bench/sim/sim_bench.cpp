// (a) one-shot parse and evaluation of 100,000 distinct expressions,
// (b) one expression evaluated 1,000,000 times with changing values,
// (c) propagation along a chain of equations; muParser alongside for (a)
// and (b).

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "sim/compiled_expression.h"
#include "sim/diagram_builder.h"
#include "sim/expression.h"
#include "sim/propagation.h"
#include "sim/random_expressions.h"

#ifdef MODELYNE_BENCH_MUPARSER
#include <muParser.h>
#endif

namespace {

using namespace modelyne::core::sim::parametric;

constexpr int kOneShotCount = 100000;
constexpr int kRepeatCount = 1000000;

const std::vector<std::string>& oneShotTexts() {
  static const std::vector<std::string> texts = [] {
    modelyne::test::ExpressionGenerator gen(42, {3, true, false, {"a", "b", "c", "d", "e"}});
    std::vector<std::string> out;
    out.reserve(kOneShotCount);
    for (int i = 0; i < kOneShotCount; ++i) out.push_back(gen.next());
    return out;
  }();
  return texts;
}

// Typical parametric expressions: one without a power, one with.
const char* const kRepeatTexts[] = {
    "a * b + c / (d + 1) - e * 2.5 + (a - c) * 0.5",
    "v^2 / (2 * mu * g) + v * t",
};
const char* const kRepeatNames[][5] = {{"a", "b", "c", "d", "e"}, {"v", "mu", "g", "t", "unused"}};

void setCounters(benchmark::State& state, std::int64_t perIteration) {
  state.SetItemsProcessed(state.iterations() * perIteration);
}

// ---- (a) one shot

void BM_OneShot_Ours(benchmark::State& state) {
  const auto& texts = oneShotTexts();
  const VariableTable table{{"a", 1.25}, {"b", 2.5}, {"c", 0.75}, {"d", 3.0}, {"e", 1.5}};
  for (auto _ : state) {
    double sum = 0.0;
    for (const auto& t : texts) sum += EvaluateExpression(t, table).value;
    benchmark::DoNotOptimize(sum);
  }
  setCounters(state, kOneShotCount);
}
BENCHMARK(BM_OneShot_Ours)->Unit(benchmark::kMillisecond);

#ifdef MODELYNE_BENCH_MUPARSER
void BM_OneShot_MuParser(benchmark::State& state) {
  const auto& texts = oneShotTexts();
  double a = 1.25, b = 2.5, c = 0.75, d = 3.0, e = 1.5;
  mu::Parser parser;
  parser.DefineVar("a", &a);
  parser.DefineVar("b", &b);
  parser.DefineVar("c", &c);
  parser.DefineVar("d", &d);
  parser.DefineVar("e", &e);
  for (auto _ : state) {
    double sum = 0.0;
    for (const auto& t : texts) {
      parser.SetExpr(t);
      sum += parser.Eval();
    }
    benchmark::DoNotOptimize(sum);
  }
  setCounters(state, kOneShotCount);
}
BENCHMARK(BM_OneShot_MuParser)->Unit(benchmark::kMillisecond);
#endif

// ---- (b) repeated evaluation with changing values

void BM_Repeat_OursCompiled(benchmark::State& state) {
  const auto program = CompiledExpression::compile(kRepeatTexts[state.range(0)]);
  std::vector<double> slots(5, 1.5);
  const int first = program.slotOf(kRepeatNames[state.range(0)][0]);
  for (auto _ : state) {
    double sum = 0.0;
    for (int i = 0; i < kRepeatCount; ++i) {
      slots[static_cast<std::size_t>(first)] = 1.0 + i * 1e-6;
      sum += program.evaluate(slots);
    }
    benchmark::DoNotOptimize(sum);
  }
  setCounters(state, kRepeatCount);
}
BENCHMARK(BM_Repeat_OursCompiled)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void BM_Repeat_OursDirect(benchmark::State& state) {
  const std::string text = kRepeatTexts[state.range(0)];
  VariableTable table;
  for (const char* n : kRepeatNames[state.range(0)]) table[n] = 1.5;
  double& first = table[kRepeatNames[state.range(0)][0]];
  for (auto _ : state) {
    double sum = 0.0;
    for (int i = 0; i < kRepeatCount; ++i) {
      first = 1.0 + i * 1e-6;
      sum += EvaluateExpression(text, table).value;
    }
    benchmark::DoNotOptimize(sum);
  }
  setCounters(state, kRepeatCount);
}
BENCHMARK(BM_Repeat_OursDirect)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

#ifdef MODELYNE_BENCH_MUPARSER
void BM_Repeat_MuParser(benchmark::State& state) {
  double vars[5] = {1.5, 1.5, 1.5, 1.5, 1.5};
  mu::Parser parser;
  for (int i = 0; i < 5; ++i) parser.DefineVar(kRepeatNames[state.range(0)][i], &vars[i]);
  parser.SetExpr(kRepeatTexts[state.range(0)]);
  parser.Eval();  // compiles to its byte code
  for (auto _ : state) {
    double sum = 0.0;
    for (int i = 0; i < kRepeatCount; ++i) {
      vars[0] = 1.0 + i * 1e-6;
      sum += parser.Eval();
    }
    benchmark::DoNotOptimize(sum);
  }
  setCounters(state, kRepeatCount);
}
BENCHMARK(BM_Repeat_MuParser)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);
#endif

// ---- (c) propagation along a chain: x(i) = x(i-1) * 0.5 + 1, drawn last-first

void BM_PropagateChain(benchmark::State& state) {
  const auto length = static_cast<int>(state.range(0));
  modelyne::test::Diagram d;
  for (int i = 0; i <= length; ++i) d.value("v" + std::to_string(i), "x" + std::to_string(i));
  d.nodes.front().text = "x0 = 1";
  for (int i = length; i >= 1; --i)
    d.node("c" + std::to_string(i), modelyne::core::ShapeType::sysmlConstraintProperty, 0, 0, 0, 0,
           "c" + std::to_string(i),
           {{"equation", "x" + std::to_string(i) + " = x" + std::to_string(i - 1) + " * 0.5 + 1"}});
  for (auto _ : state) {
    auto r = propagate(d.nodes, d.edges);
    benchmark::DoNotOptimize(r);
  }
  state.SetComplexityN(length);
  setCounters(state, length);
}
BENCHMARK(BM_PropagateChain)->RangeMultiplier(10)->Range(1000, 100000)->Unit(benchmark::kMillisecond)->Complexity();

}  // namespace

BENCHMARK_MAIN();
