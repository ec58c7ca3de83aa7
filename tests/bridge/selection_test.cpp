// Align, distribute, flip, group and ungroup: results, counts and commands.

#include <gtest/gtest.h>

#include <memory>

#include "bridge/bridge.h"

using namespace modelyne;
using S = core::ShapeType;
using G = core::NodeGeometry;
using Ids = std::vector<std::string>;

namespace {

class Selection : public ::testing::Test {
 protected:
  void SetUp() override {
    doc_ = bridge::createDocument();
    add("a", {0, 0, 10, 10});
    add("b", {30, 20, 20, 10});
    add("c", {100, 50, 40, 30});
    base_ = doc_->history().undoCount();
  }
  void TearDown() override { bridge::destroyDocument(doc_); }
  void add(const std::string& id, G g) { bridge::addNode(doc_, S::rect, g.x, g.y, g.w, g.h, std::nullopt, id); }
  G geom(const std::string& id) { return bridge::findNode(doc_, id)->geom; }
  std::size_t pushed() { return doc_->history().undoCount() - base_; }
  void expectError(const std::string& message, const std::function<void()>& f) {
    try {
      f();
      ADD_FAILURE() << "expected " << message;
    } catch (const bridge::BridgeError& e) {
      EXPECT_EQ(e.code(), 1u);
      EXPECT_EQ(std::string(e.what()), message);
    }
    EXPECT_EQ(pushed(), 0u);
  }

  core::Document* doc_ = nullptr;
  std::size_t base_ = 0;
};

}  // namespace

TEST_F(Selection, AlignNeedsTwoNodesBeforeItChecksTheAxis) {
  EXPECT_EQ(bridge::alignNodes(doc_, Ids{"a"}, 99), 0);
  EXPECT_EQ(bridge::alignNodes(doc_, Ids{"a", "ghost"}, 99), 0);
  EXPECT_EQ(bridge::alignNodes(doc_, Ids{"a", "a"}, 0), 0);  // one node named twice
  expectError("Unknown alignment axis", [&] { bridge::alignNodes(doc_, Ids{"a", "b"}, 6); });
  expectError("Unknown alignment axis", [&] { bridge::alignNodes(doc_, Ids{"a", "b"}, -1); });
}

TEST_F(Selection, AlignEachAxis) {
  // Box: minX 0, maxR 140, minY 0, maxB 80; cx 70, cy 40.
  struct Case {
    int axis;
    G a, b, c;
    int changed;
  };
  const Case cases[] = {
      {0, {0, 0, 10, 10}, {0, 20, 20, 10}, {0, 50, 40, 30}, 2},
      {1, {65, 0, 10, 10}, {60, 20, 20, 10}, {50, 50, 40, 30}, 3},
      {2, {130, 0, 10, 10}, {120, 20, 20, 10}, {100, 50, 40, 30}, 2},
      {3, {0, 0, 10, 10}, {30, 0, 20, 10}, {100, 0, 40, 30}, 2},
      {4, {0, 35, 10, 10}, {30, 35, 20, 10}, {100, 25, 40, 30}, 3},
      {5, {0, 70, 10, 10}, {30, 70, 20, 10}, {100, 50, 40, 30}, 2},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(bridge::alignNodes(doc_, Ids{"a", "b", "c"}, c.axis), c.changed) << c.axis;
    EXPECT_EQ(geom("a"), c.a) << c.axis;
    EXPECT_EQ(geom("b"), c.b) << c.axis;
    EXPECT_EQ(geom("c"), c.c) << c.axis;
    EXPECT_EQ(pushed(), 1u);  // one composite
    bridge::undo(doc_);
    EXPECT_EQ(geom("a"), (G{0, 0, 10, 10}));
    EXPECT_EQ(geom("c"), (G{100, 50, 40, 30}));
  }
  bridge::alignNodes(doc_, Ids{"a", "b"}, 0);
  const std::size_t after = doc_->history().undoCount();
  EXPECT_EQ(bridge::alignNodes(doc_, Ids{"a", "b"}, 0), 0);  // nothing left to change
  EXPECT_EQ(doc_->history().undoCount(), after);
}

