// Any graph: each connected component placed on its own, then the
// components packed in rows (columns for a left-to-right drawing), the
// biggest first.
#include <algorithm>
#include <cmath>
#include <numeric>

#include "layout/flat_graph.h"

namespace modelyne::layout {

namespace {

constexpr double kComponentGap = 60.0;

struct Component {
  std::vector<int> members;  // ascending
  std::vector<Point> at;     // top-left per member, relative
  double w = 0.0, h = 0.0;
};

int findRoot(std::vector<int>& up, int v) {
  while (up[static_cast<std::size_t>(v)] != v) {
    up[static_cast<std::size_t>(v)] = up[static_cast<std::size_t>(up[static_cast<std::size_t>(v)])];
    v = up[static_cast<std::size_t>(v)];
  }
  return v;
}

}  // namespace

std::vector<Point> placeGraph(const FlatGraph& g, bool layered, MainAxis axis) {
  const int n = static_cast<int>(g.boxes.size());
  std::vector<int> up(static_cast<std::size_t>(n));
  std::iota(up.begin(), up.end(), 0);
  for (const FlatEdge& e : g.edges) {
    const int a = findRoot(up, e.source), b = findRoot(up, e.target);
    if (a != b) up[static_cast<std::size_t>(std::max(a, b))] = std::min(a, b);
  }
  std::vector<int> slot(static_cast<std::size_t>(n), -1), local(static_cast<std::size_t>(n), 0);
  std::vector<Component> comps;
  for (int v = 0; v < n; ++v) {
    const int r = findRoot(up, v);
    if (slot[static_cast<std::size_t>(r)] < 0) {
      slot[static_cast<std::size_t>(r)] = static_cast<int>(comps.size());
      comps.emplace_back();
    }
    Component& c = comps[static_cast<std::size_t>(slot[static_cast<std::size_t>(r)])];
    local[static_cast<std::size_t>(v)] = static_cast<int>(c.members.size());
    c.members.push_back(v);
  }
  std::vector<FlatGraph> subs(comps.size());
  for (std::size_t i = 0; i < comps.size(); ++i)
    for (int v : comps[i].members) subs[i].boxes.push_back(g.boxes[static_cast<std::size_t>(v)]);
  for (const FlatEdge& e : g.edges) {
    FlatEdge copy = e;
    copy.source = local[static_cast<std::size_t>(e.source)];
    copy.target = local[static_cast<std::size_t>(e.target)];
    subs[static_cast<std::size_t>(slot[static_cast<std::size_t>(findRoot(up, e.source))])].edges.push_back(copy);
  }
  for (std::size_t i = 0; i < comps.size(); ++i) {
    Component& c = comps[i];
    const FlatGraph& sub = subs[i];
    if (c.members.size() == 1) {
      c.at = {Point{0.0, 0.0}};
    } else if (layered) {
      c.at = placeLayered(sub, axis);
    } else {
      int centre = -1;
      for (std::size_t k = 0; k < sub.boxes.size() && centre < 0; ++k)
        if (sub.boxes[k].central) centre = static_cast<int>(k);
      c.at = centre >= 0 ? placeRadial(sub, centre) : placeOrganic(sub);
    }
    for (std::size_t k = 0; k < c.members.size(); ++k) {
      c.w = std::max(c.w, c.at[k].x + sub.boxes[k].w);
      c.h = std::max(c.h, c.at[k].y + sub.boxes[k].h);
    }
  }
  // Rows of components; a left-to-right drawing packs columns instead.
  const bool columns = layered && axis == MainAxis::leftRight;
  std::vector<std::size_t> order(comps.size());
  std::iota(order.begin(), order.end(), 0);
  std::stable_sort(order.begin(), order.end(),
                   [&](std::size_t a, std::size_t b) { return comps[a].members.size() > comps[b].members.size(); });
  double area = 0.0, widest = 0.0;
  for (const Component& c : comps) {
    area += (c.w + kComponentGap) * (c.h + kComponentGap);
    widest = std::max(widest, columns ? c.h : c.w);
  }
  const double limit = std::max(widest, std::sqrt(area) * 1.3);
  std::vector<Point> out(static_cast<std::size_t>(n));
  double across = 0.0, along = 0.0, rowDepth = 0.0;
  for (std::size_t i : order) {
    const Component& c = comps[i];
    const double cw = columns ? c.h : c.w, ch = columns ? c.w : c.h;
    if (across > 0.0 && across + cw > limit) {
      across = 0.0;
      along += rowDepth + kComponentGap;
      rowDepth = 0.0;
    }
    const Point origin = columns ? Point{along, across} : Point{across, along};
    for (std::size_t k = 0; k < c.members.size(); ++k)
      out[static_cast<std::size_t>(c.members[k])] = {origin.x + c.at[k].x, origin.y + c.at[k].y};
    across += cw + kComponentGap;
    rowDepth = std::max(rowDepth, ch);
  }
  return out;
}

}  // namespace modelyne::layout
