// Drawing and editing as a user does it: palette, canvas gestures, property
// panel, arrange commands, undo and redo, save and reopen.
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTreeWidget>
#include <gtest/gtest.h>

#include "shell/model_tree.h"
#include "shell/palette_panel.h"
#include "shell/property_panel.h"
#include "shell_test_support.h"

using namespace modelyne;
using namespace modelyne::shell;
using namespace modelyne::shell::shelltest;

namespace {

/// Arms a palette entry with a click and places it with a click on the canvas.
std::string placeFromPalette(Editor& e, core::ShapeType type, double x, double y) {
  QTreeWidgetItem* item = e.window->palette()->itemFor(type);
  if (!item) return {};
  QTreeWidget* tree = e.window->palette()->tree();
  tree->scrollToItem(item);
  QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, tree->visualItemRect(item).center());
  e.click(x, y);
  const auto sel = e.canvas().selectedNodeIds();
  return sel.size() == 1 ? sel.front() : std::string();
}

const core::Node& node(const Editor& e, const std::string& id) { return *e.doc()->findNode(id); }

}  // namespace

// The whole round: draw two blocks, connect them, set a property, move one,
// undo and redo, save, reopen and save again byte for byte.
TEST(ShellEditing, DrawConnectEditMoveUndoSaveReopen) {
  Editor e;
  ASSERT_TRUE(e.window->newProject(core::DiagramKind::bdd));
  EXPECT_FALSE(e.window->startPageShown());
  e.canvas().zoomActualSize();
  e.canvas().centreOn({400, 250});

  const std::string a = placeFromPalette(e, core::ShapeType::sysmlBlock, 200, 200);
  const std::string b = placeFromPalette(e, core::ShapeType::sysmlBlock, 600, 200);
  ASSERT_FALSE(a.empty());
  ASSERT_FALSE(b.empty());
  EXPECT_NE(a, b);
  // A new node gets the palette's default size and its schema's defaults.
  EXPECT_EQ(node(e, a).geom.w, 180.0f);
  EXPECT_EQ(node(e, a).properties.at("isAbstract"), "false");
  EXPECT_EQ(node(e, a).text, "Block");
  EXPECT_EQ(e.undoCount(), 2u);

  // Connect from a's right anchor to b with the palette's edge type.
  auto* edgeCombo = e.window->palette()->findChild<QComboBox*>(QStringLiteral("edgeTypeCombo"));
  edgeCombo->setCurrentIndex(edgeCombo->findData(static_cast<int>(core::EdgeType::composition)));
  emit edgeCombo->activated(edgeCombo->currentIndex());
  const auto& ga = node(e, a).geom;
  const auto& gb = node(e, b).geom;
  e.drag({ga.x + ga.w, ga.y + ga.h / 2}, {gb.x + gb.w / 2, gb.y + gb.h / 2});
  ASSERT_EQ(e.doc()->edges().size(), 1u);
  const core::Edge& edge = e.doc()->edges().front();
  EXPECT_EQ(edge.source, a);
  EXPECT_EQ(edge.target, b);
  EXPECT_EQ(edge.sourcePort, core::Anchor::right);
  EXPECT_EQ(edge.type, core::EdgeType::composition);

  // Edit a property in the panel.
  e.click(ga.x + 20, ga.y + 20);
  ASSERT_EQ(e.window->properties()->elementId().toStdString(), a);
  auto* abstractBox = e.window->properties()->findChild<QCheckBox*>(QStringLiteral("prop_isAbstract"));
  ASSERT_NE(abstractBox, nullptr);
  abstractBox->click();
  EXPECT_EQ(node(e, a).properties.at("isAbstract"), "true");

  // Move by dragging: one undo step, snapped to the grid.
  const std::size_t before = e.undoCount();
  const core::NodeGeometry start = node(e, a).geom;
  e.drag({start.x + 30, start.y + 30}, {start.x + 30 + 52, start.y + 30 + 28});
  EXPECT_EQ(e.undoCount(), before + 1);
  EXPECT_EQ(node(e, a).geom.x, start.x + 50);
  EXPECT_EQ(node(e, a).geom.y, start.y + 30);
  e.window->action(QStringLiteral("edit.undo"))->trigger();
  EXPECT_EQ(node(e, a).geom, start);
  e.window->action(QStringLiteral("edit.redo"))->trigger();
  EXPECT_EQ(node(e, a).geom.x, start.x + 50);
  EXPECT_TRUE(e.window->isWindowModified());

  // Save, reopen, and the same document is saved again byte for byte.
  const QString path = e.data.filePath(QStringLiteral("drawn.xml"));
  ASSERT_TRUE(e.window->saveAs(path));
  EXPECT_FALSE(e.window->isWindowModified());
  QFile f(path);
  ASSERT_TRUE(f.open(QIODevice::ReadOnly));
  const QByteArray first = f.readAll();
  f.close();
  ASSERT_TRUE(e.window->openFile(path));
  ASSERT_EQ(e.doc()->nodes().size(), 2u);
  EXPECT_EQ(node(e, a).properties.at("isAbstract"), "true");
  EXPECT_EQ(e.doc()->frame().kind, core::DiagramKind::bdd);
  const QString again = e.data.filePath(QStringLiteral("again.xml"));
  ASSERT_TRUE(e.window->saveAs(again));
  QFile g(again);
  ASSERT_TRUE(g.open(QIODevice::ReadOnly));
  EXPECT_EQ(g.readAll(), first);
}

