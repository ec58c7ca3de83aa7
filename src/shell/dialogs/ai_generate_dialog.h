#pragma once
/// AiGenerateDialog: the prompt box and the backend choice of AI Generate.

#include <QDialog>

class QComboBox;
class QPlainTextEdit;

namespace modelyne::shell {

class AiGenerateDialog : public QDialog {
  Q_OBJECT
 public:
  AiGenerateDialog(const QString& prompt, const QString& backend, bool cloudConfigured, QWidget* parent = nullptr);
  QString prompt() const;
  QString backend() const;  ///< "offline" or "cloud"

 private:
  QPlainTextEdit* prompt_ = nullptr;
  QComboBox* backend_ = nullptr;
};

}  // namespace modelyne::shell
