#include "shell/dialogs/review_dialog.h"

#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include "shell/i18n/strings.h"
#include "shell/review_session.h"

namespace modelyne::shell {

ReviewDialog::ReviewDialog(ReviewSession& review, QWidget* parent) : QDialog(parent), review_(review) {
  setObjectName(QStringLiteral("reviewDialog"));
  setWindowTitle(ui("ui.dlg.review.title"));
  auto* layout = new QVBoxLayout(this);
  auto* hint = new QLabel(ui("ui.dlg.review.hint"), this);
  hint->setWordWrap(true);
  layout->addWidget(hint);
  list_ = new QListWidget(this);
  list_->setObjectName(QStringLiteral("reviewList"));
  list_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  layout->addWidget(list_, 1);
  auto* row = new QHBoxLayout;
  auto button = [&](const char* key, auto fn) {
    auto* b = new QPushButton(ui(key), this);
    b->setObjectName(QLatin1String(key));
    connect(b, &QPushButton::clicked, this, fn);
    row->addWidget(b);
  };
  button("ui.dlg.review.accept", [this] { decideCurrent("ACCEPT"); });
  button("ui.dlg.review.modify", [this] { decideCurrent("MODIFY"); });
  button("ui.dlg.review.discard", [this] { decideCurrent("DISCARD"); });
  row->addStretch(1);
  button("ui.dlg.review.accept_all", [this] { decideAll("ACCEPT"); });
  button("ui.dlg.review.discard_all", [this] { decideAll("DISCARD"); });
  layout->addLayout(row);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
  buttons->button(QDialogButtonBox::Close)->setText(ui("common.close"));
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout->addWidget(buttons);
  connect(list_, &QListWidget::currentRowChanged, this, [this](int r) {
    if (r >= 0 && static_cast<std::size_t>(r) < review_.entries().size())
      emit revealRequested(QString::fromStdString(review_.entries()[static_cast<std::size_t>(r)].id));
  });
  refresh();
  resize(600, 420);
}

void ReviewDialog::refresh() {
  review_.refresh();
  const int keep = list_->currentRow();
  list_->blockSignals(true);
  list_->clear();
  for (std::size_t i = 0; i < review_.entries().size(); ++i) list_->addItem(review_.line(i));
  list_->setCurrentRow(std::min(keep, list_->count() - 1));
  list_->blockSignals(false);
}

void ReviewDialog::decideCurrent(const char* decision) {
  const int r = list_->currentRow();
  if (r < 0 || static_cast<std::size_t>(r) >= review_.entries().size()) return;
  const auto& e = review_.entries()[static_cast<std::size_t>(r)];
  if (e.state == ReviewSession::State::discard || e.state == ReviewSession::State::accept) return;
  const std::string record = review_.decide(static_cast<std::size_t>(r), decision);
  refresh();
  emit decided(QString::fromStdString(record));
  if (std::string(decision) == "MODIFY") emit revealRequested(QString::fromStdString(e.id));
}

void ReviewDialog::decideAll(const char* decision) {
  for (const std::string& record : review_.decideAll(decision)) emit decided(QString::fromStdString(record));
  refresh();
}

}  // namespace modelyne::shell
