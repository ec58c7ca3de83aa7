// The command table and what is built from it: menus in table order,
// shortcuts (unique, the standard ones bound, shown in menus and in the
// command palette), texts without mnemonics.
#include <QListWidget>
#include <QMenu>
#include <gtest/gtest.h>

#include "shell/command_palette.h"
#include "shell/command_table.h"
#include "shell_test_support.h"

using namespace modelyne;
using namespace modelyne::shell;
using namespace modelyne::shell::shelltest;

namespace {

/// A menu's entries as a user reads them: action names, "-" for a
/// separator, "menu.<id>" for a submenu.
QStringList entries(const QMenu* m) {
  QStringList out;
  for (QAction* a : m->actions()) {
    if (a->isSeparator()) out << QStringLiteral("-");
    else if (a->menu()) out << a->menu()->objectName();
    else out << a->objectName().section(QLatin1Char('.'), 1);
  }
  return out;
}

QString paletteRow(CommandPalette& palette, const QString& startsWith) {
  for (int i = 0; i < palette.list()->count(); ++i)
    if (palette.list()->item(i)->text().startsWith(startsWith)) return palette.list()->item(i)->text();
  return {};
}

}  // namespace

TEST(ShellCommands, MenusFollowTheTableWithSubmenusAndSeparators) {
  Editor e;
  EXPECT_EQ(entries(e.window->menu(QStringLiteral("file"))),
            (QStringList{"menu.file.new", "file.open", "menu.file.recent", "-", "file.save", "file.save_as",
                         "menu.file.export", "-", "file.close", "file.quit"}));
  EXPECT_EQ(entries(e.window->menu(QStringLiteral("file.new"))).size(), 11);
  EXPECT_EQ(entries(e.window->menu(QStringLiteral("file.new"))).first(), QStringLiteral("file.new.bdd"));
  EXPECT_EQ(entries(e.window->menu(QStringLiteral("settings.language"))).size(), 7);
  // The language family is one exclusive group that follows the language.
  e.window->action(QStringLiteral("settings.language.de"))->trigger();
  EXPECT_TRUE(e.window->action(QStringLiteral("settings.language.de"))->isChecked());
  EXPECT_FALSE(e.window->action(QStringLiteral("settings.language.en"))->isChecked());
  e.window->applyLanguage(QStringLiteral("en"));
  EXPECT_TRUE(e.window->action(QStringLiteral("settings.language.en"))->isChecked());
  // Commands that need a project wait for one.
  EXPECT_FALSE(e.window->action(QStringLiteral("file.save"))->isEnabled());
  e.window->newProject(core::DiagramKind::bdd);
  EXPECT_TRUE(e.window->action(QStringLiteral("file.save"))->isEnabled());
}

// Linux users bring Windows habits too: both redo keys, Save As, Delete, F2.
TEST(ShellCommands, StandardShortcutsAreBoundOnceEach) {
  Editor e;
  QHash<QString, QString> owner;
  for (QAction* a : e.window->allCommands())
    for (const QKeySequence& k : a->shortcuts()) {
      const QString key = k.toString(QKeySequence::PortableText);
      EXPECT_FALSE(owner.contains(key)) << key.toStdString() << " bound to " << owner.value(key).toStdString()
                                        << " and " << a->objectName().toStdString();
      owner.insert(key, a->objectName());
    }
  const std::pair<const char*, const char*> expected[] = {
      {"Ctrl+Y", "action.edit.redo"},        {"Ctrl+Shift+Z", "action.edit.redo"},
      {"Ctrl+Z", "action.edit.undo"},        {"Ctrl+Shift+S", "action.file.save_as"},
      {"Del", "action.edit.delete"},         {"F2", "action.edit.rename"},
      {"Ctrl+N", "action.file.new.bdd"},     {"Ctrl+S", "action.file.save"}};
  for (const auto& [key, name] : expected) EXPECT_EQ(owner.value(QLatin1String(key)), QLatin1String(name)) << key;

  // The keys work as a user presses them.
  e.window->newProject(core::DiagramKind::bdd);
  e.canvas().placeNode(core::ShapeType::sysmlBlock, {100, 100});
  e.window->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(e.window.get()));
  e.canvas().setFocus();
  QTest::keyClick(&e.canvas(), Qt::Key_Z, Qt::ControlModifier);
  EXPECT_TRUE(e.doc()->nodes().empty());
  QTest::keyClick(&e.canvas(), Qt::Key_Y, Qt::ControlModifier);
  EXPECT_EQ(e.doc()->nodes().size(), 1u);
  QTest::keyClick(&e.canvas(), Qt::Key_Z, Qt::ControlModifier);
  QTest::keyClick(&e.canvas(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(e.doc()->nodes().size(), 1u);
}

// The palette and tooltips show plain names and every shortcut, in every language.
TEST(ShellCommands, PaletteAndTooltipsShowShortcutsWithoutMnemonics) {
  Editor e;
  e.window->newProject(core::DiagramKind::bdd);
  e.canvas().placeNode(core::ShapeType::sysmlBlock, {100, 100});
  e.window->action(QStringLiteral("edit.undo"))->trigger();  // the palette lists what can run: redo too
  {
    CommandPalette palette(e.window->allCommands(), e.window.get());
    EXPECT_EQ(paletteRow(palette, QStringLiteral("Redo")), QStringLiteral("Redo    Ctrl+Y, Ctrl+Shift+Z"));
    EXPECT_EQ(paletteRow(palette, QStringLiteral("Save As")), QStringLiteral("Save As…    Ctrl+Shift+S"));
  }
  EXPECT_EQ(e.window->action(QStringLiteral("edit.redo"))->toolTip(), QStringLiteral("Redo (Ctrl+Y, Ctrl+Shift+Z)"));
  e.window->applyLanguage(QStringLiteral("ja"));
  {
    CommandPalette palette(e.window->allCommands(), e.window.get());
    EXPECT_EQ(paletteRow(palette, QStringLiteral("やり直し")), QStringLiteral("やり直し    Ctrl+Y, Ctrl+Shift+Z"));
    for (int i = 0; i < palette.list()->count(); ++i)
      EXPECT_FALSE(palette.list()->item(i)->text().contains(QLatin1Char('&'))) << palette.list()->item(i)->text().toStdString();
  }
  for (QAction* a : e.window->allCommands())
    EXPECT_FALSE(a->toolTip().contains(QLatin1Char('&'))) << a->toolTip().toStdString();
  e.window->applyLanguage(QStringLiteral("en"));

  EXPECT_EQ(withoutMnemonic(QStringLiteral("開く(&O)…")), QStringLiteral("開く…"));
  EXPECT_EQ(withoutMnemonic(QStringLiteral("Save &As…")), QStringLiteral("Save As…"));
  EXPECT_EQ(withoutMnemonic(QStringLiteral("Cut && &Paste")), QStringLiteral("Cut & Paste"));
}
