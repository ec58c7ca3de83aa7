#pragma once
/// Activity requests: recognising a prompt that asks for an activity-style
/// diagram, and rewriting any plan made for one to Action nodes joined by
/// Flow edges.

#include <string_view>

#include "ai/plan.h"

namespace modelyne::ai {

/// True when the lower-cased prompt contains "activity diagram", "process
/// flow" or "step-by-step" anywhere, or "activity", "workflow", "procedure"
/// or "flowchart" as a whole word.
bool IsActivityRequest(std::string_view prompt) noexcept;

/// For an activity request: Block and Generic nodes become Action; a plan
/// without edges gets a chain of Flow edges in node order; other edges become
/// Flow; a change appends "Activity request normalized to Action nodes and
/// Flow edges." to the notes. Returns whether anything changed.
bool NormalizeActivityPlan(std::string_view prompt, DiagramPlan& plan);

}  // namespace modelyne::ai
