// Applying plans to documents: the kind mapping on every diagram kind, the
// one-step undo, ids, generated properties, and reading a document back as
// a plan.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ai/interpreter.h"
#include "ai/plan_apply.h"
#include "core/text_chars.h"
#include "check/allowed_types.h"
#include "bridge/bridge.h"

namespace modelyne::ai {
namespace {

using core::DiagramKind;
using core::EdgeType;
using core::ShapeType;

PlanNode planNode(std::string id, PlanNodeKind kind, std::string label, float x = 80, float y = 80) {
  return PlanNode{std::move(id), std::move(label), kind, x, y, 180.0f, 100.0f};
}

// Every node kind once, and every edge kind between several pairs of them.
DiagramPlan everyKindPlan() {
  DiagramPlan plan;
  for (int k = 0; k < kPlanNodeKindCount; ++k)
    plan.nodes.push_back(planNode("n" + std::to_string(k + 1), static_cast<PlanNodeKind>(k), "N" + std::to_string(k)));
  for (int e = 0; e < kPlanEdgeKindCount; ++e)
    for (int s = 0; s < kPlanNodeKindCount; ++s)
      plan.edges.push_back(PlanEdge{"n" + std::to_string(s + 1), "n" + std::to_string((s + e + 1) % 9 + 1),
                                    static_cast<PlanEdgeKind>(e), ""});
  return plan;
}

TEST(PlanApply, GeneratedTypesAreAllowedOnEveryDiagramKind) {
  for (DiagramKind kind : core::allDiagramKinds()) {
    const std::string name(core::diagramKindKey(kind));
    for (int k = 0; k < kPlanNodeKindCount; ++k)
      EXPECT_TRUE(check::isShapeAllowed(kind, ShapeForPlanKind(kind, static_cast<PlanNodeKind>(k))))
          << name << " node kind " << k;
    for (int e = 0; e < kPlanEdgeKindCount; ++e)
      EXPECT_TRUE(check::isEdgeAllowed(kind, EdgeForPlanKind(kind, static_cast<PlanEdgeKind>(e)).type))
          << name << " edge kind " << e;

    core::Document doc;
    const DiagramPlan plan = everyKindPlan();
    const bridge::InsertResult ids = ApplyPlan(&doc, kind, plan);
    ASSERT_EQ(doc.nodes().size(), plan.nodes.size()) << name;
    ASSERT_EQ(doc.edges().size(), plan.edges.size()) << name;
    EXPECT_EQ(ids.nodeIds.size(), plan.nodes.size());
    for (const core::Node& n : doc.nodes())
      EXPECT_TRUE(check::isShapeAllowed(kind, n.type)) << name << " " << core::shapeKey(n.type);
    for (const core::Edge& e : doc.edges())
      EXPECT_TRUE(check::isEdgeAllowed(kind, e.type)) << name << " " << core::edgeKey(e.type);
  }
}

TEST(PlanApply, KindSpecificShapes) {
  // diagram kind, plan node kind, expected shape
  const std::vector<std::tuple<DiagramKind, PlanNodeKind, ShapeType>> shapes = {
      {DiagramKind::act, PlanNodeKind::Action, ShapeType::umlAction},
      {DiagramKind::act, PlanNodeKind::Actor, ShapeType::sysmlActor},
      {DiagramKind::bdd, PlanNodeKind::Block, ShapeType::sysmlBlock},
      {DiagramKind::bdd, PlanNodeKind::Constraint, ShapeType::sysmlConstraintBlock},
      {DiagramKind::ibd, PlanNodeKind::Block, ShapeType::sysmlPartUsage},
      {DiagramKind::req, PlanNodeKind::Requirement, ShapeType::sysmlRequirementUsage},
      {DiagramKind::uc, PlanNodeKind::UseCase, ShapeType::umlUseCase},
      {DiagramKind::uc, PlanNodeKind::Actor, ShapeType::umlActor},
      {DiagramKind::stm, PlanNodeKind::State, ShapeType::umlState},
      {DiagramKind::sd, PlanNodeKind::Block, ShapeType::umlLifeline},
      {DiagramKind::stm, PlanNodeKind::Block, ShapeType::umlNote},
      {DiagramKind::mm, PlanNodeKind::Requirement, ShapeType::mindmapMainTopic}};
  for (const auto& [kind, planKind, shape] : shapes)
    EXPECT_EQ(ShapeForPlanKind(kind, planKind), shape) << core::diagramKindKey(kind) << " " << int(planKind);

  EXPECT_EQ(EdgeForPlanKind(DiagramKind::act, PlanEdgeKind::Flow).type, EdgeType::sysmlControlFlow);
  EXPECT_EQ(EdgeForPlanKind(DiagramKind::req, PlanEdgeKind::Satisfy).type, EdgeType::sysmlSatisfy);
  EXPECT_EQ(EdgeForPlanKind(DiagramKind::stm, PlanEdgeKind::Flow).type, EdgeType::sysmlTransition);
  EXPECT_EQ(EdgeForPlanKind(DiagramKind::mm, PlanEdgeKind::Containment).type, EdgeType::mindmapBranch);
  EXPECT_FALSE(EdgeForPlanKind(DiagramKind::bdd, PlanEdgeKind::Satisfy).exact);
  // Out-of-range kinds fall back rather than reading outside the tables.
  EXPECT_EQ(ShapeForPlanKind(static_cast<DiagramKind>(99), PlanNodeKind::Block), ShapeType::umlPackage);
  EXPECT_EQ(ShapeForPlanKind(DiagramKind::bdd, static_cast<PlanNodeKind>(-3)), ShapeType::sysmlBlock);
}

TEST(PlanApply, OneUndoStepInPlanOrderWithLabelsAndSizes) {
  core::Document doc;
  DiagramPlan plan;
  plan.nodes = {planNode("n1", PlanNodeKind::Action, "Validate", 80, 80),
                planNode("n2", PlanNodeKind::Action, "Pay", 300, 80),
                planNode("n3", PlanNodeKind::Actor, "Customer", 520, 80)};
  plan.nodes[2].width = 0.0f;  // not positive: default size
  plan.edges = {PlanEdge{"n1", "n2", PlanEdgeKind::Flow, "order"}, PlanEdge{"n2", "n3", PlanEdgeKind::Satisfy, ""},
                PlanEdge{"n3", "ghost", PlanEdgeKind::Flow, ""}};
  const bridge::InsertResult ids = ApplyPlan(&doc, DiagramKind::act, plan);
  EXPECT_EQ(ids.nodeIds, (std::vector<std::string>{"n1", "n2", "n3"}));
  ASSERT_EQ(doc.nodes().size(), 3u);
  EXPECT_EQ(doc.nodes()[0].text, "Validate");
  EXPECT_EQ(doc.nodes()[0].type, ShapeType::umlAction);
  EXPECT_EQ(doc.nodes()[1].geom, (core::NodeGeometry{300, 80, 180, 100}));
  EXPECT_EQ(doc.nodes()[2].geom, (core::NodeGeometry{520, 80, 180, 100}));
  ASSERT_EQ(doc.edges().size(), 2u);  // the edge to an unknown node is left out
  EXPECT_EQ(doc.edges()[0].type, EdgeType::sysmlControlFlow);
  EXPECT_EQ(doc.edges()[0].text, "order");
  EXPECT_EQ(doc.edges()[1].type, EdgeType::dependency);
  EXPECT_EQ(doc.edges()[1].text, "\xC2\xABsatisfy\xC2\xBB");

  bridge::undo(&doc);
  EXPECT_TRUE(doc.nodes().empty());
  EXPECT_TRUE(doc.edges().empty());
  EXPECT_FALSE(bridge::canUndo(&doc));
  bridge::redo(&doc);
  EXPECT_EQ(doc.nodes().size(), 3u);
  EXPECT_EQ(doc.edges().size(), 2u);

  EXPECT_THROW(ApplyPlan(nullptr, DiagramKind::act, plan), bridge::BridgeError);
  EXPECT_TRUE(ApplyPlan(&doc, DiagramKind::act, DiagramPlan{}).nodeIds.empty());
}

TEST(PlanApply, IdsRequirementsNotesAndMindMaps) {
  core::Document doc;
  bridge::addNode(&doc, ShapeType::sysmlRequirementUsage, 0, 0, 10, 10, "Old", "n1");
  bridge::setNodeProperty(&doc, "n1", "reqId", "REQ-001");
  DiagramPlan plan;
  plan.nodes = {planNode("n1", PlanNodeKind::Requirement, "Stop within 40 m"),
                planNode("n2", PlanNodeKind::Block, "Brake"), planNode("n3", PlanNodeKind::State, "Idle")};
  // "n1" in an edge names the plan's n1 (renamed), not the document's n1.
  plan.edges = {PlanEdge{"n2", "n1", PlanEdgeKind::Satisfy, ""}, PlanEdge{"n3", "n2", PlanEdgeKind::Flow, ""}};
  const PlanElements el = BuildPlanElements(doc, DiagramKind::req, plan);
  ASSERT_EQ(el.nodes.size(), 3u);
  EXPECT_EQ(el.nodes[0].id, "n2");
  EXPECT_EQ(el.nodes[1].id, "n3");
  EXPECT_EQ(el.nodes[2].id, "n4");
  EXPECT_EQ(el.nodes[0].properties,
            (std::map<std::string, std::string>{{"reqId", "REQ-002"}, {"requirementText", "Stop within 40 m"}}));
  EXPECT_TRUE(el.nodes[1].properties.empty());
  ASSERT_EQ(el.edges.size(), 2u);
  EXPECT_EQ(el.edges[0].source, "n3");
  EXPECT_EQ(el.edges[0].target, "n2");
  EXPECT_EQ(el.edges[0].type, EdgeType::sysmlSatisfy);
  EXPECT_EQ(el.edges[0].text, "");
  // A State is a note on a requirements diagram; notes attach by plain lines.
  EXPECT_EQ(el.nodes[2].type, ShapeType::umlNote);
  EXPECT_EQ(el.edges[1].type, EdgeType::straight);
  EXPECT_EQ(el.edges[1].text, "\xC2\xAB" "flow\xC2\xBB");

  // An edge may name an existing document node.
  DiagramPlan toExisting;
  toExisting.nodes = {planNode("x", PlanNodeKind::Block, "X")};
  toExisting.edges = {PlanEdge{"x", "n1", PlanEdgeKind::Satisfy, "meets"}};
  const PlanElements ex = BuildPlanElements(doc, DiagramKind::req, toExisting);
  ASSERT_EQ(ex.edges.size(), 1u);
  EXPECT_EQ(ex.edges[0].source, "x");
  EXPECT_EQ(ex.edges[0].target, "n1");
  EXPECT_EQ(ex.edges[0].text, "meets");

  // Mind map: the first node becomes the central idea unless one exists.
  core::Document mm;
  DiagramPlan topics;
  topics.nodes = {planNode("a", PlanNodeKind::Block, "Drone"), planNode("b", PlanNodeKind::Actor, "Pilot")};
  topics.edges = {PlanEdge{"a", "b", PlanEdgeKind::Dependency, ""}};
  ApplyPlan(&mm, DiagramKind::mm, topics);
  EXPECT_EQ(mm.nodes()[0].type, ShapeType::mindmapCentral);
  EXPECT_EQ(mm.nodes()[1].type, ShapeType::mindmapMainTopic);
  EXPECT_EQ(mm.edges()[0].type, EdgeType::mindmapBranch);
  EXPECT_EQ(mm.edges()[0].text, "");
  const PlanElements again = BuildPlanElements(mm, DiagramKind::mm, topics);
  EXPECT_EQ(again.nodes[0].type, ShapeType::mindmapMainTopic);
}

// Plan text comes from people and models; what XML 1.0 cannot hold never
// reaches the document, whichever way the plan was made.
TEST(PlanApply, GeneratedTextHoldsNoControlCharacters) {
  DiagramPlan plan;
  plan.nodes = {planNode("r\x07", PlanNodeKind::Requirement, "Stop\x07 within \x1B[1m40 m\xFF"),
                planNode("b", PlanNodeKind::Block, "Brake\r\nunit")};
  plan.edges = {PlanEdge{"b", "r\x07", PlanEdgeKind::Satisfy, "meets\x01"}};
  core::Document doc;
  ApplyPlan(&doc, DiagramKind::req, plan);
  ASSERT_EQ(doc.nodes().size(), 2u);
  EXPECT_EQ(doc.nodes()[0].id, "r");
  EXPECT_EQ(doc.nodes()[0].text, "Stop within [1m40 m\xEF\xBF\xBD");
  EXPECT_EQ(doc.nodes()[0].properties.at("requirementText"), doc.nodes()[0].text);
  EXPECT_EQ(doc.nodes()[1].text, "Brake\nunit");
  ASSERT_EQ(doc.edges().size(), 1u);
  EXPECT_EQ(doc.edges()[0].target, "r");
  EXPECT_EQ(doc.edges()[0].text, "meets");

  // The offline interpreter on a description holding a bell and a stray byte.
  core::Document fromText;
  ApplyPlan(&fromText, DiagramKind::bdd, InterpretText("A Drone\x07 has a Battery\xFE and a Motor."));
  ASSERT_FALSE(fromText.nodes().empty());
  for (const core::Node& n : fromText.nodes()) {
    EXPECT_EQ(n.text, core::cleanText(n.text)) << n.id;
    EXPECT_EQ(n.id, core::cleanText(n.id));
  }
}

TEST(PlanFromDocument, NodesEdgesAndKinds) {
  core::Document doc;
  bridge::addNode(&doc, ShapeType::sysmlBlock, 10, 20, 30, 40, "Drone", "drone");
  bridge::addNode(&doc, ShapeType::umlActor, 0, 0, 1, 1, "Pilot | lead\nA", "p");
  bridge::addNode(&doc, ShapeType::mindmapMainTopic, 0, 0, 1, 1, std::nullopt, "topic");
  const std::string e1 = bridge::addEdge(&doc, "p", core::Anchor::right, "drone", core::Anchor::left);
  bridge::setEdgeType(&doc, e1, EdgeType::sysmlControlFlow);
  bridge::setEdgeText(&doc, e1, "flies");
  bridge::addEdge(&doc, "drone", core::Anchor::right, "topic", core::Anchor::left);
  const DocumentPlan dp = PlanFromDocument(doc);
  EXPECT_EQ(dp.documentIds, (std::vector<std::string>{"drone", "p", "topic"}));
  EXPECT_EQ(WritePlan(dp.plan),
            "NODE|n1|Block|Drone\n"
            "NODE|n2|Actor|Pilot   lead A\n"
            "NODE|n3|Generic|topic\n"
            "EDGE|n2|n1|Flow|flies\n"
            "EDGE|n1|n3|Connection\n");
  EXPECT_EQ(dp.plan.nodes[0].x, 10.0f);
  EXPECT_EQ(PlanKindOfShape(ShapeType::sysmlRequirementDef), PlanNodeKind::Requirement);
  EXPECT_EQ(PlanKindOfEdge(EdgeType::composition), PlanEdgeKind::Containment);
  EXPECT_EQ(PlanKindOfEdge(EdgeType::sysmlSatisfy), PlanEdgeKind::Satisfy);
}

}  // namespace
}  // namespace modelyne::ai
