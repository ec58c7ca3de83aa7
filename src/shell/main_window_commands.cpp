// The editor's command table and what is built from it: actions, menus,
// toolbar, context menus and the states (enabled, checked) of the actions.
#include <QActionGroup>
#include <QApplication>
#include <QDockWidget>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>

#include "core/diagram_kind.h"
#include "shell/canvas_view.h"
#include "shell/command_table.h"
#include "shell/i18n/strings.h"
#include "shell/main_window.h"
#include "shell/property_panel.h"
#include "shell/settings.h"
#include "shell/themes.h"

namespace modelyne::shell {
namespace {

constexpr const char* kAiBackends[] = {"offline", "cloud"};

bool hasProject(const MainWindow& w) { return w.session() != nullptr; }

/// One entry of a command family: its id suffix and its text (a key, or a
/// text shown as is, such as a language's own name).
struct FamilyMember {
  QString idSuffix;
  QByteArray textKey;
  QString fixedText;
};

std::vector<FamilyMember> membersOf(CommandFamily family) {
  std::vector<FamilyMember> out;
  switch (family) {
    case CommandFamily::none:
      out.push_back({});
      break;
    case CommandFamily::diagramKinds:
      for (core::DiagramKind k : core::allDiagramKinds())
        out.push_back({QString::fromUtf8(core::diagramKindKey(k).data()),
                       QByteArray::fromStdString(core::diagramKindMessageKey(k)), {}});
      break;
    case CommandFamily::languages:
      for (const i18n::Language& l : i18n::languages())
        out.push_back({QLatin1String(l.code), {}, QString::fromUtf8(l.nativeName)});
      break;
    case CommandFamily::themes:
      for (const QString& key : themeKeys()) out.push_back({key.section(QLatin1Char('.'), -1), key.toUtf8(), {}});
      break;
    case CommandFamily::aiBackends:
      for (const char* b : kAiBackends) out.push_back({QLatin1String(b), QByteArray("ui.ai.backend_") + b, {}});
      break;
  }
  return out;
}

QString topMenuOf(std::string_view menu) {
  return QString::fromUtf8(menu.substr(0, menu.find('.')).data(),
                           static_cast<qsizetype>(menu.substr(0, menu.find('.')).size()));
}

QString q(std::string_view s) { return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size())); }

}  // namespace

