#pragma once
/// Diagram validation: checks one diagram against the rules of its notation
/// and kind and appends one English sentence per finding, each naming the
/// offending element by id and citing the rule's source. Findings come in a
/// fixed order: element types, dangling edges, the kind's own rules,
/// allocations, stereotypes; within a step in document order. The checker is
/// a reader: it never changes the diagram.

#include <span>
#include <string>
#include <vector>

#include "core/diagram_kind.h"
#include "core/document.h"
#include "core/model.h"

namespace modelyne::check {

/// Appends the findings of the diagram to `findings` and returns how many it
/// appended. Raises nothing for an odd diagram, with one exception: a
/// combined fragment whose "numOperands" is not an integer throws
/// std::invalid_argument ("invalid stoi argument") or std::out_of_range
/// ("stoi argument out of range"); the findings gathered before it stay in
/// `findings`.
unsigned validateDiagram(std::span<const core::Node> nodes, std::span<const core::Edge> edges,
                         core::DiagramKind kind, std::vector<std::string>& findings);

/// The same over the document's nodes and edges.
unsigned validateDiagram(const core::Document& doc, core::DiagramKind kind,
                         std::vector<std::string>& findings);

}  // namespace modelyne::check
