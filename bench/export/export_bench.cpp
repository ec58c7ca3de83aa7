// SVG export of synthetic diagrams against Graphviz drawing the same graph
// with the positions given (neato -n2 -Tsvg: no layout, only rendering).
// After the runs a table prints both times per size and the speed-up.

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <string>

#include "core/document.h"
#include "export/diagram_drawing.h"
#include "export/svg_export.h"
#include "export/svg_writer.h"
#include "gen/synthetic.h"

namespace {

using namespace modelyne;

const core::Document& diagram(std::size_t n) {
  static std::map<std::size_t, std::unique_ptr<core::Document>> cache;
  auto& doc = cache[n];
  if (!doc) {
    doc = std::make_unique<core::Document>();
    bench::syntheticDocument(*doc, n, 42);
  }
  return *doc;
}

std::string dotQuoted(const std::string& s) {
  std::string out = "\"";
  for (char c : s) {
    if (c == '"' || c == '\\') out += '\\';
    out += c == '\n' ? ' ' : c;
  }
  return out + "\"";
}

/// The same nodes (boxes at their positions and sizes, with labels) and
/// edges as a DOT file; y is flipped because DOT's y axis points up.
/// Written once per size and kept in the temporary folder.
std::filesystem::path dotFile(std::size_t n) {
  const auto path = std::filesystem::temp_directory_path() / ("modelyne-bench-v2-" + std::to_string(n) + ".dot");
  if (std::filesystem::exists(path)) return path;
  const core::Document& doc = diagram(n);
  std::ofstream out(path);
  out << "digraph G {\nnode [shape=box, fixedsize=true, fontsize=12];\n";
  for (const core::Node& node : doc.nodes()) {
    const auto& g = node.geom;
    out << dotQuoted(node.id) << " [pos=\"" << g.x + g.w / 2 << "," << -(g.y + g.h / 2) << "!\", width="
        << g.w / 72.0 << ", height=" << g.h / 72.0 << ", label=" << dotQuoted(node.text) << "];\n";
  }
  // Edge labels are left out: neato -n2 places them with a search that grows
  // far faster than the graph and would dominate its time at 100,000 nodes.
  for (const core::Edge& e : doc.edges()) out << dotQuoted(e.source) << " -> " << dotQuoted(e.target) << ";\n";
  out << "}\n";
  return path;
}

std::map<std::size_t, double>& ourSeconds() {
  static std::map<std::size_t, double> m;
  return m;
}
std::map<std::size_t, double>& neatoSeconds() {
  static std::map<std::size_t, double> m;
  return m;
}

void BM_SvgExport(benchmark::State& state) {
  const auto n = static_cast<std::size_t>(state.range(0));
  const core::Document& doc = diagram(n);
  std::size_t bytes = 0;
  double total = 0;
  for (auto _ : state) {
    const auto t0 = std::chrono::steady_clock::now();
    std::string svg = exporter::svgText(doc.nodes(), doc.edges(), {24.0f, true});
    total += std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
    bytes = svg.size();
    benchmark::DoNotOptimize(svg);
  }
  ourSeconds()[n] = total / static_cast<double>(state.iterations());
  state.counters["svg_MB"] = static_cast<double>(bytes) / 1e6;
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(n));
}
BENCHMARK(BM_SvgExport)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)->UseRealTime();

// The two halves of an export: building the primitive list, and writing it as SVG.
void BM_BuildDrawing(benchmark::State& state) {
  const core::Document& doc = diagram(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(exporter::buildDrawing(doc.nodes(), doc.edges(), {}));
}
BENCHMARK(BM_BuildDrawing)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_SerialiseSvg(benchmark::State& state) {
  const core::Document& doc = diagram(static_cast<std::size_t>(state.range(0)));
  const exporter::DrawingList list = exporter::buildDrawing(doc.nodes(), doc.edges(), {});
  for (auto _ : state) benchmark::DoNotOptimize(exporter::svgDocument(list));
}
BENCHMARK(BM_SerialiseSvg)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_NeatoSvg(benchmark::State& state) {
  const auto n = static_cast<std::size_t>(state.range(0));
  const std::string command = "neato -n2 -Tsvg '" + dotFile(n).string() + "' -o /dev/null 2>/dev/null";
  double total = 0;
  for (auto _ : state) {
    const auto t0 = std::chrono::steady_clock::now();
    if (std::system(command.c_str()) != 0) {
      state.SkipWithError("neato failed (is graphviz installed?)");
      return;
    }
    total += std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
  }
  neatoSeconds()[n] = total / static_cast<double>(state.iterations());
}
BENCHMARK(BM_NeatoSvg)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(2);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  std::printf("\n%10s %14s %14s %10s\n", "nodes", "modelyne s", "neato -n2 s", "speed-up");
  for (const auto& [n, ours] : ourSeconds()) {
    const auto it = neatoSeconds().find(n);
    if (it == neatoSeconds().end()) continue;
    std::printf("%10zu %14.4f %14.4f %9.0fx\n", n, ours, it->second, it->second / ours);
  }
  return 0;
}
