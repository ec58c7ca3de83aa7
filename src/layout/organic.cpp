// Organic placement of one connected graph: pivot MDS for a start that does
// not depend on where the boxes were, stress majorization (all pairs for
// small graphs, edges plus pivots for big ones), then overlap removal.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <deque>
#include <limits>
#include <numeric>

#include "layout/flat_graph.h"

namespace modelyne::layout {

namespace {

// Graphs up to this size get the full stress model (all pairs).
constexpr int kFullStressLimit = 400;
constexpr int kPivots = 40;
constexpr int kStressOverlapLimit = 2000;
// Space left between boxes of an organic drawing.
constexpr double kOrganicGap = 30.0;

using Adjacency = std::vector<std::vector<int>>;

Adjacency adjacency(const FlatGraph& g) {
  Adjacency adj(g.boxes.size());
  for (const FlatEdge& e : g.edges) {
    adj[static_cast<std::size_t>(e.source)].push_back(e.target);
    adj[static_cast<std::size_t>(e.target)].push_back(e.source);
  }
  for (auto& list : adj) {
    std::sort(list.begin(), list.end());
    list.erase(std::unique(list.begin(), list.end()), list.end());
  }
  return adj;
}

std::vector<int> bfs(const Adjacency& adj, int from) {
  std::vector<int> dist(adj.size(), -1);
  std::deque<int> queue{from};
  dist[static_cast<std::size_t>(from)] = 0;
  while (!queue.empty()) {
    const int v = queue.front();
    queue.pop_front();
    for (int w : adj[static_cast<std::size_t>(v)])
      if (dist[static_cast<std::size_t>(w)] < 0) {
        dist[static_cast<std::size_t>(w)] = dist[static_cast<std::size_t>(v)] + 1;
        queue.push_back(w);
      }
  }
  return dist;
}

// Pivots by max-min distance, starting from the best connected box.
std::vector<std::vector<int>> pivotDistances(const Adjacency& adj, int count) {
  const int n = static_cast<int>(adj.size());
  int first = 0;
  for (int v = 1; v < n; ++v)
    if (adj[static_cast<std::size_t>(v)].size() > adj[static_cast<std::size_t>(first)].size()) first = v;
  std::vector<std::vector<int>> rows;
  std::vector<int> nearest(static_cast<std::size_t>(n), std::numeric_limits<int>::max());
  int next = first;
  for (int k = 0; k < count; ++k) {
    rows.push_back(bfs(adj, next));
    int far = -1;
    for (int v = 0; v < n; ++v) {
      const int d = rows.back()[static_cast<std::size_t>(v)];
      nearest[static_cast<std::size_t>(v)] = std::min(nearest[static_cast<std::size_t>(v)], d < 0 ? 0 : d);
      if (far < 0 || nearest[static_cast<std::size_t>(v)] > nearest[static_cast<std::size_t>(far)]) far = v;
    }
    if (far < 0 || nearest[static_cast<std::size_t>(far)] == 0) break;
    next = far;
  }
  return rows;
}

// Classical MDS through the pivots (Brandes and Pich): the two leading
// eigenvectors of C^T C by power iteration with fixed start vectors.
std::vector<Point> pivotMds(const std::vector<std::vector<int>>& piv, int n, double unit) {
  const std::size_t k = piv.size();
  std::vector<Point> pos(static_cast<std::size_t>(n));
  if (k < 2) {
    for (int v = 0; v < n; ++v) pos[static_cast<std::size_t>(v)] = {unit * v, 0.0};
    return pos;
  }
  // C (n x k): double-centred squared distances.
  std::vector<double> c(static_cast<std::size_t>(n) * k);
  std::vector<double> colMean(k, 0.0), rowMean(static_cast<std::size_t>(n), 0.0);
  double all = 0.0;
  for (std::size_t j = 0; j < k; ++j)
    for (int v = 0; v < n; ++v) {
      const double d = unit * piv[j][static_cast<std::size_t>(v)];
      const double sq = d * d;
      c[static_cast<std::size_t>(v) * k + j] = sq;
      colMean[j] += sq;
      rowMean[static_cast<std::size_t>(v)] += sq;
      all += sq;
    }
  for (auto& m : colMean) m /= n;
  for (auto& m : rowMean) m /= static_cast<double>(k);
  all /= static_cast<double>(n) * static_cast<double>(k);
  for (int v = 0; v < n; ++v)
    for (std::size_t j = 0; j < k; ++j) {
      double& e = c[static_cast<std::size_t>(v) * k + j];
      e = -0.5 * (e - rowMean[static_cast<std::size_t>(v)] - colMean[j] + all);
    }
  std::vector<double> m(k * k, 0.0);  // C^T C
  for (int v = 0; v < n; ++v) {
    const double* row = &c[static_cast<std::size_t>(v) * k];
    for (std::size_t a = 0; a < k; ++a)
      for (std::size_t b = 0; b < k; ++b) m[a * k + b] += row[a] * row[b];
  }
  std::vector<std::vector<double>> vecs;
  for (int which = 0; which < 2; ++which) {
    std::vector<double> x(k), y(k);
    for (std::size_t a = 0; a < k; ++a) x[a] = 1.0 + ((a * (which + 2)) % 7) * 0.1 + (which ? (a % 2 ? -1.0 : 1.0) : 0.0);
    for (int it = 0; it < 200; ++it) {
      for (const auto& prev : vecs) {
        const double dot = std::inner_product(x.begin(), x.end(), prev.begin(), 0.0);
        for (std::size_t a = 0; a < k; ++a) x[a] -= dot * prev[a];
      }
      for (std::size_t a = 0; a < k; ++a) {
        double s = 0.0;
        for (std::size_t b = 0; b < k; ++b) s += m[a * k + b] * x[b];
        y[a] = s;
      }
      const double norm = std::sqrt(std::inner_product(y.begin(), y.end(), y.begin(), 0.0));
      if (!(norm > 1e-300)) break;
      for (std::size_t a = 0; a < k; ++a) x[a] = y[a] / norm;
    }
    vecs.push_back(x);
  }
  for (int v = 0; v < n; ++v) {
    const double* row = &c[static_cast<std::size_t>(v) * k];
    double px = 0.0, py = 0.0;
    for (std::size_t a = 0; a < k; ++a) {
      px += row[a] * vecs[0][a];
      py += row[a] * vecs[1][a];
    }
    pos[static_cast<std::size_t>(v)] = {px, py};
  }
  // Scale to the pivot distances (MDS coordinates carry the eigenvalue's root).
  double num = 0.0, den = 0.0;
  for (std::size_t j = 0; j < k; ++j) {
    const int p = static_cast<int>(std::find(piv[j].begin(), piv[j].end(), 0) - piv[j].begin());
    for (int v = 0; v < n; v += std::max(1, n / 200)) {
      const double want = unit * piv[j][static_cast<std::size_t>(v)];
      const double dx = pos[static_cast<std::size_t>(v)].x - pos[static_cast<std::size_t>(p)].x;
      const double dy = pos[static_cast<std::size_t>(v)].y - pos[static_cast<std::size_t>(p)].y;
      num += want * std::sqrt(dx * dx + dy * dy);
      den += dx * dx + dy * dy;
    }
  }
  const double s = den > 0.0 ? num / den : 1.0;
  for (auto& p : pos) {
    p.x *= s;
    p.y *= s;
  }
  return pos;
}

struct Term {
  int other;
  double dist;
  double weight;
  double dx = 0.0;  // when set: the direction this node should lie in from the other
  double dy = 0.0;
};

// Weight of an edge's anchor direction against its plain length.
constexpr double kDirectionWeight = 1.5;


void majorize(std::vector<Point>& pos, const std::vector<std::vector<Term>>& terms, int rounds) {
  const std::size_t n = pos.size();
  for (int r = 0; r < rounds; ++r) {
    double moved = 0.0, extent = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
      double sx = 0.0, sy = 0.0, sw = 0.0;
      for (const Term& t : terms[i]) {
        const Point& o = pos[static_cast<std::size_t>(t.other)];
        if (t.dx != 0.0 || t.dy != 0.0) {
          sx += t.weight * (o.x + t.dist * t.dx);
          sy += t.weight * (o.y + t.dist * t.dy);
          sw += t.weight;
          continue;
        }
        double dx = pos[i].x - o.x, dy = pos[i].y - o.y;
        double len = std::sqrt(dx * dx + dy * dy);
        if (len < 1e-9) {
          // Coincident: separate along a direction fixed by the indices.
          const double a = static_cast<double>((i * 7919 + static_cast<std::size_t>(t.other)) % 628) / 100.0;
          dx = std::cos(a);
          dy = std::sin(a);
          len = 1.0;
        }
        sx += t.weight * (o.x + t.dist * dx / len);
        sy += t.weight * (o.y + t.dist * dy / len);
        sw += t.weight;
      }
      if (sw <= 0.0) continue;
      const Point next{sx / sw, sy / sw};
      moved += std::abs(next.x - pos[i].x) + std::abs(next.y - pos[i].y);
      extent += std::abs(next.x) + std::abs(next.y);
      pos[i] = next;
    }
    if (moved <= 1e-4 * (extent + 1.0)) break;
  }
}

// Edges whose anchors name a direction pull their ends that way.
void addDirections(const FlatGraph& g, double unit, std::vector<std::vector<Term>>& terms) {
  for (const FlatEdge& e : g.edges) {
    const AnchorDirection s = anchorDirection(e.sourcePort), t = anchorDirection(e.targetPort);
    const double dx = s.dx - t.dx, dy = s.dy - t.dy;
    const double len = std::sqrt(dx * dx + dy * dy);
    if (len == 0.0) continue;
    const double w = kDirectionWeight / (unit * unit);
    terms[static_cast<std::size_t>(e.target)].push_back({e.source, unit, w, dx / len, dy / len});
    terms[static_cast<std::size_t>(e.source)].push_back({e.target, unit, w, -dx / len, -dy / len});
  }
}

// Overlaps taken apart by stress (as PRISM does): each overlapping pair
// wants its distance stretched just enough to part, each edge keeps its
// current length, a few majorization rounds at a time, until none overlaps.
void spreadOverlaps(const FlatGraph& g, const Adjacency& adj, std::vector<Point>& c) {
  const std::size_t n = c.size();
  constexpr int rounds = 40;
  constexpr double kMaxStretch = 2.0;
  std::vector<std::vector<Term>> terms(n);
  for (int round = 0; round < rounds; ++round) {
    const auto pairs = overlappingPairs(g.boxes, c, kOrganicGap);
    if (pairs.empty()) return;
    for (auto& t : terms) t.clear();
    auto distance = [&](std::size_t i, std::size_t j) {
      return std::max(std::hypot(c[i].x - c[j].x, c[i].y - c[j].y), 1e-3);
    };
    for (const auto& [a, b] : pairs) {
      const auto i = static_cast<std::size_t>(a), j = static_cast<std::size_t>(b);
      const double dx = std::max(std::abs(c[i].x - c[j].x), 1e-3), dy = std::max(std::abs(c[i].y - c[j].y), 1e-3);
      const double needX = ((g.boxes[i].w + g.boxes[j].w) / 2.0 + kOrganicGap) / dx;
      const double needY = ((g.boxes[i].h + g.boxes[j].h) / 2.0 + kOrganicGap) / dy;
      const double stretch = std::clamp(std::min(needX, needY), 1.0, kMaxStretch);
      const double d = distance(i, j) * stretch;
      terms[i].push_back({b, d, 1.0 / (d * d)});
      terms[j].push_back({a, d, 1.0 / (d * d)});
    }
    for (std::size_t i = 0; i < n; ++i)
      for (int j : adj[i]) {
        const double d = distance(i, static_cast<std::size_t>(j));
        terms[i].push_back({j, d, 1.0 / (d * d)});
      }
    majorize(c, terms, 3);
  }
}

}  // namespace

