#include "export/diagram_drawing.h"

#include <cmath>
#include <limits>
#include <string_view>
#include <unordered_map>

#include "export/edge_drawing.h"
#include "export/node_outlines.h"

namespace modelyne::exporter {

namespace {

constexpr Bounds kEmptyPage{0.0f, 0.0f, 320.0f, 200.0f};
// Gap between the content and a diagram frame drawn around it.
constexpr float kFramePadding = 12.0f;

Extent contentExtent(std::span<const core::Node> nodes) {
  Extent e;
  for (const core::Node& n : nodes) extendByNode(e, n);
  return e;
}

float finiteOrMax(float v) {
  return std::isfinite(v) ? v : std::numeric_limits<float>::max();
}

Bounds pageOf(const Extent& e, float margin) {
  if (!e.any || !(e.maxX >= e.minX) || !(e.maxY >= e.minY)) return kEmptyPage;
  if (!std::isfinite(margin)) margin = 0.0f;
  Bounds b;
  b.x = e.minX - margin;
  b.y = e.minY - margin;
  b.width = finiteOrMax(e.maxX - e.minX + 2 * margin);
  b.height = finiteOrMax(e.maxY - e.minY + 2 * margin);
  return b;
}

}  // namespace

std::string frameLabel(const core::DiagramFrame& frame) {
  std::string label(core::diagramKindKey(frame.kind));
  label += " [" + frame.elementType + "] " + frame.elementName;
  if (!frame.name.empty()) label += " [" + frame.name + "]";
  return label;
}

Bounds diagramBounds(std::span<const core::Node> nodes, float margin) {
  if (nodes.empty()) return kEmptyPage;
  return pageOf(contentExtent(nodes), margin);
}

DrawingList buildDrawing(std::span<const core::Node> nodes, std::span<const core::Edge> edges,
                         const DrawingOptions& options) {
  DrawingList list;
  list.background = options.background;
  list.items.reserve(nodes.size() * 2 + edges.size() * 2);

  const bool framed = options.frame != nullptr && options.frame->show;
  Extent content = contentExtent(nodes);
  Extent frameBox;
  if (framed) {
    if (!content.any) {  // an empty framed diagram still shows its frame on the empty page
      content.takeX(kEmptyPage.x + kFramePadding);
      content.takeY(kEmptyPage.y + kFramePadding + kFrameTabHeight);
      content.takeX(kEmptyPage.width - kFramePadding);
      content.takeY(kEmptyPage.height - kFramePadding);
    }
    frameBox.takeX(content.minX - kFramePadding);
    frameBox.takeY(content.minY - kFramePadding - kFrameTabHeight);
    frameBox.takeX(content.maxX + kFramePadding);
    frameBox.takeY(content.maxY + kFramePadding);
    list.bounds = pageOf(frameBox, options.margin);
  } else {
    list.bounds = nodes.empty() ? kEmptyPage : pageOf(content, options.margin);
  }

  DrawingBuilder out(list);
  if (framed)
    drawNamedFrame(out, frameBox.minX, frameBox.minY, frameBox.maxX - frameBox.minX,
                   frameBox.maxY - frameBox.minY, frameLabel(*options.frame));

  // One index per call; the first node with an id wins, as a scan in node order would find it.
  std::unordered_map<std::string_view, const core::Node*> byId;
  byId.reserve(nodes.size());
  for (const core::Node& n : nodes) byId.try_emplace(n.id, &n);
  for (const core::Edge& e : edges) {
    auto s = byId.find(e.source);
    auto t = byId.find(e.target);
    if (s == byId.end() || t == byId.end()) continue;
    drawEdge(out, e, *s->second, *t->second);
  }
  for (const core::Node& n : nodes) drawNode(out, n);
  return list;
}

}  // namespace modelyne::exporter
