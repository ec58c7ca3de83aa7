// Parametric diagram rules: binding connectors join constraint parameters
// and value properties; constraint and value properties are typed.

#include <string>

#include "check/rules.h"
#include "check/text.h"

namespace modelyne::check {

namespace {
using S = core::ShapeType;

bool isBindEndpoint(S t) { return t == S::sysmlConstraintParameter || t == S::sysmlValueProperty; }
}  // namespace

void checkParametric(const DiagramIndex& diagram, Findings& findings) {
  static const std::string kType = "type";
  for (const core::Node& n : diagram.nodes()) {
    if (n.type == S::sysmlConstraintProperty && isBlank(property(n, kType)))
      findings.add({"Constraint property '", n.id,
                    "' has no `type`. A constraint property is a usage of a constraint block and "
                    "must be typed (SysML Distilled §9.5)."});
    if (n.type == S::sysmlValueProperty && isBlank(property(n, kType)))
      findings.add({"Value property '", n.id,
                    "' has no `type`. A value property is a usage of a value type and must be typed "
                    "(SysML Distilled §9.7)."});
  }

  const auto edges = diagram.edges();
  for (std::size_t i = 0; i < edges.size(); ++i) {
    const core::Edge& e = edges[i];
    if (e.type != core::EdgeType::sysmlBindingConnector || !diagram.resolved(i)) continue;
    const S s = diagram.sourceType(i);
    const S t = diagram.targetType(i);
    if (!isBindEndpoint(s))
      findings.add({"Edge '", e.id, "' is a Binding Connector but its source '", e.source,
                    "' is not a parametric bind endpoint (Constraint Parameter or Value Property) "
                    "(SysML Distilled §9.8)."});
    if (!isBindEndpoint(t))
      findings.add({"Edge '", e.id, "' is a Binding Connector but its target '", e.target,
                    "' is not a parametric bind endpoint (Constraint Parameter or Value Property) "
                    "(SysML Distilled §9.8)."});
    if (s != S::sysmlConstraintParameter && t != S::sysmlConstraintParameter)
      findings.add({"Edge '", e.id,
                    "' is a Binding Connector but neither endpoint is a Constraint Parameter. One of "
                    "the two bound elements must be a constraint parameter (SysML Distilled §9.8)."});
  }
}

}  // namespace modelyne::check
