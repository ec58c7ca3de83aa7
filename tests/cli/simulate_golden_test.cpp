// Golden traces of `modelyne simulate`: every case of
// tests/sim/golden/cases.txt must print exactly its checked-in .trace and
// .jsonl files, and exit 0 exactly when the run completed. Changing a
// golden file is a deliberate step (scripts/regenerate-sim-goldens).
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "run_tool.h"

namespace modelyne::cli::test {
namespace {

namespace fs = std::filesystem;

const fs::path kSource = fs::path(MODELYNE_SOURCE_DIR);
const fs::path kGolden = kSource / "tests" / "sim" / "golden";

struct Case {
  std::string name;
  std::vector<std::string> args;
};

std::vector<Case> readCases() {
  std::vector<Case> cases;
  std::istringstream in(readText(kGolden / "cases.txt"));
  std::string line;
  while (std::getline(in, line)) {
    if (line.empty() || line[0] == '#') continue;
    Case c;
    std::size_t start = 0;
    for (;;) {
      const std::size_t bar = line.find('|', start);
      const std::string field = line.substr(start, bar - start);
      if (c.name.empty()) c.name = field;
      else c.args.push_back(field);
      if (bar == std::string::npos) break;
      start = bar + 1;
    }
    cases.push_back(std::move(c));
  }
  return cases;
}

TEST(SimulateGolden, EveryCaseMatchesItsTraces) {
  const std::vector<Case> cases = readCases();
  ASSERT_GE(cases.size(), 30u);
  for (const Case& c : cases) {
    std::vector<std::string> args{"simulate"};
    args.insert(args.end(), c.args.begin(), c.args.end());
    const ToolRun text = runTool(args, {}, kSource);
    EXPECT_EQ(text.out, readText(kGolden / (c.name + ".trace"))) << c.name;
    const bool completed = text.out.find("\tend\tcompleted\t") != std::string::npos;
    EXPECT_EQ(text.exitCode, completed ? 0 : 1) << c.name << ": " << text.err;

    args.insert(args.end(), {"--format", "jsonl"});
    const ToolRun jsonl = runTool(args, {}, kSource);
    EXPECT_EQ(jsonl.out, readText(kGolden / (c.name + ".jsonl"))) << c.name;
    EXPECT_EQ(jsonl.exitCode, text.exitCode) << c.name;
  }
}

TEST(SimulateGolden, SameInputSameBytes) {
  const std::vector<std::string> args{"simulate", "samples/act-order-fulfilment.xml", "--choose", "inStock=e6",
                                      "--format", "jsonl"};
  const ToolRun first = runTool(args, {}, kSource);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(runTool(args, {}, kSource).out, first.out);
}

// Faults of the user's options end the command with one error line.
TEST(SimulateGolden, OptionErrors) {
  const std::string act = "samples/act-order-fulfilment.xml";
  const struct {
    std::vector<std::string> args;
    std::string err;
  } kCases[] = {
      {{"--choose", "inStock=e99"}, "modelyne: error: --choose inStock=e99: 'e99' is no outgoing flow of 'inStock'\n"},
      {{"--choose", "nobody=e1"}, "modelyne: error: --choose names 'nobody', which is no node of the activity\n"},
      {{"--choose", "inStock"}, "modelyne: error: invalid --choose 'inStock' (expected NODE=EDGE)\n"},
      {{"--var", "x=abc"}, "modelyne: error: invalid --var 'x=abc' (VALUE must be a number)\n"},
      {{"--max-steps", "-1"}, "modelyne: error: invalid --max-steps '-1' (expected a whole number up to 10000000)\n"},
      {{"--format", "xml"}, "modelyne: error: invalid --format 'xml' (expected text or jsonl)\n"},
  };
  for (const auto& k : kCases) {
    std::vector<std::string> args{"simulate", act};
    args.insert(args.end(), k.args.begin(), k.args.end());
    const ToolRun r = runTool(args, {}, kSource);
    EXPECT_EQ(r.exitCode, 2) << k.err;
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(r.err, k.err);
  }
  const ToolRun bdd = runTool({"simulate", "samples/bdd-vehicle.xml"}, {}, kSource);
  EXPECT_EQ(bdd.exitCode, 2);
  EXPECT_EQ(bdd.err,
            "modelyne: error: samples/bdd-vehicle.xml: nothing to simulate: a Block Definition Diagram without "
            "activity nodes\n");
  const ToolRun loop = runTool({"simulate", "samples/sd-atm-withdrawal.xml", "--loop", "alt=2"}, {}, kSource);
  EXPECT_EQ(loop.exitCode, 2);
  EXPECT_EQ(loop.err, "modelyne: error: --loop names 'alt', which is no loop fragment of the interaction\n");
}

}  // namespace
}  // namespace modelyne::cli::test
