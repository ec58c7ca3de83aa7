// The automatic layouts as document operations: one undo step each that
// takes every rectangle back, nothing pushed when nothing changes, and
// inserted elements laid out below what is there in the same undo step.

#include <gtest/gtest.h>

#include "bridge/bridge.h"

using namespace modelyne;
using core::Anchor;
using S = core::ShapeType;

namespace {

class Layout : public ::testing::Test {
 protected:
  void SetUp() override {
    doc_ = bridge::createDocument();
    bridge::addNode(doc_, S::sysmlBlock, 300, 300, 120, 60, "Vehicle", "vehicle");
    bridge::addNode(doc_, S::sysmlBlock, 0, 0, 120, 60, "Motor", "motor");
    bridge::addNode(doc_, S::sysmlBlock, 310, 310, 120, 60, "Wheel", "wheel");
    bridge::addEdge(doc_, "vehicle", Anchor::bottom, "motor", Anchor::top, "e1");
    bridge::addEdge(doc_, "vehicle", Anchor::bottom, "wheel", Anchor::top, "e2");
    bridge::setEdgeType(doc_, "e1", core::EdgeType::composition);
    base_ = doc_->history().undoCount();
    before_ = bridge::saveDiagramXml(doc_);
  }
  void TearDown() override { bridge::destroyDocument(doc_); }
  std::size_t pushed() { return doc_->history().undoCount() - base_; }

  core::Document* doc_ = nullptr;
  std::size_t base_ = 0;
  std::string before_;
};

}  // namespace

TEST_F(Layout, OneUndoTakesEveryRectangleBack) {
  for (auto algorithm : {bridge::LayoutAlgorithm::layered, bridge::LayoutAlgorithm::organic}) {
    const bridge::LayoutOutcome done = bridge::layoutDocument(doc_, algorithm);
    EXPECT_TRUE(done.laidOut);
    EXPECT_EQ(done.reason, "");
    EXPECT_EQ(done.changed, 3u);
    EXPECT_EQ(pushed(), 1u);
    const auto v = *bridge::findNode(doc_, "vehicle"), m = *bridge::findNode(doc_, "motor"), w = *bridge::findNode(doc_, "wheel");
    EXPECT_LT(v.geom.y + v.geom.h, m.geom.y + (algorithm == bridge::LayoutAlgorithm::layered ? 1.0f : m.geom.h));
    EXPECT_TRUE(m.geom.x + m.geom.w <= w.geom.x || w.geom.x + w.geom.w <= m.geom.x || m.geom.y + m.geom.h <= w.geom.y ||
                w.geom.y + w.geom.h <= m.geom.y);
    const std::string laidOut = bridge::saveDiagramXml(doc_);
    // Again: nothing changes, nothing is pushed.
    const bridge::LayoutOutcome again = bridge::layoutDocument(doc_, algorithm);
    EXPECT_TRUE(again.laidOut);
    EXPECT_EQ(again.changed, 0u);
    EXPECT_EQ(pushed(), 1u);
    EXPECT_EQ(bridge::saveDiagramXml(doc_), laidOut);
    bridge::undo(doc_);
    EXPECT_EQ(bridge::saveDiagramXml(doc_), before_);
    bridge::redo(doc_);
    EXPECT_EQ(bridge::saveDiagramXml(doc_), laidOut);
    bridge::undo(doc_);
  }
  EXPECT_EQ(bridge::layoutLayered(doc_).changed, 3u);
  bridge::undo(doc_);
  EXPECT_EQ(bridge::layoutOrganic(doc_).changed, 3u);
}

TEST_F(Layout, UntouchedDocumentsSayWhy) {
  core::Document* empty = bridge::createDocument();
  const bridge::LayoutOutcome none = bridge::layoutLayered(empty);
  EXPECT_FALSE(none.laidOut);
  EXPECT_EQ(none.reason, "The document has no nodes");
  EXPECT_FALSE(bridge::canUndo(empty));
  bridge::destroyDocument(empty);
  try {
    bridge::layoutOrganic(nullptr);
    FAIL() << "no error";
  } catch (const bridge::BridgeError& e) {
    EXPECT_EQ(e.code(), bridge::kInvalidArgument);
    EXPECT_STREQ(e.what(), "Document handle is null");
  }
}

TEST_F(Layout, InsertedElementsAreLaidOutBelowInTheSameStep) {
  std::vector<core::Node> nodes(2);
  nodes[0].id = "brake";
  nodes[0].type = S::sysmlBlock;
  nodes[0].geom = {0, 0, 100, 50};
  nodes[1].id = "pad";
  nodes[1].type = S::sysmlBlock;
  nodes[1].geom = {0, 0, 100, 50};
  std::vector<core::Edge> edges(1);
  edges[0].source = "brake";
  edges[0].sourcePort = Anchor::bottom;
  edges[0].target = "pad";
  edges[0].targetPort = Anchor::top;
  const auto ids = bridge::insertElements(doc_, nodes, edges, bridge::LayoutAlgorithm::layered);
  ASSERT_EQ(ids.nodeIds, (std::vector<std::string>{"brake", "pad"}));
  EXPECT_EQ(pushed(), 1u);
  EXPECT_EQ(bridge::findNode(doc_, "vehicle")->geom, (core::NodeGeometry{300, 300, 120, 60}));
  EXPECT_EQ(bridge::findNode(doc_, "motor")->geom, (core::NodeGeometry{0, 0, 120, 60}));
  const auto brake = bridge::findNode(doc_, "brake")->geom, pad = bridge::findNode(doc_, "pad")->geom;
  EXPECT_EQ(brake.x, 0.0f);    // the left edge of what is there
  EXPECT_GE(brake.y, 370.0f);  // below its bottom
  EXPECT_GT(pad.y, brake.y + brake.h);
  bridge::undo(doc_);
  EXPECT_EQ(bridge::saveDiagramXml(doc_), before_);
}
