#pragma once
/// BusyIndicator: while a long step runs on the user-interface thread (opening
/// a 100,000-node file), the window shows a busy cursor and a small progress
/// window naming the step, painted before the step starts, instead of a
/// window that stops drawing. Ends when the object goes out of scope.

#include <QString>

class QProgressDialog;
class QWidget;

namespace modelyne::shell {

class BusyIndicator {
 public:
  BusyIndicator(QWidget* window, const QString& what);
  ~BusyIndicator();
  BusyIndicator(const BusyIndicator&) = delete;
  BusyIndicator& operator=(const BusyIndicator&) = delete;

 private:
  QProgressDialog* dialog_ = nullptr;
};

}  // namespace modelyne::shell
