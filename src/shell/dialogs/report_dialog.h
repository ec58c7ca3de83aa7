#pragma once
/// ReportDialog: a plain-text report (the model assessment) in a fixed-width
/// view, with a button that copies it to the clipboard.

#include <QDialog>

class QPlainTextEdit;

namespace modelyne::shell {

class ReportDialog : public QDialog {
  Q_OBJECT
 public:
  ReportDialog(const QString& title, const QString& text, QWidget* parent = nullptr);
  QString text() const;
  /// Puts the report on the clipboard.
  void copyToClipboard();

 private:
  QPlainTextEdit* view_ = nullptr;
};

}  // namespace modelyne::shell
