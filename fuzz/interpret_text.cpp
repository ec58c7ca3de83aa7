// InterpretText on arbitrary text: never throws or crashes; nodes are
// n1..nN in order, on the grid, and every edge joins two different nodes.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <unordered_set>

#include "ai/interpreter.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const modelyne::ai::DiagramPlan plan = modelyne::ai::InterpretText(text);
  std::unordered_set<std::string> ids;
  for (std::size_t i = 0; i < plan.nodes.size(); ++i) {
    const auto& n = plan.nodes[i];
    if (n.id != "n" + std::to_string(i + 1) || n.label.empty()) std::abort();
    if (n.x != static_cast<float>(i % 3) * 220.0f + 80.0f || n.y != static_cast<float>(i / 3) * 150.0f + 80.0f)
      std::abort();
    ids.insert(n.id);
  }
  for (const auto& e : plan.edges)
    if (!ids.count(e.source) || !ids.count(e.target) || e.source == e.target) std::abort();
  if (plan.title.empty() != plan.notes.empty()) std::abort();
  return 0;
}
