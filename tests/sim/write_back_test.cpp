// Writing computed values back: one undo step, only computed values, only
// when the text changes.

#include <gtest/gtest.h>

#include "bridge/bridge.h"
#include "sim/diagram_builder.h"
#include "sim/propagation.h"
#include "sim/write_back.h"

namespace {

using namespace modelyne;
using core::sim::parametric::propagate;
using core::sim::parametric::writeBackValues;

TEST(WriteBack, IsOneUndoableStep) {
  bridge::DocumentHandle doc = bridge::createDocument();
  const auto diagram = test::stoppingDistanceDiagram();
  bridge::insertElements(doc, diagram.nodes, diagram.edges);
  doc->history().clear();
  const auto result = propagate(*doc);
  ASSERT_TRUE(result.errors.empty());

  // Five computed values: v, decel and the three distances.
  EXPECT_EQ(writeBackValues(doc, result), 5u);
  EXPECT_EQ(bridge::findNode(doc, "vp_stoppingDist")->properties.at("value"), "89.51543164930865");
  EXPECT_EQ(bridge::findNode(doc, "vp_decel")->properties.at("value"), "6.867");
  EXPECT_EQ(bridge::findNode(doc, "vp_speed")->properties.at("value"), "100");  // given, untouched
  EXPECT_EQ(bridge::findNode(doc, "vp_gravity")->properties.count("value"), 0u);

  // The document computes the same again: nothing to write, no new step.
  EXPECT_EQ(writeBackValues(doc, propagate(*doc)), 0u);

  bridge::undo(doc);
  EXPECT_EQ(bridge::findNode(doc, "vp_stoppingDist")->properties.count("value"), 0u);
  EXPECT_EQ(bridge::findNode(doc, "vp_v")->properties.count("value"), 0u);
  EXPECT_FALSE(bridge::canUndo(doc));
  bridge::destroyDocument(doc);

  EXPECT_THROW(writeBackValues(nullptr, result), bridge::BridgeError);
}

}  // namespace
