// Use case diagram rules: what may connect actors and use cases.

#include <vector>

#include "check/element_categories.h"
#include "check/rules.h"

namespace modelyne::check {

void checkUseCase(const DiagramIndex& diagram, Findings& findings) {
  using E = core::EdgeType;
  const auto edges = diagram.edges();

  // Use cases that an «include» points at: they are reached through their
  // base use case, not directly by an actor.
  std::vector<char> included(diagram.nodes().size(), 0);
  for (std::size_t i = 0; i < edges.size(); ++i)
    if (edges[i].type == E::sysmlInclude && diagram.target(i) != DiagramIndex::kMissing)
      included[static_cast<std::size_t>(diagram.target(i))] = 1;

  for (std::size_t i = 0; i < edges.size(); ++i) {
    if (!diagram.resolved(i)) continue;
    const core::Edge& e = edges[i];
    const core::ShapeType s = diagram.sourceType(i);
    const core::ShapeType t = diagram.targetType(i);
    const bool actorToUseCase = (isActor(s) && isUseCase(t)) || (isUseCase(s) && isActor(t));

    if ((e.type == E::composition || e.type == E::aggregation) && actorToUseCase)
      findings.add({"Edge '", e.id,
                    "' uses composite/aggregation between an actor and a use case. SysML Distilled "
                    "§5.8 forbids this."});
    if (isActor(s) && isActor(t) && e.type != E::generalization)
      findings.add({"Edge '", e.id,
                    "' connects two actors. Only generalization is allowed between actors (SysML "
                    "Distilled §5.8)."});
    if (e.type == E::association && isUseCase(s) && isUseCase(t))
      findings.add({"Edge '", e.id,
                    "' uses an association between two use cases. Use «include», «extend», or "
                    "Generalization instead (SysML Distilled §5.8)."});
    if ((e.type == E::sysmlInclude || e.type == E::sysmlExtend) && !(isUseCase(s) && isUseCase(t)))
      findings.add({"Edge '", e.id, "' is ", e.type == E::sysmlInclude ? "«include»" : "«extend»",
                    " but does not connect a use case to a use case (SysML Distilled §5.10 / §5.11)."});
    if (e.type == E::association && actorToUseCase) {
      const std::int32_t useCase = isUseCase(s) ? diagram.source(i) : diagram.target(i);
      if (included[static_cast<std::size_t>(useCase)])
        findings.add({"Edge '", e.id, "' associates an actor with an included use case '",
                      diagram.nodes()[static_cast<std::size_t>(useCase)].id,
                      "'. Primary actors should only associate with base use cases (SysML Distilled "
                      "§5.10)."});
    }
  }
}

}  // namespace modelyne::check