std::span<const CommandSpec> MainWindow::commandTable() {
  using W = MainWindow;
  using F = CommandFamily;
  static constexpr CommandSpec kRows[] = {
      // ---- File ----
      {.id = "file", .textKey = "ui.menu.file", .isMenu = true},
      {.id = "file.new", .textKey = "ui.menu.file.new", .menu = "file", .isMenu = true},
      {.id = "file.new.", .shortcuts = "Ctrl+N", .menu = "file.new",
       .run = [](W& w, int m) { w.newProject(core::allDiagramKinds()[static_cast<std::size_t>(m)]); },
       .family = F::diagramKinds},
      {.id = "file.open", .textKey = "ui.menu.file.open", .shortcuts = "Ctrl+O", .menu = "file", .places = kToolbar,
       .run = [](W& w, int) { w.openDialog(); }},
      {.id = "file.recent", .textKey = "ui.menu.file.recent", .menu = "file", .isMenu = true},
      {.id = "file.save", .textKey = "ui.menu.file.save", .shortcuts = "Ctrl+S", .menu = "file", .group = 1,
       .places = kToolbar, .run = [](W& w, int) { w.save(); }, .enabled = hasProject},
      {.id = "file.save_as", .textKey = "ui.menu.file.save_as", .shortcuts = "Ctrl+Shift+S", .menu = "file",
       .group = 1, .run = [](W& w, int) { w.saveAsDialog(); }, .enabled = hasProject},
      {.id = "file.export", .textKey = "ui.menu.file.export", .menu = "file", .group = 1, .isMenu = true},
      {.id = "file.export.svg", .textKey = "ui.menu.file.export_svg", .menu = "file.export",
       .run = [](W& w, int) { w.exportDialog(QStringLiteral("svg")); }, .enabled = hasProject},
      {.id = "file.export.pdf", .textKey = "ui.menu.file.export_pdf", .menu = "file.export",
       .run = [](W& w, int) { w.exportDialog(QStringLiteral("pdf")); }, .enabled = hasProject},
      {.id = "file.export.png", .textKey = "ui.menu.file.export_png", .menu = "file.export",
       .run = [](W& w, int) { w.exportDialog(QStringLiteral("png")); }, .enabled = hasProject},
      {.id = "file.export.jpeg", .textKey = "ui.menu.file.export_jpeg", .menu = "file.export",
       .run = [](W& w, int) { w.exportDialog(QStringLiteral("jpg")); }, .enabled = hasProject},
      {.id = "file.close", .textKey = "ui.menu.file.close", .shortcuts = "Ctrl+W", .menu = "file", .group = 2,
       .run = [](W& w, int) { w.closeProject(); }, .enabled = hasProject},
      {.id = "file.quit", .textKey = "ui.menu.file.quit", .shortcuts = "Ctrl+Q", .menu = "file", .group = 2,
       .run = [](W& w, int) { w.close(); }},

      // ---- Edit ----
      {.id = "edit", .textKey = "ui.menu.edit", .isMenu = true},
      {.id = "edit.undo", .textKey = "ui.menu.edit.undo", .shortcuts = "Ctrl+Z", .menu = "edit", .places = kToolbar,
       .run = [](W& w, int) { w.undo(); },
       .enabled = [](const W& w) { return w.session() && bridge::canUndo(w.session()->document()); }},
      {.id = "edit.redo", .textKey = "ui.menu.edit.redo", .shortcuts = "Ctrl+Y; Ctrl+Shift+Z", .menu = "edit",
       .places = kToolbar, .run = [](W& w, int) { w.redo(); },
       .enabled = [](const W& w) { return w.session() && bridge::canRedo(w.session()->document()); }},
      {.id = "edit.cut", .textKey = "ui.menu.edit.cut", .shortcuts = "Ctrl+X", .menu = "edit", .group = 1,
       .places = kOnNode, .run = [](W& w, int) { w.canvas_->cutSelection(); }, .enabled = hasProject},
      {.id = "edit.copy", .textKey = "ui.menu.edit.copy", .shortcuts = "Ctrl+C", .menu = "edit", .group = 1,
       .places = kOnNode, .run = [](W& w, int) { w.canvas_->copySelection(); }, .enabled = hasProject},
      {.id = "edit.paste", .textKey = "ui.menu.edit.paste", .shortcuts = "Ctrl+V", .menu = "edit", .group = 1,
       .places = kOnNode | kOnCanvas, .run = [](W& w, int) { w.canvas_->paste(); }, .enabled = hasProject},
      {.id = "edit.duplicate", .textKey = "ui.menu.edit.duplicate", .shortcuts = "Ctrl+D", .menu = "edit",
       .group = 1, .run = [](W& w, int) { w.canvas_->duplicateSelection(); }, .enabled = hasProject},
      {.id = "edit.delete", .textKey = "ui.menu.edit.delete", .shortcuts = "Del", .menu = "edit", .group = 1,
       .places = kOnNode | kOnEdge, .run = [](W& w, int) { w.canvas_->deleteSelection(); }, .enabled = hasProject},
      {.id = "edit.select_all", .textKey = "ui.menu.edit.select_all", .shortcuts = "Ctrl+A", .menu = "edit",
       .group = 2, .places = kOnCanvas, .run = [](W& w, int) { w.canvas_->selectAll(); }, .enabled = hasProject},
      {.id = "edit.find", .textKey = "ui.menu.edit.find", .shortcuts = "Ctrl+F", .menu = "edit", .group = 2,
       .run = [](W& w, int) { w.findDialog(); }, .enabled = hasProject},
      {.id = "edit.rename", .textKey = "ui.menu.edit.rename", .shortcuts = "F2", .menu = "edit", .group = 2,
       .places = kOnNode | kOnEdge, .run = [](W& w, int) { w.renameSelection(); }, .enabled = hasProject},
      {.id = "edit.properties", .textKey = "ui.menu.edit.properties", .shortcuts = "Alt+Return", .menu = "edit",
       .group = 3, .places = kOnNode | kOnEdge, .run = [](W& w, int) { w.showProperties(); }},

      // ---- View ----
      {.id = "view", .textKey = "ui.menu.view", .isMenu = true},
      {.id = "view.zoom_in", .textKey = "ui.menu.view.zoom_in", .shortcuts = "Ctrl++; Ctrl+=", .menu = "view",
       .places = kToolbar, .run = [](W& w, int) { w.canvas_->zoomIn(); }},
      {.id = "view.zoom_out", .textKey = "ui.menu.view.zoom_out", .shortcuts = "Ctrl+-", .menu = "view",
       .places = kToolbar, .run = [](W& w, int) { w.canvas_->zoomOut(); }},
      {.id = "view.fit", .textKey = "ui.menu.view.fit", .shortcuts = "Ctrl+0", .menu = "view",
       .places = kToolbar | kOnCanvas, .run = [](W& w, int) { w.canvas_->fitToContent(); }},
      {.id = "view.actual_size", .textKey = "ui.menu.view.actual_size", .shortcuts = "Ctrl+1", .menu = "view",
       .run = [](W& w, int) { w.canvas_->zoomActualSize(); }},
      {.id = "view.grid", .textKey = "ui.menu.view.grid", .shortcuts = "Ctrl+'", .menu = "view", .group = 1,
       .run = [](W& w, int) { w.canvas_->setGridVisible(!w.canvas_->gridVisible()); },
       .checked = [](const W& w, int) { return w.canvas()->gridVisible(); }},
      {.id = "view.snap", .textKey = "ui.menu.view.snap", .shortcuts = "Ctrl+Shift+'", .menu = "view", .group = 1,
       .run = [](W& w, int) { w.canvas_->setSnapToGrid(!w.canvas_->snapToGrid()); },
       .checked = [](const W& w, int) { return w.canvas()->snapToGrid(); }},
      {.id = "view.start_page", .textKey = "ui.menu.view.start_page", .menu = "view", .group = 2,
       .run = [](W& w, int) { w.showStartPage(); }},
      {.id = "view.command_palette", .textKey = "ui.menu.view.command_palette", .shortcuts = "Ctrl+Shift+P",
       .menu = "view", .group = 2, .run = [](W& w, int) { w.commandPalette(); }},
      {.id = "view.panels", .textKey = "ui.menu.view.panels", .menu = "view", .group = 3, .isMenu = true},

      // ---- Arrange ----
      {.id = "arrange", .textKey = "ui.menu.arrange", .isMenu = true},
      {.id = "arrange.align", .textKey = "ui.menu.arrange.align", .menu = "arrange", .isMenu = true},
      {.id = "arrange.align.left", .textKey = "ui.menu.arrange.align_left", .shortcuts = "Alt+Shift+L",
       .menu = "arrange.align", .places = kToolbar, .run = [](W& w, int) { w.align(0); }, .enabled = hasProject},
      {.id = "arrange.align.hcenter", .textKey = "ui.menu.arrange.align_hcenter", .shortcuts = "Alt+Shift+H",
       .menu = "arrange.align", .run = [](W& w, int) { w.align(1); }, .enabled = hasProject},
      {.id = "arrange.align.right", .textKey = "ui.menu.arrange.align_right", .shortcuts = "Alt+Shift+R",
       .menu = "arrange.align", .run = [](W& w, int) { w.align(2); }, .enabled = hasProject},
      {.id = "arrange.align.top", .textKey = "ui.menu.arrange.align_top", .shortcuts = "Alt+Shift+T",
       .menu = "arrange.align", .places = kToolbar, .run = [](W& w, int) { w.align(3); }, .enabled = hasProject},
      {.id = "arrange.align.vmiddle", .textKey = "ui.menu.arrange.align_vmiddle", .shortcuts = "Alt+Shift+M",
       .menu = "arrange.align", .run = [](W& w, int) { w.align(4); }, .enabled = hasProject},
      {.id = "arrange.align.bottom", .textKey = "ui.menu.arrange.align_bottom", .shortcuts = "Alt+Shift+B",
       .menu = "arrange.align", .run = [](W& w, int) { w.align(5); }, .enabled = hasProject},
      {.id = "arrange.distribute", .textKey = "ui.menu.arrange.distribute", .menu = "arrange", .isMenu = true},
      {.id = "arrange.distribute.horizontal", .textKey = "ui.menu.arrange.distribute_h", .shortcuts = "Alt+Shift+D",
       .menu = "arrange.distribute", .places = kToolbar, .run = [](W& w, int) { w.distribute(0); },
       .enabled = hasProject},
      {.id = "arrange.distribute.vertical", .textKey = "ui.menu.arrange.distribute_v", .shortcuts = "Alt+Shift+E",
       .menu = "arrange.distribute", .run = [](W& w, int) { w.distribute(1); }, .enabled = hasProject},
      {.id = "arrange.flip", .textKey = "ui.menu.arrange.flip", .menu = "arrange", .isMenu = true},
      {.id = "arrange.flip.horizontal", .textKey = "ui.menu.arrange.flip_h", .shortcuts = "Alt+Shift+F",
       .menu = "arrange.flip", .run = [](W& w, int) { w.flip(0); }, .enabled = hasProject},
      {.id = "arrange.flip.vertical", .textKey = "ui.menu.arrange.flip_v", .shortcuts = "Alt+Shift+G",
       .menu = "arrange.flip", .run = [](W& w, int) { w.flip(1); }, .enabled = hasProject},
      {.id = "arrange.group", .textKey = "ui.menu.arrange.group", .shortcuts = "Ctrl+G", .menu = "arrange",
       .group = 1, .places = kToolbar, .run = [](W& w, int) { w.group(); }, .enabled = hasProject},
      {.id = "arrange.ungroup", .textKey = "ui.menu.arrange.ungroup", .shortcuts = "Ctrl+Shift+G", .menu = "arrange",
       .group = 1, .run = [](W& w, int) { w.ungroup(); }, .enabled = hasProject},
      {.id = "arrange.front", .textKey = "ui.menu.arrange.front", .shortcuts = "Ctrl+Shift+]", .menu = "arrange",
       .group = 2, .places = kToolbar | kOnNode, .run = [](W& w, int) { w.reorder(0); }, .enabled = hasProject},
      {.id = "arrange.back", .textKey = "ui.menu.arrange.back", .shortcuts = "Ctrl+Shift+[", .menu = "arrange",
       .group = 2, .places = kToolbar | kOnNode, .run = [](W& w, int) { w.reorder(1); }, .enabled = hasProject},
      {.id = "arrange.forward", .textKey = "ui.menu.arrange.forward", .shortcuts = "Ctrl+]", .menu = "arrange",
       .group = 2, .run = [](W& w, int) { w.reorder(2); }, .enabled = hasProject},
      {.id = "arrange.backward", .textKey = "ui.menu.arrange.backward", .shortcuts = "Ctrl+[", .menu = "arrange",
       .group = 2, .run = [](W& w, int) { w.reorder(3); }, .enabled = hasProject},

      // ---- Model ----
      {.id = "model", .textKey = "ui.menu.model", .isMenu = true},
      {.id = "model.add", .textKey = "ui.menu.model.add", .menu = "model", .run = [](W& w, int) { w.addModelDialog(); },
       .enabled = hasProject},
      {.id = "model.rename", .textKey = "ui.menu.model.rename", .menu = "model",
       .run = [](W& w, int) { w.renameModel(w.session_->activeIndex()); }, .enabled = hasProject},
      {.id = "model.delete", .textKey = "ui.menu.model.delete", .menu = "model",
       .run = [](W& w, int) { w.deleteModel(w.session_->activeIndex()); }, .enabled = hasProject},

      // ---- Tools ----
      {.id = "tools", .textKey = "ui.menu.tools", .isMenu = true},
      {.id = "tools.validate", .textKey = "ui.menu.tools.validate", .shortcuts = "F7", .menu = "tools",
       .places = kToolbar | kOnCanvas, .run = [](W& w, int) { w.validate(); }},
      {.id = "tools.validate_selection", .textKey = "ui.menu.tools.validate_selection", .menu = "tools",
       .places = kOnNode | kOnEdge, .run = [](W& w, int) { w.validateSelection(); }},
      {.id = "tools.assessment", .textKey = "ui.menu.tools.assessment", .shortcuts = "Shift+F7", .menu = "tools",
       .run = [](W& w, int) { w.showAssessment(); }},
      {.id = "tools.explain", .textKey = "ui.menu.tools.explain", .shortcuts = "F8", .menu = "tools",
       .run = [](W& w, int) { w.showExplanation(); }},
      {.id = "tools.parametric", .textKey = "ui.menu.tools.parametric", .shortcuts = "F9", .menu = "tools",
       .run = [](W& w, int) { w.evaluateParametric(); }},
      {.id = "tools.ai_generate", .textKey = "ui.menu.tools.ai_generate", .shortcuts = "Ctrl+Shift+I",
       .menu = "tools", .group = 1, .places = kToolbar, .run = [](W& w, int) { w.aiGenerateDialog(); }},
      {.id = "tools.review", .textKey = "ui.menu.tools.review", .shortcuts = "Ctrl+Shift+R", .menu = "tools",
       .group = 1, .run = [](W& w, int) { w.reviewDialog(); }},

      // ---- Settings ----
      {.id = "settings", .textKey = "ui.menu.settings", .isMenu = true},
      {.id = "settings.language", .textKey = "ui.menu.settings.language", .menu = "settings", .isMenu = true},
      {.id = "settings.language.", .menu = "settings.language",
       .run = [](W& w, int m) { w.applyLanguage(QLatin1String(i18n::languages()[static_cast<std::size_t>(m)].code)); },
       .checked = [](const W&, int m) {
         return i18n::currentLanguage() == QLatin1String(i18n::languages()[static_cast<std::size_t>(m)].code);
       },
       .family = F::languages},
      {.id = "settings.theme", .textKey = "ui.menu.settings.theme", .menu = "settings", .isMenu = true},
      {.id = "settings.theme.", .menu = "settings.theme",
       .run = [](W& w, int m) { w.applyThemeKey(themeKeys().value(m)); },
       .checked = [](const W&, int m) { return themeKeys().value(m) == currentTheme(); }, .family = F::themes},
      {.id = "settings.ai_backend", .textKey = "ui.menu.settings.ai_backend", .menu = "settings", .isMenu = true},
      {.id = "settings.ai.", .menu = "settings.ai_backend",
       .run = [](W&, int m) { settings::setAiBackend(QLatin1String(kAiBackends[m])); },
       .checked = [](const W&, int m) { return settings::aiBackend() == QLatin1String(kAiBackends[m]); },
       .family = F::aiBackends},

      // ---- Help ----
      {.id = "help", .textKey = "ui.menu.help", .isMenu = true},
      {.id = "help.shortcuts", .textKey = "ui.menu.help.shortcuts", .shortcuts = "F1", .menu = "help",
       .run = [](W& w, int) { w.showShortcuts(); }},
      {.id = "help.about", .textKey = "ui.menu.help.about", .menu = "help", .group = 1,
       .run = [](W& w, int) { w.showAbout(); }},
  };
  return kRows;
}

