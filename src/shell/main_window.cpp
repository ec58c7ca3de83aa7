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
namespace {

// Alignment axes in the order of the bridge's axis numbers.
constexpr const char* kAlignNames[] = {"left", "hcenter", "right", "top", "vmiddle", "bottom"};

}  // namespace

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
  buildActions();
  buildMenus();
  buildToolbar();

  zoomLabel_ = new QLabel(this);
  statusLabel_ = new QLabel(this);
  statusBar()->addWidget(statusLabel_, 1);
  statusBar()->addPermanentWidget(zoomLabel_);

  connect(canvas_, &CanvasView::edited, this, &MainWindow::onDocumentEdited);
  connect(canvas_, &CanvasView::directEdit, this, &MainWindow::onDirectEdit);
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
  connect(properties_, &PropertyPanel::directEdit, this, &MainWindow::onDirectEdit);
  connect(properties_, &PropertyPanel::message, this, &MainWindow::logMessage);
  connect(modelTree_, &ModelTree::modelActivated, this, &MainWindow::activateModel);
  connect(modelTree_, &ModelTree::nodeSelected, this, [this](const QString& id) { canvas_->reveal(id); });
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

QAction* MainWindow::makeAction(const QString& name, const char* key, std::function<void()> fn,
                                QKeySequence shortcut) {
  auto* a = new QAction(this);
  a->setObjectName(QStringLiteral("action.") + name);
  if (!shortcut.isEmpty()) a->setShortcut(shortcut);
  connect(a, &QAction::triggered, this, [fn = std::move(fn)] { fn(); });
  actions_.insert(name, a);
  actionKeys_.insert(a, QByteArray(key));
  addAction(a);  // shortcuts work even when the menu bar is hidden
  return a;
}

QAction* MainWindow::makeAction(const QString& name, const char* key, void (MainWindow::*slot)(),
                                QKeySequence shortcut) {
  return makeAction(name, key, [this, slot] { (this->*slot)(); }, shortcut);
}

