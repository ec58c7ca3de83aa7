// Internal block diagram rules: item flows and binding connectors join
// port-like ends; a reference property owns no parts.

#include <string>

#include "check/element_categories.h"
#include "check/rules.h"
#include "check/text.h"

namespace modelyne::check {

void checkInternalBlock(const DiagramIndex& diagram, Findings& findings) {
  using E = core::EdgeType;
  static const std::string kParts = "parts";
  for (const core::Node& n : diagram.nodes()) {
    if (n.type == core::ShapeType::sysmlReferenceProperty && !isBlank(property(n, kParts)))
      findings.add({"Reference property '", n.id,
                    "' declares composite parts. A reference (dashed border) is not the owner of its "
                    "referent — move the declaration into the references compartment (SysML "
                    "Distilled §4.5)."});
  }

  const auto edges = diagram.edges();
  for (std::size_t i = 0; i < edges.size(); ++i) {
    const core::Edge& e = edges[i];
    if ((e.type != E::sysmlItemFlow && e.type != E::sysmlBindingConnector) || !diagram.resolved(i))
      continue;
    if (isPortLike(diagram.sourceType(i)) && isPortLike(diagram.targetType(i))) continue;
    if (e.type == E::sysmlItemFlow)
      findings.add({"Edge '", e.id,
                    "' is an Item Flow but does not connect two port-like endpoints (a Port, a legacy "
                    "Flow / Proxy / Full / Standard Port, an Object Node, or a Pin). (SysML Distilled "
                    "§4.8)"});
    else
      findings.add({"Edge '", e.id,
                    "' is a Binding Connector but does not connect two port-like endpoints. Bindings "
                    "on an IBD attach ports, not raw parts (SysML Distilled §4.5)."});
  }
}

}  // namespace modelyne::check
