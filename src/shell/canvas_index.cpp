#include "shell/canvas_index.h"

#include <QLineF>
#include <algorithm>
#include <cmath>
#include <limits>

#include "export/node_outlines.h"
#include "export/orthogonal_route.h"

namespace modelyne::shell {
namespace {

// Half the widest stroke (3 units, an end event's ring) and a unit of
// antialiasing, rounded up.
constexpr double kStrokeSlack = 4.0;

// What a node paints, labels outside its box included, as the exporter
// draws it; NaN when the node has no finite extent (it is left out of the grid).
QRectF paintedBox(const core::Node& n) {
  const exporter::Extent e = exporter::nodeCover(n).painted;
  if (!e.any || !(e.maxX >= e.minX) || !(e.maxY >= e.minY)) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    return QRectF(nan, nan, nan, nan);
  }
  return QRectF(QPointF(e.minX, e.minY), QPointF(e.maxX, e.maxY))
      .adjusted(-kStrokeSlack, -kStrokeSlack, kStrokeSlack, kStrokeSlack);
}

double distanceToSegment(QPointF p, QPointF a, QPointF b) {
  const QPointF ab = b - a;
  const double len2 = ab.x() * ab.x() + ab.y() * ab.y();
  double t = len2 > 0 ? ((p - a).x() * ab.x() + (p - a).y() * ab.y()) / len2 : 0.0;
  t = std::clamp(t, 0.0, 1.0);
  const QPointF q = a + t * ab;
  return std::hypot(p.x() - q.x(), p.y() - q.y());
}

}  // namespace

void CanvasIndex::rebuild(const core::Document& doc) {
  const auto& nodes = doc.nodes();
  painted_.clear();
  painted_.reserve(nodes.size());
  boxes_.clear();
  boxes_.reserve(nodes.size());
  cells_.clear();
  groups_.clear();
  bounds_ = QRectF();
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    const QRectF r = paintedBox(nodes[i]);
    painted_.push_back(r);
    const auto& g = nodes[i].geom;
    boxes_.emplace_back(g.x, g.y, g.w, g.h);
    bounds_ = bounds_.isNull() ? r : bounds_.united(r);
    if (!std::isfinite(r.left()) || !std::isfinite(r.right()) || !std::isfinite(r.top()) ||
        !std::isfinite(r.bottom()))
      continue;
    const int x0 = static_cast<int>(std::floor(r.left() / kCell));
    const int x1 = static_cast<int>(std::floor(r.right() / kCell));
    const int y0 = static_cast<int>(std::floor(r.top() / kCell));
    const int y1 = static_cast<int>(std::floor(r.bottom() / kCell));
    // A huge node (a pool, a frame) goes in every cell it covers; cap the
    // count so a runaway size cannot exhaust memory.
    if (static_cast<std::int64_t>(x1 - x0 + 1) * (y1 - y0 + 1) > 4096) {
      cells_[cellKey(INT32_MIN, INT32_MIN)].push_back(static_cast<int>(i));
    } else {
      for (int cx = x0; cx <= x1; ++cx)
        for (int cy = y0; cy <= y1; ++cy) cells_[cellKey(cx, cy)].push_back(static_cast<int>(i));
    }
    auto grp = nodes[i].properties.find(core::kLayoutGroupKey);
    if (grp != nodes[i].properties.end() && !grp->second.empty())
      groups_[grp->second].push_back(static_cast<int>(i));
  }
  edges_.clear();
  edges_.reserve(doc.edges().size());
  for (const core::Edge& e : doc.edges()) edges_.push_back({doc.indexOfNode(e.source), doc.indexOfNode(e.target)});
  mark_.assign(nodes.size(), 0);
  stamp_ = 0;
}

