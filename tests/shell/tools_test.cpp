// Commands of the Tools menu and exports, driven through the main window.
#include <QFile>
#include <QListWidget>
#include <QProcess>
#include <gtest/gtest.h>

#include "bridge/review.h"
#include "shell/findings_panel.h"
#include "shell/review_session.h"
#include "shell_test_support.h"

using namespace modelyne;
using namespace modelyne::shell;
using namespace modelyne::shell::shelltest;

namespace {

QByteArray head(const QString& path, int n) {
  QFile f(path);
  return f.open(QIODevice::ReadOnly) ? f.read(n) : QByteArray();
}

}  // namespace

// Validation lists its findings; clicking one selects the element it names.
TEST(ShellTools, ValidateListsFindingsAndClickRevealsTheElement) {
  Editor e;
  ASSERT_TRUE(e.window->openFile(QStringLiteral(MODELYNE_SOURCE_DIR "/tests/shell/data/uc-with-findings.xml")));
  e.window->validate();
  QListWidget* list = e.window->findings()->list();
  ASSERT_EQ(list->count(), 2);
  EXPECT_EQ(list->item(0)->text(), QStringLiteral("Node 'box' (type=rect) not allowed on Use Case Diagram"));
  EXPECT_EQ(list->item(1)->text(),
            QStringLiteral("Edge 'e2' connects two actors. Only generalization is allowed between actors (SysML Distilled §5.8)."));
  EXPECT_EQ(e.window->findings()->statusText(), QStringLiteral("2 finding(s)"));
  QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(list->item(1)).center());
  EXPECT_EQ(e.canvas().selectedEdges(), QSet<QString>{QStringLiteral("e2")});
  QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(list->item(0)).center());
  EXPECT_EQ(e.canvas().selectedNodes(), QSet<QString>{QStringLiteral("box")});
}

// A malformed operand count stops the checker: what it found so far and the error are shown.
TEST(ShellTools, ValidateShowsFindingsGatheredBeforeTheOperandCountError) {
  Editor e;
  ASSERT_TRUE(e.window->openFile(QStringLiteral(MODELYNE_SOURCE_DIR "/tests/shell/data/sd-bad-operands.xml")));
  e.window->validate();
  QListWidget* list = e.window->findings()->list();
  ASSERT_GE(list->count(), 2);
  EXPECT_EQ(list->item(0)->text(), QStringLiteral("Node 'x' (type=rect) not allowed on Sequence Diagram"));
  EXPECT_TRUE(list->item(list->count() - 1)->text().contains(QStringLiteral("invalid stoi argument")));
}

// Generating from a description offline adds content in one undo step, and
// the review list records decisions through the bridge.
TEST(ShellTools, AiGenerateOfflineIsOneStepAndItsReviewIsUndoable) {
  Editor e;
  e.window->newProject(core::DiagramKind::bdd);
  const QString prompt = QStringLiteral("The Drone System contains a Flight Controller and a Battery. "
                                        "The Flight Controller sends commands to the Camera.");
  ASSERT_TRUE(e.window->aiGenerate(prompt, QStringLiteral("offline")));
  const std::size_t nodes = e.doc()->nodes().size();
  EXPECT_GE(nodes, 3u);
  EXPECT_EQ(e.undoCount(), 1u);
  EXPECT_TRUE(e.logged(QStringLiteral("AI Generate: running with the offline backend...")));
  // The new content is in view.
  const auto& first = e.doc()->nodes().front().geom;
  EXPECT_TRUE(e.canvas().visibleSceneRect().intersects(QRectF(first.x, first.y, first.w, first.h)));

  ReviewSession& review = *e.window->review();
  ASSERT_EQ(review.entries().size(), nodes + e.doc()->edges().size());
  EXPECT_TRUE(review.line(0).startsWith(QStringLiteral("[?      ] ")));
  EXPECT_EQ(review.entries()[0].ruleId, "__ml_candidate__");
  const std::string record = review.decide(0, "ACCEPT");
  EXPECT_TRUE(record.ends_with("\r\n\r\nDecision: Accepted."));
  EXPECT_TRUE(review.line(0).startsWith(QStringLiteral("[Accept ] ")));
  EXPECT_EQ(e.doc()->nodes().front().properties.at("__reviewRecord__"), record);
  review.decide(1, "MODIFY");
  EXPECT_TRUE(review.line(1).startsWith(QStringLiteral("[Modify ] ")));
  const std::string gone = review.entries()[2].id;
  const std::string discarded = review.decide(2, "DISCARD");
  EXPECT_TRUE(discarded.ends_with("\r\n\r\nDecision: Discarded."));
  EXPECT_EQ(e.doc()->findNode(gone), nullptr);
  EXPECT_TRUE(review.line(2).startsWith(QStringLiteral("[Discard] ")));
  // Undo takes the discard back; the entry is undecided again.
  e.window->action(QStringLiteral("edit.undo"))->trigger();
  review.refresh();
  EXPECT_NE(e.doc()->findNode(gone), nullptr);
  EXPECT_TRUE(review.line(2).startsWith(QStringLiteral("[?      ] ")));
  // Accept all is one step.
  const std::size_t steps = e.undoCount();
  review.decideAll("ACCEPT");
  EXPECT_EQ(e.undoCount(), steps + 1);
  EXPECT_EQ(review.undecidedCount(), 0u);

  // The whole generation goes back in one step after the review steps.
  while (e.undoCount() > 1) e.window->action(QStringLiteral("edit.undo"))->trigger();
  e.window->action(QStringLiteral("edit.undo"))->trigger();
  EXPECT_TRUE(e.doc()->nodes().empty());
}

