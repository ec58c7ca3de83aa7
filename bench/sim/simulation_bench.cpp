// Activity token simulation on 10,000-node activities: (a) a chain, one
// firing per round, 10,000 rounds; (b) a fork into 5,000 parallel branches
// and a join, 10,000 firings in few rounds; (c) building the flow graph
// alone. Items are node firings, so items/s gives the time per firing.

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "core/model.h"
#include "sim/simulation.h"

namespace {

using namespace modelyne::core;

constexpr std::size_t kNodes = 10000;

struct Diagram {
  std::vector<Node> nodes;
  std::vector<Edge> edges;
};

Node node(std::string id, ShapeType type, float y) {
  Node n;
  n.id = std::move(id);
  n.type = type;
  n.geom = {0.0f, y, 120.0f, 50.0f};
  return n;
}

void flow(Diagram& d, const std::string& from, const std::string& to) {
  Edge e;
  e.id = "f" + std::to_string(d.edges.size());
  e.source = from;
  e.target = to;
  e.type = EdgeType::sysmlControlFlow;
  d.edges.push_back(std::move(e));
}

// initial -> a1 -> ... -> a9998 -> final
const Diagram& chain() {
  static const Diagram d = [] {
    Diagram out;
    out.nodes.push_back(node("init", ShapeType::umlInitialNode, 0));
    for (std::size_t i = 1; i + 1 < kNodes; ++i) out.nodes.push_back(node("a" + std::to_string(i), ShapeType::umlAction, static_cast<float>(i)));
    out.nodes.push_back(node("done", ShapeType::umlFinalNode, kNodes));
    for (std::size_t i = 0; i + 1 < kNodes; ++i) flow(out, out.nodes[i].id, out.nodes[i + 1].id);
    return out;
  }();
  return d;
}

// initial -> fork -> 2 actions on each of 4,998 branches -> join -> final
const Diagram& wide() {
  static const Diagram d = [] {
    Diagram out;
    out.nodes.push_back(node("init", ShapeType::umlInitialNode, 0));
    out.nodes.push_back(node("fork", ShapeType::umlForkJoin, 1));
    out.nodes.push_back(node("join", ShapeType::umlForkJoin, 3));
    out.nodes.push_back(node("done", ShapeType::umlFinalNode, 4));
    flow(out, "init", "fork");
    flow(out, "join", "done");
    for (std::size_t b = 0; out.nodes.size() + 2 <= kNodes; ++b) {
      const std::string p = "p" + std::to_string(b), q = "q" + std::to_string(b);
      out.nodes.push_back(node(p, ShapeType::umlAction, 2));
      out.nodes.push_back(node(q, ShapeType::umlAction, 2));
      flow(out, "fork", p);
      flow(out, p, q);
      flow(out, q, "join");
    }
    return out;
  }();
  return d;
}

void runAll(benchmark::State& state, const Diagram& d) {
  std::int64_t firings = 0;
  for (auto _ : state) {
    state.PauseTiming();
    auto sim = sim::makeSimulation(sim::SimulationKind::activity, d.nodes, d.edges, {});
    state.ResumeTiming();
    const sim::RunStatus status = sim->run();
    if (status != sim::RunStatus::completed) state.SkipWithError("the run did not complete");
    firings = static_cast<std::int64_t>(sim->trace().size()) - 1;  // all but the end event
    benchmark::DoNotOptimize(firings);
    state.PauseTiming();
    sim.reset();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * firings);
  state.counters["firings"] = static_cast<double>(firings);
}

void BM_Activity_Chain10k(benchmark::State& state) { runAll(state, chain()); }
void BM_Activity_Wide10k(benchmark::State& state) { runAll(state, wide()); }

// The same chain with events streamed to a sink instead of kept.
void BM_Activity_Chain10k_Streamed(benchmark::State& state) {
  const Diagram& d = chain();
  std::int64_t firings = 0;
  for (auto _ : state) {
    state.PauseTiming();
    sim::SimulationOptions options;
    std::size_t bytes = 0;
    firings = 0;
    options.sink = [&](const sim::TraceEvent& e) {
      bytes += sim::formatTextLine(e).size();
      ++firings;
    };
    auto sim = sim::makeSimulation(sim::SimulationKind::activity, d.nodes, d.edges, std::move(options));
    state.ResumeTiming();
    sim->run();
    benchmark::DoNotOptimize(bytes);
    state.PauseTiming();
    sim.reset();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * (firings - 1));
}

void BM_Activity_Build10k(benchmark::State& state) {
  const Diagram& d = chain();
  for (auto _ : state) {
    auto sim = sim::makeSimulation(sim::SimulationKind::activity, d.nodes, d.edges, {});
    benchmark::DoNotOptimize(sim.get());
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kNodes));
}

}  // namespace

BENCHMARK(BM_Activity_Chain10k)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Activity_Wide10k)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Activity_Chain10k_Streamed)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Activity_Build10k)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
