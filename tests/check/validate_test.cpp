// The steps every kind runs (element types, dangling edges), their order
// against the kind's rules, and the checker's contract as a reader.
#include <gtest/gtest.h>

#include "diagram_builder.h"

namespace modelyne::check {
namespace {

using testing::Drawing;
using testing::Findings;
using K = core::DiagramKind;
using S = core::ShapeType;
using E = core::EdgeType;

TEST(Validate, EmptyDiagramHasNoFindingsOnAnyKind) {
  const Drawing empty;
  for (const K kind : core::allDiagramKinds()) EXPECT_EQ(empty.check(kind), Findings{});
}

TEST(Validate, FindingsAreAppendedAfterWhatTheListHolds) {
  Drawing d;
  d.node("r", S::rect);
  std::vector<std::string> findings = {"earlier"};
  EXPECT_EQ(validateDiagram(d.doc(), K::bdd, findings), 1u);
  EXPECT_EQ(findings, (Findings{"earlier", "Node 'r' (type=rect) not allowed on Block Definition Diagram"}));
}

TEST(Validate, WrongKindReportsEveryForeignElementNodesFirst) {
  // A small state machine checked as a use case diagram.
  Drawing d;
  d.node("init", S::umlInitialNode)
      .node("Idle", S::umlState, "Idle")
      .node("note", S::umlNote)
      .node("old", S::sysmlFlowPort)
      .edge("t1", "init", "Idle", E::sysmlTransition)
      .edge("line", "note", "Idle", E::straight);
  EXPECT_EQ(d.check(K::uc), (Findings{
                                "Node 'init' (type=umlInitialNode) not allowed on Use Case Diagram",
                                "Node 'Idle' (type=umlState) not allowed on Use Case Diagram",
                                "Node 'old' (type=sysmlFlowPort) not allowed on Use Case Diagram",
                                "Edge 't1' (type=sysmlTransition) not allowed on Use Case Diagram",
                            }));
  // As a state machine only the retired port remains.
  EXPECT_EQ(d.check(K::stm),
            (Findings{"Node 'old' (type=sysmlFlowPort) not allowed on State Machine Diagram"}));
}

TEST(Validate, DanglingEdgesSourceBeforeTargetAndNoRuleOnTheirEnds) {
  Drawing d;
  d.node("uc1", S::umlUseCase)
      .edge("both", "ghost1", "ghost2", E::sysmlInclude)
      .edge("half", "uc1", "ghost3", E::sysmlInclude)
      .edge("fine", "uc1", "uc1", E::sysmlInclude);
  EXPECT_EQ(d.check(K::uc), (Findings{
                                "Edge 'both' references unknown source 'ghost1'.",
                                "Edge 'both' references unknown target 'ghost2'.",
                                "Edge 'half' references unknown target 'ghost3'.",
                            }));
}

TEST(Validate, StepsComeInOrderTypesDanglingKindAllocationsStereotypes) {
  Drawing d;
  d.node("st", S::umlClass, "Marker", {{"stereotype", "stereotype"}})
      .node("b1", S::sysmlBlock)
      .node("x", S::rect)
      .edge("own", "b1", "st", E::composition)
      .edge("loop", "b1", "b1", E::sysmlAllocate)
      .edge("lost", "b1", "nowhere", E::association);
  EXPECT_EQ(d.check(K::bdd),
            (Findings{
                "Node 'x' (type=rect) not allowed on Block Definition Diagram",
                "Edge 'lost' references unknown target 'nowhere'.",
                "Edge 'own' (Composition) must connect two block-stereotyped elements (SysML Distilled §3.4.1 / §3.5).",
                "Edge 'loop' allocates element 'b1' to itself (§14.2 — an allocation relates two distinct model elements).",
                "Stereotype 'st' does not declare the metaclass it extends; §15.4 requires a stereotype to extend one or more metaclasses (set the `extendsMetaclass` property).",
            }));
}

TEST(Validate, TestKindRunsNoGroupButTheCommonSteps) {
  Drawing d;
  d.node("a", S::umlActor)
      .node("b", S::umlActor)
      .node("r", S::sysmlRequirementUsage)
      .edge("e1", "a", "b", E::association)
      .edge("e2", "a", "r", E::sysmlAllocate);
  // Neither the use case rule on two actors nor the requirement rules run;
  // the allocation step does.
  EXPECT_EQ(d.check(K::test),
            (Findings{
                "Edge 'e2' (type=sysmlAllocate) not allowed on Test Diagram",
                "Edge 'e2' uses «allocate» to a requirement; §14.4.1 requires requirement allocation to use «satisfy» / «deriveReqt» / «refine», not «allocate».",
            }));
}

TEST(Validate, SpanOverloadAgreesAndFirstOfARepeatedIdAnswers) {
  std::vector<core::Node> nodes(2);
  nodes[0].id = "a";
  nodes[0].type = S::umlActor;
  nodes[1].id = "a";
  nodes[1].type = S::umlUseCase;
  std::vector<core::Edge> edges(1);
  edges[0].id = "e";
  edges[0].source = "a";
  edges[0].target = "a";
  edges[0].type = E::association;
  std::vector<std::string> findings;
  EXPECT_EQ(validateDiagram(nodes, edges, K::uc, findings), 1u);
  EXPECT_EQ(findings, (Findings{"Edge 'e' connects two actors. Only generalization is allowed between actors (SysML Distilled §5.8)."}));
}

TEST(Validate, LongIdsThatShareAPrefixResolveApart) {
  const std::string base = "requirement-from-the-customer-brief-";  // longer than any inline key
  Drawing d;
  d.node(base + "1", S::umlActor)
      .node(base + "2", S::umlUseCase)
      .edge("e1", base + "1", base + "2", E::association)
      .edge("e2", base + "2", base + "1", E::composition)
      .edge("e3", base + "1", base + "3", E::association);
  EXPECT_EQ(d.check(K::uc),
            (Findings{
                "Edge 'e2' (type=composition) not allowed on Use Case Diagram",
                "Edge 'e3' references unknown target '" + base + "3'.",
                "Edge 'e2' uses composite/aggregation between an actor and a use case. SysML Distilled §5.8 forbids this.",
            }));
}

TEST(Validate, CheckingLeavesTheDocumentUnchanged) {
  Drawing d;
  d.node("a", S::umlActor, "User", {{"role", "x"}}).node("u", S::umlUseCase).edge("e", "a", "u", E::composition);
  const std::vector<core::Node> nodesBefore = d.doc().nodes();
  const std::size_t edgesBefore = d.doc().edges().size();
  (void)d.check(K::uc);
  EXPECT_EQ(d.doc().nodes(), nodesBefore);
  EXPECT_EQ(d.doc().edges().size(), edgesBefore);
  EXPECT_EQ(d.doc().findNode("a")->properties.at("role"), "x");
}

}  // namespace
}  // namespace modelyne::check