// An invalid value shows the validator's message and changes nothing.
TEST(ShellEditing, InvalidPropertyValueIsRefusedWithItsMessage) {
  Editor e;
  e.window->newProject(core::DiagramKind::ibd);
  const std::string port = e.canvas().placeNode(core::ShapeType::sysmlPort, {100, 100});
  e.canvas().setSelection({QString::fromStdString(port)}, {});
  auto* field = e.window->properties()->findChild<QLineEdit*>(QStringLiteral("prop_multiplicity"));
  ASSERT_NE(field, nullptr);
  const std::size_t before = e.undoCount();
  field->setFocus();
  QTest::keyClicks(field, QStringLiteral("[1..x]"));
  EXPECT_EQ(e.window->properties()->errorFor(QStringLiteral("multiplicity")), QStringLiteral("Expected [n], [n..m] or [n..*]."));
  QTest::keyClick(field, Qt::Key_Return);
  EXPECT_EQ(e.undoCount(), before);
  EXPECT_EQ(node(e, port).properties.count("multiplicity"), 0u);
  EXPECT_TRUE(e.logged(QStringLiteral("Invalid value for 'multiplicity': Expected [n], [n..m] or [n..*].")));

  // A valid one goes through as one step.
  field = e.window->properties()->findChild<QLineEdit*>(QStringLiteral("prop_multiplicity"));
  field->selectAll();
  QTest::keyClicks(field, QStringLiteral("[0..*]"));
  QTest::keyClick(field, Qt::Key_Return);
  EXPECT_EQ(node(e, port).properties.at("multiplicity"), "[0..*]");
  EXPECT_EQ(e.undoCount(), before + 1);
}

