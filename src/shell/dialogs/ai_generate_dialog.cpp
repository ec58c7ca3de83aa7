#include "shell/dialogs/ai_generate_dialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStandardItemModel>
#include <QVBoxLayout>

#include "shell/i18n/strings.h"

namespace modelyne::shell {

AiGenerateDialog::AiGenerateDialog(const QString& prompt, const QString& backend, bool cloudConfigured,
                                   QWidget* parent)
    : QDialog(parent) {
  setObjectName(QStringLiteral("aiGenerateDialog"));
  setWindowTitle(ui("ui.dlg.ai.title"));
  auto* layout = new QVBoxLayout(this);
  auto* hint = new QLabel(ui("ui.dlg.ai.hint"), this);
  hint->setWordWrap(true);
  layout->addWidget(hint);
  prompt_ = new QPlainTextEdit(prompt, this);
  prompt_->setObjectName(QStringLiteral("aiPrompt"));
  prompt_->setPlaceholderText(ui("ui.dlg.ai.placeholder"));
  layout->addWidget(prompt_, 1);
  auto* form = new QFormLayout;
  backend_ = new QComboBox(this);
  backend_->setObjectName(QStringLiteral("aiBackend"));
  backend_->addItem(ui("ui.ai.backend_offline"), QStringLiteral("offline"));
  backend_->addItem(ui("ui.ai.backend_cloud"), QStringLiteral("cloud"));
  if (!cloudConfigured) {
    // Offered only when configured; otherwise it would always fall back.
    auto* model = qobject_cast<QStandardItemModel*>(backend_->model());
    model->item(1)->setEnabled(false);
    backend_->setItemData(1, ui("ui.dlg.ai.cloud_not_configured"), Qt::ToolTipRole);
  }
  backend_->setCurrentIndex(backend == QLatin1String("cloud") && cloudConfigured ? 1 : 0);
  form->addRow(ui("ui.dlg.ai.backend"), backend_);
  layout->addLayout(form);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  buttons->button(QDialogButtonBox::Ok)->setText(ui("ui.dlg.ai.generate"));
  buttons->button(QDialogButtonBox::Cancel)->setText(ui("common.cancel"));
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout->addWidget(buttons);
  resize(560, 340);
}

QString AiGenerateDialog::prompt() const { return prompt_->toPlainText(); }
QString AiGenerateDialog::backend() const { return backend_->currentData().toString(); }

}  // namespace modelyne::shell
