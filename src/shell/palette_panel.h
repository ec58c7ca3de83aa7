#pragma once
/// PalettePanel: the shape types to draw with, in palette groups and palette
/// order, with their localised display names. The types allowed on the
/// diagram's kind come first; the others wait in a collapsed "More" section.
/// Above them, the edge type that new connections get, allowed types first.
/// Click arms the canvas to place a shape, double click places one in the
/// middle of the view, and a shape can be dragged onto the canvas.

#include <QWidget>
#include <optional>

#include "core/catalogue.h"
#include "core/diagram_kind.h"

class QComboBox;
class QLineEdit;
class QTreeWidget;
class QTreeWidgetItem;

namespace modelyne::shell {

/// MIME type of a shape dragged from the palette: the type's integer as text.
inline constexpr const char* kShapeMime = "application/x-modelyne-shape";

class PalettePanel : public QWidget {
  Q_OBJECT
 public:
  explicit PalettePanel(QWidget* parent = nullptr);

  /// Rebuilds the lists for a diagram kind.
  void setKind(core::DiagramKind kind);
  core::EdgeType edgeType() const;
  void setEdgeType(core::EdgeType type);
  /// The tree item of a shape type (tests and keyboard use), or nullptr.
  QTreeWidgetItem* itemFor(core::ShapeType type) const;
  QTreeWidget* tree() const noexcept { return tree_; }
  /// Re-reads the display names after a language change.
  void retranslate();

 signals:
  void shapeChosen(core::ShapeType type);     ///< arm placement
  void shapeActivated(core::ShapeType type);  ///< place at once
  void edgeTypeChanged(core::EdgeType type);

 private:
  void rebuild();
  void filter(const QString& text);

  core::DiagramKind kind_ = core::DiagramKind::bdd;
  QLineEdit* search_ = nullptr;
  QComboBox* edges_ = nullptr;
  QTreeWidget* tree_ = nullptr;
};

}  // namespace modelyne::shell
