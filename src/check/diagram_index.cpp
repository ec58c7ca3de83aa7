#include "check/diagram_index.h"

#include <cstring>
#include <functional>

#include "check/element_categories.h"

namespace modelyne::check {

namespace {

std::uint32_t hashOf(std::string_view id) noexcept {
  const std::size_t h = std::hash<std::string_view>{}(id);
  return static_cast<std::uint32_t>(h ^ (h >> 32));
}

// How many probes ahead the id table is prefetched while it is filled and read.
constexpr std::size_t kPrefetchAhead = 16;

// Counting sort of edge positions by one end: rows[start[n] .. start[n+1]).
template <class EndOf>
void buildRows(std::size_t nodeCount, std::size_t edgeCount, EndOf endOf,
               std::vector<std::uint32_t>& start, std::vector<std::uint32_t>& rows) {
  start.assign(nodeCount + 1, 0);
  for (std::size_t e = 0; e < edgeCount; ++e)
    if (const std::int32_t n = endOf(e); n >= 0) ++start[static_cast<std::size_t>(n) + 1];
  for (std::size_t i = 0; i < nodeCount; ++i) start[i + 1] += start[i];
  rows.resize(start[nodeCount]);
  std::vector<std::uint32_t> fill(start.begin(), start.end() - 1);
  for (std::size_t e = 0; e < edgeCount; ++e)
    if (const std::int32_t n = endOf(e); n >= 0)
      rows[fill[static_cast<std::size_t>(n)]++] = static_cast<std::uint32_t>(e);
}

}  // namespace

DiagramIndex::DiagramIndex(std::span<const core::Node> nodes, std::span<const core::Edge> edges)
    : nodes_(nodes), edges_(edges) {
  std::size_t cap = 16;
  while (cap < nodes.size() * 2) cap <<= 1;
  slots_.assign(cap, Slot{});
  mask_ = cap - 1;
  std::vector<std::uint32_t> nodeHashes(nodes.size());
  types_.resize(nodes.size());
  for (std::size_t p = 0; p < nodes.size(); ++p) {
    nodeHashes[p] = hashOf(nodes[p].id);
    types_[p] = nodes[p].type;
  }
  for (std::uint32_t p = 0; p < nodes.size(); ++p) {
    if (p + kPrefetchAhead < nodes.size()) __builtin_prefetch(&slots_[nodeHashes[p + kPrefetchAhead] & mask_]);
    const std::string_view id = nodes[p].id;
    const std::uint32_t h = nodeHashes[p];
    std::size_t i = h & mask_;
    bool taken = false;
    for (; slots_[i].pos1 != 0; i = (i + 1) & mask_) {
      if (slots_[i].hash == h && slotHolds(slots_[i], id)) {
        taken = true;  // a repeated id keeps its first node
        break;
      }
    }
    if (taken) continue;
    Slot& slot = slots_[i];
    slot.pos1 = p + 1;
    slot.hash = h;
    slot.size = static_cast<std::uint32_t>(id.size());
    if (id.size() <= kInline) std::memcpy(slot.inlineId, id.data(), id.size());
  }

  // Resolve every edge end. The hashes come first, in one sequential pass,
  // so that each probe can be prefetched a few ends ahead: the table is too
  // large for the cache, and waiting on one miss at a time dominates.
  const std::size_t endCount = edges.size() * 2;
  std::vector<std::uint32_t> hashes(endCount);
  for (std::size_t e = 0; e < edges.size(); ++e) {
    hashes[2 * e] = hashOf(edges[e].source);
    hashes[2 * e + 1] = hashOf(edges[e].target);
  }
  ends_.resize(edges.size());
  for (std::size_t k = 0; k < endCount; ++k) {
    if (k + kPrefetchAhead < endCount) __builtin_prefetch(&slots_[hashes[k + kPrefetchAhead] & mask_]);
    const core::Edge& e = edges[k / 2];
    if (k % 2 == 0)
      ends_[k / 2].source = findHashed(e.source, hashes[k]);
    else
      ends_[k / 2].target = findHashed(e.target, hashes[k]);
  }
}

void DiagramIndex::buildAdjacency() const {
  buildRows(nodes_.size(), ends_.size(), [&](std::size_t e) { return ends_[e].source; }, outStart_, outEdges_);
  buildRows(nodes_.size(), ends_.size(), [&](std::size_t e) { return ends_[e].target; }, inStart_, inEdges_);
  adjacencyBuilt_ = true;
}

std::int32_t DiagramIndex::find(std::string_view id) const noexcept { return findHashed(id, hashOf(id)); }

std::int32_t DiagramIndex::findHashed(std::string_view id, std::uint32_t h) const noexcept {
  for (std::size_t i = h & mask_; slots_[i].pos1 != 0; i = (i + 1) & mask_) {
    if (slots_[i].hash == h && slotHolds(slots_[i], id))
      return static_cast<std::int32_t>(slots_[i].pos1 - 1);
  }
  return kMissing;
}

bool DiagramIndex::slotHolds(const Slot& slot, std::string_view id) const noexcept {
  if (slot.size != id.size()) return false;
  if (id.size() <= kInline) return std::memcmp(slot.inlineId, id.data(), id.size()) == 0;
  return nodes_[slot.pos1 - 1].id == id;
}

bool DiagramIndex::touchesComment(std::size_t edge) const noexcept {
  const Ends& e = ends_[edge];
  return (e.source != kMissing && isComment(typeAt(e.source))) ||
         (e.target != kMissing && isComment(typeAt(e.target)));
}

std::span<const std::uint32_t> DiagramIndex::outgoing(std::int32_t node) const {
  if (node < 0) return {};
  if (!adjacencyBuilt_) buildAdjacency();
  const auto n = static_cast<std::size_t>(node);
  return std::span<const std::uint32_t>(outEdges_).subspan(outStart_[n], outStart_[n + 1] - outStart_[n]);
}

std::span<const std::uint32_t> DiagramIndex::incoming(std::int32_t node) const {
  if (node < 0) return {};
  if (!adjacencyBuilt_) buildAdjacency();
  const auto n = static_cast<std::size_t>(node);
  return std::span<const std::uint32_t>(inEdges_).subspan(inStart_[n], inStart_[n + 1] - inStart_[n]);
}

}  // namespace modelyne::check
