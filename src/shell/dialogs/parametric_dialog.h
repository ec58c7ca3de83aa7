#pragma once
/// ParametricDialog: the values a parametric evaluation computed (name,
/// value, where it came from, the equation), the problems it met and its
/// trace, with a button that writes the computed values back into the
/// diagram (one undo step, done by the caller).

#include <QDialog>

#include "sim/propagation.h"

class QTableWidget;
class QPlainTextEdit;

namespace modelyne::shell {

class ParametricDialog : public QDialog {
  Q_OBJECT
 public:
  ParametricDialog(const core::sim::parametric::PropagationResult& result, QWidget* parent = nullptr);
  QTableWidget* values() const noexcept { return values_; }

 signals:
  void writeBackRequested();

 private:
  QTableWidget* values_ = nullptr;
  QPlainTextEdit* trace_ = nullptr;
};

/// One line of the trace, as shown in the dialog.
QString traceLine(const core::sim::parametric::TraceEvent& event);

}  // namespace modelyne::shell