void MainWindow::buildActions() {
  using K = QKeySequence;
  for (core::DiagramKind kind : core::allDiagramKinds()) {
    const std::string k(core::diagramKindKey(kind));
    auto* a = makeAction(QStringLiteral("file.new.") + QString::fromStdString(k), "",
                         [this, kind] { newProject(kind); });
    actionKeys_[a] = QByteArray::fromStdString(core::diagramKindMessageKey(kind));
    if (kind == core::DiagramKind::bdd) a->setShortcut(K::New);
  }
  makeAction(QStringLiteral("file.open"), "ui.menu.file.open", &MainWindow::openDialog, K::Open);
  makeAction(QStringLiteral("file.save"), "ui.menu.file.save", [this] { save(); }, K::Save);
  makeAction(QStringLiteral("file.save_as"), "ui.menu.file.save_as", &MainWindow::saveAsDialog, K::SaveAs);
  makeAction(QStringLiteral("file.export.svg"), "ui.menu.file.export_svg", [this] { exportDialog(QStringLiteral("svg")); });
  makeAction(QStringLiteral("file.export.pdf"), "ui.menu.file.export_pdf", [this] { exportDialog(QStringLiteral("pdf")); });
  makeAction(QStringLiteral("file.export.png"), "ui.menu.file.export_png", [this] { exportDialog(QStringLiteral("png")); });
  makeAction(QStringLiteral("file.export.jpeg"), "ui.menu.file.export_jpeg", [this] { exportDialog(QStringLiteral("jpg")); });
  makeAction(QStringLiteral("file.close"), "ui.menu.file.close", [this] { closeProject(); }, K::Close);
  makeAction(QStringLiteral("file.quit"), "ui.menu.file.quit", [this] { close(); }, K::Quit);

  makeAction(QStringLiteral("edit.undo"), "ui.menu.edit.undo", &MainWindow::undo, K::Undo);
  makeAction(QStringLiteral("edit.redo"), "ui.menu.edit.redo", &MainWindow::redo, K::Redo);
  makeAction(QStringLiteral("edit.cut"), "ui.menu.edit.cut", [this] { canvas_->cutSelection(); }, K::Cut);
  makeAction(QStringLiteral("edit.copy"), "ui.menu.edit.copy", [this] { canvas_->copySelection(); }, K::Copy);
  makeAction(QStringLiteral("edit.paste"), "ui.menu.edit.paste", [this] { canvas_->paste(); }, K::Paste);
  makeAction(QStringLiteral("edit.duplicate"), "ui.menu.edit.duplicate", [this] { canvas_->duplicateSelection(); },
             K(Qt::CTRL | Qt::Key_D));
  makeAction(QStringLiteral("edit.delete"), "ui.menu.edit.delete", [this] { canvas_->deleteSelection(); }, K::Delete);
  makeAction(QStringLiteral("edit.select_all"), "ui.menu.edit.select_all", [this] { canvas_->selectAll(); }, K::SelectAll);
  makeAction(QStringLiteral("edit.rename"), "ui.menu.edit.rename", [this] {
    if (canvas_->selectedNodes().size() == 1) canvas_->editLabel(*canvas_->selectedNodes().begin());
    else if (canvas_->selectedEdges().size() == 1) canvas_->editLabel(*canvas_->selectedEdges().begin());
  }, K(Qt::Key_F2));

  makeAction(QStringLiteral("view.zoom_in"), "ui.menu.view.zoom_in", [this] { canvas_->zoomIn(); }, K::ZoomIn);
  makeAction(QStringLiteral("view.zoom_out"), "ui.menu.view.zoom_out", [this] { canvas_->zoomOut(); }, K::ZoomOut);
  makeAction(QStringLiteral("view.fit"), "ui.menu.view.fit", [this] { canvas_->fitToContent(); }, K(Qt::CTRL | Qt::Key_0));
  makeAction(QStringLiteral("view.actual_size"), "ui.menu.view.actual_size", [this] { canvas_->zoomActualSize(); },
             K(Qt::CTRL | Qt::Key_1));
  QAction* grid = makeAction(QStringLiteral("view.grid"), "ui.menu.view.grid", [this] {
    canvas_->setGridVisible(action(QStringLiteral("view.grid"))->isChecked());
  }, K(Qt::CTRL | Qt::Key_Apostrophe));
  grid->setCheckable(true);
  grid->setChecked(true);
  QAction* snap = makeAction(QStringLiteral("view.snap"), "ui.menu.view.snap", [this] {
    canvas_->setSnapToGrid(action(QStringLiteral("view.snap"))->isChecked());
  }, K(Qt::CTRL | Qt::SHIFT | Qt::Key_Apostrophe));
  snap->setCheckable(true);
  snap->setChecked(true);
  makeAction(QStringLiteral("view.start_page"), "ui.menu.view.start_page", &MainWindow::showStartPage);
  makeAction(QStringLiteral("view.command_palette"), "ui.menu.view.command_palette", &MainWindow::commandPalette,
             K(Qt::CTRL | Qt::SHIFT | Qt::Key_P));

  for (int axis = 0; axis < 6; ++axis)
    makeAction(QStringLiteral("arrange.align.") + QLatin1String(kAlignNames[axis]),
               (std::string("ui.menu.arrange.align_") + kAlignNames[axis]).c_str(), [this, axis] { align(axis); },
               K(Qt::ALT | Qt::SHIFT | static_cast<Qt::Key>("LHRTMB"[axis])));
  makeAction(QStringLiteral("arrange.distribute.horizontal"), "ui.menu.arrange.distribute_h",
             [this] { distribute(0); }, K(Qt::ALT | Qt::SHIFT | Qt::Key_D));
  makeAction(QStringLiteral("arrange.distribute.vertical"), "ui.menu.arrange.distribute_v",
             [this] { distribute(1); }, K(Qt::ALT | Qt::SHIFT | Qt::Key_E));
  makeAction(QStringLiteral("arrange.flip.horizontal"), "ui.menu.arrange.flip_h", [this] { flip(0); },
             K(Qt::ALT | Qt::SHIFT | Qt::Key_F));
  makeAction(QStringLiteral("arrange.flip.vertical"), "ui.menu.arrange.flip_v", [this] { flip(1); },
             K(Qt::ALT | Qt::SHIFT | Qt::Key_G));
  makeAction(QStringLiteral("arrange.group"), "ui.menu.arrange.group", &MainWindow::group, K(Qt::CTRL | Qt::Key_G));
  makeAction(QStringLiteral("arrange.ungroup"), "ui.menu.arrange.ungroup", &MainWindow::ungroup,
             K(Qt::CTRL | Qt::SHIFT | Qt::Key_G));
  makeAction(QStringLiteral("arrange.front"), "ui.menu.arrange.front", [this] { reorder(0); },
             K(Qt::CTRL | Qt::SHIFT | Qt::Key_BracketRight));
  makeAction(QStringLiteral("arrange.back"), "ui.menu.arrange.back", [this] { reorder(1); },
             K(Qt::CTRL | Qt::SHIFT | Qt::Key_BracketLeft));
  makeAction(QStringLiteral("arrange.forward"), "ui.menu.arrange.forward", [this] { reorder(2); },
             K(Qt::CTRL | Qt::Key_BracketRight));
  makeAction(QStringLiteral("arrange.backward"), "ui.menu.arrange.backward", [this] { reorder(3); },
             K(Qt::CTRL | Qt::Key_BracketLeft));

  makeAction(QStringLiteral("model.add"), "ui.menu.model.add", &MainWindow::addModelDialog);
  makeAction(QStringLiteral("model.rename"), "ui.menu.model.rename", [this] {
    if (session_) renameModel(session_->activeIndex());
  });
  makeAction(QStringLiteral("model.delete"), "ui.menu.model.delete", [this] {
    if (session_) deleteModel(session_->activeIndex());
  });

  makeAction(QStringLiteral("tools.validate"), "ui.menu.tools.validate", &MainWindow::validate, K(Qt::Key_F7));
  makeAction(QStringLiteral("tools.assessment"), "ui.menu.tools.assessment", &MainWindow::showAssessment,
             K(Qt::SHIFT | Qt::Key_F7));
  makeAction(QStringLiteral("tools.explain"), "ui.menu.tools.explain", &MainWindow::showExplanation,
             K(Qt::Key_F8));
  makeAction(QStringLiteral("tools.parametric"), "ui.menu.tools.parametric", &MainWindow::evaluateParametric,
             K(Qt::Key_F9));
  makeAction(QStringLiteral("tools.ai_generate"), "ui.menu.tools.ai_generate", &MainWindow::aiGenerateDialog,
             K(Qt::CTRL | Qt::SHIFT | Qt::Key_I));
  makeAction(QStringLiteral("tools.review"), "ui.menu.tools.review", &MainWindow::reviewDialog,
             K(Qt::CTRL | Qt::SHIFT | Qt::Key_R));

  auto* langGroup = new QActionGroup(this);
  for (const i18n::Language& l : i18n::languages()) {
    const QString code = QLatin1String(l.code);
    QAction* a = makeAction(QStringLiteral("settings.language.") + code, "", [this, code] { applyLanguage(code); });
    a->setText(QString::fromUtf8(l.nativeName));
    a->setCheckable(true);
    a->setChecked(code == i18n::currentLanguage());
    langGroup->addAction(a);
    actionKeys_.remove(a);  // languages are shown in their own names
  }
  auto* themeGroup = new QActionGroup(this);
  for (const QString& key : themeKeys()) {
    QAction* a = makeAction(QStringLiteral("settings.theme.") + key.section(QLatin1Char('.'), -1), "",
                            [this, key] { applyThemeKey(key); });
    actionKeys_[a] = key.toUtf8();
    a->setCheckable(true);
    a->setChecked(key == currentTheme());
    themeGroup->addAction(a);
  }
  auto* backendGroup = new QActionGroup(this);
  for (const char* backend : {"offline", "cloud"}) {
    const QString b = QLatin1String(backend);
    QAction* a = makeAction(QStringLiteral("settings.ai.") + b, "", [b] { settings::setAiBackend(b); });
    actionKeys_[a] = QByteArray("ui.ai.backend_") + backend;
    a->setCheckable(true);
    a->setChecked(settings::aiBackend() == b);
    backendGroup->addAction(a);
  }
  makeAction(QStringLiteral("help.about"), "ui.menu.help.about", [this] {
    logMessage(ui("ui.msg.about"));
  });
}

