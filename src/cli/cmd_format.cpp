// modelyne format: a model file rewritten in the canonical form Save writes.
#include <array>

#include "cli/commands.h"
#include "cli/model_input.h"
#include "cli/output.h"
#include "cli/text_check.h"
#include "io/diagram_writer.h"
#include "io/project_file.h"

namespace modelyne::cli {

namespace {

constexpr std::array kOptions{OptionSpec{"--output", "-o", "OUT"}};

constexpr std::string_view kHelp =
    "usage: modelyne format FILE [-o OUT]\n"
    "\n"
    "Reads a model file and writes it back in the canonical form the editor\n"
    "saves: fixed attribute order and indentation, properties sorted, numbers\n"
    "with six significant digits, a frame line on every diagram. Every model\n"
    "of a project is rewritten; a project of one model is written as a bare\n"
    "diagram. OUT may be FILE itself: it is replaced only when all went well.\n"
    "\n"
    "example:\n"
    "  modelyne format model.xml -o model.xml && git diff model.xml\n";

int run(const Args& args) {
  expectPositionals(args, 1, 1, "format", "a FILE");
  ModelFile file = openModel(args.positionals[0], std::nullopt, true);
  std::size_t unwritable = 0;
  for (std::size_t i = 0; i < file.project.models.size(); ++i) {
    core::Model& model = file.project.models[i];
    // A model without diagram text gets a full empty diagram too, so that a
    // second run changes nothing.
    const core::Document& doc = file.document(i);
    unwritable += warnAboutUnwritableText(file, i, doc);
    model.diagramXml = io::serializeDocument(doc);
    model.frame = doc.frame();
  }
  // Every model has its text now; the open document is not consulted.
  const core::Document empty;
  writeResult(args.value("--output"), io::serializeProject(file.project, empty));
  return unwritable > 0 ? kExitNegative : kExitOk;
}

}  // namespace

const Command& formatCommand() {
  static const Command command{"format", "rewrite a model file in canonical form", kHelp, kOptions,
                               false, run};
  return command;
}

}  // namespace modelyne::cli
