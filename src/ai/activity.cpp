#include "ai/activity.h"

#include <string>

#include "ai/text_util.h"

namespace modelyne::ai {

namespace {

constexpr std::string_view kActivitySubstrings[] = {"activity diagram", "process flow", "step-by-step"};
constexpr std::string_view kActivityWords[] = {"activity", "workflow", "procedure", "flowchart"};

constexpr std::string_view kNormalizedNote = "Activity request normalized to Action nodes and Flow edges.";

}  // namespace

bool IsActivityRequest(std::string_view prompt) noexcept {
  try {
    const std::string lowered = text::lower(prompt);
    for (std::string_view s : kActivitySubstrings)
      if (lowered.find(s) != std::string::npos) return true;
    for (std::string_view w : kActivityWords)
      if (text::containsWholeWord(lowered, w)) return true;
    return false;
  } catch (...) {
    return false;
  }
}

bool NormalizeActivityPlan(std::string_view prompt, DiagramPlan& plan) {
  if (!IsActivityRequest(prompt)) return false;
  bool changed = false;
  for (PlanNode& n : plan.nodes) {
    if (n.kind == PlanNodeKind::Block || n.kind == PlanNodeKind::Generic) {
      n.kind = PlanNodeKind::Action;
      changed = true;
    }
  }
  if (plan.edges.empty()) {
    if (plan.nodes.size() >= 2) {
      for (std::size_t i = 0; i + 1 < plan.nodes.size(); ++i)
        plan.edges.push_back(PlanEdge{plan.nodes[i].id, plan.nodes[i + 1].id, PlanEdgeKind::Flow, {}});
      changed = true;
    }
  } else {
    for (PlanEdge& e : plan.edges) {
      if (e.kind != PlanEdgeKind::Flow) {
        e.kind = PlanEdgeKind::Flow;
        changed = true;
      }
    }
  }
  if (changed) AppendNote(plan, kNormalizedNote);
  return changed;
}

}  // namespace modelyne::ai
