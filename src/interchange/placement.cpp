#include "interchange/placement.h"

#include <array>
#include <cmath>
#include <cstddef>

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

}  // namespace

void placeNodes(std::vector<core::Node>& nodes, const std::vector<core::Edge>& edges, core::DiagramKind kind) {
  (void)edges;
  (void)kind;
  if (nodes.empty()) return;
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

}  // namespace modelyne::interchange
