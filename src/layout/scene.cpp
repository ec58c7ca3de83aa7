#include "layout/scene.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <set>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace modelyne::layout {

namespace {

// Sizes outside this range are clamped for spacing; non-finite ones take the default.
constexpr double kMinSize = 1.0;
constexpr double kMaxSize = 1.0e5;
constexpr double kDefaultSize = 40.0;
// Coordinates beyond this are treated as unusable.
constexpr double kMaxCoordinate = 1.0e7;
// A grid for the containment and host searches holds at most this many entries per node.
constexpr std::size_t kGridEntriesPerNode = 64;

double safeSize(float v) {
  if (!std::isfinite(v)) return kDefaultSize;
  return std::clamp(static_cast<double>(v), kMinSize, kMaxSize);
}

double safeCoordinate(float v) {
  return std::isfinite(v) && std::abs(v) <= kMaxCoordinate ? static_cast<double>(v) : std::nan("");
}

bool usable(const SceneNode& n) { return !std::isnan(n.x) && !std::isnan(n.y); }

// A uniform grid over node rectangles, kept as sorted (cell, node) pairs.
class Grid {
 public:
  Grid(const std::vector<SceneNode>& nodes, const std::vector<int>& inserted) {
    double minX = 0, minY = 0, maxX = 0, maxY = 0;
    bool any = false;
    for (int i : inserted) {
      const SceneNode& n = nodes[static_cast<std::size_t>(i)];
      if (!any) {
        minX = n.x, minY = n.y, maxX = n.x + n.w, maxY = n.y + n.h;
        any = true;
      }
      minX = std::min(minX, n.x), minY = std::min(minY, n.y);
      maxX = std::max(maxX, n.x + n.w), maxY = std::max(maxY, n.y + n.h);
    }
    const double count = static_cast<double>(std::max<std::size_t>(inserted.size(), 1));
    cell_ = std::max(std::sqrt(std::max((maxX - minX) * (maxY - minY), 1.0) / count), 1.0);
    const std::size_t budget = kGridEntriesPerNode * (inserted.size() + 16);
    for (int i : inserted) {
      const SceneNode& n = nodes[static_cast<std::size_t>(i)];
      const auto x0 = cellOf(n.x), x1 = cellOf(n.x + n.w), y0 = cellOf(n.y), y1 = cellOf(n.y + n.h);
      if (static_cast<double>(x1 - x0 + 1) * static_cast<double>(y1 - y0 + 1) + static_cast<double>(entries_.size()) >
          static_cast<double>(budget))
        continue;  // only crowds of overlapping giants get here; they stay plain
      for (auto x = x0; x <= x1; ++x)
        for (auto y = y0; y <= y1; ++y) entries_.push_back({key(x, y), i});
    }
    std::sort(entries_.begin(), entries_.end());
  }

  /// Nodes whose rectangle covers the cell of the point.
  template <class Visit>
  void near(double px, double py, Visit visit) const {
    const std::int64_t k = key(cellOf(px), cellOf(py));
    auto it = std::lower_bound(entries_.begin(), entries_.end(), std::pair<std::int64_t, int>{k, -1});
    for (; it != entries_.end() && it->first == k; ++it) visit(it->second);
  }

 private:
  std::int64_t cellOf(double v) const { return static_cast<std::int64_t>(std::floor(v / cell_)); }
  static std::int64_t key(std::int64_t x, std::int64_t y) { return (x << 32) ^ (y & 0xffffffff); }

  double cell_ = 1.0;
  std::vector<std::pair<std::int64_t, int>> entries_;
};

bool isContainerRole(ShapeRole r, bool sequence) {
  return r == ShapeRole::container || r == ShapeRole::swimlane || (r == ShapeRole::fragment && !sequence);
}

// Whether `outer` is drawn around `inner`; equal rectangles nest by document order.
bool encloses(const SceneNode& outer, const SceneNode& inner) {
  constexpr double tol = 0.5;
  if (inner.x < outer.x - tol || inner.y < outer.y - tol || inner.x + inner.w > outer.x + outer.w + tol ||
      inner.y + inner.h > outer.y + outer.h + tol)
    return false;
  const double a = outer.w * outer.h, b = inner.w * inner.h;
  return a > b || (a == b && outer.node < inner.node);
}

void assignContainers(Scene& s) {
  std::vector<int> containers;
  for (std::size_t i = 0; i < s.nodes.size(); ++i)
    if (isContainerRole(s.nodes[i].role, s.sequence) && usable(s.nodes[i])) containers.push_back(static_cast<int>(i));
  if (containers.empty()) return;
  const Grid grid(s.nodes, containers);
  for (std::size_t i = 0; i < s.nodes.size(); ++i) {
    SceneNode& n = s.nodes[i];
    if (!usable(n) || n.host >= 0) continue;
    int best = -1;
    grid.near(n.x + n.w / 2.0, n.y + n.h / 2.0, [&](int c) {
      if (c == static_cast<int>(i)) return;
      const SceneNode& cn = s.nodes[static_cast<std::size_t>(c)];
      if (!encloses(cn, n)) return;
      if (best < 0 || encloses(s.nodes[static_cast<std::size_t>(best)], cn)) best = c;
    });
    n.parent = best;
  }
  // Depths (parents are larger, so the relation has no cycles); too deep nests go flat.
  std::vector<int> order(s.nodes.size());
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = static_cast<int>(i);
  std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
    return s.nodes[static_cast<std::size_t>(a)].w * s.nodes[static_cast<std::size_t>(a)].h >
           s.nodes[static_cast<std::size_t>(b)].w * s.nodes[static_cast<std::size_t>(b)].h;
  });
  for (int i : order) {
    SceneNode& n = s.nodes[static_cast<std::size_t>(i)];
    if (n.parent < 0) continue;
    const SceneNode& p = s.nodes[static_cast<std::size_t>(n.parent)];
    if (p.depth >= kMaxNesting) n.parent = p.parent;
    n.depth = n.parent < 0 ? 0 : s.nodes[static_cast<std::size_t>(n.parent)].depth + 1;
  }
}

