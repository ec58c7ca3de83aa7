// modelyne layout: a model's diagram laid out automatically (layered or
// organic) and the model file written back.
#include <array>

#include "bridge/bridge.h"
#include "cli/commands.h"
#include "cli/model_input.h"
#include "cli/output.h"
#include "io/diagram_writer.h"
#include "io/project_file.h"

namespace modelyne::cli {

namespace {

constexpr std::array kOptions{kModelOption, OptionSpec{"--algorithm", "", "NAME"}, OptionSpec{"--output", "-o", "OUT"}};

constexpr std::string_view kHelp =
    "usage: modelyne layout FILE [--algorithm layered|organic] [--model ID] [-o OUT]\n"
    "\n"
    "Lays out the diagram of a model (the active one, or the one --model\n"
    "names) and writes the model file back, to standard output or to OUT\n"
    "(which may be FILE itself). Only rectangles change: edges keep their\n"
    "anchors, nodes drawn inside a container stay inside it, ports stay on\n"
    "their host's side and sequence diagrams keep their order. The layered\n"
    "layout (default) suits hierarchies and flows, the organic one networks\n"
    "and mind maps. A diagram that cannot be laid out is written unchanged\n"
    "and the reason goes to standard error.\n"
    "\n"
    "exit status: 0 laid out; 1 left as it was; 2 error.\n"
    "\n"
    "example:\n"
    "  modelyne layout imported.xml --algorithm organic -o imported.xml\n";

int run(const Args& args) {
  expectPositionals(args, 1, 1, "layout", "a FILE");
  const std::string algorithm = args.value("--algorithm").value_or("layered");
  if (algorithm != "layered" && algorithm != "organic")
    throw CliError("unknown layout algorithm '" + algorithm + "' (algorithms: layered, organic)");
  LoadedModel loaded = loadModel(args, args.positionals[0]);
  const bridge::LayoutOutcome outcome = bridge::layoutDocument(
      loaded.doc.get(), algorithm == "organic" ? bridge::LayoutAlgorithm::organic : bridge::LayoutAlgorithm::layered);
  if (!outcome.laidOut) diagnostic(loaded.file.name + ": left as it was: " + asClause(outcome.reason));
  core::Model& model = loaded.file.project.models[loaded.index];
  model.diagramXml = io::serializeDocument(*loaded.doc);
  model.frame = loaded.doc->frame();
  const core::Document empty;
  writeResult(args.value("--output"), io::serializeProject(loaded.file.project, empty));
  return outcome.laidOut ? kExitOk : kExitNegative;
}

}  // namespace

const Command& layoutCommand() {
  static const Command command{"layout", "lay out a model's diagram automatically", kHelp, kOptions, false, run};
  return command;
}

}  // namespace modelyne::cli