TEST(ShellTools, AiGenerateRefusesWhileTheStartPageIsShown) {
  Editor e;
  e.window->newProject(core::DiagramKind::bdd);
  e.window->showStartPage();
  EXPECT_FALSE(e.window->aiGenerate(QStringLiteral("The System contains a Sensor."), QStringLiteral("offline")));
  EXPECT_TRUE(e.logged(QStringLiteral("AI Generate: dismiss the Start page first.")));
  EXPECT_TRUE(e.doc()->nodes().empty());
}

// Each export format writes a file of its kind and says so in the log.
TEST(ShellTools, ExportWritesEveryFormat) {
  Editor e;
  ASSERT_TRUE(e.window->openFile(QStringLiteral(MODELYNE_SOURCE_DIR "/samples/bdd-vehicle.xml")));
  const std::pair<const char*, QByteArray> formats[] = {
      {"out.svg", QByteArray("<?xml")}, {"out.pdf", QByteArray("%PDF-1.4")},
      {"out.png", QByteArray("\x89PNG")}, {"out.jpg", QByteArray("\xFF\xD8\xFF")}};
  for (const auto& [name, magic] : formats) {
    const QString path = e.data.filePath(QLatin1String(name));
    ASSERT_TRUE(e.window->exportTo(path)) << name;
    EXPECT_EQ(head(path, static_cast<int>(magic.size())), magic) << name;
    EXPECT_TRUE(e.logged(QStringLiteral("Exported to %1.").arg(QDir::toNativeSeparators(path)))) << name;
  }
  EXPECT_TRUE(head(e.data.filePath(QStringLiteral("out.svg")), 400).contains("<svg"));
  // A folder that does not exist: the failure is logged, nothing else happens.
  const QString bad = e.data.filePath(QStringLiteral("missing/out.png"));
  EXPECT_FALSE(e.window->exportTo(bad));
  EXPECT_TRUE(e.logged(QStringLiteral("PNG export failed: could not write %1").arg(QDir::toNativeSeparators(bad))));
}

// The editor's Export and `modelyne export` are one function: for every
// format the same file gives the same bytes from both faces, the diagram
// frame included.
TEST(ShellTools, EditorAndToolExportTheSameBytes) {
  Editor e;
  const QString sample = QStringLiteral(MODELYNE_SOURCE_DIR "/samples/bdd-vehicle.xml");
  ASSERT_TRUE(e.window->openFile(sample));
  for (const char* format : {"svg", "pdf", "png", "jpg", "jpeg"}) {
    const QString editor = e.data.filePath(QStringLiteral("editor.") + QLatin1String(format));
    const QString tool = e.data.filePath(QStringLiteral("tool.") + QLatin1String(format));
    ASSERT_TRUE(e.window->exportTo(editor)) << format;
    QProcess run;
    run.start(QStringLiteral(MODELYNE_CLI_PATH), {QStringLiteral("export"), sample, QStringLiteral("-o"), tool});
    ASSERT_TRUE(run.waitForFinished(120000)) << format;
    ASSERT_EQ(run.exitCode(), 0) << format << ": " << run.readAllStandardError().toStdString();
    const QByteArray bytes = head(editor, 1 << 30);
    EXPECT_GT(bytes.size(), 1000) << format;
    EXPECT_TRUE(bytes == head(tool, 1 << 30)) << format;
  }
  EXPECT_TRUE(head(e.data.filePath(QStringLiteral("editor.svg")), 1 << 20)
                  .contains(">bdd [package] Vehicle Structure [Product Breakdown]</text>"));
}

// Switching the language retranslates the menus at once.
TEST(ShellTools, LanguageSwitchTranslatesTheMenus) {
  Editor e;
  e.window->applyLanguage(QStringLiteral("ja"));
  EXPECT_EQ(e.window->action(QStringLiteral("file.open"))->text(), QStringLiteral("開く(&O)…"));
  EXPECT_EQ(e.window->menuBar()->actions().first()->text(), QStringLiteral("ファイル(&F)"));
  e.window->applyLanguage(QStringLiteral("de"));
  EXPECT_EQ(e.window->menuBar()->actions().first()->text(), ui("ui.menu.file"));
  EXPECT_NE(ui("ui.menu.file"), QStringLiteral("&File"));
  e.window->applyLanguage(QStringLiteral("en"));
  EXPECT_EQ(e.window->action(QStringLiteral("file.open"))->text(), QStringLiteral("&Open…"));
}
