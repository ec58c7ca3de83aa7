#pragma once
/// CanvasView: the drawing area of the active diagram. It paints the nodes
/// and edges through the shared drawing of the exports (so the canvas looks
/// like the SVG, PNG and PDF files), culls to the visible area with a grid
/// index, and keeps the painted content in a cached picture so that
/// selection, hover and drag feedback repaint only the overlay. Every change
/// it makes goes through the bridge, one undo step per gesture.

#include <QPixmap>
#include <QPointer>
#include <QSet>
#include <QWidget>
#include <array>
#include <optional>
#include <string>
#include <vector>

#include "bridge/bridge.h"
#include "core/catalogue.h"
#include "shell/canvas_index.h"

class QLineEdit;
class QPlainTextEdit;

namespace modelyne::shell {

class CanvasView : public QWidget {
  Q_OBJECT
 public:
  explicit CanvasView(QWidget* parent = nullptr);
  ~CanvasView() override;

  /// Shows `doc` (may be null); resets selection, keeps zoom.
  void setDocument(bridge::DocumentHandle doc);
  bridge::DocumentHandle document() const noexcept { return doc_; }
  /// Re-reads the document after a change made elsewhere (undo, panels).
  void documentChanged();

  // ---- view ----
  double zoom() const noexcept { return zoom_; }
  void setZoom(double zoom, std::optional<QPointF> anchorWidgetPos = {});
  void zoomIn();
  void zoomOut();
  void zoomActualSize();
  /// Fits the content (or `area` in diagram units) into the view.
  void fitToContent();
  /// Fits the content, at most at 100%, once the view is shown at its size
  /// (now, if it is): a view hidden behind the start page has no size yet.
  void fitToContentWhenShown();
  void fitTo(const QRectF& area);
  /// Centres the view on a diagram point.
  void centreOn(QPointF scenePos);
  QPointF mapToScene(QPointF widgetPos) const;
  QPointF mapFromScene(QPointF scenePos) const;
  QRectF visibleSceneRect() const;
  bool gridVisible() const noexcept { return gridVisible_; }
  void setGridVisible(bool on);
  bool snapToGrid() const noexcept { return snap_; }
  void setSnapToGrid(bool on) { snap_ = on; }
  static constexpr double kGrid = 10.0;

  // ---- selection ----
  const QSet<QString>& selectedNodes() const noexcept { return selNodes_; }
  const QSet<QString>& selectedEdges() const noexcept { return selEdges_; }
  /// Selected node ids in drawing order (what arrange commands get).
  std::vector<std::string> selectedNodeIds() const;
  std::vector<std::string> selectedEdgeIds() const;
  void setSelection(const QSet<QString>& nodes, const QSet<QString>& edges);
  void selectAll();
  void clearSelection();
  /// Selects the element and scrolls it into view.
  void reveal(const QString& id);

  // ---- tools ----
  /// Arms placing a node of this type at the next click (nothing: select tool).
  void setPlacementType(std::optional<core::ShapeType> type);
  std::optional<core::ShapeType> placementType() const noexcept { return placement_; }
  /// The type new edges get when drawn from a node's connection anchors.
  void setEdgeType(core::EdgeType type) { edgeType_ = type; }
  core::EdgeType edgeType() const noexcept { return edgeType_; }
  /// Places a node of the type centred on a diagram point (one undo step);
  /// returns its id.
  std::string placeNode(core::ShapeType type, QPointF sceneCentre);

  // ---- edits (each one undo step) ----
  void deleteSelection();
  void nudgeSelection(double dx, double dy);
  void copySelection();
  void cutSelection();
  void paste();
  void duplicateSelection();
  /// Starts in-place editing of a node's label (or an edge's).
  void editLabel(const QString& id);
  /// Commits the label being edited in place, if any.
  void finishLabelEdit() { commitLabelEdit(); }

  /// Renders the whole content area once with the current view into an
  /// image of the widget's size (used by benchmarks and screenshots).
  QImage renderToImage(bool withOverlay = true);

