#pragma once
/// One export for every face: a document drawn into a file whose extension
/// names the format. The formats are a table (extension, name, writer); the
/// editor's Export and `modelyne export` both come here, so the same
/// document and options give the same bytes. Raster formats start the
/// offscreen renderer when no application runs yet.
///
///   render::ExportResult r = render::exportDiagram("d.png", doc, {});
///   if (!r.ok) report(r.error);

#include <filesystem>
#include <span>
#include <string>
#include <string_view>

#include "core/document.h"

namespace modelyne::render {

struct ExportOptions {
  float margin = 24.0f;     ///< diagram units around the content (and the frame)
  bool background = true;   ///< white page under SVG; raster pictures always have one
  double scale = 2.0;       ///< raster pixels per diagram unit: twice, for crisp text
};

/// What a writer reports besides its bytes.
struct ExportNotes {
  std::string reducedScale;  ///< why a raster picture was drawn smaller; empty otherwise
};

struct ExportFormat {
  std::string_view extension;  ///< lower case, with the dot: ".svg"
  std::string_view name;       ///< for messages: "SVG"
  bool raster;                 ///< drawn in pixels (scale applies, background is always on)
  /// The file's bytes; empty when the picture could not be made.
  std::string (*write)(const core::Document& doc, const ExportOptions& options, ExportNotes& notes);
};

/// Every format, in the order messages list them.
std::span<const ExportFormat> exportFormats();

/// The format `path`'s extension names (case-insensitive), or nullptr.
const ExportFormat* formatOf(const std::filesystem::path& path);

/// ".svg, .pdf, .png, .jpg or .jpeg", for messages.
std::string formatList();

/// The document in `format`, with its frame when the frame is shown.
std::string exportBytes(const ExportFormat& format, const core::Document& doc, const ExportOptions& options,
                        ExportNotes* notes = nullptr);

struct ExportResult {
  bool ok = false;
  const ExportFormat* format = nullptr;  ///< nullptr for an unknown extension
  std::string error;                     ///< why it failed, for the user
  ExportNotes notes;
};

/// Draws `doc` in the format `path` names and replaces the file in one
/// step (temporary file, then rename).
ExportResult exportDiagram(const std::filesystem::path& path, const core::Document& doc,
                           const ExportOptions& options = {});

}  // namespace modelyne::render
