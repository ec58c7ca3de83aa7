// modelyne plan: plan text read and written back in canonical form.
#include <array>

#include "ai/plan.h"
#include "cli/commands.h"
#include "cli/output.h"

namespace modelyne::cli {

namespace {

constexpr std::array<OptionSpec, 0> kOptions{};

constexpr std::string_view kHelp =
    "usage: modelyne plan [FILE|-]\n"
    "\n"
    "Reads diagram plan text (TITLE|, NODE|id|kind|label and\n"
    "EDGE|source|target|kind|label lines; other lines are ignored) from FILE or\n"
    "standard input and prints it in canonical form: chatter and malformed\n"
    "lines removed, kind words as the plan format spells them, repeated nodes\n"
    "and edges to unknown nodes dropped. The parser's notes go to standard\n"
    "error.\n"
    "\n"
    "exit status: 0 done; 1 no valid NODE line; 2 error.\n"
    "\n"
    "example:\n"
    "  printf 'NODE|n1|block|Pump\\nNODE|n2|block|Tank\\nEDGE|n1|n2|flow\\n' | modelyne plan\n";

int run(const Args& args) {
  expectPositionals(args, 0, 1, "plan", "a FILE");
  if (args.positionals.empty() && stdinIsTerminal())
    throw CliError("no plan given (pass a FILE, or pipe the plan text in)");
  const InputText input = readInput(args.positionals.empty() ? "-" : args.positionals[0]);
  ai::DiagramPlan plan;
  if (!ai::ParsePlan(input.text, plan)) {
    diagnostic("modelyne: " + located(input.name, 0, "no plan found (no valid NODE line)"));
    return kExitNegative;
  }
  writeResult(std::nullopt, ai::WritePlan(plan));
  if (!plan.notes.empty()) diagnostic(plan.notes);
  return kExitOk;
}

}  // namespace

const Command& planCommand() {
  static const Command command{"plan", "read plan text and write it in canonical form", kHelp,
                               kOptions, false, run};
  return command;
}

}  // namespace modelyne::cli
