#pragma once
/// Drawing of one connector: end points, route (straight, elbow, curve or
/// self-message loop), dashing, end marks and label, by edge type.

#include "core/model.h"
#include "export/arrow_marks.h"
#include "export/drawing.h"

namespace modelyne::exporter {

enum class RouteKind : std::uint8_t { straight, elbow, curved };

/// How an edge type is drawn.
struct EdgeStyle {
  RouteKind route = RouteKind::straight;
  bool dashed = false;
  bool message = false;        ///< sequence message: ends may sit at an offset on the lifeline
  EndMark sourceMark = EndMark::none;
  EndMark targetMark = EndMark::none;
};

/// The style of an edge type; a value outside the catalogue is drawn as "straightArrow".
const EdgeStyle& edgeStyle(core::EdgeType type) noexcept;

/// Draws `edge` between its two end nodes.
void drawEdge(DrawingBuilder& out, const core::Edge& edge, const core::Node& source,
              const core::Node& target);

}  // namespace modelyne::exporter
