#include "export/orthogonal_route.h"

#include <cmath>

namespace modelyne::exporter {

namespace {

// A vertical direction has a zero x component; directions are exact axis vectors.
bool isVertical(Point d) { return d.x == 0.0f; }

void push(Route& route, Point p) {
  if (route.count > 0) {
    const Point& last = route.points[route.count - 1];
    if (last.x == p.x && last.y == p.y) return;
  }
  route.points[route.count++] = p;
}

}  // namespace

Point connectionPoint(const core::NodeGeometry& g, core::Anchor anchor) noexcept {
  const float cx = g.x + g.w * 0.5f;
  const float cy = g.y + g.h * 0.5f;
  switch (core::normalizeAnchor(anchor)) {
    case core::Anchor::top: return {cx, g.y};
    case core::Anchor::bottom: return {cx, g.y + g.h};
    case core::Anchor::left: return {g.x, cy};
    case core::Anchor::topLeft: return {g.x, g.y};
    case core::Anchor::topRight: return {g.x + g.w, g.y};
    case core::Anchor::bottomLeft: return {g.x, g.y + g.h};
    case core::Anchor::bottomRight: return {g.x + g.w, g.y + g.h};
    case core::Anchor::right: break;
  }
  return {g.x + g.w, cy};
}

Point stubDirection(core::Anchor anchor, Point at, Point other) noexcept {
  float sx = 0.0f;  // horizontal side of the anchor: -1 left, +1 right, 0 none
  float sy = 0.0f;  // vertical side: -1 top, +1 bottom, 0 none
  switch (core::normalizeAnchor(anchor)) {
    case core::Anchor::top: sy = -1; break;
    case core::Anchor::bottom: sy = 1; break;
    case core::Anchor::left: sx = -1; break;
    case core::Anchor::right: sx = 1; break;
    case core::Anchor::topLeft: sx = -1; sy = -1; break;
    case core::Anchor::topRight: sx = 1; sy = -1; break;
    case core::Anchor::bottomLeft: sx = -1; sy = 1; break;
    case core::Anchor::bottomRight: sx = 1; sy = 1; break;
  }
  if (sx != 0.0f && sy != 0.0f) {
    const float dx = std::fabs(other.x - at.x);
    const float dy = std::fabs(other.y - at.y);
    if (dy > dx) sx = 0.0f; else sy = 0.0f;
  }
  return {sx, sy};
}

Route orthogonalRoutePoints(Point start, Point dS, Point end, Point dT) noexcept {
  const Point s{start.x + dS.x * kStubLength, start.y + dS.y * kStubLength};
  const Point t{end.x + dT.x * kStubLength, end.y + dT.y * kStubLength};
  Route route;
  push(route, start);
  push(route, s);
  if (isVertical(dS) && isVertical(dT)) {
    if ((t.y - s.y) * dS.y > 0 && (s.y - t.y) * dT.y > 0) {
      const float m = (s.y + t.y) / 2;
      push(route, {s.x, m});
      push(route, {t.x, m});
    } else if (dS.y != dT.y) {
      const float m = (s.x + t.x) / 2;
      push(route, {m, s.y});
      push(route, {m, t.y});
    } else {
      const float e = dS.y > 0 ? std::fmax(s.y, t.y) : std::fmin(s.y, t.y);
      push(route, {s.x, e});
      push(route, {t.x, e});
    }
  } else if (!isVertical(dS) && !isVertical(dT)) {
    if ((t.x - s.x) * dS.x > 0 && (s.x - t.x) * dT.x > 0) {
      const float m = (s.x + t.x) / 2;
      push(route, {m, s.y});
      push(route, {m, t.y});
    } else if (dS.x != dT.x) {
      const float m = (s.y + t.y) / 2;
      push(route, {s.x, m});
      push(route, {t.x, m});
    } else {
      const float e = dS.x > 0 ? std::fmax(s.x, t.x) : std::fmin(s.x, t.x);
      push(route, {e, s.y});
      push(route, {e, t.y});
    }
  } else if (isVertical(dS)) {
    push(route, (t.y - s.y) * dS.y >= 0 ? Point{s.x, t.y} : Point{t.x, s.y});
  } else {
    push(route, (t.x - s.x) * dS.x < 0 ? Point{s.x, t.y} : Point{t.x, s.y});
  }
  push(route, t);
  push(route, end);
  return route;
}

std::vector<Point> orthogonalRoute(Point start, Point dStart, Point end, Point dEnd) {
  const Route r = orthogonalRoutePoints(start, dStart, end, dEnd);
  return std::vector<Point>(r.points, r.points + r.count);
}

}  // namespace modelyne::exporter
