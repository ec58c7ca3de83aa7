#include "shell/dialogs/report_dialog.h"

#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "shell/i18n/strings.h"

namespace modelyne::shell {

ReportDialog::ReportDialog(const QString& title, const QString& text, QWidget* parent) : QDialog(parent) {
  setObjectName(QStringLiteral("reportDialog"));
  setWindowTitle(title);
  auto* layout = new QVBoxLayout(this);
  view_ = new QPlainTextEdit(text, this);
  view_->setReadOnly(true);
  view_->setLineWrapMode(QPlainTextEdit::NoWrap);
  view_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  layout->addWidget(view_);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
  QPushButton* copy = buttons->addButton(ui("ui.dlg.copy"), QDialogButtonBox::ActionRole);
  copy->setObjectName(QStringLiteral("copyButton"));
  buttons->button(QDialogButtonBox::Close)->setText(ui("common.close"));
  connect(copy, &QPushButton::clicked, this, &ReportDialog::copyToClipboard);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout->addWidget(buttons);
  resize(640, 420);
}

QString ReportDialog::text() const { return view_->toPlainText(); }

void ReportDialog::copyToClipboard() { QApplication::clipboard()->setText(view_->toPlainText()); }

}  // namespace modelyne::shell
