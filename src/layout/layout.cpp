// The whole-document layouts: containers inside-out (each container's
// members laid out as one graph, the container grown to fit, then treated
// as one box by the level above), swimlanes kept side by side, ports put
// back on their host's side, and the result moved to where the diagram was.
#include "layout/layout.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <string>
#include <unordered_map>

#include "layout/flat_graph.h"
#include "layout/scene.h"
#include "layout/sequence.h"

namespace modelyne::layout {

namespace {

// Room around a container's members, and above them for its title.
constexpr double kContainerPad = 24.0;
constexpr double kContainerTitle = 40.0;
// Where a diagram without a usable position starts.
constexpr double kDefaultOrigin = 40.0;
// Between existing content and the nodes laid out below it.
constexpr double kAddedContentGap = 80.0;

LayoutResult untouched(std::string reason) {
  LayoutResult r;
  r.reason = std::move(reason);
  return r;
}

bool usable(const SceneNode& n) { return !std::isnan(n.x) && !std::isnan(n.y); }

MainAxis chooseAxis(const Scene& s) {
  std::vector<core::Anchor> ends;
  ends.reserve(2 * s.edges.size());
  for (const SceneEdge& e : s.edges) {
    ends.push_back(e.sourcePort);
    ends.push_back(e.targetPort);
  }
  return axisOfAnchors(ends);
}

// A scene node's representative in the layout: ports stand for their host.
int representative(const Scene& s, int i) {
  const int h = s.nodes[static_cast<std::size_t>(i)].host;
  return h >= 0 ? h : i;
}

struct LevelEdge {
  int a;
  int b;
  int edge;
};

class Compound {
 public:
  Compound(const Scene& s, bool layered) : s_(s), layered_(layered), axis_(chooseAxis(s)) {
    rects_.resize(s.nodes.size());
    for (std::size_t i = 0; i < s.nodes.size(); ++i) rects_[i] = {0.0, 0.0, s.nodes[i].w, s.nodes[i].h, false};
    offsets_.assign(s.nodes.size(), Point{});
    levelEdges_.assign(s.nodes.size() + 1, {});
    for (std::size_t e = 0; e < s.edges.size(); ++e) assignToLevel(static_cast<int>(e));
  }

  std::vector<Rect> run(Point origin) {
    // Containers, deepest first.
    std::vector<int> containers;
    for (std::size_t i = 0; i < s_.nodes.size(); ++i)
      if (!s_.nodes[i].members.empty()) containers.push_back(static_cast<int>(i));
    std::stable_sort(containers.begin(), containers.end(), [&](int a, int b) {
      return s_.nodes[static_cast<std::size_t>(a)].depth > s_.nodes[static_cast<std::size_t>(b)].depth;
    });
    for (int c : containers) {
      double w = 0.0, h = 0.0;
      layoutLevel(c, s_.nodes[static_cast<std::size_t>(c)].members, levelEdges_[static_cast<std::size_t>(c) + 1], w, h);
      Rect& r = rects_[static_cast<std::size_t>(c)];
      const double needW = std::ceil(w + 2.0 * kContainerPad), needH = std::ceil(h + kContainerTitle + kContainerPad);
      if (needW > r.w) r.w = needW, r.resized = true;
      if (needH > r.h) r.h = needH, r.resized = true;
      const Point shift{(r.w - w) / 2.0, kContainerTitle + (r.h - kContainerTitle - kContainerPad - h) / 2.0};
      for (int m : s_.nodes[static_cast<std::size_t>(c)].members) {
        offsets_[static_cast<std::size_t>(m)].x += shift.x;
        offsets_[static_cast<std::size_t>(m)].y += shift.y;
      }
    }
    double w = 0.0, h = 0.0;
    layoutLevel(-1, s_.topLevel, levelEdges_[0], w, h);
    // Absolute places, outermost first.
    for (int i : s_.topLevel) {
      rects_[static_cast<std::size_t>(i)].x = origin.x + offsets_[static_cast<std::size_t>(i)].x;
      rects_[static_cast<std::size_t>(i)].y = origin.y + offsets_[static_cast<std::size_t>(i)].y;
    }
    for (auto it = containers.rbegin(); it != containers.rend(); ++it) {
      const Rect& c = rects_[static_cast<std::size_t>(*it)];
      for (int m : s_.nodes[static_cast<std::size_t>(*it)].members) {
        rects_[static_cast<std::size_t>(m)].x = c.x + offsets_[static_cast<std::size_t>(m)].x;
        rects_[static_cast<std::size_t>(m)].y = c.y + offsets_[static_cast<std::size_t>(m)].y;
      }
    }
    return rects_;
  }

