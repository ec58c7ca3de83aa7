#pragma once
/// The AI Generate command, shared by the editor and the command-line tool:
/// checks the request, produces a plan (cloud AI with offline fall-back, or
/// the offline interpreter), merges refinements into the current model and
/// applies the result as one undo step. It reports through log entries and
/// returns where the view should look; the document changes only when the
/// plan is applied, as the last step.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ai/cloud_plan.h"
#include "ai/plan.h"
#include "bridge/bridge.h"
#include "core/diagram_kind.h"
#include "core/document.h"

namespace modelyne::ai {

/// One line of the command's log: a message key of the shell's string tables
/// (empty for the fixed English texts of this subsystem), the English text
/// (already formatted) and the value the key's text is formatted with
/// (empty when none). A shell with translations looks the key up and fills
/// in `arg`; the command-line tool prints `text`.
struct LogEntry {
  std::string key;
  std::string text;
  std::string arg;

  friend bool operator==(const LogEntry&, const LogEntry&) = default;
};

/// Message keys logged by the command.
inline constexpr std::string_view kKeyQuotaReached = "ui.ai.quota_reached";
inline constexpr std::string_view kKeyRunning = "ui.ai.running";
inline constexpr std::string_view kKeyQuotaRemaining = "ui.ai.quota_remaining";
inline constexpr std::string_view kKeyOfflineHint = "ui.ai.offline_hint";

/// English text of a message key, with "%s" where its argument goes; empty
/// for an unknown key.
std::string_view EnglishText(std::string_view key) noexcept;

/// The cloud AI's daily usage: `limited` false means no limit applies.
struct QuotaState {
  bool limited = false;
  int remaining = 0;  ///< requests left today
};

struct GenerateRequest {
  core::Document* document = nullptr;       ///< the open document, or none
  std::optional<core::DiagramKind> kind;    ///< the open diagram's kind; default: the document frame's
  bool startPageShown = false;
  std::string prompt;
  std::string backend = "offline";          ///< "cloud" or "offline"
  QuotaState quota;
  CloudCall cloud;                          ///< empty: the cloud AI is not configured
  float zoom = 1.0f;                        ///< the view's current zoom
  /// When set, the added nodes are laid out among themselves (below the
  /// existing content, which does not move) in the same undo step.
  std::optional<bridge::LayoutAlgorithm> layout;
};

/// Where the view goes after a plan was applied: centre the box of the new
/// nodes on the canvas at `zoom` (1 when the previous zoom was not positive).
struct ViewFit {
  float minX = 0.0f;
  float minY = 0.0f;
  float maxX = 0.0f;
  float maxY = 0.0f;
  float centerX = 0.0f;
  float centerY = 0.0f;
  float zoom = 1.0f;
};

struct GenerateResult {
  std::vector<LogEntry> log;
  bool applied = false;              ///< whether the document changed (one undo step)
  std::optional<ViewFit> view;       ///< set when applied
  std::vector<std::string> nodeIds;  ///< ids of the inserted nodes
  std::vector<std::string> edgeIds;  ///< ids of the inserted edges
};

/// Runs the AI Generate command. Never throws for a bad request; failures
/// are log entries.
GenerateResult RunAiGenerate(const GenerateRequest& request);

/// Whether a refinement request asks to continue the current model
/// ("more detail", "expand", "refine", ...; whole words, any case).
bool IsContinuationRequest(std::string_view prompt) noexcept;

}  // namespace modelyne::ai
