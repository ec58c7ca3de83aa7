// Habits users bring from other modelling tools: context menus, finding an
// element by name, validating one element, the diagram fitted on opening.
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QTreeWidget>
#include <gtest/gtest.h>

#include "shell/find_dialog.h"
#include "shell/findings_panel.h"
#include "shell/model_tree.h"
#include "shell_test_support.h"

using namespace modelyne;
using namespace modelyne::shell;
using namespace modelyne::shell::shelltest;

namespace {

/// Right-clicks the canvas at a diagram point; returns the menu's entries
/// (command names, "-" for separators) and leaves the menu open.
QStringList rightClick(Editor& e, double x, double y) {
  const QPoint at = e.at(x, y);
  QContextMenuEvent ev(QContextMenuEvent::Mouse, at, e.canvas().mapToGlobal(at));
  QApplication::sendEvent(&e.canvas(), &ev);
  auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
  if (!menu) return {QStringLiteral("no menu")};
  QStringList out;
  for (QAction* a : menu->actions()) out << (a->isSeparator() ? QStringLiteral("-") : a->objectName().section(QLatin1Char('.'), 1));
  return out;
}

void closeMenu() {
  if (QWidget* w = QApplication::activePopupWidget()) w->close();
}

}  // namespace

TEST(ShellHabits, ContextMenusOfferWhatFitsWhatWasClicked) {
  Editor e;
  e.window->newProject(core::DiagramKind::bdd);
  e.canvas().zoomActualSize();
  e.canvas().centreOn({300, 200});
  const std::string a = e.canvas().placeNode(core::ShapeType::sysmlBlock, {150, 150});
  const std::string b = e.canvas().placeNode(core::ShapeType::sysmlBlock, {450, 150});
  const std::string id = bridge::addEdge(e.doc(), a, core::Anchor::right, b, core::Anchor::left);
  e.canvas().documentChanged();
  e.canvas().clearSelection();

  const core::NodeGeometry ga = e.doc()->findNode(a)->geom;
  EXPECT_EQ(rightClick(e, ga.x + 20, ga.y + 20),
            (QStringList{"edit.cut", "edit.copy", "edit.paste", "edit.delete", "edit.rename", "edit.properties", "-",
                         "arrange.front", "arrange.back", "-", "tools.validate_selection"}));
  // The clicked node is what the menu acts on.
  EXPECT_EQ(e.canvas().selectedNodes(), QSet<QString>{QString::fromStdString(a)});
  auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
  ASSERT_NE(menu, nullptr);
  EXPECT_EQ(menu->actions().at(0)->shortcut().toString(), QStringLiteral("Ctrl+X"));
  e.window->action(QStringLiteral("arrange.front"))->trigger();
  closeMenu();
  EXPECT_EQ(e.doc()->nodes().back().id, a);

  const core::NodeGeometry gb = e.doc()->findNode(b)->geom;
  const double midX = (ga.x + ga.w + gb.x) / 2;
  EXPECT_EQ(rightClick(e, midX, ga.y + ga.h / 2),
            (QStringList{"edit.delete", "edit.rename", "edit.properties", "-", "tools.validate_selection"}));
  EXPECT_EQ(e.canvas().selectedEdges(), QSet<QString>{QString::fromStdString(id)});
  closeMenu();
  EXPECT_EQ(rightClick(e, 300, 400), (QStringList{"edit.paste", "edit.select_all", "-", "view.fit", "-", "tools.validate"}));
  EXPECT_TRUE(e.canvas().selectedNodes().isEmpty());
  closeMenu();

  // A model-tree row naming an element offers the element's commands.
  QTest::qWait(200);
  QTreeWidget* tree = e.window->modelTree()->tree();
  QTreeWidgetItem* leaf = nullptr;
  for (QTreeWidgetItemIterator it(tree); *it; ++it)
    if ((*it)->toolTip(0) == QString::fromStdString(b)) leaf = *it;
  ASSERT_NE(leaf, nullptr);
  tree->expandAll();
  tree->scrollToItem(leaf);
  emit tree->customContextMenuRequested(tree->visualItemRect(leaf).center());
  menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
  ASSERT_NE(menu, nullptr);
  EXPECT_EQ(menu->actions().size(), 11);
  EXPECT_EQ(e.canvas().selectedNodes(), QSet<QString>{QString::fromStdString(b)});
  closeMenu();
}

