// Radial placement of a mind map: a spanning tree of the edges, grown
// breadth-first from the central topic; each subtree gets a wedge in
// proportion to its leaves, the children of a node sorted by the direction
// their edge's anchors ask for, and each depth a ring wide enough for its
// boxes.
#include <algorithm>
#include <cmath>
#include <deque>
#include <numbers>
#include <numeric>

#include "layout/flat_graph.h"

namespace modelyne::layout {

namespace {

constexpr double kTwoPi = 2.0 * std::numbers::pi;

double wrap(double a) {
  while (a > std::numbers::pi) a -= kTwoPi;
  while (a < -std::numbers::pi) a += kTwoPi;
  return a;
}

struct TreeNode {
  int parent = -1;
  int depth = 0;
  bool hasDirection = false;
  double direction = 0.0;  // preferred angle from the parent (y down)
  double leaves = 1.0;
  double from = 0.0, to = 0.0;  // wedge
  std::vector<int> children;
};

}  // namespace

std::vector<Point> placeRadial(const FlatGraph& g, int centre) {
  const std::size_t n = g.boxes.size();
  std::vector<std::vector<std::size_t>> incident(n);
  for (std::size_t e = 0; e < g.edges.size(); ++e) {
    incident[static_cast<std::size_t>(g.edges[e].source)].push_back(e);
    incident[static_cast<std::size_t>(g.edges[e].target)].push_back(e);
  }
  std::vector<TreeNode> t(n);
  std::vector<char> seen(n, 0);
  std::vector<int> order;
  std::deque<int> queue{centre};
  seen[static_cast<std::size_t>(centre)] = 1;
  while (!queue.empty()) {
    const int v = queue.front();
    queue.pop_front();
    order.push_back(v);
    for (std::size_t e : incident[static_cast<std::size_t>(v)]) {
      const FlatEdge& edge = g.edges[e];
      const bool childIsTarget = edge.source == v;
      const int c = childIsTarget ? edge.target : edge.source;
      if (seen[static_cast<std::size_t>(c)]) continue;
      seen[static_cast<std::size_t>(c)] = 1;
      // From parent to child: along the source side, against the target side.
      const AnchorDirection from = anchorDirection(edge.sourcePort), to = anchorDirection(edge.targetPort);
      int dx = from.dx - to.dx, dy = from.dy - to.dy;
      if (!childIsTarget) {
        dx = -dx;
        dy = -dy;
      }
      TreeNode& node = t[static_cast<std::size_t>(c)];
      node.parent = v;
      node.depth = t[static_cast<std::size_t>(v)].depth + 1;
      node.hasDirection = dx != 0 || dy != 0;
      node.direction = std::atan2(static_cast<double>(dy), static_cast<double>(dx));
      t[static_cast<std::size_t>(v)].children.push_back(c);
      queue.push_back(c);
    }
  }
  for (auto it = order.rbegin(); it != order.rend(); ++it) {
    TreeNode& node = t[static_cast<std::size_t>(*it)];
    if (!node.children.empty()) {
      node.leaves = 0.0;
      for (int c : node.children) node.leaves += t[static_cast<std::size_t>(c)].leaves;
    }
  }
  // Wedges, top-down.
  t[static_cast<std::size_t>(centre)].from = -std::numbers::pi;
  t[static_cast<std::size_t>(centre)].to = std::numbers::pi;
  for (int v : order) {
    TreeNode& node = t[static_cast<std::size_t>(v)];
    if (node.children.empty()) continue;
    const double mid = (node.from + node.to) / 2.0;
    const bool root = v == centre;
    auto key = [&](int c) {
      const TreeNode& k = t[static_cast<std::size_t>(c)];
      if (!k.hasDirection) return 0.0;
      return root ? k.direction : wrap(k.direction - mid);
    };
    std::stable_sort(node.children.begin(), node.children.end(), [&](int a, int b) { return key(a) < key(b); });
    const double span = node.to - node.from;
    double at = node.from;
    for (int c : node.children) {
      TreeNode& k = t[static_cast<std::size_t>(c)];
      k.from = at;
      at += span * k.leaves / node.leaves;
      k.to = at;
    }
    if (root) {
      // Turn the whole ring so the wedges best meet the directions asked for.
      double s = 0.0, co = 0.0;
      for (int c : node.children) {
        const TreeNode& k = t[static_cast<std::size_t>(c)];
        if (!k.hasDirection) continue;
        const double d = wrap(k.direction - (k.from + k.to) / 2.0);
        s += std::sin(d);
        co += std::cos(d);
      }
      const double turn = (s != 0.0 || co != 0.0) ? std::atan2(s, co) : 0.0;
      for (int c : node.children) {
        t[static_cast<std::size_t>(c)].from += turn;
        t[static_cast<std::size_t>(c)].to += turn;
      }
    }
  }
  // Rings.
  int depthCount = 0;
  for (int v : order) depthCount = std::max(depthCount, t[static_cast<std::size_t>(v)].depth + 1);
  std::vector<double> extent(static_cast<std::size_t>(depthCount), 0.0), radius(static_cast<std::size_t>(depthCount), 0.0);
  auto diag = [&](int v) { return std::hypot(g.boxes[static_cast<std::size_t>(v)].w, g.boxes[static_cast<std::size_t>(v)].h); };
  for (int v : order) {
    const auto d = static_cast<std::size_t>(t[static_cast<std::size_t>(v)].depth);
    extent[d] = std::max(extent[d], diag(v));
  }
  // Each ring far enough out for its widest wedge's box, and clear of the ring inside.
  std::vector<double> need(radius.size(), 0.0);
  for (int v : order) {
    const TreeNode& node = t[static_cast<std::size_t>(v)];
    if (v == centre) continue;
    const double wedge = std::min(node.to - node.from, std::numbers::pi);
    const auto d = static_cast<std::size_t>(node.depth);
    need[d] = std::max(need[d], (diag(v) + kNodeGap) / std::max(wedge, 1e-6));
  }
  for (std::size_t d = 1; d < radius.size(); ++d)
    radius[d] = std::max(need[d], radius[d - 1] + (extent[d - 1] + extent[d]) / 2.0 + kNodeGap);
  std::vector<Point> centres(n);
  for (int v : order) {
    const TreeNode& node = t[static_cast<std::size_t>(v)];
    const double a = (node.from + node.to) / 2.0;
    const double r = radius[static_cast<std::size_t>(node.depth)];
    centres[static_cast<std::size_t>(v)] = {r * std::cos(a), r * std::sin(a)};
  }
  removeOverlaps(g.boxes, centres, kNodeGap / 2.0);
  double minX = 0.0, minY = 0.0;
  for (std::size_t v = 0; v < n; ++v) {
    const double x = centres[v].x - g.boxes[v].w / 2.0, y = centres[v].y - g.boxes[v].h / 2.0;
    if (v == 0 || x < minX) minX = x;
    if (v == 0 || y < minY) minY = y;
  }
  std::vector<Point> out(n);
  for (std::size_t v = 0; v < n; ++v)
    out[v] = {centres[v].x - g.boxes[v].w / 2.0 - minX, centres[v].y - g.boxes[v].h / 2.0 - minY};
  return out;
}

}  // namespace modelyne::layout
