#pragma once
/// LogPanel: shows the output log, newest line last.

#include <QPlainTextEdit>

namespace modelyne::shell {

class OutputLog;

class LogPanel : public QPlainTextEdit {
  Q_OBJECT
 public:
  explicit LogPanel(OutputLog& log, QWidget* parent = nullptr);
};

}  // namespace modelyne::shell
