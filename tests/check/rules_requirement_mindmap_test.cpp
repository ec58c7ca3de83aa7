// Requirement diagram and mind map rules.
#include <gtest/gtest.h>

#include "diagram_builder.h"

namespace modelyne::check {
namespace {

using testing::Drawing;
using testing::Findings;
using K = core::DiagramKind;
using S = core::ShapeType;
using E = core::EdgeType;

TEST(RequirementRules, IdentifiersAndTexts) {
  Drawing d;
  d.node("r1", S::sysmlRequirementDef, "", {{"reqId", "REQ-1"}, {"requirementText", "Shall fly."}})
      .node("r2", S::sysmlRequirementUsage, "", {{"reqId", "REQ-1 "}})   // duplicate and no text
      .node("r3", S::sysmlRequirementUsage, "", {{"requirementText", "Shall land."}})
      .node("r4", S::sysmlRequirementDef, "", {{"reqId", "REQ-1"}, {"requirementText", "x"}})
      .node("tc", S::sysmlTestCase, "", {{"reqId", "REQ-1"}});         // a test case is no requirement
  EXPECT_EQ(d.check(K::req),
            (Findings{
                "Requirement 'r2' duplicates reqId 'REQ-1' already used by 'r1' (SysML Distilled §11.2).",
                "Requirement 'r2' has no `requirementText`. The `text` property is mandatory (SysML Distilled §11.2).",
                "Requirement 'r3' has no `reqId`. Every requirement needs a unique identifier (SysML Distilled §11.2).",
                "Requirement 'r4' duplicates reqId 'REQ-1' already used by 'r1' (SysML Distilled §11.2).",
            }));
}

TEST(RequirementRules, TraceRelationshipEnds) {
  const std::map<std::string, std::string> ok = {{"reqId", "R"}, {"requirementText", "t"}};
  Drawing d;
  d.node("req", S::sysmlRequirementDef, "", ok)
      .node("req2", S::sysmlRequirementUsage, "", {{"reqId", "R2"}, {"requirementText", "t"}})
      .node("blk", S::sysmlBlock)
      .node("tc", S::sysmlTestCase)
      .edge("s1", "blk", "req", E::sysmlSatisfy)
      .edge("s2", "req", "blk", E::sysmlSatisfy)
      .edge("v1", "tc", "blk", E::sysmlVerify)
      .edge("f1", "blk", "tc", E::sysmlRefine)
      .edge("t1", "req", "blk", E::sysmlTrace)
      .edge("t2", "blk", "req", E::sysmlTrace)
      .edge("d1", "req2", "req", E::sysmlDeriveReqt)
      .edge("d2", "blk", "req", E::sysmlDeriveReqt)
      .edge("c1", "req", "tc", E::sysmlCopy)
      .edge("s3", "blk", "gone", E::sysmlSatisfy);
  EXPECT_EQ(d.check(K::req),
            (Findings{
                "Edge 's3' references unknown target 'gone'.",
                "Edge 's2' «satisfy» target must be a Requirement (Guide §13.11).",
                "Edge 'v1' «verify» target must be a Requirement (Guide §13.12).",
                "Edge 'f1' «refine» target must be a Requirement (Guide §13.13).",
                "Edge 't2' «trace» source must be a Requirement (Guide §13.14).",
                "Edge 'd2' «deriveReqt» can only connect two Requirements (Guide §13.4).",
                "Edge 'c1' «copy» can only connect two Requirements (Guide §13.4).",
            }));
}

TEST(MindMapRules, OneCentreConnectedTopicsAndCommentLinks) {
  Drawing d;
  d.node("c1", S::mindmapCentral, "Trip")
      .node("c2", S::mindmapCentral)
      .node("c3", S::mindmapCentral)
      .node("t1", S::mindmapMainTopic)
      .node("t2", S::mindmapSubTopic)
      .node("t3", S::mindmapMainTopic)
      .node("t4", S::mindmapSubTopic)
      .node("fl", S::mindmapFloatingTopic)
      .node("cm", S::mindmapComment)
      .node("cm2", S::mindmapComment)
      .edge("b1", "c1", "t1", E::mindmapBranch)
      .edge("b2", "t2", "t1", E::mindmapBranch)   // drawn towards the centre: still connected
      .edge("b3", "t3", "t3", E::mindmapBranch)
      .edge("b4", "t4", "cm", E::straight)       // a line to a comment connects nothing
      .edge("l1", "cm", "t1", E::mindmapCommentLink)
      .edge("l2", "t1", "t2", E::mindmapCommentLink)
      .edge("l3", "cm", "cm2", E::mindmapCommentLink);
  EXPECT_EQ(d.check(K::mm),
            (Findings{
                "Mind map has 3 Central topics ('c1' and 2 more). A mind map radiates from exactly one central idea; make the others Major topics.",
                "Topic 't3' is not connected to the Central topic by any branch. Draw a branch, or make it a Floating Topic.",
                "Topic 't4' is not connected to the Central topic by any branch. Draw a branch, or make it a Floating Topic.",
                "Edge 'b3' is a Branch from a topic to itself. A branch joins two different topics.",
                "Edge 'l2' is a Comment Link but neither end is a Comment. A comment link attaches one Comment to one annotated element (UML 2.5.1 §7.2).",
                "Edge 'l3' is a Comment Link between two Comments, which annotates nothing (UML 2.5.1 §7.2).",
            }));
}

TEST(MindMapRules, GenericLinesJoinTopicsLikeBranches) {
  Drawing d;
  d.node("c", S::mindmapCentral).node("a", S::mindmapMainTopic).node("b", S::mindmapSubTopic)
      .edge("x", "c", "a", E::curved).edge("y", "a", "b", E::mindmapBranch);
  EXPECT_EQ(d.check(K::mm), Findings{});
}

}  // namespace
}  // namespace modelyne::check
