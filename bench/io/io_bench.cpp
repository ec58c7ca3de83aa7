// Model-file load and save at 1,000 / 10,000 / 100,000 nodes (about 1.5
// edges per node), side by side with pugixml parsing the same bytes into its
// DOM. "Load" is the whole path: tokenise, decode, numbers and building the
// Document with its id index; "open" is what the editor and the tool call
// (io::openModelText: splitting the file, then the same load). Projects of
// many small models, each with a warning, show that opening grows linearly
// in the number of models. Before the Google Benchmark runs, a summary table
// (median of several runs) and the memory of a loaded 100,000-node document
// are printed.

#include <benchmark/benchmark.h>
#include <pugixml.hpp>

#include <algorithm>
#include <ctime>
#include <cstdio>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include "core/document.h"
#include "gen/synthetic.h"
#include "io/diagram_reader.h"
#include "io/diagram_writer.h"
#include "io/model_file.h"

using namespace modelyne;

namespace {

constexpr std::size_t kSizes[] = {1000, 10000, 100000};

const std::string& sampleXml(std::size_t n) {
  static std::map<std::size_t, std::string> cache;
  std::string& s = cache[n];
  if (s.empty()) s = bench::syntheticDiagramXml(n, 42);
  return s;
}

std::unique_ptr<core::Document> load(const std::string& xml) {
  auto doc = std::make_unique<core::Document>();
  io::ReadError err;
  if (!io::parseDiagramInto(xml, *doc, &err)) {
    std::fprintf(stderr, "load failed: %s (line %zu)\n", err.what.c_str(), err.line);
    std::exit(1);
  }
  return doc;
}

io::OpenedModelFile open(const std::string& text) {
  io::OpenedModelFile r = io::openModelText(text);
  if (r.error) {
    std::fprintf(stderr, "open failed: %s (line %zu)\n", r.error->what.c_str(), r.error->line);
    std::exit(1);
  }
  return r;
}

// A project of `models` models, each holding two nodes with the same id.
std::string projectWithWarnings(std::size_t models) {
  std::string s = "<modelyneProject version=\"1\" name=\"P\" active=\"0\">\n";
  for (std::size_t i = 0; i < models; ++i)
    s += "<modelyneModel id=\"m" + std::to_string(i) +
         "\" name=\"M\">\n<diagram>\n  <node id=\"a\"/>\n  <node id=\"a\"/>\n</diagram>\n</modelyneModel>\n";
  return s + "</modelyneProject>\n";
}

std::unique_ptr<pugi::xml_document> pugiParse(const std::string& xml) {
  auto d = std::make_unique<pugi::xml_document>();
  if (!d->load_buffer(xml.data(), xml.size())) std::exit(1);
  return d;
}

// ---- Summary table ----

// Median processor time of `f` (on a shared machine, wall time mostly
// measures the neighbours); whatever `f` returns is destroyed outside the
// timing (freeing a document or DOM is not part of loading it).
template <class F>
double medianMs(int runs, F&& f) {
  std::vector<double> t;
  for (int i = 0; i < runs; ++i) {
    const std::clock_t a = std::clock();
    auto result = f();
    const std::clock_t b = std::clock();
    benchmark::DoNotOptimize(result);
    t.push_back(1000.0 * static_cast<double>(b - a) / CLOCKS_PER_SEC);
  }
  std::sort(t.begin(), t.end());
  return t[t.size() / 2];
}

// Resident and peak resident set in kB (Linux).
std::pair<long, long> memoryKb() {
  std::ifstream in("/proc/self/status");
  std::string line;
  long rss = -1, hwm = -1;
  while (std::getline(in, line)) {
    if (line.rfind("VmRSS:", 0) == 0) rss = std::stol(line.substr(6));
    if (line.rfind("VmHWM:", 0) == 0) hwm = std::stol(line.substr(6));
  }
  return {rss, hwm};
}

// Memory of a loaded 100,000-node document, measured first, with the
// allocator's default behaviour and before other runs raise the peak.
void printMemory() {
  const auto base = memoryKb();
  std::string xml = bench::syntheticDiagramXml(100000, 42);
  const std::size_t bytes = xml.size();
  const auto withText = memoryKb();
  auto doc = load(xml);
  const auto loaded = memoryKb();
  std::string().swap(xml);
  const auto afterFree = memoryKb();
  std::printf("Memory, 100,000 nodes / %zu edges (file %.1f MB):\n", doc->edges().size(), bytes / 1e6);
  std::printf("  loaded document: %.1f MB resident (%.0f bytes/node incl. edges); text freed\n",
              (afterFree.first - base.first) / 1024.0,
              (afterFree.first - base.first) * 1024.0 / 100000.0);
  std::printf("  peak while loading (text + document): %.1f MB above start; sequences and index: %.1f MB\n",
              (std::max(loaded.second, withText.second) - base.first) / 1024.0, doc->structuralMemoryBytes() / 1048576.0);
}

void printSummary() {
  std::printf("\nMedian processor time per run.\n%8s %9s | %9s %9s | %9s %9s %7s | %9s | %9s %9s\n", "nodes", "file MB", "pugi ms",
              "pugi MB/s", "load ms", "load MB/s", "/pugi", "open ms", "save ms", "save MB/s");
  double loadMs10k = 0, loadMs100k = 0, saveMs10k = 0, saveMs100k = 0;
  for (std::size_t n : kSizes) {
    const std::string& xml = sampleXml(n);
    const double mb = xml.size() / 1e6;
    const int runs = n >= 100000 ? 7 : n >= 10000 ? 21 : 201;
    const double pugiMs = medianMs(runs, [&] { return pugiParse(xml); });
    const double loadMs = medianMs(runs, [&] { return load(xml); });
    const double openMs = medianMs(runs, [&] { return open(xml); });
    auto doc = load(xml);
    const double saveMs = medianMs(runs, [&] { return io::serializeDocument(*doc); });
    std::printf("%8zu %9.2f | %9.2f %9.0f | %9.2f %9.0f %6.2fx | %9.2f | %9.2f %9.0f\n", n, mb, pugiMs, mb / pugiMs * 1000,
                loadMs, mb / loadMs * 1000, pugiMs / loadMs, openMs, saveMs, mb / saveMs * 1000);
    if (n == 10000) loadMs10k = loadMs, saveMs10k = saveMs;
    if (n == 100000) loadMs100k = loadMs, saveMs100k = saveMs;
  }
  std::printf("Growth 10,000 -> 100,000 nodes: load %.1fx, save %.1fx (linear: 10x)\n", loadMs100k / loadMs10k,
              saveMs100k / saveMs10k);

  std::printf("\nProjects of N models, each with a warning (open, all models):\n%8s %9s %9s\n", "models", "file MB", "open ms");
  double first = 0, last = 0;
  for (std::size_t n : {2000, 20000}) {
    const std::string text = projectWithWarnings(n);
    const double ms = medianMs(n >= 20000 ? 5 : 21, [&] { return open(text); });
    std::printf("%8zu %9.2f %9.2f\n", n, text.size() / 1e6, ms);
    (first == 0 ? first : last) = ms;
  }
  std::printf("Growth 2,000 -> 20,000 models: %.1fx (linear: 10x)\n\n", last / first);
}

// ---- Google Benchmark cases ----

void BM_PugixmlParse(benchmark::State& state) {
  const std::string& xml = sampleXml(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    auto d = pugiParse(xml);
    state.PauseTiming();
    d.reset();
    state.ResumeTiming();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * xml.size()));
}

void BM_Load(benchmark::State& state) {
  const std::string& xml = sampleXml(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    auto d = load(xml);
    state.PauseTiming();
    d.reset();
    state.ResumeTiming();
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * xml.size()));
}

void BM_Save(benchmark::State& state) {
  const std::string& xml = sampleXml(static_cast<std::size_t>(state.range(0)));
  auto doc = load(xml);
  std::size_t bytes = 0;
  for (auto _ : state) {
    std::string out = io::serializeDocument(*doc);
    bytes = out.size();
    benchmark::DoNotOptimize(out);
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes));
}

BENCHMARK(BM_PugixmlParse)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Load)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Save)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  printMemory();
#if defined(__GLIBC__)
  // Serve big blocks from the reused heap rather than fresh mappings, as a
  // long-running editor does; otherwise every run of the largest size pays
  // the kernel for zeroed pages that the smaller sizes get from the heap,
  // and the growth figures measure the allocator instead of the code.
  mallopt(M_MMAP_THRESHOLD, 1 << 30);
  mallopt(M_TRIM_THRESHOLD, 1 << 30);
#endif
  printSummary();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
