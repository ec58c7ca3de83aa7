// The explainer's classification, fixed sentences, connectivity section and
// Markdown layout.
#include <gtest/gtest.h>

#include "explain_fixture.h"

namespace modelyne::explain {
namespace {

using core::EdgeType;
using core::ShapeType;
using testing::Diagram;

std::vector<std::string> headings(const Explanation& x) {
  std::vector<std::string> out;
  for (const auto& s : x.sections) out.push_back(s.heading);
  return out;
}

TEST(Explain, EmptyDiagramIsGeneralPurpose) {
  const Explanation x = explainDiagram({}, {});
  EXPECT_EQ(x.cls, ExplanationClass::general);
  EXPECT_EQ(renderMarkdown(x),
            "# Diagram explanation\n"
            "\n## Overview\n\n"
            "This is a general-purpose diagram containing 0 nodes and 0 edges.\n"
            "\n## Connectivity\n\n"
            "Isolated nodes: 0.\n"
            "\n## Purpose & Intent\n\n"
            "This diagram captures the concepts and connections the author is working through. "
            "Add SysML / UML / BPMN element types to unlock a structural or behavioral "
            "interpretation.\n");
}

TEST(Explain, VotesDecideTheClassAndTiesFollowTheScanOrder) {
  Diagram d;
  d.node("a1", ShapeType::umlAction, "Heat");
  d.node("a2", ShapeType::umlAction, "Pour");
  d.node("c1", ShapeType::umlClass, "Kettle");
  d.node("c2", ShapeType::sysmlBlock, "Cup");
  EXPECT_EQ(d.explain().cls, ExplanationClass::behavioral);  // 2 : 2, behavioral first

  d.edge("c1", "c2", EdgeType::association);  // one more structural vote
  EXPECT_EQ(d.explain().cls, ExplanationClass::structural);

  Diagram tie;  // structural beats interaction and requirements on a tie
  tie.node("c", ShapeType::umlInterface);
  tie.node("l", ShapeType::umlLifeline);
  tie.node("r", ShapeType::sysmlRequirementDef);
  EXPECT_EQ(tie.explain().cls, ExplanationClass::structural);

  Diagram interactionOverRequirements;
  interactionOverRequirements.node("l", ShapeType::umlLifeline);
  interactionOverRequirements.node("r", ShapeType::sysmlRequirementUsage);
  EXPECT_EQ(interactionOverRequirements.explain().cls, ExplanationClass::interaction);

  // General votes never compete, however many.
  Diagram mostlyGeneral;
  for (int i = 0; i < 5; ++i) mostlyGeneral.node("n" + std::to_string(i), ShapeType::rect);
  mostlyGeneral.node("r", ShapeType::sysmlRequirementDef);
  EXPECT_EQ(mostlyGeneral.explain().cls, ExplanationClass::requirements);

  // Edges vote too: retired port types are structural, found messages general.
  Diagram edgesOnly;
  edgesOnly.node("a", ShapeType::text);
  edgesOnly.node("b", ShapeType::text);
  edgesOnly.edge("a", "b", EdgeType::sysmlVerify);
  EXPECT_EQ(edgesOnly.explain().cls, ExplanationClass::requirements);
  edgesOnly.edge("a", "b", EdgeType::sysmlFoundMessage);
  edgesOnly.edge("a", "b", EdgeType::sysmlFoundMessage);
  EXPECT_EQ(edgesOnly.explain().cls, ExplanationClass::requirements);
}

TEST(Explain, ShapeAndEdgeTablesPlaceTheBoundaryTypes) {
  // The ends of each listed range, and neighbours just outside them.
  const std::pair<ShapeType, ExplanationClass> cases[] = {
      {ShapeType::sysmlInterfaceDef, ExplanationClass::structural},
      {ShapeType::sysmlActor, ExplanationClass::structural},
      {ShapeType::sysmlActivityPartition, ExplanationClass::behavioral},
      {ShapeType::sysmlAcceptEventAction, ExplanationClass::behavioral},
      {ShapeType::sysmlSystemBoundary, ExplanationClass::general},
      {ShapeType::sysmlConstraintProperty, ExplanationClass::structural},
      {ShapeType::sysmlAnalysisUsage, ExplanationClass::structural},
      {ShapeType::sysmlVerificationUsage, ExplanationClass::general},
      {ShapeType::bpmnEventBasedGateway, ExplanationClass::behavioral},
      {ShapeType::bpmnPool, ExplanationClass::general},
      {ShapeType::umlActor, ExplanationClass::general},
      {ShapeType::umlCombinedFragment, ExplanationClass::interaction},
      {ShapeType::sysmlChoicePseudostate, ExplanationClass::general},
      {static_cast<ShapeType>(7), ExplanationClass::general},
  };
  for (const auto& [type, cls] : cases) {
    Diagram d;
    d.node("n", type);
    EXPECT_EQ(d.explain().cls, cls) << core::shapeKey(type);
  }
  const std::pair<EdgeType, ExplanationClass> edgeCases[] = {
      {EdgeType::sysmlAccess, ExplanationClass::structural},
      {EdgeType::sysmlTransition, ExplanationClass::behavioral},
      {EdgeType::bpmnMessage, ExplanationClass::interaction},
      {EdgeType::sysmlDeleteMessage, ExplanationClass::interaction},
      {EdgeType::sysmlCopy, ExplanationClass::requirements},
      {EdgeType::sysmlInclude, ExplanationClass::general},
      {EdgeType::dependency, ExplanationClass::general},
      {static_cast<EdgeType>(99), ExplanationClass::general},
  };
  for (const auto& [type, cls] : edgeCases) {
    Diagram d;
    d.node("a", ShapeType::rect);
    d.edge("a", "a", type);
    EXPECT_EQ(d.explain().cls, cls) << core::edgeKey(type);
  }
}

TEST(Explain, TitlesHeadingsAndWordsFollowTheClass) {
  Diagram structural;
  structural.node("b", ShapeType::sysmlBlock, "Pump");
  const Explanation s = structural.explain();
  EXPECT_EQ(s.title, "Structural diagram \u2014 system structure and relationships");
  EXPECT_EQ(headings(s), (std::vector<std::string>{"Overview", "System Structure & Relationships",
                                                   "Connectivity", "Purpose & Intent"}));
  EXPECT_EQ(s.sections[0].body, "This is a structural diagram containing 1 node and 0 edges.");

  Diagram interaction;
  interaction.node("l", ShapeType::umlLifeline);
  const Explanation i = interaction.explain();
  EXPECT_EQ(i.title, "Interaction diagram \u2014 message exchange sequence");
  EXPECT_EQ(i.sections[1].heading, "Interaction Sequence");
  EXPECT_EQ(i.sections[3].body,
            "This diagram models a collaboration scenario \u2014 the messages the participants "
            "exchange and the order in which they occur. Read it to understand how the parts "
            "cooperate to deliver a specific behaviour.");

  Diagram requirements;
  requirements.node("r", ShapeType::sysmlRequirementDef);
  requirements.node("s", ShapeType::sysmlRequirementDef);
  requirements.edge("r", "s", EdgeType::sysmlDeriveReqt);
  const Explanation r = requirements.explain();
  EXPECT_EQ(r.title, "Requirement diagram \u2014 requirements and traceability");
  EXPECT_EQ(r.sections[0].body, "This is a requirements diagram containing 2 nodes and 1 edge.");
  EXPECT_EQ(r.sections[1].heading, "Requirements & Traceability");

  EXPECT_EQ(classWord(ExplanationClass::general), "general-purpose");
  EXPECT_EQ(classShortName(ExplanationClass::requirements), "Requirement");
  EXPECT_EQ(classShortName(ExplanationClass::behavioral), "Behavioral");
}

TEST(Explain, ConnectivityCountsIncidentEdgesById) {
  Diagram loop;  // a self-loop counts at both ends
  loop.node("n1", ShapeType::umlState, "Idle");
  loop.edge("n1", "n1", EdgeType::sysmlTransition);
  EXPECT_EQ(loop.section("Connectivity"),
            "Key elements: Idle.\nIsolated nodes: 0.\n"
            "Most connected element: Idle (2 incident edges).");

  Diagram one;  // plural stays for one edge; an unnamed node shows key and id
  one.node("a", ShapeType::umlAction);
  one.node("b", ShapeType::umlAction);
  one.node("c", ShapeType::umlAction);
  one.edge("a", "b", EdgeType::sysmlControlFlow);
  EXPECT_EQ(one.section("Connectivity"),
            "Isolated nodes: 1.\nMost connected element: umlAction [a] (1 incident edges).");

  Diagram ties;  // the first node with the strictly largest total wins
  ties.node("x", ShapeType::rect, "X");
  ties.node("y", ShapeType::rect, "Y");
  ties.node("z", ShapeType::rect, "Z");
  ties.edge("y", "z", EdgeType::straight);
  ties.edge("z", "y", EdgeType::straight);
  ties.edge("x", "gone", EdgeType::straight);  // a dangling end still counts for x
  EXPECT_EQ(ties.section("Connectivity"),
            "Key elements: X, Y, Z.\nIsolated nodes: 0.\n"
            "Most connected element: Y (2 incident edges).");
}

TEST(Explain, KeyElementsTakeTheFirstEightNamedNodes) {
  Diagram d;
  d.node("blank", ShapeType::rect);
  for (int i = 1; i <= 10; ++i) d.node("n" + std::to_string(i), ShapeType::rect, "N" + std::to_string(i));
  EXPECT_EQ(d.section("Connectivity"),
            "Key elements: N1, N2, N3, N4, N5, N6, N7, N8.\nIsolated nodes: 11.");
}

TEST(Explain, LabelsWithLineBreaksStayOnOneLine) {
  Diagram d;
  d.node("a", ShapeType::rect, "Fuel\r\npump\tunit");
  d.node("b", ShapeType::rect, "# not a heading");
  EXPECT_EQ(d.section("Connectivity"),
            "Key elements: Fuel pump unit, # not a heading.\nIsolated nodes: 2.");
}

TEST(Explain, SameDiagramSameBytes) {
  Diagram d;
  d.node("s", ShapeType::umlInitialNode);
  d.node("a", ShapeType::umlAction, "Work");
  d.node("f", ShapeType::umlFinalNode);
  d.edge("s", "a", EdgeType::sysmlControlFlow);
  d.edge("a", "f", EdgeType::sysmlControlFlow);
  const std::string first = renderMarkdown(d.explain());
  for (int i = 0; i < 3; ++i) EXPECT_EQ(renderMarkdown(d.explain()), first);
}

}  // namespace
}  // namespace modelyne::explain
