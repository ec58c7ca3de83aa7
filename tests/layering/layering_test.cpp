// The layers of the source tree, checked on the files themselves: for each
// subsystem folder, the project folders its files may include and whether it
// may use Qt. A folder missing from the table fails, so a new subsystem
// arrives with its row.
#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

struct Layer {
  std::set<std::string> mayInclude;  ///< project folders, itself included
  bool qt = false;
};

// What each subsystem stands on. Lower layers first; nothing lists a folder
// that lists it back.
const std::map<std::string, Layer>& layers() {
  static const std::map<std::string, Layer> table = {
      {"core", {{"core"}}},
      {"layout", {{"core", "layout"}}},
      {"io", {{"core", "io"}}},
      {"bridge", {{"core", "io", "layout", "bridge"}}},
      {"interchange", {{"core", "io", "bridge", "layout", "interchange"}}},
      {"check", {{"core", "check"}}},
      {"export", {{"core", "export"}}},
      {"explain", {{"core", "explain"}}},
      {"sim", {{"core", "bridge", "sim"}}},
      {"ai", {{"core", "bridge", "ai"}}},
      {"cloud", {{"ai", "cloud"}}},
      {"render", {{"core", "io", "export", "render"}, true}},
      {"cli", {{"core", "io", "bridge", "interchange", "check", "export", "explain", "sim", "ai", "cloud", "render", "cli"}}},
      {"shell", {{"core", "io", "bridge", "interchange", "check", "export", "explain", "sim", "ai", "cloud", "render", "shell"}, true}},
  };
  return table;
}

struct Include {
  std::string file;  ///< relative to src/
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
  std::sort(out.begin(), out.end(), [](const Include& a, const Include& b) {
    return a.file != b.file ? a.file < b.file : a.line < b.line;
  });
  return out;
}

bool isQt(const std::string& header) {
  return header.rfind("Qt", 0) == 0 || (header.size() > 1 && header[0] == 'Q' && std::isupper(static_cast<unsigned char>(header[1])));
}

/// The project folder a quoted include names ("core/model.h" -> "core"), or
/// empty for a standard or third-party header.
std::string projectFolder(const std::string& header) {
  const auto slash = header.find('/');
  if (slash == std::string::npos) return {};
  const std::string folder = header.substr(0, slash);
  return layers().count(folder) ? folder : std::string();
}

const fs::path kSrc = fs::path(MODELYNE_SOURCE_DIR) / "src";

}  // namespace

TEST(Layering, EverySubsystemFolderHasARow) {
  for (const auto& entry : fs::directory_iterator(kSrc)) {
    if (!entry.is_directory()) continue;
    EXPECT_TRUE(layers().count(entry.path().filename().string())) << "src/" << entry.path().filename().string() << " has no row in the layering table";
  }
}

TEST(Layering, EachSubsystemIncludesOnlyWhatItsRowAllows) {
  int checked = 0;
  for (const Include& inc : includesUnder(kSrc)) {
    const std::string from = inc.file.substr(0, inc.file.find('/'));
    const auto row = layers().find(from);
    if (row == layers().end()) continue;  // reported by the test above
    ++checked;
    const std::string where = "src/" + inc.file + ":" + std::to_string(inc.line) + " includes " + inc.target;
    if (isQt(inc.target)) {
      EXPECT_TRUE(row->second.qt) << where << ", but " << from << " may not use Qt";
      continue;
    }
    const std::string to = projectFolder(inc.target);
    if (!to.empty()) {
      EXPECT_TRUE(row->second.mayInclude.count(to)) << where << ", but " << from << " may not use " << to;
    }
  }
  EXPECT_GT(checked, 300);
}

// The table itself has no cycle: a folder never stands on one that stands on it.
TEST(Layering, TableIsACycleFreeOrder) {
  for (const auto& [name, layer] : layers()) {
    EXPECT_TRUE(layer.mayInclude.count(name)) << name;
    for (const std::string& below : layer.mayInclude) {
      if (below == name) continue;
      ASSERT_TRUE(layers().count(below)) << name << " names unknown " << below;
      EXPECT_FALSE(layers().at(below).mayInclude.count(name)) << name << " and " << below << " include each other";
    }
  }
}

// The recognisers: a Qt header is recognised, a standard one is not; only
// the table's folders count as project folders.
TEST(Layering, RecognisesHeaders) {
  EXPECT_TRUE(isQt("QWidget"));
  EXPECT_TRUE(isQt("QtCore/QString"));
  EXPECT_FALSE(isQt("queue"));
  EXPECT_FALSE(isQt("string"));
  EXPECT_EQ(projectFolder("core/model.h"), "core");
  EXPECT_EQ(projectFolder("gtest/gtest.h"), "");
  EXPECT_EQ(projectFolder("vector"), "");
}
