#include "shell/find_dialog.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QVBoxLayout>

#include "shell/command_table.h"
#include "shell/i18n/strings.h"

namespace modelyne::shell {
namespace {

constexpr int kIdRole = Qt::UserRole + 1;

bool matches(const QString& haystack, const QStringList& words) {
  for (const QString& w : words)
    if (!haystack.contains(w, Qt::CaseInsensitive)) return false;
  return true;
}

QString oneLine(const std::string& text) { return QString::fromStdString(text).replace(QLatin1Char('\n'), QLatin1Char(' ')); }

}  // namespace

FindDialog::FindDialog(const core::Document& doc, QWidget* parent) : QDialog(parent), doc_(doc) {
  setObjectName(QStringLiteral("findDialog"));
  setWindowTitle(withoutMnemonic(ui("ui.menu.edit.find")));
  auto* layout = new QVBoxLayout(this);
  search_ = new QLineEdit(this);
  search_->setPlaceholderText(ui("ui.find.placeholder"));
  search_->installEventFilter(this);
  list_ = new QListWidget(this);
  layout->addWidget(search_);
  layout->addWidget(list_, 1);
  connect(search_, &QLineEdit::textChanged, this, &FindDialog::filter);
  connect(search_, &QLineEdit::returnPressed, this, &FindDialog::revealCurrent);
  connect(list_, &QListWidget::itemActivated, this, &FindDialog::revealCurrent);
  filter({});
  resize(480, 400);
}

void FindDialog::filter(const QString& text) {
  list_->clear();
  const QStringList words = text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
  int shown = 0;
  auto add = [&](const std::string& id, const std::string& name, const QString& kind) {
    const QString label = name.empty() ? QString::fromStdString(id)
                                       : QStringLiteral("%1  (%2)").arg(oneLine(name), QString::fromStdString(id));
    if (!matches(label, words)) return;
    auto* item = new QListWidgetItem(QStringLiteral("%1 — %2").arg(label, kind), list_);
    item->setData(kIdRole, QString::fromStdString(id));
    ++shown;
  };
  for (const core::Node& n : doc_.nodes()) {
    if (shown >= kMaxRows) break;
    add(n.id, n.text, ui("ui.shape.type." + std::to_string(static_cast<int>(n.type))));
  }
  for (const core::Edge& e : doc_.edges()) {
    if (shown >= kMaxRows) break;
    add(e.id, e.text, ui("ui.edge.type." + std::to_string(static_cast<int>(e.type))));
  }
  list_->setCurrentRow(0);
}

void FindDialog::revealCurrent() {
  QListWidgetItem* item = list_->currentItem();
  if (!item) return;
  const QString id = item->data(kIdRole).toString();
  accept();
  emit revealRequested(id);
}

bool FindDialog::eventFilter(QObject* watched, QEvent* event) {
  if (watched == search_ && event->type() == QEvent::KeyPress) {
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_Down || key == Qt::Key_Up) {
      const int row = list_->currentRow() + (key == Qt::Key_Down ? 1 : -1);
      if (row >= 0 && row < list_->count()) list_->setCurrentRow(row);
      return true;
    }
  }
  return QDialog::eventFilter(watched, event);
}

}  // namespace modelyne::shell
