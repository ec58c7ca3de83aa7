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
  /// Shape type of the node at a position (a compact copy: edge loops read
  /// the types of both ends without touching the node records).
  core::ShapeType typeAt(std::int32_t node) const noexcept { return types_[static_cast<std::size_t>(node)]; }
  /// Shape types of the edge's ends; only for an end that names a node.
  core::ShapeType sourceType(std::size_t edge) const noexcept { return typeAt(ends_[edge].source); }
  core::ShapeType targetType(std::size_t edge) const noexcept { return typeAt(ends_[edge].target); }
  /// Whether either end names a comment-like node (see isComment).
  bool touchesComment(std::size_t edge) const noexcept;
  /// Whether both ends name a node.
  bool resolved(std::size_t edge) const noexcept {
    return ends_[edge].source != kMissing && ends_[edge].target != kMissing;
  }

  /// Positions of the edges leaving / entering the node, in edge order. The
  /// adjacency is built on first use, as only some rule groups need it.
  std::span<const std::uint32_t> outgoing(std::int32_t node) const;
  std::span<const std::uint32_t> incoming(std::int32_t node) const;

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

  // Open addressing: a slot holds the node position + 1 (0 = empty), the
  // id's hash and, for ids of up to kInline bytes, the id itself, so that a
  // lookup reads one cache line; longer ids are compared with the node's.
  static constexpr std::size_t kInline = 20;
  struct Slot {
    std::uint32_t pos1 = 0;
    std::uint32_t hash = 0;
    std::uint32_t size = 0;
    char inlineId[kInline] = {};
  };
  bool slotHolds(const Slot& slot, std::string_view id) const noexcept;
  std::int32_t findHashed(std::string_view id, std::uint32_t hash) const noexcept;

  std::vector<Slot> slots_;
  std::size_t mask_ = 0;
  std::vector<core::ShapeType> types_;
  std::vector<Ends> ends_;
  void buildAdjacency() const;

  // Adjacency in compressed rows: node i's edges are [start[i], start[i+1]).
  mutable bool adjacencyBuilt_ = false;
  mutable std::vector<std::uint32_t> outStart_, outEdges_, inStart_, inEdges_;
};

}  // namespace modelyne::check
