// Diagram explainer at 1,000 / 10,000 / 100,000 nodes with about 1.5 edges per
// node: the mixed synthetic diagram, one diagram per explanation class (so each
// class section runs at scale), Markdown rendering and the CSV conversion.
// The counter ns_per_element is the time per node + edge; it stays flat when
// the explainer is linear.
#include <benchmark/benchmark.h>

#include <map>
#include <memory>
#include <string>

#include "explain/explain.h"
#include "synthetic.h"

using namespace modelyne;
using core::EdgeType;
using core::ShapeType;

namespace {

struct Sample {
  std::vector<core::Node> nodes;
  std::vector<core::Edge> edges;

  void node(std::size_t i, ShapeType type, float x, float y, float w = 120, float h = 60) {
    core::Node n;
    n.id = "n" + std::to_string(i);
    n.type = type;
    n.text = (i % 5 == 0) ? std::string() : "Element " + std::to_string(i);
    n.geom = {x, y, w, h};
    nodes.push_back(std::move(n));
  }
  core::Edge& edge(std::size_t s, std::size_t t, EdgeType type) {
    core::Edge e;
    e.id = "e" + std::to_string(edges.size());
    e.source = "n" + std::to_string(s);
    e.target = "n" + std::to_string(t);
    e.type = type;
    edges.push_back(std::move(e));
    return edges.back();
  }
};

enum Kind { mixed, behavioral, structural, interaction, requirements };

// A long activity: a chain with a decision every 7th node and a fork every
// 11th, each sending a second branch two steps ahead.
Sample behavioralSample(std::size_t n) {
  Sample s;
  for (std::size_t i = 0; i < n; ++i) {
    const ShapeType t = i == 0 ? ShapeType::umlInitialNode
                        : i + 1 == n ? ShapeType::umlFinalNode
                        : i % 7 == 0 ? ShapeType::umlDecision
                        : i % 11 == 0 ? ShapeType::umlForkJoin
                                      : ShapeType::umlAction;
    s.node(i, t, static_cast<float>(i % 100) * 150, static_cast<float>(i / 100) * 100);
  }
  for (std::size_t i = 0; i + 1 < n; ++i) {
    s.edge(i, i + 1, EdgeType::sysmlControlFlow);
    if (i % 2 == 0 && i + 2 < n) s.edge(i, i + 2, EdgeType::sysmlControlFlow).text = "[ok]";
  }
  return s;
}

// A binary composition tree of blocks, ports and interfaces, with associations across it.
Sample structuralSample(std::size_t n) {
  Sample s;
  for (std::size_t i = 0; i < n; ++i) {
    const ShapeType t = i % 13 == 12 ? ShapeType::sysmlPort
                        : i % 17 == 16 ? ShapeType::sysmlInterfaceDef
                                       : ShapeType::sysmlBlock;
    s.node(i, t, static_cast<float>(i % 100) * 150, static_cast<float>(i / 100) * 100);
  }
  for (std::size_t i = 1; i < n; ++i) s.edge((i - 1) / 2, i, EdgeType::composition);
  for (std::size_t i = 0; i < n; i += 2) s.edge(i, (i * 7 + 3) % n, EdgeType::association);
  return s;
}

// A sequence: one lifeline per 20 nodes, the rest activations; messages between
// neighbouring lifelines at shuffled heights.
Sample interactionSample(std::size_t n) {
  Sample s;
  const std::size_t lifelines = n / 20 + 2;
  for (std::size_t i = 0; i < lifelines; ++i)
    s.node(i, ShapeType::umlLifeline, static_cast<float>(i) * 200, 0, 100, 1e6f);
  for (std::size_t i = lifelines; i < n; ++i)
    s.node(i, ShapeType::umlActivation, static_cast<float>(i % lifelines) * 200 + 45,
           static_cast<float>(i) * 30, 10, 40);
  const EdgeType kinds[] = {EdgeType::sysmlSyncMessage, EdgeType::sysmlReplyMessage,
                            EdgeType::sysmlAsyncMessage};
  for (std::size_t k = 0; k < n + n / 2; ++k) {
    const std::size_t a = k % n;
    const std::size_t b = (a * 31 + 7) % n;
    s.edge(a, b == a ? (a + 1) % n : b, kinds[k % 3]).srcAnchorDY =
        static_cast<float>((k * 7919) % 10007);
  }
  return s;
}

// Half requirements, half design and test elements, linked by every trace kind.
Sample requirementsSample(std::size_t n) {
  Sample s;
  for (std::size_t i = 0; i < n; ++i)
    s.node(i, i % 2 == 0 ? ShapeType::sysmlRequirementDef : ShapeType::sysmlBlock,
           static_cast<float>(i % 100) * 150, static_cast<float>(i / 100) * 100);
  const EdgeType kinds[] = {EdgeType::sysmlSatisfy, EdgeType::sysmlVerify, EdgeType::sysmlDeriveReqt,
                            EdgeType::sysmlTrace, EdgeType::sysmlAllocate};
  for (std::size_t k = 0; k < n + n / 2; ++k) s.edge((k * 13 + 1) % n, (k * 17) % n, kinds[k % 5]);
  return s;
}

const Sample& sample(Kind kind, std::size_t n) {
  static std::map<std::pair<int, std::size_t>, std::unique_ptr<Sample>> cache;
  auto& slot = cache[{kind, n}];
  if (!slot) {
    switch (kind) {
      case mixed: {
        core::Document doc;
        bench::syntheticDocument(doc, n);
        slot = std::make_unique<Sample>(Sample{doc.nodes(), doc.edges()});
        break;
      }
      case behavioral: slot = std::make_unique<Sample>(behavioralSample(n)); break;
      case structural: slot = std::make_unique<Sample>(structuralSample(n)); break;
      case interaction: slot = std::make_unique<Sample>(interactionSample(n)); break;
      case requirements: slot = std::make_unique<Sample>(requirementsSample(n)); break;
    }
  }
  return *slot;
}

void perElement(benchmark::State& state, const Sample& s) {
  const double elements = static_cast<double>(s.nodes.size() + s.edges.size());
  // An inverted rate is seconds per unit; counting units in billions makes it nanoseconds.
  state.counters["ns_per_element"] =
      benchmark::Counter(elements * static_cast<double>(state.iterations()) * 1e-9,
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

template <Kind kind>
void BM_Explain(benchmark::State& state) {
  const Sample& s = sample(kind, static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(explain::explainDiagram(s.nodes, s.edges));
  perElement(state, s);
}

void BM_ExplainToMarkdownAndCsv(benchmark::State& state) {
  const Sample& s = sample(mixed, static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    const std::string md = explain::renderMarkdown(explain::explainDiagram(s.nodes, s.edges));
    benchmark::DoNotOptimize(explain::markdownToCsv(md));
  }
  perElement(state, s);
}

// The CSV conversion alone, on Markdown of about 60 bytes per node.
void BM_MarkdownToCsv(benchmark::State& state) {
  const auto n = static_cast<std::size_t>(state.range(0));
  std::string md = "# Large\n\n## Section, with comma\n\n";
  for (std::size_t i = 0; i < n; ++i)
    md += "  - Part \"" + std::to_string(i) + "\" contains A, B and C.\r\n";
  for (auto _ : state) benchmark::DoNotOptimize(explain::markdownToCsv(md));
  state.SetBytesProcessed(static_cast<std::int64_t>(md.size() * state.iterations()));
}

}  // namespace

#define MODELYNE_SIZES ->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)
BENCHMARK(BM_Explain<mixed>) MODELYNE_SIZES;
BENCHMARK(BM_Explain<behavioral>) MODELYNE_SIZES;
BENCHMARK(BM_Explain<structural>) MODELYNE_SIZES;
BENCHMARK(BM_Explain<interaction>) MODELYNE_SIZES;
BENCHMARK(BM_Explain<requirements>) MODELYNE_SIZES;
BENCHMARK(BM_ExplainToMarkdownAndCsv) MODELYNE_SIZES;
BENCHMARK(BM_MarkdownToCsv) MODELYNE_SIZES;

BENCHMARK_MAIN();
