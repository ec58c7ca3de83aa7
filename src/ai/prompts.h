#pragma once
/// The two prompts that carry the plan contract to the cloud AI: one to
/// generate a new diagram, one to refine the current diagram.

#include <string>
#include <string_view>

#include "ai/plan.h"

namespace modelyne::ai {

/// The generate prompt for the user's description; activity requests get
/// the Action/Flow instructions and an activity-shaped format example.
std::string BuildGeneratePrompt(std::string_view userText);

/// The refine prompt: the domain-preserving rules, the current model as plan
/// text and the user's refinement request.
std::string BuildRefinePrompt(const DiagramPlan& current, std::string_view userText);

}  // namespace modelyne::ai
