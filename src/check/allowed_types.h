#pragma once
/// Which shape and edge types may appear on each diagram kind. The table is
/// data (allowed_types.cpp), written once; the checker, the editor palette
/// and the text-to-diagram mapping all look it up here.

#include <span>

#include "core/catalogue.h"
#include "core/diagram_kind.h"

namespace modelyne::check {

/// Whether a node of this shape type may be drawn on a diagram of this kind.
/// "umlNote" is allowed everywhere; the basic shapes and the retired SysML
/// types nowhere. A kind outside the enumeration is looked up as "pkg", the
/// kind whose key and display name it is given everywhere else.
bool isShapeAllowed(core::DiagramKind kind, core::ShapeType shape) noexcept;

/// Whether an edge of this type may be drawn on a diagram of this kind. The
/// generic edges ("straight" .. "curvedDoubleArrow") are allowed everywhere.
bool isEdgeAllowed(core::DiagramKind kind, core::EdgeType edge) noexcept;

/// The shape types allowed on the kind, in the table's order.
std::span<const core::ShapeType> allowedShapes(core::DiagramKind kind) noexcept;

/// The edge types allowed on the kind beyond the generic ones, in the
/// table's order.
std::span<const core::EdgeType> allowedSpecificEdges(core::DiagramKind kind) noexcept;

}  // namespace modelyne::check
