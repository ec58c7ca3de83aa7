#pragma once
/// What layout needs to know about shape and edge types: which shapes hold
/// other nodes, which sit on a host's boundary, which take part in a
/// sequence diagram, and which edge types point from child to parent.

#include <span>

#include "core/anchor.h"
#include "core/catalogue.h"

namespace modelyne::layout {

enum class ShapeRole {
  plain,
  container,    ///< nodes drawn inside it belong to it
  swimlane,     ///< a container laid side by side with its sibling lanes
  port,         ///< sits on its host's boundary
  participant,  ///< a lifeline of a sequence diagram
  activation,   ///< an activation bar on a lifeline
  fragment,     ///< a combined fragment across lifelines
  central,      ///< the central topic of a mind map
};

ShapeRole shapeRole(core::ShapeType t) noexcept;

/// Whether an edge of this type points from child to parent (the target is
/// drawn above the source): generalization, realization, satisfy, ...
bool targetIsParent(core::EdgeType t) noexcept;

/// Outward direction of an anchor on a node's box, in diagram axes (y down),
/// each component -1, 0 or 1.
struct AnchorDirection {
  int dx;
  int dy;
};
AnchorDirection anchorDirection(core::Anchor a) noexcept;

/// Which way a layered drawing runs.
enum class MainAxis { topDown, leftRight };

/// The axis most of these anchors point along (top-down on a tie).
MainAxis axisOfAnchors(std::span<const core::Anchor> ends) noexcept;

/// Whether an edge's target comes after its source along the axis: the
/// anchors decide when they say which end comes first, the edge type
/// (parent first) otherwise.
bool targetComesLater(core::Anchor sourcePort, core::Anchor targetPort, core::EdgeType type, MainAxis axis) noexcept;

}  // namespace modelyne::layout