void MainWindow::buildMenus() {
  auto menu = [this](QMenu* parent, const char* key) {
    QMenu* m = parent ? parent->addMenu(QString()) : menuBar()->addMenu(QString());
    menus_.append({m, QByteArray(key)});
    return m;
  };
  auto add = [this](QMenu* m, const QString& name) { m->addAction(action(name)); };

  QMenu* file = menu(nullptr, "ui.menu.file");
  QMenu* fileNew = menu(file, "ui.menu.file.new");
  for (core::DiagramKind kind : core::allDiagramKinds())
    add(fileNew, QStringLiteral("file.new.") + QString::fromUtf8(core::diagramKindKey(kind).data()));
  add(file, QStringLiteral("file.open"));
  recentMenu_ = menu(file, "ui.menu.file.recent");
  file->addSeparator();
  add(file, QStringLiteral("file.save"));
  add(file, QStringLiteral("file.save_as"));
  QMenu* exp = menu(file, "ui.menu.file.export");
  for (const char* f : {"svg", "pdf", "png", "jpeg"}) add(exp, QStringLiteral("file.export.") + QLatin1String(f));
  file->addSeparator();
  add(file, QStringLiteral("file.close"));
  add(file, QStringLiteral("file.quit"));

  QMenu* edit = menu(nullptr, "ui.menu.edit");
  for (const char* n : {"undo", "redo", "", "cut", "copy", "paste", "duplicate", "delete", "", "select_all", "rename"}) {
    if (!*n) edit->addSeparator();
    else add(edit, QStringLiteral("edit.") + QLatin1String(n));
  }

  QMenu* view = menu(nullptr, "ui.menu.view");
  for (const char* n : {"zoom_in", "zoom_out", "fit", "actual_size", "", "grid", "snap", "", "start_page", "command_palette"}) {
    if (!*n) view->addSeparator();
    else add(view, QStringLiteral("view.") + QLatin1String(n));
  }
  QMenu* panels = menu(view, "ui.menu.view.panels");
  for (const char* d : {"palette", "models", "properties", "log", "findings"})
    panels->addAction(docks_.value(QLatin1String(d))->toggleViewAction());

  QMenu* arrange = menu(nullptr, "ui.menu.arrange");
  QMenu* alignMenu = menu(arrange, "ui.menu.arrange.align");
  for (const char* n : kAlignNames) add(alignMenu, QStringLiteral("arrange.align.") + QLatin1String(n));
  QMenu* dist = menu(arrange, "ui.menu.arrange.distribute");
  add(dist, QStringLiteral("arrange.distribute.horizontal"));
  add(dist, QStringLiteral("arrange.distribute.vertical"));
  QMenu* flipMenu = menu(arrange, "ui.menu.arrange.flip");
  add(flipMenu, QStringLiteral("arrange.flip.horizontal"));
  add(flipMenu, QStringLiteral("arrange.flip.vertical"));
  arrange->addSeparator();
  add(arrange, QStringLiteral("arrange.group"));
  add(arrange, QStringLiteral("arrange.ungroup"));
  arrange->addSeparator();
  for (const char* n : {"front", "back", "forward", "backward"}) add(arrange, QStringLiteral("arrange.") + QLatin1String(n));

  QMenu* model = menu(nullptr, "ui.menu.model");
  for (const char* n : {"add", "rename", "delete"}) add(model, QStringLiteral("model.") + QLatin1String(n));

  QMenu* tools = menu(nullptr, "ui.menu.tools");
  for (const char* n : {"validate", "assessment", "explain", "parametric", "", "ai_generate", "review"}) {
    if (!*n) tools->addSeparator();
    else add(tools, QStringLiteral("tools.") + QLatin1String(n));
  }

  QMenu* settingsMenu = menu(nullptr, "ui.menu.settings");
  QMenu* lang = menu(settingsMenu, "ui.menu.settings.language");
  for (const i18n::Language& l : i18n::languages()) add(lang, QStringLiteral("settings.language.") + QLatin1String(l.code));
  QMenu* theme = menu(settingsMenu, "ui.menu.settings.theme");
  for (const QString& key : themeKeys()) add(theme, QStringLiteral("settings.theme.") + key.section(QLatin1Char('.'), -1));
  QMenu* ai = menu(settingsMenu, "ui.menu.settings.ai_backend");
  add(ai, QStringLiteral("settings.ai.offline"));
  add(ai, QStringLiteral("settings.ai.cloud"));

  QMenu* help = menu(nullptr, "ui.menu.help");
  add(help, QStringLiteral("help.about"));
}

