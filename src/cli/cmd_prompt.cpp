// modelyne prompt: the exact prompt texts the cloud AI receives.
#include <array>
#include <span>

#include "ai/plan.h"
#include "ai/plan_apply.h"
#include "ai/prompts.h"
#include "cli/commands.h"
#include "cli/model_input.h"
#include "cli/output.h"
#include "cli/text_argument.h"
#include "io/project_file.h"

namespace modelyne::cli {

namespace {

constexpr std::array kOptions{kModelOption};

constexpr std::string_view kHelp =
    "usage: modelyne prompt generate TEXT...\n"
    "       modelyne prompt refine PLANFILE TEXT...\n"
    "\n"
    "Prints the prompt that the cloud AI receives: for generating a diagram\n"
    "from a description, or for refining the current model. PLANFILE holds\n"
    "plan text, or is a model file whose diagram (--model ID in a project)\n"
    "is written as a plan. TEXT is the words given, or standard input for \"-\".\n"
    "\n"
    "examples:\n"
    "  modelyne prompt generate 'The drone contains a battery and a motor.'\n"
    "  modelyne prompt refine model.xml 'add more detail'\n";

bool looksLikeModelFile(std::string_view text) {
  return io::isProjectWrapper(text) || text.find("<diagram") != std::string_view::npos;
}

ai::DiagramPlan currentPlan(const Args& args, const std::string& planFile) {
  InputText input = readInput(planFile);
  if (looksLikeModelFile(input.text)) {
    const ModelFile file = openModel(std::move(input), args.value(kModelOption.name), false);
    return ai::PlanFromDocument(file.document(file.selected)).plan;
  }
  if (args.has(kModelOption.name)) throw CliError("--model applies to a model file, not to plan text");
  ai::DiagramPlan plan;
  if (!ai::ParsePlan(input.text, plan))
    throw CliError(located(input.name, 0, "no plan found (no valid NODE line)"));
  return plan;
}

int run(const Args& args) {
  expectPositionals(args, 1, static_cast<std::size_t>(-1), "prompt", "'generate' or 'refine'");
  const std::string& which = args.positionals[0];
  const std::span<const std::string> rest = std::span(args.positionals).subspan(1);
  if (which == "generate") {
    if (args.has(kModelOption.name)) throw CliError("--model applies to 'prompt refine'");
    writeResult(std::nullopt, ai::BuildGeneratePrompt(textArgument(rest)));
    return kExitOk;
  }
  if (which == "refine") {
    if (rest.empty()) throw CliError("prompt refine needs a PLANFILE and a TEXT (try 'modelyne prompt --help')");
    const ai::DiagramPlan plan = currentPlan(args, rest[0]);
    writeResult(std::nullopt, ai::BuildRefinePrompt(plan, textArgument(rest.subspan(1))));
    return kExitOk;
  }
  throw CliError("unknown prompt '" + which + "' (prompts: generate, refine)");
}

}  // namespace

const Command& promptCommand() {
  static const Command command{"prompt", "print the cloud AI prompt for a request", kHelp, kOptions,
                               false, run};
  return command;
}

}  // namespace modelyne::cli
