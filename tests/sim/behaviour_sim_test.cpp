// Behaviour simulation through its API: guards, the two trace forms, and
// stepping, marking, asking at decisions and reset for each kind. The
// golden traces (tests/sim/golden) cover the rules end to end.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "sim/diagram_builder.h"
#include "sim/guard.h"
#include "sim/simulation.h"
#include "sim/trace.h"

namespace modelyne::core::sim {
namespace {

using test::Diagram;
using S = ShapeType;
using E = EdgeType;

Diagram& labelled(Diagram& d, std::string id, std::string from, std::string to, std::string text,
                  E type = E::sysmlControlFlow) {
  d.edge(std::move(id), std::move(from), std::move(to), type);
  d.edges.back().text = std::move(text);
  return d;
}

std::string text(const Simulation& s) {
  std::string out;
  for (const TraceEvent& e : s.trace()) out += formatTextLine(e);
  return out;
}

// ---- Guards: text, values, outcome, reason
TEST(Guard, Evaluation) {
  const GuardValues values{{"x", 3.0}, {"limit", 10.0}};
  const struct {
    const char* text;
    GuardOutcome outcome;
    const char* reason;
  } kCases[] = {
      {"", GuardOutcome::absent, ""},
      {"else", GuardOutcome::elseBranch, ""},
      {"x < limit", GuardOutcome::isTrue, ""},
      {"x*4 <= limit", GuardOutcome::isFalse, ""},
      {"(x + 1) * 2 >= 8", GuardOutcome::isTrue, ""},
      {"x == 3", GuardOutcome::isTrue, ""},
      {"x != 3", GuardOutcome::isFalse, ""},
      {"x - 3", GuardOutcome::isFalse, ""},
      {"x", GuardOutcome::isTrue, ""},
      {"y > 1", GuardOutcome::unknown, "unknown name y"},
      {"in stock", GuardOutcome::unknown, "trailing input"},
      {"x >", GuardOutcome::unknown, "unexpected end"},
      {"x = 3", GuardOutcome::unknown, "trailing input"},
      {"1e999 > x", GuardOutcome::unknown, "number out of range"},
  };
  for (const auto& c : kCases) {
    const GuardResult r = evaluateGuard(c.text, values);
    EXPECT_EQ(r.outcome, c.outcome) << c.text;
    EXPECT_EQ(r.reason, c.reason) << c.text;
  }
  EXPECT_EQ(guardOfLabel("openCmd [ unlocked ] / beep()"), "unlocked");
  EXPECT_EQ(guardOfLabel("[a[0] > 1]"), "a[0] > 1");
  EXPECT_EQ(guardOfLabel("no guard"), "");
  EXPECT_EQ(describeUnknown("e4", evaluateGuard("in stock", values)),
            "e4 [in stock] cannot be evaluated (trailing input)");
}

TEST(Trace, TextAndJsonForms) {
  TraceEvent d;
  d.step = 3;
  d.kind = EventKind::decide;
  d.node = "dec";
  d.in = {"e1"};
  d.out = {"e5"};
  d.chosen = "e5";
  d.reason = DecideReason::unknownGuard;
  d.detail = "say \"hi\"\tnow";
  EXPECT_EQ(formatTextLine(d), "3\tdecide\tdec\te1\te5\tunknown-guard; say \"hi\" now\n");
  EXPECT_EQ(formatJsonLine(d),
            "{\"step\": 3, \"event\": \"decide\", \"node\": \"dec\", \"in\": [\"e1\"], \"out\": [\"e5\"], "
            "\"chosen\": \"e5\", \"reason\": \"unknown-guard\", \"detail\": \"say \\\"hi\\\"\\tnow\"}\n");

  TraceEvent t;
  t.step = 2;
  t.kind = EventKind::transition;
  t.edge = "t1";
  t.from = "a";
  t.to = "b";
  EXPECT_EQ(formatTextLine(t), "2\ttransition\tt1\ta\tb\t-\n");
  EXPECT_EQ(formatJsonLine(t), "{\"step\": 2, \"event\": \"transition\", \"edge\": \"t1\", \"from\": \"a\", \"to\": \"b\"}\n");

  // Labels are user text: bytes that are not UTF-8 become U+FFFD in JSON.
  TraceEvent m;
  m.step = 1;
  m.kind = EventKind::message;
  m.edge = "m1";
  m.from = "a";
  m.to = "b";
  m.detail = "caf\xC3\xA9 \xFF\x01";
  EXPECT_EQ(formatJsonLine(m), "{\"step\": 1, \"event\": \"message\", \"edge\": \"m1\", \"from\": \"a\", \"to\": \"b\", "
                               "\"detail\": \"caf\xC3\xA9 \\ufffd\\u0001\"}\n");

  TraceEvent end;
  end.kind = EventKind::end;
  end.step = 7;
  end.status = RunStatus::stalled;
  end.waiting = {"e3", "e9"};
  EXPECT_EQ(formatTextLine(end), "7\tend\tstalled\te3,e9\t-\t-\n");
  EXPECT_EQ(formatJsonLine(end), "{\"event\": \"end\", \"status\": \"stalled\", \"steps\": 7, \"waiting\": [\"e3\", \"e9\"]}\n");
}

// init -> a -> (b, c) -> join -> done, built in code.
Diagram forkJoin() {
  Diagram d;
  d.node("init", S::umlInitialNode, 0, 0, 20, 20, "")
      .node("a", S::umlAction, 0, 50, 100, 40, "A")
      .node("b", S::umlAction, 0, 100, 100, 40, "B")
      .node("c", S::umlAction, 200, 100, 100, 40, "C")
      .node("join", S::umlForkJoin, 0, 150, 300, 6, "")
      .node("done", S::umlFinalNode, 0, 200, 20, 20, "");
  d.edge("f1", "init", "a", E::sysmlControlFlow)
      .edge("f2", "a", "b", E::sysmlControlFlow)
      .edge("f3", "a", "c", E::sysmlControlFlow)
      .edge("f4", "b", "join", E::sysmlControlFlow)
      .edge("f5", "c", "join", E::sysmlControlFlow)
      .edge("f6", "join", "done", E::sysmlControlFlow);
  return d;
}

TEST(ActivitySimulation, StepsMarkingAndReset) {
  const Diagram d = forkJoin();
  auto sim = makeSimulation(DiagramKind::act, d.nodes, d.edges, {});
  EXPECT_EQ(sim->kind(), SimulationKind::activity);
  sim->start();
  Marking m = sim->marking();
  EXPECT_EQ(m.tokens, (std::vector<std::pair<std::string, std::uint32_t>>{{"f1", 1}}));
  EXPECT_EQ(m.activeNodes, std::vector<std::string>{"init"});

  ASSERT_TRUE(sim->step());
  m = sim->marking();
  EXPECT_EQ(m.tokens, (std::vector<std::pair<std::string, std::uint32_t>>{{"f2", 1}, {"f3", 1}}));
  EXPECT_EQ(m.activeNodes, std::vector<std::string>{"a"});
  ASSERT_TRUE(sim->step());
  EXPECT_EQ(sim->marking().activeNodes, (std::vector<std::string>{"b", "c"}));
  ASSERT_TRUE(sim->step());  // join
  EXPECT_FALSE(sim->step());  // done
  EXPECT_EQ(sim->status(), RunStatus::completed);
  EXPECT_EQ(sim->steps(), 4u);
  EXPECT_TRUE(sim->marking().tokens.empty());
  const std::string first = text(*sim);

  sim->reset();
  EXPECT_TRUE(sim->trace().empty());
  EXPECT_EQ(sim->status(), RunStatus::running);
  EXPECT_EQ(sim->run(), RunStatus::completed);
  EXPECT_EQ(text(*sim), first);
}

// A decision the user answers between steps, as the editor asks.
TEST(ActivitySimulation, AskAtDecisions) {
  Diagram d;
  d.node("init", S::umlInitialNode, 0, 0, 20, 20, "")
      .node("dec", S::umlDecision, 0, 50, 40, 40, "")
      .node("yes", S::sysmlFlowFinalNode, 0, 100, 20, 20, "")
      .node("no", S::sysmlFlowFinalNode, 100, 100, 20, 20, "");
  d.edge("f1", "init", "dec", E::sysmlControlFlow);
  labelled(d, "g1", "dec", "yes", "[ok]");
  labelled(d, "g2", "dec", "no", "[not ok]");
  auto sim = makeSimulation(SimulationKind::activity, d.nodes, d.edges, {});
  sim->start();
  EXPECT_EQ(sim->pendingDecisions(), std::vector<std::string>{"dec"});
  EXPECT_FALSE(sim->choose("dec", "f1"));
  EXPECT_FALSE(sim->choose("nobody", "g2"));
  EXPECT_TRUE(sim->choose("dec", "g2"));
  EXPECT_EQ(sim->run(), RunStatus::completed);
  EXPECT_EQ(text(*sim),
            "0\tstart\tinit\t-\tf1\t-\n"
            "1\tdecide\tdec\tf1\tg2\tuser\n"
            "2\tflowFinal\tno\tg2\t-\t-\n"
            "2\tend\tcompleted\t-\t-\t-\n");

  // Unanswered, the guards cannot be evaluated and the token stays put.
  sim->reset();
  EXPECT_EQ(sim->run(), RunStatus::stalled);
  EXPECT_EQ(sim->trace().back().waiting, std::vector<std::string>{"f1"});
}

TEST(ActivitySimulation, BadInputEndsClearly) {
  // A task with two outgoing flows feeding itself doubles its tokens each
  // round: the token limit ends the run.
  Diagram d;
  d.node("start", S::bpmnStartEvent, 0, 0, 20, 20, "").node("t", S::bpmnTask, 0, 50, 100, 40, "T");
  d.edge("s1", "start", "t", E::bpmnSequence)
      .edge("s2", "t", "t", E::bpmnSequence)
      .edge("s3", "t", "t", E::bpmnSequence)
      .edge("s4", "t", "nowhere", E::bpmnSequence);
  auto sim = makeSimulation(SimulationKind::activity, d.nodes, d.edges, {});
  EXPECT_EQ(sim->run(), RunStatus::limit);
  EXPECT_EQ(sim->trace().back().detail, "token limit 100000 exceeded");
  ASSERT_EQ(sim->problems().size(), 1u);
  EXPECT_EQ(sim->problems()[0].elementId, "s4");
  EXPECT_EQ(sim->problems()[0].message, "flow 's4' names a missing node 'nowhere'; it is ignored");

  // A million-step loop runs to its limit without a trace kept in memory.
  Diagram loop;
  loop.node("init", S::umlInitialNode, 0, 0, 20, 20, "")
      .node("merge", S::umlDecision, 0, 50, 40, 40, "")
      .node("a", S::umlAction, 0, 100, 100, 40, "A");
  loop.edge("f1", "init", "merge", E::sysmlControlFlow)
      .edge("f2", "merge", "a", E::sysmlControlFlow)
      .edge("f3", "a", "merge", E::sysmlControlFlow);
  SimulationOptions options;
  options.maxSteps = 1000000;
  std::uint64_t events = 0;
  options.sink = [&events](const TraceEvent&) { ++events; };
  auto longRun = makeSimulation(SimulationKind::activity, loop.nodes, loop.edges, std::move(options));
  EXPECT_EQ(longRun->run(), RunStatus::limit);
  EXPECT_EQ(events, 1000002u);  // start, a million firings, end
  EXPECT_TRUE(longRun->trace().empty());
}

TEST(SequenceSimulation, StepsAndActivations) {
  Diagram d;
  d.node("a", S::umlLifeline, 0, 0, 100, 400, ":A")
      .node("b", S::umlLifeline, 200, 0, 100, 400, ":B")
      .node("actB", S::umlActivation, 245, 90, 10, 60, "");
  d.edge("m2", "b", "a", E::sysmlReplyMessage).edge("m1", "a", "b", E::sysmlSyncMessage);
  d.edges[0].srcAnchorDY = 140;
  d.edges[1].srcAnchorDY = 100;
  auto sim = makeSimulation(DiagramKind::sd, d.nodes, d.edges, {});
  ASSERT_TRUE(sim->step());
  Marking m = sim->marking();
  EXPECT_EQ(m.activeEdges, std::vector<std::string>{"m1"});  // y 100 comes first
  EXPECT_EQ(m.activeNodes, (std::vector<std::string>{"a", "b", "actB"}));
  ASSERT_TRUE(sim->step());
  EXPECT_EQ(sim->marking().activeEdges, std::vector<std::string>{"m2"});
  EXPECT_FALSE(sim->step());
  EXPECT_EQ(sim->status(), RunStatus::completed);
  EXPECT_EQ(sim->steps(), 2u);
}

TEST(StateMachineSimulation, ActiveStates) {
  Diagram d;
  d.node("init", S::umlInitialNode, 0, 0, 20, 20, "")
      .node("outer", S::sysmlCompositeState, 100, 0, 300, 200, "Outer")
      .node("oinit", S::umlInitialNode, 110, 10, 20, 20, "")
      .node("inner", S::sysmlStateUsage, 150, 50, 100, 50, "Inner\nentry / hello()")
      .node("other", S::sysmlStateUsage, 500, 0, 100, 50, "Other");
  d.edge("t0", "init", "outer", E::sysmlTransition).edge("t1", "oinit", "inner", E::sysmlTransition);
  labelled(d, "t2", "outer", "other", "leave [n > 1] / bye()", E::sysmlTransition);
  SimulationOptions options;
  options.events = {"leave", "leave"};
  options.values["n"] = 1;
  auto sim = makeSimulation(DiagramKind::stm, d.nodes, d.edges, options);
  sim->start();
  EXPECT_EQ(sim->marking().activeStates, (std::vector<std::string>{"outer", "inner"}));
  ASSERT_TRUE(sim->step());  // guard false: skipped
  EXPECT_EQ(sim->marking().activeStates, (std::vector<std::string>{"outer", "inner"}));
  EXPECT_FALSE(sim->step());
  EXPECT_EQ(sim->status(), RunStatus::completed);

  options.values["n"] = 2;
  sim = makeSimulation(DiagramKind::stm, d.nodes, d.edges, options);
  sim->run();
  EXPECT_EQ(sim->marking().activeStates, std::vector<std::string>{"other"});
  EXPECT_EQ(text(*sim),
            "0\ttransition\tt0\tinit\touter\t-\n"
            "0\tenter\touter\t-\t-\t-\n"
            "0\ttransition\tt1\toinit\tinner\t-\n"
            "0\tenter\tinner\t-\t-\tentry / hello()\n"
            "1\ttransition\tt2\touter\tother\tleave [n > 1]; effect / bye()\n"
            "1\tenter\tother\t-\t-\t-\n"
            "2\tskip\tother\t-\t-\tevent leave not accepted\n"
            "2\tend\tcompleted\t-\t-\t-\n");
}

// Fuzz finding: choice pseudostates leading to each other recursed until
// the stack ran out. The chain now ends as a limit.
TEST(StateMachineSimulation, CycleOfPseudostatesEndsAsLimit) {
  Diagram d;
  d.node("init", S::umlInitialNode, 0, 0, 20, 20, "")
      .node("c1", S::sysmlChoicePseudostate, 100, 0, 20, 20, "")
      .node("c2", S::sysmlChoicePseudostate, 200, 0, 20, 20, "");
  d.edge("t0", "init", "c1", E::sysmlTransition)
      .edge("t1", "c1", "c2", E::sysmlTransition)
      .edge("t2", "c2", "c1", E::sysmlTransition);
  auto sim = makeSimulation(SimulationKind::stateMachine, d.nodes, d.edges, {});
  EXPECT_EQ(sim->run(), RunStatus::limit);
  EXPECT_EQ(sim->trace().back().detail,
            "more than 200 transitions in a row without reaching a state (a cycle of pseudostates)");
}

}  // namespace
}  // namespace modelyne::core::sim
