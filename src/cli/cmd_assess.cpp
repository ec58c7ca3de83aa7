// modelyne assess: the methodology assessment report of one diagram.
#include <array>

#include "check/assessment.h"
#include "cli/commands.h"
#include "cli/model_input.h"
#include "cli/output.h"

namespace modelyne::cli {

namespace {

constexpr std::array kOptions{kModelOption};

constexpr std::string_view kHelp =
    "usage: modelyne assess FILE [--model ID]\n"
    "\n"
    "Prints the methodology assessment of the diagram: how many elements fall\n"
    "into each of the five pillars, and how well requirements are satisfied\n"
    "and verified and behaviours allocated to structure.\n"
    "\n"
    "example:\n"
    "  modelyne assess model.xml > assessment.txt\n";

int run(const Args& args) {
  expectPositionals(args, 1, 1, "assess", "a FILE");
  LoadedModel model = loadModel(args, args.positionals[0]);
  const auto metrics = check::computeAssessment(model.doc->nodes(), model.doc->edges());
  writeResult(std::nullopt, check::formatAssessment(metrics));
  return kExitOk;
}

}  // namespace

const Command& assessCommand() {
  static const Command command{"assess", "print the methodology assessment report", kHelp, kOptions,
                               false, run};
  return command;
}

}  // namespace modelyne::cli
