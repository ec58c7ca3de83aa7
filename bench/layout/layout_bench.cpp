// Automatic layout beside Graphviz on the same graphs: synthetic diagrams of
// 100, 1,000 and 10,000 nodes (modelyne-gen's) and the samples. Ours run in
// process; `dot` (layered) and `sfdp` (organic) run as commands with
// -Tplain, timed from the outside, their node centres read back.
//
// Counters, all measured with straight lines between node centres:
//   overlaps     node pairs overlapping where neither holds the other
//   crossings    edge lines crossing; x_peer = ours / the peer's
//   anchor_pct   edges whose both ends face the side their anchors name
//   anchor_max   the share of edges whose anchors can be met at all
//   axis_pct     edges whose later end (anchors first, then parent above
//                child) lies further along the main axis
//   area_ratio   bounding box over the sum of node areas
#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <string>

#include "io/diagram_reader.h"
#include "layout/layout.h"
#include "layout/quality.h"
#include "synthetic.h"

using namespace modelyne;

namespace {

// Graphviz gets this long before it counts as not finishing.
constexpr int kPeerTimeoutSeconds = 120;

const char* const kSamples[] = {"act-order-fulfilment", "bdd-vehicle", "ibd-camera", "mm-product-launch",
                                "par-stopping-distance", "pkg-flight-software", "req-braking", "sd-atm-withdrawal",
                                "stm-door-controller", "test-braking-verification", "uc-ev-charging"};

// Graph k: 0..2 synthetic (100, 1,000, 10,000 nodes), 3.. the samples.
std::string graphName(int k) {
  static const char* const sizes[] = {"gen100", "gen1000", "gen10000"};
  return k < 3 ? sizes[k] : kSamples[k - 3];
}

const core::Document& graph(int k) {
  static std::map<int, std::unique_ptr<core::Document>> cache;
  auto& slot = cache[k];
  if (!slot) {
    slot = std::make_unique<core::Document>();
    if (k < 3) {
      static const std::size_t sizes[] = {100, 1000, 10000};
      bench::syntheticDocument(*slot, sizes[k]);
    } else {
      std::ifstream in(std::string(MODELYNE_SOURCE_DIR) + "/samples/" + kSamples[k - 3] + ".xml");
      std::stringstream text;
      text << in.rdbuf();
      io::parseDiagramInto(text.str(), *slot);
    }
  }
  return *slot;
}

std::vector<core::NodeGeometry> geometryOf(const layout::LayoutResult& r) {
  std::vector<core::NodeGeometry> g;
  for (const auto& p : r.placements) g.push_back(p.geom);
  return g;
}

void report(benchmark::State& state, const core::Document& doc, const std::vector<core::NodeGeometry>& geom,
            double seconds, const layout::Quality* peer) {
  const layout::Quality q = layout::measure(doc, geom, layout::mainAxisOf(doc));
  const double edges = std::max<double>(1.0, static_cast<double>(q.edges));
  state.counters["ms"] = seconds * 1e3;
  state.counters["nodes"] = static_cast<double>(doc.nodes().size());
  state.counters["overlaps"] = static_cast<double>(q.overlaps);
  state.counters["crossings"] = static_cast<double>(q.crossings);
  state.counters["anchor_pct"] = 100.0 * static_cast<double>(q.anchorsFacing) / edges;
  state.counters["anchor_max"] = 100.0 * static_cast<double>(q.anchorsPossible) / edges;
  state.counters["axis_pct"] = 100.0 * static_cast<double>(q.alongAxis) / edges;
  state.counters["area_ratio"] = q.areaRatio;
  if (peer) state.counters["x_peer"] = peer->crossings ? static_cast<double>(q.crossings) / static_cast<double>(peer->crossings) : (q.crossings ? 1e9 : 1.0);
}

// ---- Graphviz ----

struct PeerRun {
  bool finished = false;
  double seconds = 0.0;
  std::vector<core::NodeGeometry> geometry;
  layout::Quality quality;
};

// The graph in DOT: fixed-size boxes of our sizes (points), edges from the
// end that comes first to the one that comes later, as ours are measured.
std::string toDot(const core::Document& doc, bool directed) {
  const layout::MainAxis axis = layout::mainAxisOf(doc);
  std::ostringstream out;
  out << (directed ? "digraph G {\n" : "graph G {\n");
  if (directed && axis == layout::MainAxis::leftRight) out << "rankdir=LR;\n";
  out << "node [shape=box, fixedsize=true, label=\"\"];\n";
  for (std::size_t i = 0; i < doc.nodes().size(); ++i) {
    const core::NodeGeometry& g = doc.nodes()[i].geom;
    out << "n" << i << " [width=" << std::max(0.01, g.w / 72.0) << ", height=" << std::max(0.01, g.h / 72.0) << "];\n";
  }
  for (const core::Edge& e : doc.edges()) {
    const int a = doc.indexOfNode(e.source), b = doc.indexOfNode(e.target);
    if (a < 0 || b < 0 || a == b) continue;
    const bool later = layout::targetComesLater(e.sourcePort, e.targetPort, e.type, axis);
    out << "n" << (later || !directed ? a : b) << (directed ? " -> " : " -- ") << "n" << (later || !directed ? b : a) << ";\n";
  }
  out << "}\n";
  return out.str();
}

const PeerRun& peer(int k, const char* tool) {
  static std::map<std::pair<int, std::string>, PeerRun> cache;
  auto [it, fresh] = cache.try_emplace({k, tool});
  PeerRun& run = it->second;
  if (!fresh) return run;
  const core::Document& doc = graph(k);
  const auto dir = std::filesystem::temp_directory_path() / "modelyne-layout-bench";
  std::filesystem::create_directories(dir);
  const std::string in = (dir / (graphName(k) + "-" + tool + ".gv")).string();
  const std::string out = in + ".plain";
  std::ofstream(in) << toDot(doc, std::string(tool) == "dot");
  const std::string cmd = "timeout " + std::to_string(kPeerTimeoutSeconds) + " " + tool + " -Tplain -o " + out + " " + in +
                          " 2>/dev/null";
  const auto t0 = std::chrono::steady_clock::now();
  const int status = std::system(cmd.c_str());
  run.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
  if (status != 0) return run;
  std::ifstream plain(out);
  std::string line;
  double height = 0.0;
  run.geometry.assign(doc.nodes().size(), {});
  while (std::getline(plain, line)) {
    std::istringstream words(line);
    std::string kind;
    words >> kind;
    if (kind == "graph") {
      double scale = 0, width = 0;
      words >> scale >> width >> height;
    } else if (kind == "node") {
      std::string name;
      double x = 0, y = 0;
      words >> name >> x >> y;
      const std::size_t i = std::stoul(name.substr(1));
      const core::NodeGeometry& g = doc.nodes()[i].geom;
      run.geometry[i] = {static_cast<float>(x * 72.0 - g.w / 2.0), static_cast<float>((height - y) * 72.0 - g.h / 2.0), g.w, g.h};
    }
  }
  run.finished = true;
  run.quality = layout::measure(doc, run.geometry, layout::mainAxisOf(doc));
  return run;
}

// ---- Benchmarks ----

template <bool Layered>
void BM_Ours(benchmark::State& state) {
  const int k = static_cast<int>(state.range(0));
  const core::Document& doc = graph(k);
  layout::LayoutResult result;
  double seconds = 0.0;
  for (auto _ : state) {
    const auto t0 = std::chrono::steady_clock::now();
    result = Layered ? layout::layoutLayered(doc) : layout::layoutOrganic(doc);
    seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
    benchmark::DoNotOptimize(result.placements.data());
  }
  state.SetLabel(graphName(k));
  if (!result.laidOut) {
    state.SkipWithError(result.reason.c_str());
    return;
  }
  const PeerRun& p = peer(k, Layered ? "dot" : "sfdp");
  report(state, doc, geometryOf(result), seconds, p.finished ? &p.quality : nullptr);
}

void BM_Peer(benchmark::State& state, const char* tool) {
  const int k = static_cast<int>(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(&peer(k, tool));
  state.SetLabel(graphName(k));
  const PeerRun& p = peer(k, tool);
  if (!p.finished) {
    const std::string why = std::string(tool) + " did not finish within " + std::to_string(kPeerTimeoutSeconds) + " s";
    state.SkipWithError(why.c_str());
    return;
  }
  report(state, graph(k), p.geometry, p.seconds, nullptr);
}

void graphs(benchmark::internal::Benchmark* b) {
  for (int k = 0; k < 3 + static_cast<int>(std::size(kSamples)); ++k) b->Arg(k);
}

}  // namespace

BENCHMARK(BM_Ours<true>)->Name("Layered")->Apply(graphs)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Peer, dot, "dot")->Apply(graphs)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Ours<false>)->Name("Organic")->Apply(graphs)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Peer, sfdp, "sfdp")->Apply(graphs)->Iterations(1)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
