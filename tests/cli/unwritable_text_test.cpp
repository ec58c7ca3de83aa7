// Text XML cannot carry (control characters, bytes that are not UTF-8):
// export and format still write what the model holds, warn once per element
// with the element's line, and exit 1.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "run_tool.h"

namespace modelyne::cli::test {
namespace {

namespace fs = std::filesystem;

// Line 3: node a (a bell in its text); line 7: node b (a stray byte in a
// property); line 12: node c, fine (a tab and a line feed); line 17: edge e
// (an escape character).
const std::string kModel =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<diagram formatVersion=\"1.0\" appVersion=\"0.1.0\" xmlns=\"modelyne:diagram\">\n"
    "  <node id=\"a\" type=\"rect\">\n"
    "    <geom x=\"0\" y=\"0\" w=\"80\" h=\"40\"/>\n"
    "    <text>bell\x07</text>\n"
    "  </node>\n"
    "  <node id=\"b\" type=\"rect\">\n"
    "    <geom x=\"200\" y=\"0\" w=\"80\" h=\"40\"/>\n"
    "    <text>Gr\xC3\xB6\xC3\x9F" "e</text>\n"
    "    <property key=\"note\" value=\"x\xFFy\"/>\n"
    "  </node>\n"
    "  <node id=\"c\" type=\"rect\">\n"
    "    <geom x=\"400\" y=\"0\" w=\"80\" h=\"40\"/>\n"
    "    <text>tab\tand\nline feed</text>\n"
    "  </node>\n"
    "  <edge id=\"e\" source=\"a\" sourcePort=\"right\" target=\"b\" targetPort=\"left\" edgeType=\"straightArrow\" text=\"go\x1B[2J\"/>\n"
    "</diagram>\n";

const std::string kWarnings =
    "modelyne: warning: m.xml:3: node 'a' text holds U+0007, which XML 1.0 does not allow\n"
    "modelyne: warning: m.xml:7: node 'b' property 'note' holds the byte 0xFF, which is not UTF-8\n"
    "modelyne: warning: m.xml:17: edge 'e' text holds U+001B, which XML 1.0 does not allow\n";

TEST(CliUnwritableText, ExportAndFormatWarnPerElementAndExitOne) {
  const fs::path dir = scratchDir("unwritable-text");
  writeText(dir / "m.xml", kModel);

  const ToolRun svg = runTool({"export", "m.xml", "-o", "m.svg"}, {}, dir);
  EXPECT_EQ(svg.exitCode, 1);
  EXPECT_EQ(svg.err, kWarnings);
  // The writer copies the text as the model holds it.
  const std::string written = readText(dir / "m.svg");
  EXPECT_NE(written.find(">bell\x07</text>"), std::string::npos);
  EXPECT_NE(written.find(">go\x1B[2J</text>"), std::string::npos);

  const ToolRun png = runTool({"export", "m.xml", "-o", "m.png"}, {}, dir);
  EXPECT_EQ(png.exitCode, 1);
  EXPECT_EQ(png.err, kWarnings);
  EXPECT_TRUE(fs::exists(dir / "m.png"));

  const ToolRun format = runTool({"format", "m.xml"}, {}, dir);
  EXPECT_EQ(format.exitCode, 1);
  EXPECT_EQ(format.err, kWarnings);
  EXPECT_NE(format.out.find("<text>bell\x07</text>"), std::string::npos);

  // A clean model says nothing and exits 0.
  std::string clean = kModel;
  clean.replace(clean.find("bell\x07"), 5, "bell");
  clean.replace(clean.find("x\xFFy"), 3, "xy");
  clean.replace(clean.find("go\x1B[2J"), 6, "go");
  writeText(dir / "clean.xml", clean);
  const ToolRun ok = runTool({"export", "clean.xml", "-o", "clean.svg"}, {}, dir);
  EXPECT_EQ(ok.exitCode, 0);
  EXPECT_EQ(ok.err, "");
}

// In a project, lines count in the whole file and each model is checked;
// an id that holds a control character is quoted escaped.
TEST(CliUnwritableText, ProjectModelsAndEscapedIds) {
  const fs::path dir = scratchDir("unwritable-project");
  const std::string project =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<modelyneProject formatVersion=\"1.0\" active=\"0\">\n"
      "  <modelyneModel id=\"m1\" name=\"One\">\n"
      "<diagram formatVersion=\"1.0\" appVersion=\"0.1.0\" xmlns=\"modelyne:diagram\">\n"
      "  <node id=\"ok\" type=\"rect\"><geom x=\"0\" y=\"0\" w=\"80\" h=\"40\"/><text>fine</text></node>\n"
      "</diagram>\n"
      "  </modelyneModel>\n"
      "  <modelyneModel id=\"m2\" name=\"Two\">\n"
      "<diagram formatVersion=\"1.0\" appVersion=\"0.1.0\" xmlns=\"modelyne:diagram\">\n"
      "  <node id=\"x\x01y\" type=\"rect\"><geom x=\"0\" y=\"0\" w=\"80\" h=\"40\"/><text>t</text></node>\n"
      "</diagram>\n"
      "  </modelyneModel>\n"
      "</modelyneProject>\n";
  writeText(dir / "p.xml", project);
  const ToolRun format = runTool({"format", "p.xml"}, {}, dir);
  EXPECT_EQ(format.exitCode, 1) << format.err;
  EXPECT_EQ(format.err,
            "modelyne: warning: p.xml:10: node 'x\\x01y' id holds U+0001, which XML 1.0 does not allow\n");
  // Export reads the active model, which is clean.
  const ToolRun exported = runTool({"export", "p.xml", "-o", "p.svg"}, {}, dir);
  EXPECT_EQ(exported.exitCode, 0) << exported.err;
  const ToolRun second = runTool({"export", "p.xml", "--model", "m2", "-o", "p2.svg"}, {}, dir);
  EXPECT_EQ(second.exitCode, 1);
  EXPECT_EQ(second.err, format.err);
}

}  // namespace
}  // namespace modelyne::cli::test
