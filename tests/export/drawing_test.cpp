// The drawing list behind every output: page bounds, the orthogonal route,
// outlines kept inside their node boxes, and diagrams that are broken in
// every way still exporting to SVG that outside tools accept.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "core/catalogue.h"
#include "export/diagram_drawing.h"
#include "export/orthogonal_route.h"
#include "export/svg_export.h"
#include "export/svg_writer.h"
#include "export_tools.h"
#include "io/atomic_file.h"

namespace modelyne::exporter {
namespace {

using core::Anchor;
using core::EdgeType;
using core::ShapeType;
using testing::makeEdge;
using testing::makeNode;

std::vector<Point> route(Point a, Point da, Point b, Point db) { return orthogonalRoute(a, da, b, db); }

std::string text(const std::vector<Point>& pts) {
  std::string s;
  for (const Point& p : pts) s += "(" + std::to_string(int(p.x)) + "," + std::to_string(int(p.y)) + ")";
  return s;
}

TEST(OrthogonalRoute, BendsByStubDirections) {
  const Point R{1, 0}, L{-1, 0}, D{0, 1}, U{0, -1};
  // Facing horizontal stubs: vertical segment at the middle x.
  EXPECT_EQ(text(route({100, 25}, R, {200, 75}, L)), "(100,25)(114,25)(150,25)(150,75)(186,75)(200,75)");
  // Same direction: vertical segment at the outermost x; the duplicate stub end is dropped.
  EXPECT_EQ(text(route({100, 25}, R, {200, 75}, R)), "(100,25)(114,25)(214,25)(214,75)(200,75)");
  // Opposite but turned away: horizontal segment at the middle y.
  EXPECT_EQ(text(route({100, 25}, L, {200, 75}, R)), "(100,25)(86,25)(86,50)(214,50)(214,75)(200,75)");
  // Facing vertical stubs: horizontal segment at the middle y.
  EXPECT_EQ(text(route({50, 50}, D, {150, 150}, U)), "(50,50)(50,64)(50,100)(150,100)(150,136)(150,150)");
  // Both pointing up: horizontal segment at the topmost y.
  EXPECT_EQ(text(route({50, 50}, U, {150, 150}, U)), "(50,50)(50,36)(150,36)(150,136)(150,150)");
  // Vertical source, horizontal target: one bend below the source.
  EXPECT_EQ(text(route({50, 50}, D, {200, 100}, L)), "(50,50)(50,64)(50,100)(186,100)(200,100)");
  // Horizontal source toward the target: the bend is level with the source.
  EXPECT_EQ(text(route({100, 25}, R, {200, 100}, U)), "(100,25)(114,25)(200,25)(200,86)(200,100)");
}

TEST(OrthogonalRoute, ConnectionPointsAndCornerStubs) {
  const core::NodeGeometry box{10, 20, 100, 50};
  const struct {
    Anchor anchor;
    float x, y;
  } cases[] = {{Anchor::top, 60, 20},         {Anchor::bottom, 60, 70},     {Anchor::left, 10, 45},
               {Anchor::right, 110, 45},      {Anchor::topLeft, 10, 20},    {Anchor::topRight, 110, 20},
               {Anchor::bottomLeft, 10, 70},  {Anchor::bottomRight, 110, 70}, {static_cast<Anchor>(42), 110, 45}};
  for (const auto& c : cases) {
    const Point p = connectionPoint(box, c.anchor);
    EXPECT_EQ(p.x, c.x) << static_cast<int>(c.anchor);
    EXPECT_EQ(p.y, c.y) << static_cast<int>(c.anchor);
  }
  // A corner leaves along the side that faces the other end more.
  const Point far_right = stubDirection(Anchor::topRight, {0, 0}, {100, -10});
  EXPECT_EQ(far_right.x, 1.0f);
  EXPECT_EQ(far_right.y, 0.0f);
  const Point far_up = stubDirection(Anchor::topRight, {0, 0}, {10, -100});
  EXPECT_EQ(far_up.x, 0.0f);
  EXPECT_EQ(far_up.y, -1.0f);
}

TEST(DiagramBounds, ActorsPortsAndPinLabelsWidenThePage) {
  std::vector<core::Node> nodes{makeNode("a", ShapeType::umlActor, 0, 0, 40, 70, "User")};
  Bounds b = diagramBounds(nodes, 10);
  EXPECT_EQ(b.x, -10);
  EXPECT_EQ(b.y, -10);
  EXPECT_EQ(b.width, 60);
  EXPECT_EQ(b.height, 108);  // 70 + 18 for the name, + 2 x 10

  // A pin label of 10 bytes: 10 * 9 * 0.62 = 55.8 wide, centred on x + w/2 = 6; 15 below.
  nodes = {makeNode("p", ShapeType::sysmlPin, 0, 0, 12, 12, "0123456789")};
  b = diagramBounds(nodes, 0);
  EXPECT_NEAR(b.x, 6 - 27.9, 1e-4);
  EXPECT_NEAR(b.width, 55.8, 1e-4);
  EXPECT_EQ(b.height, 27);

  // The port square stays inside its box, so it never widens the page.
  nodes = {makeNode("q", ShapeType::sysmlPort, 0, 0, 30, 16)};
  nodes[0].properties["boundarySide"] = "right";
  b = diagramBounds(nodes, 0);
  EXPECT_EQ(b.width, 30);
  EXPECT_EQ(b.height, 16);

  // Coordinates beyond 1e9 are clipped by the initial extremes, as the page rule has it.
  nodes = {makeNode("far", ShapeType::rect, 2e9f, 2e9f, 10, 10)};
  b = diagramBounds(nodes, 0);
  EXPECT_EQ(b.x, 1e9f);
}

/// Extent of a primitive's geometry; texts are left out (labels may leave the box).
bool insideBox(const DrawingList& d, const Primitive& p, const core::NodeGeometry& g) {
  constexpr float eps = 1e-3f;
  auto in = [&](float x, float y) {
    return x >= g.x - eps && x <= g.x + g.w + eps && y >= g.y - eps && y <= g.y + g.h + eps;
  };
  switch (p.kind) {
    case PrimitiveKind::rect: return in(p.v[0], p.v[1]) && in(p.v[0] + p.v[2], p.v[1] + p.v[3]);
    case PrimitiveKind::ellipse: return in(p.v[0] - p.v[2], p.v[1] - p.v[3]) && in(p.v[0] + p.v[2], p.v[1] + p.v[3]);
    case PrimitiveKind::line: return in(p.v[0], p.v[1]) && in(p.v[2], p.v[3]);
    case PrimitiveKind::cubic: return in(p.v[0], p.v[1]) && in(p.v[6], p.v[7]);
    case PrimitiveKind::polygon:
    case PrimitiveKind::polyline:
      for (std::uint32_t i = 0; i < p.count; ++i)
        if (!in(d.pointsOf(p)[i].x, d.pointsOf(p)[i].y)) return false;
      return true;
    case PrimitiveKind::text: return true;
  }
  return false;
}

TEST(NodeOutlines, EveryShapeStaysInsideItsBox) {
  for (const core::ShapeInfo& info : core::shapeCatalogue()) {
    for (const core::NodeGeometry g : {core::NodeGeometry{100, 100, 80, 60}, core::NodeGeometry{0, 0, 16, 16},
                                       core::NodeGeometry{5, 5, 200, 30}}) {
      core::Node n = makeNode("n", info.type, g.x, g.y, g.w, g.h, "Name\nsecond line");
      n.properties = {{"operator", "loop"}, {"boundarySide", "top"},   {"direction", "inout"},
                      {"parts", "a : A\nb : B"}, {"values", "v : Real"}, {"contextBlock", "Camera"},
                      {"frameLabel", "Light Path"}, {"numOperands", "3"}, {"guard", "x > 0"}};
      const DrawingList d = buildDrawing(std::vector<core::Node>{n}, {}, {0.0f, false, nullptr});
      for (const Primitive& p : d.items)
        EXPECT_TRUE(insideBox(d, p, g)) << info.key << " primitive " << int(p.kind) << " box " << g.w << "x" << g.h;
    }
  }
}

TEST(NodeOutlines, PortSquareFollowsSideAndConjugation) {
  core::Node port = makeNode("p", ShapeType::sysmlPort, 0, 0, 40, 20, "p1");
  port.properties = {{"boundarySide", "right"}, {"isConjugated", "true"}, {"type", "Power"}};
  const std::string svg = svgText(std::vector<core::Node>{port}, {}, {0.0f, false});
  EXPECT_NE(svg.find("<rect x=\"20\" y=\"0\" width=\"20\" height=\"20\" fill=\"#3C4050\""), std::string::npos) << svg;
  EXPECT_NE(svg.find(">p1 : ~Power</text>"), std::string::npos);
  port.properties["boundarySide"] = "left";
  port.properties["isConjugated"] = "false";
  const std::string plain = svgText(std::vector<core::Node>{port}, {}, {0.0f, false});
  EXPECT_NE(plain.find("<rect x=\"0\" y=\"0\" width=\"20\" height=\"20\" fill=\"#FFFFFF\""), std::string::npos);
}

TEST(DiagramFrame, FrameAndTabAroundTheContent) {
  const std::vector<core::Node> nodes{makeNode("a", ShapeType::rect, 0, 0, 100, 50)};
  core::DiagramFrame frame;
  frame.kind = core::DiagramKind::bdd;
  frame.elementName = "Vehicle";
  frame.name = "Structure";
  const DrawingList d = buildDrawing(nodes, {}, {10.0f, true, &frame});
  // Content 0..100 x 0..50; frame 12 around it and a 20-unit tab row above: -12..112 x -32..62.
  EXPECT_EQ(d.bounds.x, -22);
  EXPECT_EQ(d.bounds.y, -42);
  EXPECT_EQ(d.bounds.width, 144);
  EXPECT_EQ(d.bounds.height, 114);
  const std::string svg = svgDocument(d);
  EXPECT_NE(svg.find("<rect x=\"-12\" y=\"-32\" width=\"124\" height=\"94\" fill=\"none\""), std::string::npos) << svg;
  EXPECT_NE(svg.find(">bdd [package] Vehicle [Structure]</text>"), std::string::npos);
  frame.show = false;
  EXPECT_EQ(svgDocument(buildDrawing(nodes, {}, {10.0f, true, &frame})), svgText(nodes, {}, {10.0f, true}));
}

TEST(SvgExport, BrokenDiagramsStillGiveValidSvg) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float inf = std::numeric_limits<float>::infinity();
  std::vector<core::Node> nodes;
  int i = 0;
  for (const core::ShapeInfo& info : core::shapeCatalogue()) {
    const float x = static_cast<float>(i % 12) * 120.0f;
    const float y = static_cast<float>(i / 12) * 120.0f;
    nodes.push_back(makeNode("n" + std::to_string(i), info.type, x, y, 90, 60, "Label & <" + std::to_string(i) + ">"));
    ++i;
  }
  nodes.push_back(makeNode("zero", ShapeType::umlUseCase, 10, 10, 0, 0, ""));
  nodes.push_back(makeNode("negative", ShapeType::umlActor, 300, 300, -40, -70, "Backwards"));
  nodes.push_back(makeNode("nan", ShapeType::sysmlBlock, nan, 5, 50, nan, "NaN"));
  nodes.push_back(makeNode("inf", ShapeType::sysmlPort, inf, -inf, 10, 10, "inf"));
  nodes.push_back(makeNode("long", ShapeType::sysmlPin, 50, 900, 10, 10, std::string(1000, 'W')));
  nodes.push_back(makeNode("unknown", static_cast<ShapeType>(7), 0, 1000, 50, 50, "?"));
  nodes.push_back(makeNode("utf8", ShapeType::rect, 200, 1000, 120, 40, "制御装置 — Größe"));

