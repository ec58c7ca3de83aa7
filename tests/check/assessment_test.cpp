// Model assessment: pillar counts, traceability sets and the report text.
#include <gtest/gtest.h>

#include "check/assessment.h"
#include "diagram_builder.h"

namespace modelyne::check {
namespace {

using testing::Drawing;
using S = core::ShapeType;
using E = core::EdgeType;

AssessmentMetrics assess(const Drawing& d) { return computeAssessment(d.doc().nodes(), d.doc().edges()); }

TEST(Assessment, EmptyDiagramReport) {
  EXPECT_EQ(formatAssessment(assess(Drawing{})),
            "MBSE Model Assessment (A Practical Guide to SysML, Part IV)\n"
            "===========================================================\n"
            "[Model Metrics - ch.19 §19.1.1]\n"
            "  Nodes: 0   Edges: 0\n"
            "  Pillars present: 0/5\n"
            "    Structure=0  Behavior=0  Requirements=0  Parametrics=0  CrossCutting=0\n"
            "[Integrating-Framework Traceability - ch.18 §18.1]\n"
            "  Requirements: 0\n"
            "    Satisfied by design: 0/0 (0%)\n"
            "    Verified: 0/0 (0%)\n"
            "  Behaviors: 0\n"
            "    Allocated to structure: 0/0 (0%)\n");
}

TEST(Assessment, EveryNodeLandsInOnePillar) {
  Drawing d;
  d.node("r", S::rect)                       // CrossCutting
      .node("note", S::umlNote)              // CrossCutting (value 40)
      .node("task", S::bpmnTask)             // CrossCutting
      .node("topic", S::mindmapMainTopic)    // CrossCutting
      .node("gate", S::sysmlGate)            // CrossCutting
      .node("cls", S::umlClass)              // Structure (value 10)
      .node("obj", S::umlObject)             // Structure (value 18)
      .node("port", S::sysmlPort)            // Structure
      .node("init", S::umlInitialNode)       // Behavior (value 20)
      .node("frag", S::umlCombinedFragment)  // Behavior (value 32)
      .node("actor", S::sysmlActor)          // Behavior
      .node("tc", S::sysmlTestCase)          // Requirements
      .node("cp", S::sysmlConstraintParameter);  // Parametrics
  const AssessmentMetrics m = assess(d);
  EXPECT_EQ(m.nodeCount, 13);
  EXPECT_EQ(m.structureCount, 3);
  EXPECT_EQ(m.behaviorCount, 3);
  EXPECT_EQ(m.requirementsPillarCount, 1);
  EXPECT_EQ(m.parametricsCount, 1);
  EXPECT_EQ(m.crossCuttingCount, 5);
  EXPECT_EQ(m.pillarsPresent, 5);
  EXPECT_EQ(m.requirementCount, 0);  // a test case is in the pillar, not traced
  EXPECT_EQ(m.behaviourCount, 1);    // only the fragment is a traced behaviour

  Drawing one;
  one.node("r", S::rect);
  const std::string text = formatAssessment(assess(one));
  EXPECT_NE(text.find("  Pillars present: 1/5\n    Structure=0  Behavior=0  Requirements=0  Parametrics=0  CrossCutting=1\n"),
            std::string::npos);
}

TEST(Assessment, TraceabilityCountsDistinctEndsEitherDirection) {
  Drawing d;
  d.node("r1", S::sysmlRequirementDef)
      .node("r2", S::sysmlRequirementUsage)
      .node("r3", S::sysmlRequirementUsage)
      .node("b1", S::sysmlBlock)
      .node("b2", S::sysmlPartUsage)
      .node("tc", S::sysmlTestCase)
      .node("a1", S::umlAction)
      .node("a2", S::sysmlActionUsage)
      .node("a3", S::sysmlStateUsage)
      .node("ifc", S::sysmlInterfaceDef)
      .edge("s1", "b1", "r1", E::sysmlSatisfy)
      .edge("s2", "b2", "r1", E::sysmlSatisfy)   // same requirement again
      .edge("s3", "r2", "b1", E::sysmlSatisfy)   // requirement at the source
      .edge("v1", "tc", "r3", E::sysmlVerify)
      .edge("v2", "tc", "ghost", E::sysmlVerify) // unknown end: skipped
      .edge("al1", "a1", "b1", E::sysmlAllocate)
      .edge("al2", "b2", "a2", E::sysmlAllocate) // behaviour at the target
      .edge("al3", "a3", "ifc", E::sysmlAllocate)  // interfaces are no allocation target
      .edge("d1", "r1", "r3", E::sysmlDeriveReqt);
  const AssessmentMetrics m = assess(d);
  EXPECT_EQ(m.requirementCount, 3);
  EXPECT_EQ(m.requirementsSatisfied, 2);
  EXPECT_EQ(m.requirementsVerified, 1);
  EXPECT_EQ(m.behaviourCount, 3);
  EXPECT_EQ(m.behavioursAllocated, 2);
  EXPECT_EQ(m.edgeCount, 9);
  const std::string text = formatAssessment(m);
  EXPECT_NE(text.find("  Requirements: 3\n    Satisfied by design: 2/3 (67%)\n    Verified: 1/3 (33%)\n"
                      "  Behaviors: 3\n    Allocated to structure: 2/3 (67%)\n"),
            std::string::npos)
      << text;
}

TEST(Assessment, RepeatedIdKeepsItsFirstTypeButCountsTwice) {
  std::vector<core::Node> nodes(3);
  nodes[0].id = "x";
  nodes[0].type = S::sysmlRequirementDef;
  nodes[1].id = "x";
  nodes[1].type = S::sysmlBlock;
  nodes[2].id = "b";
  nodes[2].type = S::sysmlBlock;
  std::vector<core::Edge> edges(1);
  edges[0].source = "b";
  edges[0].target = "x";
  edges[0].type = E::sysmlSatisfy;
  const AssessmentMetrics m = computeAssessment(nodes, edges);
  EXPECT_EQ(m.nodeCount, 3);
  EXPECT_EQ(m.structureCount, 2);
  EXPECT_EQ(m.requirementCount, 1);
  EXPECT_EQ(m.requirementsSatisfied, 1);
}

TEST(Assessment, PercentagesRoundHalfUp) {
  AssessmentMetrics m;
  m.requirementCount = 8;
  m.requirementsSatisfied = 1;  // 12.5% -> 13
  m.requirementsVerified = 8;   // 100%
  m.behaviourCount = 200;
  m.behavioursAllocated = 1;    // 0.5% -> 1
  const std::string text = formatAssessment(m);
  EXPECT_NE(text.find("Satisfied by design: 1/8 (13%)\n"), std::string::npos);
  EXPECT_NE(text.find("Verified: 8/8 (100%)\n"), std::string::npos);
  EXPECT_NE(text.find("Allocated to structure: 1/200 (1%)\n"), std::string::npos);
}

}  // namespace
}  // namespace modelyne::check
