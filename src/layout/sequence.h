#pragma once
/// The tidy-up of a sequence diagram, the same for both layouts: lifelines
/// in one row, evenly spaced in their current left-to-right order; each
/// activation moves with its lifeline; each fragment keeps its margins
/// around the lifelines it spans. Nothing moves vertically except to bring
/// the lifelines' tops into one row, so message order is kept.

#include <vector>

#include "layout/scene.h"

namespace modelyne::layout {

struct Rect {
  double x = 0.0, y = 0.0, w = 0.0, h = 0.0;
  bool resized = false;  ///< the size differs from the document's
};

/// Space between neighbouring lifelines, beyond the widest one.
inline constexpr double kLifelineGap = 100.0;

/// Rectangles for every scene node except ports with a host (their caller
/// places them); `rects` has one entry per scene node.
void tidySequence(const Scene& scene, std::vector<Rect>& rects);

}  // namespace modelyne::layout
