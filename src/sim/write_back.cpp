#include "sim/write_back.h"

#include <cmath>
#include <string>
#include <vector>

#include "sim/number_text.h"

namespace modelyne::core::sim::parametric {

std::size_t writeBackValues(bridge::DocumentHandle document, const PropagationResult& result) {
  if (document == nullptr) throw bridge::BridgeError(bridge::kInvalidArgument, "Document handle is null");
  std::vector<bridge::PropertyChange> changes;
  for (const ValueEntry& v : result.values) {
    if (v.equation < 0 || !v.known || !std::isfinite(v.value)) continue;
    const std::string text = shortestNumberText(v.value);
    for (const std::string& id : v.valueNodeIds) {
      const Node* node = document->findNode(id);
      if (node == nullptr) continue;
      const auto it = node->properties.find("value");
      if (it != node->properties.end() && it->second == text) continue;
      changes.push_back({id, "value", text});
    }
  }
  if (changes.empty()) return 0;
  return bridge::setNodeProperties(document, changes);
}

}  // namespace modelyne::core::sim::parametric
