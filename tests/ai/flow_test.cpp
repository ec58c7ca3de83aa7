// The AI Generate command: its checks, backends and fall-backs, its log,
// refinement of an existing model and the view fit.
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "ai/generate_flow.h"
#include "ai/prompts.h"
#include "check/allowed_types.h"
#include "bridge/bridge.h"

namespace modelyne::ai {

void PrintTo(const LogEntry& e, std::ostream* os) { *os << "{" << e.key << "|" << e.text << "|" << e.arg << "}"; }

namespace {

using core::DiagramKind;

const std::string kHint =
    "Offline interpreter: name parts such as System, Subsystem, Component, Interface or Actor, and relate them "
    "with verbs such as contains, sends ... to, uses or satisfies.";

LogEntry text(std::string t) { return LogEntry{"", std::move(t), ""}; }
LogEntry running(std::string backend) {
  return LogEntry{"ui.ai.running", "AI Generate: running with the " + backend + " backend...", backend};
}
LogEntry hint() { return LogEntry{"ui.ai.offline_hint", kHint, ""}; }

GenerateRequest request(core::Document* doc, std::string prompt, DiagramKind kind = DiagramKind::bdd) {
  GenerateRequest r;
  r.document = doc;
  r.prompt = std::move(prompt);
  r.kind = kind;
  return r;
}

struct FakeCloud {
  std::optional<std::string> reply;
  std::vector<std::string> kinds;
  std::string prompt;
  CloudCall call() {
    return [this](std::string_view k, std::string_view p, int) {
      kinds.emplace_back(k);
      prompt = std::string(p);
      return reply;
    };
  }
};

TEST(AiGenerate, RefusesWithoutDocumentStartPageOrPrompt) {
  core::Document doc;
  GenerateRequest r = request(nullptr, "The vehicle contains an engine.");
  EXPECT_EQ(RunAiGenerate(r).log,
            std::vector<LogEntry>{text("AI Generate: no active document. Open or create a project first.")});
  r.document = &doc;
  r.startPageShown = true;
  EXPECT_EQ(RunAiGenerate(r).log, std::vector<LogEntry>{text("AI Generate: dismiss the Start page first.")});
  r.startPageShown = false;
  r.prompt = " \n\t ";
  const GenerateResult empty = RunAiGenerate(r);
  EXPECT_EQ(empty.log, std::vector<LogEntry>{text("AI Generate: prompt is empty.")});
  EXPECT_FALSE(empty.applied);
  EXPECT_FALSE(empty.view.has_value());
  EXPECT_TRUE(doc.nodes().empty());
  EXPECT_FALSE(bridge::canUndo(&doc));
}

TEST(AiGenerate, OfflineGeneratesAppliesAndFitsTheView) {
  core::Document doc;
  GenerateRequest r = request(&doc, "The vehicle contains an engine, a gearbox and a battery. The battery "
                                    "sends power to the engine.");
  r.zoom = 0.0f;
  const GenerateResult res = RunAiGenerate(r);
  EXPECT_EQ(res.log, (std::vector<LogEntry>{running("offline"), hint(),
                                            text("Parsed 4 entities and 4 relationships."),
                                            text("AI Generate: added 4 nodes and 4 edges.")}));
  ASSERT_TRUE(res.applied);
  EXPECT_EQ(res.nodeIds, (std::vector<std::string>{"n1", "n2", "n3", "n4"}));
  ASSERT_TRUE(res.view.has_value());
  // Nodes at (80,80), (300,80), (520,80), (80,230), each 180 by 100.
  EXPECT_EQ(res.view->minX, 80.0f);
  EXPECT_EQ(res.view->minY, 80.0f);
  EXPECT_EQ(res.view->maxX, 700.0f);
  EXPECT_EQ(res.view->maxY, 330.0f);
  EXPECT_EQ(res.view->centerX, 390.0f);
  EXPECT_EQ(res.view->centerY, 205.0f);
  EXPECT_EQ(res.view->zoom, 1.0f);
  EXPECT_EQ(doc.nodes()[0].type, core::ShapeType::sysmlBlock);
  EXPECT_EQ(doc.edges()[3].text, "power");
  bridge::undo(&doc);
  EXPECT_TRUE(doc.nodes().empty());
  EXPECT_FALSE(bridge::canUndo(&doc));
}

TEST(AiGenerate, NoEntitiesChangesNothing) {
  core::Document doc;
  const GenerateResult res = RunAiGenerate(request(&doc, "please make it nice"));
  EXPECT_EQ(res.log, (std::vector<LogEntry>{running("offline"), hint(),
                                            text("Parsed 0 entities and 0 relationships."),
                                            text("AI Generate: no named entities found. Name components such as "
                                                 "System, Subsystem, Component, Interface, Actor.")}));
  EXPECT_FALSE(res.applied);
  EXPECT_FALSE(bridge::canUndo(&doc));
}

TEST(AiGenerate, ActivityRequestOnActivityDiagram) {
  core::Document doc;
  const GenerateResult res = RunAiGenerate(request(
      &doc, "Order workflow: the checkout process includes the payment step and the shipping step.",
      DiagramKind::act));
  ASSERT_TRUE(res.applied);
  ASSERT_EQ(doc.nodes().size(), 3u);
  for (const core::Node& n : doc.nodes()) EXPECT_EQ(n.type, core::ShapeType::umlAction) << n.text;
  ASSERT_EQ(doc.edges().size(), 2u);
  for (const core::Edge& e : doc.edges()) EXPECT_EQ(e.type, core::EdgeType::sysmlControlFlow);
  EXPECT_EQ(res.log[2], text("Parsed 3 entities and 2 relationships. Activity request normalized to Action nodes "
                             "and Flow edges."));
}

TEST(AiGenerate, CloudBackendQuotaFailureAndInvalidReply) {
  core::Document doc;
  FakeCloud cloud;
  cloud.reply = "TITLE|Drone\nNODE|n1|Block|Drone\nNODE|n2|Block|Camera\nEDGE|n1|n2|Containment\n";
  GenerateRequest r = request(&doc, "A drone with a camera");
  r.backend = "cloud";
  r.cloud = cloud.call();
  r.quota = {true, 5};
  r.zoom = 2.0f;
  GenerateResult res = RunAiGenerate(r);
  EXPECT_EQ(res.log, (std::vector<LogEntry>{running("cloud"),
                                            LogEntry{"ui.ai.quota_remaining", "Cloud AI requests remaining today: 5",
                                                     "5"},
                                            text("Cloud AI plan generated."), text("Parsed 2 nodes and 1 edges."),
                                            text("AI Generate: added 2 nodes and 1 edge.")}));
  EXPECT_EQ(cloud.kinds, std::vector<std::string>{"generate"});
  EXPECT_EQ(cloud.prompt, BuildGeneratePrompt("A drone with a camera"));
  EXPECT_EQ(res.view->zoom, 2.0f);

  // Quota used up: the offline interpreter, without calling the cloud.
  core::Document d2;
  r.document = &d2;
  r.prompt = "The drone has a camera.";
  r.quota = {true, 0};
  res = RunAiGenerate(r);
  EXPECT_EQ(res.log, (std::vector<LogEntry>{
                         LogEntry{"ui.ai.quota_reached", "Daily cloud AI limit reached; using the offline interpreter.",
                                  ""},
                         running("offline"), hint(), text("Parsed 2 entities and 1 relationship."),
                         text("AI Generate: added 2 nodes and 1 edge.")}));
  EXPECT_EQ(cloud.kinds.size(), 1u);

  // A failed call and a reply without a plan fall back to the interpreter.
  core::Document d3;
  r.document = &d3;
  r.quota = {};
  cloud.reply.reset();
  res = RunAiGenerate(r);
  EXPECT_EQ(res.log, (std::vector<LogEntry>{running("cloud"),
                                            text("Cloud AI request failed; using deterministic fallback."),
                                            text("Parsed 2 entities and 1 relationship."),
                                            text("AI Generate: added 2 nodes and 1 edge.")}));
  core::Document d4;
  r.document = &d4;
  cloud.reply = "Sorry, I can only chat.";
  res = RunAiGenerate(r);
  EXPECT_EQ(res.log[1], text("Cloud AI output did not contain a valid plan; using deterministic fallback."));
  EXPECT_TRUE(res.applied);

  // The cloud chosen but not configured.
  core::Document d5;
  r.document = &d5;
  r.cloud = nullptr;
  res = RunAiGenerate(r);
  EXPECT_EQ(res.log[1], text("Cloud AI is not configured; using deterministic fallback."));
  EXPECT_EQ(res.log[2], hint());
}

// A document made by a first generation: Vehicle, Engine, Gearbox.
void seedVehicle(core::Document& doc) {
  ASSERT_TRUE(RunAiGenerate(request(&doc, "The vehicle contains an engine and a gearbox.")).applied);
}

TEST(AiRefine, OfflineAddsNewElementsToTheCurrentModel) {
  core::Document doc;
  seedVehicle(doc);
  const GenerateResult res =
      RunAiGenerate(request(&doc, "The vehicle contains a battery. The battery sends power to the engine."));
  ASSERT_TRUE(res.applied);
  EXPECT_EQ(res.nodeIds, (std::vector<std::string>{"n4"}));
  ASSERT_EQ(doc.nodes().size(), 4u);
  EXPECT_EQ(doc.nodes()[3].text, "Battery");
  // Placed below the existing row.
  EXPECT_EQ(doc.nodes()[3].geom, (core::NodeGeometry{80, 250, 180, 100}));
  ASSERT_EQ(doc.edges().size(), 4u);
  EXPECT_EQ(doc.edges()[2].source, "n1");
  EXPECT_EQ(doc.edges()[2].target, "n4");
  EXPECT_EQ(doc.edges()[3].source, "n4");
  EXPECT_EQ(doc.edges()[3].target, "n2");
  EXPECT_EQ(res.log.back(), text("AI Generate: added 1 node and 2 edges."));

  // An imperative names what to add.
  const GenerateResult include = RunAiGenerate(request(&doc, "Also include the radiator."));
  ASSERT_TRUE(include.applied);
  EXPECT_EQ(doc.nodes().back().text, "Radiator");
  EXPECT_EQ(include.log.back(), text("AI Generate: added 1 node and 0 edges."));

  // The same again adds nothing.
  const std::size_t before = doc.history().undoCount();
  const GenerateResult again = RunAiGenerate(request(&doc, "The battery sends power to the engine."));
  EXPECT_FALSE(again.applied);
  EXPECT_EQ(again.log.back(), text("AI Refine: no new elements were added. Try a more specific request."));
  EXPECT_EQ(doc.history().undoCount(), before);
}

// With the layout option the added nodes are laid out below the existing
// content, which stays; one undo takes the whole addition back.
TEST(AiRefine, LayoutOptionLaysOutOnlyWhatWasAdded) {
  core::Document doc;
  seedVehicle(doc);
  std::vector<core::NodeGeometry> before;
  for (const core::Node& n : doc.nodes()) before.push_back(n.geom);
  const std::size_t steps = doc.history().undoCount();
  GenerateRequest r = request(&doc, "Also include the radiator, the pump and the fan. The pump contains the fan.");
  r.layout = bridge::LayoutAlgorithm::layered;
  const GenerateResult res = RunAiGenerate(r);
  ASSERT_TRUE(res.applied);
  ASSERT_EQ(doc.nodes().size(), before.size() + res.nodeIds.size());
  for (std::size_t i = 0; i < before.size(); ++i) EXPECT_EQ(doc.nodes()[i].geom, before[i]) << i;
  float bottom = 0.0f;
  for (const core::NodeGeometry& g : before) bottom = std::max(bottom, g.y + g.h);
  for (const std::string& id : res.nodeIds) EXPECT_GT(doc.findNode(id)->geom.y, bottom) << id;
  ASSERT_TRUE(res.view);
  EXPECT_GT(res.view->minY, bottom);
  EXPECT_EQ(doc.history().undoCount(), steps + 1);
  bridge::undo(&doc);
  EXPECT_EQ(doc.nodes().size(), before.size());
}

TEST(AiRefine, ContinuationAddsAnchoredDetail) {
  core::Document doc;
  seedVehicle(doc);
  const GenerateResult res = RunAiGenerate(request(&doc, "Add more detail.", DiagramKind::req));
  ASSERT_TRUE(res.applied);
  EXPECT_EQ(res.log, (std::vector<LogEntry>{
                         running("offline"), hint(), text("Parsed 0 entities and 0 relationships."),
                         text("AI Refine: continuation prompt added no new elements; adding anchored local detail."),
                         text("Continuation request expanded locally with 3 anchored detail nodes."),
                         text("AI Generate: added 3 nodes and 3 edges.")}));
  // The most connected node (Vehicle) first, then the others in order.
  ASSERT_EQ(doc.nodes().size(), 6u);
  EXPECT_EQ(doc.nodes()[3].text, "Operational constraint for Vehicle");
  EXPECT_EQ(doc.nodes()[4].text, "Operational constraint for Engine");
  EXPECT_EQ(doc.nodes()[5].text, "Operational constraint for Gearbox");
  EXPECT_EQ(doc.nodes()[3].type, core::ShapeType::sysmlConstraintUsage);
  EXPECT_EQ(doc.edges()[2].source, doc.nodes()[3].id);
  EXPECT_EQ(doc.edges()[2].target, "n1");
  EXPECT_EQ(doc.edges()[2].text, "constrains");
  EXPECT_EQ(doc.edges()[2].type, core::EdgeType::dependency);

  // The next continuation takes the next detail of each node.
  const GenerateResult more = RunAiGenerate(request(&doc, "expand", DiagramKind::req));
  ASSERT_TRUE(more.applied);
  EXPECT_EQ(doc.nodes()[6].text, "Integration detail for Vehicle");
  EXPECT_EQ(doc.edges()[5].text, "interfaces");
  for (const core::Node& n : doc.nodes()) EXPECT_TRUE(check::isShapeAllowed(DiagramKind::req, n.type));
  for (const core::Edge& e : doc.edges()) EXPECT_TRUE(check::isEdgeAllowed(DiagramKind::req, e.type));

  // Requirements are refined.
  core::Document reqs;
  ASSERT_TRUE(RunAiGenerate(request(&reqs, "The brake satisfies the stopping requirement.", DiagramKind::req)).applied);
  const GenerateResult refine = RunAiGenerate(request(&reqs, "go deeper", DiagramKind::req));
  EXPECT_EQ(refine.log[4], text("Continuation request expanded locally with 2 anchored detail nodes."));
  EXPECT_EQ(reqs.nodes()[2].text, "Operational constraint for Brake");
  EXPECT_EQ(reqs.nodes()[3].text, "Refined requirement for Stopping Requirement");
  EXPECT_EQ(reqs.nodes()[3].properties.at("requirementText"), "Refined requirement for Stopping Requirement");
  EXPECT_EQ(reqs.edges()[2].text, "refines");
}

TEST(AiRefine, CloudOutcomes) {
  FakeCloud cloud;
  const auto run = [&](core::Document& doc, std::string prompt) {
    GenerateRequest r = request(&doc, std::move(prompt));
    r.backend = "cloud";
    r.cloud = cloud.call();
    return RunAiGenerate(r);
  };

  // A reply that keeps the model and adds to it.
  core::Document doc;
  seedVehicle(doc);
  cloud.reply = "TITLE|Vehicle\nNODE|n1|Block|Vehicle\nNODE|n2|Block|Engine\nNODE|n3|Block|Gearbox\n"
                "NODE|n4|Block|Fuel Tank\nEDGE|n1|n2|Containment\nEDGE|n4|n2|Flow|fuel\n";
  GenerateResult res = run(doc, "add the fuel tank");
  EXPECT_EQ(cloud.kinds.back(), "refine");
  EXPECT_NE(cloud.prompt.find("CURRENT MODEL:\nNODE|n1|Block|Vehicle\n"), std::string::npos);
  ASSERT_TRUE(res.applied);
  EXPECT_EQ(doc.nodes().back().text, "Fuel Tank");
  EXPECT_EQ(doc.edges().back().source, doc.nodes().back().id);
  EXPECT_EQ(doc.edges().back().target, "n2");
  EXPECT_EQ(doc.edges().size(), 3u);  // the repeated containment is not added again

  // A reply that reuses the ids for other things: the local parser instead.
  cloud.reply = "NODE|n1|Block|Kitchen\nNODE|n2|Block|Oven\nNODE|n3|Block|Fridge\n";
  res = run(doc, "The vehicle has a radiator.");
  EXPECT_EQ(res.log[3], text("AI Refine: Cloud AI returned a replacement diagram; using local parser to preserve "
                             "the current model."));
  EXPECT_EQ(doc.nodes().back().text, "Radiator");

  // A separate diagram: ignored; for a continuation, anchored detail.
  cloud.reply = "NODE|a|Block|Kitchen\nNODE|b|Block|Oven\n";
  res = run(doc, "The engine has a starter.");
  EXPECT_EQ(res.log[3], text("AI Refine: model output looked like a separate diagram; ignored it to preserve the "
                             "current model."));
  EXPECT_EQ(doc.nodes().back().text, "Starter");
  res = run(doc, "continue");
  EXPECT_EQ(res.log[3], text("AI Refine: continuation prompt did not carry the prior model; adding anchored "
                             "local detail."));
  EXPECT_EQ(res.log[4], text("Continuation request expanded locally with 3 anchored detail nodes."));

  // The model repeated with nothing new.
  core::Document small;
  seedVehicle(small);
  cloud.reply = "NODE|n1|Block|Vehicle\nNODE|n2|Block|Engine\nEDGE|n1|n2|Containment\n";
  res = run(small, "check it");
  EXPECT_FALSE(res.applied);
  EXPECT_EQ(res.log.back(), text("AI Refine: no new elements were added. Try a more specific request."));
  res = run(small, "improve");
  EXPECT_EQ(res.log[3], text("AI Refine: continuation prompt added no new elements; adding anchored local detail."));
  EXPECT_TRUE(res.applied);
}

TEST(AiGenerate, KeysAndContinuationPhrases) {
  EXPECT_EQ(EnglishText("ui.ai.quota_remaining"), "Cloud AI requests remaining today: %s");
  EXPECT_EQ(EnglishText("ui.ai.unknown"), "");
  // prompt, is a continuation request
  const std::vector<std::pair<std::string, bool>> cases = {
      {"Please add more", true},       {"In Greater Detail", true}, {"add sub-components", true},
      {"drill down into the engine", true}, {"includes", false},     {"furthermore", false},
      {"expanded", false},             {"a new drone", false}};
  for (const auto& [prompt, expected] : cases) EXPECT_EQ(IsContinuationRequest(prompt), expected) << prompt;
}

}  // namespace
}  // namespace modelyne::ai
