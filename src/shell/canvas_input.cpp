// Mouse and keyboard gestures of the canvas. A gesture previews in the
// overlay while it runs and changes the document once, when it ends.
#include <QContextMenuEvent>
#include <QDragEnterEvent>
#include <QGuiApplication>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QWheelEvent>
#include <cmath>

#include "export/orthogonal_route.h"
#include "shell/canvas_view.h"
#include "shell/command_table.h"
#include "shell/i18n/strings.h"
#include "shell/palette_panel.h"

namespace modelyne::shell {
namespace {

constexpr double kAnchorRadius = 7.0;  // pixels
constexpr double kDragThreshold = 3.0;

constexpr core::Anchor kAnchors[] = {core::Anchor::top, core::Anchor::bottom, core::Anchor::left,
                                     core::Anchor::right, core::Anchor::topLeft, core::Anchor::topRight,
                                     core::Anchor::bottomLeft, core::Anchor::bottomRight};

double distance(QPointF a, QPointF b) { return std::hypot(a.x() - b.x(), a.y() - b.y()); }

/// The side anchor nearest to a point, for an edge end dropped on a node.
core::Anchor nearestSide(const core::NodeGeometry& g, QPointF p) {
  core::Anchor best = core::Anchor::left;
  double bestD = 1e300;
  for (core::Anchor a : {core::Anchor::top, core::Anchor::bottom, core::Anchor::left, core::Anchor::right}) {
    const exporter::Point c = exporter::connectionPoint(g, a);
    const double d = distance(p, {c.x, c.y});
    if (d < bestD) {
      bestD = d;
      best = a;
    }
  }
  return best;
}

}  // namespace

int CanvasView::handleAt(QPointF w) const {
  if (!doc_ || selNodes_.size() != 1) return -1;
  const core::Node* n = doc_->findNode(selNodes_.begin()->toStdString());
  if (!n) return -1;
  const QRectF r = QRectF(mapFromScene({n->geom.x, n->geom.y}), QSizeF(n->geom.w, n->geom.h) * zoom_).adjusted(-3, -3, 3, 3);
  const auto pts = handlePoints(r);
  for (int i = 0; i < 8; ++i)
    if (std::abs(pts[static_cast<std::size_t>(i)].x() - w.x()) <= 5 && std::abs(pts[static_cast<std::size_t>(i)].y() - w.y()) <= 5) return i;
  return -1;
}

std::optional<core::Anchor> CanvasView::anchorAt(int node, QPointF s) const {
  if (!doc_ || node < 0) return {};
  const auto& g = doc_->nodes()[static_cast<std::size_t>(node)].geom;
  for (core::Anchor a : kAnchors) {
    const exporter::Point c = exporter::connectionPoint(g, a);
    if (distance(s, {c.x, c.y}) * zoom_ <= kAnchorRadius) return a;
  }
  return {};
}

int CanvasView::edgeEndAt(QPointF s, bool* sourceEnd) const {
  if (!doc_) return -1;
  for (const QString& id : selEdges_) {
    const int i = doc_->indexOfEdge(id.toStdString());
    if (i < 0) continue;
    const auto& en = index_.edgeEnds()[static_cast<std::size_t>(i)];
    if (en.source < 0 || en.target < 0) continue;
    const auto& e = doc_->edges()[static_cast<std::size_t>(i)];
    const exporter::Point a = exporter::connectionPoint(doc_->nodes()[static_cast<std::size_t>(en.source)].geom, e.sourcePort);
    const exporter::Point b = exporter::connectionPoint(doc_->nodes()[static_cast<std::size_t>(en.target)].geom, e.targetPort);
    if (distance(s, {a.x, a.y}) * zoom_ <= kAnchorRadius) {
      *sourceEnd = true;
      return i;
    }
    if (distance(s, {b.x, b.y}) * zoom_ <= kAnchorRadius) {
      *sourceEnd = false;
      return i;
    }
  }
  return -1;
}

QPointF CanvasView::moveDelta() const {
  const QPointF raw = currentScene_ - pressScene_;
  if (!doc_ || gestureNode_ < 0 || gestureNode_ >= static_cast<int>(doc_->nodes().size())) return raw;
  // Snap the grabbed node's corner; the rest of the selection follows.
  const auto& g = doc_->nodes()[static_cast<std::size_t>(gestureNode_)].geom;
  const QPointF corner(g.x, g.y);
  return snapped(corner + raw) - corner;
}

void CanvasView::selectAt(QPointF s, Qt::KeyboardModifiers mods) {
  const bool toggle = mods & (Qt::ControlModifier | Qt::ShiftModifier);
  const int node = index_.nodeAt(s, 2.0 / zoom_);
  if (node >= 0) {
    const QString id = nodeIdAt(node);
    QSet<QString> group;
    for (int m : index_.groupOf(*doc_, node)) group.insert(nodeIdAt(m));
    if (toggle) {
      QSet<QString> n = selNodes_;
      if (n.contains(id)) n.subtract(group);
      else n.unite(group);
      setSelection(n, selEdges_);
    } else if (!selNodes_.contains(id)) {
      setSelection(group, {});
    }
    return;
  }
  const int edge = index_.edgeAt(*doc_, s, 5.0 / zoom_);
  if (edge >= 0) {
    const QString id = QString::fromStdString(doc_->edges()[static_cast<std::size_t>(edge)].id);
    if (toggle) {
      QSet<QString> e = selEdges_;
      if (e.contains(id)) e.remove(id);
      else e.insert(id);
      setSelection(selNodes_, e);
    } else {
      setSelection({}, {id});
    }
    return;
  }
  if (!toggle) clearSelection();
}

void CanvasView::mousePressEvent(QMouseEvent* ev) {
  setFocus();
  if (labelEditor_) commitLabelEdit();
  if (!doc_) return;
  const QPointF w = ev->position();
  const QPointF s = mapToScene(w);
  pressScene_ = currentScene_ = s;
  pressWidget_ = w;
  gestureMoved_ = false;
  if (ev->button() == Qt::MiddleButton || (ev->button() == Qt::LeftButton && spaceHeld_)) {
    gesture_ = Gesture::pan;
    setCursor(Qt::ClosedHandCursor);
    return;
  }
  if (ev->button() != Qt::LeftButton) return;
  if (placement_) {
    const core::ShapeType type = *placement_;
    if (!(ev->modifiers() & Qt::ShiftModifier)) setPlacementType(std::nullopt);
    placeNode(type, s);
    emit placementDone();
    return;
  }
  if (const int h = handleAt(w); h >= 0) {
    gesture_ = Gesture::resize;
    gestureHandle_ = h;
    gestureNode_ = doc_->indexOfNode(selNodes_.begin()->toStdString());
    resizePreview_ = doc_->nodes()[static_cast<std::size_t>(gestureNode_)].geom;
    return;
  }
  bool srcEnd = false;
  if (const int e = edgeEndAt(s, &srcEnd); e >= 0) {
    gesture_ = Gesture::reconnect;
    gestureEdge_ = QString::fromStdString(doc_->edges()[static_cast<std::size_t>(e)].id);
    gestureSourceEnd_ = srcEnd;
    return;
  }
  const int near = index_.nodeAt(s, kAnchorRadius / zoom_);
  if (near >= 0) {
    if (auto a = anchorAt(near, s); a && !(ev->modifiers() & (Qt::ControlModifier | Qt::ShiftModifier))) {
      gesture_ = Gesture::connect;
      gestureNode_ = near;
      gestureAnchor_ = *a;
      return;
    }
  }
  selectAt(s, ev->modifiers());
  const int node = index_.nodeAt(s, 2.0 / zoom_);
  if (node >= 0 && selNodes_.contains(nodeIdAt(node))) {
    gesture_ = Gesture::move;
    gestureNode_ = node;
  } else if (node < 0 && selEdges_.isEmpty()) {
    gesture_ = Gesture::rubberBand;
  }
  update();
}

void CanvasView::mouseMoveEvent(QMouseEvent* ev) {
  if (!doc_) return;
  const QPointF w = ev->position();
  const QPointF s = mapToScene(w);
  const QPointF prev = currentScene_;
  currentScene_ = s;
  switch (gesture_) {
    case Gesture::none: {
      const int node = index_.nodeAt(s, kAnchorRadius / zoom_);
      const int edge = node < 0 ? index_.edgeAt(*doc_, s, 5.0 / zoom_) : -1;
      if (node != hoverNode_ || edge != hoverEdge_) {
        hoverNode_ = node;
        hoverEdge_ = edge;
        update();
      }
      if (placement_) break;
      const int h = handleAt(w);
      if (h >= 0) setCursor(h % 4 == 0 ? Qt::SizeFDiagCursor : h % 4 == 2 ? Qt::SizeBDiagCursor
                            : h % 2 == 1 && (h == 1 || h == 5) ? Qt::SizeVerCursor : Qt::SizeHorCursor);
      else if (node >= 0 && anchorAt(node, s)) setCursor(Qt::CrossCursor);
      else setCursor(Qt::ArrowCursor);
      break;
    }
    case Gesture::pan:
      origin_ -= (s - prev);
      currentScene_ = prev;  // the point under the cursor stays put
      invalidateContent();
      break;
    case Gesture::move:
      if (!gestureMoved_ && distance(w, pressWidget_) >= kDragThreshold) {
        gestureMoved_ = true;
        dragSet_.clear();
        for (const QString& id : selNodes_)
          if (const int i = doc_->indexOfNode(id.toStdString()); i >= 0) dragSet_.insert(i);
        dragEdges_.clear();
        const auto& ends = index_.edgeEnds();
        for (std::size_t e = 0; e < ends.size(); ++e)
          if (ends[e].source >= 0 && ends[e].target >= 0 &&
              (dragSet_.contains(ends[e].source) || dragSet_.contains(ends[e].target)))
            dragEdges_.push_back(static_cast<int>(e));
      }
      update();
      break;
    case Gesture::resize: {
      const auto& g = doc_->nodes()[static_cast<std::size_t>(gestureNode_)].geom;
      double l = g.x, t = g.y, r = g.x + g.w, b = g.y + g.h;
      const QPointF p = snapped(s);
      const int h = gestureHandle_;
      if (h == 0 || h == 6 || h == 7) l = std::min(p.x(), r - 4);
      if (h == 2 || h == 3 || h == 4) r = std::max(p.x(), l + 4);
      if (h == 0 || h == 1 || h == 2) t = std::min(p.y(), b - 4);
      if (h == 4 || h == 5 || h == 6) b = std::max(p.y(), t + 4);
      resizePreview_ = {static_cast<float>(l), static_cast<float>(t), static_cast<float>(r - l), static_cast<float>(b - t)};
      if (!gestureMoved_) {
        gestureMoved_ = true;
        dragSet_ = {gestureNode_};
        dragEdges_.clear();
        const auto& ends = index_.edgeEnds();
        for (std::size_t e = 0; e < ends.size(); ++e)
          if (ends[e].source >= 0 && ends[e].target >= 0 && (ends[e].source == gestureNode_ || ends[e].target == gestureNode_))
            dragEdges_.push_back(static_cast<int>(e));
      }
      update();
      break;
    }
    case Gesture::connect:
    case Gesture::reconnect:
      hoverNode_ = index_.nodeAt(s, kAnchorRadius / zoom_);
      update();
      break;
    case Gesture::rubberBand:
      update();
      break;
  }
}

void CanvasView::mouseReleaseEvent(QMouseEvent* ev) {
  if (!doc_ || gesture_ == Gesture::none) return;
  currentScene_ = mapToScene(ev->position());
  finishGesture(currentScene_);
}

void CanvasView::finishGesture(QPointF s) {
  const Gesture g = gesture_;
  gesture_ = Gesture::none;
  const bool hadDrag = !dragSet_.isEmpty();
  dragSet_.clear();
  dragEdges_.clear();
  setCursor(placement_ ? Qt::CrossCursor : Qt::ArrowCursor);
  try {
    switch (g) {
      case Gesture::move: {
        const QPointF d = moveDelta();
        if (gestureMoved_ && (d.x() != 0 || d.y() != 0)) {
          bridge::moveNodes(doc_, selectedNodeIds(), static_cast<float>(d.x()), static_cast<float>(d.y()));
          emitEdited();
        }
        break;
      }
      case Gesture::resize: {
        const auto& cur = doc_->nodes()[static_cast<std::size_t>(gestureNode_)];
        if (gestureMoved_ && !(resizePreview_ == cur.geom)) {
          bridge::resizeNode(doc_, cur.id, resizePreview_.x, resizePreview_.y, resizePreview_.w, resizePreview_.h);
          emitEdited();
        }
        break;
      }
      case Gesture::rubberBand: {
        const QRectF band = QRectF(pressScene_, s).normalized();
        QSet<QString> nodes = QGuiApplication::keyboardModifiers() & (Qt::ShiftModifier | Qt::ControlModifier)
                                  ? selNodes_ : QSet<QString>();
        for (int i : index_.nodesIn(band)) {
          const auto& geo = doc_->nodes()[static_cast<std::size_t>(i)].geom;
          if (band.contains(QRectF(geo.x, geo.y, geo.w, geo.h))) nodes.insert(nodeIdAt(i));
        }
        QSet<QString> edges;
        for (const auto& e : doc_->edges())
          if (nodes.contains(QString::fromStdString(e.source)) && nodes.contains(QString::fromStdString(e.target)))
            edges.insert(QString::fromStdString(e.id));
        setSelection(nodes, edges);
        break;
      }
      case Gesture::connect: {
        const int target = index_.nodeAt(s, kAnchorRadius / zoom_);
        if (target < 0 || target == gestureNode_) break;
        const core::Node& tn = doc_->nodes()[static_cast<std::size_t>(target)];
        core::Edge edge;
        edge.source = doc_->nodes()[static_cast<std::size_t>(gestureNode_)].id;
        edge.sourcePort = gestureAnchor_;
        edge.target = tn.id;
        edge.targetPort = anchorAt(target, s).value_or(nearestSide(tn.geom, s));
        edge.type = edgeType_;
        const auto r = bridge::insertElements(doc_, {}, {edge});
        selNodes_.clear();
        selEdges_ = {QString::fromStdString(r.edgeIds.at(0))};
        emitEdited();
        emit selectionChanged();
        break;
      }
      case Gesture::reconnect: {
        const int target = index_.nodeAt(s, kAnchorRadius / zoom_);
        if (target < 0) break;
        const core::Node& tn = doc_->nodes()[static_cast<std::size_t>(target)];
        const core::Anchor a = anchorAt(target, s).value_or(nearestSide(tn.geom, s));
        if (bridge::reconnectEdgeUndoable(doc_, gestureEdge_.toStdString(), gestureSourceEnd_, tn.id, a))
          emitEdited();
        break;
      }
      case Gesture::pan:
      case Gesture::none:
        break;
    }
  } catch (const bridge::BridgeError& e) {
    emit message(QString::fromUtf8(e.what()));
  }
  gestureNode_ = -1;
  if (hadDrag) invalidateContent();
  update();
}

void CanvasView::mouseDoubleClickEvent(QMouseEvent* ev) {
  if (!doc_ || ev->button() != Qt::LeftButton) return;
  gesture_ = Gesture::none;
  const QPointF s = mapToScene(ev->position());
  if (const int node = index_.nodeAt(s, 2.0 / zoom_); node >= 0) {
    editLabel(nodeIdAt(node));
  } else if (const int edge = index_.edgeAt(*doc_, s, 5.0 / zoom_); edge >= 0) {
    editLabel(QString::fromStdString(doc_->edges()[static_cast<std::size_t>(edge)].id));
  }
}

void CanvasView::contextMenuEvent(QContextMenuEvent* ev) {
  if (!doc_) return;
  if (labelEditor_) commitLabelEdit();
  gesture_ = Gesture::none;
  const QPointF s = mapToScene(ev->pos());
  // The menu acts on what was clicked: it joins the selection first.
  unsigned place = kOnCanvas;
  if (const int node = index_.nodeAt(s, 2.0 / zoom_); node >= 0) {
    if (!selNodes_.contains(nodeIdAt(node))) selectAt(s, {});
    place = kOnNode;
  } else if (const int edge = index_.edgeAt(*doc_, s, 5.0 / zoom_); edge >= 0) {
    const QString id = QString::fromStdString(doc_->edges()[static_cast<std::size_t>(edge)].id);
    if (!selEdges_.contains(id)) setSelection({}, {id});
    place = selNodes_.isEmpty() ? kOnEdge : kOnNode;
  } else {
    clearSelection();
  }
  emit contextMenuRequested(place, ev->globalPos());
  ev->accept();
}

void CanvasView::wheelEvent(QWheelEvent* ev) {
  const QPoint d = ev->angleDelta();
  if (ev->modifiers() & Qt::ControlModifier) {
    setZoom(zoom_ * std::pow(1.0015, d.y()), ev->position());
  } else {
    const QPointF step = (ev->modifiers() & Qt::ShiftModifier) ? QPointF(d.y(), 0) : QPointF(d.x(), d.y());
    origin_ -= step / zoom_;
    invalidateContent();
  }
  ev->accept();
}

void CanvasView::keyPressEvent(QKeyEvent* ev) {
  const double step = (ev->modifiers() & Qt::ShiftModifier) ? kGrid : 1.0;
  switch (ev->key()) {
    case Qt::Key_Left: nudgeSelection(-step, 0); break;
    case Qt::Key_Right: nudgeSelection(step, 0); break;
    case Qt::Key_Up: nudgeSelection(0, -step); break;
    case Qt::Key_Down: nudgeSelection(0, step); break;
    case Qt::Key_Escape:
      if (placement_) setPlacementType(std::nullopt);
      else if (gesture_ != Gesture::none) {
        gesture_ = Gesture::none;
        dragSet_.clear();
        invalidateContent();
      } else clearSelection();
      break;
    case Qt::Key_Space:
      if (!ev->isAutoRepeat()) {
        spaceHeld_ = true;
        setCursor(Qt::OpenHandCursor);
      }
      break;
    case Qt::Key_F2:
      if (selNodes_.size() == 1) editLabel(*selNodes_.begin());
      else if (selEdges_.size() == 1) editLabel(*selEdges_.begin());
      break;
    default:
      QWidget::keyPressEvent(ev);
      return;
  }
  ev->accept();
}

void CanvasView::keyReleaseEvent(QKeyEvent* ev) {
  if (ev->key() == Qt::Key_Space && !ev->isAutoRepeat()) {
    spaceHeld_ = false;
    setCursor(Qt::ArrowCursor);
  }
  QWidget::keyReleaseEvent(ev);
}

void CanvasView::leaveEvent(QEvent*) {
  if (hoverNode_ >= 0 || hoverEdge_ >= 0) {
    hoverNode_ = hoverEdge_ = -1;
    update();
  }
}

void CanvasView::dragEnterEvent(QDragEnterEvent* ev) {
  if (ev->mimeData()->hasFormat(QLatin1String(kShapeMime))) ev->acceptProposedAction();
}

void CanvasView::dropEvent(QDropEvent* ev) {
  bool ok = false;
  const int value = ev->mimeData()->data(QLatin1String(kShapeMime)).toInt(&ok);
  if (!ok || !doc_) return;
  placeNode(static_cast<core::ShapeType>(value), mapToScene(ev->position()));
  ev->acceptProposedAction();
}

bool CanvasView::eventFilter(QObject* watched, QEvent* event) {
  if (watched == labelEditor_) {
    if (event->type() == QEvent::KeyPress) {
      auto* key = static_cast<QKeyEvent*>(event);
      if ((key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) && !(key->modifiers() & Qt::ShiftModifier)) {
        commitLabelEdit();
        return true;
      }
      if (key->key() == Qt::Key_Escape) {
        cancelLabelEdit();
        return true;
      }
    } else if (event->type() == QEvent::FocusOut) {
      commitLabelEdit();
    }
  }
  return QWidget::eventFilter(watched, event);
}

}  // namespace modelyne::shell