  std::vector<core::Edge> edges;
  for (int t = 0; t <= 47; ++t) {
    const auto type = static_cast<EdgeType>(t);
    const std::string a = "n" + std::to_string(t % 50);
    const std::string b = "n" + std::to_string((t * 7 + 3) % 50);
    edges.push_back(makeEdge("e" + std::to_string(t), a, static_cast<Anchor>(t % 8), b,
                             static_cast<Anchor>((t + 3) % 9), type, t % 3 ? "flow" : ""));
    edges.push_back(makeEdge("s" + std::to_string(t), a, Anchor::right, a, Anchor::right, type, "self"));
  }
  edges.push_back(makeEdge("toNan", "n1", Anchor::right, "nan", Anchor::left, EdgeType::elbowArrow));
  edges.push_back(makeEdge("toInf", "inf", Anchor::right, "n2", Anchor::left, EdgeType::curvedArrow));
  edges.push_back(makeEdge("toZero", "zero", Anchor::bottomRight, "zero", Anchor::topLeft, EdgeType::elbow));
  edges.push_back(makeEdge("missing", "n1", Anchor::right, "nowhere", Anchor::left, EdgeType::composition));
  core::Edge offsets = makeEdge("off", "n3", Anchor::right, "n4", Anchor::left, EdgeType::sysmlSyncMessage);
  offsets.srcAnchorDY = nan;
  offsets.tgtAnchorDY = inf;
  edges.push_back(offsets);

