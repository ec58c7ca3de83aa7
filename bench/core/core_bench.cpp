// Document core at 1,000 / 10,000 / 100,000 nodes (about 1.5 edges per node):
// add, find, property change, reorder, and a 1,000-node delete with its
// edges through one command, its undo and redo. Per-operation figures are
// in the counters (ns_per_op); memory per node in bytes_per_node.
#include <benchmark/benchmark.h>

#include <random>

#include "core/batch_commands.h"
#include "core/commands.h"
#include "synthetic.h"

using namespace modelyne;

namespace {

const core::Document& sample(std::size_t n) {
  static std::map<std::size_t, std::unique_ptr<core::Document>> cache;
  auto& slot = cache[n];
  if (!slot) {
    slot = std::make_unique<core::Document>();
    bench::syntheticDocument(*slot, n);
  }
  return *slot;
}

void copyInto(core::Document& d, const core::Document& from) {
  std::vector<core::Node> nodes = from.nodes();
  std::vector<core::Edge> edges = from.edges();
  d.replaceContent(std::move(nodes), std::move(edges));
}

void BM_AddNodesAndEdges(benchmark::State& state) {
  const auto n = static_cast<std::size_t>(state.range(0));
  const core::Document& src = sample(n);
  for (auto _ : state) {
    state.PauseTiming();
    auto d = std::make_unique<core::Document>();
    std::vector<core::Node> nodes = src.nodes();
    std::vector<core::Edge> edges = src.edges();
    state.ResumeTiming();
    for (auto& node : nodes) d->history().pushAndExecute(std::make_unique<core::CreateNodeCommand>(std::move(node)), *d);
    for (auto& edge : edges) d->history().pushAndExecute(std::make_unique<core::CreateEdgeCommand>(std::move(edge)), *d);
    benchmark::DoNotOptimize(d->nodes().data());
    state.PauseTiming();
    d.reset();
    state.ResumeTiming();
  }
  const double ops = static_cast<double>(src.nodes().size() + src.edges().size());
  state.counters["ns_per_op"] = benchmark::Counter(ops * 1e-9 * static_cast<double>(state.iterations()),
                                                   benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void BM_FindById(benchmark::State& state) {
  const auto n = static_cast<std::size_t>(state.range(0));
  const core::Document& d = sample(n);
  std::mt19937_64 rng(1);
  std::vector<std::string> ids;
  for (int i = 0; i < 4096; ++i) ids.push_back("n" + std::to_string(rng() % n));
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(d.findNode(ids[i++ & 4095]));
  }
  state.counters["ns_per_op"] = benchmark::Counter(1e-9 * static_cast<double>(state.iterations()),
                                                   benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void BM_SetPropertyCommand(benchmark::State& state) {
  const auto n = static_cast<std::size_t>(state.range(0));
  core::Document d;
  copyInto(d, sample(n));
  std::mt19937_64 rng(2);
  std::vector<std::string> ids;
  for (int i = 0; i < 4096; ++i) ids.push_back("n" + std::to_string(rng() % n));
  std::size_t i = 0;
  for (auto _ : state) {
    d.history().pushAndExecute(
        std::make_unique<core::SetNodePropertyCommand>(ids[i & 4095], "documentation", "note"), d);
    ++i;
  }
  state.counters["ns_per_op"] = benchmark::Counter(1e-9 * static_cast<double>(state.iterations()),
                                                   benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void BM_ReorderCommand(benchmark::State& state) {
  const auto n = static_cast<std::size_t>(state.range(0));
  core::Document d;
  copyInto(d, sample(n));
  std::mt19937_64 rng(3);
  for (auto _ : state) {
    d.history().pushAndExecute(
        std::make_unique<core::ReorderNodeCommand>("n" + std::to_string(rng() % n), static_cast<int>(n) - 1), d);
  }
  state.counters["ns_per_op"] = benchmark::Counter(1e-9 * static_cast<double>(state.iterations()),
                                                   benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

// Delete 1,000 nodes with their edges in one command; then undo and redo it.
void BM_Delete1000(benchmark::State& state) {
  const auto n = static_cast<std::size_t>(state.range(0));
  const int phase = static_cast<int>(state.range(1));  // 0 delete, 1 undo, 2 redo
  core::Document d;
  copyInto(d, sample(n));
  std::mt19937_64 rng(4);
  for (auto _ : state) {
    state.PauseTiming();
    std::vector<std::string> ids;
    for (int i = 0; i < 1000; ++i) ids.push_back("n" + std::to_string(rng() % n));
    auto cmd = std::make_unique<core::DeleteElementsCommand>(std::move(ids), std::vector<std::string>{});
    if (phase == 0) state.ResumeTiming();
    d.history().pushAndExecute(std::move(cmd), d);
    if (phase == 0) state.PauseTiming();
    if (phase == 1) state.ResumeTiming();
    d.history().undo(d);
    if (phase == 1) state.PauseTiming();
    if (phase == 2) state.ResumeTiming();
    d.history().redo(d);
    if (phase == 2) state.PauseTiming();
    d.history().undo(d);
    d.history().clear();
    state.ResumeTiming();
  }
  state.SetLabel(phase == 0 ? "delete" : phase == 1 ? "undo" : "redo");
}

void BM_MemoryPerNode(benchmark::State& state) {
  const auto n = static_cast<std::size_t>(state.range(0));
  const core::Document& d = sample(n);
  for (auto _ : state) benchmark::DoNotOptimize(d.structuralMemoryBytes());
  // A node's record and its index slots (strings' own heap excluded), and
  // everything including the 1.5 edges per node.
  state.counters["node_bytes"] = static_cast<double>(d.nodeMemoryBytes()) / static_cast<double>(n);
  state.counters["with_edges_bytes"] = static_cast<double>(d.structuralMemoryBytes()) / static_cast<double>(n);
}

}  // namespace

BENCHMARK(BM_AddNodesAndEdges)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FindById)->Arg(1000)->Arg(10000)->Arg(100000);
BENCHMARK(BM_SetPropertyCommand)->Arg(1000)->Arg(10000)->Arg(100000);
BENCHMARK(BM_ReorderCommand)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Delete1000)->ArgsProduct({{10000, 100000}, {0, 1, 2}})->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MemoryPerNode)->Arg(1000)->Arg(10000)->Arg(100000)->Iterations(1);

BENCHMARK_MAIN();
