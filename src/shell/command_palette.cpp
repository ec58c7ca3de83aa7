#include "shell/command_palette.h"

#include <QAction>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QVBoxLayout>

#include "shell/command_table.h"
#include "shell/i18n/strings.h"

namespace modelyne::shell {

CommandPalette::CommandPalette(const QList<QAction*>& commands, QWidget* parent) : QDialog(parent), commands_(commands) {
  setObjectName(QStringLiteral("commandPalette"));
  setWindowTitle(withoutMnemonic(ui("ui.menu.view.command_palette")));
  auto* layout = new QVBoxLayout(this);
  search_ = new QLineEdit(this);
  search_->setPlaceholderText(ui("ui.palette.command_search"));
  search_->installEventFilter(this);
  list_ = new QListWidget(this);
  layout->addWidget(search_);
  layout->addWidget(list_, 1);
  connect(search_, &QLineEdit::textChanged, this, &CommandPalette::filter);
  connect(search_, &QLineEdit::returnPressed, this, &CommandPalette::runCurrent);
  connect(list_, &QListWidget::itemActivated, this, &CommandPalette::runCurrent);
  filter({});
  resize(520, 420);
}

void CommandPalette::filter(const QString& text) {
  list_->clear();
  const QStringList words = text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
  for (QAction* a : commands_) {
    const QString name = withoutMnemonic(a->text());
    bool match = a->isEnabled();
    for (const QString& w : words) match = match && name.contains(w, Qt::CaseInsensitive);
    if (!match) continue;
    const QString keys = shortcutText(a);
    auto* item = new QListWidgetItem(keys.isEmpty() ? name : name + QStringLiteral("    ") + keys, list_);
    item->setData(Qt::UserRole, QVariant::fromValue(static_cast<QObject*>(a)));
  }
  list_->setCurrentRow(0);
}

void CommandPalette::runCurrent() {
  QListWidgetItem* item = list_->currentItem();
  if (!item) return;
  auto* a = qobject_cast<QAction*>(item->data(Qt::UserRole).value<QObject*>());
  accept();
  if (a) a->trigger();
}

bool CommandPalette::eventFilter(QObject* watched, QEvent* event) {
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
