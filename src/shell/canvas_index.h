#pragma once
/// CanvasIndex: what the canvas needs to paint and hit-test a large diagram
/// quickly, rebuilt in one pass after each change: node boxes in a uniform
/// grid (so a repaint only visits what is visible), each edge's end nodes
/// resolved to positions, the content bounds and the layout groups.

#include <QRectF>
#include <QString>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/document.h"

namespace modelyne::shell {

class CanvasIndex {
 public:
  /// Positions of an edge's end nodes in the node sequence; -1 when missing.
  struct EdgeEnds {
    int source = -1;
    int target = -1;
  };

  void rebuild(const core::Document& doc);
  /// Whether the index covers as many nodes and edges as the document has
  /// (a cheap guard against painting from an index older than a change).
  bool covers(const core::Document& doc) const noexcept {
    return painted_.size() == doc.nodes().size() && edges_.size() == doc.edges().size();
  }

  /// Nodes whose painted area meets `area`, ascending (drawing order).
  std::vector<int> nodesIn(const QRectF& area) const;
  /// The top-most node whose box contains `p` (grown by `slack`), or -1.
  int nodeAt(QPointF p, double slack = 0.0) const;
  /// The edge passing within `tolerance` of `p` (last drawn first), or -1.
  int edgeAt(const core::Document& doc, QPointF p, double tolerance) const;

  const std::vector<EdgeEnds>& edgeEnds() const noexcept { return edges_; }
  /// Area an edge may paint on (the box of its two end boxes), empty if dangling.
  QRectF edgeArea(int edge) const;
  /// The box that a node paints on, labels below the box included.
  const QRectF& paintedArea(int node) const { return painted_[static_cast<std::size_t>(node)]; }
  /// Union of every painted area; empty for an empty diagram.
  const QRectF& bounds() const noexcept { return bounds_; }
  /// Members of the node's layout group (itself alone when it has none).
  std::vector<int> groupOf(const core::Document& doc, int node) const;

 private:
  static constexpr double kCell = 256.0;
  static std::int64_t cellKey(int cx, int cy) noexcept {
    return (static_cast<std::int64_t>(cx) << 32) ^ static_cast<std::uint32_t>(cy);
  }

  std::vector<QRectF> painted_;
  std::vector<QRectF> boxes_;
  std::vector<EdgeEnds> edges_;
  std::unordered_map<std::int64_t, std::vector<int>> cells_;
  std::unordered_map<std::string, std::vector<int>> groups_;
  QRectF bounds_;
  mutable std::vector<std::uint32_t> mark_;
  mutable std::uint32_t stamp_ = 0;
};

}  // namespace modelyne::shell
