#include "export/edge_drawing.h"

#include <array>
#include <cmath>

#include "export/orthogonal_route.h"

namespace modelyne::exporter {

namespace {

// ---- Edge type table, indexed by the type's value ----

constexpr RouteKind S = RouteKind::straight;
constexpr RouteKind E = RouteKind::elbow;
constexpr RouteKind C = RouteKind::curved;
constexpr EndMark no = EndMark::none;
constexpr EndMark open = EndMark::openArrow;

constexpr std::array<EdgeStyle, 46> kEdgeStyles = {{
    {S, false, false, no, no},                            // straight
    {S, false, false, no, open},                          // straightArrow
    {S, false, false, open, no},                          // straightDoubleArrow: head at the source only
    {E, false, false, no, no},                            // elbow
    {E, false, false, no, open},                          // elbowArrow
    {E, false, false, open, no},                          // elbowDoubleArrow
    {C, false, false, no, no},                            // curved
    {C, false, false, no, open},                          // curvedArrow
    {C, false, false, open, no},                          // curvedDoubleArrow
    {S, false, false, no, no},                            // association
    {S, false, false, EndMark::hollowDiamond, no},        // aggregation
    {S, false, false, EndMark::filledDiamond, no},        // composition
    {S, false, false, no, EndMark::hollowTriangle},       // generalization
    {S, true, false, no, EndMark::hollowTriangle},        // realization
    {S, true, false, no, open},                           // dependency
    {S, false, false, no, open},                          // bpmnSequence
    {S, false, false, no, no},                            // bpmnMessage: solid
    {S, true, false, no, no},                             // bpmnAssociation
    {S, false, false, no, no},                            // sysmlContainment
    {S, false, false, no, open},                          // sysmlRedefines
    {S, false, false, no, open},                          // sysmlSubsets
    {S, true, false, no, open},                           // sysmlAllocate
    {S, true, false, no, open},                           // sysmlSatisfy
    {S, true, false, no, open},                           // sysmlDeriveReqt
    {S, true, false, no, open},                           // sysmlRefine
    {S, true, false, no, open},                           // sysmlVerify
    {S, true, false, no, open},                           // sysmlTrace
    {S, true, false, no, open},                           // sysmlCopy
    {S, false, false, no, open},                          // sysmlItemFlow
    {S, false, false, no, no},                            // sysmlBindingConnector
    {S, true, false, no, open},                           // sysmlInclude
    {S, true, false, no, open},                           // sysmlExtend
    {S, false, false, no, open},                          // sysmlObjectFlow
    {S, true, false, no, open},                           // sysmlControlFlow
    {S, true, false, no, open},                           // sysmlImport
    {S, true, false, no, open},                           // sysmlAccess
    {S, false, true, no, EndMark::filledTriangle},        // sysmlSyncMessage
    {S, false, true, no, open},                           // sysmlAsyncMessage
    {S, true, true, no, open},                            // sysmlReplyMessage
    {S, true, true, no, open},                            // sysmlCreateMessage
    {S, false, true, no, open},                           // sysmlDeleteMessage
    {S, false, false, no, open},                          // sysmlTransition
    {S, false, true, no, open},                           // sysmlFoundMessage
    {S, false, true, no, open},                           // sysmlLostMessage
    {C, false, false, no, no},                            // mindmapBranch
    {S, true, false, no, no},                             // mindmapCommentLink
}};

constexpr float kEdgeLabelSize = 9.0f;
constexpr float kSelfLoopWidth = 34.0f;
constexpr float kSelfLoopMinHeight = 16.0f;

// ---- End points ----

Point endPoint(const core::Node& node, core::Anchor port, float offset, bool message) {
  if (message && !std::isnan(offset)) return {node.geom.x + node.geom.w * 0.5f, node.geom.y + offset};
  return connectionPoint(node.geom, port);
}

void label(DrawingBuilder& out, const core::Edge& edge, Point anchor) {
  if (!edge.text.empty())
    out.text(anchor.x, anchor.y - 5.0f, kEdgeLabelSize, TextAnchor::middle, edge.text);
}

// A message to its own lifeline: a loop out to the right and back.
void drawSelfMessage(DrawingBuilder& out, const core::Edge& edge, const EdgeStyle& style, Point a,
                     Point b) {
  const float x = a.x;
  const float y1 = std::fmin(a.y, b.y);
  float y2 = std::fmax(a.y, b.y);
  if (y2 - y1 < kSelfLoopMinHeight) y2 = y1 + kSelfLoopMinHeight;
  out.polyline({{x, y1}, {x + kSelfLoopWidth, y1}, {x + kSelfLoopWidth, y2}, {x, y2}}, style.dashed);
  const bool sync = edge.type == core::EdgeType::sysmlSyncMessage;
  drawEndMark(out, sync ? EndMark::filledTriangle : EndMark::openArrow, {x, y2}, {-1.0f, 0.0f});
  if (edge.type == core::EdgeType::sysmlDeleteMessage) {
    out.line(x - 6, y2 - 6, x + 6, y2 + 6);
    out.line(x - 6, y2 + 6, x + 6, y2 - 6);
  }
  if (!edge.text.empty())
    out.text(x + 40.0f, (y1 + y2) / 2, kEdgeLabelSize, TextAnchor::start, edge.text);
}

}  // namespace

const EdgeStyle& edgeStyle(core::EdgeType type) noexcept {
  const auto v = static_cast<std::int32_t>(type);
  if (v < 0 || v >= static_cast<std::int32_t>(kEdgeStyles.size()))
    return kEdgeStyles[static_cast<std::size_t>(core::EdgeType::straightArrow)];
  return kEdgeStyles[static_cast<std::size_t>(v)];
}

void drawEdge(DrawingBuilder& out, const core::Edge& edge, const core::Node& source,
              const core::Node& target) {
  const EdgeStyle& style = edgeStyle(edge.type);
  const Point a = endPoint(source, edge.sourcePort, edge.srcAnchorDY, style.message);
  const Point b = endPoint(target, edge.targetPort, edge.tgtAnchorDY, style.message);

  if (style.message && !edge.source.empty() && edge.source == edge.target) {
    drawSelfMessage(out, edge, style, a, b);
    return;
  }

  switch (style.route) {
    case RouteKind::elbow: {
      const Route r = orthogonalRoutePoints(a, stubDirection(edge.sourcePort, a, b), b,
                                            stubDirection(edge.targetPort, b, a));
      const Point* route = r.points;
      const std::size_t n = r.count;
      out.polyline(route, n, style.dashed);
      if (n >= 2) {
        drawEndMark(out, style.sourceMark, a, markDirection(route[1], a));
        drawEndMark(out, style.targetMark, b, markDirection(route[n - 2], b));
        // The label sits on the middle segment of the route.
        const std::size_t seg = (n - 2) / 2;
        label(out, edge, {(route[seg].x + route[seg + 1].x) / 2, (route[seg].y + route[seg + 1].y) / 2});
      } else {
        drawEndMark(out, style.sourceMark, a, markDirection(b, a));
        drawEndMark(out, style.targetMark, b, markDirection(a, b));
        label(out, edge, a);
      }
      return;
    }
    case RouteKind::curved: {
      const float mx = (a.x + b.x) / 2;
      out.cubic(a, {mx, a.y}, {mx, b.y}, b, 1.5f, style.dashed);
      const bool vertical = std::fabs(a.x - b.x) < 0.001f;
      drawEndMark(out, style.sourceMark, a, markDirection(vertical ? b : Point{mx, a.y}, a));
      drawEndMark(out, style.targetMark, b, markDirection(vertical ? a : Point{mx, b.y}, b));
      label(out, edge, {0.125f * a.x + 0.75f * mx + 0.125f * b.x, (a.y + b.y) / 2});
      return;
    }
    case RouteKind::straight:
      break;
  }
  out.line(a.x, a.y, b.x, b.y, 1.5f, style.dashed);
  drawEndMark(out, style.sourceMark, a, markDirection(b, a));
  drawEndMark(out, style.targetMark, b, markDirection(a, b));
  label(out, edge, {(a.x + b.x) / 2, (a.y + b.y) / 2});
}

}  // namespace modelyne::exporter
