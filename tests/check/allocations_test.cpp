// Allocation and stereotype rules, which run on every kind.
#include <gtest/gtest.h>

#include "diagram_builder.h"

namespace modelyne::check {
namespace {

using testing::Drawing;
using testing::Findings;
using K = core::DiagramKind;
using S = core::ShapeType;
using E = core::EdgeType;

const std::string kCycle =
    "' participates in a circular «allocate» chain (§14.11.1 — allocations must not be circular).";

TEST(AllocationRules, CycleSelfRequirementBehaviourAndRedundancy) {
  Drawing d;
  d.node("act", S::umlAction)
      .node("act2", S::sysmlActionUsage)
      .node("sw", S::sysmlBlock)
      .node("hw", S::sysmlPartUsage)
      .node("cpu", S::sysmlPartUsage)
      .node("req", S::sysmlRequirementUsage)
      .edge("a1", "act", "sw", E::sysmlAllocate)   // behaviour to structure: fine
      .edge("a2", "sw", "hw", E::sysmlAllocate)
      .edge("a3", "hw", "cpu", E::sysmlAllocate)
      .edge("a4", "cpu", "sw", E::sysmlAllocate)   // closes sw -> hw -> cpu -> sw
      .edge("a5", "hw", "hw", E::sysmlAllocate)
      .edge("a6", "act", "req", E::sysmlAllocate)
      .edge("a7", "act", "act2", E::sysmlAllocate)
      .edge("a8", "act", "sw", E::sysmlAllocate)   // repeats a1
      .edge("a9", "sw", "hw", E::sysmlAllocate)    // repeats a2, on the cycle too
      .edge("a10", "sw", "nowhere", E::sysmlAllocate);
  EXPECT_EQ(d.check(K::bdd),
            (Findings{
                "Node 'act' (type=umlAction) not allowed on Block Definition Diagram",
                "Node 'act2' (type=sysmlActionUsage) not allowed on Block Definition Diagram",
                "Node 'req' (type=sysmlRequirementUsage) not allowed on Block Definition Diagram",
                "Edge 'a10' references unknown target 'nowhere'.",
                "Edge 'a2" + kCycle,
                "Edge 'a3" + kCycle,
                "Edge 'a4" + kCycle,
                "Edge 'a5' allocates element 'hw' to itself (§14.2 — an allocation relates two distinct model elements).",
                "Edge 'a6' uses «allocate» to a requirement; §14.4.1 requires requirement allocation to use «satisfy» / «deriveReqt» / «refine», not «allocate».",
                "Edge 'a7' allocates a behavior to another behavior; §14.11.1 flags this as an inappropriate allocation (behavior is allocated to structure).",
                "Edge 'a8' is a redundant allocation: 'act' → 'sw' is already allocated with the same relationship (§14.11.1 — redundant allocations should be removed).",
                "Edge 'a9" + kCycle,
                "Edge 'a9' is a redundant allocation: 'sw' → 'hw' is already allocated with the same relationship (§14.11.1 — redundant allocations should be removed).",
            }));
}

TEST(AllocationRules, CyclesCrossCategoriesAndChainsAreNotCycles) {
  Drawing d;
  d.node("f", S::sysmlActionUsage)
      .node("b1", S::sysmlBlock)
      .node("b2", S::sysmlBlock)
      .node("b3", S::sysmlBlock)
      .edge("x1", "f", "b1", E::sysmlAllocate)
      .edge("x2", "b1", "f", E::sysmlAllocate)     // back to the behaviour: circular
      .edge("y1", "b1", "b2", E::sysmlAllocate)    // a chain onwards is not
      .edge("y2", "b2", "b3", E::sysmlAllocate)
      .edge("y3", "b1", "b3", E::sysmlAllocate);
  EXPECT_EQ(d.check(K::test),
            (Findings{
                "Node 'f' (type=sysmlActionUsage) not allowed on Test Diagram",
                "Edge 'x1' (type=sysmlAllocate) not allowed on Test Diagram",
                "Edge 'x2' (type=sysmlAllocate) not allowed on Test Diagram",
                "Edge 'y1' (type=sysmlAllocate) not allowed on Test Diagram",
                "Edge 'y2' (type=sysmlAllocate) not allowed on Test Diagram",
                "Edge 'y3' (type=sysmlAllocate) not allowed on Test Diagram",
                "Edge 'x1" + kCycle,
                "Edge 'x2" + kCycle,
            }));
}

TEST(StereotypeRules, StereotypeDefinitionsNameTheirMetaclass) {
  Drawing d;
  d.node("s1", S::umlClass, "Critical", {{"stereotype", "«stereotype»"}})
      .node("s2", S::umlClass, "Audited", {{"stereotype", "Stereotype"}, {"extendsMetaclass", "Class"}})
      .node("s3", S::umlClass, "Plain", {{"stereotype", "block"}})
      .node("s4", S::sysmlBlock, "", {{"stereotype", "stereotype"}, {"extendsMetaclass", "  "}});
  EXPECT_EQ(d.check(K::pkg),
            (Findings{
                "Stereotype 's1' does not declare the metaclass it extends; §15.4 requires a stereotype to extend one or more metaclasses (set the `extendsMetaclass` property).",
                "Stereotype 's4' does not declare the metaclass it extends; §15.4 requires a stereotype to extend one or more metaclasses (set the `extendsMetaclass` property).",
            }));
}

}  // namespace
}  // namespace modelyne::check
