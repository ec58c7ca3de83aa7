#pragma once
/// Builds the drawing of a whole diagram: page bounds from the nodes (and
/// the labels and ports they draw outside their boxes), an optional white
/// page, every edge in edge order, then every node in z-order on top, and,
/// when asked, the diagram frame with its name tab around the content.
///
///   DrawingList d = buildDrawing(doc.nodes(), doc.edges(), {.margin = 24, .background = true});

#include <cstddef>
#include <functional>
#include <span>
#include <string>

#include "core/diagram_kind.h"
#include "core/model.h"
#include "export/drawing.h"

namespace modelyne::exporter {

struct DrawingOptions {
  float margin = 24.0f;        ///< added on every side of the content bounds
  bool background = true;      ///< white page under everything
  /// Frame drawn around the content when set and shown; the page grows to hold it.
  const core::DiagramFrame* frame = nullptr;
};

/// Page bounds of the nodes: their boxes plus actor names, port squares and
/// pin labels, with `margin` on every side; 0 0 320 200 for no nodes.
Bounds diagramBounds(std::span<const core::Node> nodes, float margin);

/// The ordered primitives of the diagram. Edges whose source or target names
/// no node are left out. O(nodes + edges): edge ends are found through one
/// hash index built per call.
DrawingList buildDrawing(std::span<const core::Node> nodes, std::span<const core::Edge> edges,
                         const DrawingOptions& options);

/// The same primitives in pieces of the drawing of about `pieceSize`
/// elements (edges, then nodes), each handed to `consume` in painting order
/// and reused afterwards; every piece carries the page bounds. Streams large
/// diagrams without holding the whole list.
void buildDrawingInPieces(std::span<const core::Node> nodes, std::span<const core::Edge> edges,
                          const DrawingOptions& options, std::size_t pieceSize,
                          const std::function<void(DrawingList&)>& consume);

/// The frame's tab text: "bdd [package] Model [name]".
std::string frameLabel(const core::DiagramFrame& frame);

}  // namespace modelyne::exporter
