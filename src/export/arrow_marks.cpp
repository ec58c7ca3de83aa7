#include "export/arrow_marks.h"

#include <cmath>

namespace modelyne::exporter {

namespace {

Point along(Point p, Point d, float k) { return {p.x + d.x * k, p.y + d.y * k}; }

}  // namespace

Point markDirection(Point from, Point tip) noexcept {
  const float dx = tip.x - from.x;
  const float dy = tip.y - from.y;
  const float len = std::sqrt(dx * dx + dy * dy);
  if (!(len >= 0.001f)) return {1.0f, 0.0f};
  return {dx / len, dy / len};
}

void drawEndMark(DrawingBuilder& out, EndMark mark, Point tip, Point d) {
  const Point n{-d.y, d.x};
  switch (mark) {
    case EndMark::none:
      return;
    case EndMark::openArrow: {
      const Point base = along(tip, d, -10.0f);
      out.polyline({along(base, n, 5.0f), tip, along(base, n, -5.0f)});
      return;
    }
    case EndMark::hollowTriangle:
    case EndMark::filledTriangle: {
      const Point base = along(tip, d, -12.0f);
      out.polygon({tip, along(base, n, 6.0f), along(base, n, -6.0f)},
                  mark == EndMark::filledTriangle ? kStrokeColour : kWhite);
      return;
    }
    case EndMark::hollowDiamond:
    case EndMark::filledDiamond: {
      const Point mid = along(tip, d, -8.0f);
      out.polygon({tip, along(mid, n, 5.0f), along(tip, d, -16.0f), along(mid, n, -5.0f)},
                  mark == EndMark::filledDiamond ? kStrokeColour : kWhite);
      return;
    }
  }
}

}  // namespace modelyne::exporter
