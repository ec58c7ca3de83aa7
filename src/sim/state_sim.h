#pragma once
/// State machine simulation: the initial transition, then each offered
/// event in turn through triggers, guards, choice and junction
/// pseudostates, composite states and history. The rules are written where
/// they are applied, in state_sim.cpp.

#include <memory>
#include <span>

#include "sim/simulation.h"

namespace modelyne::core::sim {

std::unique_ptr<Simulation> makeStateMachineSimulation(std::span<const Node> nodes, std::span<const Edge> edges,
                                                       SimulationOptions options);

}  // namespace modelyne::core::sim
