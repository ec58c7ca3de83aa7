#include "export/diagram_drawing.h"

#include <cmath>
#include <limits>
#include <string_view>
#include <algorithm>
#include <functional>
#include <vector>

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

/// Node id to the first node with that id: open addressing with linear
/// probing over a flat table, built once per call.
class NodeIdIndex {
 public:
  explicit NodeIdIndex(std::span<const core::Node> nodes) : nodes_(nodes) {
    std::size_t capacity = 16;
    while (capacity < nodes.size() * 2) capacity <<= 1;
    slots_.assign(capacity, Slot{});
    mask_ = capacity - 1;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
      const std::size_t h = hashOf(nodes[i].id);
      std::size_t at = h & mask_;
      for (;; at = (at + 1) & mask_) {
        Slot& slot = slots_[at];
        if (slot.index == kEmpty) {
          slot = {tagOf(h), static_cast<std::uint32_t>(i)};
          break;
        }
        if (slot.tag == tagOf(h) && nodes_[slot.index].id == nodes[i].id) break;  // first one wins
      }
    }
  }

  const core::Node* find(std::string_view id) const noexcept {
    const std::size_t h = hashOf(id);
    for (std::size_t at = h & mask_;; at = (at + 1) & mask_) {
      const Slot& slot = slots_[at];
      if (slot.index == kEmpty) return nullptr;
      if (slot.tag == tagOf(h) && nodes_[slot.index].id == id) return &nodes_[slot.index];
    }
  }

 private:
  static constexpr std::uint32_t kEmpty = 0xFFFFFFFFu;
  // Eight bytes a slot, so the table of a 100,000-node diagram stays within 2 MB of cache.
  struct Slot {
    std::uint32_t tag = 0;  // high hash bits, to skip most id comparisons
    std::uint32_t index = kEmpty;
  };
  static std::size_t hashOf(std::string_view id) noexcept { return std::hash<std::string_view>{}(id); }
  static std::uint32_t tagOf(std::size_t h) noexcept { return static_cast<std::uint32_t>(h >> 32); }

  std::span<const core::Node> nodes_;
  std::vector<Slot> slots_;
  std::size_t mask_ = 0;
};

/// Overflow to infinity (a huge margin on huge coordinates) stops at the largest float.
float finiteOrMax(float v) {
  if (std::isfinite(v)) return v;
  return v < 0 ? -std::numeric_limits<float>::max() : std::numeric_limits<float>::max();
}

Bounds pageOf(const Extent& e, float margin) {
  if (!e.any || !(e.maxX >= e.minX) || !(e.maxY >= e.minY)) return kEmptyPage;
  if (!std::isfinite(margin)) margin = 0.0f;
  Bounds b;
  b.x = finiteOrMax(e.minX - margin);
  b.y = finiteOrMax(e.minY - margin);
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

void buildDrawingInPieces(std::span<const core::Node> nodes, std::span<const core::Edge> edges,
                          const DrawingOptions& options, std::size_t pieceSize,
                          const std::function<void(DrawingList&)>& consume) {
  if (pieceSize == 0) pieceSize = 1;
  DrawingList list;
  list.background = options.background;
  // Typical counts: a node gives an outline and a label, an edge a line, a mark and a label.
  const std::size_t nodesInPiece = std::min(nodes.size(), pieceSize);
  const std::size_t edgesInPiece = std::min(edges.size(), pieceSize);
  list.items.reserve(nodesInPiece * 2 + edgesInPiece * 3 + 8);
  list.text.reserve(nodesInPiece * 16 + edgesInPiece * 4);

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
  std::size_t inPiece = 0;
  auto next = [&]() {
    if (++inPiece < pieceSize) return;
    consume(list);
    list.items.clear();
    list.points.clear();
    list.text.clear();
    inPiece = 0;
  };
  if (framed)
    drawNamedFrame(out, frameBox.minX, frameBox.minY, frameBox.maxX - frameBox.minX,
                   frameBox.maxY - frameBox.minY, frameLabel(*options.frame));

  // One index per call; the first node with an id wins, as a scan in node order would find it.
  const NodeIdIndex byId(nodes);
  for (const core::Edge& e : edges) {
    const core::Node* s = byId.find(e.source);
    const core::Node* t = s ? byId.find(e.target) : nullptr;
    if (t) drawEdge(out, e, *s, *t);
    next();
  }
  for (const core::Node& n : nodes) {
    drawNode(out, n);
    next();
  }
  consume(list);
}

DrawingList buildDrawing(std::span<const core::Node> nodes, std::span<const core::Edge> edges,
                         const DrawingOptions& options) {
  DrawingList result;
  buildDrawingInPieces(nodes, edges, options, std::numeric_limits<std::size_t>::max(),
                       [&](DrawingList& whole) { result = std::move(whole); });
  return result;
}

}  // namespace modelyne::exporter
