// Rules of the behaviour kinds: use case, activity and state machine diagrams.
#include <gtest/gtest.h>

#include "diagram_builder.h"

namespace modelyne::check {
namespace {

using testing::Drawing;
using testing::Findings;
using K = core::DiagramKind;
using S = core::ShapeType;
using E = core::EdgeType;

TEST(UseCaseRules, ActorsUseCasesIncludesAndExtends) {
  Drawing d;
  d.node("user", S::umlActor)
      .node("admin", S::sysmlActor)
      .node("login", S::umlUseCase)
      .node("audit", S::sysmlUseCaseUsage)
      .node("report", S::sysmlUseCaseDef)
      .edge("e1", "user", "login", E::association)     // fine
      .edge("e2", "admin", "user", E::generalization)  // fine
      .edge("e3", "user", "admin", E::association)
      .edge("e4", "login", "user", E::composition)
      .edge("e5", "login", "report", E::association)
      .edge("e6", "login", "audit", E::sysmlInclude)
      .edge("e7", "admin", "audit", E::association)    // audit is included
      .edge("e8", "report", "login", E::sysmlExtend)   // fine
      .edge("e9", "user", "admin", E::sysmlInclude);   // two rules on one edge
  EXPECT_EQ(d.check(K::uc),
            (Findings{
                "Edge 'e4' (type=composition) not allowed on Use Case Diagram",
                "Edge 'e3' connects two actors. Only generalization is allowed between actors (SysML Distilled §5.8).",
                "Edge 'e4' uses composite/aggregation between an actor and a use case. SysML Distilled §5.8 forbids this.",
                "Edge 'e5' uses an association between two use cases. Use «include», «extend», or Generalization instead (SysML Distilled §5.8).",
                "Edge 'e7' associates an actor with an included use case 'audit'. Primary actors should only associate with base use cases (SysML Distilled §5.10).",
                "Edge 'e9' connects two actors. Only generalization is allowed between actors (SysML Distilled §5.8).",
                "Edge 'e9' is «include» but does not connect a use case to a use case (SysML Distilled §5.10 / §5.11).",
            }));
}

TEST(UseCaseRules, ExtendFromAnActor) {
  Drawing d;
  d.node("a", S::umlActor).node("u", S::umlUseCase).edge("x", "a", "u", E::sysmlExtend);
  EXPECT_EQ(d.check(K::uc),
            (Findings{"Edge 'x' is «extend» but does not connect a use case to a use case (SysML Distilled §5.10 / §5.11)."}));
}

TEST(ActivityRules, WellFormedActivityIsClean) {
  Drawing d;
  d.node("start", S::umlInitialNode)
      .node("a1", S::umlAction)
      .node("dec", S::umlDecision)
      .node("a2", S::sysmlActionUsage)
      .node("a3", S::umlAction)
      .node("merge", S::umlDecision)
      .node("end", S::umlFinalNode)
      .node("note", S::umlNote)
      .edge("f1", "start", "a1", E::sysmlControlFlow)
      .edge("f2", "a1", "dec", E::straightArrow)   // a plain arrow counts as a flow
      .edge("f3", "dec", "a2", E::sysmlControlFlow, "[ok]")
      .edge("f4", "dec", "a3", E::sysmlControlFlow, "[else]")
      .edge("f5", "a2", "merge", E::sysmlControlFlow)
      .edge("f6", "a3", "merge", E::sysmlControlFlow)
      .edge("f7", "merge", "end", E::sysmlControlFlow)
      .edge("n1", "note", "dec", E::straight);     // annotation, not a flow
  EXPECT_EQ(d.check(K::act), Findings{});
}

TEST(ActivityRules, NodeDegreesAndControlFlowBetweenObjects) {
  Drawing d;
  d.node("i1", S::umlInitialNode)
      .node("i2", S::umlInitialNode)
      .node("act", S::umlAction)
      .node("d1", S::umlDecision)
      .node("bar", S::umlForkJoin)
      .node("fin", S::umlFinalNode)
      .node("ff", S::sysmlFlowFinalNode)
      .node("o1", S::sysmlObjectNode)
      .node("pin", S::sysmlPin)
      .edge("e1", "act", "i1", E::sysmlControlFlow)   // into an initial node
      .edge("e2", "i1", "act", E::sysmlControlFlow)
      .edge("e3", "i2", "o1", E::sysmlObjectFlow)     // initial with only an object flow
      .edge("e4", "act", "d1", E::sysmlControlFlow)
      .edge("e5", "d1", "bar", E::sysmlControlFlow)   // diamond 1 in / 1 out
      .edge("e6", "bar", "fin", E::sysmlControlFlow)  // bar 1 in / 1 out
      .edge("e7", "fin", "act", E::sysmlControlFlow)
      .edge("e8", "ff", "act", E::sysmlControlFlow)
      .edge("e9", "o1", "pin", E::sysmlControlFlow)
      .edge("e10", "o1", "pin", E::sysmlObjectFlow)
      .edge("dep", "fin", "act", E::dependency);     // not a flow
  EXPECT_EQ(d.check(K::act),
            (Findings{
                "Initial Node 'i1' must not have any incoming edges (SysML Distilled §6.9.1).",
                "Initial Node 'i2' must have exactly one outgoing control flow (SysML Distilled §6.9.1).",
                "Diamond node 'd1' is neither a valid Decision (1-in, 2+-out) nor a valid Merge (2+-in, 1-out). Has 1 in / 1 out (SysML Distilled §6.9.3 / §6.9.4).",
                "Fork/Join bar 'bar' is neither a valid Fork (1-in, 2+-out) nor a valid Join (2+-in, 1-out). Has 1 in / 1 out (SysML Distilled §6.9.5 / §6.9.6).",
                "Final Node 'fin' must not have any outgoing edges (SysML Distilled §6.9.2).",
                "Final Node 'ff' must not have any outgoing edges (SysML Distilled §6.9.2).",
                "Edge 'e9' is a Control Flow but connects two object nodes. Use Object Flow for object-token transport (SysML Distilled §6.7.2).",
            }));
}

TEST(ActivityRules, LonelyNodesReportZeroDegrees) {
  Drawing d;
  d.node("i", S::umlInitialNode).node("d", S::umlDecision).node("b", S::umlForkJoin).edge("x", "i", "ghost", E::sysmlControlFlow);
  EXPECT_EQ(d.check(K::act),
            (Findings{
                "Edge 'x' references unknown target 'ghost'.",
                "Diamond node 'd' is neither a valid Decision (1-in, 2+-out) nor a valid Merge (2+-in, 1-out). Has 0 in / 0 out (SysML Distilled §6.9.3 / §6.9.4).",
                "Fork/Join bar 'b' is neither a valid Fork (1-in, 2+-out) nor a valid Join (2+-in, 1-out). Has 0 in / 0 out (SysML Distilled §6.9.5 / §6.9.6).",
            }));
}

TEST(StateMachineRules, WellFormedMachineIsClean) {
  Drawing d;
  d.node("init", S::umlInitialNode)
      .node("Idle", S::umlState)
      .node("Busy", S::sysmlStateUsage)
      .node("ch", S::sysmlChoicePseudostate)
      .node("done", S::umlFinalNode)
      .edge("t1", "init", "Idle", E::sysmlTransition)
      .edge("t2", "Idle", "ch", E::sysmlTransition, "start [ready] / beep()")
      .edge("t3", "ch", "Busy", E::sysmlTransition, "[load > 0]")
      .edge("t4", "ch", "done", E::sysmlTransition, "[ else ]")
      .edge("t5", "Busy", "Idle", E::sysmlTransition, "after(2 s)");
  EXPECT_EQ(d.check(K::stm), Findings{});
}

TEST(StateMachineRules, PseudostatesTransitionsAndLabels) {
  Drawing d;
  d.node("init", S::umlInitialNode)
      .node("S1", S::umlState)
      .node("S2", S::umlState)
      .node("fin", S::umlFinalNode)
      .node("j", S::sysmlJunctionPseudostate)
      .node("ch", S::sysmlChoicePseudostate)
      .node("fk", S::sysmlForkPseudostate)
      .node("jn", S::sysmlJoinPseudostate)
      .node("term", S::sysmlTerminatePseudostate)
      .node("h", S::sysmlDeepHistoryPseudostate)
      .node("sub", S::sysmlSubmachineState)
      .node("subOk", S::sysmlSubmachineState, "", {{"submachine", "Engine"}})
      .node("note", S::umlNote)
      .edge("t1", "S1", "init", E::sysmlTransition)       // into the initial pseudostate
      .edge("t2", "fin", "S1", E::sysmlTransition)
      .edge("t3", "S1", "j", E::sysmlTransition)
      .edge("t4", "S1", "ch", E::sysmlTransition)
      .edge("t5", "ch", "S2", E::sysmlTransition, "[x > 0]")
      .edge("t6", "S1", "fk", E::sysmlTransition)
      .edge("t7", "fk", "S1", E::sysmlTransition, "go")
      .edge("t8", "fk", "S2", E::sysmlTransition)
      .edge("t9", "S1", "jn", E::sysmlTransition, "[ok]")
      .edge("t10", "jn", "S2", E::sysmlTransition)
      .edge("t11", "term", "S1", E::sysmlTransition)
      .edge("t12", "h", "S1", E::sysmlTransition)
      .edge("t13", "h", "S2", E::sysmlTransition)
      .edge("t14", "note", "S1", E::sysmlTransition, "evt [x > 0")
      .edge("t15", "S2", "S1", E::sysmlTransition, "evt / ")
      .edge("t16", "S1", "S2", E::dependency);
  EXPECT_EQ(d.check(K::stm),
            (Findings{
                "Initial pseudostate 'init' must not have any incoming transitions (SysML Distilled §8.6).",
                "Initial pseudostate 'init' must have exactly one outgoing transition (SysML Distilled §8.6).",
                "Final state 'fin' must not have any outgoing transitions (SysML Distilled §8.4.3).",
                "Junction pseudostate 'j' must have at least one incoming and at least one outgoing transition (SysML Distilled §8.6).",
                "Choice pseudostate 'ch' must have at least one incoming and at least two outgoing transitions (A Practical Guide to SysML §11.4.2).",
                "Choice pseudostate 'ch' should provide an '[else]' outgoing guard so a path is always taken (A Practical Guide to SysML §11.4.2).",
                "Fork pseudostate 'fk' outgoing transitions must not carry a trigger or a guard (A Practical Guide to SysML §11.6.2).",
                "Join pseudostate 'jn' must have at least two incoming and exactly one outgoing transition (A Practical Guide to SysML §11.6.2).",
                "Join pseudostate 'jn' incoming transitions must not carry a trigger or a guard (A Practical Guide to SysML §11.6.2).",
                "Terminate pseudostate 'term' must not have any outgoing transitions: reaching it ends the whole state machine (A Practical Guide to SysML §11.3).",
                "Terminate pseudostate 'term' is unreachable: it must have at least one incoming transition (A Practical Guide to SysML §11.3).",
                "History pseudostate 'h' must have at most one outgoing (default-target) transition (A Practical Guide to SysML §11.6.4).",
                "Submachine state 'sub' should name the state machine it references via its `submachine` property (A Practical Guide to SysML §11.6.5).",
                "Edge 't14' is a SysML transition whose source 'note' is not a state-machine vertex (SysML Distilled §8.5).",
                "Edge 't14' transition label is malformed: guard bracket '[' is not closed by ']'. Expected '<trigger> [<guard>] / <effect>' (SysML Distilled §8.5).",
                "Edge 't15' transition label is malformed: effect missing after '/'. Expected '<trigger> [<guard>] / <effect>' (SysML Distilled §8.5).",
            }));
}

TEST(StateMachineRules, GenericBarAndDiamondReadTheirMode) {
  Drawing d;
  d.node("S1", S::umlState)
      .node("S2", S::umlState)
      .node("bar", S::umlForkJoin)                                      // 2 in: a join
      .node("fork", S::umlForkJoin, "", {{"forkOrJoin", "fork"}})       // declared fork
      .node("dia", S::umlDecision, "", {{"pseudoKind", "junction"}})
      .edge("a", "S1", "bar", E::sysmlTransition)
      .edge("b", "S2", "bar", E::sysmlTransition, "evt")
      .edge("c", "bar", "S1", E::sysmlTransition)
      .edge("d", "S1", "fork", E::sysmlTransition)
      .edge("e", "fork", "S2", E::sysmlTransition)
      .edge("f", "S1", "dia", E::sysmlTransition);
  EXPECT_EQ(d.check(K::stm),
            (Findings{
                "Join pseudostate 'bar' incoming transitions must not carry a trigger or a guard (A Practical Guide to SysML §11.6.2).",
                "Fork pseudostate 'fork' must have exactly one incoming and at least two outgoing transitions (A Practical Guide to SysML §11.6.2).",
                "Junction pseudostate 'dia' must have at least one incoming and at least one outgoing transition (SysML Distilled §8.6).",
            }));
}

TEST(StateMachineRules, SeveralStartsOnlyInAFlatMachine) {
  Drawing flat;
  flat.node("i1", S::umlInitialNode)
      .node("i2", S::umlInitialNode)
      .node("i3", S::umlInitialNode)
      .node("A", S::umlState)
      .edge("t1", "i1", "A", E::sysmlTransition)
      .edge("t2", "i2", "A", E::sysmlTransition)
      .edge("t3", "i3", "A", E::sysmlTransition)
      .edge("bad", "A", "A", E::sysmlTransition, "evt] [g]");
  EXPECT_EQ(flat.check(K::stm),
            (Findings{
                "Edge 'bad' transition label is malformed: guard bracket ']' has no matching '['. Expected '<trigger> [<guard>] / <effect>' (SysML Distilled §8.5).",
                "State machine has 3 initial pseudostates but no composite / orthogonal region. A flat state machine has exactly one start (SysML Distilled §8.6).",
            }));
  Drawing nested;
  nested.node("i1", S::umlInitialNode)
      .node("i2", S::umlInitialNode)
      .node("C", S::sysmlCompositeState)
      .edge("t1", "i1", "C", E::sysmlTransition)
      .edge("t2", "i2", "C", E::sysmlTransition);
  EXPECT_EQ(nested.check(K::stm), Findings{});
}

}  // namespace
}  // namespace modelyne::check
