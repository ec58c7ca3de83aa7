// The requirements section: the requirements with their ids, one line per
// trace read "source verb target", and the requirements nothing traces.
#include "explain/explain_detail.h"

namespace modelyne::explain::detail {

namespace {

// "Stopping distance (REQ-12)" when the requirement carries an id.
std::string requirementName(const DiagramView& view, std::size_t node) {
  std::string out = view.name(node);
  const auto& props = view.nodes[node].properties;
  const auto id = props.find("reqId");
  if (id != props.end() && !id->second.empty()) out += " (" + oneLine(id->second) + ")";
  return out;
}

}  // namespace

std::string requirementsBody(const DiagramView& view) {
  std::vector<std::string> lines;
  std::vector<std::string> requirements;
  std::vector<bool> traced(view.nodes.size(), false);
  std::size_t requirementCount = 0;
  for (std::size_t i = 0; i < view.nodes.size(); ++i) {
    if (view.nodeTraits[i].role != NodeRole::requirement) continue;
    ++requirementCount;
    if (requirements.size() < kInlineCap) requirements.push_back(requirementName(view, i));
  }
  if (requirementCount > 0) {
    std::string line = "Requirements: " + joinCapped(requirements, kInlineCap);
    if (requirementCount > requirements.size())
      line += ", and " + std::to_string(requirementCount - requirements.size()) + " more";
    lines.push_back(line + ".");
  }

  std::size_t traces = 0;
  for (std::size_t e = 0; e < view.edges.size(); ++e) {
    if (view.edgeTraits[e]->role != EdgeRole::trace || !view.resolved(e)) continue;
    const auto s = static_cast<std::size_t>(view.source[e]);
    const auto t = static_cast<std::size_t>(view.target[e]);
    traced[s] = traced[t] = true;
    if (++traces > kLineCap) continue;
    lines.push_back("  - " + view.name(s) + " " + std::string(view.edgeTraits[e]->word) + " " +
                    view.name(t) + ".");
  }
  if (traces > kLineCap)
    lines.push_back("  - and " + std::to_string(traces - kLineCap) + " more traces.");

  if (traces == 0) {
    lines.emplace_back(
        "Requirements are declared but not yet linked to design or verification elements.");
    return joinBlocks(lines);
  }
  std::vector<std::size_t> untraced;
  for (std::size_t i = 0; i < view.nodes.size(); ++i)
    if (view.nodeTraits[i].role == NodeRole::requirement && !traced[i]) untraced.push_back(i);
  if (!untraced.empty())
    lines.push_back("Not yet traced: " + joinNames(view, untraced, kInlineCap) + ".");
  return joinBlocks(lines);
}

}  // namespace modelyne::explain::detail
