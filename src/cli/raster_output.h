#pragma once
/// Export for `modelyne export`: the editor's own export
/// (render::exportDiagram) on the offscreen platform, so that it works
/// without a display and gives the editor's bytes. Builds without the
/// renderer write SVG alone and say so for the other formats.

#include <string>

#include "core/document.h"

namespace modelyne::cli {

struct ExportSettings {
  float margin = 24.0f;
  bool background = true;
  double scale = 2.0;
};

/// The editor's defaults.
ExportSettings defaultExportSettings();

/// Whether OUT's extension names a raster format (.pdf, .png, .jpg, .jpeg);
/// false for .svg. Throws CliError for any other extension.
bool isRasterOutput(const std::string& out);

/// Draws the document (with its frame) into `out`, replacing the file in
/// one step. Throws CliError on failure; a scale reduced to fit the size
/// limits is reported on standard error.
void writeExport(const std::string& out, const core::Document& doc, const ExportSettings& settings);

}  // namespace modelyne::cli
