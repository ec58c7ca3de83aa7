#pragma once
/// Opening the model a command works on: FILE (or "-") read whole and opened
/// by the one io function the editor uses too; the active model, or the one
/// `--model ID` names; its kind from the diagram frame unless `--kind KEY`
/// overrides it. Warnings go to standard error and errors become CliError,
/// each printed once as "FILE:LINE: WHAT" from the diagnostic's fields.

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/args.h"
#include "cli/output.h"
#include "core/diagram_kind.h"
#include "core/document.h"
#include "core/project.h"
#include "io/diagnostic.h"
#include "io/model_file.h"

namespace modelyne::cli {

/// The options every model-reading command shares.
inline constexpr OptionSpec kModelOption{"--model", "", "ID"};
inline constexpr OptionSpec kKindOption{"--kind", "", "KEY"};

/// A model file opened.
struct ModelFile {
  std::string name;          ///< as given, or "<stdin>"
  std::string text;          ///< the bytes read, for looking an element up again
  /// At least one model; active clamped. A model without a document keeps
  /// its diagram text verbatim in diagramXml, so that writing the project
  /// back loses nothing; a model with one has it empty.
  core::Project project;
  bool wrapped = false;      ///< the file is a project wrapper
  std::size_t selected = 0;  ///< the model --model names, else the active one
  /// One per model; null for a model that was not read (see `allModels`).
  std::vector<std::unique_ptr<core::Document>> documents;
  std::vector<io::ModelPlace> places;  ///< where each model stands in `text`

  /// The document of model `index`.
  core::Document& document(std::size_t index) const { return *documents.at(index); }
  /// Model `index`'s diagram text, a view into `text` (empty when it has none).
  std::string_view diagramText(std::size_t index) const;
};

/// The line of the file on which model `index`'s diagram text starts.
unsigned diagramFirstLine(const ModelFile& file, std::size_t index);

/// "FILE:LINE: WHAT" of a diagnostic ("FILE: WHAT" without a line).
std::string located(const io::Diagnostic& d, std::string_view fallbackFile);

/// Opens `input` (already read); `modelId` selects a model; `allModels`
/// reads every model's diagram, else only the selected one. Prints the
/// warnings; throws CliError on a fault.
ModelFile openModel(InputText input, const std::optional<std::string>& modelId, bool allModels);

/// The same, reading FILE (or "-") first.
ModelFile openModel(std::string_view arg, const std::optional<std::string>& modelId, bool allModels);

/// The kind `--kind KEY` names; CliError for an unknown key.
core::DiagramKind kindFromKey(std::string_view key);

/// What most commands need: the selected model loaded into a document whose
/// frame kind already reflects `--kind`.
struct LoadedModel {
  ModelFile file;
  std::size_t index = 0;
  std::unique_ptr<core::Document> doc;  ///< taken from `file.documents`
};

/// openModel of the selected model only, with the kind override, from the
/// command's first positional and its --model / --kind options.
LoadedModel loadModel(const Args& args, std::string_view fileArg);

}  // namespace modelyne::cli
