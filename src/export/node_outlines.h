#pragma once
/// Drawing of one node by its shape type: outline, compartments and label,
/// chosen from a table of outline styles. Also what a node covers beyond its
/// box (actor names, port squares and labels, pin labels), the one text
/// width estimate, and the framed name tab shared by context boundaries and
/// the diagram frame.

#include <string_view>

#include "core/model.h"
#include "export/drawing.h"

namespace modelyne::exporter {

/// Running minimum and maximum of the drawn content.
struct Extent {
  float minX = 1e9f;
  float minY = 1e9f;
  float maxX = -1e9f;
  float maxY = -1e9f;
  bool any = false;  ///< whether a finite value has been taken in

  void takeX(float v) noexcept;
  void takeY(float v) noexcept;
  /// Takes in what `other` holds, axis by axis.
  void take(const Extent& other) noexcept;
};

/// What a node covers: its box and what it draws outside it. Non-finite
/// values are left out, as `Extent` does.
struct NodeCover {
  /// What the page bounds take in: the box, room for an actor's name below
  /// it, a port's square, a pin's label at its estimated width.
  Extent page;
  /// Everything the node may paint (strokes aside): `page` and also names
  /// wider than the box, port labels and the label under a wait-time action.
  Extent painted;
};
NodeCover nodeCover(const core::Node& node);

/// Takes the node's page cover into `e`.
void extendByNode(Extent& e, const core::Node& node);

/// Estimated advance of one line of text at `size`, without a font: every
/// byte counts as an average glyph.
float estimatedTextWidth(std::string_view line, float size);

/// Draws the node.
void drawNode(DrawingBuilder& out, const core::Node& node);

/// The square drawn for a "sysmlPort" node: inside its box, on the side named
/// by "boundarySide" at "boundaryPos" (0..1, default centred), as large as
/// the box's shorter side.
struct Square {
  float x = 0.0f;
  float y = 0.0f;
  float size = 0.0f;
};
Square portSquare(const core::Node& node);

/// A frame with a pentagon name tab at its top left, as drawn for context
/// boundaries and the diagram frame; no tab when `label` is empty.
void drawNamedFrame(DrawingBuilder& out, float x, float y, float w, float h, std::string_view label);

/// Height of the name tab of `drawNamedFrame`.
inline constexpr float kFrameTabHeight = 20.0f;

}  // namespace modelyne::exporter
