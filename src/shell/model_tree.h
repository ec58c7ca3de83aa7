#pragma once
/// ModelTree: the project's models (the active one open, with its nodes
/// grouped by shape type) and the actions on models: add, rename, delete.
/// Selecting a node here selects it on the canvas. Each row's menu offers
/// what fits it: a model's row the model actions, an element's row the
/// element commands (as on the canvas), empty space adding a model.

#include <QString>
#include <QWidget>

class QTreeWidget;
class QTreeWidgetItem;

namespace modelyne::shell {

class ProjectSession;

class ModelTree : public QWidget {
  Q_OBJECT
 public:
  explicit ModelTree(QWidget* parent = nullptr);

  /// Rebuilds from the session (null: empty).
  void setSession(const ProjectSession* session);
  /// Marks the tree as out of date; it rebuilds when next shown or idle.
  void scheduleRefresh();
  /// Highlights the canvas selection without emitting anything back.
  void showSelection(const QString& nodeId);
  QTreeWidget* tree() const noexcept { return tree_; }

 signals:
  void modelActivated(int index);
  void nodeSelected(const QString& nodeId);
  void addModelRequested();
  void renameModelRequested(int index);
  void deleteModelRequested(int index);
  /// A row naming an element was right-clicked.
  void elementMenuRequested(const QString& nodeId, const QPoint& globalPos);

 private:
  void rebuild();
  void contextMenu(const QPoint& pos);

  const ProjectSession* session_ = nullptr;
  QTreeWidget* tree_ = nullptr;
  bool dirty_ = false;
  bool syncing_ = false;
};

}  // namespace modelyne::shell
