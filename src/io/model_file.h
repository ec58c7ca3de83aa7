#pragma once
/// Opening and saving model files (".xml"): a bare diagram or a project
/// wrapper, with the legacy data-integration sidecar migrated on open.
///
///   io::OpenedModelFile f = io::openModelFile(path);
///   if (f.error) show(f.error->what, f.error->line);
///   else { io::applyDiagram(std::move(f.active), doc); project = f.project; }
///   for (auto& l : f.log) log(l.key, l.text);
///
///   std::string err;
///   io::saveModelFile(path, project, doc, &err);   // refreshes the active model's cache
///
/// Open is all or nothing: on any error the result holds no content.
/// Save writes a temporary file beside the target and renames it over.

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "core/document.h"
#include "core/project.h"
#include "io/diagram_reader.h"
#include "io/read_error.h"

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
/// A skipped element (duplicate or empty id) while reading.
inline constexpr const char* kLogLoadSkipped = "ui.log.load_skipped";

struct OpenedModelFile {
  core::Project project;          ///< at least one model when there is no error
  bool wrapped = false;           ///< the file held a project wrapper
  DiagramContent active;          ///< the active model's diagram, read whole
  std::vector<LogLine> log;
  std::optional<ReadError> error; ///< set: nothing was opened
};

/// Reads `path` (bare diagram or wrapper), migrates a legacy sidecar into
/// the file when the active diagram has no data-integration block, and reads
/// the active model's diagram. The active index is clamped to the models.
OpenedModelFile openModelFile(const std::filesystem::path& path);

/// The same for text already in memory (no sidecar; `log` gets the count line).
OpenedModelFile openModelText(std::string_view text);

/// Refreshes the active model's cached diagram text and frame from `doc`,
/// then writes serializeProject atomically. False with `error` on failure.
bool saveModelFile(const std::filesystem::path& path, core::Project& project,
                   const core::Document& doc, std::string* error = nullptr);

/// Writes one document as a bare diagram file, atomically.
bool saveDiagramFile(const std::filesystem::path& path, const core::Document& doc,
                     std::string* error = nullptr);

}  // namespace modelyne::io
