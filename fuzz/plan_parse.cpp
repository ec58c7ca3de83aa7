// ParsePlan on arbitrary text: never throws or crashes, and what it parses
// writes back as text that parses to as many nodes and edges, after which
// writing and parsing is a fixed point. (The writer does not escape: an id
// ending in "TITLE" or a field ending in blanks cannot survive a round trip,
// so such plans are only parsed.) Applied to a document, a parsed plan
// leaves no text there that XML 1.0 cannot hold.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "ai/plan.h"
#include "ai/plan_apply.h"
#include "core/text_chars.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using modelyne::ai::DiagramPlan;
  using modelyne::ai::ParsePlan;
  using modelyne::ai::WritePlan;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  DiagramPlan plan;
  if (!ParsePlan(text, plan)) return 0;
  if (plan.nodes.empty()) std::abort();
  modelyne::core::Document doc;
  modelyne::ai::ApplyPlan(&doc, modelyne::core::DiagramKind::bdd, plan);
  using modelyne::core::cleanText;
  for (const auto& n : doc.nodes())
    if (n.id != cleanText(n.id) || n.text != cleanText(n.text)) std::abort();
  for (const auto& e : doc.edges())
    if (e.text != cleanText(e.text)) std::abort();
  const std::string written = WritePlan(plan);
  if (written.find("TITLE|", 1) != std::string::npos) return 0;
  DiagramPlan again;
  if (!ParsePlan(written, again)) std::abort();
  if (again.nodes.size() != plan.nodes.size() || again.edges.size() != plan.edges.size()) std::abort();
  const std::string second = WritePlan(again);
  DiagramPlan third;
  if (!ParsePlan(second, third) || WritePlan(third) != second) std::abort();
  return 0;
}