 signals:
  /// The document changed through the canvas.
  void edited();
  void selectionChanged();
  void zoomChanged(double zoom);
  void message(const QString& text);
  /// A node was placed with the armed tool; the tool is disarmed.
  void placementDone();
  /// The user asked for the menu of what is under the pointer (CommandPlace).
  void contextMenuRequested(unsigned place, const QPoint& globalPos);

 protected:
  void paintEvent(QPaintEvent*) override;
  void resizeEvent(QResizeEvent*) override;
  void showEvent(QShowEvent*) override;
  void contextMenuEvent(QContextMenuEvent*) override;
  void mousePressEvent(QMouseEvent*) override;
  void mouseMoveEvent(QMouseEvent*) override;
  void mouseReleaseEvent(QMouseEvent*) override;
  void mouseDoubleClickEvent(QMouseEvent*) override;
  void wheelEvent(QWheelEvent*) override;
  void keyPressEvent(QKeyEvent*) override;
  void keyReleaseEvent(QKeyEvent*) override;
  void leaveEvent(QEvent*) override;
  void dragEnterEvent(QDragEnterEvent*) override;
  void dropEvent(QDropEvent*) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  enum class Gesture { none, rubberBand, move, resize, connect, reconnect, pan };

  // painting (canvas_paint.cpp)
  void invalidateContent();
  void ensureContent();
  void paintContent(QPainter& p, const QRectF& area, const QSet<int>* skip) const;
  void fitOpened();
  void paintGrid(QPainter& p, const QRectF& area) const;
  void paintOverlay(QPainter& p);
  void paintDragPreview(QPainter& p);
  QTransform viewTransform() const;
  static std::array<QPointF, 8> handlePoints(const QRectF& r);

  // gestures (canvas_input.cpp)
  int handleAt(QPointF widgetPos) const;  // resize handle of the single selected node, -1 none
  std::optional<core::Anchor> anchorAt(int node, QPointF scenePos) const;
  int edgeEndAt(QPointF scenePos, bool* sourceEnd) const;
  void selectAt(QPointF scenePos, Qt::KeyboardModifiers mods);
  void finishGesture(QPointF scenePos);
  QPointF snapped(QPointF scenePos) const;
  QPointF moveDelta() const;
  void commitLabelEdit();
  void cancelLabelEdit();
  void emitEdited();
  QString nodeIdAt(int index) const;

  bridge::DocumentHandle doc_ = nullptr;
  CanvasIndex index_;
  double zoom_ = 1.0;
  QPointF origin_{-40, -40};  // diagram point shown at the widget's top-left
  bool gridVisible_ = true;
  bool fitPending_ = false;
  bool snap_ = true;

  QSet<QString> selNodes_;
  QSet<QString> selEdges_;
  int hoverNode_ = -1;
  int hoverEdge_ = -1;

  std::optional<core::ShapeType> placement_;
  core::EdgeType edgeType_ = core::EdgeType::straightArrow;

  Gesture gesture_ = Gesture::none;
  QPointF pressScene_;
  QPointF pressWidget_;
  QPointF currentScene_;
  int gestureHandle_ = -1;
  int gestureNode_ = -1;
  core::Anchor gestureAnchor_ = core::Anchor::right;
  QString gestureEdge_;
  bool gestureSourceEnd_ = false;
  QSet<int> dragSet_;         // node positions painted by the drag preview
  std::vector<int> dragEdges_;  // edges touching them
  core::NodeGeometry resizePreview_;
  bool spaceHeld_ = false;
  bool gestureMoved_ = false;

  QPixmap content_;
  bool contentValid_ = false;
  bool contentSkipsDrag_ = false;
  int pasteCount_ = 0;

  QPointer<QWidget> labelEditor_;
  QString labelTarget_;
  bool labelTargetIsEdge_ = false;
};

}  // namespace modelyne::shell
