// PNG export of synthetic diagrams (1,000 and 10,000 nodes, one pixel per
// diagram unit) side by side with rsvg-convert drawing our SVG and
// Graphviz drawing the same graph with the positions given
// (neato -n2 -Tpng). Also the earlier way, in the same run: the whole
// picture in memory and Qt's PNG writer (zlib level 6, every filter tried).
// Each export runs in a child process, so that its peak memory is its own:
// counters give the file size and the peak memory the export added. One
// run each: the slowest peer takes minutes at 10,000 nodes.

#include <benchmark/benchmark.h>

#include <QBuffer>
#include <QImageWriter>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "core/document.h"
#include "export/diagram_drawing.h"
#include "export/svg_export.h"
#include "gen/synthetic.h"
#include "render/raster_export.h"

namespace {

using namespace modelyne;
namespace fs = std::filesystem;

const core::Document& diagram(std::size_t n) {
  static std::map<std::size_t, std::unique_ptr<core::Document>> cache;
  auto& doc = cache[n];
  if (!doc) {
    doc = std::make_unique<core::Document>();
    bench::syntheticDocument(*doc, n, 42);
  }
  return *doc;
}

exporter::DrawingList drawingOf(std::size_t n) {
  const core::Document& doc = diagram(n);
  return exporter::buildDrawing(doc.nodes(), doc.edges(), {24.0f, true, nullptr});
}

fs::path scratch(const std::string& name) { return fs::temp_directory_path() / ("modelyne-raster-bench-" + name); }

std::string dotQuoted(const std::string& s) {
  std::string out = "\"";
  for (char c : s) {
    if (c == '"' || c == '\\') out += '\\';
    out += c == '\n' ? ' ' : c;
  }
  return out + "\"";
}

/// The same boxes, labels and edges as DOT with fixed positions (points are
/// diagram units); y flipped, since DOT's y axis points up.
fs::path dotFile(std::size_t n) {
  const fs::path path = scratch(std::to_string(n) + ".dot");
  const core::Document& doc = diagram(n);
  std::ofstream out(path);
  out << "digraph G {\nnode [shape=box, fixedsize=true, fontsize=12];\n";
  for (const core::Node& node : doc.nodes()) {
    const auto& g = node.geom;
    out << dotQuoted(node.id) << " [pos=\"" << g.x + g.w / 2 << "," << -(g.y + g.h / 2) << "!\", width="
        << g.w / 72.0 << ", height=" << g.h / 72.0 << ", label=" << dotQuoted(node.text) << "];\n";
  }
  for (const core::Edge& e : doc.edges()) out << dotQuoted(e.source) << " -> " << dotQuoted(e.target) << ";\n";
  out << "}\n";
  return path;
}

fs::path svgFile(std::size_t n) {
  const fs::path path = scratch(std::to_string(n) + ".svg");
  const core::Document& doc = diagram(n);
  std::ofstream(path, std::ios::binary) << exporter::svgText(doc.nodes(), doc.edges(), {24.0f, true});
  return path;
}

long kilobytesOf(const char* field) {
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line))
    if (line.rfind(field, 0) == 0) return std::atol(line.c_str() + std::char_traits<char>::length(field));
  return 0;
}

struct ChildRun {
  double seconds = 0;
  double addedMegabytes = 0;  ///< peak resident memory above the child's start
  double outputBytes = 0;
};

/// Runs `work` (returning the output's size) in a forked child: its wall
/// time, and its peak resident memory above what it started with.
ChildRun inChild(const std::function<std::size_t()>& work) {
  int fds[2];
  if (pipe(fds) != 0) std::abort();
  const auto t0 = std::chrono::steady_clock::now();
  const pid_t pid = fork();
  if (pid == 0) {
    close(fds[0]);
    // Reset the high-water mark so it counts this run alone.
    std::ofstream("/proc/self/clear_refs") << "5";
    const long start = kilobytesOf("VmRSS:");
    const double bytes = static_cast<double>(work());
    const double added = static_cast<double>(kilobytesOf("VmHWM:") - start) / 1024.0;
    const double report[2] = {added, bytes};
    if (write(fds[1], report, sizeof report) != static_cast<ssize_t>(sizeof report)) _exit(1);
    _exit(0);
  }
  close(fds[1]);
  double report[2] = {0, 0};
  if (read(fds[0], report, sizeof report) != static_cast<ssize_t>(sizeof report)) std::abort();
  close(fds[0]);
  int status = 0;
  waitpid(pid, &status, 0);
  ChildRun r;
  r.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
  r.addedMegabytes = report[0];
  r.outputBytes = report[1];
  return r;
}

