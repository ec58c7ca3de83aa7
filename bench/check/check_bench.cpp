// Validation and assessment of synthetic diagrams of 1,000 / 10,000 /
// 100,000 nodes for every diagram kind (see check_diagrams.h). Counters:
// elements (nodes + edges), findings, and ms_per_100k_elements, the figure
// the goal is stated in (at most 20 ms per 100,000 elements). The baseline
// "IdIndexFloor" is the least any id-based checker pays: an unordered_map
// of node ids and the lookup of both ends of every edge.
#include <benchmark/benchmark.h>

#include <map>
#include <memory>
#include <string>
#include <unordered_map>

#include "check/assessment.h"
#include "check/validate.h"
#include "check_diagrams.h"

using namespace modelyne;

namespace {

const bench::CheckDiagram& sample(core::DiagramKind kind, std::size_t n) {
  static std::map<std::pair<int, std::size_t>, std::unique_ptr<bench::CheckDiagram>> cache;
  auto& slot = cache[{static_cast<int>(kind), n}];
  if (!slot) slot = std::make_unique<bench::CheckDiagram>(bench::checkDiagram(kind, n));
  return *slot;
}

void setCounters(benchmark::State& state, const bench::CheckDiagram& d, std::size_t findings) {
  const double elements = static_cast<double>(d.nodes.size() + d.edges.size());
  state.counters["elements"] = elements;
  state.counters["findings"] = static_cast<double>(findings);
  state.counters["ms_per_100k_elements"] =
      benchmark::Counter(elements / 1e5 * static_cast<double>(state.iterations()),
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void BM_Validate(benchmark::State& state) {
  const auto kind = static_cast<core::DiagramKind>(state.range(0));
  const auto& d = sample(kind, static_cast<std::size_t>(state.range(1)));
  state.SetLabel(std::string(core::diagramKindKey(kind)));
  std::vector<std::string> findings;
  for (auto _ : state) {
    findings.clear();
    check::validateDiagram(d.nodes, d.edges, kind, findings);
    benchmark::DoNotOptimize(findings.data());
  }
  setCounters(state, d, findings.size());
}

void BM_Assess(benchmark::State& state) {
  const auto kind = static_cast<core::DiagramKind>(state.range(0));
  const auto& d = sample(kind, static_cast<std::size_t>(state.range(1)));
  state.SetLabel(std::string(core::diagramKindKey(kind)));
  std::size_t size = 0;
  for (auto _ : state) {
    const std::string report = check::formatAssessment(check::computeAssessment(d.nodes, d.edges));
    size = report.size();
    benchmark::DoNotOptimize(report.data());
  }
  setCounters(state, d, size > 0 ? 1 : 0);
}

void BM_IdIndexFloor(benchmark::State& state) {
  const auto kind = static_cast<core::DiagramKind>(state.range(0));
  const auto& d = sample(kind, static_cast<std::size_t>(state.range(1)));
  state.SetLabel(std::string(core::diagramKindKey(kind)));
  for (auto _ : state) {
    std::unordered_map<std::string_view, std::size_t> ids;
    ids.reserve(d.nodes.size());
    for (std::size_t i = 0; i < d.nodes.size(); ++i) ids.emplace(d.nodes[i].id, i);
    std::size_t resolved = 0;
    for (const core::Edge& e : d.edges) resolved += ids.count(e.source) + ids.count(e.target);
    benchmark::DoNotOptimize(resolved);
  }
  setCounters(state, d, 0);
}

void allKinds(benchmark::internal::Benchmark* b) {
  for (int kind = 0; kind < core::kDiagramKindCount; ++kind)
    for (const long n : {1000L, 10000L, 100000L}) b->Args({kind, n});
}

BENCHMARK(BM_Validate)->Apply(allKinds)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Assess)->Apply(allKinds)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_IdIndexFloor)->Args({0, 1000})->Args({0, 10000})->Args({0, 100000})->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
