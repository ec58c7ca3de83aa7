#pragma once
/// Activity token simulation: tokens on the flows of an activity (UML,
/// SysML or BPMN), moved in rounds. The rules per node type are written
/// where they are applied, in token_sim.cpp.

#include <memory>
#include <span>

#include "sim/simulation.h"

namespace modelyne::core::sim {

std::unique_ptr<Simulation> makeActivitySimulation(std::span<const Node> nodes, std::span<const Edge> edges,
                                                   SimulationOptions options);

}  // namespace modelyne::core::sim
