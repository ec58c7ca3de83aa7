#include "layout/roles.h"

#include <algorithm>
#include <array>
#include <utility>

namespace modelyne::layout {

namespace {

using S = core::ShapeType;
using E = core::EdgeType;

struct RoleRow {
  S type;
  ShapeRole role;
};

// Shapes with a role other than plain; every other shape is plain.
constexpr RoleRow kRoles[] = {
    {S::umlPackage, ShapeRole::container},
    {S::umlBoundary, ShapeRole::container},
    {S::umlCombinedFragment, ShapeRole::fragment},
    {S::bpmnPool, ShapeRole::container},
    {S::bpmnLane, ShapeRole::swimlane},
    {S::bpmnSubProcess, ShapeRole::container},
    {S::bpmnGroup, ShapeRole::container},
    {S::mindmapBoundary, ShapeRole::container},
    {S::sysmlActivityPartition, ShapeRole::swimlane},
    {S::sysmlSystemBoundary, ShapeRole::container},
    {S::sysmlCompositeState, ShapeRole::container},
    {S::sysmlOrthogonalRegion, ShapeRole::container},
    {S::sysmlContextBoundary, ShapeRole::container},
    {S::sysmlPort, ShapeRole::port},
    {S::sysmlFlowPort, ShapeRole::port},
    {S::sysmlProxyPort, ShapeRole::port},
    {S::sysmlFullPort, ShapeRole::port},
    {S::sysmlStandardPort, ShapeRole::port},
    {S::sysmlPin, ShapeRole::port},
    {S::sysmlActivityParameter, ShapeRole::port},
    {S::sysmlConstraintParameter, ShapeRole::port},
    {S::sysmlEntryPoint, ShapeRole::port},
    {S::sysmlExitPoint, ShapeRole::port},
    {S::sysmlGate, ShapeRole::port},
    {S::umlLifeline, ShapeRole::participant},
    {S::umlActivation, ShapeRole::activation},
    {S::mindmapCentral, ShapeRole::central},
};

// Edge types drawn from child (source) up to parent (target).
constexpr E kTowardsParent[] = {E::generalization, E::realization, E::sysmlSatisfy, E::sysmlVerify,
                                E::sysmlRefine,    E::sysmlDeriveReqt, E::sysmlRedefines, E::sysmlSubsets};

// Indexed by anchor value 0..7 (top, bottom, left, right, topLeft, topRight, bottomLeft, bottomRight).
constexpr std::array<AnchorDirection, 8> kDirections = {{
    {0, -1}, {0, 1}, {-1, 0}, {1, 0}, {-1, -1}, {1, -1}, {-1, 1}, {1, 1},
}};

}  // namespace

ShapeRole shapeRole(core::ShapeType t) noexcept {
  for (const RoleRow& row : kRoles)
    if (row.type == t) return row.role;
  return ShapeRole::plain;
}

bool targetIsParent(core::EdgeType t) noexcept {
  return std::find(std::begin(kTowardsParent), std::end(kTowardsParent), t) != std::end(kTowardsParent);
}

AnchorDirection anchorDirection(core::Anchor a) noexcept {
  return kDirections[static_cast<std::size_t>(core::normalizeAnchor(a))];
}

MainAxis axisOfAnchors(std::span<const core::Anchor> ends) noexcept {
  long vertical = 0, horizontal = 0;
  for (core::Anchor a : ends) {
    const AnchorDirection d = anchorDirection(a);
    if (d.dx == 0) ++vertical;
    else if (d.dy == 0) ++horizontal;
  }
  return horizontal > vertical ? MainAxis::leftRight : MainAxis::topDown;
}

bool targetComesLater(core::Anchor sourcePort, core::Anchor targetPort, core::EdgeType type, MainAxis axis) noexcept {
  const AnchorDirection s = anchorDirection(sourcePort), t = anchorDirection(targetPort);
  const int vote = axis == MainAxis::topDown ? s.dy - t.dy : s.dx - t.dx;
  return vote != 0 ? vote > 0 : !targetIsParent(type);
}

}  // namespace modelyne::layout
