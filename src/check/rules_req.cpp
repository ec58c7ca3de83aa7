// Requirement diagram rules: identifiers and texts of requirements, and the
// ends of satisfy, verify, refine, trace, deriveReqt and copy.

#include <string>
#include <functional>
#include <vector>

#include "check/element_categories.h"
#include "check/first_seen.h"
#include "check/rules.h"
#include "check/text.h"

namespace modelyne::check {

void checkRequirement(const DiagramIndex& diagram, Findings& findings) {
  using E = core::EdgeType;
  static const std::string kReqId = "reqId";
  static const std::string kRequirementText = "requirementText";

  // The first requirement, in document order, that used each reqId (trimmed).
  const auto nodes = diagram.nodes();
  std::vector<std::string_view> reqIds(nodes.size());
  FirstSeen firstUse(64);
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    const core::Node& n = nodes[i];
    if (!isRequirement(n.type)) continue;
    const std::string_view reqId = reqIds[i] = trimmed(property(n, kReqId));
    if (reqId.empty()) {
      findings.add({"Requirement '", n.id,
                    "' has no `reqId`. Every requirement needs a unique identifier (SysML Distilled "
                    "§11.2)."});
    } else if (const std::uint32_t first =
                   firstUse.firstOf(std::hash<std::string_view>{}(reqId), static_cast<std::uint32_t>(i),
                                    [&](std::uint32_t other) { return reqIds[other] == reqId; });
               first != FirstSeen::kNew) {
      findings.add({"Requirement '", n.id, "' duplicates reqId '", reqId, "' already used by '",
                    nodes[first].id, "' (SysML Distilled §11.2)."});
    }
    if (isBlank(property(n, kRequirementText)))
      findings.add({"Requirement '", n.id,
                    "' has no `requirementText`. The `text` property is mandatory (SysML Distilled "
                    "§11.2)."});
  }

  const auto edges = diagram.edges();
  for (std::size_t i = 0; i < edges.size(); ++i) {
    if (!diagram.resolved(i)) continue;
    const core::Edge& e = edges[i];
    const bool sourceIsReq = isRequirement(diagram.sourceType(i));
    const bool targetIsReq = isRequirement(diagram.targetType(i));
    switch (e.type) {
      case E::sysmlSatisfy:
        if (!targetIsReq)
          findings.add({"Edge '", e.id, "' «satisfy» target must be a Requirement (Guide §13.11)."});
        break;
      case E::sysmlVerify:
        if (!targetIsReq)
          findings.add({"Edge '", e.id, "' «verify» target must be a Requirement (Guide §13.12)."});
        break;
      case E::sysmlRefine:
        if (!targetIsReq)
          findings.add({"Edge '", e.id, "' «refine» target must be a Requirement (Guide §13.13)."});
        break;
      case E::sysmlTrace:
        if (!sourceIsReq)
          findings.add({"Edge '", e.id, "' «trace» source must be a Requirement (Guide §13.14)."});
        break;
      case E::sysmlDeriveReqt:
      case E::sysmlCopy:
        if (!sourceIsReq || !targetIsReq)
          findings.add({"Edge '", e.id, "' ", e.type == E::sysmlCopy ? "«copy»" : "«deriveReqt»",
                        " can only connect two Requirements (Guide §13.4)."});
        break;
      default:
        break;
    }
  }
}

}  // namespace modelyne::check