std::vector<int> CanvasIndex::nodesIn(const QRectF& area) const {
  std::vector<int> out;
  if (painted_.empty()) return out;
  if (area.contains(bounds_)) {
    out.resize(painted_.size());
    for (std::size_t i = 0; i < out.size(); ++i) out[i] = static_cast<int>(i);
    return out;
  }
  if (++stamp_ == 0) {
    std::fill(mark_.begin(), mark_.end(), 0);
    stamp_ = 1;
  }
  auto visit = [&](const std::vector<int>& cell) {
    for (int i : cell) {
      auto& m = mark_[static_cast<std::size_t>(i)];
      if (m == stamp_) continue;
      m = stamp_;
      if (painted_[static_cast<std::size_t>(i)].intersects(area)) out.push_back(i);
    }
  };
  const QRectF a = area.intersected(bounds_.adjusted(-1, -1, 1, 1));
  if (!a.isEmpty()) {
    const int x0 = static_cast<int>(std::floor(a.left() / kCell));
    const int x1 = static_cast<int>(std::floor(a.right() / kCell));
    const int y0 = static_cast<int>(std::floor(a.top() / kCell));
    const int y1 = static_cast<int>(std::floor(a.bottom() / kCell));
    if (static_cast<std::int64_t>(x1 - x0 + 1) * (y1 - y0 + 1) > static_cast<std::int64_t>(cells_.size())) {
      for (const auto& [key, cell] : cells_) visit(cell);
    } else {
      for (int cx = x0; cx <= x1; ++cx)
        for (int cy = y0; cy <= y1; ++cy)
          if (auto it = cells_.find(cellKey(cx, cy)); it != cells_.end()) visit(it->second);
    }
  }
  if (auto it = cells_.find(cellKey(INT32_MIN, INT32_MIN)); it != cells_.end()) visit(it->second);
  std::sort(out.begin(), out.end());
  return out;
}

int CanvasIndex::nodeAt(QPointF p, double slack) const {
  const std::vector<int> near = nodesIn(QRectF(p.x() - slack - 1, p.y() - slack - 1, 2 * slack + 2, 2 * slack + 2));
  for (auto it = near.rbegin(); it != near.rend(); ++it) {
    // Hit the box itself, not the label room around it.
    if (boxes_[static_cast<std::size_t>(*it)].adjusted(-slack, -slack, slack, slack).contains(p)) return *it;
  }
  return -1;
}

QRectF CanvasIndex::edgeArea(int edge) const {
  const EdgeEnds& e = edges_[static_cast<std::size_t>(edge)];
  if (e.source < 0 || e.target < 0) return {};
  return painted_[static_cast<std::size_t>(e.source)].united(painted_[static_cast<std::size_t>(e.target)]);
}

int CanvasIndex::edgeAt(const core::Document& doc, QPointF p, double tolerance) const {
  const auto& nodes = doc.nodes();
  for (int i = static_cast<int>(edges_.size()) - 1; i >= 0; --i) {
    const EdgeEnds& ends = edges_[static_cast<std::size_t>(i)];
    if (ends.source < 0 || ends.target < 0) continue;
    if (!edgeArea(i).adjusted(-tolerance - 40, -tolerance - 40, tolerance + 40, tolerance + 40).contains(p)) continue;
    const core::Edge& e = doc.edges()[static_cast<std::size_t>(i)];
    const core::Node& s = nodes[static_cast<std::size_t>(ends.source)];
    const core::Node& t = nodes[static_cast<std::size_t>(ends.target)];
    const exporter::Point a = exporter::connectionPoint(s.geom, e.sourcePort);
    const exporter::Point b = exporter::connectionPoint(t.geom, e.targetPort);
    std::vector<exporter::Point> pts{a, b};
    if (e.type == core::EdgeType::elbow || e.type == core::EdgeType::elbowArrow ||
        e.type == core::EdgeType::elbowDoubleArrow)
      pts = exporter::orthogonalRoute(a, exporter::stubDirection(e.sourcePort, a, b), b,
                                      exporter::stubDirection(e.targetPort, b, a));
    for (std::size_t k = 1; k < pts.size(); ++k)
      if (distanceToSegment(p, {pts[k - 1].x, pts[k - 1].y}, {pts[k].x, pts[k].y}) <= tolerance) return i;
  }
  return -1;
}

std::vector<int> CanvasIndex::groupOf(const core::Document& doc, int node) const {
  const core::Node& n = doc.nodes()[static_cast<std::size_t>(node)];
  auto g = n.properties.find(core::kLayoutGroupKey);
  if (g == n.properties.end() || g->second.empty()) return {node};
  auto it = groups_.find(g->second);
  return it == groups_.end() ? std::vector<int>{node} : it->second;
}

}  // namespace modelyne::shell
