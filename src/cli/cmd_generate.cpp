// modelyne generate: a plain-language description turned into a model file
// (or into plan text) by the AI Generate flow.
#include <algorithm>
#include <array>

#include "ai/activity.h"
#include "ai/cloud_plan.h"
#include "ai/generate_flow.h"
#include "ai/interpreter.h"
#include "ai/plan.h"
#include "cli/cloud_setup.h"
#include "cli/commands.h"
#include "cli/model_input.h"
#include "cli/output.h"
#include "cli/text_argument.h"
#include "io/diagram_writer.h"

namespace modelyne::cli {

namespace {

constexpr std::array kOptions{kKindOption, OptionSpec{"--plan", "", ""},
                              OptionSpec{"--output", "-o", "OUT"}, OptionSpec{"--backend", "", "NAME"},
                              OptionSpec{"--layout", "", "NAME"}};

constexpr std::string_view kHelp =
    "usage: modelyne generate [TEXT...|-] [--kind KEY] [--plan] [-o OUT]\n"
    "                         [--backend offline|cloud] [--layout layered|organic]\n"
    "\n"
    "Turns a plain-language description (the words given, or standard input)\n"
    "into a new model file whose diagram, of kind KEY (default bdd), holds the\n"
    "generated elements; with --plan prints the plan text instead. The offline\n"
    "backend (default) uses the built-in interpreter; the cloud backend falls\n"
    "back to it when no cloud AI is configured or reachable (see 'modelyne\n"
    "cloud test'). The flow's log lines and the plan's notes go to standard\n"
    "error. With --layout the generated elements are laid out automatically\n"
    "instead of keeping the plan's grid.\n"
    "\n"
    "exit status: 0 done; 1 no entity found; 2 error.\n"
    "\n"
    "examples:\n"
    "  modelyne generate 'The drone contains a battery and a motor.' -o drone.xml\n"
    "  echo 'The order task flows to the packing task.' | modelyne generate --kind act --plan\n";

// Texts of the AI Generate flow that the plan-only path repeats, so that
// both paths log alike.
constexpr std::string_view kNoEntities =
    "AI Generate: no named entities found. Name components such as System, Subsystem, Component, "
    "Interface, Actor.";
constexpr std::string_view kCloudNotConfigured = "Cloud AI is not configured; using deterministic fallback.";
constexpr std::string_view kCloudFailed = "Cloud AI request failed; using deterministic fallback.";

bool isBlank(std::string_view s) {
  return s.find_first_not_of(" \t\r\n\v\f") == std::string_view::npos;
}

void logKey(std::string_view key, std::string_view arg = {}) {
  std::string text(ai::EnglishText(key));
  if (const auto at = text.find("%s"); at != std::string::npos) text.replace(at, 2, arg);
  diagnostic(text);
}

// Steps 4 to 6 of the flow without a document: the plan itself.
int generatePlan(const std::string& prompt, std::string backend, const std::optional<std::string>& out) {
  CloudSetup setup;
  if (backend == "cloud") setup = openCloud();
  if (backend == "cloud" && setup.quota.limited && setup.quota.remaining <= 0) {
    logKey(ai::kKeyQuotaReached);
    backend = "offline";
  }
  const ai::CloudCall cloud = backend == "cloud" ? setup.call : ai::CloudCall{};
  logKey(ai::kKeyRunning, backend);
  if (backend == "cloud" && setup.quota.limited) logKey(ai::kKeyQuotaRemaining, std::to_string(setup.quota.remaining));
  if (backend == "cloud" && !cloud) diagnostic(kCloudNotConfigured);
  if (!cloud) logKey(ai::kKeyOfflineHint);

  ai::DiagramPlan plan;
  std::string log;
  const bool fromCloud = cloud && ai::GeneratePlanWithCloud(prompt, nullptr, plan, log, cloud);
  for (const std::string& why : *setup.failures) diagnostic(why);
  if (cloud && !fromCloud && log.empty()) diagnostic(kCloudFailed);
  for (std::size_t start = 0; start < log.size();) {
    const std::size_t eol = std::min(log.find('\n', start), log.size());
    if (eol > start) diagnostic(log.substr(start, eol - start));
    start = eol + 1;
  }
  if (!fromCloud) plan = ai::InterpretText(prompt);
  ai::NormalizeActivityPlan(prompt, plan);
  if (!plan.notes.empty()) diagnostic(plan.notes);
  if (plan.nodes.empty()) {
    diagnostic(kNoEntities);
    return kExitNegative;
  }
  writeResult(out, ai::WritePlan(plan));
  return kExitOk;
}

int run(const Args& args) {
  const core::DiagramKind kind = kindFromKey(args.value(kKindOption.name).value_or("bdd"));
  const std::string backend = args.value("--backend").value_or("offline");
  if (backend != "offline" && backend != "cloud")
    throw CliError("unknown backend '" + backend + "' (backends: offline, cloud)");
  const std::string prompt = textArgument(args.positionals);
  if (isBlank(prompt)) throw CliError("the description is empty");
  std::optional<bridge::LayoutAlgorithm> layout;
  if (const auto name = args.value("--layout")) {
    if (*name == "layered") layout = bridge::LayoutAlgorithm::layered;
    else if (*name == "organic") layout = bridge::LayoutAlgorithm::organic;
    else throw CliError("unknown layout algorithm '" + *name + "' (algorithms: layered, organic)");
  }

  if (args.has("--plan")) return generatePlan(prompt, backend, args.value("--output"));

  core::Document doc;
  doc.frame().kind = kind;
  ai::GenerateRequest request;
  request.document = &doc;
  request.kind = kind;
  request.prompt = prompt;
  request.backend = backend;
  CloudSetup setup;
  if (backend == "cloud") setup = openCloud();
  request.cloud = setup.call;
  request.quota = setup.quota;
  request.layout = layout;
  const ai::GenerateResult result = ai::RunAiGenerate(request);
  for (const ai::LogEntry& entry : result.log) {
    // The reason comes just before the flow says it falls back.
    if (entry.text == kCloudFailed)
      for (const std::string& why : *setup.failures) diagnostic(why);
    diagnostic(entry.text);
  }
  if (!result.applied) {
    if (!result.log.empty() && result.log.back().text == kNoEntities) return kExitNegative;
    throw CliError("nothing was generated");
  }
  writeResult(args.value("--output"), io::serializeDocument(doc));
  return kExitOk;
}

}  // namespace

const Command& generateCommand() {
  static const Command command{"generate", "turn a plain-language description into a model", kHelp,
                               kOptions, false, run};
  return command;
}

}  // namespace modelyne::cli
