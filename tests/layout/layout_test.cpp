// Layout properties on small hand-made diagrams of each kind, the samples
// laid out twice (determinism, idempotence), and bad input.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "io/diagram_reader.h"
#include "layout/layout.h"
#include "layout/quality.h"

using namespace modelyne;
using core::Anchor;
using core::EdgeType;
using core::ShapeType;

namespace {

class Diagram {
 public:
  Diagram& node(const std::string& id, ShapeType type, float x, float y, float w, float h,
                std::map<std::string, std::string> props = {}) {
    core::Node n;
    n.id = id;
    n.type = type;
    n.geom = {x, y, w, h};
    n.properties = std::move(props);
    doc_.addNode(n);
    return *this;
  }
  Diagram& edge(const std::string& s, Anchor sp, const std::string& t, Anchor tp, EdgeType type) {
    core::Edge e;
    e.id = "e" + std::to_string(doc_.edges().size());
    e.source = s;
    e.sourcePort = sp;
    e.target = t;
    e.targetPort = tp;
    e.type = type;
    doc_.addEdge(e);
    return *this;
  }
  core::Document& doc() { return doc_; }

 private:
  core::Document doc_;
};

core::NodeGeometry at(const layout::LayoutResult& r, const std::string& id) {
  for (const auto& p : r.placements)
    if (p.id == id) return p.geom;
  ADD_FAILURE() << "no placement for " << id;
  return {};
}

double cx(const core::NodeGeometry& g) { return g.x + g.w / 2.0; }
double cy(const core::NodeGeometry& g) { return g.y + g.h / 2.0; }

bool inside(const core::NodeGeometry& inner, const core::NodeGeometry& outer) {
  return inner.x >= outer.x && inner.y >= outer.y && inner.x + inner.w <= outer.x + outer.w &&
         inner.y + inner.h <= outer.y + outer.h;
}

bool apart(const core::NodeGeometry& a, const core::NodeGeometry& b) {
  return a.x + a.w <= b.x || b.x + b.w <= a.x || a.y + a.h <= b.y || b.y + b.h <= a.y;
}

void apply(core::Document& doc, const layout::LayoutResult& r) {
  for (const auto& p : r.placements) doc.findNode(p.id)->geom = p.geom;
}

std::vector<core::NodeGeometry> geometry(const layout::LayoutResult& r) {
  std::vector<core::NodeGeometry> g;
  for (const auto& p : r.placements) g.push_back(p.geom);
  return g;
}

using Algorithm = layout::LayoutResult (*)(const core::Document&, const layout::LayoutOptions&);
const Algorithm kBoth[] = {&layout::layoutLayered, &layout::layoutOrganic};

}  // namespace

// Generalizations drawn child-top to parent-bottom: every parent above its children.
TEST(LayeredLayout, ParentsAboveChildren) {
  Diagram d;
  // Positions scrambled on purpose: the layout does not start from them.
  d.node("vehicle", ShapeType::umlClass, 500, 500, 120, 60)
      .node("car", ShapeType::umlClass, 0, 0, 120, 60)
      .node("truck", ShapeType::umlClass, 900, 40, 120, 60)
      .node("suv", ShapeType::umlClass, 300, 0, 120, 60)
      .node("pickup", ShapeType::umlClass, 40, 700, 120, 60)
      .edge("car", Anchor::top, "vehicle", Anchor::bottom, EdgeType::generalization)
      .edge("truck", Anchor::top, "vehicle", Anchor::bottom, EdgeType::generalization)
      .edge("suv", Anchor::top, "car", Anchor::bottom, EdgeType::generalization)
      .edge("pickup", Anchor::top, "truck", Anchor::bottom, EdgeType::generalization);
  const auto r = layout::layoutLayered(d.doc());
  ASSERT_TRUE(r.laidOut) << r.reason;
  for (const auto& e : d.doc().edges()) EXPECT_LT(cy(at(r, e.target)), cy(at(r, e.source))) << e.source;
  const auto q = layout::measure(d.doc(), geometry(r), layout::MainAxis::topDown);
  EXPECT_EQ(q.overlaps, 0u);
  EXPECT_EQ(q.crossings, 0u);
  EXPECT_EQ(q.anchorsFacing, 4u);
}

