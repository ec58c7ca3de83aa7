#pragma once
/// Sequence message simulation: the messages of an interaction in the order
/// of their height, through its combined fragments (alt, opt, loop, par,
/// break). The rules are written where they are applied, in
/// sequence_sim.cpp.

#include <memory>
#include <span>

#include "sim/simulation.h"

namespace modelyne::core::sim {

std::unique_ptr<Simulation> makeSequenceSimulation(std::span<const Node> nodes, std::span<const Edge> edges,
                                                   SimulationOptions options);

}  // namespace modelyne::core::sim
