#include "shell/dialogs/parametric_dialog.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSplitter>
#include <QTableWidget>
#include <QVBoxLayout>
#include <cmath>

#include "shell/i18n/strings.h"

namespace modelyne::shell {
namespace {

using core::sim::parametric::TraceCode;

QString number(double v) { return std::isnan(v) ? QStringLiteral("—") : QString::number(v, 'g', 12); }

}  // namespace

QString traceLine(const core::sim::parametric::TraceEvent& e) {
  const QString name = QString::fromStdString(e.name);
  QString what;
  switch (e.code) {
    case TraceCode::valueRead: what = ui("ui.par.trace.read").arg(name, number(e.after)); break;
    case TraceCode::equationEvaluated: what = ui("ui.par.trace.evaluated").arg(name, number(e.after)); break;
    case TraceCode::valueChanged: what = ui("ui.par.trace.changed").arg(name, number(e.before), number(e.after)); break;
    case TraceCode::converged: what = ui("ui.par.trace.converged").arg(name, number(e.before)).arg(e.detail); break;
    case TraceCode::parseError: what = ui("ui.par.trace.parse_error").arg(name).arg(e.detail); break;
    case TraceCode::unresolvedName: what = ui("ui.par.trace.unresolved").arg(name); break;
  }
  return QStringLiteral("%1  [%2] %3").arg(e.sequence, 4).arg(static_cast<unsigned>(e.code)).arg(what);
}

ParametricDialog::ParametricDialog(const core::sim::parametric::PropagationResult& result, QWidget* parent)
    : QDialog(parent) {
  setObjectName(QStringLiteral("parametricDialog"));
  setWindowTitle(ui("ui.dlg.par.title"));
  auto* layout = new QVBoxLayout(this);
  values_ = new QTableWidget(static_cast<int>(result.values.size()), 3, this);
  values_->setObjectName(QStringLiteral("parValues"));
  values_->setHorizontalHeaderLabels({ui("ui.dlg.par.name"), ui("ui.dlg.par.value"), ui("ui.dlg.par.source")});
  values_->horizontalHeader()->setStretchLastSection(true);
  values_->verticalHeader()->hide();
  values_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  int row = 0;
  for (const auto& v : result.values) {
    values_->setItem(row, 0, new QTableWidgetItem(QString::fromStdString(v.name)));
    values_->setItem(row, 1, new QTableWidgetItem(v.known ? number(v.value) : ui("ui.dlg.par.unknown")));
    values_->setItem(row, 2, new QTableWidgetItem(v.given ? ui("ui.dlg.par.given")
                                                          : QString::fromStdString(v.equationText)));
    ++row;
  }
  values_->resizeColumnsToContents();
  trace_ = new QPlainTextEdit(this);
  trace_->setObjectName(QStringLiteral("parTrace"));
  trace_->setReadOnly(true);
  QStringList lines;
  for (const auto& err : result.errors)
    lines << ui("ui.dlg.par.problem").arg(QString::fromStdString(err.nodeId), QString::fromStdString(err.message));
  for (const auto& e : result.trace) lines << traceLine(e);
  trace_->setPlainText(lines.join(QLatin1Char('\n')));
  auto* split = new QSplitter(Qt::Vertical, this);
  split->addWidget(values_);
  split->addWidget(trace_);
  layout->addWidget(split, 1);
  auto* status = new QLabel(result.converged ? ui("ui.dlg.par.converged").arg(result.sweeps)
                                             : ui("ui.dlg.par.not_converged"),
                            this);
  layout->addWidget(status);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
  buttons->button(QDialogButtonBox::Close)->setText(ui("common.close"));
  QPushButton* write = buttons->addButton(ui("ui.dlg.par.write_back"), QDialogButtonBox::ActionRole);
  write->setObjectName(QStringLiteral("writeBack"));
  connect(write, &QPushButton::clicked, this, &ParametricDialog::writeBackRequested);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout->addWidget(buttons);
  resize(720, 520);
}

}  // namespace modelyne::shell
