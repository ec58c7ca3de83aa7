#include "shell/dialogs/explain_dialog.h"

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QPushButton>
#include <QTextBrowser>
#include <QVBoxLayout>

#include "explain/explain.h"
#include "io/atomic_file.h"
#include "shell/i18n/strings.h"

namespace modelyne::shell {

ExplainDialog::ExplainDialog(std::string markdown, QWidget* parent) : QDialog(parent), markdown_(std::move(markdown)) {
  setObjectName(QStringLiteral("explainDialog"));
  setWindowTitle(ui("ui.dlg.explain.title"));
  auto* layout = new QVBoxLayout(this);
  view_ = new QTextBrowser(this);
  view_->setObjectName(QStringLiteral("explanationView"));
  view_->setMarkdown(QString::fromStdString(markdown_));
  layout->addWidget(view_);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
  buttons->button(QDialogButtonBox::Close)->setText(ui("common.close"));
  QPushButton* md = buttons->addButton(ui("ui.dlg.explain.export_md"), QDialogButtonBox::ActionRole);
  QPushButton* csv = buttons->addButton(ui("ui.dlg.explain.export_csv"), QDialogButtonBox::ActionRole);
  connect(md, &QPushButton::clicked, this, [this] { exportDialog(false); });
  connect(csv, &QPushButton::clicked, this, [this] { exportDialog(true); });
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout->addWidget(buttons);
  resize(720, 560);
}

bool ExplainDialog::exportMarkdown(const QString& path, QString* error) const {
  std::string err;
  const bool ok = io::writeFileAtomic(path.toStdString(), markdown_, &err);
  if (!ok && error) *error = QString::fromStdString(err);
  return ok;
}

bool ExplainDialog::exportCsv(const QString& path, QString* error) const {
  std::string err;
  const bool ok = io::writeFileAtomic(path.toStdString(), explain::markdownToCsv(markdown_), &err);
  if (!ok && error) *error = QString::fromStdString(err);
  return ok;
}

void ExplainDialog::exportDialog(bool csv) {
  const QString filter = csv ? ui("ui.filter.csv") : ui("ui.filter.markdown");
  QString path = QFileDialog::getSaveFileName(this, windowTitle(), QString(), filter);
  if (path.isEmpty()) return;
  const QString ext = csv ? QStringLiteral(".csv") : QStringLiteral(".md");
  if (!path.endsWith(ext, Qt::CaseInsensitive)) path += ext;
  QString error;
  const bool ok = csv ? exportCsv(path, &error) : exportMarkdown(path, &error);
  emit exported(path, ok, error);
}

}  // namespace modelyne::shell