// Ctrl+F finds an element by part of its name and reveals it on the canvas and in the tree.
TEST(ShellHabits, FindRevealsAnElementByName) {
  Editor e;
  e.window->newProject(core::DiagramKind::bdd);
  for (int i = 0; i < 30; ++i) {
    const std::string n = e.canvas().placeNode(core::ShapeType::sysmlBlock, {150.0 + 250 * (i % 6), 150.0 + 150 * (i / 6)});
    bridge::setNodeText(e.doc(), n, i == 23 ? "Fuel Valve" : "Part " + std::to_string(i));
  }
  e.canvas().documentChanged();
  e.canvas().zoomActualSize();
  e.canvas().centreOn({0, 0});
  QTest::qWait(200);
  e.window->action(QStringLiteral("edit.find"))->trigger();
  auto* find = e.window->findChild<FindDialog*>(QStringLiteral("findDialog"));
  ASSERT_NE(find, nullptr);
  QTest::keyClicks(find->search(), QStringLiteral("valve fuel"));
  ASSERT_EQ(find->list()->count(), 1);
  QTest::keyClick(find->search(), Qt::Key_Return);
  const std::string id = e.doc()->nodes()[23].id;
  EXPECT_EQ(e.canvas().selectedNodes(), QSet<QString>{QString::fromStdString(id)});
  const core::NodeGeometry g = e.doc()->nodes()[23].geom;
  EXPECT_TRUE(e.canvas().visibleSceneRect().contains(QRectF(g.x, g.y, g.w, g.h)));
  QTreeWidgetItem* current = e.window->modelTree()->tree()->currentItem();
  ASSERT_NE(current, nullptr);
  EXPECT_EQ(current->text(0), QStringLiteral("Fuel Valve"));
}

// "Validate this" lists only the findings about the selected element.
TEST(ShellHabits, ValidateThisListsTheSelectedElementsFindings) {
  Editor e;
  ASSERT_TRUE(e.window->openFile(QStringLiteral(MODELYNE_SOURCE_DIR "/tests/shell/data/uc-with-findings.xml")));
  e.canvas().setSelection({QStringLiteral("box")}, {});
  e.window->action(QStringLiteral("tools.validate_selection"))->trigger();
  QListWidget* list = e.window->findings()->list();
  ASSERT_EQ(list->count(), 1);
  EXPECT_EQ(list->item(0)->text(), QStringLiteral("Node 'box' (type=rect) not allowed on Use Case Diagram"));
  EXPECT_TRUE(e.logged(QStringLiteral("Validated the selection: 1 finding(s).")));
}

// Opening from the start page shows the whole diagram fitted and centred in
// the canvas as it is shown, not as it was while hidden.
TEST(ShellHabits, OpeningAFileShowsTheWholeDiagramFitted) {
  Editor e;
  ASSERT_TRUE(e.window->startPageShown());
  ASSERT_TRUE(e.window->openFile(QStringLiteral(MODELYNE_SOURCE_DIR "/samples/bdd-vehicle.xml")));
  QTest::qWait(20);
  QRectF content;
  for (const core::Node& n : e.doc()->nodes()) content |= QRectF(n.geom.x, n.geom.y, n.geom.w, n.geom.h);
  const QRectF view = e.canvas().visibleSceneRect();
  EXPECT_TRUE(view.contains(content)) << e.canvas().zoom();
  EXPECT_NEAR(view.center().x(), content.center().x(), view.width() * 0.1);
  EXPECT_NEAR(view.center().y(), content.center().y(), view.height() * 0.1);
  // Filled: the content spans most of the view one way, unless shown at 100%.
  EXPECT_LE(e.canvas().zoom(), 1.0);
  if (e.canvas().zoom() < 1.0) {
    EXPECT_GT(std::max(content.width() / view.width(), content.height() / view.height()), 0.7);
  }
}