void assignHosts(Scene& s) {
  std::vector<int> hosts;
  bool anyPort = false;
  for (std::size_t i = 0; i < s.nodes.size(); ++i) {
    if (!usable(s.nodes[i])) continue;
    if (s.nodes[i].role == ShapeRole::port) anyPort = true;
    else hosts.push_back(static_cast<int>(i));
  }
  if (!anyPort || hosts.empty()) return;
  const Grid grid(s.nodes, hosts);
  for (SceneNode& p : s.nodes) {
    if (p.role != ShapeRole::port || !usable(p)) continue;
    const double cx = p.x + p.w / 2.0, cy = p.y + p.h / 2.0;
    const double tol = std::max(p.w, p.h) / 2.0 + 1.0;
    int best = -1;
    double bestDistance = 0.0;
    Side bestSide = Side::right;
    auto consider = [&](int h) {
      const SceneNode& hn = s.nodes[static_cast<std::size_t>(h)];
      if (cx < hn.x - tol || cx > hn.x + hn.w + tol || cy < hn.y - tol || cy > hn.y + hn.h + tol) return;
      const double d[4] = {std::abs(cy - hn.y), std::abs(cy - (hn.y + hn.h)), std::abs(cx - hn.x),
                           std::abs(cx - (hn.x + hn.w))};
      int side = 0;
      for (int k = 1; k < 4; ++k)
        if (d[k] < d[side]) side = k;
      if (d[side] > tol) return;  // inside, away from the boundary
      const double area = hn.w * hn.h;
      const double bestArea = best < 0 ? 0.0 : s.nodes[static_cast<std::size_t>(best)].w * s.nodes[static_cast<std::size_t>(best)].h;
      if (best < 0 || area < bestArea || (area == bestArea && h < best)) {
        best = h;
        bestDistance = d[side];
        bestSide = static_cast<Side>(side);
      }
    };
    // The port's centre may lie just outside its host: look in the cells around it.
    std::set<int> candidates;
    for (double dx : {-tol, 0.0, tol})
      for (double dy : {-tol, 0.0, tol}) grid.near(cx + dx, cy + dy, [&](int h) { candidates.insert(h); });
    for (int h : candidates) consider(h);
    (void)bestDistance;
    if (best < 0) continue;
    const SceneNode& hn = s.nodes[static_cast<std::size_t>(best)];
    p.host = best;
    p.side = bestSide;
    const bool horizontal = bestSide == Side::top || bestSide == Side::bottom;
    p.along = horizontal ? std::clamp((cx - hn.x) / hn.w, 0.0, 1.0) : std::clamp((cy - hn.y) / hn.h, 0.0, 1.0);
  }
}

}  // namespace

void portCorner(const SceneNode& port, double hx, double hy, double hw, double hh, double& x, double& y) {
  double cx = 0.0, cy = 0.0;
  switch (port.side) {
    case Side::top: cx = hx + port.along * hw, cy = hy; break;
    case Side::bottom: cx = hx + port.along * hw, cy = hy + hh; break;
    case Side::left: cx = hx, cy = hy + port.along * hh; break;
    case Side::right: cx = hx + hw, cy = hy + port.along * hh; break;
  }
  x = cx - port.w / 2.0;
  y = cy - port.h / 2.0;
}

Scene buildScene(const core::Document& doc, const std::vector<char>& take) {
  Scene s;
  const auto& nodes = doc.nodes();
  std::vector<int> sceneIndex(nodes.size(), -1);
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    if (!take.empty() && !take[i]) continue;
    const core::Node& n = nodes[i];
    SceneNode sn;
    sn.node = static_cast<int>(i);
    sn.w = safeSize(n.geom.w);
    sn.h = safeSize(n.geom.h);
    sn.x = safeCoordinate(n.geom.x);
    sn.y = safeCoordinate(n.geom.y);
    sn.role = shapeRole(n.type);
    if (sn.role == ShapeRole::participant) s.sequence = true;
    sceneIndex[i] = static_cast<int>(s.nodes.size());
    s.nodes.push_back(std::move(sn));
  }
  assignHosts(s);
  assignContainers(s);
  for (std::size_t i = 0; i < s.nodes.size(); ++i) {
    const SceneNode& n = s.nodes[i];
    if (n.host >= 0) continue;
    if (n.parent >= 0) s.nodes[static_cast<std::size_t>(n.parent)].members.push_back(static_cast<int>(i));
    else s.topLevel.push_back(static_cast<int>(i));
  }
  // Edges: ends resolved through the document's index; the first of repeats kept.
  std::set<std::tuple<int, int, int, int>> seen;
  for (const core::Edge& e : doc.edges()) {
    const int a = doc.indexOfNode(e.source), b = doc.indexOfNode(e.target);
    if (a < 0 || b < 0 || a == b) continue;
    const int sa = sceneIndex[static_cast<std::size_t>(a)], sb = sceneIndex[static_cast<std::size_t>(b)];
    if (sa < 0 || sb < 0) continue;
    const auto sp = core::normalizeAnchor(e.sourcePort), tp = core::normalizeAnchor(e.targetPort);
    if (!seen.insert({sa, sb, static_cast<int>(sp), static_cast<int>(tp)}).second) continue;
    s.edges.push_back({sa, sb, sp, tp, e.type});
  }
  return s;
}

}  // namespace modelyne::layout
