#pragma once
/// PropertyPanel: the fields of the selected node or edge. A node shows its
/// text, fill colour, data-integration flag and every property of its
/// schema in display order, one editor per value kind; validated kinds
/// (multiplicity, integer, identifier, number) show the validator's message
/// as you type and refuse to store an invalid value. Properties the schema
/// does not know are listed read-only. An edge shows its type, label and
/// ports. Every change goes through the bridge.

#include <QString>
#include <QWidget>

#include "bridge/bridge.h"

class QFormLayout;
class QLabel;
class QScrollArea;

namespace modelyne::shell {

class PropertyPanel : public QWidget {
  Q_OBJECT
 public:
  explicit PropertyPanel(QWidget* parent = nullptr);

  /// Shows the node or edge with this id of `doc` (empty id: nothing).
  void showElement(bridge::DocumentHandle doc, const QString& id);
  /// Re-reads the shown element (after undo or a canvas edit), once the
  /// current event is handled. Fields with uncommitted input keep it.
  void refresh();
  /// Builds the fields again (after a language change).
  void retranslate();
  /// Commits every field whose input has not been committed yet.
  void commitPending();
  /// Puts the keyboard focus in the first field.
  void focusFirstField();
  const QString& elementId() const noexcept { return id_; }
  /// The message shown under a property's field ("" when valid).
  QString errorFor(const QString& key) const;

 signals:
  void edited();  ///< an undoable change was made
  void message(const QString& text);

 private:
  /// One field: how to show the element's value in it again, and how to
  /// commit its input when there is any.
  struct Field {
    std::function<void()> load;
    std::function<void()> commit;
  };

  void rebuild();
  void reload();
  /// What decides the rows shown: element kind, type and property keys.
  QString layoutOf() const;
  void buildNode(const core::Node& node);
  void buildEdge(const core::Edge& edge);
  void addRow(const QString& label, QWidget* field, const QString& key = {});
  void addField(std::function<void()> load, std::function<void()> commit = {});
  void setError(const QString& key, const QString& text);
  /// Runs a bridge call; shows and logs a refusal; returns success.
  template <class F>
  bool apply(const QString& key, F&& f);

  bridge::DocumentHandle doc_ = nullptr;
  QString id_;
  QScrollArea* scroll_ = nullptr;
  QWidget* body_ = nullptr;
  QFormLayout* form_ = nullptr;
  QLabel* title_ = nullptr;
  bool rebuilding_ = false;
  bool refreshPending_ = false;
  bool rebuildPending_ = false;
  QString layout_;
  std::vector<Field> fields_;
};

}  // namespace modelyne::shell
