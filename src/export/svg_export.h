#pragma once
/// SVG export of a diagram: a self-contained SVG 1.1 document with a fixed,
/// theme-independent palette, written to a file in one piece.
///
///   exporter::exportSvg(path, doc.nodes(), doc.edges(), {24.0f, true});

#include <filesystem>
#include <span>
#include <string>

#include "core/diagram_kind.h"
#include "core/model.h"

namespace modelyne::exporter {

struct SvgExportOptions {
  float margin = 24.0f;     ///< diagram units added on every side of the content bounds
  bool background = true;   ///< white rectangle under everything
};

/// The SVG text of the diagram. With a shown `frame`, the diagram frame and
/// its name tab are drawn around the content as well.
std::string svgText(std::span<const core::Node> nodes, std::span<const core::Edge> edges,
                    SvgExportOptions options, const core::DiagramFrame* frame = nullptr);

/// Writes the SVG text to `path` (temporary file, then rename). On failure
/// returns false and, when `error` is given, says why; no partial file is left.
bool exportSvg(const std::filesystem::path& path, std::span<const core::Node> nodes,
               std::span<const core::Edge> edges, SvgExportOptions options,
               std::string* error = nullptr);

}  // namespace modelyne::exporter
