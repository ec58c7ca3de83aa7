// The offline interpreter on realistic descriptions (whole plans), and its
// sentence, token, notes and table rules.
#include <gtest/gtest.h>

#include <future>
#include <string>
#include <vector>

#include "ai/interpreter.h"
#include "ai/word_tables.h"

namespace modelyne::ai {
namespace {

using K = PlanNodeKind;
using R = PlanEdgeKind;

struct Expected {
  std::string title;
  std::vector<std::pair<std::string, K>> nodes;  // label, kind; ids are n1, n2, ... in this order
  std::vector<std::string> edges;                 // "source target Kind label"
  std::string notes;
};

std::string edgeText(const PlanEdge& e) {
  std::string s = e.source + " " + e.target + " " + std::string(PlanWord(e.kind));
  if (!e.label.empty()) s += " " + e.label;
  return s;
}

void expectPlan(const DiagramPlan& plan, const Expected& want) {
  EXPECT_EQ(plan.title, want.title);
  ASSERT_EQ(plan.nodes.size(), want.nodes.size()) << WritePlan(plan);
  for (std::size_t i = 0; i < want.nodes.size(); ++i) {
    const PlanNode& n = plan.nodes[i];
    EXPECT_EQ(n.id, "n" + std::to_string(i + 1));
    EXPECT_EQ(n.label, want.nodes[i].first);
    EXPECT_EQ(n.kind, want.nodes[i].second) << n.label;
    EXPECT_EQ(n.x, static_cast<float>(i % 3) * 220.0f + 80.0f);
    EXPECT_EQ(n.y, static_cast<float>(i / 3) * 150.0f + 80.0f);
    EXPECT_EQ(n.width, 180.0f);
    EXPECT_EQ(n.height, 100.0f);
  }
  std::vector<std::string> edges;
  for (const PlanEdge& e : plan.edges) edges.push_back(edgeText(e));
  EXPECT_EQ(edges, want.edges);
  EXPECT_EQ(plan.notes, want.notes);
}

TEST(InterpretText, Vehicle) {
  expectPlan(InterpretText("The vehicle contains an engine and a transmission. "
                           "The engine control unit sends torque requests to the transmission. "
                           "The driver is a user. The driver uses the brake pedal. "
                           "The brake control unit connects to the Engine Controller and the \"Fuel Pump #2\". "
                           "The Engine has a cooling system."),
             {"The vehicle contains an engine and a transmission",
              {{"Vehicle", K::Block},
               {"Engine", K::Block},
               {"Transmission", K::Block},
               {"Engine Control Unit", K::Block},
               {"Driver", K::Actor},
               {"Brake Pedal", K::Block},
               {"Brake Control Unit", K::Block},
               {"Engine Controller", K::Block},
               {"Fuel Pump #2", K::Block},
               {"Cooling System", K::Block}},
              {"n1 n2 Containment", "n1 n3 Containment", "n4 n3 Flow torque requests", "n5 n6 Dependency",
               "n7 n8 Connection", "n7 n9 Connection", "n2 n10 Containment"},
              "Parsed 10 entities and 7 relationships."});
}

TEST(InterpretText, Drone) {
  expectPlan(InterpretText("The drone consists of a frame, four motors and a flight controller.\n"
                           "The flight controller sends commands to the motors. The GPS sensor sends position "
                           "data to the flight controller. The pilot is an operator. The pilot uses the remote "
                           "controller. It communicates with the flight controller."),
             {"The drone consists of a frame, four motors and a flight controller",
              {{"Drone", K::Block},
               {"Frame", K::Block},
               {"Motors", K::Block},
               {"Flight Controller", K::Block},
               {"GPS Sensor", K::Block},
               {"Pilot", K::Actor},
               {"Remote Controller", K::Block}},
              {"n1 n2 Containment", "n1 n3 Containment", "n1 n4 Containment", "n4 n3 Flow commands",
               "n5 n4 Flow position data", "n6 n7 Dependency", "n7 n4 Connection"},
              "Parsed 7 entities and 7 relationships."});
}

TEST(InterpretText, OrderWorkflow) {
  expectPlan(InterpretText("The order process includes a validation step, a payment step and a shipping step. "
                           "The validation step sends the order to the payment step! "
                           "The payment step sends a receipt to the customer. "
                           "The customer interacts with the web shop and the support scenario."),
             {"The order process includes a validation step, a payment step and a shipping step",
              {{"Order Process", K::Action},
               {"Validation Step", K::Action},
               {"Payment Step", K::Action},
               {"Shipping Step", K::Action},
               {"Customer", K::Actor},
               {"Web Shop", K::Block},
               {"Support Scenario", K::UseCase}},
              {"n1 n2 Containment", "n1 n3 Containment", "n1 n4 Containment", "n2 n3 Flow order",
               "n3 n5 Flow receipt", "n5 n6 Connection", "n5 n7 Connection"},
              "Parsed 7 entities and 7 relationships."});
}

TEST(InterpretText, RequirementsParagraph) {
  expectPlan(InterpretText("The braking system shall satisfy the stopping distance requirement. "
                           "The brake controller satisfies the response time requirement and the redundancy "
                           "requirement. The stopping distance requirement depends on the tire friction limit. "
                           "The ABS module is allocated to the brake control unit; the diagnostic interface "
                           "extends the service port."),
             {"The braking system shall satisfy the stopping distance requirement",
              {{"Braking System", K::Block},
               {"Stopping Distance Requirement", K::Requirement},
               {"Brake Controller", K::Block},
               {"Response Time Requirement", K::Requirement},
               {"Redundancy Requirement", K::Requirement},
               {"Tire Friction Limit", K::Constraint},
               {"ABS Module", K::Block},
               {"Brake Control Unit", K::Block},
               {"Diagnostic Interface", K::Interface},
               {"Service Port", K::Interface}},
              {"n1 n2 Satisfy", "n3 n4 Satisfy", "n3 n5 Satisfy", "n2 n6 Dependency", "n7 n8 Allocate",
               "n9 n10 Generalization"},
              "Parsed 10 entities and 6 relationships."});
}

TEST(InterpretText, ListsPronounsAndDirection) {
  // Lists with commas on the subject side; "it" names the single object
  // before when there were several subjects; "receives ... from" runs from
  // the sender; a colon list takes its kind from the category before it.
  expectPlan(InterpretText("The camera, the lidar, and the radar send images to the perception module; it sends "
                           "the object list to the planner. The planner receives the map from the map service. "
                           "The station has two users: the pilot and the observer."),
             {"The camera, the lidar, and the radar send images to the perception module; it se",
              {{"Camera", K::Block},
               {"Lidar", K::Block},
               {"Radar", K::Block},
               {"Perception Module", K::Block},
               {"Planner", K::Block},
               {"Map Service", K::Block},
               {"Station", K::Block},
               {"Pilot", K::Actor},
               {"Observer", K::Actor}},
              {"n1 n4 Flow images", "n2 n4 Flow images", "n3 n4 Flow images", "n4 n5 Flow object list",
               "n6 n5 Flow map", "n7 n8 Containment", "n7 n9 Containment"},
              "Parsed 9 entities and 7 relationships."});
}

TEST(InterpretText, NamesAndClauses) {
  // A comma without "and" ends the subject; an aside in parentheses is no
  // entity; negated and modal verbs make no edge; capitalised and quoted
  // names are entities even without a relation; the same name in any case
  // is one entity.
  expectPlan(InterpretText("When the pump starts, the controller sends a signal to the valve (V1). "
                           "The sensor does not connect to the motor. The unit has to restart. "
                           "See the 'Main Power Bus' and the Cabin Display. The CONTROLLER links to the valve."),
             {"When the pump starts, the controller sends a signal to the valve (V1)",
              {{"Controller", K::Block},
               {"Valve", K::Block},
               {"Sensor", K::Block},
               {"Unit", K::Block},
               {"Main Power Bus", K::Block},
               {"Cabin Display", K::Block}},
              {"n1 n2 Flow signal", "n1 n2 Connection"},
              "Parsed 6 entities and 2 relationships."});
}

TEST(InterpretText, TokenRules) {
  // Hyphenated words stay one token, a trailing hyphen is trimmed, quoted
  // names keep their inner spaces, an apostrophe ending is dropped.
  const DiagramPlan plan =
      InterpretText("The anti-lock module connects to the brake- unit and the \"Wheel  Speed Sensor\". "
                    "The driver's seat has a heater.");
  ASSERT_EQ(plan.nodes.size(), 5u) << WritePlan(plan);
  EXPECT_EQ(plan.nodes[0].label, "Anti-lock Module");
  EXPECT_EQ(plan.nodes[1].label, "Brake Unit");
  EXPECT_EQ(plan.nodes[2].label, "Wheel  Speed Sensor");
  EXPECT_EQ(plan.nodes[2].kind, K::Block);
  EXPECT_EQ(plan.nodes[3].label, "Driver Seat");
  EXPECT_EQ(plan.nodes[4].label, "Heater");
  EXPECT_EQ(plan.edges.size(), 3u);
}

TEST(InterpretText, EmptyTitleAndNotes) {
  EXPECT_EQ(InterpretText(""), DiagramPlan{});
  EXPECT_EQ(InterpretText(" \n . ! ?\n"), DiagramPlan{});

  const std::string longSentence(120, 'x');
  const DiagramPlan title = InterpretText(longSentence + ". Second.");
  EXPECT_EQ(title.title, std::string(80, 'x'));
  EXPECT_TRUE(title.nodes.empty());
  EXPECT_EQ(title.notes, "Parsed 0 entities and 0 relationships.");

  const DiagramPlan one = InterpretText("  The system.  ");
  EXPECT_EQ(one.title, "The system");
  ASSERT_EQ(one.nodes.size(), 1u);
  EXPECT_EQ(one.nodes[0].label, "System");
  EXPECT_EQ(one.notes, "Parsed 1 entity and 0 relationships.");

  EXPECT_EQ(InterpretText("The hub connects to the port.").notes, "Parsed 2 entities and 1 relationship.");
}

TEST(InterpretText, OddInputDoesNotThrow) {
  const std::vector<std::string> inputs = {"\"", "'", "\"unterminated quote here", "( ( ( ) ) ) , ; :",
                                           "and and and or", "sends to to to", "it it it sends",
                                           std::string("\0\xff\xfe\x80 \xe2\x80\x9c x", 11), "-_-_- __ --"};
  for (const std::string& in : inputs) EXPECT_NO_THROW((void)InterpretText(in)) << in;
}

TEST(WordTables, SizesAndEntries) {
  const WordTables& t = wordTables();
  EXPECT_EQ(t.roleNounCount(), 37u);
  EXPECT_EQ(t.relationVerbCount(), 42u);
  EXPECT_EQ(t.prepositionCount(), 9u);
  EXPECT_EQ(t.stopWordCount(), 69u);
  ASSERT_NE(t.roleNoun("use-case"), nullptr);
  EXPECT_EQ(*t.roleNoun("use-case"), K::UseCase);
  EXPECT_EQ(*t.roleNoun("limit"), K::Constraint);
  EXPECT_EQ(t.roleNoun("System"), nullptr);  // tables are lower case
  ASSERT_NE(t.relationVerb("composed"), nullptr);
  EXPECT_EQ(t.relationVerb("composed")->kind, R::Containment);
  EXPECT_TRUE(t.relationVerb("composed")->takesPreposition);
  EXPECT_FALSE(t.relationVerb("requires")->takesPreposition);
  EXPECT_EQ(t.relationVerb("inherit")->kind, R::Generalization);
  EXPECT_TRUE(t.isPreposition("by"));
  EXPECT_FALSE(t.isPreposition("via"));
  EXPECT_TRUE(t.isStopWord("neither"));
  EXPECT_FALSE(t.isStopWord("system"));
}

TEST(InterpretText, SameResultFromConcurrentFirstUse) {
  const std::string text = "The vehicle contains an engine. The sensor sends data to the controller.";
  std::vector<std::future<DiagramPlan>> runs;
  for (int i = 0; i < 4; ++i) runs.push_back(std::async(std::launch::async, [&] { return InterpretText(text); }));
  const DiagramPlan first = runs[0].get();
  EXPECT_EQ(first.nodes.size(), 4u);
  for (std::size_t i = 1; i < runs.size(); ++i) EXPECT_EQ(runs[i].get(), first);
}

}  // namespace
}  // namespace modelyne::ai
