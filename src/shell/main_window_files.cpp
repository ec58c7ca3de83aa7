// The open project: new, open, save, models, undo and redo, and keeping
// the panels and the title in step with the document.
#include <QApplication>
#include <QDockWidget>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QMenu>
#include <QMessageBox>

#include "shell/autosave.h"
#include "shell/busy_indicator.h"
#include "shell/command_table.h"
#include "shell/canvas_view.h"
#include "shell/dialogs/report_dialog.h"
#include "shell/find_dialog.h"
#include "shell/findings_panel.h"
#include "shell/i18n/strings.h"
#include "shell/main_window.h"
#include "shell/model_tree.h"
#include "shell/output_log.h"
#include "shell/palette_panel.h"
#include "shell/property_panel.h"
#include "shell/review_session.h"
#include "shell/settings.h"
#include "shell/start_page.h"

namespace modelyne::shell {

void MainWindow::setSession(std::unique_ptr<ProjectSession> session) {
  // The panels hold handles into the documents about to go.
  commitPendingEdits();
  properties_->showElement(nullptr, {});
  if (session_) autosave_->discard(*session_);
  review_->clear();
  session_ = std::move(session);
  findings_->clear();
  modelTree_->setSession(session_.get());
  updateCommandStates();
  if (!session_) {
    canvas_->setDocument(nullptr);
    properties_->showElement(nullptr, {});
    updateTitle();
    return;
  }
  activateModel(session_->activeIndex());
  canvas_->fitToContentWhenShown();
}

void MainWindow::activateModel(int index) {
  if (!session_) return;
  session_->setActive(index);
  canvas_->setDocument(session_->document());
  canvas_->setPlacementType(std::nullopt);
  palette_->setKind(session_->kind());
  canvas_->setEdgeType(palette_->edgeType());
  properties_->showElement(session_->document(), {});
  modelTree_->setSession(session_.get());
  findings_->clear();
  updateTitle();
}

bool MainWindow::newProject(core::DiagramKind kind) {
  if (!maybeSave()) return false;
  setSession(ProjectSession::createNew(kind));
  hideStartPage();
  canvas_->zoomActualSize();
  logMessage(ui("ui.log.new_project").arg(ui(core::diagramKindMessageKey(kind))));
  return true;
}

bool MainWindow::openFile(const QString& path) {
  if (!maybeSave()) return false;
  QString error;
  std::unique_ptr<ProjectSession> s;
  {
    BusyIndicator busy(this, ui("ui.log.opening").arg(QDir::toNativeSeparators(path)));
    s = ProjectSession::open(path, &error);
  }
  if (!s) {
    logMessage(ui("ui.msg.open_failed").arg(QDir::toNativeSeparators(path), error));
    if (!QFileInfo::exists(path)) settings::removeRecentFile(path);
    updateRecentMenu();
    return false;
  }
  for (const QString& line : s->openLog()) logMessage(line);
  setSession(std::move(s));
  settings::addRecentFile(path);
  updateRecentMenu();
  hideStartPage();
  logMessage(ui("ui.log.opened").arg(QDir::toNativeSeparators(path)));
  // A recovery copy newer than the file means the editor stopped with
  // unsaved changes: offer them back, never write them over the file.
  if (auto recovered = autosave_->recoveryFor(path)) {
    const bool restore = !interactive_ ? false
                         : QMessageBox::question(this, ui("ui.dlg.recover.title"), ui("ui.dlg.recover.text").arg(path)) ==
                               QMessageBox::Yes;
    if (restore) {
      QString err;
      if (auto rs = ProjectSession::fromText(*recovered, &err)) {
        rs->setPath(path);
        rs->markDirectEdit();  // differs from the file until saved
        setSession(std::move(rs));
        logMessage(ui("ui.log.recovered").arg(path));
      }
    } else {
      autosave_->discard(*session_);
    }
  }
  return true;
}

void MainWindow::restoreUntitled(const std::string& text) {
  QString error;
  auto s = ProjectSession::fromText(text, &error);
  if (!s) {
    logMessage(ui("ui.msg.open_failed").arg(ui("ui.title.untitled"), error));
    return;
  }
  s->markDirectEdit();
  setSession(std::move(s));
  hideStartPage();
  logMessage(ui("ui.log.recovered").arg(ui("ui.title.untitled")));
}

bool MainWindow::save() {
  if (!session_) return false;
  if (session_->path().isEmpty()) {
    saveAsDialog();
    return session_ && !session_->modified();
  }
  return saveAs(session_->path());
}

bool MainWindow::saveAs(const QString& path) {
  if (!session_) return false;
  QString error;
  autosave_->discard(*session_);
  if (!session_->saveAs(path, &error)) {
    logMessage(ui("ui.msg.file_write_failed").arg(QDir::toNativeSeparators(path), error));
    if (interactive_) QMessageBox::warning(this, ui("ui.dlg.save_failed"), error);
    return false;
  }
  settings::addRecentFile(path);
  updateRecentMenu();
  updateTitle();
  logMessage(ui("ui.log.saved").arg(QDir::toNativeSeparators(path)));
  return true;
}

void MainWindow::saveAsDialog() {
  if (!session_) return;
  const QString path = QFileDialog::getSaveFileName(this, ui("ui.menu.file.save_as"), session_->path(),
                                                    ui("ui.filter.model"));
  if (path.isEmpty()) return;
  saveAs(path.endsWith(QLatin1String(".xml"), Qt::CaseInsensitive) ? path : path + QStringLiteral(".xml"));
}

void MainWindow::openDialog() {
  const QString path = QFileDialog::getOpenFileName(this, ui("ui.menu.file.open"), QString(), ui("ui.filter.model"));
  if (!path.isEmpty()) openFile(path);
}

bool MainWindow::closeProject() {
  if (!maybeSave()) return false;
  setSession(nullptr);
  showStartPage();
  return true;
}

bool MainWindow::maybeSave() {
  if (!session_ || !session_->modified()) return true;
  if (!interactive_) return true;
  const QString name = session_->path().isEmpty() ? ui("ui.title.untitled") : QFileInfo(session_->path()).fileName();
  const auto answer = QMessageBox::warning(this, ui("ui.dlg.unsaved.title"), ui("ui.dlg.unsaved.text").arg(name),
                                           QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel,
                                           QMessageBox::Save);
  if (answer == QMessageBox::Cancel) return false;
  if (answer == QMessageBox::Save) return save();
  autosave_->discard(*session_);
  return true;
}

void MainWindow::updateTitle() {
  QString title = QStringLiteral("Modelyne");
  if (session_) {
    const QString file = session_->path().isEmpty() ? ui("ui.title.untitled") : QFileInfo(session_->path()).fileName();
    title = file + QStringLiteral("[*] - ") + QString::fromStdString(session_->model(session_->activeIndex()).name) +
            QStringLiteral(" - Modelyne");
  }
  setWindowTitle(title);
  setWindowModified(session_ && session_->modified());
  updateCommandStates();
}

void MainWindow::updateRecentMenu() {
  recentMenu_->clear();
  const QStringList files = settings::recentFiles();
  for (const QString& f : files)
    recentMenu_->addAction(QDir::toNativeSeparators(f), this, [this, f] { openFile(f); });
  recentMenu_->setEnabled(!files.isEmpty());
  startPage_->setRecentFiles(files);
}

void MainWindow::onDocumentEdited() {
  if (!session_) return;
  canvas_->documentChanged();
  properties_->refresh();
  modelTree_->scheduleRefresh();
  autosave_->noteChange();
  updateTitle();
}

void MainWindow::onSelectionChanged() {
  if (!session_) return;
  QString id;
  if (canvas_->selectedNodes().size() == 1 && canvas_->selectedEdges().isEmpty()) id = *canvas_->selectedNodes().begin();
  else if (canvas_->selectedEdges().size() == 1 && canvas_->selectedNodes().isEmpty()) id = *canvas_->selectedEdges().begin();
  if (id != properties_->elementId()) {
    properties_->commitPending();
    properties_->showElement(session_->document(), id);
  }
  modelTree_->showSelection(id);
}

void MainWindow::undo() {
  if (!session_) return;
  try {
    bridge::undo(session_->document());
  } catch (const bridge::BridgeError& e) {
    logMessage(QString::fromUtf8(e.what()));
  }
  onDocumentEdited();
}

void MainWindow::redo() {
  if (!session_) return;
  try {
    bridge::redo(session_->document());
  } catch (const bridge::BridgeError& e) {
    logMessage(QString::fromUtf8(e.what()));
  }
  onDocumentEdited();
}

void MainWindow::renameSelection() {
  if (canvas_->selectedNodes().size() == 1) canvas_->editLabel(*canvas_->selectedNodes().begin());
  else if (canvas_->selectedEdges().size() == 1) canvas_->editLabel(*canvas_->selectedEdges().begin());
}

void MainWindow::findDialog() {
  if (!session_) return;
  auto* dlg = new FindDialog(*session_->document(), this);
  dlg->setAttribute(Qt::WA_DeleteOnClose);
  connect(dlg, &FindDialog::revealRequested, this, &MainWindow::reveal);
  dlg->open();
}

void MainWindow::reveal(const QString& id) {
  hideStartPage();
  canvas_->reveal(id);
  modelTree_->showSelection(id);
  canvas_->setFocus();
}

void MainWindow::showProperties() {
  QDockWidget* dock = docks_.value(QStringLiteral("properties"));
  dock->show();
  dock->raise();
  properties_->focusFirstField();
}

void MainWindow::showShortcuts() {
  QString text;
  for (const Command& c : commands_) {
    const QString keys = shortcutText(c.action);
    if (!keys.isEmpty()) text += QStringLiteral("%1\t%2\n").arg(withoutMnemonic(c.action->text()), -36).arg(keys);
  }
  auto* dlg = new ReportDialog(withoutMnemonic(ui("ui.menu.help.shortcuts")), text, this);
  dlg->setObjectName(QStringLiteral("shortcutsDialog"));
  dlg->setAttribute(Qt::WA_DeleteOnClose);
  if (interactive_) dlg->open();
  else dlg->show();
}

void MainWindow::showAbout() {
  if (interactive_) QMessageBox::about(this, withoutMnemonic(ui("ui.menu.help.about")), ui("ui.msg.about"));
  else logMessage(ui("ui.msg.about"));
}

void MainWindow::showContextMenu(unsigned place, const QPoint& globalPos) {
  updateCommandStates();
  contextMenu(place)->popup(globalPos);
}

void MainWindow::addModelDialog() {
  if (!session_) return;
  QStringList kinds;
  for (core::DiagramKind k : core::allDiagramKinds()) kinds << ui(core::diagramKindMessageKey(k));
  bool ok = true;
  int choice = static_cast<int>(session_->kind());
  if (interactive_) {
    const QString picked = QInputDialog::getItem(this, ui("ui.menu.model.add"), ui("ui.dlg.model.kind"), kinds,
                                                 choice, false, &ok);
    choice = static_cast<int>(kinds.indexOf(picked));
  }
  if (!ok || choice < 0) return;
  const int index = session_->addModel(static_cast<core::DiagramKind>(choice));
  activateModel(index);
  logMessage(ui("ui.log.model_added").arg(QString::fromStdString(session_->model(index).name)));
}

void MainWindow::renameModel(int index) {
  if (!session_ || index < 0 || index >= session_->modelCount()) return;
  bool ok = false;
  const QString name = QInputDialog::getText(this, ui("ui.menu.model.rename"), ui("ui.dlg.model.name"),
                                             QLineEdit::Normal, QString::fromStdString(session_->model(index).name), &ok);
  if (!ok || name.trimmed().isEmpty()) return;
  session_->renameModel(index, name.trimmed());
  modelTree_->setSession(session_.get());
  updateTitle();
}

void MainWindow::deleteModel(int index) {
  if (!session_) return;
  if (session_->modelCount() <= 1) {
    logMessage(ui(core::kMsgDiagMinOne));
    if (interactive_) QMessageBox::information(this, ui("ui.menu.model.delete"), ui(core::kMsgDiagMinOne));
    return;
  }
  const QString name = QString::fromStdString(session_->model(index).name);
  if (interactive_ && QMessageBox::question(this, ui("ui.menu.model.delete"), ui("ui.dlg.model.delete_confirm").arg(name)) !=
                          QMessageBox::Yes)
    return;
  commitPendingEdits();
  properties_->showElement(nullptr, {});  // it may show the model that goes
  session_->deleteModel(index);
  activateModel(session_->activeIndex());
  logMessage(ui("ui.log.model_deleted").arg(name));
}

}  // namespace modelyne::shell
