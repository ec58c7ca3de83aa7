// Batch operations: one command each, checked before anything changes.

#include <gtest/gtest.h>

#include "bridge/bridge.h"

using namespace modelyne;
using S = core::ShapeType;
using Ids = std::vector<std::string>;

namespace {

class Batch : public ::testing::Test {
 protected:
  void SetUp() override {
    doc_ = bridge::createDocument();
    for (const char* id : {"a", "b", "c"}) bridge::addNode(doc_, S::rect, 0, 0, 10, 10, std::nullopt, id);
    bridge::addEdge(doc_, "a", core::Anchor::right, "b", core::Anchor::left, "ab");
    bridge::addEdge(doc_, "b", core::Anchor::right, "c", core::Anchor::left, "bc");
    bridge::addEdge(doc_, "c", core::Anchor::right, "a", core::Anchor::left, "ca");
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

TEST_F(Batch, DeleteElementsIsOneUndoStep) {
  EXPECT_EQ(bridge::deleteElements(doc_, Ids{"ghost"}, Ids{"nope"}), 0u);
  EXPECT_EQ(pushed(), 0u);
  // Node b takes ab and bc with it; ca is named explicitly; b is named twice.
  EXPECT_EQ(bridge::deleteElements(doc_, Ids{"b", "b", "ghost"}, Ids{"ca", "ab"}), 4u);
  EXPECT_EQ(doc_->nodes().size(), 2u);
  EXPECT_TRUE(doc_->edges().empty());
  EXPECT_EQ(pushed(), 1u);
  bridge::undo(doc_);
  EXPECT_EQ(bridge::saveDiagramXml(doc_), before_);
}

TEST_F(Batch, MoveNodes) {
  EXPECT_EQ(bridge::moveNodes(doc_, Ids{"a", "c", "a", "ghost"}, 5, -2), 2u);
  EXPECT_EQ(bridge::findNode(doc_, "a")->geom.x, 5.0f);
  EXPECT_EQ(bridge::findNode(doc_, "c")->geom.y, -2.0f);
  EXPECT_EQ(bridge::findNode(doc_, "b")->geom.x, 0.0f);
  EXPECT_EQ(bridge::moveNodes(doc_, Ids{"a"}, 0, 0), 0u);
  EXPECT_EQ(pushed(), 1u);
  bridge::undo(doc_);
  EXPECT_EQ(bridge::saveDiagramXml(doc_), before_);
}

TEST_F(Batch, InsertElementsRenamesTakenIdsAndFollowsThem) {
  core::Node pasteA;
  pasteA.id = "a";  // taken
  pasteA.text = "copy of a";
  core::Node fresh;  // no id: base word of its type
  fresh.type = S::mindmapMainTopic;
  core::Node pasteA2;
  pasteA2.id = "a";  // taken twice
  core::Edge inner;
  inner.id = "ab";  // taken
  inner.source = "a";  // follows the first pasted "a"
  inner.target = "b";  // existing node
  core::Edge outer;
  outer.source = "c";
  outer.target = "b";
  const auto r = bridge::insertElements(doc_, {pasteA, fresh, pasteA2}, {inner, outer});
  EXPECT_EQ(r.nodeIds, (Ids{"a_1", "major", "a_2"}));
  EXPECT_EQ(r.edgeIds, (Ids{"ab_1", "edge"}));
  const auto e = bridge::findEdge(doc_, "ab_1");
  ASSERT_TRUE(e);
  EXPECT_EQ(e->source, "a_1");
  EXPECT_EQ(e->target, "b");
  EXPECT_EQ(bridge::findEdge(doc_, "edge")->target, "b");
  EXPECT_EQ(bridge::findNode(doc_, "a_1")->text, "copy of a");
  EXPECT_EQ(pushed(), 1u);
  bridge::undo(doc_);
  EXPECT_EQ(bridge::saveDiagramXml(doc_), before_);

  core::Edge dangling;
  dangling.source = "a";
  dangling.target = "nowhere";
  try {
    bridge::insertElements(doc_, {fresh}, {dangling});
    ADD_FAILURE();
  } catch (const bridge::BridgeError& err) {
    EXPECT_EQ(err.code(), 4u);
    EXPECT_STREQ(err.what(), "Endpoint node not found");
  }
  EXPECT_EQ(bridge::saveDiagramXml(doc_), before_);
  EXPECT_EQ(bridge::insertElements(doc_, {}, {}).nodeIds.size(), 0u);
  EXPECT_EQ(doc_->history().redoCount(), 1u);  // nothing pushed by the refused or empty insert
}

TEST_F(Batch, SetNodePropertiesChecksAllFirst) {
  const std::string req = bridge::addNode(doc_, S::sysmlRequirementDef, 0, 0, 1, 1);
  base_ = doc_->history().undoCount();
  const std::vector<bridge::PropertyChange> bad{{req, "reqId", "R-1"}, {req, "requirementKind", "nope"}};
  try {
    bridge::setNodeProperties(doc_, bad);
    ADD_FAILURE();
  } catch (const bridge::BridgeError& err) {
    EXPECT_EQ(err.code(), 1u);
    EXPECT_STREQ(err.what(), "Invalid value for 'requirementKind': Value is not one of the allowed choices.");
  }
  EXPECT_FALSE(bridge::findNode(doc_, req)->properties.count("reqId"));
  EXPECT_EQ(pushed(), 0u);

  const std::vector<bridge::PropertyChange> good{{req, "reqId", "R-1"}, {req, "requirementText", "Shall fly."}};
  EXPECT_EQ(bridge::setNodeProperties(doc_, good), 2u);
  EXPECT_EQ(pushed(), 1u);
  EXPECT_EQ(bridge::findNode(doc_, req)->properties.at("requirementText"), "Shall fly.");
  bridge::undo(doc_);
  EXPECT_TRUE(bridge::findNode(doc_, req)->properties.empty());
}

TEST_F(Batch, ReorderNodesKeepsTheSelectionsStackingInOneStep) {
  bridge::addNode(doc_, S::rect, 0, 0, 10, 10, std::nullopt, "d");
  auto order = [&] {
    std::string out;
    for (const core::Node& n : doc_->nodes()) out += n.id;
    return out;
  };
  const std::size_t start = doc_->history().undoCount();
  EXPECT_EQ(bridge::reorderNodes(doc_, Ids{"c", "a", "ghost"}, bridge::ZOrder::toFront), 2u);
  EXPECT_EQ(order(), "bdac");
  EXPECT_EQ(doc_->history().undoCount(), start + 1);
  bridge::undo(doc_);
  EXPECT_EQ(order(), "abcd");
  EXPECT_EQ(bridge::reorderNodes(doc_, Ids{"b", "d"}, bridge::ZOrder::toBack), 2u);
  EXPECT_EQ(order(), "bdac");
  bridge::undo(doc_);
  EXPECT_EQ(bridge::reorderNodes(doc_, Ids{"b", "c"}, bridge::ZOrder::forward), 2u);
  EXPECT_EQ(order(), "adbc");
  bridge::undo(doc_);
  EXPECT_EQ(bridge::reorderNodes(doc_, Ids{"a", "c"}, bridge::ZOrder::backward), 2u);
  EXPECT_EQ(order(), "acbd");
  EXPECT_EQ(bridge::reorderNodes(doc_, Ids{"ghost"}, bridge::ZOrder::toFront), 0u);
}
