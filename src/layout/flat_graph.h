#pragma once
/// The graph one layout engine sees: boxes (sizes only, in the order the
/// caller gives) and the edges between them with their anchor directions.
/// Containers are already laid out and appear as one box; ports as their host.

#include <utility>
#include <vector>

#include "layout/roles.h"

namespace modelyne::layout {

struct Point {
  double x = 0.0;
  double y = 0.0;
};

struct Box {
  double w = 1.0;
  double h = 1.0;
  bool central = false;  ///< a mind map's central topic
};

struct FlatEdge {
  int source = 0;
  int target = 0;
  core::Anchor sourcePort = core::Anchor::right;
  core::Anchor targetPort = core::Anchor::left;
  core::EdgeType type = core::EdgeType::straightArrow;
  Point sourceShift;  ///< where the edge meets its source box, from the box's centre (ports)
  Point targetShift;
};

struct FlatGraph {
  std::vector<Box> boxes;
  std::vector<FlatEdge> edges;  ///< no self loops; endpoints are valid indices
};

/// Space between neighbouring boxes, and between the layers of a layered drawing.
inline constexpr double kNodeGap = 40.0;
inline constexpr double kLayerGap = 70.0;

/// Top-left corners for the boxes of a connected graph; the drawing starts at (0, 0).
std::vector<Point> placeLayered(const FlatGraph& g, MainAxis axis);
std::vector<Point> placeOrganic(const FlatGraph& g);
/// Mind maps: the tree of edges around box `centre` placed radially, edges
/// leaving each node on the side their anchors name.
std::vector<Point> placeRadial(const FlatGraph& g, int centre);

/// Top-left corners for any graph: each connected component placed by
/// `placeLayered` (or organic / radial), the components packed in rows.
std::vector<Point> placeGraph(const FlatGraph& g, bool layered, MainAxis axis);

/// Moves boxes (given by centres) apart until no two overlap with `gap`
/// between them; keeps their relative arrangement where it can.
void removeOverlaps(const std::vector<Box>& boxes, std::vector<Point>& centres, double gap);

/// The pairs of boxes (by centres) closer than `gap`, each once, in index order.
std::vector<std::pair<int, int>> overlappingPairs(const std::vector<Box>& boxes, const std::vector<Point>& centres,
                                                  double gap);

}  // namespace modelyne::layout