 private:
  // The edge belongs to the innermost container holding both ends; there it
  // joins the two members that hold them.
  void assignToLevel(int e) {
    int a = representative(s_, s_.edges[static_cast<std::size_t>(e)].source);
    int b = representative(s_, s_.edges[static_cast<std::size_t>(e)].target);
    auto parent = [&](int v) { return s_.nodes[static_cast<std::size_t>(v)].parent; };
    auto depth = [&](int v) { return s_.nodes[static_cast<std::size_t>(v)].depth; };
    while (depth(a) > depth(b)) a = parent(a);
    while (depth(b) > depth(a)) b = parent(b);
    if (a == b) return;  // one end holds the other, or both are the same node
    while (parent(a) != parent(b)) {
      a = parent(a);
      b = parent(b);
    }
    levelEdges_[static_cast<std::size_t>(parent(a) + 1)].push_back({a, b, e});
  }

  // Lays out one level's members; sets their offsets from the level's corner
  // and the level's extent.
  void layoutLevel(int level, const std::vector<int>& members, const std::vector<LevelEdge>& edges, double& w, double& h) {
    FlatGraph g;
    std::unordered_map<int, int> entryOf;  // member -> box (lookup only)
    std::vector<std::vector<int>> entryMembers;
    std::vector<int> lanes;
    for (int m : members)
      if (s_.nodes[static_cast<std::size_t>(m)].role == ShapeRole::swimlane) lanes.push_back(m);
    if (lanes.size() < 2) lanes.clear();
    for (int m : members) {
      if (!lanes.empty() && s_.nodes[static_cast<std::size_t>(m)].role == ShapeRole::swimlane) {
        if (m != lanes.front()) continue;
        const int box = static_cast<int>(g.boxes.size());
        entryMembers.push_back({});
        Box lanesBox = arrangeLanes(lanes);
        g.boxes.push_back(lanesBox);
        for (int l : lanes) entryOf[l] = box;
        entryMembers.back() = lanes;
        continue;
      }
      entryOf[m] = static_cast<int>(g.boxes.size());
      entryMembers.push_back({m});
      const Rect& r = rects_[static_cast<std::size_t>(m)];
      g.boxes.push_back({r.w, r.h, s_.nodes[static_cast<std::size_t>(m)].role == ShapeRole::central});
    }
    for (const LevelEdge& le : edges) {
      const int a = entryOf.at(le.a), b = entryOf.at(le.b);
      if (a == b) continue;
      const SceneEdge& se = s_.edges[static_cast<std::size_t>(le.edge)];
      const Box& ba = g.boxes[static_cast<std::size_t>(a)];
      const Box& bb = g.boxes[static_cast<std::size_t>(b)];
      const Point pa = centreInLevel(se.source, level), pb = centreInLevel(se.target, level);
      g.edges.push_back({a, b, se.sourcePort, se.targetPort, se.type, Point{pa.x - ba.w / 2.0, pa.y - ba.h / 2.0},
                         Point{pb.x - bb.w / 2.0, pb.y - bb.h / 2.0}});
    }
    const std::vector<Point> at = placeGraph(g, layered_, axis_);
    w = 0.0;
    h = 0.0;
    for (std::size_t k = 0; k < g.boxes.size(); ++k) {
      w = std::max(w, at[k].x + g.boxes[k].w);
      h = std::max(h, at[k].y + g.boxes[k].h);
      for (int m : entryMembers[k]) {
        offsets_[static_cast<std::size_t>(m)].x += at[k].x;
        offsets_[static_cast<std::size_t>(m)].y += at[k].y;
      }
    }
  }

