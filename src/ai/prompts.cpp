#include "ai/prompts.h"

#include "ai/activity.h"

namespace modelyne::ai {

namespace {

constexpr std::string_view kPreamble = "You are Modelyne diagram model generator.\n";

constexpr std::string_view kTemplateAndKinds =
    "TITLE|short title\n"
    "NODE|id|kind|label\n"
    "EDGE|sourceId|targetId|kind|label\n"
    "Allowed node kinds: Block, Actor, State, Action, UseCase, Requirement, Constraint, Interface, Generic.\n"
    "Allowed edge kinds: Connection, Containment, Flow, Generalization, Dependency, Satisfy, Allocate.\n";

constexpr std::string_view kGenerateRules =
    "Use simple ids such as n1, n2, n3. Keep labels concise.\n"
    "Do not invent entities outside the user's domain. Only use the schema example\n"
    "below as a format template; ignore its placeholder names.\n";

constexpr std::string_view kActivityInstructions =
    "The user requested an activity, workflow, flowchart, or procedure diagram.\n"
    "For this request, use Action for every step node and Flow for every transition edge.\n"
    "Do not use Block or Containment for activity steps.\n";

constexpr std::string_view kExampleHead =
    "Format example (do not copy the placeholder labels into your answer):\n"
    "TITLE|<short title>\n";

constexpr std::string_view kActivityExample =
    "NODE|n1|Action|<step 1>\n"
    "NODE|n2|Action|<step 2>\n"
    "NODE|n3|Action|<step 3>\n"
    "EDGE|n1|n2|Flow|next\n"
    "EDGE|n2|n3|Flow|next\n";

constexpr std::string_view kStructureExample =
    "NODE|n1|Block|<entity 1>\n"
    "NODE|n2|Block|<entity 2>\n"
    "EDGE|n1|n2|Containment|contains\n";

constexpr std::string_view kRefineDomain =
    "You are REFINING an existing diagram on the user's canvas. Stay inside\n"
    "the same domain as the existing diagram. Do NOT introduce unrelated\n"
    "subject matter (for example, do not switch from a computer architecture\n"
    "model to a car engine, transmission, kitchen workflow, or any other\n"
    "unrelated topic). Treat the existing diagram as authoritative ground\n"
    "truth and only add or refine elements that are consistent with it.\n"
    "\n"
    "Return only the COMPLETE updated diagram as pipe-delimited lines, no\n"
    "Markdown and no explanation:\n";

constexpr std::string_view kRefineRules =
    "Rules:\n"
    "  * Begin your answer by repeating every CURRENT MODEL NODE line with\n"
    "    its existing id. Then repeat every CURRENT MODEL EDGE line unless\n"
    "    the user explicitly asked to remove it. Append new NODE and EDGE\n"
    "    lines after the preserved model.\n"
    "  * Preserve every existing NODE id (n1, n2, …) and reuse those ids in\n"
    "    your output. Keep the same kind unless the user explicitly asked\n"
    "    to change it. You may shorten or rephrase a label, but it must\n"
    "    still refer to the same real-world entity.\n"
    "  * Preserve every existing EDGE unless the user explicitly asked to\n"
    "    remove it.\n"
    "  * Add new nodes using fresh ids that continue the n1, n2, … sequence.\n"
    "  * Connect every new node to at least one existing node so the\n"
    "    diagram remains a single connected model.\n"
    "  * If the user request is a vague continuation, add conservative\n"
    "    requirement, constraint, interface, or action detail that is clearly\n"
    "    tied to existing nodes. Return unchanged only when no safe\n"
    "    domain-preserving detail can be added.\n";

}  // namespace

std::string BuildGeneratePrompt(std::string_view userText) {
  const bool activity = IsActivityRequest(userText);
  std::string out;
  out.reserve(1400 + userText.size());
  out += kPreamble;
  out += "Convert the user's system description into a diagram plan.\n";
  out += "Return only these pipe-delimited lines, no Markdown and no explanation:\n";
  out += kTemplateAndKinds;
  out += kGenerateRules;
  if (activity) out += kActivityInstructions;
  out += kExampleHead;
  out += activity ? kActivityExample : kStructureExample;
  out += "User prompt:\n";
  out += userText;
  out += '\n';
  return out;
}

std::string BuildRefinePrompt(const DiagramPlan& current, std::string_view userText) {
  std::string out;
  out += kPreamble;
  out += kRefineDomain;
  out += kTemplateAndKinds;
  out += kRefineRules;
  out += "CURRENT MODEL:\n";
  out += WritePlan(current);
  out += "User refinement request:\n";
  out += userText;
  out += '\n';
  return out;
}

}  // namespace modelyne::ai
