// modelyne check: the validation findings of one diagram.
#include <array>
#include <stdexcept>

#include "check/validate.h"
#include "cli/commands.h"
#include "cli/json.h"
#include "cli/model_input.h"
#include "cli/output.h"

namespace modelyne::cli {

namespace {

constexpr std::array kOptions{kKindOption, kModelOption, OptionSpec{"--format", "", "FORMAT"}};

constexpr std::string_view kHelp =
    "usage: modelyne check FILE [--kind KEY] [--model ID] [--format text|json]\n"
    "\n"
    "Checks the diagram against the rules of its notation and kind and prints\n"
    "each finding on its own line, in order (json: an array of strings).\n"
    "The kind is the diagram frame's (\"pkg\" when the file has none) unless\n"
    "--kind names another: bdd ibd pkg par act sd stm uc req test mm.\n"
    "\n"
    "exit status: 0 no findings, 1 findings, 2 error.\n"
    "\n"
    "example:\n"
    "  modelyne check model.xml --kind bdd || echo \"model has findings\"\n";

int run(const Args& args) {
  expectPositionals(args, 1, 1, "check", "a FILE");
  const std::string format = args.value("--format").value_or("text");
  if (format != "text" && format != "json")
    throw CliError("unknown format '" + format + "' (formats: text, json)");

  LoadedModel model = loadModel(args, args.positionals[0]);
  std::vector<std::string> findings;
  try {
    check::validateDiagram(*model.doc, model.doc->frame().kind, findings);
  } catch (const std::logic_error& e) {
    // A combined fragment with a non-numeric operand count stops the checker.
    throw CliError(located(model.file.name, 0, e.what()));
  }

  std::string out;
  if (format == "json") {
    out = jsonStringArray(findings);
  } else {
    for (const std::string& f : findings) out += f + "\n";
  }
  writeResult(std::nullopt, out);
  return findings.empty() ? kExitOk : kExitNegative;
}

}  // namespace

const Command& checkCommand() {
  static const Command command{"check", "check a diagram against the rules of its kind", kHelp,
                               kOptions, false, run};
  return command;
}

}  // namespace modelyne::cli
