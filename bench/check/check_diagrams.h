#pragma once
// Synthetic diagrams for the checker's benchmarks: for one diagram kind, N
// nodes cycling through the kind's allowed shape types, with the properties
// its rules read (reqIds with repeats, fragment operators and operand
// counts, stereotypes, names with repeats), about 1.5 N edges of the kind's
// edge types between nearby nodes (transition labels, some malformed), and
// an allocation chain of N / 20 edges closed into a cycle at its first 1000.

#include <cstddef>
#include <vector>

#include "core/diagram_kind.h"
#include "core/model.h"

namespace modelyne::bench {

struct CheckDiagram {
  std::vector<core::Node> nodes;
  std::vector<core::Edge> edges;
};

CheckDiagram checkDiagram(core::DiagramKind kind, std::size_t nodeCount);

}  // namespace modelyne::bench
