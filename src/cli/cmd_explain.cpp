// modelyne explain: the plain-English explanation of one diagram.
#include <array>

#include "cli/commands.h"
#include "cli/model_input.h"
#include "cli/output.h"
#include "explain/explain.h"

namespace modelyne::cli {

namespace {

constexpr std::array kOptions{kModelOption, OptionSpec{"--csv", "", ""},
                              OptionSpec{"--output", "-o", "OUT"}};

constexpr std::string_view kHelp =
    "usage: modelyne explain FILE [--csv] [-o OUT] [--model ID]\n"
    "\n"
    "Explains the diagram in Markdown, or as CSV (\"Section,Detail\") with --csv.\n"
    "Writes to standard output, or to OUT.\n"
    "\n"
    "example:\n"
    "  modelyne explain model.xml --csv -o model.csv\n";

int run(const Args& args) {
  expectPositionals(args, 1, 1, "explain", "a FILE");
  LoadedModel model = loadModel(args, args.positionals[0]);
  const auto explanation = explain::explainDiagram(model.doc->nodes(), model.doc->edges());
  std::string text = explain::renderMarkdown(explanation);
  if (args.has("--csv")) text = explain::markdownToCsv(text);
  writeResult(args.value("--output"), text);
  return kExitOk;
}

}  // namespace

const Command& explainCommand() {
  static const Command command{"explain", "explain a diagram in Markdown or CSV", kHelp, kOptions,
                               false, run};
  return command;
}

}  // namespace modelyne::cli