  // Centre of a node (a port: where it sits on its host) from the corner of
  // the box that holds it at this level; inner levels are laid out already.
  Point centreInLevel(int node, int level) const {
    const SceneNode& n = s_.nodes[static_cast<std::size_t>(node)];
    Point p{n.w / 2.0, n.h / 2.0};
    int v = node;
    if (n.host >= 0) {
      const Rect& h = rects_[static_cast<std::size_t>(n.host)];
      portCorner(n, 0.0, 0.0, h.w, h.h, p.x, p.y);
      p.x += n.w / 2.0;
      p.y += n.h / 2.0;
      v = n.host;
    } else {
      p = {rects_[static_cast<std::size_t>(node)].w / 2.0, rects_[static_cast<std::size_t>(node)].h / 2.0};
    }
    while (true) {
      p.x += offsets_[static_cast<std::size_t>(v)].x;
      p.y += offsets_[static_cast<std::size_t>(v)].y;
      const int up = s_.nodes[static_cast<std::size_t>(v)].parent;
      if (up == level || up < 0) break;
      v = up;
    }
    return p;
  }

  // Sibling swimlanes side by side in their current order (stacked when
  // they are drawn one above the other), all grown to the same depth.
  Box arrangeLanes(const std::vector<int>& lanes) {
    double spreadX = 0.0, spreadY = 0.0;
    {
      double minX = std::numeric_limits<double>::infinity(), maxX = -minX, minY = minX, maxY = -minX;
      for (int l : lanes) {
        const SceneNode& n = s_.nodes[static_cast<std::size_t>(l)];
        if (!usable(n)) continue;
        minX = std::min(minX, n.x), maxX = std::max(maxX, n.x);
        minY = std::min(minY, n.y), maxY = std::max(maxY, n.y);
      }
      spreadX = maxX - minX;
      spreadY = maxY - minY;
    }
    const bool sideBySide = !(spreadY > spreadX);
    std::vector<int> order = lanes;
    auto key = [&](int l) {
      const SceneNode& n = s_.nodes[static_cast<std::size_t>(l)];
      if (!usable(n)) return std::numeric_limits<double>::infinity();
      return sideBySide ? n.x : n.y;
    };
    std::stable_sort(order.begin(), order.end(), [&](int a, int b) { return key(a) < key(b); });
    double depth = 0.0;
    for (int l : order) {
      const Rect& r = rects_[static_cast<std::size_t>(l)];
      depth = std::max(depth, sideBySide ? r.h : r.w);
    }
    double at = 0.0;
    for (int l : order) {
      Rect& r = rects_[static_cast<std::size_t>(l)];
      double& across = sideBySide ? r.h : r.w;
      if (across < depth) {
        // Members stay centred in the grown lane.
        const double grow = depth - across;
        auto& o = offsets_;
        for (int m : s_.nodes[static_cast<std::size_t>(l)].members) (sideBySide ? o[static_cast<std::size_t>(m)].y : o[static_cast<std::size_t>(m)].x) += grow / 2.0;
        across = depth;
        r.resized = true;
      }
      Point& o = offsets_[static_cast<std::size_t>(l)];
      (sideBySide ? o.x : o.y) += at;
      at += sideBySide ? r.w : r.h;
    }
    return sideBySide ? Box{at, depth, false} : Box{depth, at, false};
  }