// When the anchors name no direction along the axis, the edge type decides:
// realization and satisfy point up, composition hangs its part below.
TEST(LayeredLayout, EdgeTypeDecidesWithoutAnchorDirection) {
  Diagram d;
  d.node("iface", ShapeType::umlInterface, 0, 0, 100, 50)
      .node("impl", ShapeType::umlClass, 0, 0, 100, 50)
      .node("req", ShapeType::sysmlRequirementDef, 0, 0, 100, 50)
      .node("whole", ShapeType::sysmlBlock, 0, 0, 100, 50)
      .node("part", ShapeType::sysmlBlock, 0, 0, 100, 50)
      .edge("impl", Anchor::top, "iface", Anchor::top, EdgeType::realization)
      .edge("impl", Anchor::top, "req", Anchor::top, EdgeType::sysmlSatisfy)
      .edge("whole", Anchor::bottom, "part", Anchor::bottom, EdgeType::composition)
      .edge("whole", Anchor::top, "impl", Anchor::top, EdgeType::composition);
  const auto r = layout::layoutLayered(d.doc());
  ASSERT_TRUE(r.laidOut);
  EXPECT_LT(cy(at(r, "iface")), cy(at(r, "impl")));
  EXPECT_LT(cy(at(r, "req")), cy(at(r, "impl")));
  EXPECT_LT(cy(at(r, "whole")), cy(at(r, "part")));
  EXPECT_LT(cy(at(r, "whole")), cy(at(r, "impl")));
}

// Flows anchored right-to-left run left to right; a decision's branch
// leaving its bottom goes below it.
TEST(LayeredLayout, FlowsRunAlongTheAxisTheAnchorsChoose) {
  Diagram d;
  d.node("start", ShapeType::umlInitialNode, 400, 400, 24, 24)
      .node("a", ShapeType::umlAction, 0, 0, 120, 50)
      .node("b", ShapeType::umlAction, 0, 0, 120, 50)
      .node("choice", ShapeType::umlDecision, 0, 0, 50, 50)
      .node("c", ShapeType::umlAction, 0, 0, 120, 50)
      .node("end", ShapeType::umlFinalNode, 0, 0, 28, 28)
      .edge("start", Anchor::right, "a", Anchor::left, EdgeType::sysmlControlFlow)
      .edge("a", Anchor::right, "b", Anchor::left, EdgeType::sysmlControlFlow)
      .edge("b", Anchor::right, "choice", Anchor::left, EdgeType::sysmlControlFlow)
      .edge("choice", Anchor::right, "end", Anchor::left, EdgeType::sysmlControlFlow)
      .edge("choice", Anchor::bottom, "c", Anchor::left, EdgeType::sysmlControlFlow);
  const auto r = layout::layoutLayered(d.doc());
  ASSERT_TRUE(r.laidOut);
  EXPECT_EQ(layout::mainAxisOf(d.doc()), layout::MainAxis::leftRight);
  for (const auto& e : d.doc().edges()) EXPECT_GT(cx(at(r, e.target)), cx(at(r, e.source))) << e.id;
  EXPECT_GT(cy(at(r, "c")), cy(at(r, "choice")));
  const auto q = layout::measure(d.doc(), geometry(r), layout::MainAxis::leftRight);
  EXPECT_EQ(q.anchorsFacing, 5u);
  EXPECT_EQ(q.alongAxis, 5u);
}

// Members of a boundary stay inside it (it grows to hold them), others stay
// out; a port stays on the same side of its host, at the same place along it.
TEST(Layout, ContainersHoldTheirMembersAndPortsKeepTheirSide) {
  for (Algorithm run : kBoth) {
    Diagram d;
    d.node("subject", ShapeType::sysmlSystemBoundary, 100, 0, 200, 150)
        .node("charge", ShapeType::umlUseCase, 120, 40, 120, 50)
        .node("pay", ShapeType::umlUseCase, 150, 95, 120, 50)
        .node("auth", ShapeType::umlUseCase, 110, 10, 60, 30)
        .node("driver", ShapeType::umlActor, 0, 40, 40, 70)
        .node("block", ShapeType::sysmlBlock, 400, 0, 100, 80)
        .node("out", ShapeType::sysmlPort, 492, 12, 16, 16)  // right side, a quarter down
        .node("other", ShapeType::sysmlBlock, 600, 0, 100, 80)
        .edge("driver", Anchor::right, "charge", Anchor::left, EdgeType::association)
        .edge("charge", Anchor::bottom, "pay", Anchor::top, EdgeType::sysmlInclude)
        .edge("charge", Anchor::top, "auth", Anchor::bottom, EdgeType::sysmlInclude)
        .edge("out", Anchor::right, "other", Anchor::left, EdgeType::sysmlItemFlow);
    const auto r = run(d.doc(), {});
    ASSERT_TRUE(r.laidOut);
    const auto subject = at(r, "subject");
    for (const char* m : {"charge", "pay", "auth"}) EXPECT_TRUE(inside(at(r, m), subject)) << m;
    EXPECT_TRUE(apart(at(r, "driver"), subject));
    EXPECT_GE(subject.w, 200.0f);
    EXPECT_GE(subject.h, 150.0f);
    const auto block = at(r, "block"), port = at(r, "out");
    EXPECT_EQ(cx(port), block.x + block.w);
    EXPECT_NEAR(cy(port), block.y + block.h / 4.0, 0.5);
    EXPECT_EQ(port.w, 16.0f);
    EXPECT_EQ(at(r, "charge").w, 120.0f);  // sizes kept
    EXPECT_EQ(layout::measure(d.doc(), geometry(r), layout::MainAxis::leftRight).overlaps, 0u);
  }
}

