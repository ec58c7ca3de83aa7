#include "interchange/placement.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <string_view>
#include <unordered_map>

#include "core/document.h"
#include "layout/layout.h"

namespace modelyne::interchange {

namespace {

using S = core::ShapeType;

struct ShapeSize {
  S type;
  float w, h;
};

// Small symbols keep their drawn size; everything else is a box.
constexpr std::array kSizes{
    ShapeSize{S::sysmlPort, 24, 24},          ShapeSize{S::umlInitialNode, 30, 30},
    ShapeSize{S::umlFinalNode, 30, 30},       ShapeSize{S::umlDecision, 40, 40},
    ShapeSize{S::umlForkJoin, 80, 10},        ShapeSize{S::sysmlTerminatePseudostate, 30, 30},
    ShapeSize{S::umlNote, 180, 70},           ShapeSize{S::umlPackage, 180, 90},
};
constexpr float kBoxW = 160;
constexpr float kBoxH = 80;
// Room between cells for edge labels.
constexpr float kGap = 60;
constexpr float kMargin = 40;

// Networks without a main direction read best organic; the rest are
// hierarchies or flows.
bool organicKind(core::DiagramKind kind) {
  return kind == core::DiagramKind::ibd || kind == core::DiagramKind::par || kind == core::DiagramKind::uc ||
         kind == core::DiagramKind::mm;
}

void gridPlace(std::vector<core::Node>& nodes) {
  const auto columns = static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(nodes.size()))));
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    core::Node& n = nodes[i];
    float w = kBoxW, h = kBoxH;
    for (const ShapeSize& s : kSizes)
      if (s.type == n.type) w = s.w, h = s.h;
    const float cellX = kMargin + static_cast<float>(i % columns) * (kBoxW + kGap);
    const float cellY = kMargin + static_cast<float>(i / columns) * (kBoxH + kGap);
    // Centred in its cell so that small symbols line up with boxes.
    n.geom = {cellX + (kBoxW - w) / 2, cellY + (kBoxH - h) / 2, w, h};
  }
}

}  // namespace

void placeNodes(std::vector<core::Node>& nodes, const std::vector<core::Edge>& edges, core::DiagramKind kind) {
  if (nodes.empty()) return;
  // The grid gives every node its size and a readable fallback; the automatic
  // layout then arranges them by their edges. A diagram the layout declines
  // (too large) keeps the grid.
  gridPlace(nodes);
  core::Document doc;
  for (const core::Node& n : nodes) doc.addNode(n);
  for (const core::Edge& e : edges) doc.addEdge(e);
  const layout::LayoutResult result = organicKind(kind) ? layout::layoutOrganic(doc) : layout::layoutLayered(doc);
  if (!result.laidOut) return;
  std::unordered_map<std::string_view, const core::NodeGeometry*> placed;
  placed.reserve(result.placements.size());
  for (const layout::Placement& p : result.placements) placed.emplace(p.id, &p.geom);
  for (core::Node& n : nodes)
    if (const auto it = placed.find(n.id); it != placed.end()) n.geom = *it->second;
}

}  // namespace modelyne::interchange