// Selection gestures and clipboard: each one undo step.
TEST(ShellEditing, RubberBandDeletePasteAndResizeAreSingleSteps) {
  Editor e;
  e.window->newProject(core::DiagramKind::act);
  e.canvas().zoomActualSize();
  e.canvas().centreOn({300, 200});
  const std::string a = e.canvas().placeNode(core::ShapeType::umlAction, {150, 150});
  const std::string b = e.canvas().placeNode(core::ShapeType::umlAction, {400, 150});
  bridge::addEdge(e.doc(), a, core::Anchor::right, b, core::Anchor::left);
  e.canvas().documentChanged();
  e.canvas().clearSelection();

  // Rubber band from empty space around both nodes.
  e.drag({20, 40}, {560, 300});
  EXPECT_EQ(e.canvas().selectedNodes().size(), 2);
  EXPECT_EQ(e.canvas().selectedEdges().size(), 1);

  e.window->action(QStringLiteral("edit.copy"))->trigger();
  const std::size_t steps = e.undoCount();
  e.window->action(QStringLiteral("edit.delete"))->trigger();
  EXPECT_TRUE(e.doc()->nodes().empty());
  EXPECT_EQ(e.undoCount(), steps + 1);
  e.window->action(QStringLiteral("edit.paste"))->trigger();
  EXPECT_EQ(e.doc()->nodes().size(), 2u);
  EXPECT_EQ(e.doc()->edges().size(), 1u);
  EXPECT_EQ(e.undoCount(), steps + 2);
  e.window->action(QStringLiteral("edit.undo"))->trigger();
  e.window->action(QStringLiteral("edit.undo"))->trigger();
  ASSERT_EQ(e.doc()->nodes().size(), 2u);
  EXPECT_EQ(e.doc()->nodes()[0].id, a);

  // Resize with the bottom-right handle of a single selected node.
  e.canvas().setSelection({QString::fromStdString(a)}, {});
  const core::NodeGeometry g = node(e, a).geom;
  const QPointF corner = e.canvas().mapFromScene({g.x + g.w, g.y + g.h}) + QPointF(3, 3);
  const QPointF target = corner + QPointF(40, 20);
  QTest::mousePress(&e.canvas(), Qt::LeftButton, {}, corner.toPoint());
  QTest::mouseMove(&e.canvas(), ((corner + target) / 2).toPoint());
  QTest::mouseMove(&e.canvas(), target.toPoint());
  QTest::mouseRelease(&e.canvas(), Qt::LeftButton, {}, target.toPoint());
  EXPECT_EQ(node(e, a).geom.x, g.x);
  EXPECT_EQ(node(e, a).geom.w, g.w + 40);
  EXPECT_EQ(node(e, a).geom.h, g.h + 20);
}

// Arrange commands act on the selection as one step each.
TEST(ShellEditing, AlignGroupAndZOrderFromActions) {
  Editor e;
  e.window->newProject(core::DiagramKind::bdd);
  const std::string a = e.canvas().placeNode(core::ShapeType::sysmlBlock, {100, 100});
  const std::string b = e.canvas().placeNode(core::ShapeType::sysmlBlock, {400, 300});
  e.canvas().selectAll();
  e.window->action(QStringLiteral("arrange.align.top"))->trigger();
  EXPECT_EQ(node(e, a).geom.y, node(e, b).geom.y);
  e.window->action(QStringLiteral("arrange.group"))->trigger();
  EXPECT_FALSE(node(e, a).properties.at(core::kLayoutGroupKey).empty());
  // Clicking one member selects the whole group.
  e.canvas().clearSelection();
  const auto& ga = node(e, a).geom;
  e.canvas().zoomActualSize();
  e.canvas().centreOn({ga.x + 50, ga.y + 50});
  e.click(ga.x + 10, ga.y + 10);
  EXPECT_EQ(e.canvas().selectedNodes().size(), 2);
  e.canvas().setSelection({QString::fromStdString(a)}, {});
  e.window->action(QStringLiteral("arrange.front"))->trigger();
  EXPECT_EQ(e.doc()->nodes().back().id, a);
  e.window->action(QStringLiteral("edit.undo"))->trigger();
  EXPECT_EQ(e.doc()->nodes().back().id, b);
}

