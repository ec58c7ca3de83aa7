#include "shell/log_panel.h"

#include "shell/output_log.h"

namespace modelyne::shell {

LogPanel::LogPanel(OutputLog& log, QWidget* parent) : QPlainTextEdit(parent) {
  setObjectName(QStringLiteral("logPanel"));
  setReadOnly(true);
  setMaximumBlockCount(5000);
  setLineWrapMode(QPlainTextEdit::WidgetWidth);
  connect(&log, &OutputLog::messageLogged, this, [this](const QString& line) { appendPlainText(line); });
}

}  // namespace modelyne::shell