TEST_F(Selection, DistributeSpacesCentresEvenly) {
  EXPECT_EQ(bridge::distributeNodes(doc_, Ids{"a", "b"}, 7), 0);  // fewer than three: no axis check
  expectError("Unknown distribute axis", [&] { bridge::distributeNodes(doc_, Ids{"a", "b", "c"}, 2); });
  add("d", {10, 200, 10, 10});
  base_ = doc_->history().undoCount();
  // Horizontal centres: a 5, d 15, b 40, c 120 -> 5, 43.333, 81.667, 120.
  EXPECT_EQ(bridge::distributeNodes(doc_, Ids{"c", "b", "a", "d"}, 0), 2);
  EXPECT_EQ(geom("a"), (G{0, 0, 10, 10}));
  EXPECT_EQ(geom("c"), (G{100, 50, 40, 30}));
  EXPECT_FLOAT_EQ(geom("d").x, 5.0f + 115.0f / 3.0f - 5.0f);
  EXPECT_FLOAT_EQ(geom("b").x, 5.0f + 2.0f * 115.0f / 3.0f - 10.0f);
  EXPECT_EQ(geom("d").y, 200.0f);
  EXPECT_EQ(pushed(), 1u);
  bridge::undo(doc_);
  // Vertical: centres a 5, b 25, c 65, d 205 -> step 200/3.
  EXPECT_EQ(bridge::distributeNodes(doc_, Ids{"a", "b", "c", "d"}, 1), 2);
  EXPECT_FLOAT_EQ(geom("b").y, 5.0f + 200.0f / 3.0f - 5.0f);
  EXPECT_EQ(geom("b").x, 30.0f);
}

TEST_F(Selection, DistributeWithNoSpanChangesNothing) {
  bridge::resizeNode(doc_, "b", -5, 20, 20, 10);  // centre x 5, as a
  bridge::resizeNode(doc_, "c", -15, 50, 40, 30);  // centre x 5
  base_ = doc_->history().undoCount();
  EXPECT_EQ(bridge::distributeNodes(doc_, Ids{"a", "b", "c"}, 0), 0);
  EXPECT_EQ(pushed(), 0u);
}

TEST_F(Selection, FlipMirrorsPositionsInTheBox) {
  EXPECT_EQ(bridge::flipNodes(doc_, Ids{"ghost"}, 9), 0);  // nothing resolved: no axis check
  expectError("Unknown flip axis", [&] { bridge::flipNodes(doc_, Ids{"a"}, 2); });
  EXPECT_EQ(bridge::flipNodes(doc_, Ids{"b"}, 0), 0);  // a single node stays put
  EXPECT_EQ(bridge::flipNodes(doc_, Ids{"a", "b", "c"}, 0), 3);
  EXPECT_EQ(geom("a"), (G{130, 0, 10, 10}));
  EXPECT_EQ(geom("b"), (G{90, 20, 20, 10}));
  EXPECT_EQ(geom("c"), (G{0, 50, 40, 30}));
  bridge::undo(doc_);
  EXPECT_EQ(bridge::flipNodes(doc_, Ids{"a", "b", "c"}, 1), 3);
  EXPECT_EQ(geom("a"), (G{0, 70, 10, 10}));
  EXPECT_EQ(geom("b"), (G{30, 50, 20, 10}));
  EXPECT_EQ(geom("c"), (G{100, 0, 40, 30}));
}

TEST_F(Selection, GroupAndUngroup) {
  add("x", {0, 0, 1, 1});
  add("y", {0, 0, 1, 1});
  base_ = doc_->history().undoCount();
  EXPECT_EQ(bridge::groupNodes(doc_, Ids{"b"}), "");
  EXPECT_EQ(bridge::groupNodes(doc_, Ids{"b", "ghost"}), "");
  EXPECT_EQ(pushed(), 0u);
  const std::string gid = bridge::groupNodes(doc_, Ids{"b", "a", "ghost"});
  EXPECT_EQ(gid, "grp-5-a|b|");
  EXPECT_EQ(bridge::findNode(doc_, "a")->properties.at("__layoutGroupId__"), gid);
  EXPECT_EQ(bridge::findNode(doc_, "b")->properties.at("__layoutGroupId__"), gid);
  EXPECT_EQ(pushed(), 1u);

  EXPECT_EQ(bridge::ungroupNodes(doc_, Ids{"a", "b", "c"}), 2);
  const auto a = bridge::findNode(doc_, "a");
  ASSERT_TRUE(a->properties.count("__layoutGroupId__"));  // key stays, empty
  EXPECT_EQ(a->properties.at("__layoutGroupId__"), "");
  EXPECT_EQ(bridge::ungroupNodes(doc_, Ids{"a", "b"}), 0);
  EXPECT_EQ(pushed(), 2u);
  bridge::undo(doc_);
  EXPECT_EQ(bridge::findNode(doc_, "b")->properties.at("__layoutGroupId__"), gid);
  bridge::undo(doc_);
  EXPECT_FALSE(bridge::findNode(doc_, "a")->properties.count("__layoutGroupId__"));
}
