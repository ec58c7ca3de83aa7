// Overlap removal: boxes that overlap are pushed apart along the axis where
// they overlap least, pair by pair, found through a uniform grid. When that
// does not settle, the drawing is spread from its centre and tried again;
// the last resort is a plain row packing, which never overlaps.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <tuple>

#include "layout/flat_graph.h"

namespace modelyne::layout {

namespace {

constexpr int kPushPasses = 100;
constexpr int kSpreads = 3;
constexpr std::size_t kManyBoxes = 2000;
constexpr double kSpreadFactor = 1.15;
// A box covers at most about this many cells across.
constexpr double kMaxCellsAcross = 64.0;

struct CellEntry {
  std::int64_t cell;
  int box;
  friend bool operator<(const CellEntry& a, const CellEntry& b) {
    return std::tie(a.cell, a.box) < std::tie(b.cell, b.box);
  }
};

std::int64_t cellKey(std::int64_t cx, std::int64_t cy) { return (cx << 32) ^ (cy & 0xffffffff); }

// One round of pushes; returns whether any pair overlapped.
bool pushApart(const std::vector<Box>& boxes, std::vector<Point>& c, double gap, double cell,
               std::vector<CellEntry>& entries) {
  const std::size_t n = boxes.size();
  entries.clear();
  auto cellOf = [cell](double v) { return static_cast<std::int64_t>(std::floor(v / cell)); };
  for (std::size_t i = 0; i < n; ++i) {
    const double hw = (boxes[i].w + gap) / 2.0, hh = (boxes[i].h + gap) / 2.0;
    for (std::int64_t x = cellOf(c[i].x - hw); x <= cellOf(c[i].x + hw); ++x)
      for (std::int64_t y = cellOf(c[i].y - hh); y <= cellOf(c[i].y + hh); ++y)
        entries.push_back({cellKey(x, y), static_cast<int>(i)});
  }
  std::sort(entries.begin(), entries.end());
  bool any = false;
  for (std::size_t s = 0; s < entries.size();) {
    std::size_t e = s;
    while (e < entries.size() && entries[e].cell == entries[s].cell) ++e;
    for (std::size_t a = s; a < e; ++a)
      for (std::size_t b = a + 1; b < e; ++b) {
        const std::size_t i = static_cast<std::size_t>(entries[a].box), j = static_cast<std::size_t>(entries[b].box);
        const double dx = c[j].x - c[i].x, dy = c[j].y - c[i].y;
        const double ox = (boxes[i].w + boxes[j].w) / 2.0 + gap - std::abs(dx);
        const double oy = (boxes[i].h + boxes[j].h) / 2.0 + gap - std::abs(dy);
        if (ox <= 0.0 || oy <= 0.0) continue;
        // Handle each pair once: in the cell holding the overlap's top-left corner.
        const double left = std::max(c[i].x - (boxes[i].w + gap) / 2.0, c[j].x - (boxes[j].w + gap) / 2.0);
        const double top = std::max(c[i].y - (boxes[i].h + gap) / 2.0, c[j].y - (boxes[j].h + gap) / 2.0);
        if (cellKey(cellOf(left), cellOf(top)) != entries[s].cell) continue;
        any = true;
        if (ox <= oy) {
          const double dir = dx > 0.0 || (dx == 0.0 && i < j) ? 1.0 : -1.0;
          c[i].x -= dir * ox / 2.0;
          c[j].x += dir * ox / 2.0;
        } else {
          const double dir = dy > 0.0 || (dy == 0.0 && i < j) ? 1.0 : -1.0;
          c[i].y -= dir * oy / 2.0;
          c[j].y += dir * oy / 2.0;
        }
      }
    s = e;
  }
  return any;
}

bool anyOverlap(const std::vector<Box>& boxes, const std::vector<Point>& c, double gap, double cell,
                std::vector<CellEntry>& entries) {
  std::vector<Point> copy = c;
  return pushApart(boxes, copy, gap * 0.5, cell, entries);
}

}  // namespace

std::vector<std::pair<int, int>> overlappingPairs(const std::vector<Box>& boxes, const std::vector<Point>& c,
                                                  double gap) {
  std::vector<std::pair<int, int>> pairs;
  const std::size_t n = boxes.size();
  if (n < 2) return pairs;
  double largest = 0.0, sum = 0.0;
  for (const Box& b : boxes) {
    largest = std::max({largest, b.w, b.h});
    sum += std::max(b.w, b.h);
  }
  const double cell = std::max({sum / static_cast<double>(n) + gap, largest / kMaxCellsAcross, 1.0});
  auto cellOf = [cell](double v) { return static_cast<std::int64_t>(std::floor(v / cell)); };
  std::vector<CellEntry> entries;
  for (std::size_t i = 0; i < n; ++i) {
    const double hw = (boxes[i].w + gap) / 2.0, hh = (boxes[i].h + gap) / 2.0;
    for (std::int64_t x = cellOf(c[i].x - hw); x <= cellOf(c[i].x + hw); ++x)
      for (std::int64_t y = cellOf(c[i].y - hh); y <= cellOf(c[i].y + hh); ++y)
        entries.push_back({cellKey(x, y), static_cast<int>(i)});
  }
  std::sort(entries.begin(), entries.end());
  for (std::size_t s = 0; s < entries.size();) {
    std::size_t e = s;
    while (e < entries.size() && entries[e].cell == entries[s].cell) ++e;
    for (std::size_t a = s; a < e; ++a)
      for (std::size_t b = a + 1; b < e; ++b) {
        const std::size_t i = static_cast<std::size_t>(entries[a].box), j = static_cast<std::size_t>(entries[b].box);
        const double ox = (boxes[i].w + boxes[j].w) / 2.0 + gap - std::abs(c[j].x - c[i].x);
        const double oy = (boxes[i].h + boxes[j].h) / 2.0 + gap - std::abs(c[j].y - c[i].y);
        if (ox <= 0.0 || oy <= 0.0) continue;
        const double left = std::max(c[i].x - (boxes[i].w + gap) / 2.0, c[j].x - (boxes[j].w + gap) / 2.0);
        const double top = std::max(c[i].y - (boxes[i].h + gap) / 2.0, c[j].y - (boxes[j].h + gap) / 2.0);
        if (cellKey(cellOf(left), cellOf(top)) != entries[s].cell) continue;
        pairs.emplace_back(static_cast<int>(std::min(i, j)), static_cast<int>(std::max(i, j)));
      }
    s = e;
  }
  std::sort(pairs.begin(), pairs.end());
  return pairs;
}

void removeOverlaps(const std::vector<Box>& boxes, std::vector<Point>& centres, double gap) {
  const std::size_t n = boxes.size();
  if (n < 2) return;
  std::vector<double> sizes(n);
  double largest = 0.0;
  for (std::size_t i = 0; i < n; ++i) {
    sizes[i] = std::max(boxes[i].w, boxes[i].h);
    largest = std::max(largest, sizes[i]);
  }
  std::nth_element(sizes.begin(), sizes.begin() + static_cast<std::ptrdiff_t>(n / 2), sizes.end());
  const double cell = std::max({sizes[n / 2] + gap, largest / kMaxCellsAcross, 1.0});
  std::vector<CellEntry> entries;
  // Big drawings get few spreads: each costs a full round of pushes.
  const int spreads = n > kManyBoxes ? 1 : kSpreads;
  for (int spread = 0; spread <= spreads; ++spread) {
    const int passes = n > kManyBoxes ? kPushPasses / 4 : kPushPasses;
    for (int pass = 0; pass < passes; ++pass)
      if (!pushApart(boxes, centres, gap, cell, entries)) return;
    if (!anyOverlap(boxes, centres, gap, cell, entries)) return;
    Point mid{0.0, 0.0};
    for (const Point& p : centres) {
      mid.x += p.x / static_cast<double>(n);
      mid.y += p.y / static_cast<double>(n);
    }
    for (Point& p : centres) {
      p.x = mid.x + (p.x - mid.x) * kSpreadFactor;
      p.y = mid.y + (p.y - mid.y) * kSpreadFactor;
    }
  }
  // Last resort: bands by height, each sorted left to right, packed in rows.
  std::vector<std::size_t> order(n);
  std::iota(order.begin(), order.end(), 0);
  std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return centres[a].y < centres[b].y; });
  double area = 0.0, widths = 0.0;
  for (const Box& b : boxes) {
    area += (b.w + gap) * (b.h + gap);
    widths += b.w + gap;
  }
  const double rowWidth = std::max(largest, std::sqrt(area) * 1.2);
  const auto perRow = static_cast<std::size_t>(std::max(1.0, std::floor(rowWidth / (widths / static_cast<double>(n)))));
  for (std::size_t s = 0; s < n; s += perRow)
    std::stable_sort(order.begin() + static_cast<std::ptrdiff_t>(s), order.begin() + static_cast<std::ptrdiff_t>(std::min(n, s + perRow)),
                     [&](std::size_t a, std::size_t b) { return centres[a].x < centres[b].x; });
  double x = 0.0, y = 0.0, rowHeight = 0.0;
  for (std::size_t k = 0; k < n; ++k) {
    const std::size_t i = order[k];
    if (k % perRow == 0 && k > 0) {
      x = 0.0;
      y += rowHeight + gap;
      rowHeight = 0.0;
    }
    centres[i] = {x + boxes[i].w / 2.0, y + boxes[i].h / 2.0};
    x += boxes[i].w + gap;
    rowHeight = std::max(rowHeight, boxes[i].h);
  }
}

}  // namespace modelyne::layout
