#pragma once
/// The plain value records of a diagram: `Node` (a drawn element with its
/// geometry, label, colour and typed properties) and `Edge` (a typed
/// connection that names its ends by node id).

#include <cmath>
#include <limits>
#include <map>
#include <string>

#include "core/anchor.h"
#include "core/catalogue.h"

namespace modelyne::core {

/// Top-left corner, width and height in diagram units.
struct NodeGeometry {
  float x = 0.0f;
  float y = 0.0f;
  float w = 0.0f;
  float h = 0.0f;

  friend bool operator==(const NodeGeometry&, const NodeGeometry&) = default;
};

/// Property key naming a node's layout group ("grp-..."); empty means none.
inline constexpr const char* kLayoutGroupKey = "__layoutGroupId__";

struct Node {
  std::string id;                   ///< unique among the document's nodes; never empty
  ShapeType type = ShapeType::rect;
  NodeGeometry geom;
  std::string text;                 ///< label; may be empty
  std::string fillColor;            ///< colour name as stored; empty: no colour of its own
  bool dataIntegration = false;
  std::map<std::string, std::string> properties;  ///< ordered by key

  friend bool operator==(const Node&, const Node&) = default;
};

inline constexpr float kUnsetOffset = std::numeric_limits<float>::quiet_NaN();

struct Edge {
  std::string id;                   ///< unique among the document's edges; never empty
  std::string source;               ///< id of the source node
  Anchor sourcePort = Anchor::right;
  std::string target;               ///< id of the target node
  Anchor targetPort = Anchor::left;
  EdgeType type = EdgeType::straightArrow;
  std::string text;
  float srcAnchorDY = kUnsetOffset;  ///< NaN: not set
  float tgtAnchorDY = kUnsetOffset;  ///< NaN: not set
};

/// Field-wise equality where two NaN offsets count as equal (both "not set").
bool sameEdge(const Edge& a, const Edge& b) noexcept;

}  // namespace modelyne::core
