// Construction of the main window: panels, commands, menus, toolbar and
// their texts.
#include "shell/main_window.h"

#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QDockWidget>
#include <QLabel>
#include <QMenuBar>
#include <QStackedWidget>
#include <QStatusBar>
#include <QToolBar>
#include <QTreeWidget>

#include "shell/autosave.h"
#include "shell/canvas_view.h"
#include "shell/findings_panel.h"
#include "shell/i18n/strings.h"
#include "shell/log_panel.h"
#include "shell/model_tree.h"
#include "shell/output_log.h"
#include "shell/palette_panel.h"
#include "shell/property_panel.h"
#include "shell/review_session.h"
#include "shell/settings.h"
#include "shell/start_page.h"
#include "shell/themes.h"

namespace modelyne::shell {

MainWindow::MainWindow(const QString& dataFolder, QWidget* parent) : QMainWindow(parent) {
  setObjectName(QStringLiteral("mainWindow"));
  log_ = new OutputLog(dataFolder, this);
  autosave_ = std::make_unique<AutosaveManager>(dataFolder);
  review_ = std::make_unique<ReviewSession>();

  stack_ = new QStackedWidget(this);
  startPage_ = new StartPage(this);
  canvas_ = new CanvasView(this);
  canvas_->setObjectName(QStringLiteral("canvas"));
  stack_->addWidget(startPage_);
  stack_->addWidget(canvas_);
  setCentralWidget(stack_);

  buildDocks();
  buildCommands();

  zoomLabel_ = new QLabel(this);
  statusLabel_ = new QLabel(this);
  statusBar()->addWidget(statusLabel_, 1);
  statusBar()->addPermanentWidget(zoomLabel_);

  connect(canvas_, &CanvasView::edited, this, &MainWindow::onDocumentEdited);
  connect(canvas_, &CanvasView::selectionChanged, this, &MainWindow::onSelectionChanged);
  connect(canvas_, &CanvasView::message, this, &MainWindow::logMessage);
  connect(canvas_, &CanvasView::zoomChanged, this,
          [this](double z) { zoomLabel_->setText(QStringLiteral("%1%").arg(qRound(z * 100))); });
  connect(canvas_, &CanvasView::placementDone, this, [this] { palette_->tree()->clearSelection(); });
  connect(palette_, &PalettePanel::shapeChosen, this, [this](core::ShapeType t) { canvas_->setPlacementType(t); });
  connect(palette_, &PalettePanel::shapeActivated, this, [this](core::ShapeType t) {
    canvas_->setPlacementType(std::nullopt);
    canvas_->placeNode(t, canvas_->visibleSceneRect().center());
  });
  connect(palette_, &PalettePanel::edgeTypeChanged, this, [this](core::EdgeType t) { canvas_->setEdgeType(t); });
  connect(properties_, &PropertyPanel::edited, this, &MainWindow::onDocumentEdited);
  connect(properties_, &PropertyPanel::message, this, &MainWindow::logMessage);
  connect(modelTree_, &ModelTree::modelActivated, this, &MainWindow::activateModel);
  connect(modelTree_, &ModelTree::nodeSelected, this, [this](const QString& id) { canvas_->reveal(id); });
  connect(modelTree_, &ModelTree::elementMenuRequested, this, [this](const QString& id, const QPoint& at) {
    canvas_->reveal(id);
    showContextMenu(kOnNode, at);
  });
  connect(canvas_, &CanvasView::contextMenuRequested, this, &MainWindow::showContextMenu);
  connect(modelTree_, &ModelTree::addModelRequested, this, &MainWindow::addModelDialog);
  connect(modelTree_, &ModelTree::renameModelRequested, this, &MainWindow::renameModel);
  connect(modelTree_, &ModelTree::deleteModelRequested, this, &MainWindow::deleteModel);
  connect(findings_, &FindingsPanel::revealRequested, this, [this](const QString& id) {
    hideStartPage();
    canvas_->reveal(id);
    canvas_->setFocus();
  });
  connect(startPage_, &StartPage::newProjectRequested, this, [this](core::DiagramKind k) { newProject(k); });
  connect(startPage_, &StartPage::openRequested, this, &MainWindow::openDialog);
  connect(startPage_, &StartPage::fileRequested, this, [this](const QString& path) { openFile(path); });
  connect(startPage_, &StartPage::dismissRequested, this, &MainWindow::hideStartPage);
  connect(log_, &OutputLog::messageLogged, this, [this](const QString& line) { statusLabel_->setText(line); });
  connect(autosave_.get(), &AutosaveManager::due, this, [this] {
    if (session_) autosave_->store(*session_);
  });

  retranslate();
  resize(1400, 900);
  restoreGeometry(settings::windowGeometry());
  restoreState(settings::windowState());
  setSession(nullptr);
  showStartPage();
}

MainWindow::~MainWindow() {
  // The panels hold handles into the session's documents, and their fields
  // still report focus changes while Qt takes the window down: let go first.
  properties_->showElement(nullptr, {});
  canvas_->setDocument(nullptr);
  modelTree_->setSession(nullptr);
  review_->clear();
}

void MainWindow::buildDocks() {
  auto dock = [this](const QString& name, QWidget* w, Qt::DockWidgetArea area) {
    auto* d = new QDockWidget(this);
    d->setObjectName(QStringLiteral("dock.") + name);
    d->setWidget(w);
    addDockWidget(area, d);
    docks_.insert(name, d);
    return d;
  };
  palette_ = new PalettePanel(this);
  modelTree_ = new ModelTree(this);
  properties_ = new PropertyPanel(this);
  logPanel_ = new LogPanel(*log_, this);
  findings_ = new FindingsPanel(this);
  dock(QStringLiteral("palette"), palette_, Qt::LeftDockWidgetArea);
  dock(QStringLiteral("models"), modelTree_, Qt::LeftDockWidgetArea);
  dock(QStringLiteral("properties"), properties_, Qt::RightDockWidgetArea);
  QDockWidget* logDock = dock(QStringLiteral("log"), logPanel_, Qt::BottomDockWidgetArea);
  QDockWidget* findDock = dock(QStringLiteral("findings"), findings_, Qt::BottomDockWidgetArea);
  tabifyDockWidget(logDock, findDock);
  logDock->raise();
  resizeDocks({docks_.value(QStringLiteral("palette")), docks_.value(QStringLiteral("properties"))}, {250, 300},
              Qt::Horizontal);
  resizeDocks({logDock}, {160}, Qt::Vertical);
}

void MainWindow::retranslate() {
  retranslateCommands();
  const std::pair<const char*, const char*> dockKeys[] = {
      {"palette", "ui.dock.palette"}, {"models", "ui.dock.models"}, {"properties", "ui.dock.properties"},
      {"log", "ui.dock.log"}, {"findings", "ui.dock.findings"}};
  for (const auto& [name, key] : dockKeys) docks_.value(QLatin1String(name))->setWindowTitle(ui(key));
  palette_->retranslate();
  properties_->retranslate();
  startPage_->retranslate();
  modelTree_->setSession(session_.get());
  updateRecentMenu();
  updateTitle();
}

bool MainWindow::startPageShown() const { return stack_->currentWidget() == startPage_; }

void MainWindow::showStartPage() {
  startPage_->setRecentFiles(settings::recentFiles());
  stack_->setCurrentWidget(startPage_);
}

void MainWindow::hideStartPage() {
  if (!session_) return;  // nothing to show behind it
  stack_->setCurrentWidget(canvas_);
  canvas_->setFocus();
}

void MainWindow::logMessage(const QString& text) { log_->log(text); }

void MainWindow::commitPendingEdits() {
  if (!session_) return;
  canvas_->finishLabelEdit();
  properties_->commitPending();
}

void MainWindow::applyLanguage(const QString& code) {
  i18n::setLanguage(code);
  settings::setLanguage(code);
  retranslate();
  updateCommandStates();
  logMessage(ui("ui.log.language_changed").arg(code));
}

void MainWindow::applyThemeKey(const QString& key) {
  applyTheme(*qApp, key);
  settings::setTheme(currentTheme());
  updateCommandStates();
  canvas_->documentChanged();
  canvas_->update();
}

void MainWindow::closeEvent(QCloseEvent* ev) {
  commitPendingEdits();
  if (!maybeSave()) {
    ev->ignore();
    return;
  }
  settings::setWindowLayout(saveGeometry(), saveState());
  if (session_) autosave_->discard(*session_);
  ev->accept();
}

}  // namespace modelyne::shell
