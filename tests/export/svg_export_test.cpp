// Exact SVG text of small diagrams: document frame, element writers, number
// format, escaping, palette, edge routes, end marks and self messages.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <vector>

#include "export/number_format.h"
#include "export/svg_export.h"
#include "export_tools.h"

namespace modelyne::exporter {
namespace {

using core::Anchor;
using core::EdgeType;
using core::ShapeType;
using testing::makeEdge;
using testing::makeNode;

constexpr const char* kHead = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
constexpr const char* kFont = "font-family=\"Meiryo, 'Yu Gothic UI', 'Segoe UI', sans-serif\"";

TEST(NumberFormat, TwoDecimalsWithoutTrailingZeros) {
  struct Case {
    double value;
    const char* text;
  };
  // value, expected text
  const Case cases[] = {
      {12.5, "12.5"},    {3.0, "3"},       {7.10f, "7.1"},   {7.0, "7"},      {-0.001, "-0"},
      {0.0, "0"},        {-0.0, "-0"},     {120, "120"},     {0.125, "0.12"}, {0.375, "0.38"},
      {2.675, "2.67"},   {-12.345f, "-12.35"}, {1e6, "1000000"}, {0.004, "0"},  {100.001, "100"},
  };
  for (const Case& c : cases) EXPECT_EQ(formatNumber(c.value), c.text) << c.value;
}

// The float fast path agrees with the C library's "%.2f" (trimmed here by hand)
// on exact ties, tiny and huge values, negative zero and random bit patterns.
TEST(NumberFormat, FloatPathMatchesPrintf) {
  auto reference = [](float v) {
    char buf[64];
    std::snprintf(buf, sizeof buf, "%.2f", static_cast<double>(v));
    std::string s = buf;
    if (s.find('.') != std::string::npos) {
      while (s.back() == '0') s.pop_back();
      if (s.back() == '.') s.pop_back();
    }
    return s.empty() ? std::string("0") : s;
  };
  std::vector<float> values = {0.125f, 0.375f, 0.625f, 2.5f, -0.125f, -0.005f, 0.005f, 1e-30f, -1e-30f, -0.0f,
                               16777216.0f, 1.5e15f, 9.1e13f, 3.4e38f, -3.4e38f, 7.1f, 48.36f, 1234567.875f};
  std::uint32_t bits = 0x12345678u;
  for (int i = 0; i < 200000; ++i) {
    bits = bits * 1664525u + 1013904223u;
    float f;
    std::memcpy(&f, &bits, sizeof f);
    if (std::isfinite(f)) values.push_back(f);
    values.push_back(static_cast<float>(static_cast<int>(bits % 2000000) - 1000000) / 800.0f);
  }
  for (float v : values) {
    char buf[kNumberBufferSize];
    const std::string got(buf, static_cast<std::size_t>(writeNumber(buf, v) - buf));
    ASSERT_EQ(got, reference(v)) << v;
  }
}

TEST(SvgExport, EmptyDiagramIgnoresMargin) {
  const std::string svg = svgText({}, {}, {50.0f, true});
  EXPECT_EQ(svg, std::string(kHead) +
                     "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"320\" height=\"200\" viewBox=\"0 0 320 200\">\n"
                     "<rect x=\"0\" y=\"0\" width=\"320\" height=\"200\" fill=\"#FFFFFF\"/>\n"
                     "</svg>\n");
}

TEST(SvgExport, SingleRectangleWithEscapedLabel) {
  std::vector<core::Node> nodes{makeNode("a", ShapeType::rect, 10, 20, 100, 50, "a<b & 'c'")};
  nodes[0].fillColor = "Blue";  // colour names are case-sensitive: default fill
  EXPECT_EQ(svgText(nodes, {}, {20.0f, false}),
            std::string(kHead) +
                "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"140\" height=\"90\" viewBox=\"-10 0 140 90\">\n"
                "<rect x=\"10\" y=\"20\" width=\"100\" height=\"50\" rx=\"4\" fill=\"#F5F6FA\" stroke=\"#3C4050\" "
                "stroke-width=\"1.5\"/>\n"
                "<text x=\"60\" y=\"48.36\" " + kFont +
                " font-size=\"12\" fill=\"#1E222C\" text-anchor=\"middle\">a&lt;b &amp; &apos;c&apos;</text>\n"
                "</svg>\n");
}

TEST(SvgExport, PaletteAndMultiLineLabels) {
  std::vector<core::Node> nodes{makeNode("a", ShapeType::oval, 0, 0, 100, 60, "one\ntwo"),
                                makeNode("b", ShapeType::bpmnEndEvent, 200, 0, 40, 40, "end")};
  nodes[0].fillColor = "green";
  nodes[1].fillColor = "purple";
  const std::string svg = svgText(nodes, {}, {0.0f, false});
  // Two lines: first baseline 0 + 30 - 14 + 9.36 + 1, then 14 lower.
  EXPECT_NE(svg.find("<ellipse cx=\"50\" cy=\"30\" rx=\"50\" ry=\"30\" fill=\"#78C882\" stroke=\"#3C4050\" "
                     "stroke-width=\"1.5\"/>\n<text x=\"50\" y=\"26.36\" "),
            std::string::npos);
  EXPECT_NE(svg.find("<text x=\"50\" y=\"40.36\" "), std::string::npos);
  // The end event has the thick outline and a 9-unit label: 20 - 7 + 7.02 + 1.
  EXPECT_NE(svg.find("<ellipse cx=\"220\" cy=\"20\" rx=\"20\" ry=\"20\" fill=\"#B482E6\" stroke=\"#3C4050\" "
                     "stroke-width=\"3\"/>\n<text x=\"220\" y=\"21.02\" " + std::string(kFont) +
                     " font-size=\"9\""),
            std::string::npos);
}

TEST(SvgExport, DoubleArrowHasOneHeadAtTheSource) {
  const std::vector<core::Node> nodes{makeNode("a", ShapeType::rect, 0, 0, 100, 50),
                                      makeNode("b", ShapeType::rect, 200, 0, 100, 50)};
  const std::vector<core::Edge> edges{
      makeEdge("e", "a", Anchor::right, "b", Anchor::left, EdgeType::straightDoubleArrow, "x & y")};
  EXPECT_EQ(svgText(nodes, edges, {0.0f, false}),
            std::string(kHead) +
                "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"300\" height=\"50\" viewBox=\"0 0 300 50\">\n"
                "<line x1=\"100\" y1=\"25\" x2=\"200\" y2=\"25\" stroke=\"#3C4050\" stroke-width=\"1.5\"/>\n"
                "<polyline points=\"110,20 100,25 110,30\" fill=\"none\" stroke=\"#3C4050\" stroke-width=\"1.5\"/>\n"
                "<text x=\"150\" y=\"20\" " + kFont +
                " font-size=\"9\" fill=\"#1E222C\" text-anchor=\"middle\">x &amp; y</text>\n"
                "<rect x=\"0\" y=\"0\" width=\"100\" height=\"50\" rx=\"4\" fill=\"#F5F6FA\" stroke=\"#3C4050\" "
                "stroke-width=\"1.5\"/>\n"
                "<rect x=\"200\" y=\"0\" width=\"100\" height=\"50\" rx=\"4\" fill=\"#F5F6FA\" stroke=\"#3C4050\" "
                "stroke-width=\"1.5\"/>\n"
                "</svg>\n");
}

TEST(SvgExport, EdgeToMissingNodeWritesNothing) {
  const std::vector<core::Node> nodes{makeNode("a", ShapeType::rect, 0, 0, 100, 50)};
  const std::vector<core::Edge> dangling{
      makeEdge("e", "a", Anchor::right, "ghost", Anchor::left, EdgeType::composition, "label"),
      makeEdge("f", "", Anchor::right, "a", Anchor::left, EdgeType::straightArrow)};
  EXPECT_EQ(svgText(nodes, dangling, {24.0f, true}), svgText(nodes, {}, {24.0f, true}));
}

TEST(SvgExport, MarksByEdgeType) {
  const std::vector<core::Node> nodes{makeNode("a", ShapeType::rect, 0, 0, 100, 50),
                                      makeNode("b", ShapeType::rect, 0, 200, 100, 50)};
  auto svgOf = [&](EdgeType t) {
    const std::vector<core::Edge> edges{makeEdge("e", "a", Anchor::bottom, "b", Anchor::top, t)};
    return svgText(nodes, edges, {0.0f, false});
  };
  // Composition: filled diamond at the source (50, 50) pointing up, no other mark.
  const std::string comp = svgOf(EdgeType::composition);
  EXPECT_NE(comp.find("<polygon points=\"50,50 55,58 50,66 45,58\" fill=\"#3C4050\""), std::string::npos) << comp;
  EXPECT_EQ(comp.find("<polyline"), std::string::npos);
  // Generalization: hollow triangle at the target (50, 200) pointing down.
  const std::string gen = svgOf(EdgeType::generalization);
  EXPECT_NE(gen.find("<polygon points=\"50,200 44,188 56,188\" fill=\"#FFFFFF\""), std::string::npos) << gen;
  // Realization is dashed with the same head; bpmnMessage is solid with none.
  EXPECT_NE(svgOf(EdgeType::realization).find("stroke-width=\"1.5\" stroke-dasharray=\"5,3\"/>"), std::string::npos);
  const std::string msg = svgOf(EdgeType::bpmnMessage);
  EXPECT_EQ(msg.find("dasharray"), std::string::npos);
  EXPECT_EQ(msg.find("<poly"), std::string::npos);
  // An out-of-range type draws as straightArrow.
  EXPECT_EQ(svgOf(static_cast<EdgeType>(99)), svgOf(EdgeType::straightArrow));
}

TEST(SvgExport, ElbowAndCurvedRoutes) {
  const std::vector<core::Node> nodes{makeNode("a", ShapeType::rect, 0, 0, 100, 50),
                                      makeNode("b", ShapeType::rect, 200, 50, 100, 50)};
  const std::vector<core::Edge> elbow{
      makeEdge("e", "a", Anchor::right, "b", Anchor::left, EdgeType::elbowArrow, "go")};
  const std::string svg = svgText(nodes, elbow, {0.0f, false});
  EXPECT_NE(svg.find("<polyline points=\"100,25 114,25 150,25 150,75 186,75 200,75\" fill=\"none\""),
            std::string::npos)
      << svg;
  EXPECT_NE(svg.find("<polyline points=\"190,80 200,75 190,70\""), std::string::npos);
  // The label sits 5 above the middle of the middle segment (150,25)-(150,75).
  EXPECT_NE(svg.find("<text x=\"150\" y=\"45\" "), std::string::npos);

  const std::vector<core::Edge> curve{
      makeEdge("e", "a", Anchor::right, "b", Anchor::left, EdgeType::curvedArrow, "c")};
  const std::string c = svgText(nodes, curve, {0.0f, false});
  EXPECT_NE(c.find("<path d=\"M 100 25 C 150 25 150 75 200 75\" fill=\"none\" stroke=\"#3C4050\" "
                   "stroke-width=\"1.5\"/>\n"),
            std::string::npos)
      << c;
  // Target head along (150,75) -> (200,75); label at the curve's midpoint (150, 50) minus 5.
  EXPECT_NE(c.find("<polyline points=\"190,80 200,75 190,70\""), std::string::npos);
  EXPECT_NE(c.find("<text x=\"150\" y=\"45\" "), std::string::npos);
}

TEST(SvgExport, SelfMessagesLoopToTheRight) {
  std::vector<core::Node> nodes{makeNode("L", ShapeType::umlLifeline, 0, 0, 100, 300)};
  core::Edge sync = makeEdge("m", "L", Anchor::right, "L", Anchor::right, EdgeType::sysmlSyncMessage, "tick");
  sync.srcAnchorDY = 50;
  sync.tgtAnchorDY = 50;
  EXPECT_EQ(svgText(nodes, std::vector<core::Edge>{sync}, {0.0f, false}),
            std::string(kHead) +
                "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"100\" height=\"300\" viewBox=\"0 0 100 300\">\n"
                "<polyline points=\"50,50 84,50 84,66 50,66\" fill=\"none\" stroke=\"#3C4050\" stroke-width=\"1.5\"/>\n"
                "<polygon points=\"50,66 62,60 62,72\" fill=\"#3C4050\" stroke=\"#3C4050\" stroke-width=\"1.5\"/>\n"
                "<text x=\"90\" y=\"58\" " + kFont +
                " font-size=\"9\" fill=\"#1E222C\" text-anchor=\"start\">tick</text>\n"
                "<rect x=\"0\" y=\"0\" width=\"100\" height=\"34\" fill=\"#F5F6FA\" stroke=\"#3C4050\" "
                "stroke-width=\"1.5\"/>\n"
                "<line x1=\"50\" y1=\"34\" x2=\"50\" y2=\"300\" stroke=\"#3C4050\" stroke-width=\"1.5\" "
                "stroke-dasharray=\"5,3\"/>\n"
                "</svg>\n");

  // A delete message far apart: open head and the cross at the lower end; reply is dashed.
  core::Edge del = makeEdge("d", "L", Anchor::right, "L", Anchor::right, EdgeType::sysmlDeleteMessage);
  del.srcAnchorDY = 200;
  del.tgtAnchorDY = 100;
  const std::string svg = svgText(nodes, std::vector<core::Edge>{del}, {0.0f, false});
  EXPECT_NE(svg.find("<polyline points=\"50,100 84,100 84,200 50,200\""), std::string::npos) << svg;
  EXPECT_NE(svg.find("<polyline points=\"60,195 50,200 60,205\""), std::string::npos);
  EXPECT_NE(svg.find("<line x1=\"44\" y1=\"194\" x2=\"56\" y2=\"206\""), std::string::npos);
  EXPECT_NE(svg.find("<line x1=\"44\" y1=\"206\" x2=\"56\" y2=\"194\""), std::string::npos);
}

TEST(SvgExport, MessageEndsUseTheOffsetOnTheLifeline) {
  const std::vector<core::Node> nodes{makeNode("a", ShapeType::umlLifeline, 0, 0, 100, 300),
                                      makeNode("b", ShapeType::umlLifeline, 200, 0, 100, 300)};
  core::Edge m = makeEdge("m", "a", Anchor::right, "b", Anchor::left, EdgeType::sysmlAsyncMessage);
  m.srcAnchorDY = 80;  // the target end has no offset: it takes the port's point
  const std::string svg = svgText(nodes, std::vector<core::Edge>{m}, {0.0f, false});
  EXPECT_NE(svg.find("<line x1=\"50\" y1=\"80\" x2=\"200\" y2=\"150\""), std::string::npos) << svg;
  // Offsets mean nothing to other edge types.
  core::Edge plain = m;
  plain.type = EdgeType::straight;
  const std::string p = svgText(nodes, std::vector<core::Edge>{plain}, {0.0f, false});
  EXPECT_NE(p.find("<line x1=\"100\" y1=\"150\" x2=\"200\" y2=\"150\""), std::string::npos);
}

TEST(SvgExport, CompartmentsOfBlocks) {
  std::vector<core::Node> nodes{makeNode("b", ShapeType::sysmlBlock, 0, 0, 200, 100, "Vehicle")};
  nodes[0].properties["values"] = "mass : kg\nrange : km";
  nodes[0].properties["parts"] = "engine : Engine";
  const std::string svg = svgText(nodes, {}, {0.0f, false});
  const std::string expected =
      "<rect x=\"0\" y=\"0\" width=\"200\" height=\"100\" rx=\"4\" fill=\"#F5F6FA\" stroke=\"#3C4050\" "
      "stroke-width=\"1.5\"/>\n"
      "<text x=\"100\" y=\"15.36\" " + std::string(kFont) +
      " font-size=\"12\" fill=\"#1E222C\" text-anchor=\"middle\">Vehicle</text>\n"
      "<line x1=\"0\" y1=\"24\" x2=\"200\" y2=\"24\" stroke=\"#3C4050\" stroke-width=\"1.5\"/>\n"
      "<text x=\"6\" y=\"36\" " + kFont + " font-size=\"9\" fill=\"#1E222C\" text-anchor=\"start\">parts</text>\n"
      "<text x=\"6\" y=\"50\" " + kFont +
      " font-size=\"11\" fill=\"#1E222C\" text-anchor=\"start\">engine : Engine</text>\n"
      "<line x1=\"0\" y1=\"56\" x2=\"200\" y2=\"56\" stroke=\"#3C4050\" stroke-width=\"1.5\"/>\n"
      "<text x=\"6\" y=\"68\" " + kFont + " font-size=\"9\" fill=\"#1E222C\" text-anchor=\"start\">values</text>\n"
      "<text x=\"6\" y=\"82\" " + kFont +
      " font-size=\"11\" fill=\"#1E222C\" text-anchor=\"start\">mass : kg</text>\n"
      "<text x=\"6\" y=\"96\" " + kFont +
      " font-size=\"11\" fill=\"#1E222C\" text-anchor=\"start\">range : km</text>\n"
      "</svg>\n";
  ASSERT_GE(svg.size(), expected.size());
  EXPECT_EQ(svg.substr(svg.size() - expected.size()), expected);

  // Below 44 units high the block shows only its centred name.
  nodes[0].geom.h = 40;
  const std::string flat = svgText(nodes, {}, {0.0f, false});
  EXPECT_EQ(flat.find("<line"), std::string::npos);
  EXPECT_NE(flat.find("<text x=\"100\" y=\"23.36\" "), std::string::npos);
}

}  // namespace
}  // namespace modelyne::exporter
