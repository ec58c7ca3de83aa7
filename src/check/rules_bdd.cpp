// Block definition diagram rules: composition, generalization and
// association between block-stereotyped elements, and flow specifications.

#include <string>
#include <vector>

#include "check/element_categories.h"
#include "check/rules.h"
#include "check/text.h"

namespace modelyne::check {

namespace {

const std::string kFlowProperties = "flowProperties";
// Compartments that give a classifier structure or behaviour of its own.
const std::string kStructuralCompartments[] = {"parts", "references", "values", "operations",
                                               "receptions"};

bool hasStructuralCompartments(const core::Node& node) {
  for (const std::string& key : kStructuralCompartments)
    if (!isBlank(property(node, key))) return true;
  return false;
}

}  // namespace

void checkBlockDefinition(const DiagramIndex& diagram, Findings& findings) {
  using E = core::EdgeType;
  // Each node's kind, read once: the edge rules below look at both ends of
  // most edges, and a kind costs a property lookup.
  const auto nodes = diagram.nodes();
  std::vector<std::string_view> kinds(nodes.size());
  for (std::size_t i = 0; i < nodes.size(); ++i) kinds[i] = blockKind(nodes[i]);

  for (std::size_t i = 0; i < nodes.size(); ++i) {
    const core::Node& n = nodes[i];
    if (kinds[i] == "flowSpecification" && hasStructuralCompartments(n) &&
        isBlank(property(n, kFlowProperties)))
      findings.add({"Flow specification '", n.id,
                    "' has structural compartments but no flowProperties. A flow specification only "
                    "types port protocols (SysML Distilled §3.4.7)."});
  }

  const auto edges = diagram.edges();
  for (std::size_t i = 0; i < edges.size(); ++i) {
    const core::Edge& e = edges[i];
    if (e.type != E::composition && e.type != E::aggregation && e.type != E::generalization &&
        e.type != E::association)
      continue;
    if (!diagram.resolved(i)) continue;
    const std::string_view sourceKind = kinds[static_cast<std::size_t>(diagram.source(i))];
    const std::string_view targetKind = kinds[static_cast<std::size_t>(diagram.target(i))];
    if ((e.type == E::composition || e.type == E::aggregation) &&
        (sourceKind.empty() || targetKind.empty()))
      findings.add({"Edge '", e.id, "' (", e.type == E::composition ? "Composition" : "Aggregation",
                    ") must connect two block-stereotyped elements (SysML Distilled §3.4.1 / §3.5)."});
    if (e.type == E::generalization && !sourceKind.empty() && !targetKind.empty() &&
        sourceKind != targetKind)
      findings.add({"Edge '", e.id, "' generalises a '", sourceKind, "' from a '", targetKind,
                    "'. Generalization should connect peers of the same block-stereotype kind "
                    "(SysML Distilled §3.5)."});
    if (e.type == E::association && sourceKind == "valueType" && targetKind == "valueType")
      findings.add({"Edge '", e.id,
                    "' associates two ValueTypes. ValueTypes compose other types via property "
                    "typing, not via associations (SysML Distilled §3.4.6)."});
  }
}

}  // namespace modelyne::check