  const Scene& s_;
  bool layered_;
  MainAxis axis_;
  std::vector<Rect> rects_;
  std::vector<Point> offsets_;                    // from the corner of the level holding the node
  std::vector<std::vector<LevelEdge>> levelEdges_;  // [container + 1]
};

// Where the laid-out diagram starts: where its top-left node was, on whole units.
Point startOf(const Scene& s) {
  double x = std::numeric_limits<double>::infinity(), y = x;
  for (const SceneNode& n : s.nodes) {
    if (!usable(n) || n.host >= 0) continue;
    x = std::min(x, n.x);
    y = std::min(y, n.y);
  }
  if (!std::isfinite(x) || !std::isfinite(y)) return {kDefaultOrigin, kDefaultOrigin};
  return {std::round(x), std::round(y)};
}

LayoutResult run(const core::Document& doc, const LayoutOptions& options, bool layered) {
  const auto& nodes = doc.nodes();
  if (nodes.empty()) return untouched("The document has no nodes");
  if (nodes.size() > kMaxLayoutNodes)
    return untouched("The document has " + std::to_string(nodes.size()) + " nodes; automatic layout handles at most " +
                     std::to_string(kMaxLayoutNodes));
  std::vector<char> take;
  if (!options.onlyNodes.empty()) {
    take.assign(nodes.size(), 0);
    bool any = false;
    for (const std::string& id : options.onlyNodes) {
      const int i = doc.indexOfNode(id);
      if (i >= 0) take[static_cast<std::size_t>(i)] = 1, any = true;
    }
    if (!any) return untouched("None of the nodes to lay out is in the document");
  }
  const Scene scene = buildScene(doc, take);
  std::vector<Rect> rects;
  if (scene.sequence) {
    rects.resize(scene.nodes.size());
    for (std::size_t i = 0; i < scene.nodes.size(); ++i)
      rects[i] = {scene.nodes[i].x, scene.nodes[i].y, scene.nodes[i].w, scene.nodes[i].h, false};
    tidySequence(scene, rects);
  } else {
    Point origin = startOf(scene);
    if (!take.empty()) {
      // Added content goes below what is already there.
      double minX = std::numeric_limits<double>::infinity(), maxY = -minX;
      for (std::size_t i = 0; i < nodes.size(); ++i) {
        const core::NodeGeometry& g = nodes[i].geom;
        if (take[i] || !std::isfinite(g.x) || !std::isfinite(g.y) || !std::isfinite(g.h)) continue;
        minX = std::min(minX, static_cast<double>(g.x));
        maxY = std::max(maxY, static_cast<double>(g.y) + std::max(0.0f, g.h));
      }
      if (std::isfinite(minX) && std::abs(minX) < 1e7 && std::abs(maxY) < 1e7)
        origin = {std::round(minX), std::round(maxY + kAddedContentGap)};
    }
    rects = Compound(scene, layered).run(origin);
    // Whole units, before the ports take their places from their hosts.
    for (Rect& r : rects) {
      r.x = std::round(r.x);
      r.y = std::round(r.y);
    }
  }
  // Ports back on their host's side.
  for (std::size_t i = 0; i < scene.nodes.size(); ++i) {
    const SceneNode& p = scene.nodes[i];
    if (p.host < 0) continue;
    const Rect& h = rects[static_cast<std::size_t>(p.host)];
    portCorner(p, h.x, h.y, h.w, h.h, rects[i].x, rects[i].y);
  }
  LayoutResult result;
  result.laidOut = true;
  result.placements.reserve(nodes.size());
  for (const core::Node& n : nodes) result.placements.push_back({n.id, n.geom});
  for (std::size_t i = 0; i < scene.nodes.size(); ++i) {
    const Rect& r = rects[i];
    core::NodeGeometry& g = result.placements[static_cast<std::size_t>(scene.nodes[i].node)].geom;
    g.x = static_cast<float>(r.x);
    g.y = static_cast<float>(r.y);
    // Sizes stay, unless a container grew or a size was not a number at all.
    if (r.resized || !std::isfinite(g.w)) g.w = static_cast<float>(r.w);
    if (r.resized || !std::isfinite(g.h)) g.h = static_cast<float>(r.h);
  }
  return result;
}

}  // namespace

LayoutResult layoutLayered(const core::Document& doc, const LayoutOptions& options) {
  return run(doc, options, true);
}

LayoutResult layoutOrganic(const core::Document& doc, const LayoutOptions& options) {
  return run(doc, options, false);
}

}  // namespace modelyne::layout