// Lifelines in one row, evenly spaced in their left-to-right order;
// activations go with their lifeline; a fragment keeps spanning its
// lifelines; nothing moves vertically.
TEST(Layout, SequenceDiagramsKeepTheirOrder) {
  for (Algorithm run : kBoth) {
    Diagram d;
    d.node("b", ShapeType::umlLifeline, 300, 20, 120, 400)
        .node("a", ShapeType::umlLifeline, 40, 30, 100, 400)
        .node("c", ShapeType::umlLifeline, 900, 20, 120, 400)
        .node("actB", ShapeType::umlActivation, 355, 100, 10, 120)
        .node("loop", ShapeType::umlCombinedFragment, 60, 250, 400, 100)
        .edge("a", Anchor::right, "b", Anchor::left, EdgeType::sysmlSyncMessage)
        .edge("b", Anchor::right, "c", Anchor::left, EdgeType::sysmlAsyncMessage);
    const auto r = run(d.doc(), {});
    ASSERT_TRUE(r.laidOut);
    const auto a = at(r, "a"), b = at(r, "b"), c = at(r, "c");
    EXPECT_EQ(a.y, 20.0f);
    EXPECT_EQ(b.y, 20.0f);
    EXPECT_EQ(c.y, 20.0f);
    EXPECT_LT(cx(a), cx(b));
    EXPECT_DOUBLE_EQ(cx(b) - cx(a), cx(c) - cx(b));
    EXPECT_DOUBLE_EQ(cx(b) - cx(a), 220.0);  // widest lifeline plus the gap
    const auto act = at(r, "actB");
    EXPECT_DOUBLE_EQ(cx(act), cx(b));
    EXPECT_EQ(act.y, 100.0f);
    const auto loop = at(r, "loop");
    EXPECT_EQ(loop.y, 250.0f);
    EXPECT_DOUBLE_EQ(cx(a) - loop.x, 30.0);                 // margins kept
    EXPECT_DOUBLE_EQ(loop.x + loop.w - cx(b), 100.0);
    EXPECT_LT(loop.x + loop.w, cx(c));
  }
}

// Mind maps: branches leave the central topic on the side their anchors name.
TEST(OrganicLayout, MindMapsGrowAroundTheCentralTopic) {
  Diagram d;
  d.node("c", ShapeType::mindmapCentral, 0, 0, 160, 60)
      .node("l1", ShapeType::mindmapMainTopic, 0, 0, 120, 40)
      .node("l2", ShapeType::mindmapMainTopic, 0, 0, 120, 40)
      .node("r1", ShapeType::mindmapMainTopic, 0, 0, 120, 40)
      .node("r2", ShapeType::mindmapMainTopic, 0, 0, 120, 40)
      .node("s", ShapeType::mindmapSubTopic, 0, 0, 100, 30)
      .edge("c", Anchor::left, "l1", Anchor::right, EdgeType::mindmapBranch)
      .edge("c", Anchor::right, "r1", Anchor::left, EdgeType::mindmapBranch)
      .edge("c", Anchor::left, "l2", Anchor::right, EdgeType::mindmapBranch)
      .edge("c", Anchor::right, "r2", Anchor::left, EdgeType::mindmapBranch)
      .edge("r1", Anchor::top, "s", Anchor::bottom, EdgeType::mindmapBranch);
  const auto r = layout::layoutOrganic(d.doc());
  ASSERT_TRUE(r.laidOut);
  const double centre = cx(at(r, "c"));
  EXPECT_LT(cx(at(r, "l1")), centre);
  EXPECT_LT(cx(at(r, "l2")), centre);
  EXPECT_GT(cx(at(r, "r1")), centre);
  EXPECT_GT(cx(at(r, "r2")), centre);
  EXPECT_LT(cy(at(r, "s")), cy(at(r, "r1")));
  EXPECT_EQ(layout::measure(d.doc(), geometry(r), layout::MainAxis::leftRight).overlaps, 0u);
}

