// The layers of the source tree: only the desktop shell and the raster
// renderer may use Qt, and the document core (outside its bridge) depends
// on nothing but itself and the standard library.
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <regex>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

struct Include {
  std::string file;
  int line;
  std::string target;
};

std::vector<Include> includesUnder(const fs::path& root) {
  static const std::regex directive(R"(^\s*#\s*include\s*[<"]([^>"]+)[>"])");
  std::vector<Include> out;
  for (const auto& entry : fs::recursive_directory_iterator(root)) {
    if (!entry.is_regular_file()) continue;
    const auto ext = entry.path().extension();
    if (ext != ".h" && ext != ".cpp" && ext != ".hpp" && ext != ".cc") continue;
    std::ifstream in(entry.path());
    std::string text;
    int n = 0;
    while (std::getline(in, text)) {
      ++n;
      std::smatch m;
      if (std::regex_search(text, m, directive)) out.push_back({fs::relative(entry.path(), root).generic_string(), n, m[1]});
    }
  }
  return out;
}

bool isQt(const std::string& header) {
  return header.rfind("Qt", 0) == 0 || (header.size() > 1 && header[0] == 'Q' && std::isupper(static_cast<unsigned char>(header[1])));
}

const fs::path kSrc = fs::path(MODELYNE_SOURCE_DIR) / "src";

}  // namespace

TEST(Layering, OnlyShellAndRenderIncludeQt) {
  int checked = 0;
  for (const Include& inc : includesUnder(kSrc)) {
    ++checked;
    const bool allowed = inc.file.rfind("shell/", 0) == 0 || inc.file.rfind("render/", 0) == 0;
    if (!allowed) {
      EXPECT_FALSE(isQt(inc.target)) << "src/" << inc.file << ":" << inc.line << " includes " << inc.target;
    }
  }
  EXPECT_GT(checked, 100);
}

TEST(Layering, CoreOutsideTheBridgeIncludesOnlyCore) {
  int checked = 0;
  for (const Include& inc : includesUnder(kSrc / "core")) {
    if (inc.file.rfind("bridge/", 0) == 0) continue;
    ++checked;
    // Project headers are written with their subsystem folder ("core/model.h");
    // anything else with a slash or a quote form is another subsystem's.
    const bool project = inc.target.find('/') != std::string::npos || inc.target.find(".h") != std::string::npos;
    if (project) {
      EXPECT_EQ(inc.target.rfind("core/", 0), 0u) << "src/core/" << inc.file << ":" << inc.line << " includes " << inc.target;
    }
  }
  EXPECT_GT(checked, 10);
}

// The rules themselves: a Qt header is recognised, a standard one is not.
TEST(Layering, RecognisesQtHeaders) {
  EXPECT_TRUE(isQt("QWidget"));
  EXPECT_TRUE(isQt("QtCore/QString"));
  EXPECT_FALSE(isQt("queue"));
  EXPECT_FALSE(isQt("string"));
}
