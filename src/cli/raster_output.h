#pragma once
/// Raster output for `modelyne export` (PNG, JPEG, and PDF around a JPEG),
/// through the Qt renderer on the offscreen platform, so that it works
/// without a display. Builds without the renderer report a clear error.

#include <string>

#include "core/document.h"

namespace modelyne::cli {

enum class RasterFormat { png, jpeg, pdf };

/// Renders the document (with its frame) at `scale` pixels per diagram unit
/// and replaces the file `out` in one step. Throws CliError on failure; a
/// scale reduced to fit the size limits is reported on standard error.
void writeRaster(const std::string& out, const core::Document& doc, RasterFormat format, float margin,
                 double scale);

}  // namespace modelyne::cli
