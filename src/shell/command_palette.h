#pragma once
/// CommandPalette: every command of the menus in one searchable list, each
/// with its shortcut; typing filters by name (all words, any order),
/// Enter runs the chosen command.

#include <QDialog>

class QAction;
class QLineEdit;
class QListWidget;

namespace modelyne::shell {

class CommandPalette : public QDialog {
  Q_OBJECT
 public:
  CommandPalette(const QList<QAction*>& commands, QWidget* parent = nullptr);
  QLineEdit* search() const noexcept { return search_; }
  QListWidget* list() const noexcept { return list_; }
  /// Runs the command on the current row and closes.
  void runCurrent();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void filter(const QString& text);
  QList<QAction*> commands_;
  QLineEdit* search_ = nullptr;
  QListWidget* list_ = nullptr;
};

}  // namespace modelyne::shell
