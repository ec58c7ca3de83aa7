#pragma once
/// The categories the rules sort elements into: actors, use cases, object
/// nodes, port-like ends, packages, requirements, state-machine vertices,
/// message ends, comments, behaviours, block-stereotype kinds and the
/// categories of allocation ends. Each is a table in element_categories.cpp,
/// where the reasons for the membership are written down.

#include <string_view>

#include "core/catalogue.h"
#include "core/model.h"

namespace modelyne::check {

bool isActor(core::ShapeType t) noexcept;
bool isUseCase(core::ShapeType t) noexcept;
bool isObjectNode(core::ShapeType t) noexcept;
bool isPortLike(core::ShapeType t) noexcept;
bool isPackage(core::ShapeType t) noexcept;
bool isRequirement(core::ShapeType t) noexcept;
bool isStateVertex(core::ShapeType t) noexcept;
/// Lifelines, executions, actors and gates: what a message may join.
bool isMessageEnd(core::ShapeType t) noexcept;
/// Lifelines (actors drawn on a sequence diagram are lifelines) and executions.
bool isLifelineOrExecution(core::ShapeType t) noexcept;
/// Notes and mind-map comments: elements that annotate rather than take part.
bool isComment(core::ShapeType t) noexcept;
/// The generic connectors "straight" .. "curvedDoubleArrow".
bool isGenericLine(core::EdgeType t) noexcept;

/// The block-stereotype kind of a node ("block", "signal",
/// "flowSpecification", "enumeration", "valueType", "interface",
/// "constraint"), or "" when it has none.
std::string_view blockKind(const core::Node& node);

/// Whether the node's "stereotype" property names the stereotype, compared as
/// keywords ("«viewpoint»", "ViewPoint" and "viewpoint" are the same).
bool hasStereotype(const core::Node& node, std::string_view keywordText);

/// What an allocation end is: a flow (object node, pin, signal, connection),
/// a behaviour (action, activity, state, calculation, interaction), or
/// structure (everything else: blocks, parts, classes, ports, actors ...).
enum class AllocationCategory { itemFlow, behavioral, structural };
AllocationCategory allocationCategory(core::ShapeType t) noexcept;

}  // namespace modelyne::check
