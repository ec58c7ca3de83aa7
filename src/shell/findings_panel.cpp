#include "shell/findings_panel.h"

#include <QLabel>
#include <QListWidget>
#include <QRegularExpression>
#include <QVBoxLayout>

#include "shell/i18n/strings.h"

namespace modelyne::shell {
namespace {

constexpr int kElementRole = Qt::UserRole + 1;

}  // namespace

FindingsPanel::FindingsPanel(QWidget* parent) : QWidget(parent) {
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(2);
  list_ = new QListWidget(this);
  list_->setObjectName(QStringLiteral("findingsList"));
  list_->setWordWrap(true);
  list_->setAlternatingRowColors(true);
  status_ = new QLabel(this);
  status_->setObjectName(QStringLiteral("findingsStatus"));
  layout->addWidget(list_, 1);
  layout->addWidget(status_);
  auto activate = [this](QListWidgetItem* item) {
    const QString id = item->data(kElementRole).toString();
    if (!id.isEmpty()) emit revealRequested(id);
  };
  connect(list_, &QListWidget::itemClicked, this, activate);
  connect(list_, &QListWidget::itemActivated, this, activate);
  clear();
}

QString FindingsPanel::elementOf(const QString& finding, const core::Document& doc) {
  static const QRegularExpression quoted(QStringLiteral("'([^']*)'"));
  QString byText;
  for (auto it = quoted.globalMatch(finding); it.hasNext();) {
    const QString word = it.next().captured(1);
    const std::string w = word.toStdString();
    if (doc.indexOfNode(w) >= 0 || doc.indexOfEdge(w) >= 0) return word;
    if (byText.isEmpty()) {
      for (const core::Node& n : doc.nodes())
        if (n.text == w) {
          byText = QString::fromStdString(n.id);
          break;
        }
    }
  }
  return byText;
}

void FindingsPanel::showFindings(const QStringList& findings, const core::Document* doc, const QString& error) {
  list_->clear();
  for (const QString& f : findings) {
    auto* item = new QListWidgetItem(f, list_);
    if (doc) item->setData(kElementRole, elementOf(f, *doc));
  }
  if (!error.isEmpty()) {
    auto* item = new QListWidgetItem(error, list_);
    item->setForeground(QColor(0xC6, 0x28, 0x28));
  }
  status_->setText(findings.isEmpty() && error.isEmpty() ? ui("ui.findings.none")
                                                         : ui("ui.findings.count").arg(findings.size()));
}

void FindingsPanel::clear() {
  list_->clear();
  status_->setText(ui("ui.findings.not_run"));
}

QString FindingsPanel::statusText() const { return status_->text(); }

}  // namespace modelyne::shell
