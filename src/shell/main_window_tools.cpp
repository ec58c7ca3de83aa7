// Commands that read or generate diagram content: validate, assessment,
// explanation, parametric evaluation, AI Generate with review, export,
// and the command palette.
#include <QDockWidget>
#include <QFileDialog>
#include <QFileInfo>

#include "ai/generate_flow.h"
#include "check/assessment.h"
#include "check/validate.h"
#include "explain/explain.h"
#include "render/export_diagram.h"
#include "shell/canvas_view.h"
#include "shell/command_palette.h"
#include "shell/dialogs/ai_generate_dialog.h"
#include "shell/dialogs/explain_dialog.h"
#include "shell/dialogs/parametric_dialog.h"
#include "shell/dialogs/report_dialog.h"
#include "shell/dialogs/review_dialog.h"
#include "shell/findings_panel.h"
#include "shell/i18n/strings.h"
#include "shell/main_window.h"
#include "shell/review_session.h"
#include "shell/settings.h"
#include "sim/propagation.h"
#include "sim/write_back.h"

namespace modelyne::shell {
namespace {

namespace par = core::sim::parametric;

QString native(const QString& path) { return QDir::toNativeSeparators(path); }

}  // namespace

void MainWindow::validate() { showFindings(nullptr); }

void MainWindow::validateSelection() {
  QSet<QString> only = canvas_->selectedNodes();
  only.unite(canvas_->selectedEdges());
  if (only.isEmpty()) validate();
  else showFindings(&only);
}

void MainWindow::showFindings(const QSet<QString>* only) {
  if (!session_) {
    logMessage(ui("ui.msg.no_document"));
    return;
  }
  std::vector<std::string> found;
  QString error;
  try {
    check::validateDiagram(*session_->document(), session_->kind(), found);
  } catch (const std::exception& e) {
    // A malformed "numOperands" stops the checker; what it found so far stays.
    error = ui("ui.msg.validate_stopped").arg(QString::fromUtf8(e.what()));
  }
  QStringList findings;
  for (const std::string& f : found) {
    const QString text = QString::fromStdString(f);
    if (!only || only->contains(FindingsPanel::elementOf(text, *session_->document()))) findings << text;
  }
  findings_->showFindings(findings, session_->document(), error);
  docks_.value(QStringLiteral("findings"))->show();
  docks_.value(QStringLiteral("findings"))->raise();
  logMessage(ui(only ? "ui.log.validated_selection" : "ui.log.validated").arg(findings.size()));
  if (!error.isEmpty()) logMessage(error);
}

void MainWindow::showAssessment() {
  if (!session_) {
    logMessage(ui("ui.msg.no_document"));
    return;
  }
  const auto* doc = session_->document();
  const std::string report = check::formatAssessment(check::computeAssessment(doc->nodes(), doc->edges()));
  logMessage(ui("ui.log.assessed"));
  auto* dlg = new ReportDialog(ui("ui.dlg.assessment.title"), QString::fromStdString(report), this);
  dlg->setAttribute(Qt::WA_DeleteOnClose);
  if (interactive_) dlg->open();
  else dlg->show();
}

void MainWindow::showExplanation() {
  if (!session_) {
    logMessage(ui("ui.msg.no_document"));
    return;
  }
  const auto* doc = session_->document();
  const std::string md = explain::renderMarkdown(explain::explainDiagram(doc->nodes(), doc->edges()));
  auto* dlg = new ExplainDialog(md, this);
  dlg->setAttribute(Qt::WA_DeleteOnClose);
  connect(dlg, &ExplainDialog::exported, this, [this](const QString& path, bool ok, const QString& error) {
    if (ok) logMessage(ui("ui.log.exported_to").arg(native(path)));
    else logMessage(ui("ui.msg.file_write_failed_kind").arg(QFileInfo(path).suffix().toUpper(), native(path), error));
  });
  logMessage(ui("ui.log.explained"));
  if (interactive_) dlg->open();
  else dlg->show();
}

void MainWindow::evaluateParametric() {
  if (!session_) {
    logMessage(ui("ui.msg.no_document"));
    return;
  }
  const par::PropagationResult result = par::propagate(*session_->document());
  std::size_t known = 0;
  for (const auto& v : result.values) known += v.known;
  logMessage(ui("ui.log.par_evaluated").arg(known).arg(result.values.size()).arg(result.equations.size()));
  for (const auto& e : result.errors)
    logMessage(ui("ui.dlg.par.problem").arg(QString::fromStdString(e.nodeId), QString::fromStdString(e.message)));
  auto* dlg = new ParametricDialog(result, this);
  dlg->setAttribute(Qt::WA_DeleteOnClose);
  connect(dlg, &ParametricDialog::writeBackRequested, this, [this, result] {
    if (!session_) return;
    try {
      const std::size_t n = par::writeBackValues(session_->document(), result);
      logMessage(ui("ui.log.par_written").arg(n));
      if (n > 0) onDocumentEdited();
    } catch (const std::exception& e) {
      logMessage(QString::fromUtf8(e.what()));
    }
  });
  if (interactive_) dlg->open();
  else dlg->show();
}

bool MainWindow::aiGenerate(const QString& prompt, const QString& backend) {
  ai::GenerateRequest req;
  req.document = session_ ? session_->document() : nullptr;
  req.startPageShown = startPageShown();
  req.prompt = prompt.toStdString();
  req.backend = backend.toStdString();
  req.zoom = static_cast<float>(canvas_->zoom());
  if (session_) req.kind = session_->kind();
  const ai::GenerateResult result = ai::RunAiGenerate(req);
  for (const ai::LogEntry& e : result.log) {
    QString text = e.key.empty() ? QString() : ui(e.key);
    if (text.isEmpty() || text == QString::fromStdString(e.key)) text = QString::fromStdString(e.text);
    else if (text.contains(QLatin1String("%1"))) text = text.arg(QString::fromStdString(e.arg));
    logMessage(text);
  }
  if (!result.applied) return false;
  onDocumentEdited();
  if (result.view) {
    canvas_->setZoom(result.view->zoom);
    canvas_->fitTo(QRectF(QPointF(result.view->minX, result.view->minY), QPointF(result.view->maxX, result.view->maxY)));
    if (canvas_->zoom() > 1.0) canvas_->setZoom(1.0);
    canvas_->centreOn(QPointF(result.view->centerX, result.view->centerY));
  }
  review_->start(session_->document(), result.nodeIds, result.edgeIds);
  QSet<QString> nodes, edges;
  for (const auto& id : result.nodeIds) nodes.insert(QString::fromStdString(id));
  for (const auto& id : result.edgeIds) edges.insert(QString::fromStdString(id));
  canvas_->setSelection(nodes, edges);
  logMessage(ui("ui.log.review_pending").arg(result.nodeIds.size() + result.edgeIds.size()));
  return true;
}

void MainWindow::aiGenerateDialog() {
  AiGenerateDialog dlg(aiPromptDraft_, settings::aiBackend(), false, this);
  if (dlg.exec() != QDialog::Accepted) return;
  aiPromptDraft_ = dlg.prompt();
  settings::setAiBackend(dlg.backend());
  if (aiGenerate(dlg.prompt(), dlg.backend())) reviewDialog();
}

void MainWindow::reviewDialog() {
  review_->refresh();
  if (!review_->active() || !session_ || review_->document() != session_->document()) {
    logMessage(ui("ui.msg.review_nothing"));
    return;
  }
  auto* dlg = new ReviewDialog(*review_, this);
  dlg->setAttribute(Qt::WA_DeleteOnClose);
  connect(dlg, &ReviewDialog::decided, this, [this](const QString& record) {
    logMessage(ui("ui.log.review_decided").arg(QString(record).replace(QStringLiteral("\r\n"), QStringLiteral(" / "))));
    onDocumentEdited();
  });
  connect(dlg, &ReviewDialog::revealRequested, this, [this](const QString& id) { canvas_->reveal(id); });
  dlg->show();
}

bool MainWindow::exportTo(const QString& path) {
  if (!session_) {
    logMessage(ui("ui.msg.no_document"));
    return false;
  }
  const render::ExportResult r = render::exportDiagram(path.toStdString(), *session_->document());
  if (!r.format) {
    logMessage(ui("ui.msg.file_write_failed_kind")
                   .arg(QFileInfo(path).suffix().toUpper(), native(path), ui("ui.msg.unknown_format")));
    return false;
  }
  if (!r.notes.reducedScale.empty()) logMessage(QString::fromStdString(r.notes.reducedScale));
  const QString kind = QString::fromUtf8(r.format->name.data(), static_cast<qsizetype>(r.format->name.size()));
  if (r.ok) logMessage(ui("ui.log.exported_to").arg(native(path)));
  else logMessage(ui("ui.msg.file_write_failed_kind").arg(kind, native(path), QString::fromStdString(r.error)));
  return r.ok;
}

void MainWindow::exportDialog(const QString& format) {
  if (!session_) return;
  const QString filterKey = QStringLiteral("ui.filter.") + format;
  QString base = session_->path().isEmpty() ? ui("ui.title.untitled") : QFileInfo(session_->path()).completeBaseName();
  if (!session_->path().isEmpty()) base = QFileInfo(session_->path()).dir().filePath(base);
  QString path = QFileDialog::getSaveFileName(this, ui("ui.menu.file.export"), base + QLatin1Char('.') + format,
                                              ui(filterKey.toStdString()));
  if (path.isEmpty()) return;
  if (QFileInfo(path).suffix().isEmpty()) path += QLatin1Char('.') + format;
  exportTo(path);
}

void MainWindow::commandPalette() {
  CommandPalette palette(allCommands(), this);
  palette.exec();
}

}  // namespace modelyne::shell