void MainWindow::buildCommands() {
  // Menus first, so that every row finds its menu; then every row in table
  // order, so that submenus and commands keep the table's order.
  for (const CommandSpec& row : commandTable()) {
    if (!row.isMenu) continue;
    QMenu* m = row.menu.empty() ? menuBar()->addMenu(QString()) : new QMenu(this);
    m->setObjectName(QStringLiteral("menu.") + q(row.id));
    menus_.insert(q(row.id), m);
    menuKeys_.append({m, QByteArray(row.textKey.data(), static_cast<qsizetype>(row.textKey.size()))});
  }
  QHash<QString, int> lastGroup;
  auto place = [&](std::string_view menuId, int group) -> QMenu* {
    QMenu* m = menus_.value(q(menuId));
    if (!m) return nullptr;
    if (!m->actions().isEmpty() && lastGroup.value(q(menuId), group) != group) m->addSeparator();
    lastGroup[q(menuId)] = group;
    return m;
  };
  for (const CommandSpec& row : commandTable()) {
    if (row.isMenu) {
      if (QMenu* parent = row.menu.empty() ? nullptr : place(row.menu, row.group))
        parent->addMenu(menus_.value(q(row.id)));
      continue;
    }
    QActionGroup* exclusive = row.family != CommandFamily::none ? new QActionGroup(this) : nullptr;
    const std::vector<FamilyMember> members = membersOf(row.family);
    for (std::size_t i = 0; i < members.size(); ++i) {
      const FamilyMember& m = members[i];
      const QString id = q(row.id) + m.idSuffix;
      auto* a = new QAction(this);
      a->setObjectName(QStringLiteral("action.") + id);
      if (!row.shortcuts.empty() && i == 0)
        a->setShortcuts(QKeySequence::listFromString(q(row.shortcuts), QKeySequence::PortableText));
      if (row.checked) a->setCheckable(true);
      if (exclusive) exclusive->addAction(a);
      const int member = static_cast<int>(i);
      const std::size_t index = commands_.size();
      connect(a, &QAction::triggered, this, [this, index] { runCommand(commands_[index]); });
      commands_.push_back({&row, member, a, row.family == CommandFamily::none
                                                ? QByteArray(row.textKey.data(), static_cast<qsizetype>(row.textKey.size()))
                                                : m.textKey,
                           m.fixedText});
      actions_.insert(id, a);
      addAction(a);  // shortcuts work even when the menu bar is hidden
      if (QMenu* menu = place(row.menu, row.group)) menu->addAction(a);
    }
  }

  QMenu* panels = menus_.value(QStringLiteral("view.panels"));
  for (const char* d : {"palette", "models", "properties", "log", "findings"})
    panels->addAction(docks_.value(QLatin1String(d))->toggleViewAction());
  recentMenu_ = menus_.value(QStringLiteral("file.recent"));

  QToolBar* bar = addToolBar(QStringLiteral("main"));
  bar->setObjectName(QStringLiteral("toolbar.main"));
  bar->setToolButtonStyle(Qt::ToolButtonTextOnly);
  QString lastMenu;
  for (const Command& c : commands_) {
    if (!(c.spec->places & kToolbar)) continue;
    const QString top = topMenuOf(c.spec->menu);
    if (!lastMenu.isEmpty() && top != lastMenu) bar->addSeparator();
    lastMenu = top;
    bar->addAction(c.action);
  }
  updateCommandStates();
}

