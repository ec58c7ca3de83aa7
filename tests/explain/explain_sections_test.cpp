// The four class sections: what they list, in which order, and their caps.
#include <gtest/gtest.h>

#include "explain_fixture.h"

namespace modelyne::explain {
namespace {

using core::EdgeType;
using core::ShapeType;
using testing::Diagram;

TEST(ExplainStructure, DecompositionIsAnIndentedTreeWithRelationships) {
  Diagram d;
  d.node("veh", ShapeType::sysmlBlock, "Vehicle");
  d.node("pt", ShapeType::sysmlBlock, "Powertrain");
  d.node("eng", ShapeType::sysmlPartUsage, "Engine");
  d.node("ch", ShapeType::sysmlBlock, "Chassis");
  d.node("drv", ShapeType::umlClass, "Driver");
  d.node("ifc", ShapeType::sysmlInterfaceDef, "CAN bus");
  d.node("p1", ShapeType::sysmlPort, "pwr");
  d.edge("veh", "pt", EdgeType::composition);
  d.edge("veh", "ch", EdgeType::sysmlContainment);
  d.edge("veh", "pt", EdgeType::composition);  // repeated link: listed once
  d.edge("pt", "eng", EdgeType::composition);
  d.edge("drv", "veh", EdgeType::association);
  d.edge("eng", "ifc", EdgeType::realization);
  d.edge("pt", "ch", EdgeType::sysmlItemFlow, "torque");
  EXPECT_EQ(d.section("System Structure & Relationships"),
            "Top-level blocks / parts: Vehicle, Driver.\n"
            "\n"
            "Decomposition:\n"
            "  - Vehicle contains Powertrain, Chassis.\n"
            "    - Powertrain contains Engine.\n"
            "\n"
            "Interfaces: CAN bus.\n"
            "\n"
            "Ports: pwr.\n"
            "\n"
            "Relationships:\n"
            "  - association: 1 (e.g. Driver \u2194 Vehicle).\n"
            "  - composition: 3 (e.g. Vehicle \u2192 Powertrain, Vehicle \u2192 Powertrain, "
            "Powertrain \u2192 Engine).\n"
            "  - realization: 1 (e.g. Engine \u2192 CAN bus).\n"
            "  - item flow: 1 (e.g. Powertrain \u2192 Chassis [torque]).");
}

TEST(ExplainStructure, UnconnectedStructureAndContainmentCycles) {
  Diagram bare;
  bare.node("a", ShapeType::umlClass, "A");
  bare.node("b", ShapeType::umlComponent, "B");
  EXPECT_EQ(bare.section("System Structure & Relationships"),
            "Top-level blocks / parts: A, B.\n\n"
            "The diagram declares structural elements but no decomposition or relationships "
            "connect them yet.");

  // A cycle has no top level; it is still listed once, and the walk ends.
  Diagram cycle;
  cycle.node("a", ShapeType::sysmlBlock, "A");
  cycle.node("b", ShapeType::sysmlBlock, "B");
  cycle.edge("a", "b", EdgeType::sysmlContainment);
  cycle.edge("b", "a", EdgeType::sysmlContainment);
  EXPECT_EQ(cycle.section("System Structure & Relationships"),
            "Decomposition:\n  - A contains B.\n    - B contains A.");
}

TEST(ExplainStructure, LongListsAreCapped) {
  Diagram d;
  d.node("root", ShapeType::sysmlBlock, "Root");
  for (int i = 0; i < 30; ++i) {
    const std::string id = "c" + std::to_string(i);
    d.node(id, ShapeType::sysmlBlock, "C" + std::to_string(i));
    d.node(id + "x", ShapeType::sysmlBlock, "X" + std::to_string(i));
    d.edge("root", id, EdgeType::composition);
    d.edge(id, id + "x", EdgeType::composition);
  }
  const std::string body = d.section("System Structure & Relationships");
  EXPECT_NE(body.find("  - Root contains C0, C1, C2, C3, C4, C5, C6, C7, and 22 more.\n"
                      "    - C0 contains X0.\n"),
            std::string::npos)
      << body;
  EXPECT_NE(body.find("    - C23 contains X23.\n  - and 6 more containers.\n"), std::string::npos)
      << body;
}

TEST(ExplainBehavior, WalksFromTheStartAndListsDecisionsForksAndEnds) {
  Diagram d;
  d.node("start", ShapeType::umlInitialNode);
  d.node("recv", ShapeType::umlAction, "Receive order");
  d.node("chk", ShapeType::umlDecision, "In stock?");
  d.node("fork", ShapeType::umlForkJoin);
  d.node("pack", ShapeType::umlAction, "Pack");
  d.node("bill", ShapeType::umlAction, "Bill");
  d.node("back", ShapeType::umlAction, "Back-order");
  d.node("end", ShapeType::umlFinalNode, "Done");
  d.node("note", ShapeType::umlNote, "keep it simple");
  d.edge("start", "recv", EdgeType::sysmlControlFlow);
  d.edge("recv", "chk", EdgeType::straightArrow);  // a plain arrow between actions is flow
  d.edge("chk", "fork", EdgeType::sysmlControlFlow, "[yes]");
  d.edge("chk", "back", EdgeType::sysmlControlFlow, "no");
  d.edge("fork", "pack", EdgeType::sysmlControlFlow);
  d.edge("fork", "bill", EdgeType::sysmlControlFlow);
  d.edge("pack", "end", EdgeType::sysmlControlFlow);
  d.edge("back", "recv", EdgeType::sysmlControlFlow);
  d.edge("note", "chk", EdgeType::straightArrow);  // a note's arrow is not flow
  EXPECT_EQ(d.section("Behavioral Flow & Execution Sequence"),
            "Execution begins at: umlInitialNode [start].\n\n"
            "Primary flow: umlInitialNode [start] \u2192 Receive order \u2192 In stock? \u2192 "
            "umlForkJoin [fork] \u2192 Pack \u2192 Done.\n\n"
            "Decision point: In stock? chooses between umlForkJoin [fork] [yes] and Back-order "
            "[no].\n\n"
            "Concurrency: umlForkJoin [fork] runs in parallel: Pack and Bill.\n\n"
            "Execution ends at: Done.");
}

TEST(ExplainBehavior, WithoutInitialNodesSourcesAndSinksBoundTheFlow) {
  Diagram d;  // a state machine drawn without pseudostates
  d.node("a", ShapeType::umlState, "Idle");
  d.node("b", ShapeType::umlState, "Running");
  d.node("c", ShapeType::umlState, "Stopped");
  d.edge("a", "b", EdgeType::sysmlTransition, "start");
  d.edge("b", "b", EdgeType::sysmlTransition, "tick");
  d.edge("b", "c", EdgeType::sysmlTransition, "stop");
  EXPECT_EQ(d.section("Behavioral Flow & Execution Sequence"),
            "Execution begins at: Idle.\n\nPrimary flow: Idle \u2192 Running \u2192 Stopped.\n\n"
            "Execution ends at: Stopped.");

  Diagram none;
  none.node("a", ShapeType::umlAction, "A");
  none.node("b", ShapeType::umlAction, "B");
  none.edge("a", "b", EdgeType::association);
  EXPECT_EQ(none.section("Behavioral Flow & Execution Sequence"),
            "No directed flow could be traced; the activity nodes are not yet connected by "
            "control or object flows.");
}

TEST(ExplainBehavior, LongFlowsAreCapped) {
  Diagram d;
  for (int i = 0; i < 40; ++i) {
    d.node("a" + std::to_string(i), ShapeType::bpmnTask, "T" + std::to_string(i));
    if (i > 0) d.edge("a" + std::to_string(i - 1), "a" + std::to_string(i), EdgeType::bpmnSequence);
  }
  const std::string body = d.section("Behavioral Flow & Execution Sequence");
  EXPECT_NE(body.find("Primary flow: T0 \u2192 T1 \u2192"), std::string::npos);
  EXPECT_NE(body.find("\u2192 T14 \u2192 \u2026 and 25 more.\n"), std::string::npos) << body;
}

TEST(ExplainInteraction, MessagesInVerticalOrderWithTheirVerbs) {
  Diagram d;
  d.node("srv", ShapeType::umlLifeline, "Server", 300, 0, 80, 400);
  d.node("cli", ShapeType::umlLifeline, "Client", 0, 0, 80, 400);
  d.node("act", ShapeType::umlActivation, "", 335, 100, 10, 80);  // sits on Server
  d.node("tmp", ShapeType::umlLifeline, "Session", 600, 0, 80, 400);
  // Drawn off its lifeline, but it names its owner.
  d.node("act2", ShapeType::umlActivation, "", 900, 350, 10, 40).properties["ownerLifeline"] = "cli";
  auto& loop = d.node("frag", ShapeType::umlCombinedFragment, "", 0, 90, 700, 120);
  loop.properties["operator"] = "loop";
  loop.properties["guard"] = "until accepted";
  d.node("ref", ShapeType::umlCombinedFragment, "Audit", 0, 20, 700, 40).properties["operator"] = "ref";
  d.node("bare", ShapeType::umlCombinedFragment, "", 0, 250, 700, 40);
  d.edge("cli", "act", EdgeType::sysmlSyncMessage, "login(user)").srcAnchorDY = 110;
  d.edge("act", "cli", EdgeType::sysmlReplyMessage, "token").tgtAnchorDY = 170;
  d.edge("srv", "tmp", EdgeType::sysmlCreateMessage).srcAnchorDY = 130;
  d.edge("srv", "tmp", EdgeType::sysmlDeleteMessage).srcAnchorDY = 300;
  // No offsets: the activation's middle (140) places it between create and reply.
  d.edge("act", "tmp", EdgeType::sysmlAsyncMessage, "audit\nlog");
  d.edge("act2", "srv", EdgeType::sysmlAsyncMessage, "bye");  // middle at 370
  EXPECT_EQ(d.section("Interaction Sequence"),
            "Participants (lifelines): Client, Server, Session.\n\n"
            "Combined fragments: ref Audit, loop [until accepted], umlCombinedFragment [bare].\n"
            "  1. Client sends to Server: login(user).\n"
            "  2. Server sends to Session: \u00abcreate\u00bb.\n"
            "  3. Server sends to Session: audit log.\n"
            "  4. Server replies to Client: token.\n"
            "  5. Server destroys Session.\n"
            "  6. Client sends to Server: bye.");

  Diagram silent;
  silent.node("a", ShapeType::umlLifeline, "A");
  EXPECT_EQ(silent.section("Interaction Sequence"),
            "Participants (lifelines): A.\n\nNo messages are exchanged between the lifelines yet.");
}

TEST(ExplainRequirements, TracesReadFromSourceToTarget) {
  Diagram d;
  d.node("r1", ShapeType::sysmlRequirementDef, "Stopping distance").properties["reqId"] = "REQ-1";
  d.node("r2", ShapeType::sysmlRequirementUsage, "Wet braking");
  d.node("r3", ShapeType::sysmlRequirementDef, "Pedal feel");
  d.node("brk", ShapeType::sysmlBlock, "Brake system");
  d.node("tc", ShapeType::sysmlTestCase, "Wet track test");
  d.edge("r2", "r1", EdgeType::sysmlDeriveReqt);
  d.edge("brk", "r1", EdgeType::sysmlSatisfy);
  d.edge("tc", "r2", EdgeType::sysmlVerify);
  d.edge("r1", "brk", EdgeType::sysmlTrace);
  d.edge("brk", "gone", EdgeType::sysmlAllocate);  // dangling: not listed
  EXPECT_EQ(d.section("Requirements & Traceability"),
            "Requirements: Stopping distance (REQ-1), Wet braking, Pedal feel.\n"
            "  - Wet braking is derived from Stopping distance.\n"
            "  - Brake system satisfies Stopping distance.\n"
            "  - Wet track test verifies Wet braking.\n"
            "  - Stopping distance traces to Brake system.\n"
            "\n"
            "Not yet traced: Pedal feel.");

  Diagram unlinked;
  unlinked.node("r", ShapeType::sysmlRequirementDef, "R");
  EXPECT_EQ(unlinked.section("Requirements & Traceability"),
            "Requirements: R.\n\nRequirements are declared but not yet linked to design or "
            "verification elements.");
}

}  // namespace
}  // namespace modelyne::explain
