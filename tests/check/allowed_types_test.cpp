// The allowed-types table as the palette and the checker read it.
#include <gtest/gtest.h>

#include "check/allowed_types.h"

namespace modelyne::check {
namespace {

using K = core::DiagramKind;
using S = core::ShapeType;
using E = core::EdgeType;

TEST(AllowedTypes, NoteEverywhereBasicAndRetiredNowhere) {
  for (const K kind : core::allDiagramKinds()) {
    EXPECT_TRUE(isShapeAllowed(kind, S::umlNote)) << core::diagramKindKey(kind);
    for (const S s : {S::rect, S::text, S::oval, S::rounded, S::triangle, S::sysmlValueType,
                      S::sysmlFlowPort, S::sysmlProxyPort, S::sysmlFullPort, S::sysmlStandardPort,
                      S::bpmnTask})
      EXPECT_FALSE(isShapeAllowed(kind, s)) << core::diagramKindKey(kind) << " " << core::shapeKey(s);
    for (int e = 0; e <= 8; ++e) EXPECT_TRUE(isEdgeAllowed(kind, static_cast<E>(e)));
    EXPECT_FALSE(isEdgeAllowed(kind, E::bpmnSequence));
  }
}

TEST(AllowedTypes, KindsDifferWhereTheNotationsDo) {
  EXPECT_TRUE(isShapeAllowed(K::ibd, S::sysmlPort));
  EXPECT_FALSE(isShapeAllowed(K::bdd, S::sysmlPort));
  EXPECT_TRUE(isShapeAllowed(K::pkg, S::sysmlRequirementUsage));
  EXPECT_FALSE(isShapeAllowed(K::bdd, S::sysmlRequirementUsage));
  EXPECT_TRUE(isShapeAllowed(K::uc, S::sysmlTestCase));
  EXPECT_TRUE(isShapeAllowed(K::stm, S::sysmlAcceptEventAction));
  EXPECT_FALSE(isShapeAllowed(K::act, S::umlState));
  EXPECT_TRUE(isEdgeAllowed(K::act, E::sysmlItemFlow));
  EXPECT_FALSE(isEdgeAllowed(K::stm, E::sysmlControlFlow));
  EXPECT_TRUE(isEdgeAllowed(K::test, E::sysmlExtend));
  EXPECT_FALSE(isEdgeAllowed(K::req, E::sysmlAllocate));
  EXPECT_TRUE(isEdgeAllowed(K::mm, E::mindmapCommentLink));
  EXPECT_FALSE(isEdgeAllowed(K::mm, E::association));
}

TEST(AllowedTypes, ListsFollowTheTableOrder) {
  const auto sd = allowedShapes(K::sd);
  ASSERT_EQ(sd.size(), 7u);
  EXPECT_EQ(sd.front(), S::umlActor);
  EXPECT_EQ(sd.back(), S::sysmlGate);
  const auto stmEdges = allowedSpecificEdges(K::stm);
  ASSERT_EQ(stmEdges.size(), 2u);
  EXPECT_EQ(stmEdges[0], E::dependency);
  EXPECT_EQ(stmEdges[1], E::sysmlTransition);
  EXPECT_EQ(allowedShapes(K::bdd).size(), 31u);
  EXPECT_EQ(allowedSpecificEdges(K::test).size(), 12u);
}

TEST(AllowedTypes, KindOutOfRangeReadsAsPackage) {
  const auto odd = static_cast<K>(42);
  EXPECT_TRUE(isShapeAllowed(odd, S::umlPackage));
  EXPECT_TRUE(isEdgeAllowed(odd, E::sysmlImport));
  EXPECT_FALSE(isShapeAllowed(odd, S::umlState));
  EXPECT_EQ(allowedShapes(odd).size(), allowedShapes(K::pkg).size());
}

}  // namespace
}  // namespace modelyne::check
