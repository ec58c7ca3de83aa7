// The statement reader: where statements end, the errors it reports with
// line and column, and bad input that must neither crash nor hang.
#include <algorithm>
#include <gtest/gtest.h>

#include "interchange/sysml_header.h"
#include "interchange/sysml_import.h"
#include "interchange/sysml_syntax.h"
#include "sysml_test_support.h"

using namespace modelyne::interchange;

namespace {

std::vector<SyntaxError> errorsOf(std::string text) { return parseSysml(std::move(text)).errors; }

}  // namespace

// Headers, bodies, expressions with braces and a result expression at a body's end.
TEST(SysmlSyntax, SplitsStatementsAndBodies) {
  const SyntaxTree t = parseSysml(
      "package P {\n"
      "  part def A { attribute m : Real = sum(xs.?{in x; x > 0}); }\n"
      "  constraint def C { in x : Real; x > 0 }\n"
      "  /* note */\n"
      "}\n");
  ASSERT_TRUE(t.errors.empty());
  ASSERT_EQ(t.statements.size(), 1u);
  const Statement& p = t.statements[0];
  ASSERT_EQ(p.body.size(), 3u);
  EXPECT_EQ(p.body[0].body.size(), 1u);
  EXPECT_EQ(joinTokens(t.header(p.body[0].body[0])), "attribute m : Real = sum(xs.?{ in x; x > 0 })");
  ASSERT_EQ(p.body[1].body.size(), 2u);
  EXPECT_FALSE(p.body[1].body[1].semicolon);
  EXPECT_EQ(joinTokens(t.header(p.body[1].body[1])), "x > 0");
  EXPECT_EQ(t.firstToken(p.body[2]).kind, TokenKind::comment);
  EXPECT_EQ(support::countStatements(t.statements), 7u);
}

// Each fault: line, column and what was expected; reading goes on after it.
TEST(SysmlSyntax, ReportsErrorsWithLineAndColumnAndRecovers) {
  struct Case {
    const char* text;
    std::uint32_t line, column;
    const char* message;
  };
  const Case cases[] = {
      {"part def A {\n  part b\n}\n", 3, 1, "Expected ';' after 'b' to end the statement."},
      {"part x : ;\n", 1, 8, "Expected a type name after ':'."},
      {"part a = f(1;\npart b;\n", 1, 13, "Expected ')' before ';'."},
      {"part a = (1];\n", 1, 12, "Unexpected ']'; expected ')'."},
      {"}\npart b;\n", 1, 1, "Unexpected '}'; expected a statement."},
      {"package P {\n  part a;\n", 1, 11, "Expected '}' to close this body before the end of the text."},
      {"part a", 1, 1, "Expected ';' or a body to end this statement before the end of the text."},
      {"part 'a\n", 1, 6, "Expected a closing ' for the name that begins here."},
      {"/* open", 1, 1, "Expected '*/' to close the comment that begins here."},
      {"part a; ` part b;", 1, 9, "Unexpected character '`'; expected a statement."},
  };
  for (const Case& c : cases) {
    SysmlContent content = readSysml(c.text, "t.sysml");
    const SyntaxError want{c.line, c.column, c.message};
    EXPECT_NE(std::find(content.report.errors.begin(), content.report.errors.end(), want), content.report.errors.end())
        << c.text << "\n" << errorLines(content.report);
  }
  // The statement after a fault is still read.
  const SysmlContent after = readSysml("part def A {\n  part b\n}\npart def C;\n", "t.sysml");
  EXPECT_EQ(after.status, ImportStatus::partial);
  bool found = false;
  for (const ImportedModel& m : after.models)
    for (const auto& n : m.nodes) found = found || n.text == "C";
  EXPECT_TRUE(found);
}

// Truncated text, unbalanced braces, deep nesting, bad bytes and huge input
// give errors, never a crash or a hang.
TEST(SysmlSyntax, BadInputGivesClearErrors) {
  const std::string full = "package P { part def A { part b : B[1]; } connect a to b; }";
  for (std::size_t n = 0; n < full.size(); ++n) readSysml(full.substr(0, n), "t.sysml");

  EXPECT_EQ(errorsOf("package P { }}}}").size(), 3u);

  std::string deep;
  for (int i = 0; i < 100000; ++i) deep += "part a {";
  const auto nested = errorsOf(deep);
  const SyntaxError tooDeep{1, 1600, "Bodies nest deeper than 200 levels; expected at most that many. The body is skipped."};
  EXPECT_NE(std::find(nested.begin(), nested.end(), tooDeep), nested.end());
  std::string brackets(100000, '(');
  EXPECT_FALSE(errorsOf("attribute a = " + brackets + ";").empty());

  const auto utf8 = errorsOf("part def A\xC3\x28;\n");
  ASSERT_FALSE(utf8.empty());
  EXPECT_EQ(utf8.front().message, "Invalid UTF-8 byte 0xC3; expected text in UTF-8.");
  EXPECT_EQ(utf8.front().column, 11u);

  const SysmlContent big = readSysml(std::string(50u << 20, ' '), "big.sysml");
  EXPECT_EQ(big.status, ImportStatus::unreadable);
  ASSERT_EQ(big.report.errors.size(), 1u);
  EXPECT_EQ(big.report.errors[0].message, "The text is 52428800 bytes long; expected at most 16777216 bytes.");

  // A binary file reports a bounded number of errors.
  std::string binary;
  for (int i = 0; i < 100000; ++i) binary += static_cast<char>(i % 256);
  EXPECT_LE(errorsOf(binary).size(), 200u);
}

// Fuzzer findings, each kept as a case of its own.
TEST(SysmlSyntax, FuzzFindings) {
  // A succession start with a body: its members are accounted for as lost.
  const SysmlContent c = readSysml("first a{y}", "f.sysml");
  EXPECT_EQ(c.report.total(), 2u);
  EXPECT_EQ(lossLines(c.report), "f.sysml:1: feature y: member of a succession not drawn\n");
  // A succession in a package after an action drawn in another of its models.
  EXPECT_EQ(readSysml("a{import{i}}", "f.sysml").report.total(), 3u);
  EXPECT_EQ(readSysml("x{doc{e;}}", "f.sysml").report.total(), 3u);
  const SysmlContent d = readSysml("action d; then a;", "f.sysml");
  EXPECT_EQ(summaryLine(d.report), "Read 2 declarations: 1 as nodes, 1 as edges, 0 as properties, 0 not drawn.");
}
