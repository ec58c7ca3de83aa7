#include "layout/quality.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace modelyne::layout {

namespace {

struct Line {
  double x1, y1, x2, y2;
  int a, b;  // node indices of the ends
  double minX() const { return std::min(x1, x2); }
  double maxX() const { return std::max(x1, x2); }
};

double cross(double ax, double ay, double bx, double by, double cx, double cy) {
  return (bx - ax) * (cy - ay) - (by - ay) * (cx - ax);
}

bool properlyCross(const Line& p, const Line& q) {
  const double d1 = cross(p.x1, p.y1, p.x2, p.y2, q.x1, q.y1), d2 = cross(p.x1, p.y1, p.x2, p.y2, q.x2, q.y2);
  const double d3 = cross(q.x1, q.y1, q.x2, q.y2, p.x1, p.y1), d4 = cross(q.x1, q.y1, q.x2, q.y2, p.x2, p.y2);
  return ((d1 > 0 && d2 < 0) || (d1 < 0 && d2 > 0)) && ((d3 > 0 && d4 < 0) || (d3 < 0 && d4 > 0));
}

bool contains(const core::NodeGeometry& o, const core::NodeGeometry& i) {
  return i.x >= o.x && i.y >= o.y && i.x + i.w <= o.x + o.w && i.y + i.h <= o.y + o.h;
}

}  // namespace

MainAxis mainAxisOf(const core::Document& doc) {
  std::vector<core::Anchor> ends;
  for (const core::Edge& e : doc.edges()) {
    ends.push_back(e.sourcePort);
    ends.push_back(e.targetPort);
  }
  return axisOfAnchors(ends);
}

Quality measure(const core::Document& doc, const std::vector<core::NodeGeometry>& geometry, MainAxis axis) {
  Quality q;
  const auto& nodes = doc.nodes();
  auto centre = [&](int i, double& x, double& y) {
    const core::NodeGeometry& g = geometry[static_cast<std::size_t>(i)];
    x = g.x + g.w / 2.0;
    y = g.y + g.h / 2.0;
  };
  std::vector<Line> lines;
  for (const core::Edge& e : doc.edges()) {
    const int a = doc.indexOfNode(e.source), b = doc.indexOfNode(e.target);
    if (a < 0 || b < 0 || a == b) continue;
    ++q.edges;
    Line l{};
    centre(a, l.x1, l.y1);
    centre(b, l.x2, l.y2);
    l.a = a;
    l.b = b;
    lines.push_back(l);
    const double vx = l.x2 - l.x1, vy = l.y2 - l.y1;
    const AnchorDirection s = anchorDirection(e.sourcePort), t = anchorDirection(e.targetPort);
    if (s.dx != t.dx || s.dy != t.dy) ++q.anchorsPossible;
    if (vx * s.dx + vy * s.dy > 0 && -(vx * t.dx + vy * t.dy) > 0) ++q.anchorsFacing;
    const double along = axis == MainAxis::topDown ? vy : vx;
    if (targetComesLater(e.sourcePort, e.targetPort, e.type, axis) ? along > 0 : along < 0) ++q.alongAxis;
  }
  // Crossings: sweep over the lines by their left end.
  std::sort(lines.begin(), lines.end(), [](const Line& p, const Line& r) { return p.minX() < r.minX(); });
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const Line& p = lines[i];
    const double right = p.maxX();
    for (std::size_t j = i + 1; j < lines.size() && lines[j].minX() <= right; ++j) {
      const Line& r = lines[j];
      if (p.a == r.a || p.a == r.b || p.b == r.a || p.b == r.b) continue;
      if (std::max(p.y1, p.y2) < std::min(r.y1, r.y2) || std::max(r.y1, r.y2) < std::min(p.y1, p.y2)) continue;
      if (properlyCross(p, r)) ++q.crossings;
    }
  }
  // Overlaps among nodes other than ports, and the bounding box.
  std::vector<std::size_t> order;
  double area = 0.0, minX = 0, minY = 0, maxX = 0, maxY = 0;
  bool first = true;
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    const core::NodeGeometry& g = geometry[i];
    area += static_cast<double>(g.w) * g.h;
    if (first) minX = g.x, minY = g.y, maxX = g.x + g.w, maxY = g.y + g.h, first = false;
    minX = std::min<double>(minX, g.x), minY = std::min<double>(minY, g.y);
    maxX = std::max<double>(maxX, g.x + g.w), maxY = std::max<double>(maxY, g.y + g.h);
    if (shapeRole(nodes[i].type) != ShapeRole::port) order.push_back(i);
  }
  q.areaRatio = area > 0.0 ? (maxX - minX) * (maxY - minY) / area : 0.0;
  std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return geometry[a].x < geometry[b].x; });
  for (std::size_t i = 0; i < order.size(); ++i) {
    const core::NodeGeometry& p = geometry[order[i]];
    for (std::size_t j = i + 1; j < order.size() && geometry[order[j]].x < p.x + p.w; ++j) {
      const core::NodeGeometry& r = geometry[order[j]];
      const bool apart = r.y >= p.y + p.h || p.y >= r.y + r.h || r.x >= p.x + p.w;
      if (!apart && !contains(p, r) && !contains(r, p)) ++q.overlaps;
    }
  }
  return q;
}

}  // namespace modelyne::layout