// Only the named nodes move; they go below the rest, which keeps its place.
TEST(Layout, OnlyNodesMovesJustThoseBelowTheRest) {
  Diagram d;
  d.node("old1", ShapeType::sysmlBlock, 100, 100, 100, 50)
      .node("old2", ShapeType::sysmlBlock, 400, 300, 100, 50)
      .node("new1", ShapeType::sysmlBlock, 110, 110, 100, 50)
      .node("new2", ShapeType::sysmlBlock, 120, 120, 100, 50)
      .edge("new1", Anchor::bottom, "new2", Anchor::top, EdgeType::composition)
      .edge("old1", Anchor::bottom, "new1", Anchor::top, EdgeType::composition);
  layout::LayoutOptions only;
  only.onlyNodes = {"new1", "new2"};
  const auto r = layout::layoutLayered(d.doc(), only);
  ASSERT_TRUE(r.laidOut);
  EXPECT_EQ(at(r, "old1"), (core::NodeGeometry{100, 100, 100, 50}));
  EXPECT_EQ(at(r, "old2"), (core::NodeGeometry{400, 300, 100, 50}));
  EXPECT_GE(at(r, "new1").y, 350.0f);
  EXPECT_EQ(at(r, "new1").x, 100.0f);
  EXPECT_LT(cy(at(r, "new1")), cy(at(r, "new2")));
}

// Every sample, both layouts: the same document gives the same rectangles,
// a laid-out document laid out again does not change, nothing overlaps
// (sequence diagrams aside, whose fragments lie across lifelines).
TEST(Layout, SamplesAreDeterministicIdempotentAndOverlapFree) {
  int samples = 0;
  for (const auto& entry : std::filesystem::directory_iterator(std::string(MODELYNE_SOURCE_DIR) + "/samples")) {
    std::ifstream in(entry.path());
    std::stringstream text;
    text << in.rdbuf();
    for (Algorithm run : kBoth) {
      core::Document doc;
      ASSERT_TRUE(io::parseDiagramInto(text.str(), doc)) << entry.path();
      const auto first = run(doc, {});
      ASSERT_TRUE(first.laidOut) << entry.path();
      EXPECT_EQ(run(doc, {}).placements, first.placements) << entry.path();
      apply(doc, first);
      EXPECT_EQ(run(doc, {}).placements, first.placements) << entry.path();
      if (entry.path().filename().string().rfind("sd-", 0) != 0) {
        EXPECT_EQ(layout::measure(doc, geometry(first), layout::mainAxisOf(doc)).overlaps, 0u) << entry.path();
      }
    }
    ++samples;
  }
  EXPECT_GE(samples, 11);
}

TEST(Layout, BadInputIsLaidOutOrRefusedWithAReason) {
  core::Document empty;
  const auto none = layout::layoutLayered(empty);
  EXPECT_FALSE(none.laidOut);
  EXPECT_EQ(none.reason, "The document has no nodes");
  EXPECT_TRUE(none.placements.empty());

  // Dangling, self-loop and repeated edges; NaN, huge, zero and negative geometry.
  for (Algorithm run : kBoth) {
    Diagram d;
    const float nan = std::nanf("");
    d.node("a", ShapeType::rect, nan, 5, 50, 50)
        .node("b", ShapeType::rect, 1e30f, -1e30f, 0, 0)
        .node("c", ShapeType::rect, 0, 0, -20, nan)
        .node("d", ShapeType::sysmlPort, nan, nan, 16, 16)
        .node("e", ShapeType::umlPackage, 0, 0, 1e20f, 1e20f)
        .edge("a", Anchor::right, "ghost", Anchor::left, EdgeType::association)
        .edge("a", Anchor::right, "a", Anchor::left, EdgeType::association)
        .edge("a", Anchor::right, "b", Anchor::left, EdgeType::association)
        .edge("a", Anchor::right, "b", Anchor::left, EdgeType::association)
        .edge("b", Anchor::right, "c", static_cast<Anchor>(99), static_cast<EdgeType>(-4));
    const auto r = run(d.doc(), {});
    ASSERT_TRUE(r.laidOut);
    ASSERT_EQ(r.placements.size(), 5u);
    for (const auto& p : r.placements) {
      EXPECT_TRUE(std::isfinite(p.geom.x) && std::isfinite(p.geom.y)) << p.id;
      EXPECT_TRUE(std::isfinite(p.geom.w) && std::isfinite(p.geom.h)) << p.id;
    }
    EXPECT_EQ(at(r, "c").w, -20.0f);  // a finite size is kept, even a negative one
    EXPECT_EQ(run(d.doc(), {}).placements, r.placements);
  }

  core::Document big;
  for (std::size_t i = 0; i <= layout::kMaxLayoutNodes; ++i) {
    core::Node n;
    n.id = "n" + std::to_string(i);
    big.addNode(std::move(n));
  }
  const auto refused = layout::layoutOrganic(big);
  EXPECT_FALSE(refused.laidOut);
  EXPECT_EQ(refused.reason, "The document has 50001 nodes; automatic layout handles at most 50000");

  layout::LayoutOptions missing;
  missing.onlyNodes = {"nope"};
  core::Document one;
  core::Node x;
  x.id = "x";
  one.addNode(x);
  EXPECT_EQ(layout::layoutLayered(one, missing).reason, "None of the nodes to lay out is in the document");
}
