#pragma once
/// SVG export of a diagram: a self-contained SVG 1.1 document with a fixed,
/// theme-independent palette, returned as bytes; the caller writes the file.
///
///   std::string svg = exporter::svgText(doc.nodes(), doc.edges(), {24.0f, true}, &doc.frame());

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

}  // namespace modelyne::exporter
