#pragma once
/// The editor's commands and menus, declared once. Each row is a command
/// (id, text key, shortcuts, the menu and group it sits in, where else it
/// shows, when it can run and the function that runs it) or a menu (id,
/// title key, the menu it sits in). The main window builds its actions,
/// menu bar, toolbar, context menus, the command palette and the shortcut
/// list from the rows; nothing else lists commands. The rows themselves are
/// `MainWindow::commandTable()`, beside the functions they call.

#include <QString>
#include <string_view>

class QAction;

namespace modelyne::shell {

class MainWindow;

/// Where a command shows besides its menu.
enum CommandPlace : unsigned {
  kToolbar = 1u << 0,
  kOnNode = 1u << 1,      ///< context menu of a node (canvas or model tree)
  kOnEdge = 1u << 2,      ///< context menu of an edge
  kOnCanvas = 1u << 3,    ///< context menu of the empty canvas
};

/// A row standing for one command per entry of another table.
enum class CommandFamily { none, diagramKinds, languages, themes, aiBackends };

struct CommandSpec {
  std::string_view id{};       ///< "edit.undo"; a family row's id is the prefix of its members' ids
  std::string_view textKey{};  ///< the text's message key; family members take theirs from the family
  std::string_view shortcuts{};  ///< portable key text, several separated by "; " (a family: its first member)
  std::string_view menu{};     ///< id of the menu row it sits in; empty: the menu bar (menus only)
  int group = 0;               ///< neighbours in one menu with different groups are separated
  unsigned places = 0;         ///< CommandPlace bits
  bool isMenu = false;         ///< a menu: `textKey` is its title, no function
  void (*run)(MainWindow&, int member) = nullptr;                ///< member: index in the family, else 0
  bool (*enabled)(const MainWindow&) = nullptr;                  ///< null: always
  bool (*checked)(const MainWindow&, int member) = nullptr;      ///< set: a checkable command
  CommandFamily family = CommandFamily::none;
};

/// The text of a menu or command without its mnemonic: "&Open…" and
/// "開く(&O)…" become "Open…" and "開く…"; "&&" stays one "&".
QString withoutMnemonic(const QString& text);

/// Every shortcut of an action as shown to the user ("Ctrl+Y, Ctrl+Shift+Z").
QString shortcutText(const QAction* action);

}  // namespace modelyne::shell
