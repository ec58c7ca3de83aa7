// modelyne info: what a model file holds, model by model.
#include <array>

#include "cli/commands.h"
#include "cli/model_input.h"
#include "cli/output.h"

namespace modelyne::cli {

namespace {

constexpr std::array kOptions{kModelOption};

constexpr std::string_view kHelp =
    "usage: modelyne info FILE [--model ID]\n"
    "\n"
    "Summarises a model file: for each model (or the one --model names) its\n"
    "kind, node and edge counts, diagram frame and data-integration links.\n"
    "\n"
    "example:\n"
    "  modelyne info project.xml\n";

std::string quote(std::string_view s) { return "\"" + std::string(s) + "\""; }

void describeModel(std::string& out, const ModelFile& file, std::size_t index, bool active) {
  const core::Model& model = file.project.models[index];
  const core::Document& doc = file.document(index);
  const core::DiagramFrame& frame = doc.frame();
  out += "model " + model.id + " " + quote(model.name) + (active ? " (active)" : "") + "\n";
  out += "  kind: " + std::string(core::diagramKindKey(frame.kind)) + " (" +
         std::string(core::diagramKindDisplayName(frame.kind)) + ")\n";
  out += "  nodes: " + std::to_string(doc.nodes().size()) + "\n";
  out += "  edges: " + std::to_string(doc.edges().size()) + "\n";
  out += "  frame: " + frame.elementType + " " + quote(frame.elementName) + ", name " +
         quote(frame.name) + ", " + (frame.show ? "shown" : "hidden") + "\n";
  out += "  data-integration links: " + std::to_string(doc.links().size()) + "\n";
  for (const core::DataIntegrationLink& link : doc.links())
    out += "    " + link.id + " (" + link.type + "): " + link.path + " " + quote(link.label) + "\n";
}

int run(const Args& args) {
  expectPositionals(args, 1, 1, "info", "a FILE");
  const std::optional<std::string> modelId = args.value(kModelOption.name);
  const ModelFile file = openModel(args.positionals[0], modelId, !modelId);
  const auto active = static_cast<std::size_t>(file.project.active);
  const auto& models = file.project.models;

  std::string out = "file: " + file.name;
  if (file.wrapped)
    out += " (project " + quote(file.project.name) + ", " + std::to_string(models.size()) +
           (models.size() == 1 ? " model)" : " models)");
  else
    out += " (diagram)";
  out += "\n";

  if (modelId) {
    const std::size_t index = file.selected;
    describeModel(out, file, index, index == active);
  } else {
    for (std::size_t i = 0; i < models.size(); ++i) describeModel(out, file, i, i == active);
  }
  writeResult(std::nullopt, out);
  return kExitOk;
}

}  // namespace

const Command& infoCommand() {
  static const Command command{"info", "summarise the models of a model file", kHelp, kOptions,
                               false, run};
  return command;
}

}  // namespace modelyne::cli
