// Files as the user meets them: title and modified mark, recent files, the
// daily log file, crash recovery copies, multi-model projects.
#include <QDate>
#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>

#include "shell/autosave.h"
#include "shell/settings.h"
#include "shell/start_page.h"
#include "shell_test_support.h"

using namespace modelyne;
using namespace modelyne::shell;
using namespace modelyne::shell::shelltest;

TEST(ShellFiles, TitleShowsFileAndModifiedMark) {
  Editor e;
  e.window->newProject(core::DiagramKind::stm);
  EXPECT_TRUE(e.window->windowTitle().startsWith(QStringLiteral("Untitled[*]")));
  EXPECT_FALSE(e.window->isWindowModified());
  e.canvas().placeNode(core::ShapeType::umlState, {100, 100});
  EXPECT_TRUE(e.window->isWindowModified());
  const QString path = e.data.filePath(QStringLiteral("door.xml"));
  ASSERT_TRUE(e.window->saveAs(path));
  EXPECT_TRUE(e.window->windowTitle().startsWith(QStringLiteral("door.xml[*]")));
  EXPECT_FALSE(e.window->isWindowModified());
  // Undo back past the save point makes it modified again; redo clears it.
  e.window->action(QStringLiteral("edit.undo"))->trigger();
  EXPECT_TRUE(e.window->isWindowModified());
  e.window->action(QStringLiteral("edit.redo"))->trigger();
  EXPECT_FALSE(e.window->isWindowModified());
  EXPECT_EQ(settings::recentFiles().value(0), QFileInfo(path).absoluteFilePath());
  EXPECT_TRUE(e.logged(QStringLiteral("Saved %1.").arg(QDir::toNativeSeparators(path))));
}

// After saving, "undo, then a different edit" twice leaves unsaved work:
// the title says so and closing would ask.
TEST(ShellFiles, SaveThenUndoAndADifferentEditTwiceStaysModified) {
  Editor e;
  e.window->newProject(core::DiagramKind::bdd);
  e.canvas().placeNode(core::ShapeType::sysmlBlock, {100, 100});
  ASSERT_TRUE(e.window->saveAs(e.data.filePath(QStringLiteral("work.xml"))));
  for (int round = 0; round < 2; ++round) {
    e.window->action(QStringLiteral("edit.undo"))->trigger();
    e.canvas().placeNode(core::ShapeType::sysmlBlock, {300.0 + 200 * round, 100});
    EXPECT_TRUE(e.window->session()->modified()) << "round " << round;
    EXPECT_TRUE(e.window->isWindowModified()) << "round " << round;
  }
}

TEST(ShellFiles, EveryMessageGoesToTheDailyLogFile) {
  Editor e;
  e.window->logMessage(QStringLiteral("hello from the test"));
  const QDate today = QDate::currentDate();
  const QString file = e.data.filePath(QString::asprintf("modelyne_output_%04d%02d%02d.log", today.year(), today.month(), today.day()));
  QFile f(file);
  ASSERT_TRUE(f.open(QIODevice::ReadOnly)) << file.toStdString();
  EXPECT_TRUE(f.readAll().contains("hello from the test"));
}

TEST(ShellFiles, RecoveryCopyIsKeptBesideNeverOverTheFile) {
  Editor e;
  const QString path = e.data.filePath(QStringLiteral("m.xml"));
  e.window->newProject(core::DiagramKind::req);
  ASSERT_TRUE(e.window->saveAs(path));
  QFile original(path);
  ASSERT_TRUE(original.open(QIODevice::ReadOnly));
  const QByteArray saved = original.readAll();
  original.close();
  e.canvas().placeNode(core::ShapeType::sysmlRequirementUsage, {200, 200});
  AutosaveManager autosave(e.data.path());
  autosave.store(*e.window->session());
  QFile check(path);
  ASSERT_TRUE(check.open(QIODevice::ReadOnly));
  EXPECT_EQ(check.readAll(), saved);  // the user's file is untouched
  const auto copy = autosave.recoveryFor(path);
  ASSERT_TRUE(copy.has_value());
  EXPECT_NE(copy->find("sysmlRequirementUsage"), std::string::npos);
  // Reopening the file offers the copy (declined without a user here) and drops it.
  ASSERT_TRUE(e.window->openFile(path));
  EXPECT_FALSE(autosave.recoveryFor(path).has_value());
}

TEST(ShellFiles, ProjectOfSeveralModelsRoundTrips) {
  Editor e;
  e.window->newProject(core::DiagramKind::bdd);
  e.canvas().placeNode(core::ShapeType::sysmlBlock, {100, 100});
  e.window->action(QStringLiteral("model.add"))->trigger();  // same kind when nobody answers
  e.canvas().placeNode(core::ShapeType::sysmlPartDef, {300, 100});
  const QString path = e.data.filePath(QStringLiteral("two.xml"));
  ASSERT_TRUE(e.window->saveAs(path));
  QFile f(path);
  ASSERT_TRUE(f.open(QIODevice::ReadOnly));
  EXPECT_TRUE(f.readAll().startsWith("<modelyneProject"));
  ASSERT_TRUE(e.window->openFile(path));
  ASSERT_EQ(e.window->session()->modelCount(), 2);
  EXPECT_EQ(e.window->session()->activeIndex(), 1);
  EXPECT_EQ(e.doc()->nodes().at(0).type, core::ShapeType::sysmlPartDef);
  EXPECT_EQ(e.window->session()->document(0)->nodes().at(0).type, core::ShapeType::sysmlBlock);
}

TEST(ShellFiles, StartPageOffersTheShippedSamples) {
  const QStringList samples = StartPage::sampleFiles();
  EXPECT_GE(samples.size(), 3);
  for (const QString& s : samples) EXPECT_TRUE(s.endsWith(QStringLiteral(".xml")));
  Editor e;
  EXPECT_TRUE(e.window->startPageShown());
  ASSERT_TRUE(e.window->openFile(samples.first()));
  EXPECT_FALSE(e.window->startPageShown());
  e.window->action(QStringLiteral("file.close"))->trigger();
  EXPECT_TRUE(e.window->startPageShown());
  EXPECT_EQ(e.window->session(), nullptr);
}

// The editor opens through the same io function as the tool: a skipped
// element is reported at its line, and a damaged file once, with the line of
// the fault.
TEST(ShellFiles, OpeningReportsSkipsAndFaultsAtTheirLines) {
  Editor e;
  const QString dup = e.data.filePath(QStringLiteral("dup.xml"));
  const QString broken = e.data.filePath(QStringLiteral("broken.xml"));
  auto write = [](const QString& path, const QByteArray& bytes) {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(bytes);
  };
  write(dup, "<diagram>\n<node id=\"a\"/>\n<node id=\"a\"/>\n<!-- <DiagramFrame kind=\"act\"/> -->\n</diagram>\n");
  write(broken, "<diagram>\n<node id=\"n\"><geom x=\"?\"/></node>\n</diagram>\n");
  ASSERT_TRUE(e.window->openFile(dup));
  EXPECT_TRUE(e.logged(QStringLiteral("Skipped while reading: line 3: node id 'a' is used twice; the later node was skipped")));
  EXPECT_EQ(e.doc()->nodes().size(), 1u);
  EXPECT_EQ(e.window->session()->kind(), core::DiagramKind::act);
  EXPECT_FALSE(e.window->openFile(broken));
  EXPECT_TRUE(e.logged(QStringLiteral("Could not open %1: line 2: invalid stof argument: attribute 'x' of <geom> in node 'n' is \"?\"")
                           .arg(QDir::toNativeSeparators(broken))));
}
