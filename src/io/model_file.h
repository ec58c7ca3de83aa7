#pragma once
/// Opening and saving model files (".xml"): a bare diagram or a project
/// wrapper. Opening is one function for every face (the editor, the tool):
/// it splits the file into its models, reads their diagrams straight into
/// documents in one pass each, and reports warnings and errors with file,
/// line and element in fields.
///
///   io::OpenOptions o; o.migrateSidecar = true;      // the editor
///   io::OpenedModelFile f = io::openModelFile(path, o);
///   if (f.error) show(*f.error);                      // what, line, element, file
///   for (auto& w : f.warnings) show(w);
///   core::Document& doc = *f.documents[f.selected];
///
///   std::string err;
///   io::saveModelFile(path, project, doc, &err);   // refreshes the active model's cache
///
/// Open is all or nothing: on any error the result holds no content.
/// Save writes a temporary file beside the target and renames it over.

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/document.h"
#include "core/project.h"
#include "io/atomic_file.h"
#include "io/diagnostic.h"

namespace modelyne::io {

/// One line for the output log: a message key, its English text (already
/// formatted) and the values formatted into it.
struct LogLine {
  std::string key;
  std::string text;
  std::vector<std::string> args;
};

inline constexpr const char* kLogDiMigrated = "ui.log.di_migrated";
inline constexpr const char* kLogDiSaveFailed = "ui.log.di_save_failed";
inline constexpr const char* kLogDiLoadedFmt = "ui.log.di_loaded_fmt";
/// A skipped element (duplicate or empty id) while reading; %1 is the warning.
inline constexpr const char* kLogLoadSkipped = "ui.log.load_skipped";

struct OpenOptions {
  /// Names the file in diagnostics; openModelFile uses the path when empty.
  std::string fileName;
  /// False: only the selected model gets a document (a command that works
  /// on one model does not read the others).
  bool allModels = true;
  /// Selects the model with this id (the first of equal ids) instead of the
  /// active one; an id no model has is an error.
  std::optional<std::string> modelId;
  /// openModelFile: moves a legacy sidecar's links into the file.
  bool migrateSidecar = false;
  /// openModelFile: a larger file is refused.
  std::uint64_t maxBytes = kDefaultMaxInputBytes;
};

/// Where one model stands in the text that was opened.
struct ModelPlace {
  std::size_t tagLine = 1;      ///< line of its <modelyneModel> tag (1 for a bare diagram)
  std::size_t diagramLine = 1;  ///< line on which its diagram text starts
  std::size_t offset = 0;       ///< its diagram text within the opened text ...
  std::size_t size = 0;         ///< ... and its length (0: the model has none)
};

struct OpenedModelFile {
  core::Project project;  ///< at least one model when there is no error; active clamped; diagramXml empty
  bool wrapped = false;   ///< the file held a project wrapper
  std::size_t selected = 0;  ///< the model `modelId` names, else the active one
  /// One per model, each holding that model's diagram; null for a model
  /// that was not read (`allModels` false).
  std::vector<std::unique_ptr<core::Document>> documents;
  std::vector<ModelPlace> places;       ///< one per model, for callers that keep the text
                                        ///< and look an element up again
  std::vector<Diagnostic> warnings;     ///< in file order per model
  std::vector<LogLine> log;             ///< migration and link count lines
  std::optional<Diagnostic> error;      ///< set: nothing was opened
};

/// Reads `path` (bare diagram or wrapper), and with `migrateSidecar` moves a
/// legacy sidecar into the file when the selected diagram has no
/// data-integration block.
OpenedModelFile openModelFile(const std::filesystem::path& path, const OpenOptions& options = {});

/// The same for text already in memory (no sidecar).
OpenedModelFile openModelText(std::string_view text, const OpenOptions& options = {});

/// Refreshes the active model's cached diagram text and frame from `doc`,
/// then writes serializeProject atomically. False with `error` on failure.
bool saveModelFile(const std::filesystem::path& path, core::Project& project,
                   const core::Document& doc, std::string* error = nullptr);

/// Writes one document as a bare diagram file, atomically.
bool saveDiagramFile(const std::filesystem::path& path, const core::Document& doc,
                     std::string* error = nullptr);

}  // namespace modelyne::io
