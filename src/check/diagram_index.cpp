#include "check/diagram_index.h"

#include <functional>

namespace modelyne::check {

namespace {

std::uint32_t hashOf(std::string_view id) noexcept {
  const std::size_t h = std::hash<std::string_view>{}(id);
  return static_cast<std::uint32_t>(h ^ (h >> 32));
}

// Counting sort of edge positions by one end: rows[start[n] .. start[n+1]).
void buildRows(std::size_t nodeCount, std::span<const std::int32_t> endOf,
               std::vector<std::uint32_t>& start, std::vector<std::uint32_t>& rows) {
  start.assign(nodeCount + 1, 0);
  for (const std::int32_t n : endOf)
    if (n >= 0) ++start[static_cast<std::size_t>(n) + 1];
  for (std::size_t i = 0; i < nodeCount; ++i) start[i + 1] += start[i];
  rows.resize(start[nodeCount]);
  std::vector<std::uint32_t> fill(start.begin(), start.end() - 1);
  for (std::size_t e = 0; e < endOf.size(); ++e)
    if (endOf[e] >= 0) rows[fill[static_cast<std::size_t>(endOf[e])]++] = static_cast<std::uint32_t>(e);
}

}  // namespace

DiagramIndex::DiagramIndex(std::span<const core::Node> nodes, std::span<const core::Edge> edges)
    : nodes_(nodes), edges_(edges) {
  std::size_t cap = 16;
  while (cap < nodes.size() * 2) cap <<= 1;
  slotPos_.assign(cap, 0);
  slotHash_.assign(cap, 0);
  mask_ = cap - 1;
  for (std::size_t p = 0; p < nodes.size(); ++p) {
    const std::string_view id = nodes[p].id;
    const std::uint32_t h = hashOf(id);
    std::size_t i = h & mask_;
    bool taken = false;
    for (; slotPos_[i] != 0; i = (i + 1) & mask_) {
      if (slotHash_[i] == h && nodes[slotPos_[i] - 1].id == id) {
        taken = true;  // a repeated id keeps its first node
        break;
      }
    }
    if (taken) continue;
    slotPos_[i] = static_cast<std::uint32_t>(p + 1);
    slotHash_[i] = h;
  }

  ends_.resize(edges.size());
  std::vector<std::int32_t> sources(edges.size());
  std::vector<std::int32_t> targets(edges.size());
  for (std::size_t e = 0; e < edges.size(); ++e) {
    sources[e] = find(edges[e].source);
    targets[e] = find(edges[e].target);
    ends_[e] = Ends{sources[e], targets[e]};
  }
  buildRows(nodes.size(), sources, outStart_, outEdges_);
  buildRows(nodes.size(), targets, inStart_, inEdges_);
}

std::int32_t DiagramIndex::find(std::string_view id) const noexcept {
  const std::uint32_t h = hashOf(id);
  for (std::size_t i = h & mask_; slotPos_[i] != 0; i = (i + 1) & mask_) {
    const std::uint32_t p = slotPos_[i] - 1;
    if (slotHash_[i] == h && nodes_[p].id == id) return static_cast<std::int32_t>(p);
  }
  return kMissing;
}

std::span<const std::uint32_t> DiagramIndex::outgoing(std::int32_t node) const noexcept {
  if (node < 0) return {};
  const auto n = static_cast<std::size_t>(node);
  return std::span<const std::uint32_t>(outEdges_).subspan(outStart_[n], outStart_[n + 1] - outStart_[n]);
}

std::span<const std::uint32_t> DiagramIndex::incoming(std::int32_t node) const noexcept {
  if (node < 0) return {};
  const auto n = static_cast<std::size_t>(node);
  return std::span<const std::uint32_t>(inEdges_).subspan(inStart_[n], inStart_[n + 1] - inStart_[n]);
}

}  // namespace modelyne::check