// The model tree: models come and go, the last one stays.
TEST(ShellEditing, ModelsAddAndTheLastOneCannotBeDeleted) {
  Editor e;
  e.window->newProject(core::DiagramKind::pkg);
  e.window->action(QStringLiteral("model.delete"))->trigger();
  EXPECT_EQ(e.window->session()->modelCount(), 1);
  EXPECT_TRUE(e.logged(ui(core::kMsgDiagMinOne)));
  e.window->action(QStringLiteral("model.add"))->trigger();
  EXPECT_EQ(e.window->session()->modelCount(), 2);
  EXPECT_EQ(e.window->session()->activeIndex(), 1);
  e.canvas().placeNode(core::ShapeType::umlPackage, {100, 100});
  // The tree lists the active model's nodes; choosing one selects it.
  QTreeWidget* tree = e.window->modelTree()->tree();
  QTreeWidgetItem* leaf = nullptr;
  QTest::qWait(200);
  for (QTreeWidgetItemIterator it(tree); *it; ++it)
    if ((*it)->childCount() == 0 && (*it)->parent() && (*it)->parent()->parent()) leaf = *it;
  ASSERT_NE(leaf, nullptr);
  e.canvas().clearSelection();
  tree->setCurrentItem(leaf);
  EXPECT_EQ(e.canvas().selectedNodes().size(), 1);
  e.window->action(QStringLiteral("model.delete"))->trigger();
  EXPECT_EQ(e.window->session()->modelCount(), 1);
}

// Type into one field, click straight into the next and type: both land,
// each as one step. Input not yet committed is committed before a command.
TEST(ShellEditing, TypedPropertyInputIsNeverDropped) {
  Editor e;
  e.window->newProject(core::DiagramKind::stm);
  const std::string s = e.canvas().placeNode(core::ShapeType::umlState, {100, 100});
  e.window->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(e.window.get()));
  auto field = [&](const char* key) {
    return e.window->properties()->findChild<QLineEdit*>(QStringLiteral("prop_") + QLatin1String(key));
  };
  const std::size_t before = e.undoCount();
  QTest::mouseClick(field("entry"), Qt::LeftButton);
  QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("open valve"));
  QTest::mouseClick(field("exit"), Qt::LeftButton);
  QTest::qWait(20);  // the panel catches up with the first commit before the next key
  QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("close valve"));
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
  EXPECT_EQ(node(e, s).properties.at("entry"), "open valve");
  EXPECT_EQ(node(e, s).properties.at("exit"), "close valve");
  EXPECT_EQ(e.undoCount(), before + 2);

  QTest::mouseClick(field("doActivity"), Qt::LeftButton);
  QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("pump"));
  e.window->action(QStringLiteral("tools.validate"))->trigger();
  EXPECT_EQ(node(e, s).properties.at("doActivity"), "pump");
  EXPECT_EQ(e.undoCount(), before + 3);
}

