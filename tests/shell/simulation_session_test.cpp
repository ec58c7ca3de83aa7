// The editor's simulation session: the same trace bytes as the command-line
// tool, asking at decisions, breakpoints under automatic motion, log lines
// through the string tables, and a document that is never changed.
#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "io/diagram_reader.h"
#include "shell/i18n/strings.h"
#include "shell/simulation_session.h"
#include "shell_test_support.h"

namespace modelyne::shell {
namespace {

namespace fs = std::filesystem;

std::string read(const fs::path& p) {
  std::ifstream in(p, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

void load(core::Document& doc, const char* sample) {
  ASSERT_TRUE(io::parseDiagramInto(read(fs::path(MODELYNE_SOURCE_DIR) / "samples" / sample), doc));
}

TEST(SimulationSession, ExportsTheToolsBytesAndLeavesTheDocumentAlone) {
  shelltest::app();
  i18n::setLanguage(QStringLiteral("en"));
  core::Document doc;
  load(doc, "act-order-fulfilment.xml");
  const std::vector<core::Node> nodesBefore = doc.nodes();

  SimulationSession session;
  QStringList log;
  QObject::connect(&session, &SimulationSession::logged, [&log](const QString& l) { log << l; });
  core::sim::SimulationOptions options;
  options.choices["inStock"] = {"e6"};
  session.open(doc, options);
  EXPECT_TRUE(session.editingLocked());
  while (session.step()) {
  }
  EXPECT_EQ(session.simulation()->status(), core::sim::RunStatus::completed);

  const fs::path golden = fs::path(MODELYNE_SOURCE_DIR) / "tests" / "sim" / "golden";
  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("trace.jsonl"));
  ASSERT_TRUE(session.exportTrace(path, true));
  EXPECT_EQ(read(path.toStdString()), read(golden / "sample-act-in-stock.jsonl"));
  EXPECT_EQ(session.traceText(false), read(golden / "sample-act-in-stock.trace"));

  ASSERT_GE(log.size(), 4);
  EXPECT_EQ(log[0], QStringLiteral("Step 0: start starts (in: -, out: e1)."));
  EXPECT_EQ(log[3], QStringLiteral("Step 3: decision inStock takes e6 (user; -)."));
  EXPECT_EQ(log.back(), QStringLiteral("Activity simulation completed after 8 step(s)."));
  EXPECT_TRUE(session.visited().contains("join"));
  EXPECT_EQ(session.lastVisited(), (std::set<std::string>{"done", "e12", "e13", "e14", "wait"}));

  EXPECT_EQ(doc.nodes(), nodesBefore);
  session.close();
  EXPECT_FALSE(session.editingLocked());
}

TEST(SimulationSession, AsksAtDecisionsAndStopsAtBreakpoints) {
  shelltest::app();
  core::Document doc;
  load(doc, "act-order-fulfilment.xml");
  SimulationSession session;
  QSignalSpy asked(&session, &SimulationSession::decisionNeeded);
  session.open(doc);
  session.setAskAtDecisions(true);
  for (int i = 0; i < 4; ++i) session.step();
  ASSERT_EQ(asked.count(), 1);
  EXPECT_EQ(asked[0][0].toString(), QStringLiteral("inStock"));
  EXPECT_EQ(asked[0][1].toStringList(), (QStringList{QStringLiteral("e4"), QStringLiteral("e6")}));
  EXPECT_EQ(session.simulation()->steps(), 2u);  // waits for the answer
  EXPECT_TRUE(session.choose("inStock", "e6"));

  session.toggleBreakpoint("join");
  session.setSpeed(8);  // clamped to 2x
  EXPECT_EQ(session.interval(), 400);
  session.run();
  EXPECT_TRUE(QTest::qWaitFor([&] { return !session.running(); }, 20000));
  EXPECT_EQ(session.simulation()->steps(), 6u);  // paused after the join fired
  EXPECT_TRUE(session.active().contains("ship") || session.active().contains("e11"));

  session.reset();
  EXPECT_EQ(session.simulation()->steps(), 0u);
  EXPECT_TRUE(session.visited().empty());
}

}  // namespace
}  // namespace modelyne::shell
