// Fuzzes the guard parser and the three behaviour simulations. The first
// line of the input is evaluated as a guard; the rest builds a diagram: one
// node per line (a header byte for the type and an edge, two geometry
// bytes, then "label|property value"), the label doubling as the edge's
// label. Every run must end with exactly one end event, within its limits.

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "core/model.h"
#include "sim/guard.h"
#include "sim/simulation.h"

using namespace modelyne;

namespace {

constexpr core::ShapeType kTypes[] = {
    core::ShapeType::umlInitialNode,      core::ShapeType::umlAction,
    core::ShapeType::umlDecision,         core::ShapeType::umlForkJoin,
    core::ShapeType::umlFinalNode,        core::ShapeType::sysmlFlowFinalNode,
    core::ShapeType::bpmnTask,            core::ShapeType::bpmnInclusiveGateway,
    core::ShapeType::umlLifeline,         core::ShapeType::umlActivation,
    core::ShapeType::umlCombinedFragment, core::ShapeType::sysmlStateUsage,
    core::ShapeType::sysmlCompositeState, core::ShapeType::sysmlChoicePseudostate,
    core::ShapeType::sysmlShallowHistoryPseudostate, core::ShapeType::sysmlDeepHistoryPseudostate,
};
constexpr core::EdgeType kEdges[] = {core::EdgeType::sysmlControlFlow, core::EdgeType::bpmnSequence,
                                     core::EdgeType::sysmlSyncMessage, core::EdgeType::sysmlTransition};
constexpr const char* kKeys[] = {"operator", "guard", "guard2", "numOperands", "operandSplits", "entry"};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view input(reinterpret_cast<const char*>(data), size);
  const auto first = input.find('\n');
  core::sim::GuardValues values{{"x", 1.0}, {"y", 2.0}};
  const core::sim::GuardResult g = core::sim::evaluateGuard(input.substr(0, first), values);
  if (g.outcome == core::sim::GuardOutcome::unknown && g.reason.empty()) std::abort();
  input.remove_prefix(first == std::string_view::npos ? input.size() : first + 1);

  std::vector<core::Node> nodes;
  std::vector<core::Edge> edges;
  while (!input.empty() && nodes.size() < 200) {
    const auto nl = input.find('\n');
    std::string_view line = input.substr(0, nl);
    input.remove_prefix(nl == std::string_view::npos ? input.size() : nl + 1);
    if (line.size() < 3) continue;
    const auto header = static_cast<std::uint8_t>(line[0]);
    const auto gx = static_cast<std::uint8_t>(line[1]), gy = static_cast<std::uint8_t>(line[2]);
    line.remove_prefix(3);
    core::Node n;
    n.id = "n" + std::to_string(nodes.size());
    n.type = kTypes[header & 15];
    n.geom = {static_cast<float>(gx % 16) * 40.0f, static_cast<float>(gy % 16) * 40.0f,
              static_cast<float>(gx / 16) * 30.0f, static_cast<float>(gy / 16) * 30.0f};
    const auto bar = line.find('|');
    n.text = std::string(line.substr(0, bar));
    if (bar != std::string_view::npos) n.properties[kKeys[(header >> 4) % 6]] = std::string(line.substr(bar + 1));
    if ((header & 0x40) && !nodes.empty()) {
      core::Edge e;
      e.id = "e" + std::to_string(edges.size());
      e.source = (header & 0x80) ? n.id : nodes[gx % nodes.size()].id;
      e.target = nodes[(gx + gy) % nodes.size()].id;
      if (gy & 0x80) e.target = "missing";
      e.type = kEdges[(gx >> 2) & 3];
      e.text = n.text;
      e.srcAnchorDY = static_cast<float>(gy);
      edges.push_back(std::move(e));
    }
    nodes.push_back(std::move(n));
  }

  for (const auto kind : {core::sim::SimulationKind::activity, core::sim::SimulationKind::sequence,
                          core::sim::SimulationKind::stateMachine}) {
    core::sim::SimulationOptions options;
    options.maxSteps = 64;
    options.events = {"n1", "n2", "x", "n3"};
    options.loops["n2"] = 1000000;
    auto sim = core::sim::makeSimulation(kind, nodes, edges, options);
    sim->run();
    const auto& trace = sim->trace();
    if (trace.empty() || trace.back().kind != core::sim::EventKind::end) std::abort();
    for (std::size_t i = 0; i + 1 < trace.size(); ++i)
      if (trace[i].kind == core::sim::EventKind::end) std::abort();
    (void)sim->marking();
    sim->reset();
    if (!sim->trace().empty()) std::abort();
  }
  return 0;
}
