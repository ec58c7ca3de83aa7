// What a node covers beyond its box (the page rule and everything painted),
// and the cap on drawn label text.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "export/diagram_drawing.h"
#include "export/node_outlines.h"
#include "export/svg_export.h"
#include "export_tools.h"

namespace modelyne::exporter {
namespace {

using core::ShapeType;
using testing::makeNode;

struct Box {
  float minX, minY, maxX, maxY;
};

void expectBox(const Extent& e, Box b, const char* what) {
  SCOPED_TRACE(what);
  ASSERT_TRUE(e.any);
  EXPECT_NEAR(e.minX, b.minX, 1e-3);
  EXPECT_NEAR(e.minY, b.minY, 1e-3);
  EXPECT_NEAR(e.maxX, b.maxX, 1e-3);
  EXPECT_NEAR(e.maxY, b.maxY, 1e-3);
}

// Expected values by hand: a glyph is 0.62 of the size wide, descenders
// reach 0.3 of the size below the baseline.
TEST(NodeCover, PageRuleAndPaintedLabels) {
  // Actor: the page keeps 18 below the box; the name (6 x 12 x 0.62 = 44.64
  // wide, baseline 14 below) is wider than the box.
  const NodeCover actor = nodeCover(makeNode("a", ShapeType::umlActor, 100, 50, 40, 70, "Driver"));
  expectBox(actor.page, {100, 50, 140, 138}, "actor page");
  expectBox(actor.painted, {97.68f, 50, 142.32f, 138}, "actor painted");

  // Pin: the page takes the label at 4 x 9 x 0.62 = 22.32 and 15 below;
  // painted, its descenders reach 10 + 13 + 2.7.
  const NodeCover pin = nodeCover(makeNode("p", ShapeType::sysmlPin, 0, 0, 10, 10, "abcd"));
  expectBox(pin.page, {-6.16f, 0, 16.16f, 25}, "pin page");
  expectBox(pin.painted, {-6.16f, 0, 16.16f, 25.7f}, "pin painted");

  // Wait-time action: the page takes only the box; its label (7 x 9 x 0.62
  // = 39.06 wide, baseline 12 below) is painted under it.
  const NodeCover wait = nodeCover(makeNode("w", ShapeType::sysmlWaitTimeAction, 0, 0, 20, 30, "wait 5s"));
  expectBox(wait.page, {0, 0, 20, 30}, "wait page");
  expectBox(wait.painted, {-9.53f, 0, 29.53f, 44.7f}, "wait painted");

  // Port on the top side: the page takes the square; the label "p : T" at
  // size 11 (5 x 11 x 0.62 = 34.1 wide) sits above it, baseline 4 over.
  core::Node port = makeNode("q", ShapeType::sysmlPort, 0, 0, 20, 20, "p");
  port.properties["boundarySide"] = "top";
  port.properties["type"] = "T";
  const NodeCover p = nodeCover(port);
  expectBox(p.page, {0, 0, 20, 20}, "port page");
  expectBox(p.painted, {-7.05f, -15, 27.05f, 20}, "port painted");

  // An ordinary box covers itself alone; a node without finite geometry nothing.
  const NodeCover box = nodeCover(makeNode("r", ShapeType::rect, 5, 6, 7, 8, "a very long label indeed"));
  expectBox(box.painted, {5, 6, 12, 14}, "box");
  const float nan = std::numeric_limits<float>::quiet_NaN();
  EXPECT_FALSE(nodeCover(makeNode("n", ShapeType::umlActor, nan, nan, 10, 10, "x")).page.any);
  EXPECT_EQ(estimatedTextWidth("abc", 10), 3 * 10 * 0.62f);
}

// Labels up to the cap are drawn as they are; longer ones are cut at a
// character boundary and end in an ellipsis, in SVG and raster alike.
TEST(LabelCap, LongLabelsEndInAnEllipsis) {
  const std::string atCap(kMaxLabelBytes, 'a');
  std::string storage;
  EXPECT_EQ(shownLabel(atCap, storage).data(), atCap.data());
  EXPECT_EQ(shownLabel(atCap + "b", storage), atCap + "\xE2\x80\xA6");
  // "\xC3\xA9" (e acute) would be split by the cap: it goes whole.
  const std::string straddling = std::string(kMaxLabelBytes - 1, 'a') + "\xC3\xA9" + "tail";
  EXPECT_EQ(shownLabel(straddling, storage), std::string(kMaxLabelBytes - 1, 'a') + "\xE2\x80\xA6");

  const std::string label = std::string(kMaxLabelBytes, 'x') + "\nsecond line";
  const std::string svg = svgText(std::vector<core::Node>{makeNode("t", ShapeType::text, 0, 0, 100, 40, label)},
                                  {}, {0.0f, false});
  EXPECT_NE(svg.find(">" + std::string(kMaxLabelBytes, 'x') + "\xE2\x80\xA6</text>\n"), std::string::npos);
  EXPECT_EQ(svg.find("second line"), std::string::npos);
  EXPECT_EQ(svg.find("<text", svg.find("<text") + 1), std::string::npos);  // one line only
}

}  // namespace
}  // namespace modelyne::exporter
