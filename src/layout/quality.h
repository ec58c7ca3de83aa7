#pragma once
/// Quality figures of a drawing, with straight lines between node centres:
/// overlapping nodes, edge crossings, edges whose ends face the way their
/// anchors say, edges running along the main axis, and how much of the
/// bounding box the nodes fill. Used by the benchmark and the tests.

#include <cstddef>
#include <vector>

#include "core/document.h"
#include "layout/roles.h"

namespace modelyne::layout {

struct Quality {
  std::size_t edges = 0;           ///< edges measured: both ends exist and differ
  std::size_t overlaps = 0;        ///< node pairs that overlap with neither holding the other (ports excluded)
  std::size_t crossings = 0;       ///< pairs of edge lines that cross (lines sharing an end excluded)
  std::size_t anchorsFacing = 0;   ///< edges whose both ends face the side their anchor names
  std::size_t anchorsPossible = 0; ///< edges whose anchors can be met at all (not the same side at both ends)
  std::size_t alongAxis = 0;       ///< edges whose later end lies further along the main axis
  double areaRatio = 0.0;          ///< bounding box area over the sum of node areas
};

/// Measures the document's nodes at the given rectangles (one per node, in
/// document order); `axis` is the main axis the flow is measured along.
Quality measure(const core::Document& doc, const std::vector<core::NodeGeometry>& geometry, MainAxis axis);

/// The main axis chosen for a document: the one most anchors point along.
MainAxis mainAxisOf(const core::Document& doc);

}  // namespace modelyne::layout
