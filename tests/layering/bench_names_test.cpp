// scripts/bench runs the programs named bench_*: every benchmark program
// declared under bench/ must carry that name, or it is silently skipped.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

TEST(BenchPrograms, AreNamedSoThatTheBenchScriptRunsThem) {
  const std::regex declared(R"((modelyne_bench|add_executable)\(\s*([A-Za-z0-9_.-]+))");
  std::vector<std::string> programs, misnamed;
  for (const auto& entry : fs::recursive_directory_iterator(fs::path(MODELYNE_SOURCE_DIR) / "bench")) {
    if (entry.path().filename() != "CMakeLists.txt") continue;
    std::ifstream in(entry.path());
    std::stringstream text;
    text << in.rdbuf();
    const std::string s = text.str();
    for (std::sregex_iterator it(s.begin(), s.end(), declared), end; it != end; ++it) {
      const std::string name = (*it)[2];
      if (name == "modelyne-gen") continue;  // the synthetic-diagram tool, not a benchmark
      programs.push_back(name);
      if (!name.starts_with("bench_")) misnamed.push_back(name);
    }
  }
  EXPECT_GE(programs.size(), 9u);  // one or more per subsystem with benchmarks
  EXPECT_TRUE(misnamed.empty()) << ::testing::PrintToString(misnamed);
}

}  // namespace
