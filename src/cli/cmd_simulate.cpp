// modelyne simulate: runs an activity, sequence or state machine diagram
// and prints its trace.
#include <array>
#include <charconv>
#include <string>
#include <system_error>

#include "cli/commands.h"
#include "cli/model_input.h"
#include "cli/output.h"
#include "cli/var_option.h"
#include "sim/behaviour_roles.h"
#include "sim/simulation.h"

namespace modelyne::cli {

namespace {

namespace sim = core::sim;

// Longest run the tool accepts: about a second per million steps.
constexpr std::uint64_t kMaxStepsCeiling = 10000000;

constexpr std::array kOptions{
    OptionSpec{"--choose", "", "NODE=EDGE", true}, OptionSpec{"--var", "", "NAME=VALUE", true},
    OptionSpec{"--loop", "", "ID=N", true},        OptionSpec{"--events", "", "E1,E2,..."},
    OptionSpec{"--max-steps", "", "N"},            OptionSpec{"--format", "", "text|jsonl"},
    kModelOption,                                  kKindOption};

constexpr std::string_view kHelp =
    "usage: modelyne simulate FILE [--choose NODE=EDGE]... [--var NAME=VALUE]...\n"
    "                         [--loop ID=N]... [--events E1,E2,...] [--max-steps N]\n"
    "                         [--format text|jsonl] [--model ID] [--kind KEY]\n"
    "\n"
    "Runs the diagram and prints its trace, one event per line. The kind decides:\n"
    "\"act\" (and any other kind with activity nodes) moves tokens along flows in\n"
    "rounds, \"sd\" sends the messages top to bottom through their fragments,\n"
    "\"stm\" offers the --events to the state machine in turn.\n"
    "  --choose NODE=EDGE  the flow (or transition) a decision takes; repeated for\n"
    "                      the same node: one per visit, the last one kept. For a\n"
    "                      combined fragment, the operand number (0: none).\n"
    "  --var NAME=VALUE    a value for guards, over the diagram's value properties\n"
    "  --loop ID=N         how often the loop fragment ID runs (default 1)\n"
    "  --max-steps N       rounds, messages or events at most (default 10000)\n"
    "  --format jsonl      one JSON object per line instead of\n"
    "                      STEP<TAB>EVENT<TAB>ID<TAB>IN<TAB>OUT<TAB>DETAIL\n"
    "\n"
    "exit status: 0 completed; 1 stalled or step limit; 2 error.\n"
    "\n"
    "examples:\n"
    "  modelyne simulate samples/act-order-fulfilment.xml --choose inStock=e6\n"
    "  modelyne simulate samples/stm-door-controller.xml --events openCmd,fullyOpen --var unlocked=1\n"
    "  modelyne simulate samples/sd-atm-withdrawal.xml --choose alt=1 --format jsonl\n";

std::pair<std::string, std::string> split(const std::string& spec, std::string_view option, std::string_view form) {
  const auto eq = spec.find('=');
  if (eq == std::string::npos || eq == 0 || eq + 1 == spec.size())
    throw CliError("invalid " + std::string(option) + " '" + spec + "' (expected " + std::string(form) + ")");
  return {spec.substr(0, eq), spec.substr(eq + 1)};
}

template <typename T>
bool parseWhole(std::string_view text, T& value) {
  const auto r = std::from_chars(text.data(), text.data() + text.size(), value);
  return !text.empty() && r.ec == std::errc() && r.ptr == text.data() + text.size();
}

sim::SimulationOptions optionsFrom(const Args& args) {
  sim::SimulationOptions o;
  for (const std::string& spec : args.values("--choose")) {
    auto [node, edge] = split(spec, "--choose", "NODE=EDGE");
    o.choices[node].push_back(edge);
  }
  for (auto& [name, value] : varOptions(args)) o.values[name] = value;
  for (const std::string& spec : args.values("--loop")) {
    const auto [id, text] = split(spec, "--loop", "ID=N");
    std::uint64_t n = 0;
    if (!parseWhole(text, n)) throw CliError("invalid --loop '" + spec + "' (N must be a whole number)");
    o.loops[id] = n;
  }
  if (const auto events = args.value("--events")) {
    std::string_view rest = *events;
    while (!rest.empty()) {
      const auto comma = rest.find(',');
      std::string_view one = rest.substr(0, comma);
      while (!one.empty() && one.front() == ' ') one.remove_prefix(1);
      while (!one.empty() && one.back() == ' ') one.remove_suffix(1);
      if (!one.empty()) o.events.emplace_back(one);
      if (comma == std::string_view::npos) break;
      rest.remove_prefix(comma + 1);
    }
  }
  if (const auto max = args.value("--max-steps")) {
    if (!parseWhole(std::string_view(*max), o.maxSteps) || o.maxSteps > kMaxStepsCeiling)
      throw CliError("invalid --max-steps '" + *max + "' (expected a whole number up to " +
                     std::to_string(kMaxStepsCeiling) + ")");
  }
  return o;
}

int run(const Args& args) {
  expectPositionals(args, 1, 1, "simulate", "FILE");
  const std::string format = args.value("--format").value_or("text");
  if (format != "text" && format != "jsonl")
    throw CliError("invalid --format '" + format + "' (expected text or jsonl)");
  sim::SimulationOptions options = optionsFrom(args);

  LoadedModel model = loadModel(args, args.positionals[0]);
  const core::Document& doc = *model.doc;
  const core::DiagramKind kind = doc.frame().kind;
  const sim::SimulationKind simKind = sim::simulationKindFor(kind);
  if (simKind == sim::SimulationKind::activity && kind != core::DiagramKind::act) {
    bool any = false;
    for (const core::Node& n : doc.nodes()) any = any || sim::activityRole(n.type) != sim::ActivityRole::none;
    if (!any)
      throw CliError(located(model.file.name, 0,
                             "nothing to simulate: a " + std::string(core::diagramKindDisplayName(kind)) +
                                 " without activity nodes"));
  }

  // Events are written as they happen, so long runs keep no trace in memory.
  std::string out;
  const bool jsonl = format == "jsonl";
  options.sink = [&out, jsonl](const sim::TraceEvent& e) {
    out += jsonl ? sim::formatJsonLine(e) : sim::formatTextLine(e);
  };
  auto simulation = sim::makeSimulation(simKind, doc.nodes(), doc.edges(), std::move(options));
  for (const sim::SimulationProblem& p : simulation->problems())
    if (p.option) throw CliError(p.message);
  for (const sim::SimulationProblem& p : simulation->problems())
    diagnostic("modelyne: warning: " + located(model.file.name, 0, p.message));
  const sim::RunStatus status = simulation->run();
  writeResult(std::nullopt, out);
  return status == sim::RunStatus::completed ? kExitOk : kExitNegative;
}

}  // namespace

const Command& simulateCommand() {
  static const Command command{"simulate", "run an activity, sequence or state machine and print its trace",
                               kHelp, kOptions, false, run};
  return command;
}

}  // namespace modelyne::cli
