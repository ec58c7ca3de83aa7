#include "layout/sequence.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace modelyne::layout {

namespace {

bool usable(const SceneNode& n) { return !std::isnan(n.x) && !std::isnan(n.y); }

double centreX(const SceneNode& n) {
  return usable(n) ? n.x + n.w / 2.0 : std::numeric_limits<double>::infinity();
}

}  // namespace

void tidySequence(const Scene& scene, std::vector<Rect>& rects) {
  const auto& nodes = scene.nodes;
  std::vector<int> lanes;
  for (std::size_t i = 0; i < nodes.size(); ++i)
    if (nodes[i].role == ShapeRole::participant) lanes.push_back(static_cast<int>(i));
  std::stable_sort(lanes.begin(), lanes.end(), [&](int a, int b) {
    return centreX(nodes[static_cast<std::size_t>(a)]) < centreX(nodes[static_cast<std::size_t>(b)]);
  });
  double widest = 0.0, left = std::numeric_limits<double>::infinity(), top = std::numeric_limits<double>::infinity();
  for (int i : lanes) widest = std::max(widest, nodes[static_cast<std::size_t>(i)].w);
  for (int i : lanes) {
    const SceneNode& n = nodes[static_cast<std::size_t>(i)];
    if (!usable(n)) continue;
    left = std::min(left, centreX(n) - widest / 2.0);
    top = std::min(top, n.y);
  }
  left = std::isfinite(left) ? std::round(left) : 40.0;
  top = std::isfinite(top) ? std::round(top) : 40.0;
  const double step = widest + kLifelineGap;
  // Old and new centre and top of each lifeline, in row order.
  std::vector<double> oldCentre, newCentre, shiftY;
  for (std::size_t k = 0; k < lanes.size(); ++k) {
    const SceneNode& n = nodes[static_cast<std::size_t>(lanes[k])];
    const double c = left + widest / 2.0 + step * static_cast<double>(k);
    oldCentre.push_back(centreX(n));  // infinite (last) when unusable
    newCentre.push_back(c);
    shiftY.push_back(usable(n) ? top - n.y : 0.0);
    Rect& r = rects[static_cast<std::size_t>(lanes[k])];
    r.x = c - n.w / 2.0;
    r.y = top;
  }
  // The lifeline whose centre is nearest a point (lifelines without a place do not count).
  const std::size_t placed = static_cast<std::size_t>(
      std::find_if(oldCentre.begin(), oldCentre.end(), [](double c) { return !std::isfinite(c); }) - oldCentre.begin());
  auto laneOf = [&](double x) {
    const auto at = static_cast<std::size_t>(std::lower_bound(oldCentre.begin(), oldCentre.begin() + static_cast<std::ptrdiff_t>(placed), x) - oldCentre.begin());
    if (at == placed) return placed - 1;
    if (at == 0) return at;
    return x - oldCentre[at - 1] <= oldCentre[at] - x ? at - 1 : at;
  };
  double bottom = top;
  for (const SceneNode& n : nodes)
    if (usable(n)) bottom = std::max(bottom, n.y + n.h);
  double strayX = left;
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    const SceneNode& n = nodes[i];
    if (n.role == ShapeRole::participant || n.host >= 0) continue;
    Rect& r = rects[i];
    if (!usable(n)) {
      // Nowhere to keep: a row below the diagram.
      r.x = strayX;
      r.y = bottom + kLifelineGap;
      strayX += n.w + kLifelineGap;
      continue;
    }
    if (placed == 0) continue;
    if (n.role == ShapeRole::fragment) {
      const auto begin = oldCentre.begin(), end = oldCentre.begin() + static_cast<std::ptrdiff_t>(placed);
      const std::size_t first = static_cast<std::size_t>(std::lower_bound(begin, end, n.x) - begin);
      const std::size_t past = static_cast<std::size_t>(std::upper_bound(begin, end, n.x + n.w) - begin);
      const std::size_t last = past > 0 ? past - 1 : 0;
      if (first < past) {
        const double leftMargin = oldCentre[first] - n.x;
        const double rightMargin = n.x + n.w - oldCentre[last];
        r.x = newCentre[first] - leftMargin;
        const double w = newCentre[last] + rightMargin - r.x;
        if (w != n.w) {
          r.w = w;
          r.resized = true;
        }
        continue;
      }
    }
    const std::size_t k = laneOf(n.x + n.w / 2.0);
    r.x = n.x + (newCentre[k] - oldCentre[k]);
    if (n.role == ShapeRole::activation) r.y = n.y + shiftY[k];
  }
}

}  // namespace modelyne::layout
