// Markdown to CSV: records, quoting, and a read-back through Python's csv module.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

#include "explain_fixture.h"

namespace modelyne::explain {
namespace {

using core::EdgeType;
using core::ShapeType;
using testing::Diagram;

TEST(ExplainCsv, OneRecordPerContentLine) {
  EXPECT_EQ(markdownToCsv("# Diagram explanation\n"
                          "\n## Overview\n\n"
                          "This is a general-purpose diagram containing 0 nodes and 0 edges.\n"
                          "\n## Connectivity\r\n\r\n"
                          "Key elements: Pump, Valve.\r\n"
                          "Isolated nodes: 2.\n"
                          "Decomposition:\n"
                          "  - A contains B.\n"
                          "    - B contains C.\n"
                          "  1. A sends to B.\n"
                          "   \t\n"
                          "## Empty\n"
                          "### deeper\n"),
            "Section,Detail\r\n"
            "Title,Diagram explanation\r\n"
            "Overview,This is a general-purpose diagram containing 0 nodes and 0 edges.\r\n"
            "Connectivity,\"Key elements: Pump, Valve.\"\r\n"
            "Connectivity,Isolated nodes: 2.\r\n"
            "Connectivity,Decomposition:\r\n"
            "Connectivity,A contains B.\r\n"
            "Connectivity,B contains C.\r\n"
            "Connectivity,1. A sends to B.\r\n"
            "Empty,### deeper\r\n");
}

TEST(ExplainCsv, QuotesCommasQuotesAndLineBreaks) {
  EXPECT_EQ(markdownToCsv("## Say \"hi\", then\nplain\n\"quoted\"\nlone\rcr\n"),
            "Section,Detail\r\n"
            "\"Say \"\"hi\"\", then\",plain\r\n"
            "\"Say \"\"hi\"\", then\",\"\"\"quoted\"\"\"\r\n"
            "\"Say \"\"hi\"\", then\",\"lone\rcr\"\r\n");
  // Content before any section has an empty first column; no input means only the header.
  EXPECT_EQ(markdownToCsv("stray"), "Section,Detail\r\n,stray\r\n");
  EXPECT_EQ(markdownToCsv(""), "Section,Detail\r\n");
}

// Python's csv module must read back exactly the rows we meant to write.
TEST(ExplainCsv, PythonCsvReadsTheRowsBack) {
  if (std::system("python3 -c pass") != 0) GTEST_SKIP() << "python3 is not available";
  Diagram d;
  d.node("a", ShapeType::sysmlBlock, "Pump, \"main\"");
  d.node("b", ShapeType::sysmlBlock, "Valve");
  d.edge("a", "b", EdgeType::composition);
  const std::string csv = markdownToCsv(renderMarkdown(d.explain()));

  const auto dir = std::filesystem::temp_directory_path() /
                   ("modelyne_explain_csv_" + std::to_string(std::random_device{}()));
  std::filesystem::create_directories(dir);
  const auto csvPath = dir / "explain.csv";
  const auto outPath = dir / "rows.txt";
  std::ofstream(csvPath, std::ios::binary) << csv;
  const std::string cmd =
      "python3 -c \"import csv,sys\n"
      "rows=list(csv.reader(open(sys.argv[1],newline='',encoding='utf-8')))\n"
      "open(sys.argv[2],'w',encoding='utf-8',newline='').write(''.join(a+'|'+b+'\\n' for a,b in rows))\" " +
      csvPath.string() + " " + outPath.string();
  ASSERT_EQ(std::system(cmd.c_str()), 0);
  std::stringstream rows;
  rows << std::ifstream(outPath, std::ios::binary).rdbuf();
  std::filesystem::remove_all(dir);
  EXPECT_EQ(rows.str(),
            "Section|Detail\n"
            "Title|Structural diagram \u2014 system structure and relationships\n"
            "Overview|This is a structural diagram containing 2 nodes and 1 edge.\n"
            "System Structure & Relationships|Top-level blocks / parts: Pump, \"main\".\n"
            "System Structure & Relationships|Decomposition:\n"
            "System Structure & Relationships|Pump, \"main\" contains Valve.\n"
            "System Structure & Relationships|Relationships:\n"
            "System Structure & Relationships|composition: 1 (e.g. Pump, \"main\" \u2192 Valve).\n"
            "Connectivity|Key elements: Pump, \"main\", Valve.\n"
            "Connectivity|Isolated nodes: 0.\n"
            "Connectivity|Most connected element: Pump, \"main\" (1 incident edges).\n"
            "Purpose & Intent|This diagram models the architecture of the system \u2014 how it is "
            "decomposed into parts, what each part offers through its ports and interfaces, and how "
            "the parts relate. Read it to understand what is being built and how its pieces fit "
            "together.\n");
}

}  // namespace
}  // namespace modelyne::explain
