#pragma once
/// FindDialog: finds an element of the active diagram by name. Typing
/// filters the nodes and edges by their text and id (all words, any order,
/// ignoring case); Enter or a double click asks to reveal the chosen one.

#include <QDialog>

#include "core/document.h"

class QLineEdit;
class QListWidget;

namespace modelyne::shell {

class FindDialog : public QDialog {
  Q_OBJECT
 public:
  FindDialog(const core::Document& doc, QWidget* parent = nullptr);
  QLineEdit* search() const noexcept { return search_; }
  QListWidget* list() const noexcept { return list_; }
  /// Reveals the element on the current row and closes.
  void revealCurrent();

  /// At most this many matches are listed (a large diagram has 100,000).
  static constexpr int kMaxRows = 200;

 signals:
  void revealRequested(const QString& elementId);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void filter(const QString& text);
  const core::Document& doc_;
  QLineEdit* search_ = nullptr;
  QListWidget* list_ = nullptr;
};

}  // namespace modelyne::shell
