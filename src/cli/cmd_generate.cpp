// modelyne generate: a plain-language description turned into a model file
// (or into plan text) by the AI Generate flow.
#include <array>

#include "ai/activity.h"
#include "ai/cloud_plan.h"
#include "ai/generate_flow.h"
#include "ai/interpreter.h"
#include "ai/plan.h"
#include "cli/commands.h"
#include "cli/model_input.h"
#include "cli/output.h"
#include "cli/text_argument.h"
#include "io/diagram_writer.h"

namespace modelyne::cli {

namespace {

constexpr std::array kOptions{kKindOption, OptionSpec{"--plan", "", ""},
                              OptionSpec{"--output", "-o", "OUT"}, OptionSpec{"--backend", "", "NAME"}};

constexpr std::string_view kHelp =
    "usage: modelyne generate [TEXT...|-] [--kind KEY] [--plan] [-o OUT]\n"
    "                         [--backend offline|cloud]\n"
    "\n"
    "Turns a plain-language description (the words given, or standard input)\n"
    "into a new model file whose diagram, of kind KEY (default bdd), holds the\n"
    "generated elements; with --plan prints the plan text instead. The offline\n"
    "backend (default) uses the built-in interpreter; the cloud backend falls\n"
    "back to it when no cloud AI is reachable. The flow's log lines and the\n"
    "plan's notes go to standard error.\n"
    "\n"
    "exit status: 0 done; 1 no entity found; 2 error.\n"
    "\n"
    "examples:\n"
    "  modelyne generate 'The drone contains a battery and a motor.' -o drone.xml\n"
    "  echo 'Step-by-step: order, pay, ship.' | modelyne generate --kind act --plan\n";

constexpr std::string_view kNoEntities = "AI Generate: no named entities found.";

// The tool has no cloud AI client; the flow then takes its offline path and
// says so in its log.
ai::CloudCall cloudClient() { return {}; }

bool isBlank(std::string_view s) {
  return s.find_first_not_of(" \t\r\n\v\f") == std::string_view::npos;
}

int generatePlan(const std::string& prompt, const std::string& backend,
                 const std::optional<std::string>& out) {
  const ai::CloudCall cloud = backend == "cloud" ? cloudClient() : ai::CloudCall{};
  ai::DiagramPlan plan;
  std::string log;
  const bool fromCloud = cloud && ai::GeneratePlanWithCloud(prompt, nullptr, plan, log, cloud);
  if (!fromCloud) plan = ai::InterpretText(prompt);
  ai::NormalizeActivityPlan(prompt, plan);
  if (!log.empty()) diagnostic(log.back() == '\n' ? log.substr(0, log.size() - 1) : log);
  if (!plan.notes.empty()) diagnostic(plan.notes);
  if (plan.nodes.empty()) {
    diagnostic(std::string(kNoEntities) +
               " Name components such as System, Subsystem, Component, Interface, Actor.");
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
  if (backend == "cloud" && !cloudClient()) diagnostic("modelyne: no cloud AI is configured");

  if (args.has("--plan")) return generatePlan(prompt, backend, args.value("--output"));

  core::Document doc;
  doc.frame().kind = kind;
  ai::GenerateRequest request;
  request.document = &doc;
  request.kind = kind;
  request.prompt = prompt;
  request.backend = backend;
  request.cloud = backend == "cloud" ? cloudClient() : ai::CloudCall{};
  const ai::GenerateResult result = ai::RunAiGenerate(request);
  bool noEntities = false;
  for (const ai::LogEntry& entry : result.log) {
    diagnostic(entry.text);
    if (entry.text.starts_with(kNoEntities)) noEntities = true;
  }
  if (!result.applied) {
    if (noEntities) return kExitNegative;
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
