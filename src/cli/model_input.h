#pragma once
/// Opening the model a command works on: FILE (or "-") read whole, a bare
/// diagram or a project wrapper; the active model, or the one `--model ID`
/// names; its kind from the diagram frame unless `--kind KEY` overrides it.
/// Errors become CliError naming the file and the line of the fault within
/// the file (also inside a wrapper's embedded diagrams).

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/args.h"
#include "core/diagram_kind.h"
#include "core/document.h"
#include "core/project.h"
#include "io/diagram_reader.h"

namespace modelyne::cli {

/// The options every model-reading command shares.
inline constexpr OptionSpec kModelOption{"--model", "", "ID"};
inline constexpr OptionSpec kKindOption{"--kind", "", "KEY"};

/// A model file read whole.
struct ModelFile {
  std::string name;  ///< as given, or "<stdin>"
  std::string text;
  core::Project project;  ///< at least one model
  bool wrapped = false;   ///< the file is a project wrapper
};

/// Reads and splits FILE; throws CliError when it is unreadable or the
/// wrapper is malformed.
ModelFile openModel(std::string_view arg);

/// The index of the model `--model ID` names, or the active one (clamped).
std::size_t selectModel(const ModelFile& file, const std::optional<std::string>& modelId);

/// The diagram of model `index` read whole; warnings (skipped elements) go
/// to standard error. Throws CliError with FILE:LINE on a fault.
io::DiagramContent readModelDiagram(const ModelFile& file, std::size_t index);

/// The line of the file on which model `index`'s diagram text starts.
unsigned diagramFirstLine(const ModelFile& file, std::size_t index);

/// The kind `--kind KEY` names; CliError for an unknown key.
core::DiagramKind kindFromKey(std::string_view key);

/// What most commands need: the selected model loaded into a document whose
/// frame kind already reflects `--kind`.
struct LoadedModel {
  ModelFile file;
  std::size_t index = 0;
  std::unique_ptr<core::Document> doc;
};

/// openModel + selectModel + readModelDiagram + the kind override, from the
/// command's first positional and its --model / --kind options (when the
/// command declares them).
LoadedModel loadModel(const Args& args, std::string_view fileArg);

}  // namespace modelyne::cli
