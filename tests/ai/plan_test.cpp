// The plan text: parsing, writing, keyword maps, grid, activity requests,
// prompts and the cloud plan call.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ai/activity.h"
#include "ai/cloud_plan.h"
#include "ai/plan.h"
#include "ai/prompts.h"

namespace modelyne::ai {
namespace {

PlanNode node(std::string id, PlanNodeKind kind, std::string label, float x, float y) {
  return PlanNode{std::move(id), std::move(label), kind, x, y, 180.0f, 100.0f};
}

TEST(ParsePlan, SkipsChatterBeforeTitleAndBuildsGridAndNotes) {
  const std::string reply =
      "Sure! Here is your plan:\n"
      "NODE|x|Block|ignored before title\n"
      "TITLE|Braking\r\n"
      "  NODE|n1|block|Brake Pedal  \n"
      "node|n2|Actor|Driver\n"
      "\n"
      "```\n"
      "NODE|n3|use case|Stop Vehicle\n"
      "EDGE|n2|n1|contains\n"
      "EDGE|n2|n3|Item Flow|press\n"
      "EDGE|n3|n9|Flow\n"
      "Hope this helps.\n";
  DiagramPlan plan;
  ASSERT_TRUE(ParsePlan(reply, plan));
  const DiagramPlan expected{
      "Braking",
      {node("n1", PlanNodeKind::Block, "Brake Pedal", 80, 80), node("n2", PlanNodeKind::Actor, "Driver", 300, 80),
       node("n3", PlanNodeKind::UseCase, "Stop Vehicle", 520, 80)},
      {PlanEdge{"n2", "n1", PlanEdgeKind::Containment, ""}, PlanEdge{"n2", "n3", PlanEdgeKind::Flow, "press"}},
      "Parsed 3 nodes and 2 edges."};
  EXPECT_EQ(plan, expected);
}

TEST(ParsePlan, TemplateEchoesEmptyIdsDuplicatesAndShortRecords) {
  const std::string reply =
      "TITLE|Short Title\n"
      "NODE|Id|KIND|label\n"
      "EDGE|sourceId|TargetID|Kind|label\n"
      "NODE|||\n"
      "NODE|n1|Actor|Second n1 is dropped\n"
      "NODE|a|Requirement\n"          // too few fields
      "NODEX|b|Block|not a record\n"
      "TITLE\n"                        // no separator
      "NODE|b|widget|Widget\n"         // unknown kind word: Block
      "EDGE|n1|b\n"                    // too few fields
      "EDGE|n1|b|whatever|\n";         // unknown kind: Connection, empty label
  DiagramPlan plan;
  ASSERT_TRUE(ParsePlan(reply, plan));
  EXPECT_EQ(plan.title, "");
  ASSERT_EQ(plan.nodes.size(), 2u);
  EXPECT_EQ(plan.nodes[0], node("n1", PlanNodeKind::Block, "n1", 80, 80));
  EXPECT_EQ(plan.nodes[1], node("b", PlanNodeKind::Block, "Widget", 300, 80));
  ASSERT_EQ(plan.edges.size(), 1u);
  EXPECT_EQ(plan.edges[0], (PlanEdge{"n1", "b", PlanEdgeKind::Connection, ""}));
}

TEST(ParsePlan, FailureLeavesPlanAlone) {
  DiagramPlan plan;
  plan.title = "kept";
  EXPECT_FALSE(ParsePlan("", plan));
  EXPECT_FALSE(ParsePlan("TITLE|Only a title\nEDGE|a|b|Flow\n", plan));
  EXPECT_FALSE(ParsePlan("no plan here at all", plan));
  EXPECT_EQ(plan.title, "kept");
  EXPECT_TRUE(plan.nodes.empty());
}

TEST(ParsePlan, GridOfThreeColumns) {
  std::string text;
  for (int i = 1; i <= 7; ++i) text += "NODE|n" + std::to_string(i) + "|Block|B\n";
  DiagramPlan plan;
  ASSERT_TRUE(ParsePlan(text, plan));
  EXPECT_EQ(plan.nodes[2].x, 520.0f);
  EXPECT_EQ(plan.nodes[2].y, 80.0f);
  EXPECT_EQ(plan.nodes[6].x, 80.0f);
  EXPECT_EQ(plan.nodes[6].y, 380.0f);
  EXPECT_EQ(plan.nodes[4].x, 300.0f);
  EXPECT_EQ(plan.nodes[4].y, 230.0f);
}

TEST(WritePlan, CanonicalWordsAndOptionalLabel) {
  DiagramPlan plan;
  plan.title = "T";
  plan.nodes = {node("n1", PlanNodeKind::Interface, "", 0, 0), node("n2", static_cast<PlanNodeKind>(42), "X", 0, 0)};
  plan.edges = {PlanEdge{"n1", "n2", PlanEdgeKind::Allocate, ""},
                PlanEdge{"n2", "n1", static_cast<PlanEdgeKind>(-1), "l"}};
  EXPECT_EQ(WritePlan(plan),
            "TITLE|T\nNODE|n1|Interface|\nNODE|n2|Block|X\nEDGE|n1|n2|Allocate\nEDGE|n2|n1|Connection|l\n");
  EXPECT_EQ(WritePlan(DiagramPlan{}), "");

  // Written text parses back to the same records.
  DiagramPlan back;
  plan.nodes[0].label = "I";
  plan.nodes[1].kind = PlanNodeKind::Generic;
  plan.edges[1].kind = PlanEdgeKind::Satisfy;
  ASSERT_TRUE(ParsePlan(WritePlan(plan), back));
  EXPECT_EQ(WritePlan(back), WritePlan(plan));
}

TEST(KeywordMaps, NodeAndEdgeWords) {
  // word, expected node kind
  const std::vector<std::pair<std::string, PlanNodeKind>> nodes = {
      {"ACTOR", PlanNodeKind::Actor},       {"state", PlanNodeKind::State},
      {"Action Usage", PlanNodeKind::Action}, {"actionusage", PlanNodeKind::Action},
      {"activity node", PlanNodeKind::Action}, {"Process", PlanNodeKind::Action},
      {"Use Case", PlanNodeKind::UseCase},  {"usecase", PlanNodeKind::UseCase},
      {"requirement", PlanNodeKind::Requirement}, {"Constraint", PlanNodeKind::Constraint},
      {"interface", PlanNodeKind::Interface}, {"GENERIC", PlanNodeKind::Generic},
      {"block", PlanNodeKind::Block},       {"use  case", PlanNodeKind::Block},
      {"actors", PlanNodeKind::Block},      {"", PlanNodeKind::Block}};
  for (const auto& [word, kind] : nodes) EXPECT_EQ(PlanNodeKindFromWord(word), kind) << word;

  // word, expected edge kind
  const std::vector<std::pair<std::string, PlanEdgeKind>> edges = {
      {"Containment", PlanEdgeKind::Containment}, {"contains", PlanEdgeKind::Containment},
      {"control flow", PlanEdgeKind::Flow},       {"Object Flow", PlanEdgeKind::Flow},
      {"workflow", PlanEdgeKind::Flow},           {"SEQUENCE", PlanEdgeKind::Flow},
      {"next", PlanEdgeKind::Flow},               {"then", PlanEdgeKind::Flow},
      {"extends", PlanEdgeKind::Generalization},  {"depends", PlanEdgeKind::Dependency},
      {"Satisfies", PlanEdgeKind::Satisfy},       {"allocation", PlanEdgeKind::Allocate},
      {"connection", PlanEdgeKind::Connection},   {"flows", PlanEdgeKind::Connection}};
  for (const auto& [word, kind] : edges) EXPECT_EQ(PlanEdgeKindFromWord(word), kind) << word;
}

TEST(Activity, RequestsAreRecognisedByPhraseOrWholeWord) {
  // prompt, is an activity request
  const std::vector<std::pair<std::string, bool>> cases = {
      {"Draw an Activity Diagram of checkout", true},
      {"the process flow of refuelling", true},
      {"explain it xstep-by-stepx", true},
      {"an order workflow", true},
      {"Workflow: order", true},
      {"the PROCEDURE for landing", true},
      {"a flowchart", true},
      {"compare workflows and procedures", false},
      {"activity2 log", false},
      {"subactivity", false},
      {"a drone with four motors", false}};
  for (const auto& [prompt, expected] : cases) EXPECT_EQ(IsActivityRequest(prompt), expected) << prompt;
}

TEST(Activity, NormalisationChainsAndConvertsKinds) {
  DiagramPlan plan;
  plan.notes = "Parsed 3 nodes and 0 edges.";
  plan.nodes = {node("a", PlanNodeKind::Block, "A", 0, 0), node("b", PlanNodeKind::Generic, "B", 0, 0),
                node("c", PlanNodeKind::Actor, "C", 0, 0)};
  EXPECT_FALSE(NormalizeActivityPlan("a vehicle", plan));
  EXPECT_EQ(plan.nodes[0].kind, PlanNodeKind::Block);

  EXPECT_TRUE(NormalizeActivityPlan("workflow", plan));
  EXPECT_EQ(plan.nodes[0].kind, PlanNodeKind::Action);
  EXPECT_EQ(plan.nodes[1].kind, PlanNodeKind::Action);
  EXPECT_EQ(plan.nodes[2].kind, PlanNodeKind::Actor);
  const std::vector<PlanEdge> chain = {PlanEdge{"a", "b", PlanEdgeKind::Flow, ""},
                                       PlanEdge{"b", "c", PlanEdgeKind::Flow, ""}};
  EXPECT_EQ(plan.edges, chain);
  EXPECT_EQ(plan.notes, "Parsed 3 nodes and 0 edges. Activity request normalized to Action nodes and Flow edges.");

  // Already normalised: nothing changes, no second note.
  EXPECT_FALSE(NormalizeActivityPlan("workflow", plan));
  EXPECT_EQ(plan.notes, "Parsed 3 nodes and 0 edges. Activity request normalized to Action nodes and Flow edges.");

  DiagramPlan withEdges;
  withEdges.nodes = {node("a", PlanNodeKind::Action, "A", 0, 0), node("b", PlanNodeKind::State, "B", 0, 0)};
  withEdges.edges = {PlanEdge{"b", "a", PlanEdgeKind::Containment, "x"}};
  EXPECT_TRUE(NormalizeActivityPlan("step-by-step", withEdges));
  EXPECT_EQ(withEdges.edges, (std::vector<PlanEdge>{PlanEdge{"b", "a", PlanEdgeKind::Flow, "x"}}));
  EXPECT_EQ(withEdges.notes, "Activity request normalized to Action nodes and Flow edges.");

  DiagramPlan single;
  single.nodes = {node("a", PlanNodeKind::Action, "A", 0, 0)};
  EXPECT_FALSE(NormalizeActivityPlan("activity", single));
  EXPECT_TRUE(single.edges.empty());
}

const std::string kGenerateHead =
    "You are Modelyne diagram model generator.\n"
    "Convert the user's system description into a diagram plan.\n"
    "Return only these pipe-delimited lines, no Markdown and no explanation:\n"
    "TITLE|short title\n"
    "NODE|id|kind|label\n"
    "EDGE|sourceId|targetId|kind|label\n"
    "Allowed node kinds: Block, Actor, State, Action, UseCase, Requirement, Constraint, Interface, Generic.\n"
    "Allowed edge kinds: Connection, Containment, Flow, Generalization, Dependency, Satisfy, Allocate.\n"
    "Use simple ids such as n1, n2, n3. Keep labels concise.\n"
    "Do not invent entities outside the user's domain. Only use the schema example\n"
    "below as a format template; ignore its placeholder names.\n";

TEST(Prompts, GeneratePromptForStructureAndActivity) {
  EXPECT_EQ(BuildGeneratePrompt("A drone with a camera."),
            kGenerateHead +
                "Format example (do not copy the placeholder labels into your answer):\n"
                "TITLE|<short title>\n"
                "NODE|n1|Block|<entity 1>\n"
                "NODE|n2|Block|<entity 2>\n"
                "EDGE|n1|n2|Containment|contains\n"
                "User prompt:\n"
                "A drone with a camera.\n");
  EXPECT_EQ(BuildGeneratePrompt("Order workflow"),
            kGenerateHead +
                "The user requested an activity, workflow, flowchart, or procedure diagram.\n"
                "For this request, use Action for every step node and Flow for every transition edge.\n"
                "Do not use Block or Containment for activity steps.\n"
                "Format example (do not copy the placeholder labels into your answer):\n"
                "TITLE|<short title>\n"
                "NODE|n1|Action|<step 1>\n"
                "NODE|n2|Action|<step 2>\n"
                "NODE|n3|Action|<step 3>\n"
                "EDGE|n1|n2|Flow|next\n"
                "EDGE|n2|n3|Flow|next\n"
                "User prompt:\n"
                "Order workflow\n");
}

TEST(Prompts, RefinePromptCarriesTheCurrentModel) {
  DiagramPlan current;
  current.title = "Drone";
  current.nodes = {node("n1", PlanNodeKind::Block, "Drone", 0, 0), node("n2", PlanNodeKind::Block, "Camera", 0, 0)};
  current.edges = {PlanEdge{"n1", "n2", PlanEdgeKind::Containment, ""}};
  EXPECT_EQ(BuildRefinePrompt(current, "add a battery"),
            "You are Modelyne diagram model generator.\n"
            "You are REFINING an existing diagram on the user's canvas. Stay inside\n"
            "the same domain as the existing diagram. Do NOT introduce unrelated\n"
            "subject matter (for example, do not switch from a computer architecture\n"
            "model to a car engine, transmission, kitchen workflow, or any other\n"
            "unrelated topic). Treat the existing diagram as authoritative ground\n"
            "truth and only add or refine elements that are consistent with it.\n"
            "\n"
            "Return only the COMPLETE updated diagram as pipe-delimited lines, no\n"
            "Markdown and no explanation:\n"
            "TITLE|short title\n"
            "NODE|id|kind|label\n"
            "EDGE|sourceId|targetId|kind|label\n"
            "Allowed node kinds: Block, Actor, State, Action, UseCase, Requirement, Constraint, Interface, Generic.\n"
            "Allowed edge kinds: Connection, Containment, Flow, Generalization, Dependency, Satisfy, Allocate.\n"
            "Rules:\n"
            "  * Begin your answer by repeating every CURRENT MODEL NODE line with\n"
            "    its existing id. Then repeat every CURRENT MODEL EDGE line unless\n"
            "    the user explicitly asked to remove it. Append new NODE and EDGE\n"
            "    lines after the preserved model.\n"
            "  * Preserve every existing NODE id (n1, n2, \xE2\x80\xA6) and reuse those ids in\n"
            "    your output. Keep the same kind unless the user explicitly asked\n"
            "    to change it. You may shorten or rephrase a label, but it must\n"
            "    still refer to the same real-world entity.\n"
            "  * Preserve every existing EDGE unless the user explicitly asked to\n"
            "    remove it.\n"
            "  * Add new nodes using fresh ids that continue the n1, n2, \xE2\x80\xA6 sequence.\n"
            "  * Connect every new node to at least one existing node so the\n"
            "    diagram remains a single connected model.\n"
            "  * If the user request is a vague continuation, add conservative\n"
            "    requirement, constraint, interface, or action detail that is clearly\n"
            "    tied to existing nodes. Return unchanged only when no safe\n"
            "    domain-preserving detail can be added.\n"
            "CURRENT MODEL:\n"
            "TITLE|Drone\n"
            "NODE|n1|Block|Drone\n"
            "NODE|n2|Block|Camera\n"
            "EDGE|n1|n2|Containment\n"
            "User refinement request:\n"
            "add a battery\n");
}

// A fake cloud client that records what it was asked.
struct FakeCloud {
  std::optional<std::string> reply;
  std::string kind;
  std::string prompt;
  int budget = 0;
  int calls = 0;
  CloudCall call() {
    return [this](std::string_view k, std::string_view p, int b) {
      kind = std::string(k);
      prompt = std::string(p);
      budget = b;
      ++calls;
      return reply;
    };
  }
};

TEST(CloudPlan, ChoosesPromptParsesAndLogs) {
  FakeCloud cloud;
  cloud.reply = "Here you go\nTITLE|Drone\nNODE|n1|Block|Drone\n";
  DiagramPlan plan;
  std::string log;
  EXPECT_TRUE(GeneratePlanWithCloud("a drone", nullptr, plan, log, cloud.call()));
  EXPECT_EQ(cloud.kind, "generate");
  EXPECT_EQ(cloud.budget, 1024);
  EXPECT_EQ(cloud.prompt, BuildGeneratePrompt("a drone"));
  EXPECT_EQ(log, "Cloud AI plan generated.");
  EXPECT_EQ(plan.title, "Drone");

  // A current plan without nodes still means generate; with nodes, refine.
  DiagramPlan empty;
  EXPECT_TRUE(GeneratePlanWithCloud("a drone", &empty, plan, log, cloud.call()));
  EXPECT_EQ(cloud.kind, "generate");
  DiagramPlan current = plan;
  cloud.reply = "I cannot help with that.";
  EXPECT_FALSE(GeneratePlanWithCloud("more", &current, plan, log, cloud.call()));
  EXPECT_EQ(cloud.kind, "refine");
  EXPECT_EQ(cloud.prompt, BuildRefinePrompt(current, "more"));
  EXPECT_EQ(log,
            "Cloud AI plan generated.\nCloud AI plan generated.\n"
            "Cloud AI output did not contain a valid plan; using deterministic fallback.");

  // A failed call or no client: false and no message.
  std::string quiet;
  cloud.reply.reset();
  EXPECT_FALSE(GeneratePlanWithCloud("x", nullptr, plan, quiet, cloud.call()));
  EXPECT_FALSE(GeneratePlanWithCloud("x", nullptr, plan, quiet, CloudCall{}));
  EXPECT_FALSE(GeneratePlanWithCloud("x", nullptr, plan, quiet,
                                     [](std::string_view, std::string_view, int) -> std::optional<std::string> {
                                       throw std::runtime_error("offline");
                                     }));
  EXPECT_EQ(quiet, "");
  EXPECT_EQ(cloud.calls, 4);
}

}  // namespace
}  // namespace modelyne::ai
