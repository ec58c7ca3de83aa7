// Every file of the SysML v2 corpus: read without syntax errors, every
// statement accounted for, few only in the loss report, and the round trip
// (import, export, import) gives the same nodes and edges and the same text.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

#include "interchange/sysml_export.h"
#include "sysml_test_support.h"

namespace fs = std::filesystem;
using namespace modelyne::interchange;

namespace {

// Beside the repository (../shared/corpora), or where MODELYNE_CORPORA says.
fs::path corpusRoot() {
  if (const char* env = std::getenv("MODELYNE_CORPORA")) return fs::path(env) / "sysmlv2";
  return fs::path(MODELYNE_SOURCE_DIR) / ".." / "shared" / "corpora" / "sysmlv2";
}
const fs::path kCorpus = corpusRoot();

std::vector<fs::path> corpusFiles() {
  std::vector<fs::path> out;
  if (!fs::exists(kCorpus)) return out;
  for (const auto& e : fs::recursive_directory_iterator(kCorpus))
    if (e.is_regular_file() && e.path().extension() == ".sysml") out.push_back(e.path());
  std::sort(out.begin(), out.end());
  return out;
}

std::string slurp(const fs::path& p) {
  std::ifstream in(p, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

}  // namespace

TEST(SysmlCorpus, EveryFileReadsWholeAndRoundTrips) {
  const std::vector<fs::path> files = corpusFiles();
  if (files.empty()) GTEST_SKIP() << "corpus not found at " << kCorpus;
  std::size_t declarations = 0, lost = 0, clean = 0, stable = 0;
  std::vector<std::string> unstable;
  for (const fs::path& f : files) {
    const std::string name = fs::relative(f, kCorpus).string();
    const std::string text = slurp(f);
    const SysmlContent first = readSysml(text, name);
    const std::size_t statements = support::countStatements(parseSysml(text).statements);
    EXPECT_TRUE(first.report.errors.empty()) << name << ":" << first.report.errors.front().line << ":"
                                             << first.report.errors.front().column << ": "
                                             << first.report.errors.front().message;
    EXPECT_EQ(first.report.total(), statements) << name;
    if (first.report.errors.empty()) ++clean;
    declarations += first.report.total();
    lost += first.report.lost;

    const SysmlExport exported = exportSysml(first.models, "out.sysml");
    const SysmlContent second = readSysml(exported.text, "out.sysml");
    EXPECT_TRUE(second.report.errors.empty()) << name << " exported:\n" << exported.text;
    const bool same = support::signature(first.models) == support::signature(second.models);
    const bool bytes = exportSysml(second.models, "out.sysml").text == exported.text;
    if (same && bytes) ++stable;
    else unstable.push_back(name);
  }
  std::cout << "corpus: " << files.size() << " files, " << clean << " without syntax errors, " << stable
            << " round-trip stable; " << declarations << " declarations, " << lost << " only in the loss report ("
            << (declarations ? 100.0 * static_cast<double>(lost) / static_cast<double>(declarations) : 0.0)
            << " %)\n";
  for (const std::string& u : unstable) std::cout << "  not round-trip stable: " << u << "\n";
  EXPECT_EQ(files.size(), 252u);
  // Files whose second import differs from the first or whose second export
  // differs in bytes; this number may only go down.
  EXPECT_LE(unstable.size(), 16u);
  EXPECT_LE(lost * 20, declarations);  // at most 5 %
}
