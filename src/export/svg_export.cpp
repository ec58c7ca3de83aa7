#include "export/svg_export.h"

#include "export/diagram_drawing.h"
#include "export/svg_writer.h"

namespace modelyne::exporter {

std::string svgText(std::span<const core::Node> nodes, std::span<const core::Edge> edges,
                    SvgExportOptions options, const core::DiagramFrame* frame) {
  DrawingOptions drawing;
  drawing.margin = options.margin;
  drawing.background = options.background;
  drawing.frame = frame;
  // Streamed in pieces small enough to stay in cache; only the text itself grows with the diagram.
  constexpr std::size_t kPiece = 512;
  SvgDocumentWriter writer(1024 + (nodes.size() + edges.size()) * 300);
  buildDrawingInPieces(nodes, edges, drawing, kPiece, [&](DrawingList& piece) { writer.add(piece); });
  return writer.finish();
}

}  // namespace modelyne::exporter
