#pragma once
/// DiagramIndex: what the rules look up, built once per check in linear
/// time: node position by id, the resolved ends of every edge, and each
/// node's incoming and outgoing edges. When two nodes share an id (possible
/// in a bare node list), the first one answers for it.

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "core/model.h"

namespace modelyne::check {

class DiagramIndex {
 public:
  static constexpr std::int32_t kMissing = -1;

  DiagramIndex(std::span<const core::Node> nodes, std::span<const core::Edge> edges);

  std::span<const core::Node> nodes() const noexcept { return nodes_; }
  std::span<const core::Edge> edges() const noexcept { return edges_; }

  /// Position of the first node with this id, or kMissing.
  std::int32_t find(std::string_view id) const noexcept;

  /// Position of the edge's source / target node, or kMissing.
  std::int32_t source(std::size_t edge) const noexcept { return ends_[edge].source; }
  std::int32_t target(std::size_t edge) const noexcept { return ends_[edge].target; }
  /// The edge's source / target node, or nullptr when the id names none.
  const core::Node* sourceNode(std::size_t edge) const noexcept { return at(ends_[edge].source); }
  const core::Node* targetNode(std::size_t edge) const noexcept { return at(ends_[edge].target); }
  /// Whether both ends name a node.
  bool resolved(std::size_t edge) const noexcept {
    return ends_[edge].source != kMissing && ends_[edge].target != kMissing;
  }

  /// Positions of the edges leaving / entering the node, in edge order.
  std::span<const std::uint32_t> outgoing(std::int32_t node) const noexcept;
  std::span<const std::uint32_t> incoming(std::int32_t node) const noexcept;

 private:
  struct Ends {
    std::int32_t source;
    std::int32_t target;
  };

  const core::Node* at(std::int32_t i) const noexcept {
    return i == kMissing ? nullptr : &nodes_[static_cast<std::size_t>(i)];
  }

  std::span<const core::Node> nodes_;
  std::span<const core::Edge> edges_;
  // Open addressing: slot holds node position + 1 (0 = empty) and its hash.
  std::vector<std::uint32_t> slotPos_;
  std::vector<std::uint32_t> slotHash_;
  std::size_t mask_ = 0;
  std::vector<Ends> ends_;
  // Adjacency in compressed rows: node i's edges are [start[i], start[i+1]).
  std::vector<std::uint32_t> outStart_, outEdges_, inStart_, inEdges_;
};

}  // namespace modelyne::check
