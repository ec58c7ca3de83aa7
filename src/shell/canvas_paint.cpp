// Painting of the canvas: cached content (grid, edges, nodes) and the
// overlay drawn over it (selection, hover, anchors, gesture previews).
#include <QPaintEvent>
#include <QPainter>
#include <QPainterPath>
#include <cmath>

#include "export/drawing.h"
#include "export/edge_drawing.h"
#include "export/node_outlines.h"
#include "export/orthogonal_route.h"
#include "export/palette.h"
#include "render/painter.h"
#include "shell/canvas_view.h"
#include "shell/themes.h"

namespace modelyne::shell {
namespace {

// Below this zoom a node is a few pixels wide: labels cannot be read, so the
// canvas draws plain boxes and straight connectors in two batched calls.
constexpr double kDetailZoom = 0.3;
constexpr double kHandle = 7.0;

QColor qcolour(exporter::Colour c) {
  return QColor::fromRgb((c.rgb >> 16) & 0xFF, (c.rgb >> 8) & 0xFF, c.rgb & 0xFF);
}

const QColor kSelection(0x2D, 0x7D, 0xF6);
const QColor kHover(0x2D, 0x7D, 0xF6, 110);

QPointF pt(exporter::Point p) { return {p.x, p.y}; }

constexpr core::Anchor kAnchors[] = {core::Anchor::top, core::Anchor::bottom, core::Anchor::left,
                                     core::Anchor::right, core::Anchor::topLeft, core::Anchor::topRight,
                                     core::Anchor::bottomLeft, core::Anchor::bottomRight};

}  // namespace

QTransform CanvasView::viewTransform() const {
  return QTransform(zoom_, 0, 0, zoom_, -origin_.x() * zoom_, -origin_.y() * zoom_);
}

void CanvasView::invalidateContent() {
  contentValid_ = false;
  update();
}

void CanvasView::paintGrid(QPainter& p, const QRectF& area) const {
  if (!gridVisible_) return;
  double step = kGrid;
  while (step * zoom_ < 8.0) step *= 5.0;
  const QColor minor = themeColour(ThemeRole::canvasGrid);
  QColor major = minor.darker(115);
  QPen pen(minor, 0);
  pen.setCosmetic(true);
  const double x0 = std::floor(area.left() / step) * step;
  const double y0 = std::floor(area.top() / step) * step;
  std::vector<QLineF> minorLines;
  std::vector<QLineF> majorLines;
  for (double x = x0; x <= area.right(); x += step)
    (std::fmod(std::abs(x), step * 5) < 1e-6 ? majorLines : minorLines).emplace_back(x, area.top(), x, area.bottom());
  for (double y = y0; y <= area.bottom(); y += step)
    (std::fmod(std::abs(y), step * 5) < 1e-6 ? majorLines : minorLines).emplace_back(area.left(), y, area.right(), y);
  p.setPen(pen);
  p.drawLines(minorLines.data(), static_cast<int>(minorLines.size()));
  pen.setColor(major);
  p.setPen(pen);
  p.drawLines(majorLines.data(), static_cast<int>(majorLines.size()));
}

void CanvasView::paintContent(QPainter& p, const QRectF& area, const QSet<int>* skip) const {
  if (!doc_) return;
  const auto& nodes = doc_->nodes();
  const auto& edges = doc_->edges();
  const auto& ends = index_.edgeEnds();
  const std::vector<int> visible = index_.nodesIn(area);
  // The index is rebuilt after every change; until then paint what it knows.
  const std::size_t edgeCount = std::min(edges.size(), ends.size());
  auto skipped = [&](int i) { return skip && skip->contains(i); };

  if (zoom_ < kDetailZoom) {
    // Overview: batched plain shapes, same palette as the exports.
    std::vector<QLineF> lines;
    lines.reserve(edges.size());
    for (std::size_t i = 0; i < edgeCount; ++i) {
      const auto& e = ends[i];
      if (e.source < 0 || e.target < 0 || skipped(e.source) || skipped(e.target)) continue;
      if (!index_.edgeArea(static_cast<int>(i)).intersects(area)) continue;
      const auto& s = nodes[static_cast<std::size_t>(e.source)];
      const auto& t = nodes[static_cast<std::size_t>(e.target)];
      lines.emplace_back(pt(exporter::connectionPoint(s.geom, edges[i].sourcePort)),
                         pt(exporter::connectionPoint(t.geom, edges[i].targetPort)));
    }
    QPen pen(qcolour(exporter::kStrokeColour), 0);
    pen.setCosmetic(true);
    p.setPen(pen);
    p.drawLines(lines.data(), static_cast<int>(lines.size()));
    std::vector<QRectF> boxes;
    std::string_view fill;
    auto flush = [&] {
      if (boxes.empty()) return;
      p.setBrush(qcolour(exporter::nodeFill(fill)));
      p.drawRects(boxes.data(), static_cast<int>(boxes.size()));
      boxes.clear();
    };
    for (int i : visible) {
      if (skipped(i)) continue;
      const auto& n = nodes[static_cast<std::size_t>(i)];
      if (n.fillColor != fill) {
        flush();
        fill = n.fillColor;
      }
      boxes.emplace_back(n.geom.x, n.geom.y, n.geom.w, n.geom.h);
    }
    flush();
    return;
  }

  exporter::DrawingList list;
  exporter::DrawingBuilder out(list);
  for (std::size_t i = 0; i < edgeCount; ++i) {
    const auto& e = ends[i];
    if (e.source < 0 || e.target < 0 || skipped(e.source) || skipped(e.target)) continue;
    if (!index_.edgeArea(static_cast<int>(i)).adjusted(-40, -40, 40, 40).intersects(area)) continue;
    exporter::drawEdge(out, edges[i], nodes[static_cast<std::size_t>(e.source)],
                       nodes[static_cast<std::size_t>(e.target)]);
  }
  for (int i : visible)
    if (!skipped(i)) exporter::drawNode(out, nodes[static_cast<std::size_t>(i)]);
  render::paint(p, list);
}

void CanvasView::ensureContent() {
  if (doc_ && !index_.covers(*doc_)) {
    index_.rebuild(*doc_);
    contentValid_ = false;
  }
  const qreal dpr = devicePixelRatioF();
  const QSize px = (QSizeF(size()) * dpr).toSize();
  const bool wantSkip = !dragSet_.isEmpty();
  if (contentValid_ && content_.size() == px && contentSkipsDrag_ == wantSkip) return;
  content_ = QPixmap(px);
  content_.setDevicePixelRatio(dpr);
  content_.fill(themeColour(ThemeRole::canvasPaper));
  QPainter p(&content_);
  p.setRenderHint(QPainter::Antialiasing, zoom_ >= kDetailZoom);
  p.setRenderHint(QPainter::TextAntialiasing);
  p.setTransform(viewTransform());
  const QRectF area = visibleSceneRect();
  paintGrid(p, area);
  paintContent(p, area, wantSkip ? &dragSet_ : nullptr);
  contentValid_ = true;
  contentSkipsDrag_ = wantSkip;
}

void CanvasView::paintDragPreview(QPainter& p) {
  if (dragSet_.isEmpty() || !doc_) return;
  const auto& nodes = doc_->nodes();
  const auto& edges = doc_->edges();
  const QPointF delta = gesture_ == Gesture::move && gestureMoved_ ? moveDelta() : QPointF();
  // Nodes as they would be after the gesture.
  std::vector<core::Node> moved;
  moved.reserve(static_cast<std::size_t>(dragSet_.size()));
  std::vector<int> order(dragSet_.begin(), dragSet_.end());
  std::sort(order.begin(), order.end());
  QHash<int, std::size_t> slot;
  for (int i : order) {
    core::Node n = nodes[static_cast<std::size_t>(i)];
    if (gesture_ == Gesture::move) {
      n.geom.x += static_cast<float>(delta.x());
      n.geom.y += static_cast<float>(delta.y());
    } else if (gesture_ == Gesture::resize) {
      n.geom = resizePreview_;
    }
    slot.insert(i, moved.size());
    moved.push_back(std::move(n));
  }
  auto nodeFor = [&](int i) -> const core::Node& {
    auto it = slot.find(i);
    return it == slot.end() ? nodes[static_cast<std::size_t>(i)] : moved[*it];
  };
  exporter::DrawingList list;
  exporter::DrawingBuilder out(list);
  const auto& ends = index_.edgeEnds();
  for (int e : dragEdges_) {
    const auto& en = ends[static_cast<std::size_t>(e)];
    exporter::drawEdge(out, edges[static_cast<std::size_t>(e)], nodeFor(en.source), nodeFor(en.target));
  }
  for (const core::Node& n : moved) exporter::drawNode(out, n);
  p.save();
  p.setTransform(viewTransform());
  render::paint(p, list);
  p.restore();
}

void CanvasView::paintOverlay(QPainter& p) {
  if (!doc_) return;
  const auto& nodes = doc_->nodes();
  const auto& edges = doc_->edges();
  p.setRenderHint(QPainter::Antialiasing);
  const QTransform t = viewTransform();
  auto boxOf = [&](const core::Node& n) {
    return t.mapRect(QRectF(n.geom.x, n.geom.y, n.geom.w, n.geom.h));
  };

  // Hover highlight and connection anchors.
  if (hoverNode_ >= 0 && hoverNode_ < static_cast<int>(nodes.size()) && gesture_ != Gesture::move) {
    const core::Node& n = nodes[static_cast<std::size_t>(hoverNode_)];
    p.setPen(QPen(kHover, 2));
    p.setBrush(Qt::NoBrush);
    p.drawRect(boxOf(n).adjusted(-2, -2, 2, 2));
    if (!placement_ && (gesture_ == Gesture::none || gesture_ == Gesture::connect || gesture_ == Gesture::reconnect)) {
      p.setPen(QPen(kSelection, 1));
      p.setBrush(Qt::white);
      for (core::Anchor a : kAnchors) p.drawEllipse(t.map(pt(exporter::connectionPoint(n.geom, a))), 4.0, 4.0);
    }
  }
  if (hoverEdge_ >= 0 && hoverEdge_ < static_cast<int>(edges.size()) && gesture_ == Gesture::none) {
    const auto& en = index_.edgeEnds()[static_cast<std::size_t>(hoverEdge_)];
    if (en.source >= 0 && en.target >= 0) {
      const auto& e = edges[static_cast<std::size_t>(hoverEdge_)];
      p.setPen(QPen(kHover, 4));
      p.drawLine(t.map(pt(exporter::connectionPoint(nodes[static_cast<std::size_t>(en.source)].geom, e.sourcePort))),
                 t.map(pt(exporter::connectionPoint(nodes[static_cast<std::size_t>(en.target)].geom, e.targetPort))));
    }
  }

  // Selected edges: highlighted with round end handles.
  for (const QString& id : selEdges_) {
    const int i = doc_->indexOfEdge(id.toStdString());
    if (i < 0) continue;
    const auto& en = index_.edgeEnds()[static_cast<std::size_t>(i)];
    if (en.source < 0 || en.target < 0) continue;
    const auto& e = edges[static_cast<std::size_t>(i)];
    const auto& s = nodes[static_cast<std::size_t>(en.source)];
    const auto& d = nodes[static_cast<std::size_t>(en.target)];
    const exporter::Point a = exporter::connectionPoint(s.geom, e.sourcePort);
    const exporter::Point b = exporter::connectionPoint(d.geom, e.targetPort);
    p.setPen(QPen(kSelection, 2, Qt::DashLine));
    p.setBrush(Qt::NoBrush);
    p.drawLine(t.map(pt(a)), t.map(pt(b)));
    p.setPen(QPen(kSelection, 1.5));
    p.setBrush(Qt::white);
    p.drawEllipse(t.map(pt(a)), 5.0, 5.0);
    p.drawEllipse(t.map(pt(b)), 5.0, 5.0);
  }

  paintDragPreview(p);

  // Selected nodes: outline; one node alone also gets its resize handles.
  const QPointF delta = gesture_ == Gesture::move && gestureMoved_ ? moveDelta() : QPointF();
  p.setBrush(Qt::NoBrush);
  for (const QString& id : selNodes_) {
    const int i = doc_->indexOfNode(id.toStdString());
    if (i < 0) continue;
    QRectF r = boxOf(nodes[static_cast<std::size_t>(i)]).translated(delta * zoom_);
    if (gesture_ == Gesture::resize && i == gestureNode_)
      r = t.mapRect(QRectF(resizePreview_.x, resizePreview_.y, resizePreview_.w, resizePreview_.h));
    p.setPen(QPen(kSelection, 1.5, Qt::DashLine));
    p.drawRect(r.adjusted(-3, -3, 3, 3));
    if (selNodes_.size() == 1 && gesture_ != Gesture::move) {
      p.setPen(QPen(kSelection, 1));
      p.setBrush(Qt::white);
      for (QPointF h : handlePoints(r.adjusted(-3, -3, 3, 3)))
        p.drawRect(QRectF(h.x() - kHandle / 2, h.y() - kHandle / 2, kHandle, kHandle));
      p.setBrush(Qt::NoBrush);
    }
  }

  // Gesture feedback.
  if (gesture_ == Gesture::rubberBand) {
    const QRectF r = QRectF(pressWidget_, mapFromScene(currentScene_)).normalized();
    p.setPen(QPen(kSelection, 1));
    p.setBrush(QColor(kSelection.red(), kSelection.green(), kSelection.blue(), 40));
    p.drawRect(r);
  } else if (gesture_ == Gesture::connect || gesture_ == Gesture::reconnect) {
    QPointF from;
    if (gesture_ == Gesture::connect && gestureNode_ >= 0) {
      from = t.map(pt(exporter::connectionPoint(nodes[static_cast<std::size_t>(gestureNode_)].geom, gestureAnchor_)));
    } else {
      from = pressWidget_;
    }
    p.setPen(QPen(kSelection, 2, Qt::DashLine));
    p.drawLine(from, mapFromScene(currentScene_));
  }
}

void CanvasView::paintEvent(QPaintEvent*) {
  ensureContent();
  QPainter p(this);
  p.drawPixmap(0, 0, content_);
  paintOverlay(p);
}

QImage CanvasView::renderToImage(bool withOverlay) {
  contentValid_ = false;
  ensureContent();
  QImage img = content_.toImage();
  if (withOverlay) {
    QPainter p(&img);
    paintOverlay(p);
  }
  return img;
}

std::array<QPointF, 8> CanvasView::handlePoints(const QRectF& r) {
  const QPointF c = r.center();
  return {r.topLeft(), QPointF(c.x(), r.top()), r.topRight(), QPointF(r.right(), c.y()),
          r.bottomRight(), QPointF(c.x(), r.bottom()), r.bottomLeft(), QPointF(r.left(), c.y())};
}

}  // namespace modelyne::shell
