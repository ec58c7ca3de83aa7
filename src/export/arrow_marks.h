#pragma once
/// End marks of connectors: open arrow head, hollow or filled triangle,
/// hollow or filled diamond, each drawn at a tip pointing along a direction.

#include "export/drawing.h"

namespace modelyne::exporter {

enum class EndMark : std::uint8_t {
  none,
  openArrow,
  hollowTriangle,
  filledTriangle,
  hollowDiamond,
  filledDiamond,
};

/// Unit vector from `from` to `tip`; (1, 0) when they are less than 0.001 apart.
Point markDirection(Point from, Point tip) noexcept;

/// Draws `mark` with its tip at `tip`, pointing along the unit vector `d`.
void drawEndMark(DrawingBuilder& out, EndMark mark, Point tip, Point d);

}  // namespace modelyne::exporter
