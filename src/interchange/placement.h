#pragma once
/// Positions for nodes that were read without any: each node gets a size
/// for its type, then the automatic layout arranges them by their edges
/// (organic for internal block, parametric, use case and mind map diagrams,
/// layered for the rest). Deterministic: the same nodes land in the same places.
///
///   placeNodes(nodes, edges, core::DiagramKind::bdd);

#include <vector>

#include "core/diagram_kind.h"
#include "core/model.h"

namespace modelyne::interchange {

void placeNodes(std::vector<core::Node>& nodes, const std::vector<core::Edge>& edges, core::DiagramKind kind);

}  // namespace modelyne::interchange
