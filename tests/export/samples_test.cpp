// Every sample model under samples/ reads, and exports to SVG (with its
// diagram frame) that xmllint and rsvg-convert accept; each sample uses only
// shape and edge types of its own diagram kind's notation and draws them all.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <vector>

#include "export/svg_export.h"
#include "export_tools.h"
#include "io/atomic_file.h"
#include "io/diagram_reader.h"

namespace modelyne::exporter {
namespace {

std::vector<std::filesystem::path> samples() {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::path(MODELYNE_SOURCE_DIR) / "samples"))
    if (entry.path().extension() == ".xml") files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

TEST(Samples, OneSamplePerDiagramKindExportsToValidSvg) {
  const auto files = samples();
  std::set<std::string> kinds;
  const auto dir = testing::scratchDir("samples-svg");
  for (const auto& file : files) {
    SCOPED_TRACE(file.filename().string());
    io::ReadError error;
    const auto content = io::readDiagram(testing::readAll(file), &error);
    ASSERT_TRUE(content.has_value()) << error.what << " line " << error.line;
    EXPECT_FALSE(content->nodes.empty());
    const std::string kind(core::diagramKindKey(content->frame.kind));
    // The file name starts with the kind key of its frame line.
    EXPECT_EQ(file.filename().string().rfind(kind + "-", 0), 0u);
    kinds.insert(kind);

    const auto svgFile = dir / (file.stem().string() + ".svg");
    std::string writeError;
    ASSERT_TRUE(io::writeFileAtomic(svgFile, svgText(content->nodes, content->edges, {24.0f, true}), &writeError))
        << writeError;
    EXPECT_TRUE(testing::xmllintAccepts(svgFile));
    EXPECT_TRUE(testing::rsvgRenders(svgFile));
    const std::string framed = svgText(content->nodes, content->edges, {24.0f, true}, &content->frame);
    EXPECT_NE(framed.find(">" + kind + " ["), std::string::npos);
  }
  EXPECT_EQ(kinds.size(), static_cast<std::size_t>(core::kDiagramKindCount));
}

}  // namespace
}  // namespace modelyne::exporter
