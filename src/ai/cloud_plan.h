#pragma once
/// Asking the cloud AI for a plan. The call itself is injected, so the
/// editor and the command-line tool plug in their client and tests a fake.

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "ai/plan.h"

namespace modelyne::ai {

/// Sends one request to the cloud AI: request kind ("generate" or "refine"),
/// prompt text and token budget; yields the reply text, or nothing when the
/// call failed or was refused (daily limit, network, not signed in).
using CloudCall = std::function<std::optional<std::string>(std::string_view requestKind,
                                                           std::string_view prompt, int tokenBudget)>;

inline constexpr int kCloudTokenBudget = 1024;
inline constexpr std::string_view kCloudRequestGenerate = "generate";
inline constexpr std::string_view kCloudRequestRefine = "refine";

inline constexpr std::string_view kMsgCloudPlanGenerated = "Cloud AI plan generated.";
inline constexpr std::string_view kMsgCloudNoValidPlan =
    "Cloud AI output did not contain a valid plan; using deterministic fallback.";

/// Uses the refine prompt when `current` holds at least one node, else the
/// generate prompt; sends it with a budget of 1024 tokens and parses the
/// reply into `plan`. Appends kMsgCloudPlanGenerated or kMsgCloudNoValidPlan
/// to `log` (one line each, LF-separated) when a reply came; a failed or
/// absent call appends nothing. Returns whether a plan was obtained.
bool GeneratePlanWithCloud(std::string_view userText, const DiagramPlan* current, DiagramPlan& plan,
                           std::string& log, const CloudCall& call);

}  // namespace modelyne::ai