void MainWindow::runCommand(const Command& c) {
  commitPendingEdits();  // what is typed counts before anything else happens
  if (c.spec->enabled && !c.spec->enabled(*this)) return;
  c.spec->run(*this, c.member);
  updateCommandStates();
}

void MainWindow::updateCommandStates() {
  for (const Command& c : commands_) {
    if (c.spec->enabled) c.action->setEnabled(c.spec->enabled(*this));
    if (c.spec->checked) c.action->setChecked(c.spec->checked(*this, c.member));
  }
}

void MainWindow::retranslateCommands() {
  for (const Command& c : commands_) {
    const QString text = c.textKey.isEmpty() ? c.fixedText : ui(c.textKey.toStdString());
    c.action->setText(text);
    // Tooltips and the palette show the plain name and every shortcut.
    const QString keys = shortcutText(c.action);
    c.action->setToolTip(keys.isEmpty() ? withoutMnemonic(text)
                                        : QStringLiteral("%1 (%2)").arg(withoutMnemonic(text), keys));
  }
  for (auto& [m, key] : menuKeys_) m->setTitle(ui(key.toStdString()));
}

QList<QAction*> MainWindow::allCommands() const {
  QList<QAction*> out;
  for (const Command& c : commands_)
    if (!c.action->text().isEmpty()) out.append(c.action);
  std::sort(out.begin(), out.end(), [](QAction* a, QAction* b) { return a->objectName() < b->objectName(); });
  return out;
}

QMenu* MainWindow::contextMenu(unsigned place) {
  auto* menu = new QMenu(this);
  menu->setObjectName(QStringLiteral("contextMenu"));
  menu->setAttribute(Qt::WA_DeleteOnClose);
  QString lastMenu;
  for (const Command& c : commands_) {
    if (!(c.spec->places & place)) continue;
    const QString top = topMenuOf(c.spec->menu);
    if (!lastMenu.isEmpty() && top != lastMenu) menu->addSeparator();
    lastMenu = top;
    menu->addAction(c.action);
  }
  return menu;
}

}  // namespace modelyne::shell