  const auto dir = testing::scratchDir("svg-broken");
  const auto file = dir / "broken.svg";
  const std::string svg = svgText(nodes, edges, {24.0f, true});
  ASSERT_TRUE(io::writeFileAtomic(file, svg));
  EXPECT_EQ(svg.find("nan"), std::string::npos);
  EXPECT_EQ(svg.find("inf"), std::string::npos);
  EXPECT_TRUE(testing::xmllintAccepts(file));
  EXPECT_TRUE(testing::rsvgRenders(file));
}

TEST(SvgExport, PiecesGiveTheSameDocumentAsTheWholeList) {
  std::vector<core::Node> nodes;
  std::vector<core::Edge> edges;
  for (int i = 0; i < 1500; ++i) {
    const auto type = core::shapeCatalogue()[static_cast<std::size_t>(i) % core::shapeCatalogue().size()].type;
    nodes.push_back(makeNode("n" + std::to_string(i), type, float(i % 40) * 150, float(i / 40) * 120, 100, 60,
                             "node " + std::to_string(i)));
    edges.push_back(makeEdge("e" + std::to_string(i), "n" + std::to_string(i), Anchor::right,
                             "n" + std::to_string((i * 7 + 1) % 1500), Anchor::left, static_cast<EdgeType>(i % 46),
                             i % 2 ? "label" : ""));
  }
  core::DiagramFrame frame;
  const DrawingOptions options{24.0f, true, &frame};
  const std::string whole = svgDocument(buildDrawing(nodes, edges, options));
  for (std::size_t piece : {std::size_t{1}, std::size_t{7}, std::size_t{512}}) {
    SvgDocumentWriter writer;
    buildDrawingInPieces(nodes, edges, options, piece, [&](DrawingList& part) { writer.add(part); });
    EXPECT_EQ(writer.finish(), whole) << piece;
  }
  EXPECT_EQ(svgText(nodes, edges, {24.0f, true}, &frame), whole);
}

TEST(SvgExport, HugeCoordinatesStayWithinTheNumberFormat) {
  const float big = std::numeric_limits<float>::max();
  const std::vector<core::Node> nodes{makeNode("a", ShapeType::rect, -big, -big, big, big, "x"),
                                      makeNode("b", ShapeType::rect, big, big, big, big, "y")};
  const std::vector<core::Edge> edges{makeEdge("e", "a", Anchor::right, "b", Anchor::left, EdgeType::elbowArrow)};
  const std::string svg = svgText(nodes, edges, {24.0f, true});
  EXPECT_EQ(svg.find("nan"), std::string::npos);
  EXPECT_NE(svg.find("</svg>\n"), std::string::npos);
  // Found by fuzzing: a huge margin on huge coordinates overflowed the page origin to infinity.
  const Bounds b = diagramBounds(nodes, 3e38f);
  EXPECT_TRUE(std::isfinite(b.x) && std::isfinite(b.y) && std::isfinite(b.width) && std::isfinite(b.height));
}

}  // namespace
}  // namespace modelyne::exporter
