#include "check/validate.h"

#include <array>

#include "check/allowed_types.h"
#include "check/diagram_index.h"
#include "check/findings.h"
#include "check/rules.h"

namespace modelyne::check {

namespace {

// The kind's own rule group, by enumeration value "bdd" .. "mm"; "test" has none.
constexpr std::array<RuleGroup, core::kDiagramKindCount> kRuleGroups = {
    checkBlockDefinition, checkInternalBlock, checkPackage,     checkParametric,
    checkActivity,        checkSequence,      checkStateMachine, checkUseCase,
    checkRequirement,     nullptr,            checkMindMap};

RuleGroup ruleGroupOf(core::DiagramKind kind) noexcept {
  const auto v = static_cast<int>(kind);
  return (v < 0 || v >= core::kDiagramKindCount) ? nullptr : kRuleGroups[static_cast<std::size_t>(v)];
}

void checkElementTypes(std::span<const core::Node> nodes, std::span<const core::Edge> edges,
                       core::DiagramKind kind, Findings& findings) {
  const std::string_view kindName = core::diagramKindDisplayName(kind);
  for (const core::Node& n : nodes)
    if (!isShapeAllowed(kind, n.type))
      findings.add({"Node '", n.id, "' (type=", core::shapeKey(n.type), ") not allowed on ", kindName});
  for (const core::Edge& e : edges)
    if (!isEdgeAllowed(kind, e.type))
      findings.add({"Edge '", e.id, "' (type=", core::edgeKey(e.type), ") not allowed on ", kindName});
}

void checkDanglingEdges(const DiagramIndex& diagram, Findings& findings) {
  const auto edges = diagram.edges();
  for (std::size_t i = 0; i < edges.size(); ++i) {
    if (diagram.source(i) == DiagramIndex::kMissing)
      findings.add({"Edge '", edges[i].id, "' references unknown source '", edges[i].source, "'."});
    if (diagram.target(i) == DiagramIndex::kMissing)
      findings.add({"Edge '", edges[i].id, "' references unknown target '", edges[i].target, "'."});
  }
}

}  // namespace

unsigned validateDiagram(std::span<const core::Node> nodes, std::span<const core::Edge> edges,
                         core::DiagramKind kind, std::vector<std::string>& out) {
  Findings findings(out);
  checkElementTypes(nodes, edges, kind, findings);
  const DiagramIndex diagram(nodes, edges);
  checkDanglingEdges(diagram, findings);
  if (const RuleGroup group = ruleGroupOf(kind)) group(diagram, findings);
  checkAllocations(diagram, findings);
  checkStereotypes(diagram, findings);
  return findings.count();
}

unsigned validateDiagram(const core::Document& doc, core::DiagramKind kind,
                         std::vector<std::string>& findings) {
  return validateDiagram(doc.nodes(), doc.edges(), kind, findings);
}

}  // namespace modelyne::check
