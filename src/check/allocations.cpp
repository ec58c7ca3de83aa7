// Allocation rules, run on every kind: no circular chains, no element
// allocated to itself, requirements traced rather than allocated, behaviour
// allocated to structure rather than to behaviour, no repeated allocation.
//
// Each end of an allocation has a category (item flow, behavioural or
// structural; see element_categories.h). The behaviour-to-behaviour rule
// reads the categories. Cycles are looked for across categories: a chain
// that passes from a behaviour through blocks back to the behaviour is just
// as circular as one among blocks.

#include <algorithm>
#include <cstdint>
#include <vector>

#include "check/element_categories.h"
#include "check/first_seen.h"
#include "check/rules.h"

namespace modelyne::check {

namespace {

// Marks the allocations whose two ends lie on one cycle: the ends share a
// strongly connected component (Tarjan's algorithm, iterative, linear).
// Self-allocations have their own finding and are left out of the graph.
std::vector<char> onCycle(const DiagramIndex& diagram, std::span<const std::uint32_t> allocations) {
  const std::size_t n = diagram.nodes().size();
  // Adjacency of the allocation graph in compressed rows.
  std::vector<std::uint32_t> start(n + 1, 0);
  for (const std::uint32_t e : allocations)
    if (diagram.source(e) != diagram.target(e)) ++start[static_cast<std::size_t>(diagram.source(e)) + 1];
  for (std::size_t i = 0; i < n; ++i) start[i + 1] += start[i];
  std::vector<std::uint32_t> next(start[n]);
  {
    std::vector<std::uint32_t> fill(start.begin(), start.end() - 1);
    for (const std::uint32_t e : allocations)
      if (diagram.source(e) != diagram.target(e))
        next[fill[static_cast<std::size_t>(diagram.source(e))]++] =
            static_cast<std::uint32_t>(diagram.target(e));
  }

  constexpr std::uint32_t kUnvisited = 0xFFFFFFFFu;
  std::vector<std::uint32_t> order(n, kUnvisited), low(n, 0), component(n, kUnvisited);
  std::vector<std::uint32_t> tarjanStack;
  struct Frame {
    std::uint32_t node;
    std::uint32_t edge;  // next adjacency position to explore
  };
  std::vector<Frame> callStack;
  std::uint32_t counter = 0;
  std::uint32_t components = 0;

  for (std::uint32_t root = 0; root < n; ++root) {
    if (order[root] != kUnvisited || start[root] == start[root + 1]) continue;
    callStack.push_back({root, start[root]});
    order[root] = low[root] = counter++;
    tarjanStack.push_back(root);
    while (!callStack.empty()) {
      Frame& f = callStack.back();
      if (f.edge < start[f.node + 1]) {
        const std::uint32_t w = next[f.edge++];
        if (order[w] == kUnvisited) {
          order[w] = low[w] = counter++;
          tarjanStack.push_back(w);
          callStack.push_back({w, start[w]});
        } else if (component[w] == kUnvisited) {
          low[f.node] = std::min(low[f.node], order[w]);
        }
        continue;
      }
      const std::uint32_t v = f.node;
      callStack.pop_back();
      if (!callStack.empty()) low[callStack.back().node] = std::min(low[callStack.back().node], low[v]);
      if (low[v] == order[v]) {
        std::uint32_t w;
        do {
          w = tarjanStack.back();
          tarjanStack.pop_back();
          component[w] = components;
        } while (w != v);
        ++components;
      }
    }
  }

  std::vector<char> cyclic(allocations.size(), 0);
  for (std::size_t k = 0; k < allocations.size(); ++k) {
    const auto s = static_cast<std::size_t>(diagram.source(allocations[k]));
    const auto t = static_cast<std::size_t>(diagram.target(allocations[k]));
    cyclic[k] = s != t && component[s] == component[t] ? 1 : 0;
  }
  return cyclic;
}

}  // namespace

void checkAllocations(const DiagramIndex& diagram, Findings& findings) {
  const auto edges = diagram.edges();
  std::vector<std::uint32_t> allocations;
  for (std::size_t i = 0; i < edges.size(); ++i)
    if (edges[i].type == core::EdgeType::sysmlAllocate && diagram.resolved(i))
      allocations.push_back(static_cast<std::uint32_t>(i));
  if (allocations.empty()) return;

  const std::vector<char> cyclic = onCycle(diagram, allocations);
  FirstSeen seenPairs(allocations.size());

  for (std::size_t k = 0; k < allocations.size(); ++k) {
    const std::uint32_t i = allocations[k];
    const core::Edge& e = edges[i];
    const core::ShapeType sourceType = diagram.sourceType(i);
    const core::ShapeType targetType = diagram.targetType(i);
    if (cyclic[k])
      findings.add({"Edge '", e.id,
                    "' participates in a circular «allocate» chain (§14.11.1 — allocations must not "
                    "be circular)."});
    if (diagram.source(i) == diagram.target(i))
      findings.add({"Edge '", e.id, "' allocates element '", e.source,
                    "' to itself (§14.2 — an allocation relates two distinct model elements)."});
    if (isRequirement(targetType))
      findings.add({"Edge '", e.id,
                    "' uses «allocate» to a requirement; §14.4.1 requires requirement allocation to "
                    "use «satisfy» / «deriveReqt» / «refine», not «allocate»."});
    if (allocationCategory(sourceType) == AllocationCategory::behavioral &&
        allocationCategory(targetType) == AllocationCategory::behavioral)
      findings.add({"Edge '", e.id,
                    "' allocates a behavior to another behavior; §14.11.1 flags this as an "
                    "inappropriate allocation (behavior is allocated to structure)."});
    const std::uint64_t pair = (static_cast<std::uint64_t>(diagram.source(i)) << 32) |
                               static_cast<std::uint32_t>(diagram.target(i));
    const auto samePair = [&](std::uint32_t other) {
      const std::uint32_t o = allocations[other];
      return diagram.source(o) == diagram.source(i) && diagram.target(o) == diagram.target(i);
    };
    if (seenPairs.firstOf(pair * 0x9E3779B97F4A7C15ULL, static_cast<std::uint32_t>(k), samePair) !=
        FirstSeen::kNew)
      findings.add({"Edge '", e.id, "' is a redundant allocation: '", e.source, "' → '", e.target,
                    "' is already allocated with the same relationship (§14.11.1 — redundant "
                    "allocations should be removed)."});
  }
}

}  // namespace modelyne::check
