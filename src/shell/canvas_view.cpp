// The canvas's view state (zoom, pan), selection and the edits it offers to
// menus: delete, nudge, clipboard, placing nodes, label editing.
#include "shell/canvas_view.h"

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QPlainTextEdit>
#include <algorithm>
#include <cmath>

#include "io/property_schema.h"
#include "shell/clipboard_codec.h"
#include "shell/i18n/strings.h"
#include "shell/shape_defaults.h"
#include "shell/text_guard.h"

namespace modelyne::shell {
namespace {

constexpr double kMinZoom = 0.02;
// Fitting may go further out than zooming by hand: all content is in view.
constexpr double kMinFitZoom = 1e-4;
constexpr double kMaxZoom = 8.0;
constexpr double kZoomStep = 1.25;

}  // namespace

CanvasView::CanvasView(QWidget* parent) : QWidget(parent) {
  setFocusPolicy(Qt::StrongFocus);
  setMouseTracking(true);
  setAcceptDrops(true);
  setAttribute(Qt::WA_OpaquePaintEvent);
  setMinimumSize(200, 150);
}

CanvasView::~CanvasView() = default;

void CanvasView::setDocument(bridge::DocumentHandle doc) {
  cancelLabelEdit();
  doc_ = doc;
  selNodes_.clear();
  selEdges_.clear();
  hoverNode_ = hoverEdge_ = -1;
  gesture_ = Gesture::none;
  dragSet_.clear();
  if (doc_) index_.rebuild(*doc_);
  invalidateContent();
  emit selectionChanged();
}

void CanvasView::documentChanged() {
  if (!doc_) return;
  index_.rebuild(*doc_);
  // Drop selected ids that no longer exist (after undo, delete elsewhere).
  bool changed = false;
  for (auto it = selNodes_.begin(); it != selNodes_.end();) {
    if (doc_->indexOfNode(it->toStdString()) < 0) {
      it = selNodes_.erase(it);
      changed = true;
    } else {
      ++it;
    }
  }
  for (auto it = selEdges_.begin(); it != selEdges_.end();) {
    if (doc_->indexOfEdge(it->toStdString()) < 0) {
      it = selEdges_.erase(it);
      changed = true;
    } else {
      ++it;
    }
  }
  hoverNode_ = hoverEdge_ = -1;
  invalidateContent();
  if (changed) emit selectionChanged();
}

void CanvasView::emitEdited() {
  index_.rebuild(*doc_);
  invalidateContent();
  emit edited();
}

QString CanvasView::nodeIdAt(int index) const {
  return QString::fromStdString(doc_->nodes()[static_cast<std::size_t>(index)].id);
}

// ---- view ----

QPointF CanvasView::mapToScene(QPointF w) const { return origin_ + w / zoom_; }
QPointF CanvasView::mapFromScene(QPointF s) const { return (s - origin_) * zoom_; }
QRectF CanvasView::visibleSceneRect() const { return {origin_, QSizeF(width() / zoom_, height() / zoom_)}; }

void CanvasView::setZoom(double zoom, std::optional<QPointF> anchor) {
  zoom = std::clamp(zoom, kMinZoom, kMaxZoom);
  const QPointF a = anchor.value_or(QPointF(width() / 2.0, height() / 2.0));
  const QPointF fixed = mapToScene(a);
  zoom_ = zoom;
  origin_ = fixed - a / zoom_;
  invalidateContent();
  emit zoomChanged(zoom_);
}

void CanvasView::zoomIn() { setZoom(zoom_ * kZoomStep); }
void CanvasView::zoomOut() { setZoom(zoom_ / kZoomStep); }
void CanvasView::zoomActualSize() { setZoom(1.0); }

void CanvasView::fitTo(const QRectF& area) {
  if (area.isEmpty() || width() <= 0 || height() <= 0) return;
  const QRectF a = area.adjusted(-24, -24, 24, 24);
  zoom_ = std::clamp(std::min(width() / a.width(), height() / a.height()), kMinFitZoom, kMaxZoom);
  origin_ = a.center() - QPointF(width() / 2.0, height() / 2.0) / zoom_;
  invalidateContent();
  emit zoomChanged(zoom_);
}

void CanvasView::fitToContent() {
  if (!doc_ || index_.bounds().isEmpty()) {
    zoom_ = 1.0;
    origin_ = QPointF(-40, -40);
    invalidateContent();
    emit zoomChanged(zoom_);
    return;
  }
  fitTo(index_.bounds());
}

void CanvasView::centreOn(QPointF s) {
  origin_ = s - QPointF(width() / 2.0, height() / 2.0) / zoom_;
  invalidateContent();
}

void CanvasView::setGridVisible(bool on) {
  gridVisible_ = on;
  invalidateContent();
}

void CanvasView::fitToContentWhenShown() {
  fitPending_ = !isVisible();
  fitOpened();
}

void CanvasView::fitOpened() {
  fitToContent();
  if (zoom_ > 1.0) setZoom(1.0);  // a small diagram opens at its own size, centred
}

void CanvasView::showEvent(QShowEvent*) {
  if (!fitPending_) return;
  fitPending_ = false;
  fitOpened();
}

void CanvasView::resizeEvent(QResizeEvent*) {
  contentValid_ = false;
  if (fitPending_ && isVisible()) {
    fitPending_ = false;
    fitOpened();
  }
}

// ---- selection ----

namespace {
// The ids of a selection that still exist, in the document's order.
template <class IndexOf>
std::vector<std::string> inDocumentOrder(const QSet<QString>& selected, IndexOf indexOf) {
  std::vector<std::pair<int, std::string>> ordered;
  for (const QString& id : selected) {
    std::string s = id.toStdString();
    const int i = indexOf(s);
    if (i >= 0) ordered.emplace_back(i, std::move(s));
  }
  std::sort(ordered.begin(), ordered.end());
  std::vector<std::string> out;
  out.reserve(ordered.size());
  for (auto& [i, s] : ordered) out.push_back(std::move(s));
  return out;
}
}  // namespace

std::vector<std::string> CanvasView::selectedNodeIds() const {
  return inDocumentOrder(selNodes_, [&](const std::string& id) { return doc_ ? doc_->indexOfNode(id) : -1; });
}

std::vector<std::string> CanvasView::selectedEdgeIds() const {
  return inDocumentOrder(selEdges_, [&](const std::string& id) { return doc_ ? doc_->indexOfEdge(id) : -1; });
}

void CanvasView::setSelection(const QSet<QString>& nodes, const QSet<QString>& edges) {
  if (nodes == selNodes_ && edges == selEdges_) return;
  selNodes_ = nodes;
  selEdges_ = edges;
  update();
  emit selectionChanged();
}

void CanvasView::selectAll() {
  if (!doc_) return;
  QSet<QString> n, e;
  for (const auto& node : doc_->nodes()) n.insert(QString::fromStdString(node.id));
  for (const auto& edge : doc_->edges()) e.insert(QString::fromStdString(edge.id));
  setSelection(n, e);
}

void CanvasView::clearSelection() { setSelection({}, {}); }

void CanvasView::reveal(const QString& id) {
  if (!doc_) return;
  const std::string s = id.toStdString();
  if (const int i = doc_->indexOfNode(s); i >= 0) {
    setSelection({id}, {});
    const auto& g = doc_->nodes()[static_cast<std::size_t>(i)].geom;
    if (!visibleSceneRect().contains(QRectF(g.x, g.y, g.w, g.h))) centreOn(QPointF(g.x + g.w / 2, g.y + g.h / 2));
  } else if (const int e = doc_->indexOfEdge(s); e >= 0) {
    setSelection({}, {id});
    const QRectF area = index_.edgeArea(e);
    if (!area.isEmpty() && !visibleSceneRect().intersects(area)) centreOn(area.center());
  }
  update();
}

// ---- tools and edits ----

void CanvasView::setPlacementType(std::optional<core::ShapeType> type) {
  placement_ = type;
  setCursor(type ? Qt::CrossCursor : Qt::ArrowCursor);
  update();
}

QPointF CanvasView::snapped(QPointF s) const {
  if (!snap_) return s;
  return {std::round(s.x() / kGrid) * kGrid, std::round(s.y() / kGrid) * kGrid};
}

std::string CanvasView::placeNode(core::ShapeType type, QPointF centre) {
  if (!doc_) return {};
  const QSizeF size = defaultNodeSize(type);
  const QPointF topLeft = snapped(centre - QPointF(size.width() / 2, size.height() / 2));
  core::Node node;
  node.type = type;
  node.geom = {static_cast<float>(topLeft.x()), static_cast<float>(topLeft.y()), static_cast<float>(size.width()),
               static_cast<float>(size.height())};
  node.text = ui("ui.shape.type." + std::to_string(static_cast<int>(type))).toStdString();
  node.properties = io::defaultProperties(type);
  std::string id;
  try {
    // One insert gives the node its text and default properties in one step.
    id = bridge::insertElements(doc_, {node}, {}).nodeIds.at(0);
  } catch (const bridge::BridgeError& e) {
    emit message(QString::fromUtf8(e.what()));
    return {};
  }
  selNodes_ = {QString::fromStdString(id)};
  selEdges_.clear();
  emitEdited();
  emit selectionChanged();
  return id;
}

void CanvasView::deleteSelection() {
  if (!doc_ || (selNodes_.isEmpty() && selEdges_.isEmpty())) return;
  const auto nodes = selectedNodeIds();
  const auto edges = selectedEdgeIds();
  bridge::deleteElements(doc_, nodes, edges);
  selNodes_.clear();
  selEdges_.clear();
  emitEdited();
  emit selectionChanged();
}

void CanvasView::nudgeSelection(double dx, double dy) {
  if (!doc_ || selNodes_.isEmpty()) return;
  bridge::moveNodes(doc_, selectedNodeIds(), static_cast<float>(dx), static_cast<float>(dy));
  emitEdited();
}

void CanvasView::copySelection() {
  if (!doc_ || selNodes_.isEmpty()) return;
  auto* mime = new QMimeData;
  const std::string xml = encodeSelection(*doc_, selectedNodeIds());
  mime->setData(QLatin1String(kClipboardMime), QByteArray::fromStdString(xml));
  mime->setText(QString::fromStdString(xml));
  QApplication::clipboard()->setMimeData(mime);
  pasteCount_ = 0;
}

void CanvasView::cutSelection() {
  copySelection();
  deleteSelection();
}

void CanvasView::paste() {
  if (!doc_) return;
  const QMimeData* mime = QApplication::clipboard()->mimeData();
  if (!mime) return;
  QByteArray data = mime->data(QLatin1String(kClipboardMime));
  if (data.isEmpty() && mime->hasText() && mime->text().contains(QLatin1String("<diagram")))
    data = mime->text().toUtf8();
  if (data.isEmpty()) return;
  ++pasteCount_;
  const float offset = static_cast<float>(20 * pasteCount_);
  try {
    auto [nodes, edges] = decodeSelection(data.toStdString(), offset, offset);
    if (nodes.empty()) return;
    // Pasted text from elsewhere may carry characters XML cannot hold.
    auto clean = [](std::string& s) {
      const QString text = QString::fromStdString(s);
      if (hasControlCharacters(text)) s = withoutControlCharacters(text).toStdString();
    };
    for (core::Node& n : nodes) {
      clean(n.text);
      for (auto& [k, v] : n.properties) clean(v);
    }
    for (core::Edge& e : edges) clean(e.text);
    const bridge::InsertResult r = bridge::insertElements(doc_, std::move(nodes), std::move(edges));
    QSet<QString> n, e;
    for (const auto& id : r.nodeIds) n.insert(QString::fromStdString(id));
    for (const auto& id : r.edgeIds) e.insert(QString::fromStdString(id));
    selNodes_ = n;
    selEdges_ = e;
    emitEdited();
    emit selectionChanged();
  } catch (const std::exception& ex) {
    emit message(ui("ui.msg.paste_failed").arg(QString::fromUtf8(ex.what())));
  }
}

void CanvasView::duplicateSelection() {
  if (!doc_ || selNodes_.isEmpty()) return;
  const std::string xml = encodeSelection(*doc_, selectedNodeIds());
  auto [nodes, edges] = decodeSelection(xml, 20, 20);
  const bridge::InsertResult r = bridge::insertElements(doc_, std::move(nodes), std::move(edges));
  QSet<QString> n, e;
  for (const auto& id : r.nodeIds) n.insert(QString::fromStdString(id));
  for (const auto& id : r.edgeIds) e.insert(QString::fromStdString(id));
  selNodes_ = n;
  selEdges_ = e;
  emitEdited();
  emit selectionChanged();
}

// ---- in-place label editing ----

void CanvasView::editLabel(const QString& id) {
  if (!doc_) return;
  cancelLabelEdit();
  const std::string sid = id.toStdString();
  QRectF box;
  QString text;
  if (const core::Node* n = doc_->findNode(sid)) {
    box = QRectF(mapFromScene({n->geom.x, n->geom.y}), QSizeF(n->geom.w, n->geom.h) * zoom_);
    text = QString::fromStdString(n->text);
    labelTargetIsEdge_ = false;
  } else if (const int e = doc_->indexOfEdge(sid); e >= 0) {
    const QRectF area = index_.edgeArea(e);
    box = QRectF(mapFromScene(area.center()) - QPointF(80, 14), QSizeF(160, 28));
    text = QString::fromStdString(doc_->edges()[static_cast<std::size_t>(e)].text);
    labelTargetIsEdge_ = true;
  } else {
    return;
  }
  labelTarget_ = id;
  auto* editor = new QPlainTextEdit(this);
  editor->setObjectName(QStringLiteral("labelEditor"));
  keepControlCharactersOut(editor);
  editor->setPlainText(text);
  editor->selectAll();
  editor->setGeometry(box.toAlignedRect().adjusted(0, 0, 0, 0).united(QRect(box.toAlignedRect().topLeft(), QSize(120, 28))));
  editor->setToolTip(ui("ui.canvas.label_edit_hint"));
  editor->installEventFilter(this);
  editor->show();
  editor->setFocus();
  labelEditor_ = editor;
}

void CanvasView::commitLabelEdit() {
  auto* editor = qobject_cast<QPlainTextEdit*>(labelEditor_.data());
  if (!editor || !doc_) return;
  const std::string text = withoutControlCharacters(editor->toPlainText()).toStdString();
  const std::string id = labelTarget_.toStdString();
  labelEditor_ = nullptr;
  editor->deleteLater();
  try {
    if (labelTargetIsEdge_) {
      if (doc_->findEdge(id) && bridge::setEdgeTextUndoable(doc_, id, text)) emitEdited();
    } else {
      const core::Node* n = doc_->findNode(id);
      if (n && n->text != text) {
        bridge::setNodeText(doc_, id, text);
        emitEdited();
      }
    }
  } catch (const bridge::BridgeError& e) {
    emit message(QString::fromUtf8(e.what()));
  }
  setFocus();
}

void CanvasView::cancelLabelEdit() {
  if (labelEditor_) {
    labelEditor_->deleteLater();
    labelEditor_ = nullptr;
    setFocus();
  }
}

}  // namespace modelyne::shell
