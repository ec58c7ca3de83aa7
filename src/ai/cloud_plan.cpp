#include "ai/cloud_plan.h"

#include "ai/prompts.h"

namespace modelyne::ai {

namespace {

void appendLine(std::string& log, std::string_view line) {
  if (!log.empty() && log.back() != '\n') log += '\n';
  log += line;
}

}  // namespace

bool GeneratePlanWithCloud(std::string_view userText, const DiagramPlan* current, DiagramPlan& plan,
                           std::string& log, const CloudCall& call) {
  if (!call) return false;
  const bool refine = current != nullptr && !current->nodes.empty();
  const std::string prompt = refine ? BuildRefinePrompt(*current, userText) : BuildGeneratePrompt(userText);
  std::optional<std::string> reply;
  try {
    reply = call(refine ? kCloudRequestRefine : kCloudRequestGenerate, prompt, kCloudTokenBudget);
  } catch (...) {
    // A client that throws has failed like one that returns nothing.
    return false;
  }
  if (!reply) return false;
  if (ParsePlan(*reply, plan)) {
    appendLine(log, kMsgCloudPlanGenerated);
    return true;
  }
  appendLine(log, kMsgCloudNoValidPlan);
  return false;
}

}  // namespace modelyne::ai
