#pragma once
/// Automatic layout of a whole diagram. Both algorithms read a document and
/// return new rectangles for its nodes; they never change the document.
/// - `layoutLayered`: hierarchies and flows (parents above children, flows
///   along one main axis chosen from the edges' anchors).
/// - `layoutOrganic`: networks (stress model with overlap removal; mind maps
///   radial around their central topic).
/// Both keep anchors facing, containment by geometry, ports on their host's
/// side and the order of a sequence diagram, and are deterministic and
/// idempotent: laying out a laid-out document again gives the same rectangles.

#include <cstddef>
#include <string>
#include <vector>

#include "core/document.h"

namespace modelyne::layout {

/// A node's new rectangle.
struct Placement {
  std::string id;
  core::NodeGeometry geom;

  friend bool operator==(const Placement&, const Placement&) = default;
};

struct LayoutResult {
  /// False when the document is left untouched; `reason` says why.
  bool laidOut = false;
  std::string reason;
  /// One entry per node of the document, in document order (empty when not laid out).
  std::vector<Placement> placements;
};

struct LayoutOptions {
  /// When not empty, only these nodes move (with the ports they host); they
  /// are laid out among themselves and placed below the other nodes, which
  /// keep their rectangles.
  std::vector<std::string> onlyNodes;
};

/// Documents above this many nodes are left untouched.
inline constexpr std::size_t kMaxLayoutNodes = 50000;

LayoutResult layoutLayered(const core::Document& doc, const LayoutOptions& options = {});
LayoutResult layoutOrganic(const core::Document& doc, const LayoutOptions& options = {});

}  // namespace modelyne::layout
