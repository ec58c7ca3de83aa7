#pragma once
/// FindingsPanel: the findings of the last validation, one per line, with a
/// status line that counts them. Activating a finding asks to reveal the
/// element it names.

#include <QStringList>
#include <QWidget>

#include "core/document.h"

class QLabel;
class QListWidget;

namespace modelyne::shell {

class FindingsPanel : public QWidget {
  Q_OBJECT
 public:
  explicit FindingsPanel(QWidget* parent = nullptr);

  /// Shows findings; `doc` resolves the element each one names. `error`
  /// (when not empty) is shown after them: the validation stopped there.
  void showFindings(const QStringList& findings, const core::Document* doc, const QString& error = {});
  void clear();
  QListWidget* list() const noexcept { return list_; }
  QString statusText() const;

  /// The id of the element a finding names: the first quoted word that is a
  /// node or edge id of the document, else a node whose text it is.
  static QString elementOf(const QString& finding, const core::Document& doc);

 signals:
  void revealRequested(const QString& elementId);

 private:
  QListWidget* list_ = nullptr;
  QLabel* status_ = nullptr;
};

}  // namespace modelyne::shell