std::vector<Point> placeOrganic(const FlatGraph& g) {
  const int n = static_cast<int>(g.boxes.size());
  std::vector<Point> out(static_cast<std::size_t>(n));
  if (n == 0) return out;
  // One hop: the mean box's half extent on either side plus a gap.
  double unit = 0.0;
  for (const Box& b : g.boxes) unit += (b.w + b.h) / 2.0;
  unit = unit / n + kNodeGap;
  const Adjacency adj = adjacency(g);
  std::vector<Point> centres;
  std::vector<std::vector<Term>> terms(static_cast<std::size_t>(n));
  if (n <= kFullStressLimit) {
    const auto piv = pivotDistances(adj, std::min(n, kPivots));
    centres = pivotMds(piv, n, unit);
    for (int i = 0; i < n; ++i) {
      const std::vector<int> d = bfs(adj, i);
      for (int j = 0; j < n; ++j) {
        if (j == i || d[static_cast<std::size_t>(j)] <= 0) continue;
        const double dist = unit * d[static_cast<std::size_t>(j)];
        terms[static_cast<std::size_t>(i)].push_back({j, dist, 1.0 / (dist * dist)});
      }
    }
    addDirections(g, unit, terms);
    majorize(centres, terms, 120);
  } else {
    const auto piv = pivotDistances(adj, kPivots);
    centres = pivotMds(piv, n, unit);
    // Sparse stress: the edges, and each pivot standing for its share of the graph.
    const double share = static_cast<double>(n) / static_cast<double>(piv.size());
    std::vector<int> pivotOf(piv.size());
    for (std::size_t p = 0; p < piv.size(); ++p)
      pivotOf[p] = static_cast<int>(std::find(piv[p].begin(), piv[p].end(), 0) - piv[p].begin());
    for (int i = 0; i < n; ++i) {
      for (int j : adj[static_cast<std::size_t>(i)]) terms[static_cast<std::size_t>(i)].push_back({j, unit, 1.0 / (unit * unit)});
      for (std::size_t p = 0; p < piv.size(); ++p) {
        const int d = piv[p][static_cast<std::size_t>(i)];
        if (d <= 1) continue;
        const double dist = unit * d;
        terms[static_cast<std::size_t>(i)].push_back({pivotOf[p], dist, share / (dist * dist) * 0.1});
      }
    }
    addDirections(g, unit, terms);
    majorize(centres, terms, 40);
  }
  // Stress-based overlap removal keeps the drawing's shape, but costs a
  // round of majorization per step; the biggest drawings are pushed apart only.
  if (n <= kStressOverlapLimit) spreadOverlaps(g, adj, centres);
  removeOverlaps(g.boxes, centres, kOrganicGap);
  double minX = std::numeric_limits<double>::max(), minY = std::numeric_limits<double>::max();
  for (int v = 0; v < n; ++v) {
    minX = std::min(minX, centres[static_cast<std::size_t>(v)].x - g.boxes[static_cast<std::size_t>(v)].w / 2.0);
    minY = std::min(minY, centres[static_cast<std::size_t>(v)].y - g.boxes[static_cast<std::size_t>(v)].h / 2.0);
  }
  for (int v = 0; v < n; ++v)
    out[static_cast<std::size_t>(v)] = {centres[static_cast<std::size_t>(v)].x - g.boxes[static_cast<std::size_t>(v)].w / 2.0 - minX,
                                        centres[static_cast<std::size_t>(v)].y - g.boxes[static_cast<std::size_t>(v)].h / 2.0 - minY};
  return out;
}

}  // namespace modelyne::layout
