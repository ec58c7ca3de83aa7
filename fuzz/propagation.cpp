// Fuzzes propagation over diagrams built from arbitrary bytes: labels,
// equations, values, geometry and binding connectors all come from the
// input. Propagation must not throw, and its trace must count from 1.

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "core/model.h"
#include "sim/propagation.h"

using namespace modelyne;

namespace {

constexpr core::ShapeType kTypes[] = {
    core::ShapeType::sysmlValueProperty,       core::ShapeType::sysmlConstraintProperty,
    core::ShapeType::sysmlConstraintUsage,     core::ShapeType::sysmlConstraintBlock,
    core::ShapeType::sysmlConstraintDef,       core::ShapeType::sysmlConstraintParameter,
    core::ShapeType::sysmlConstraintParameter, core::ShapeType::sysmlBlock,
};
constexpr const char* kKeys[] = {"value", "default", "equation", "bindings", "type", "definition"};

}  // namespace

// One node per line: a header byte (type, property key, edge), two
// geometry bytes, then "label|property value" ("\x01" stands for a line
// break inside the property value).
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view input(reinterpret_cast<const char*>(data), size);
  std::vector<core::Node> nodes;
  std::vector<core::Edge> edges;
  while (!input.empty() && nodes.size() < 256) {
    const auto nl = input.find('\n');
    std::string_view line = input.substr(0, nl);
    input.remove_prefix(nl == std::string_view::npos ? input.size() : nl + 1);
    if (line.size() < 3) continue;
    const auto header = static_cast<std::uint8_t>(line[0]);
    const auto gx = static_cast<std::uint8_t>(line[1]), gy = static_cast<std::uint8_t>(line[2]);
    line.remove_prefix(3);
    core::Node n;
    n.id = "n" + std::to_string(nodes.size());
    n.type = kTypes[header & 7];
    n.geom = {static_cast<float>(gx % 16) * 20.0f, static_cast<float>(gy % 16) * 20.0f,
              static_cast<float>(gx / 16) * 10.0f, static_cast<float>(gy / 16) * 10.0f};
    const auto bar = line.find('|');
    n.text = std::string(line.substr(0, bar));
    if (bar != std::string_view::npos) {
      std::string value(line.substr(bar + 1));
      for (char& c : value)
        if (c == '\x01') c = '\n';
      n.properties[kKeys[(header >> 3) % 6]] = std::move(value);
    }
    if ((header & 0x40) && !nodes.empty()) {
      core::Edge e;
      e.id = "e" + std::to_string(edges.size());
      e.source = n.id;
      e.target = nodes[(gx + gy) % nodes.size()].id;
      e.type = (header & 0x80) ? core::EdgeType::sysmlBindingConnector : core::EdgeType::association;
      edges.push_back(std::move(e));
    }
    nodes.push_back(std::move(n));
  }
  const auto result = core::sim::parametric::propagate(nodes, edges);
  for (std::size_t i = 0; i < result.trace.size(); ++i)
    if (result.trace[i].sequence != i + 1) std::abort();
  if (result.trace.empty() || result.trace.back().code != core::sim::parametric::TraceCode::converged) std::abort();
  return 0;
}