void MainWindow::buildToolbar() {
  QToolBar* bar = addToolBar(QStringLiteral("main"));
  bar->setObjectName(QStringLiteral("toolbar.main"));
  bar->setToolButtonStyle(Qt::ToolButtonTextOnly);
  for (const char* n : {"file.open", "file.save", "", "edit.undo", "edit.redo", "", "view.zoom_in", "view.zoom_out",
                        "view.fit", "", "arrange.align.left", "arrange.align.top", "arrange.distribute.horizontal",
                        "arrange.group", "arrange.front", "arrange.back", "", "tools.validate", "tools.ai_generate"}) {
    if (!*n) bar->addSeparator();
    else bar->addAction(action(QLatin1String(n)));
  }
}

void MainWindow::retranslate() {
  for (auto it = actionKeys_.begin(); it != actionKeys_.end(); ++it) {
    if (it.value().isEmpty()) continue;
    it.key()->setText(ui(it.value().toStdString()));
    const QString tip = it.key()->shortcut().isEmpty()
                            ? it.key()->text()
                            : QStringLiteral("%1 (%2)").arg(it.key()->text(),
                                                            it.key()->shortcut().toString(QKeySequence::NativeText));
    it.key()->setToolTip(tip);
  }
  for (auto& [m, key] : menus_) m->setTitle(ui(key.toStdString()));
  const std::pair<const char*, const char*> dockKeys[] = {
      {"palette", "ui.dock.palette"}, {"models", "ui.dock.models"}, {"properties", "ui.dock.properties"},
      {"log", "ui.dock.log"}, {"findings", "ui.dock.findings"}};
  for (const auto& [name, key] : dockKeys) docks_.value(QLatin1String(name))->setWindowTitle(ui(key));
  palette_->retranslate();
  properties_->refresh();
  startPage_->retranslate();
  modelTree_->setSession(session_.get());
  updateRecentMenu();
  updateTitle();
}