// Every edge edit a user makes is one undo step, taken back in order.
TEST(ShellEditing, EdgeEditsAreOneUndoStepEach) {
  Editor e;
  e.window->newProject(core::DiagramKind::bdd);
  e.canvas().zoomActualSize();
  e.canvas().centreOn({300, 200});
  const std::string a = e.canvas().placeNode(core::ShapeType::sysmlBlock, {150, 150});
  const std::string b = e.canvas().placeNode(core::ShapeType::sysmlBlock, {450, 150});
  const std::string c = e.canvas().placeNode(core::ShapeType::sysmlBlock, {450, 350});
  const std::string id = bridge::addEdge(e.doc(), a, core::Anchor::right, b, core::Anchor::left);
  e.canvas().documentChanged();
  e.canvas().setSelection({}, {QString::fromStdString(id)});
  const std::size_t base = e.undoCount();
  const core::Edge original = *e.doc()->findEdge(id);

  auto* type = e.window->properties()->findChild<QComboBox*>(QStringLiteral("prop_edgeType"));
  ASSERT_NE(type, nullptr);
  type->setCurrentIndex(type->findData(static_cast<int>(core::EdgeType::composition)));
  emit type->activated(type->currentIndex());
  QTest::qWait(1);
  auto* label = e.window->properties()->findChild<QLineEdit*>(QStringLiteral("prop_label"));
  label->setFocus();
  QTest::keyClicks(label, QStringLiteral("drives"));
  QTest::keyClick(label, Qt::Key_Return);
  e.canvas().editLabel(QString::fromStdString(id));
  auto* editor = e.canvas().findChild<QPlainTextEdit*>(QStringLiteral("labelEditor"));
  ASSERT_NE(editor, nullptr);
  QTest::keyClicks(editor, QStringLiteral("powers"));
  QTest::keyClick(editor, Qt::Key_Return);
  QTest::qWait(1);
  auto* port = e.window->properties()->findChild<QComboBox*>(QStringLiteral("prop_targetPort"));
  port->setCurrentIndex(port->findData(static_cast<int>(core::Anchor::top)));
  emit port->activated(port->currentIndex());
  // Drag the target end from b onto c.
  e.canvas().setSelection({}, {QString::fromStdString(id)});
  const core::NodeGeometry gb = node(e, b).geom;
  const core::NodeGeometry gc = node(e, c).geom;
  e.drag({gb.x + gb.w / 2, gb.y}, {gc.x + gc.w / 2, gc.y + 5});
  EXPECT_EQ(e.doc()->findEdge(id)->target, c);
  EXPECT_EQ(e.undoCount(), base + 5);
  EXPECT_EQ(e.doc()->findEdge(id)->text, "powers");
  EXPECT_EQ(e.doc()->findEdge(id)->type, core::EdgeType::composition);

  auto undo = [&] { e.window->action(QStringLiteral("edit.undo"))->trigger(); };
  undo();
  EXPECT_EQ(e.doc()->findEdge(id)->target, b);
  EXPECT_EQ(e.doc()->findEdge(id)->targetPort, core::Anchor::top);
  undo();
  EXPECT_EQ(e.doc()->findEdge(id)->targetPort, core::Anchor::left);
  undo();
  EXPECT_EQ(e.doc()->findEdge(id)->text, "drives");
  undo();
  EXPECT_EQ(e.doc()->findEdge(id)->text, "");
  EXPECT_EQ(e.doc()->findEdge(id)->type, core::EdgeType::composition);
  undo();
  EXPECT_EQ(e.doc()->findEdge(id)->type, original.type);
  EXPECT_EQ(e.undoCount(), base);
}

// Control characters other than line feed and tab never get into labels or
// properties, typed or pasted: the model file and the SVG could not hold them.
TEST(ShellEditing, ControlCharactersStayOutOfLabelsAndProperties) {
  Editor e;
  e.window->newProject(core::DiagramKind::stm);
  const std::string s = e.canvas().placeNode(core::ShapeType::umlState, {100, 100});
  auto* entry = e.window->properties()->findChild<QLineEdit*>(QStringLiteral("prop_entry"));
  ASSERT_NE(entry, nullptr);
  QApplication::clipboard()->setText(QString::fromUtf8("bell\x07 and\x1b esc\xc2\x85"));
  entry->setFocus();
  QTest::keyClick(entry, Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(entry->text(), QStringLiteral("bell and esc"));
  QTest::keyClick(entry, Qt::Key_Return);
  EXPECT_EQ(node(e, s).properties.at("entry"), "bell and esc");

  // The label editor keeps line feeds and tabs and drops the rest.
  QApplication::clipboard()->setText(QString::fromUtf8("Line\x01 one\nLine\ttwo\x7f"));
  e.canvas().editLabel(QString::fromStdString(s));
  auto* editor = e.canvas().findChild<QPlainTextEdit*>(QStringLiteral("labelEditor"));
  ASSERT_NE(editor, nullptr);
  QTest::keyClick(editor, Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(editor->toPlainText(), QStringLiteral("Line one\nLine\ttwo"));
  QTest::keyClick(editor, Qt::Key_Return);
  EXPECT_EQ(node(e, s).text, "Line one\nLine\ttwo");

  // The panel's multi-line text field likewise.
  QTest::qWait(1);
  auto* text = e.window->properties()->findChild<QPlainTextEdit*>(QStringLiteral("prop_text"));
  ASSERT_NE(text, nullptr);
  text->setFocus();
  text->selectAll();
  QApplication::clipboard()->setText(QString::fromUtf8("Valve\x08 open"));
  QTest::keyClick(text, Qt::Key_V, Qt::ControlModifier);
  QTest::keyClick(text, Qt::Key_Return, Qt::ControlModifier);
  EXPECT_EQ(node(e, s).text, "Valve open");
}
