#include "shell/busy_indicator.h"

#include <QApplication>
#include <QProgressDialog>

namespace modelyne::shell {

BusyIndicator::BusyIndicator(QWidget* window, const QString& what) {
  QApplication::setOverrideCursor(Qt::WaitCursor);
  if (!window || !window->isVisible()) return;
  dialog_ = new QProgressDialog(what, QString(), 0, 0, window);  // no range: a busy bar
  dialog_->setObjectName(QStringLiteral("busyIndicator"));
  dialog_->setWindowModality(Qt::WindowModal);
  dialog_->setMinimumDuration(0);
  dialog_->setCancelButton(nullptr);
  dialog_->show();
  // Paint it (and the window behind it) before the step blocks the loop.
  QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

BusyIndicator::~BusyIndicator() {
  delete dialog_;
  QApplication::restoreOverrideCursor();
}

}  // namespace modelyne::shell