QList<QAction*> MainWindow::allCommands() const {
  QList<QAction*> out;
  for (QAction* a : actions_)
    if (!a->text().isEmpty()) out.append(a);
  std::sort(out.begin(), out.end(), [](QAction* a, QAction* b) { return a->objectName() < b->objectName(); });
  return out;
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

void MainWindow::applyLanguage(const QString& code) {
  i18n::setLanguage(code);
  settings::setLanguage(code);
  if (QAction* a = action(QStringLiteral("settings.language.") + i18n::currentLanguage())) a->setChecked(true);
  retranslate();
  logMessage(ui("ui.log.language_changed").arg(code));
}

void MainWindow::applyThemeKey(const QString& key) {
  applyTheme(*qApp, key);
  settings::setTheme(currentTheme());
  if (QAction* a = action(QStringLiteral("settings.theme.") + key.section(QLatin1Char('.'), -1))) a->setChecked(true);
  canvas_->documentChanged();
  canvas_->update();
}

void MainWindow::closeEvent(QCloseEvent* ev) {
  if (!maybeSave()) {
    ev->ignore();
    return;
  }
  settings::setWindowLayout(saveGeometry(), saveState());
  if (session_) autosave_->discard(*session_);
  ev->accept();
}

}  // namespace modelyne::shell
