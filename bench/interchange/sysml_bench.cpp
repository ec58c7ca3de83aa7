// SysML v2 import: the largest file of the corpus (the simple vehicle model,
// about 74 KB) read, mapped to models and placed, and the whole corpus of
// 252 files the same way; export of the largest file for comparison. The
// corpus is read from ../shared/corpora beside the source tree or from
// MODELYNE_CORPORA. Goals: largest file <= 20 ms, whole corpus <= 1 s.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "interchange/sysml_export.h"
#include "interchange/sysml_import.h"

namespace fs = std::filesystem;
using namespace modelyne::interchange;

namespace {

fs::path corpusRoot() {
  if (const char* env = std::getenv("MODELYNE_CORPORA")) return fs::path(env) / "sysmlv2";
  return fs::path(MODELYNE_SOURCE_DIR) / ".." / "shared" / "corpora" / "sysmlv2";
}

struct Corpus {
  std::vector<std::string> texts;
  std::string largest;
};

const Corpus& corpus() {
  static const Corpus c = [] {
    Corpus out;
    const fs::path root = corpusRoot();
    if (!fs::exists(root)) return out;
    std::vector<fs::path> files;
    for (const auto& e : fs::recursive_directory_iterator(root))
      if (e.is_regular_file() && e.path().extension() == ".sysml") files.push_back(e.path());
    std::sort(files.begin(), files.end());
    for (const fs::path& f : files) {
      std::ifstream in(f, std::ios::binary);
      std::ostringstream s;
      s << in.rdbuf();
      out.texts.push_back(s.str());
      if (out.texts.back().size() > out.largest.size()) out.largest = out.texts.back();
    }
    return out;
  }();
  return c;
}

void BM_ImportLargestFile(benchmark::State& state) {
  const Corpus& c = corpus();
  if (c.largest.empty()) return state.SkipWithError("corpus not found");
  for (auto _ : state) {
    SysmlImport im = importSysml(c.largest, "largest.sysml");
    benchmark::DoNotOptimize(im.project.models.data());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * c.largest.size()));
}
BENCHMARK(BM_ImportLargestFile)->Unit(benchmark::kMillisecond);

void BM_ImportWholeCorpus(benchmark::State& state) {
  const Corpus& c = corpus();
  if (c.texts.empty()) return state.SkipWithError("corpus not found");
  for (auto _ : state)
    for (const std::string& t : c.texts) {
      SysmlImport im = importSysml(t, "f.sysml");
      benchmark::DoNotOptimize(im.project.models.data());
    }
  state.counters["files"] = static_cast<double>(c.texts.size());
}
BENCHMARK(BM_ImportWholeCorpus)->Unit(benchmark::kMillisecond);

void BM_ExportLargestFile(benchmark::State& state) {
  const Corpus& c = corpus();
  if (c.largest.empty()) return state.SkipWithError("corpus not found");
  const SysmlContent content = readSysml(c.largest, "largest.sysml");
  for (auto _ : state) {
    SysmlExport out = exportSysml(content.models, "out.sysml");
    benchmark::DoNotOptimize(out.text.data());
  }
}
BENCHMARK(BM_ExportLargestFile)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
