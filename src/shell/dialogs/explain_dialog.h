#pragma once
/// ExplainDialog: the diagram's explanation rendered from Markdown, with
/// export to ".md" (the Markdown itself) and ".csv" ("Section,Detail").

#include <QDialog>
#include <string>

class QTextBrowser;

namespace modelyne::shell {

class ExplainDialog : public QDialog {
  Q_OBJECT
 public:
  ExplainDialog(std::string markdown, QWidget* parent = nullptr);
  const std::string& markdown() const noexcept { return markdown_; }
  /// Writes the Markdown or its CSV form; false with `error` on failure.
  bool exportMarkdown(const QString& path, QString* error) const;
  bool exportCsv(const QString& path, QString* error) const;

 signals:
  void exported(const QString& path, bool ok, const QString& error);

 private:
  void exportDialog(bool csv);
  std::string markdown_;
  QTextBrowser* view_ = nullptr;
};

}  // namespace modelyne::shell
