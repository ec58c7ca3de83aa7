#pragma once
// What propagation works on: the values of a parametric diagram and its
// equations with every name resolved to a value. Built from nodes and edges
// by `readDiagram`; internal to modelyne_sim.

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "core/model.h"
#include "sim/propagation.h"

namespace modelyne::core::sim::parametric::detail {

/// Where a given value came from (the detail of a valueRead event).
enum ValueSource : std::uint32_t { kFromValue = 0, kFromDefault = 1, kFromLabel = 2, kCycleStart = 3 };

struct ModelValue {
  std::string name;                       // shown to the user
  std::string key;                        // its unique name in the variable table
  std::string nodeId;
  std::vector<std::string> valueNodeIds;  // value properties bound to it
  bool given = false;
  double value = 0.0;
  std::uint32_t source = kFromValue;
};

struct ModelEquation {
  Equation info;
  std::string expression;       // rewritten over the values' table keys
  std::uint32_t target = 0;     // index into values
  std::vector<std::uint32_t> reads;  // distinct values read, in order of first use
  std::size_t errorOffset = 0;  // where a rejected equation went wrong
};

struct DiagramModel {
  std::vector<ModelValue> values;
  std::vector<ModelEquation> equations;
  std::vector<PropagationError> errors;
};

DiagramModel readDiagram(std::span<const Node> nodes, std::span<const Edge> edges);

}  // namespace modelyne::core::sim::parametric::detail