/// Runs a command line: its wall time, peak memory and output file's size.
ChildRun command(const std::string& line, const fs::path& output) {
  const auto t0 = std::chrono::steady_clock::now();
  const pid_t pid = fork();
  if (pid == 0) {
    execl("/bin/sh", "sh", "-c", (line + " 2>/dev/null").c_str(), static_cast<char*>(nullptr));
    _exit(127);
  }
  int status = 0;
  rusage usage{};
  wait4(pid, &status, 0, &usage);
  ChildRun r;
  r.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
  r.addedMegabytes = static_cast<double>(usage.ru_maxrss) / 1024.0;
  std::error_code ec;
  r.outputBytes = static_cast<double>(fs::file_size(output, ec));
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) r.outputBytes = -1;
  return r;
}

void report(benchmark::State& state, const std::function<ChildRun()>& once) {
  ChildRun last;
  for (auto _ : state) {
    last = once();
    state.SetIterationTime(last.seconds);
  }
  state.counters["file_MB"] = last.outputBytes / 1e6;
  state.counters["peak_MB"] = last.addedMegabytes;
}

/// The earlier way: the whole picture, then Qt's PNG writer at its defaults.
std::string qtPng(const QImage& image) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  QImageWriter writer(&buffer, "png");
  writer.write(image);
  return std::string(bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

// ---- Whole exports, each in its own process ----

void BM_PngExport_Modelyne(benchmark::State& state) {
  const auto n = static_cast<std::size_t>(state.range(0));
  diagram(n);
  report(state, [&] { return inChild([&] { return render::pngBytes(drawingOf(n), 1.0).size(); }); });
}

void BM_PngExport_ModelyneBefore(benchmark::State& state) {
  const auto n = static_cast<std::size_t>(state.range(0));
  diagram(n);
  report(state, [&] { return inChild([&] { return qtPng(render::renderImage(drawingOf(n), 1.0).image).size(); }); });
}

void BM_PngExport_RsvgConvert(benchmark::State& state) {
  const auto n = static_cast<std::size_t>(state.range(0));
  const fs::path svg = svgFile(n);
  const fs::path png = scratch(std::to_string(n) + "-rsvg.png");
  report(state, [&] { return command("rsvg-convert -o '" + png.string() + "' '" + svg.string() + "'", png); });
}

void BM_PngExport_NeatoTpng(benchmark::State& state) {
  const auto n = static_cast<std::size_t>(state.range(0));
  const fs::path dot = dotFile(n);
  const fs::path png = scratch(std::to_string(n) + "-neato.png");
  report(state, [&] { return command("neato -n2 -Tpng -o '" + png.string() + "' '" + dot.string() + "'", png); });
}

// ---- Encoding alone, of the same picture ----

void BM_PngEncode_Modelyne(benchmark::State& state) {
  const QImage image = render::renderImage(drawingOf(static_cast<std::size_t>(state.range(0))), 1.0).image;
  std::size_t bytes = 0;
  for (auto _ : state) bytes = render::encodePng(image).size();
  state.counters["file_MB"] = static_cast<double>(bytes) / 1e6;
}

void BM_PngEncode_QtDefault(benchmark::State& state) {
  const QImage image = render::renderImage(drawingOf(static_cast<std::size_t>(state.range(0))), 1.0).image;
  std::size_t bytes = 0;
  for (auto _ : state) bytes = qtPng(image).size();
  state.counters["file_MB"] = static_cast<double>(bytes) / 1e6;
}

constexpr auto kUnit = benchmark::kMillisecond;

BENCHMARK(BM_PngExport_Modelyne)->Arg(1000)->Arg(10000)->UseManualTime()->Iterations(1)->Unit(kUnit);
BENCHMARK(BM_PngExport_ModelyneBefore)->Arg(1000)->Arg(10000)->UseManualTime()->Iterations(1)->Unit(kUnit);
BENCHMARK(BM_PngExport_RsvgConvert)->Arg(1000)->Arg(10000)->UseManualTime()->Iterations(1)->Unit(kUnit);
BENCHMARK(BM_PngExport_NeatoTpng)->Arg(1000)->Arg(10000)->UseManualTime()->Iterations(1)->Unit(kUnit);
BENCHMARK(BM_PngEncode_Modelyne)->Arg(1000)->Arg(10000)->Unit(kUnit);
BENCHMARK(BM_PngEncode_QtDefault)->Arg(1000)->Arg(10000)->Unit(kUnit);

}  // namespace

int main(int argc, char** argv) {
  render::ensureGuiApplication();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
