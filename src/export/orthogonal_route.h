#pragma once
/// Where edges attach to nodes and how elbow connectors bend. Shared with the
/// editor's canvas, so an exported elbow edge bends where the editor shows it.
///
///   Point s = connectionPoint(srcBox, edge.sourcePort);
///   auto route = orthogonalRoute(s, stubDirection(edge.sourcePort, s, t), t, stubDirection(...));

#include <vector>

#include "core/anchor.h"
#include "core/model.h"
#include "export/drawing.h"

namespace modelyne::exporter {

/// Length of the straight stub with which an elbow route leaves and enters a node.
inline constexpr float kStubLength = 14.0f;

/// The point of a node's box for an anchor: the side midpoint for top,
/// bottom, left and right, the corner for the four corner anchors; any other
/// value counts as right.
Point connectionPoint(const core::NodeGeometry& box, core::Anchor anchor) noexcept;

/// Outward unit direction of an end's stub, along one axis. A side anchor
/// points away from its side; a corner anchor takes the one of its two sides
/// that faces the other end more (`at` the end itself, `other` the other end),
/// the horizontal side on a tie.
Point stubDirection(core::Anchor anchor, Point at, Point other) noexcept;

/// An elbow route: at most start, stub end, two bends, stub end, end.
struct Route {
  Point points[6];
  std::size_t count = 0;
};

/// The elbow route from `start` (stub direction `dStart`) to `end` (stub
/// direction `dEnd`): start, the two stub ends with the bends between them,
/// end, without consecutive duplicate points.
Route orthogonalRoutePoints(Point start, Point dStart, Point end, Point dEnd) noexcept;

/// The same route as a vector.
std::vector<Point> orthogonalRoute(Point start, Point dStart, Point end, Point dEnd);

}  // namespace modelyne::exporter
