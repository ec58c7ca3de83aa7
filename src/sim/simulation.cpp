#include "sim/simulation.h"

#include <cmath>

#include "sim/propagation.h"
#include "sim/sequence_sim.h"
#include "sim/state_sim.h"
#include "sim/token_sim.h"

namespace modelyne::core::sim {

std::string_view simulationKindName(SimulationKind kind) noexcept {
  switch (kind) {
    case SimulationKind::activity: return "activity";
    case SimulationKind::sequence: return "sequence";
    case SimulationKind::stateMachine: return "state machine";
  }
  return "activity";
}

RunStatus Simulation::run() {
  while (step()) {
  }
  return status();
}

bool Simulation::choose(std::string_view, std::string_view) { return false; }

void Simulation::record(TraceEvent event) {
  if (options_.sink)
    options_.sink(event);
  else
    trace_.push_back(std::move(event));
}

void Simulation::problem(std::string elementId, std::string message, bool option) {
  problems_.push_back({std::move(elementId), std::move(message), option});
}

SimulationKind simulationKindFor(DiagramKind kind) noexcept {
  if (kind == DiagramKind::sd) return SimulationKind::sequence;
  if (kind == DiagramKind::stm) return SimulationKind::stateMachine;
  return SimulationKind::activity;
}

GuardValues guardValues(std::span<const Node> nodes, std::span<const Edge> edges,
                        const SimulationOptions& options) {
  GuardValues values;
  bool anyValueProperty = false;
  for (const Node& n : nodes) anyValueProperty = anyValueProperty || n.type == ShapeType::sysmlValueProperty;
  // Propagation is only worth running when the diagram holds values.
  if (anyValueProperty) {
    const parametric::PropagationResult result = parametric::propagate(nodes, edges);
    for (const parametric::ValueEntry& v : result.values)
      if (v.known && !std::isnan(v.value) && !v.name.empty()) values.emplace(v.name, v.value);
  }
  for (const auto& [name, value] : options.values) values[name] = value;
  return values;
}

std::unique_ptr<Simulation> makeSimulation(SimulationKind kind, std::span<const Node> nodes,
                                           std::span<const Edge> edges, SimulationOptions options) {
  switch (kind) {
    case SimulationKind::sequence: return makeSequenceSimulation(nodes, edges, std::move(options));
    case SimulationKind::stateMachine: return makeStateMachineSimulation(nodes, edges, std::move(options));
    case SimulationKind::activity: break;
  }
  return makeActivitySimulation(nodes, edges, std::move(options));
}

std::unique_ptr<Simulation> makeSimulation(DiagramKind kind, std::span<const Node> nodes,
                                           std::span<const Edge> edges, SimulationOptions options) {
  return makeSimulation(simulationKindFor(kind), nodes, edges, std::move(options));
}

}  // namespace modelyne::core::sim
