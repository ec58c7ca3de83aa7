// Layered (Sugiyama) placement of one connected graph: orient the edges,
// break cycles (depth-first in the given order), assign layers (longest
// path, then sources pulled down towards their successors), order each
// layer by barycentre sweeps and neighbour swaps, and place boxes across
// the axis by repeated weighted averaging with order-preserving least squares.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <set>
#include <tuple>
#include <utility>

#include "layout/flat_graph.h"

namespace modelyne::layout {

namespace {

// Space beside a dummy node (a long edge passing through a layer).
constexpr double kDummyGap = 16.0;
// How far a box is pulled to the side its neighbour's anchors ask for, as a
// share of the two boxes' combined half widths.
constexpr double kSidePull = 0.6;

struct Arc {
  int tail;
  int head;
  int cross;  // where the head wants to be across the axis relative to the tail: -1, 0, 1
  double tailShift = 0.0;  // where the edge meets each end, across the axis, from its centre
  double headShift = 0.0;
};

int sign(int v) { return (v > 0) - (v < 0); }

// ---- Orientation ----

// Tail and head along the main axis: the anchors decide when they say which
// end comes first, the edge type (parent first) otherwise.
std::vector<Arc> orient(const FlatGraph& g, MainAxis axis) {
  std::vector<Arc> arcs;
  arcs.reserve(g.edges.size());
  std::set<std::pair<int, int>> seen;
  for (const FlatEdge& e : g.edges) {
    const AnchorDirection s = anchorDirection(e.sourcePort), t = anchorDirection(e.targetPort);
    const int crossOfTarget = axis == MainAxis::topDown ? sign(s.dx - t.dx) : sign(s.dy - t.dy);
    const bool forward = targetComesLater(e.sourcePort, e.targetPort, e.type, axis);
    const double sShift = axis == MainAxis::topDown ? e.sourceShift.x : e.sourceShift.y;
    const double tShift = axis == MainAxis::topDown ? e.targetShift.x : e.targetShift.y;
    Arc a = forward ? Arc{e.source, e.target, crossOfTarget, sShift, tShift}
                    : Arc{e.target, e.source, -crossOfTarget, tShift, sShift};
    if (a.tail == a.head || !seen.insert({a.tail, a.head}).second) continue;
    arcs.push_back(a);
  }
  return arcs;
}

// ---- Cycle breaking ----

// Depth-first order: reversed finishing order; back edges are the ones to turn.
std::vector<int> depthFirstOrder(int n, const std::vector<Arc>& arcs) {
  std::vector<std::vector<int>> out(static_cast<std::size_t>(n));
  for (const Arc& a : arcs) out[static_cast<std::size_t>(a.tail)].push_back(a.head);
  std::vector<char> state(static_cast<std::size_t>(n), 0);
  std::vector<int> finished;
  std::vector<std::pair<int, std::size_t>> stack;
  for (int s = 0; s < n; ++s) {
    if (state[static_cast<std::size_t>(s)]) continue;
    stack.push_back({s, 0});
    state[static_cast<std::size_t>(s)] = 1;
    while (!stack.empty()) {
      auto& [v, next] = stack.back();
      const auto& list = out[static_cast<std::size_t>(v)];
      if (next < list.size()) {
        const int w = list[next++];
        if (!state[static_cast<std::size_t>(w)]) {
          state[static_cast<std::size_t>(w)] = 1;
          stack.push_back({w, 0});
        }
      } else {
        finished.push_back(v);
        stack.pop_back();
      }
    }
  }
  return {finished.rbegin(), finished.rend()};
}

// ---- Layering ----

std::vector<int> assignLayers(int n, std::vector<Arc>& arcs) {
  const std::vector<int> order = depthFirstOrder(n, arcs);
  std::vector<int> rank(n);
  for (int i = 0; i < n; ++i) rank[order[i]] = i;
  for (Arc& a : arcs) {
    if (rank[a.tail] > rank[a.head]) {
      std::swap(a.tail, a.head);
      std::swap(a.tailShift, a.headShift);
      a.cross = -a.cross;
    }
  }
  // Longest path in the order just found (a topological order now).
  std::vector<std::vector<int>> out(n), in(n);
  for (std::size_t i = 0; i < arcs.size(); ++i) {
    out[arcs[i].tail].push_back(arcs[i].head);
    in[arcs[i].head].push_back(arcs[i].tail);
  }
  std::vector<int> layer(n, 0);
  for (int v : order)
    for (int u : in[v]) layer[v] = std::max(layer[v], layer[u] + 1);
  // A vertex with more edges below than above moves down as far as its
  // successors allow: shorter edges, fewer dummies.
  for (auto it = order.rbegin(); it != order.rend(); ++it) {
    const int v = *it;
    if (out[v].empty() || out[v].size() <= in[v].size()) continue;
    int lowest = INT32_MAX;
    for (int w : out[v]) lowest = std::min(lowest, layer[w] - 1);
    layer[v] = std::max(layer[v], lowest);
  }
  return layer;
}

// ---- Crossing counting between two neighbouring layers ----

struct Segment {
  int upper;  // position in the upper layer
  int lower;  // position in the lower layer
};

// Inversions among the lower ends after sorting by the upper ends (Fenwick tree).
std::int64_t countCrossings(std::vector<Segment>& segs, int lowerCount) {
  std::sort(segs.begin(), segs.end(),
            [](const Segment& a, const Segment& b) { return a.upper != b.upper ? a.upper < b.upper : a.lower < b.lower; });
  std::vector<int> tree(static_cast<std::size_t>(lowerCount) + 1, 0);
  std::int64_t crossings = 0;
  std::int64_t seen = 0;
  for (const Segment& s : segs) {
    int notAbove = 0;  // earlier segments whose lower end is at or before this one's
    for (int i = s.lower + 1; i > 0; i -= i & -i) notAbove += tree[i];
    crossings += seen - notAbove;
    for (int i = s.lower + 1; i <= lowerCount; i += i & -i) ++tree[i];
    ++seen;
  }
  return crossings;
}

// ---- The proper layered graph (long edges split by dummy vertices) ----

// An edge between neighbouring layers (or a long edge left without dummies).
struct Link {
  int upper;
  int lower;
  int cross;           // side the lower end wants relative to the upper: -1, 0, 1
  double upperShift;   // where the link meets each end, from its centre
  double lowerShift;
  double weight;
};

struct Layered {
  int real = 0;                            // vertices 0..real-1 are the boxes
  std::vector<int> layer;                  // per vertex
  std::vector<Link> links;                 // between neighbouring layers
  std::vector<Link> longLinks;             // spanning layers, without dummies
  std::vector<std::vector<int>> up, down;  // per vertex: links to the layer above / below
  std::vector<std::vector<int>> rows;      // vertices per layer, in order
};

Layered buildProper(int n, const std::vector<Arc>& arcs, const std::vector<int>& layer) {
  Layered L;
  L.real = n;
  L.layer = layer;
  auto addVertex = [&](int lay) {
    L.layer.push_back(lay);
    return static_cast<int>(L.layer.size()) - 1;
  };
  // Dummies for the shortest long edges first, within a budget linear in the graph.
  std::vector<std::size_t> byspan(arcs.size());
  std::iota(byspan.begin(), byspan.end(), 0);
  auto span = [&](std::size_t i) { return layer[arcs[i].head] - layer[arcs[i].tail]; };
  std::stable_sort(byspan.begin(), byspan.end(), [&](std::size_t a, std::size_t b) { return span(a) < span(b); });
  std::size_t budget = 4 * (static_cast<std::size_t>(n) + arcs.size());
  for (std::size_t i : byspan) {
    const Arc& a = arcs[i];
    const int s = span(i);
    if (s == 1) {
      L.links.push_back({a.tail, a.head, a.cross, a.tailShift, a.headShift, 1.0});
    } else if (static_cast<std::size_t>(s - 1) <= budget) {
      budget -= static_cast<std::size_t>(s - 1);
      int prev = a.tail;
      for (int k = 1; k < s; ++k) {
        const int d = addVertex(layer[a.tail] + k);
        if (k == 1) L.links.push_back({prev, d, a.cross, a.tailShift, 0.0, 1.0});
        else L.links.push_back({prev, d, 0, 0.0, 0.0, 2.0});
        prev = d;
      }
      L.links.push_back({prev, a.head, 0, 0.0, a.headShift, 2.0});
    } else {
      L.longLinks.push_back({a.tail, a.head, a.cross, a.tailShift, a.headShift, 0.5});
    }
  }
  const std::size_t total = L.layer.size();
  L.up.assign(total, {});
  L.down.assign(total, {});
  for (std::size_t i = 0; i < L.links.size(); ++i) {
    L.down[static_cast<std::size_t>(L.links[i].upper)].push_back(static_cast<int>(i));
    L.up[static_cast<std::size_t>(L.links[i].lower)].push_back(static_cast<int>(i));
  }
  int layers = 0;
  for (int l : L.layer) layers = std::max(layers, l + 1);
  L.rows.assign(static_cast<std::size_t>(layers), {});
  return L;
}

// ---- Ordering ----

std::int64_t totalCrossings(const Layered& L, const std::vector<int>& pos) {
  std::int64_t total = 0;
  std::vector<Segment> segs;
  for (std::size_t l = 0; l + 1 < L.rows.size(); ++l) {
    segs.clear();
    for (int u : L.rows[l])
      for (int k : L.down[static_cast<std::size_t>(u)]) segs.push_back({pos[u], pos[L.links[static_cast<std::size_t>(k)].lower]});
    total += countCrossings(segs, static_cast<int>(L.rows[l + 1].size()));
  }
  return total;
}

// Crossings between the links of u and those of w (u placed before w) to one
// neighbouring layer: pairs whose other ends are in the opposite order.
std::int64_t pairCrossings(const Layered& L, const std::vector<int>& pos, const std::vector<int>& lu,
                           const std::vector<int>& lw, bool upward, std::vector<int>& a, std::vector<int>& b) {
  auto ends = [&](const std::vector<int>& links, std::vector<int>& out) {
    out.clear();
    for (int k : links) {
      const Link& lk = L.links[static_cast<std::size_t>(k)];
      out.push_back(pos[static_cast<std::size_t>(upward ? lk.upper : lk.lower)]);
    }
    std::sort(out.begin(), out.end());
  };
  ends(lu, a);
  ends(lw, b);
  std::int64_t count = 0;
  std::size_t j = 0;
  for (int x : a) {
    while (j < b.size() && b[j] < x) ++j;
    count += static_cast<std::int64_t>(j);
  }
  return count;
}

// Swaps neighbours in a layer while that removes crossings (a few rounds).
void transpose(Layered& L, std::vector<int>& pos) {
  std::vector<int> a, b;
  const int rounds = L.layer.size() < 30000 ? 8 : 2;
  for (int round = 0; round < rounds; ++round) {
    bool improved = false;
    for (auto& row : L.rows) {
      for (std::size_t i = 0; i + 1 < row.size(); ++i) {
        const auto u = static_cast<std::size_t>(row[i]), w = static_cast<std::size_t>(row[i + 1]);
        const std::int64_t now = pairCrossings(L, pos, L.up[u], L.up[w], true, a, b) +
                                 pairCrossings(L, pos, L.down[u], L.down[w], false, a, b);
        const std::int64_t swapped = pairCrossings(L, pos, L.up[w], L.up[u], true, a, b) +
                                     pairCrossings(L, pos, L.down[w], L.down[u], false, a, b);
        if (swapped < now) {
          std::swap(row[i], row[i + 1]);
          pos[u] = static_cast<int>(i + 1);
          pos[w] = static_cast<int>(i);
          improved = true;
        }
      }
    }
    if (!improved) break;
  }
}

// Share of a side pull, in positions, that sorting a layer gives a link.
constexpr double kSideBias = 0.3;

void orderLayers(Layered& L, const std::vector<double>& size) {
  const std::size_t total = L.layer.size();
  std::vector<int> pos(total, 0);
  // First order: depth-first from the boxes in their given order, so that
  // connected vertices start close together.
  {
    std::vector<char> seen(total, 0);
    std::vector<int> stack;
    for (int s = 0; s < static_cast<int>(total); ++s) {
      if (seen[static_cast<std::size_t>(s)]) continue;
      stack.push_back(s);
      seen[static_cast<std::size_t>(s)] = 1;
      while (!stack.empty()) {
        const int v = stack.back();
        stack.pop_back();
        L.rows[static_cast<std::size_t>(L.layer[static_cast<std::size_t>(v)])].push_back(v);
        auto visit = [&](int w) {
          if (!seen[static_cast<std::size_t>(w)]) {
            seen[static_cast<std::size_t>(w)] = 1;
            stack.push_back(w);
          }
        };
        for (auto it = L.down[static_cast<std::size_t>(v)].rbegin(); it != L.down[static_cast<std::size_t>(v)].rend(); ++it)
          visit(L.links[static_cast<std::size_t>(*it)].lower);
        for (auto it = L.up[static_cast<std::size_t>(v)].rbegin(); it != L.up[static_cast<std::size_t>(v)].rend(); ++it)
          visit(L.links[static_cast<std::size_t>(*it)].upper);
      }
    }
  }
  for (const auto& row : L.rows)
    for (std::size_t i = 0; i < row.size(); ++i) pos[static_cast<std::size_t>(row[i])] = static_cast<int>(i);
  auto frac = [&](double shift, int v) { return shift / std::max(size[static_cast<std::size_t>(v)], 1.0); };
  std::vector<std::vector<int>> best = L.rows;
  std::int64_t bestCount = totalCrossings(L, pos);
  const int sweeps = total < 3000 ? 24 : (total < 30000 ? 10 : 4);
  std::vector<double> bary(total, 0.0);
  int stale = 0;
  for (int sweep = 0; sweep < sweeps && bestCount > 0 && stale < 6; ++sweep) {
    const bool downward = sweep % 2 == 0;
    const int layers = static_cast<int>(L.rows.size());
    for (int step = 1; step < layers; ++step) {
      const int l = downward ? step : layers - 1 - step;
      auto& row = L.rows[static_cast<std::size_t>(l)];
      for (int v : row) {
        const auto& list = downward ? L.up[static_cast<std::size_t>(v)] : L.down[static_cast<std::size_t>(v)];
        if (list.empty()) {
          bary[static_cast<std::size_t>(v)] = pos[static_cast<std::size_t>(v)];
          continue;
        }
        double sum = 0.0;
        for (int k : list) {
          const Link& lk = L.links[static_cast<std::size_t>(k)];
          // Where this vertex would sit for the link to run straight, in positions of the other layer.
          sum += downward ? pos[static_cast<std::size_t>(lk.upper)] + frac(lk.upperShift, lk.upper) - frac(lk.lowerShift, v) + kSideBias * lk.cross
                          : pos[static_cast<std::size_t>(lk.lower)] + frac(lk.lowerShift, lk.lower) - frac(lk.upperShift, v) - kSideBias * lk.cross;
        }
        bary[static_cast<std::size_t>(v)] = sum / static_cast<double>(list.size());
      }
      std::stable_sort(row.begin(), row.end(), [&](int a, int b) { return bary[static_cast<std::size_t>(a)] < bary[static_cast<std::size_t>(b)]; });
      for (std::size_t i = 0; i < row.size(); ++i) pos[static_cast<std::size_t>(row[i])] = static_cast<int>(i);
    }
    const std::int64_t count = totalCrossings(L, pos);
    if (count < bestCount) {
      bestCount = count;
      best = L.rows;
      stale = 0;
    } else {
      ++stale;
    }
  }
  L.rows = std::move(best);
  for (const auto& row : L.rows)
    for (std::size_t i = 0; i < row.size(); ++i) pos[static_cast<std::size_t>(row[i])] = static_cast<int>(i);
  transpose(L, pos);
}

// ---- Coordinates across the axis ----

// Least squares positions x (weights w, targets t) keeping x[i+1] - x[i] >= sep[i]:
// pool adjacent violators on t shifted by the running separation.
void isotonicPlace(const std::vector<double>& target, const std::vector<double>& weight,
                   const std::vector<double>& sep, std::vector<double>& x) {
  const std::size_t k = target.size();
  std::vector<double> offset(k, 0.0);
  for (std::size_t i = 1; i < k; ++i) offset[i] = offset[i - 1] + sep[i - 1];
  struct Block {
    double sumWT;
    double sumW;
    std::size_t count;
  };
  std::vector<Block> blocks;
  for (std::size_t i = 0; i < k; ++i) {
    blocks.push_back({weight[i] * (target[i] - offset[i]), weight[i], 1});
    while (blocks.size() > 1) {
      const Block& b = blocks.back();
      const Block& a = blocks[blocks.size() - 2];
      if (a.sumWT / a.sumW <= b.sumWT / b.sumW) break;
      Block merged{a.sumWT + b.sumWT, a.sumW + b.sumW, a.count + b.count};
      blocks.pop_back();
      blocks.back() = merged;
    }
  }
  std::size_t i = 0;
  for (const Block& b : blocks) {
    const double v = b.sumWT / b.sumW;
    for (std::size_t j = 0; j < b.count; ++j, ++i) x[i] = v + offset[i];
  }
}

std::vector<double> placeAcross(const Layered& L, const std::vector<double>& size) {
  const std::size_t total = L.layer.size();
  std::vector<double> x(total, 0.0);
  auto gapBetween = [&](int a, int b) {
    const bool dummy = a >= L.real || b >= L.real;
    return (size[static_cast<std::size_t>(a)] + size[static_cast<std::size_t>(b)]) / 2.0 + (dummy ? kDummyGap : kNodeGap);
  };
  for (const auto& row : L.rows) {
    double at = 0.0;
    for (std::size_t i = 0; i < row.size(); ++i) {
      if (i > 0) at += gapBetween(row[i - 1], row[i]);
      x[static_cast<std::size_t>(row[i])] = at;
    }
  }
  // Per vertex: (other end, offset of this vertex from it, weight), towards the layer above and below.
  struct Pull {
    int other;
    double offset;
    double weight;
  };
  std::vector<std::vector<Pull>> fromAbove(total), fromBelow(total);
  auto addLink = [&](const Link& lk) {
    const double side = lk.cross * kSidePull * (size[static_cast<std::size_t>(lk.upper)] + size[static_cast<std::size_t>(lk.lower)]) / 2.0;
    const double off = lk.upperShift - lk.lowerShift + side;
    const double w = lk.weight * (lk.cross != 0 ? 2.0 : 1.0);
    fromAbove[static_cast<std::size_t>(lk.lower)].push_back({lk.upper, off, w});
    fromBelow[static_cast<std::size_t>(lk.upper)].push_back({lk.lower, -off, w});
  };
  for (const Link& lk : L.links) addLink(lk);
  for (const Link& lk : L.longLinks) addLink(lk);
  std::vector<double> target, weight, sep, placed;
  auto relaxRow = [&](const std::vector<int>& row, bool useUp, bool useDown) {
    const std::size_t k = row.size();
    target.assign(k, 0.0);
    weight.assign(k, 0.0);
    sep.assign(k ? k - 1 : 0, 0.0);
    placed.assign(k, 0.0);
    for (std::size_t i = 0; i < k; ++i) {
      const auto v = static_cast<std::size_t>(row[i]);
      double sum = 0.0, wsum = 0.0;
      auto add = [&](const std::vector<Pull>& pulls) {
        for (const Pull& p : pulls) {
          sum += p.weight * (x[static_cast<std::size_t>(p.other)] + p.offset);
          wsum += p.weight;
        }
      };
      if (useUp) add(fromAbove[v]);
      if (useDown) add(fromBelow[v]);
      if (wsum > 0.0) {
        target[i] = sum / wsum;
        weight[i] = wsum;
      } else {
        target[i] = x[v];
        weight[i] = 0.05;  // free vertices follow the others
      }
      if (i > 0) sep[i - 1] = gapBetween(row[i - 1], row[i]);
    }
    isotonicPlace(target, weight, sep, placed);
    for (std::size_t i = 0; i < k; ++i) x[static_cast<std::size_t>(row[i])] = placed[i];
  };
  const int rounds = total < 20000 ? 8 : 4;
  for (int r = 0; r < rounds; ++r) {
    for (const auto& row : L.rows) relaxRow(row, true, r > rounds / 2);
    for (auto it = L.rows.rbegin(); it != L.rows.rend(); ++it) relaxRow(*it, r > rounds / 2, true);
  }
  for (const auto& row : L.rows) relaxRow(row, true, true);
  return x;
}

}  // namespace

std::vector<Point> placeLayered(const FlatGraph& g, MainAxis axis) {
  const int n = static_cast<int>(g.boxes.size());
  std::vector<Point> out(static_cast<std::size_t>(n));
  if (n == 0) return out;
  const bool td = axis == MainAxis::topDown;
  std::vector<Arc> arcs = orient(g, axis);
  const std::vector<int> layer = assignLayers(n, arcs);
  Layered L = buildProper(n, arcs, layer);
  std::vector<double> across(L.layer.size(), 0.0);
  for (int v = 0; v < n; ++v) across[static_cast<std::size_t>(v)] = td ? g.boxes[static_cast<std::size_t>(v)].w : g.boxes[static_cast<std::size_t>(v)].h;
  orderLayers(L, across);
  const std::vector<double> x = placeAcross(L, across);
  double minX = 0.0;
  bool first = true;
  for (int v = 0; v < n; ++v) {
    const double left = x[v] - across[v] / 2.0;
    if (first || left < minX) minX = left;
    first = false;
  }
  std::vector<double> depth(L.rows.size(), 0.0);
  for (int v = 0; v < n; ++v) {
    const double along = td ? g.boxes[v].h : g.boxes[v].w;
    depth[static_cast<std::size_t>(L.layer[v])] = std::max(depth[static_cast<std::size_t>(L.layer[v])], along);
  }
  std::vector<double> start(L.rows.size(), 0.0);
  for (std::size_t l = 1; l < L.rows.size(); ++l) start[l] = start[l - 1] + depth[l - 1] + kLayerGap;
  for (int v = 0; v < n; ++v) {
    const std::size_t l = static_cast<std::size_t>(L.layer[v]);
    const double along = td ? g.boxes[v].h : g.boxes[v].w;
    const double main = start[l] + (depth[l] - along) / 2.0;
    const double cross = x[v] - across[v] / 2.0 - minX;
    out[static_cast<std::size_t>(v)] = td ? Point{cross, main} : Point{main, cross};
  }
  return out;
}

}  // namespace modelyne::layout
