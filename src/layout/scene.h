#pragma once
/// The document as the layout sees it: sizes made safe, which container
/// each node is drawn in, which host each port sits on (side and place
/// along it), and the edges resolved to node indices without dangling
/// ends, self loops or repeats.

#include <cstdint>
#include <vector>

#include "core/document.h"
#include "layout/roles.h"

namespace modelyne::layout {

enum class Side : std::uint8_t { top, bottom, left, right };

struct SceneNode {
  int node = 0;              ///< index in the document
  double x = 0.0, y = 0.0;   ///< current corner; NaN when unusable
  double w = 1.0, h = 1.0;   ///< size for spacing: finite, at least 1
  ShapeRole role = ShapeRole::plain;
  int parent = -1;           ///< the container it is drawn in, or -1
  int depth = 0;             ///< containers above it
  int host = -1;             ///< ports: the node it sits on, or -1
  Side side = Side::right;   ///< ports: which side of the host
  double along = 0.5;        ///< ports: place along that side, 0..1
  std::vector<int> members;  ///< containers: nodes drawn inside (ports excluded)
};

struct SceneEdge {
  int source = 0;
  int target = 0;
  core::Anchor sourcePort = core::Anchor::right;
  core::Anchor targetPort = core::Anchor::left;
  core::EdgeType type = core::EdgeType::straightArrow;
};

struct Scene {
  std::vector<SceneNode> nodes;   ///< only the nodes taking part, in document order
  std::vector<SceneEdge> edges;   ///< indices into `nodes`
  bool sequence = false;          ///< holds lifelines
  std::vector<int> topLevel;      ///< nodes in no container, not ports with a host
};

/// Containers nested deeper than this are laid out as plain nodes.
inline constexpr int kMaxNesting = 64;

/// Builds the scene of the nodes whose `take` flag is set (all when empty).
Scene buildScene(const core::Document& doc, const std::vector<char>& take);

/// Where a port sits on a host rectangle of the given corner and size (top-left of the port).
void portCorner(const SceneNode& port, double hx, double hy, double hw, double hh, double& x, double& y);

}  // namespace modelyne::layout
