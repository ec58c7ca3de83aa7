// End-to-end tests of the `modelyne` binary: outputs, exit codes, pipes with
// "-", and that a failed command leaves OUT alone. The subsystems' own tests
// cover the logic behind each command.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "run_tool.h"

namespace modelyne::cli::test {
namespace {

namespace fs = std::filesystem;

const fs::path kSamples = fs::path(MODELYNE_SOURCE_DIR) / "samples";

// A block definition diagram with one block and one basic shape, which no
// diagram kind allows.
const std::string kBddXml =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<diagram formatVersion=\"1.0\" appVersion=\"0.1.0-win\" xmlns=\"modelyne:diagram\">\n"
    "  <node id=\"b1\" type=\"sysmlBlock\">\n"
    "    <geom x=\"80\" y=\"80\" w=\"180\" h=\"100\"/>\n"
    "    <text>Drone</text>\n"
    "  </node>\n"
    "  <node id=\"r1\" type=\"rect\">\n"
    "    <geom x=\"300\" y=\"80\" w=\"180\" h=\"100\"/>\n"
    "  </node>\n"
    "  <DiagramFrame kind=\"bdd\" elementType=\"block\" elementName=\"Drone\" name=\"\" show=\"true\"/>\n"
    "</diagram>\n";

const std::string kRectFinding = "Node 'r1' (type=rect) not allowed on Block Definition Diagram";

// The same content as a loose, hand-written file: odd spacing, single quotes,
// attributes out of order, no frame line.
const std::string kLooseXml =
    "<diagram xmlns='modelyne:diagram'>\n"
    "<node type='sysmlBlock'   id='b1'><geom w='180' h='100.0' x='80' y='80'/><text>Drone</text></node>\n"
    "</diagram>";

// Line 4 holds a geometry value that is not a number.
const std::string kBrokenXml =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<diagram formatVersion=\"1.0\" xmlns=\"modelyne:diagram\">\n"
    "  <node id=\"b1\" type=\"sysmlBlock\">\n"
    "    <geom x=\"abc\" y=\"80\" w=\"180\" h=\"100\"/>\n"
    "  </node>\n"
    "</diagram>\n";

bool isOneErrorLine(const std::string& err) {
  return err.starts_with("modelyne: error: ") && err.find('\n') == err.size() - 1;
}

TEST(CliBasics, VersionHelpAndUsageErrors) {
  ToolRun r = runTool({"--version"});
  EXPECT_EQ(r.exitCode, 0);
  EXPECT_EQ(r.out, "modelyne 0.1.0\n");

  r = runTool({"--help"});
  EXPECT_EQ(r.exitCode, 0);
  for (const char* c : {"check", "assess", "explain", "export", "generate", "plan", "prompt", "eval", "simulate",
                        "info", "format", "layout", "cloud"})
    EXPECT_NE(r.out.find(std::string("\n  ") + c + " "), std::string::npos) << c;

  r = runTool({"check", "--help"});
  EXPECT_EQ(r.exitCode, 0);
  EXPECT_TRUE(r.out.starts_with("usage: modelyne check FILE")) << r.out;
  EXPECT_NE(r.out.find("example"), std::string::npos);
  EXPECT_EQ(r.err, "");

  // Usage faults: one error line, nothing on standard output, exit 2.
  for (const std::vector<std::string>& args :
       {std::vector<std::string>{}, {"frobnicate"}, {"check"}, {"check", "a.xml", "b.xml"},
        {"check", "--bogus", "a.xml"}, {"check", "a.xml", "--kind"}, {"--version", "x"}}) {
    r = runTool(args);
    EXPECT_EQ(r.exitCode, 2) << r.err;
    EXPECT_TRUE(isOneErrorLine(r.err)) << r.err;
    EXPECT_EQ(r.out, "");
  }
  EXPECT_EQ(runTool({"check", "x.xml", "--kind", "bdx"}).err,
            "modelyne: error: unknown diagram kind 'bdx' (kinds: bdd, ibd, pkg, par, act, sd, stm, uc, "
            "req, test, mm)\n");
  EXPECT_EQ(runTool({"check", "--bogus"}).err, "modelyne: error: unknown option '--bogus'\n");
}

TEST(CliCheck, FindingsAsTextOrJsonFromFileOrStdin) {
  const fs::path dir = scratchDir("check");
  writeText(dir / "m.xml", kBddXml);

  ToolRun text = runTool({"check", (dir / "m.xml").string()});
  EXPECT_EQ(text.exitCode, 1);
  EXPECT_TRUE(text.out.starts_with(kRectFinding + "\n")) << text.out;

  // The same through a pipe.
  ToolRun piped = runTool({"check", "-"}, kBddXml);
  EXPECT_EQ(piped.exitCode, 1);
  EXPECT_EQ(piped.out, text.out);

  ToolRun json = runTool({"check", "-", "--format", "json"}, kBddXml);
  EXPECT_EQ(json.exitCode, 1);
  EXPECT_TRUE(json.out.starts_with("[\n  \"" + kRectFinding + "\"")) << json.out;
  EXPECT_TRUE(json.out.ends_with("\n]\n"));

  // --kind overrides the frame: a mind map does not allow blocks either.
  ToolRun mm = runTool({"check", "-", "--kind", "mm"}, kBddXml);
  EXPECT_NE(mm.out.find("Node 'b1' (type=sysmlBlock) not allowed on Mind Map Diagram\n"),
            std::string::npos)
      << mm.out;

  EXPECT_EQ(runTool({"check", "-", "--format", "xml"}, kBddXml).exitCode, 2);

  // JSON stays valid for ids with quotes and bytes that are not UTF-8.
  const std::string oddId =
      "<diagram xmlns=\"modelyne:diagram\"><node id=\"r&quot;\xE9\xC3\xA9\" type=\"rect\"/>"
      "<DiagramFrame kind=\"bdd\"/></diagram>";
  EXPECT_EQ(runTool({"check", "-", "--format", "json"}, oddId).out,
            "[\n  \"Node 'r\\\"\\ufffd\xC3\xA9' (type=rect) not allowed on Block Definition Diagram\"\n]\n");
}

TEST(CliErrors, FaultsNameTheFileAndLine) {
  const fs::path dir = scratchDir("errors");
  writeText(dir / "broken.xml", kBrokenXml);

  // One line, one line number: the place is printed once, from the fields.
  ToolRun r = runTool({"check", "broken.xml"}, {}, dir);
  EXPECT_EQ(r.exitCode, 2);
  EXPECT_EQ(r.err, "modelyne: error: broken.xml:4: invalid stof argument: attribute 'x' of <geom> in node 'b1' is \"abc\"\n");
  EXPECT_EQ(r.out, "");

  r = runTool({"assess", "-"}, kBrokenXml);
  EXPECT_TRUE(r.err.starts_with("modelyne: error: <stdin>:4: ")) << r.err;

  // A skipped element is a warning at its line; the command goes on.
  r = runTool({"info", "-"}, "<diagram xmlns=\"modelyne:diagram\">\n<node id=\"a\"/>\n<node id=\"a\"/>\n</diagram>\n");
  EXPECT_EQ(r.exitCode, 0);
  EXPECT_EQ(r.err, "modelyne: warning: <stdin>:3: node id 'a' is used twice; the later node was skipped\n");
  EXPECT_NE(r.out.find("  nodes: 1\n"), std::string::npos);

  EXPECT_EQ(runTool({"check", "-"}, "\n").err, "modelyne: error: <stdin>: the file is empty, not a model file\n");

  r = runTool({"info", "missing.xml"}, {}, dir);
  EXPECT_EQ(r.exitCode, 2);
  EXPECT_EQ(r.err, "modelyne: error: cannot open missing.xml: No such file or directory\n");
}

// Text from a hostile file cannot drive the terminal: control characters and
// bytes that are not UTF-8 are printed escaped, and quoted values are cut
// after 80 characters.
TEST(CliErrors, FileTextInErrorLinesIsShortAndEscaped) {
  const std::string value = "\x1b[2J" + std::string(100, 'z');
  const ToolRun r = runTool({"check", "-"}, "<diagram>\n<node id=\"a\x07\xff\"><geom x=\"" + value + "\"/></node></diagram>\n");
  EXPECT_EQ(r.exitCode, 2);
  EXPECT_EQ(r.err, "modelyne: error: <stdin>:2: invalid stof argument: attribute 'x' of <geom> in node 'a\\x07\\xFF' is \"\\x1B[2J" +
                       std::string(76, 'z') + "\u2026\"\n");
  // Valid UTF-8 stays as it is; a C1 control does not.
  EXPECT_EQ(runTool({"check", "-", "--kind", "\xc3\xa9\xc2\x9b"}).err,
            "modelyne: error: unknown diagram kind '\xc3\xa9\\xC2\\x9B' (kinds: bdd, ibd, pkg, par, act, sd, stm, uc, req, test, mm)\n");
}

// Input has a size limit (1 GiB unless raised), so an endless device or pipe
// stops with an error instead of filling the memory.
TEST(CliInput, LargerInputThanTheLimitIsRefused) {
  ToolRun r = runTool({"check", "/dev/zero", "--max-input-size", "64K"});
  EXPECT_EQ(r.exitCode, 2);
  EXPECT_EQ(r.err, "modelyne: error: /dev/zero: larger than the input size limit of 64 KiB (--max-input-size raises it)\n");
  r = runTool({"format", "-", "--max-input-size=1K"}, std::string(2000, ' '));
  EXPECT_EQ(r.exitCode, 2);
  EXPECT_EQ(r.err, "modelyne: error: standard input is larger than the input size limit of 1 KiB (--max-input-size raises it)\n");
  EXPECT_EQ(runTool({"format", "-", "--max-input-size", "1M"}, kBddXml).exitCode, 0);
  for (const char* bad : {"0", "-1", "12X", "1KB", "99999999999G"}) {
    r = runTool({"info", "-", "--max-input-size", bad}, kBddXml);
    EXPECT_EQ(r.exitCode, 2) << bad;
    EXPECT_EQ(r.err, std::string("modelyne: error: invalid --max-input-size '") + bad +
                         "' (expected a number of bytes above 0, optionally with K, M or G)\n");
  }
}

TEST(CliOutput, FailedCommandLeavesAnExistingOutUntouched) {
  const fs::path dir = scratchDir("output");
  writeText(dir / "good.xml", kBddXml);
  writeText(dir / "broken.xml", kBrokenXml);
  writeText(dir / "keep.md", "precious\n");

  ToolRun r = runTool({"explain", "broken.xml", "-o", "keep.md"}, {}, dir);
  EXPECT_EQ(r.exitCode, 2);
  EXPECT_EQ(readText(dir / "keep.md"), "precious\n");

  r = runTool({"explain", "good.xml", "-o", "keep.md"}, {}, dir);
  EXPECT_EQ(r.exitCode, 0) << r.err;
  EXPECT_EQ(r.out, "");
  EXPECT_TRUE(readText(dir / "keep.md").starts_with("# ")) << readText(dir / "keep.md");

  // Replacing OUT keeps its permissions and writes through a link to it.
  writeText(dir / "private.md", "old\n");
  fs::permissions(dir / "private.md", fs::perms::owner_read | fs::perms::owner_write, fs::perm_options::replace);
  fs::create_symlink("private.md", dir / "link.md");
  r = runTool({"explain", "good.xml", "-o", "link.md"}, {}, dir);
  EXPECT_EQ(r.exitCode, 0) << r.err;
  EXPECT_TRUE(fs::is_symlink(dir / "link.md"));
  EXPECT_TRUE(readText(dir / "private.md").starts_with("# "));
  EXPECT_EQ(fs::status(dir / "private.md").permissions() & fs::perms::mask, fs::perms::owner_read | fs::perms::owner_write);
  fs::remove(dir / "link.md");
  fs::remove(dir / "private.md");
  // A temporary file that a killed run left beside OUT goes with the next write.
  writeText(dir / "keep.md.tmp-999999999-0", "half");
  EXPECT_EQ(runTool({"explain", "good.xml", "-o", "keep.md"}, {}, dir).exitCode, 0);
  EXPECT_FALSE(fs::exists(dir / "keep.md.tmp-999999999-0"));

  // A folder that does not exist: an error, and no stray temporary files.
  r = runTool({"format", "good.xml", "-o", "nowhere/out.xml"}, {}, dir);
  EXPECT_EQ(r.exitCode, 2);
  EXPECT_TRUE(isOneErrorLine(r.err)) << r.err;
  std::size_t files = 0;
  for ([[maybe_unused]] const auto& e : fs::directory_iterator(dir)) ++files;
  EXPECT_EQ(files, 3u);
}

// Expressions, their shortest printed value and exit code.
TEST(CliEval, ExpressionValuesAndErrors) {
  struct Case {
    std::vector<std::string> args;
    std::string out;
    int exitCode;
  };
  const Case cases[] = {
      {{"1 + 2 * 3"}, "7\n", 0},
      {{"2^-1"}, "0.5\n", 0},
      {{"1.5e3"}, "1500\n", 0},
      {{"2^3^2"}, "512\n", 0},
      {{"-2^2"}, "4\n", 0},
      {{"8 / 0 + 1"}, "1\n", 0},
      {{"0.1 + 0.2"}, "0.30000000000000004\n", 0},
      {{"mass * g", "--var", "mass=1500", "--var", "g=9.81"}, "14715\n", 0},
      {{"--var=x=2", "--", "-x * 3"}, "-6\n", 0},
      {{"Mass * 2", "--var", "mass=3"}, "0\n", 1},
  };
  for (const Case& c : cases) {
    std::vector<std::string> args{"eval"};
    args.insert(args.end(), c.args.begin(), c.args.end());
    const ToolRun r = runTool(args);
    EXPECT_EQ(r.out, c.out) << c.args[0];
    EXPECT_EQ(r.exitCode, c.exitCode) << c.args[0] << ": " << r.err;
  }
  EXPECT_EQ(runTool({"eval", "a + b * a", "--var", "b=1"}).err, "modelyne: unresolved name: a\n");

  // Syntax errors print the parser's message after its column.
  const std::pair<std::string, const char*> errors[] = {
      {"1 +", "column 4: unexpected end"},
      {"(1 + 2", "column 7: missing ')'"},
      {"#1", "column 1: unexpected character"},
      {"1 2", "column 3: trailing input"},
      {"1 + * 2", "column 5: unexpected character"},
      {std::string(300, '(') + "1", "column 201: nesting too deep"},
  };
  for (const auto& [expr, message] : errors) {
    const ToolRun r = runTool({"eval", expr});
    EXPECT_EQ(r.exitCode, 2) << expr;
    EXPECT_EQ(r.err, std::string("modelyne: error: ") + message + "\n") << expr;
    EXPECT_EQ(r.out, "");
  }
  EXPECT_EQ(runTool({"eval", "x", "--var", "x=abc"}).exitCode, 2);

  // Something that looks like a path is a missing file, not an expression.
  for (const char* path : {"models/missing.xml", "missing.xml", "./m"}) {
    const ToolRun r = runTool({"eval", path});
    EXPECT_EQ(r.exitCode, 2) << path;
    EXPECT_EQ(r.err, std::string("modelyne: error: ") + path + ": no such file\n");
  }
}

// An equation that does not parse: located error, the other values still
// printed, exit 2.
TEST(CliEval, FileWithAnEquationThatDoesNotParse) {
  const std::string xml =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<diagram formatVersion=\"1.0\" xmlns=\"modelyne:diagram\">\n"
      "  <node id=\"v\" type=\"sysmlValueProperty\">\n"
      "    <geom x=\"0\" y=\"0\" w=\"100\" h=\"40\"/>\n"
      "    <text>a = 2</text>\n"
      "  </node>\n"
      "  <node id=\"good\" type=\"sysmlConstraintProperty\">\n"
      "    <geom x=\"200\" y=\"0\" w=\"100\" h=\"40\"/>\n"
      "    <text>double</text>\n"
      "    <property key=\"equation\" value=\"b = a * 2\"/>\n"
      "  </node>\n"
      "  <node id=\"bad\" type=\"sysmlConstraintProperty\">\n"
      "    <geom x=\"400\" y=\"0\" w=\"100\" h=\"40\"/>\n"
      "    <text>broken</text>\n"
      "    <property key=\"equation\" value=\"c = a + * 2\"/>\n"
      "  </node>\n"
      "</diagram>\n";
  const ToolRun r = runTool({"eval", "-"}, xml);
  EXPECT_EQ(r.exitCode, 2);
  EXPECT_EQ(r.out, "a = 2\ndouble.b = 4\n");
  EXPECT_EQ(r.err, "modelyne: error: <stdin>:12: node 'bad' equation: column 9: unexpected character\n");
}

TEST(CliFormat, CanonicalFormIsStableAndPipes) {
  const ToolRun first = runTool({"format", "-"}, kLooseXml);
  ASSERT_EQ(first.exitCode, 0) << first.err;
  EXPECT_NE(first.out.find("  <node id=\"b1\" type=\"sysmlBlock\">\n"
                           "    <geom x=\"80\" y=\"80\" w=\"180\" h=\"100\"/>\n"
                           "    <text>Drone</text>\n"
                           "  </node>\n"),
            std::string::npos)
      << first.out;
  EXPECT_NE(first.out.find("<DiagramFrame kind=\"pkg\""), std::string::npos) << first.out;
  const ToolRun second = runTool({"format", "-"}, first.out);
  EXPECT_EQ(second.out, first.out);

  // Every model of a project, an empty one included, settles in one run.
  const std::string project = "<modelyneProject version=\"1\" name=\"P\" active=\"0\">\n"
                              "<modelyneModel id=\"a\" name=\"A\">\n" + kLooseXml + "\n</modelyneModel>\n"
                              "<modelyneModel id=\"b\" name=\"B\">\n</modelyneModel>\n</modelyneProject>\n";
  const ToolRun once = runTool({"format", "-"}, project);
  ASSERT_EQ(once.exitCode, 0) << once.err;
  EXPECT_TRUE(once.out.starts_with("<modelyneProject version=\"1\" name=\"P\" active=\"0\">\n")) << once.out;
  EXPECT_EQ(runTool({"format", "-"}, once.out).out, once.out);

  // Formatting a file onto itself.
  const fs::path dir = scratchDir("format");
  writeText(dir / "m.xml", kLooseXml);
  EXPECT_EQ(runTool({"format", "m.xml", "-o", "m.xml"}, {}, dir).exitCode, 0);
  EXPECT_EQ(readText(dir / "m.xml"), first.out);
}

TEST(CliInfo, ProjectWrapperModelsAndModelSelection) {
  const std::string project =
      "<modelyneProject version=\"1\" name=\"Drone\" active=\"1\">\n"
      "<modelyneModel id=\"m1\" name=\"Loose\">\n" + kLooseXml + "\n</modelyneModel>\n"
      "<modelyneModel id=\"m2\" name=\"Structure\">\n" + kBddXml + "</modelyneModel>\n"
      "</modelyneProject>\n";
  ToolRun r = runTool({"info", "-"}, project);
  ASSERT_EQ(r.exitCode, 0) << r.err;
  EXPECT_EQ(r.out,
            "file: <stdin> (project \"Drone\", 2 models)\n"
            "model m1 \"Loose\"\n"
            "  kind: pkg (Package Diagram)\n"
            "  nodes: 1\n"
            "  edges: 0\n"
            "  frame: package \"Model\", name \"\", shown\n"
            "  data-integration links: 0\n"
            "model m2 \"Structure\" (active)\n"
            "  kind: bdd (Block Definition Diagram)\n"
            "  nodes: 2\n"
            "  edges: 0\n"
            "  frame: block \"Drone\", name \"\", shown\n"
            "  data-integration links: 0\n");

  // check works on the active model unless --model names another.
  EXPECT_EQ(runTool({"check", "-"}, project).exitCode, 1);
  r = runTool({"check", "-", "--model", "m1", "--kind", "mm"}, project);
  EXPECT_NE(r.out.find("'b1'"), std::string::npos) << r.out;
  EXPECT_EQ(r.out.find("'r1'"), std::string::npos) << r.out;
  r = runTool({"check", "-", "--model", "m9"}, project);
  EXPECT_EQ(r.err, "modelyne: error: <stdin>: no model 'm9' (models: m1, m2)\n");

  // A fault inside the second model is reported at its line in the file.
  const std::string broken = "<modelyneProject version=\"1\" name=\"P\" active=\"0\">\n"
                             "<modelyneModel id=\"a\" name=\"A\">\n" + kBddXml + "</modelyneModel>\n"
                             "<modelyneModel id=\"b\" name=\"B\">\n" + kBrokenXml + "</modelyneModel>\n"
                             "</modelyneProject>\n";
  r = runTool({"info", "-"}, broken);
  EXPECT_EQ(r.err, "modelyne: error: <stdin>:19: invalid stof argument: attribute 'x' of <geom> in node 'b1' is \"abc\"\n");
  // A command on the first model does not read the broken second one.
  EXPECT_EQ(runTool({"check", "-"}, broken).exitCode, 1);

  // Repeated model ids and an active index out of range are warnings at
  // their lines; --model says which of two equal ids it took.
  const std::string twice = "<modelyneProject version=\"1\" name=\"P\" active=\"4\">\n"
                            "<modelyneModel id=\"m\" name=\"First\">\n" + kLooseXml + "\n</modelyneModel>\n"
                            "<modelyneModel id=\"m\" name=\"Second\">\n" + kBddXml + "</modelyneModel>\n"
                            "</modelyneProject>\n";
  const std::string warnings =
      "modelyne: warning: <stdin>:1: attribute 'active' of <modelyneProject> is 4, but the project has 2 models; "
      "the last model is active instead\n"
      "modelyne: warning: <stdin>:7: model id 'm' is already used by an earlier model\n";
  r = runTool({"info", "-"}, twice);
  EXPECT_EQ(r.exitCode, 0);
  EXPECT_EQ(r.err, warnings);
  EXPECT_NE(r.out.find("model m \"Second\" (active)"), std::string::npos) << r.out;
  r = runTool({"check", "-", "--model", "m"}, twice);
  EXPECT_EQ(r.exitCode, 0);  // the loose diagram has no findings
  EXPECT_EQ(r.err, warnings + "modelyne: warning: <stdin>:2: 2 models have the id 'm'; the first, \"First\", is used\n");
}

// `info` and `format` read each model once, so many models with a warning
// each go as fast as one big model (a benchmark keeps the figures).
TEST(CliInfo, ManyModelsEachWithAWarning) {
  std::string project = "<modelyneProject version=\"1\" name=\"P\" active=\"0\">\n";
  for (int i = 0; i < 2000; ++i)
    project += "<modelyneModel id=\"m" + std::to_string(i) + "\" name=\"M\">\n<diagram>\n<node id=\"a\"/>\n<node id=\"a\"/>\n</diagram>\n</modelyneModel>\n";
  project += "</modelyneProject>\n";
  const ToolRun r = runTool({"info", "-"}, project);
  EXPECT_EQ(r.exitCode, 0);
  EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 2000);
  EXPECT_TRUE(r.err.ends_with("modelyne: warning: <stdin>:11999: node id 'a' is used twice; the later node was skipped\n")) << r.err.substr(r.err.size() - 200);
}

// Every shipped sample reads, checks, reports and formats; the parametric
// one propagates to the hand-computed stopping distance.
TEST(CliSamples, EverySampleWorksWithEveryReader) {
  std::size_t count = 0;
  for (const auto& entry : fs::directory_iterator(kSamples)) {
    if (entry.path().extension() != ".xml") continue;
    ++count;
    const std::string file = entry.path().string();
    SCOPED_TRACE(file);
    const ToolRun check = runTool({"check", file});
    EXPECT_TRUE(check.exitCode == 0 || check.exitCode == 1) << check.err;
    EXPECT_EQ(check.exitCode == 1, !check.out.empty());
    EXPECT_EQ(check.err, "");
    for (const char* command : {"info", "assess", "explain"}) {
      const ToolRun r = runTool({command, file});
      EXPECT_EQ(r.exitCode, 0) << command << ": " << r.err;
      EXPECT_FALSE(r.out.empty()) << command;
    }
    const ToolRun formatted = runTool({"format", file});
    EXPECT_EQ(formatted.exitCode, 0) << formatted.err;
    EXPECT_EQ(runTool({"format", "-"}, formatted.out).out, formatted.out);
  }
  EXPECT_GE(count, 10u);

  // v = 100 km/h, reaction 1.2 s, friction 0.7, g 9.81:
  // 1.2 * v + v^2 / (2 * 0.7 * 9.81) = 33.333... + 56.182... metres.
  const std::string par = (kSamples / "par-stopping-distance.xml").string();
  ToolRun r = runTool({"eval", par});
  EXPECT_EQ(r.exitCode, 0) << r.err;
  EXPECT_NE(r.out.find("\nstoppingDistance = 89.51543164930865\n"), std::string::npos) << r.out;
  const ToolRun traced = runTool({"eval", par, "--trace"});
  EXPECT_TRUE(traced.out.starts_with(r.out));
  EXPECT_NE(traced.out.find(" converged \"\" 0 1e-09 1\n"), std::string::npos) << traced.out;
  EXPECT_EQ(runTool({"eval", par, "--var", "x=1"}).exitCode, 2);
}

std::uint32_t pngWidth(const std::string& png) {
  // The IHDR chunk's width, big-endian, right after the 8-byte signature and
  // the chunk's length and type.
  std::uint32_t w = 0;
  for (int i = 16; i < 20; ++i) w = (w << 8) | static_cast<unsigned char>(png[static_cast<std::size_t>(i)]);
  return w;
}

TEST(CliExport, FormatFollowsTheExtensionWithoutADisplay) {
  const fs::path dir = scratchDir("export");
  const std::string sample = (kSamples / "bdd-vehicle.xml").string();
  for (const char* out : {"d.svg", "d.png", "d.jpg", "d.JPEG", "d.pdf"}) {
    const ToolRun r = runTool({"export", sample, "-o", out}, {}, dir);
    EXPECT_EQ(r.exitCode, 0) << out << ": " << r.err;
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(r.err, "") << out;
  }
  EXPECT_TRUE(readText(dir / "d.svg").starts_with("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg "));
  EXPECT_TRUE(readText(dir / "d.png").starts_with("\x89PNG\r\n\x1a\n"));
  EXPECT_TRUE(readText(dir / "d.jpg").starts_with("\xFF\xD8\xFF"));
  EXPECT_EQ(readText(dir / "d.JPEG"), readText(dir / "d.jpg"));
  EXPECT_TRUE(readText(dir / "d.pdf").starts_with("%PDF-1.4"));

  // The editor's scale of 2 by default; the margin widens the picture; the page can be left out of SVG.
  ASSERT_EQ(runTool({"export", sample, "-o", "d1.png", "--scale", "1"}, {}, dir).exitCode, 0);
  EXPECT_EQ(pngWidth(readText(dir / "d.png")), 2 * pngWidth(readText(dir / "d1.png")));
  ASSERT_EQ(runTool({"export", sample, "-o", "m.png", "--margin", "34"}, {}, dir).exitCode, 0);
  EXPECT_EQ(pngWidth(readText(dir / "m.png")), pngWidth(readText(dir / "d.png")) + 2 * 20);
  ASSERT_EQ(runTool({"export", sample, "-o", "nb.svg", "--no-background"}, {}, dir).exitCode, 0);
  EXPECT_NE(readText(dir / "d.svg").find("fill=\"#FFFFFF\"/>\n"), std::string::npos);
  EXPECT_EQ(readText(dir / "nb.svg").find("fill=\"#FFFFFF\"/>\n"), std::string::npos);

  // Refusals write nothing.
  for (const std::vector<std::string>& args :
       {std::vector<std::string>{"-o", "d.gif"}, {"-o", "x.png", "--scale", "0"}, {"-o", "x.png", "--margin", "-1"},
        {"-o", "x.svg", "--scale", "2"}, {}}) {
    std::vector<std::string> all{"export", sample};
    all.insert(all.end(), args.begin(), args.end());
    const ToolRun r = runTool(all, {}, dir);
    EXPECT_EQ(r.exitCode, 2);
    EXPECT_TRUE(isOneErrorLine(r.err)) << r.err;
  }
  EXPECT_FALSE(fs::exists(dir / "d.gif"));
  EXPECT_FALSE(fs::exists(dir / "x.png"));
  EXPECT_FALSE(fs::exists(dir / "x.svg"));
}

TEST(CliPlan, CanonicalPlanTextAndNotes) {
  const ToolRun r = runTool({"plan"},
                            "Sure, here it is:\nTITLE|Pumps\nnode|a|actor|\nNODE|b|foo|B\n"
                            "EDGE|a|b|control flow|go\nEDGE|a|zz|flow\n");
  EXPECT_EQ(r.exitCode, 0);
  EXPECT_EQ(r.out, "TITLE|Pumps\nNODE|a|Actor|a\nNODE|b|Block|B\nEDGE|a|b|Flow|go\n");
  EXPECT_EQ(r.err, "Parsed 2 nodes and 1 edges.\n");

  const ToolRun none = runTool({"plan", "-"}, "no plan here\n");
  EXPECT_EQ(none.exitCode, 1);
  EXPECT_EQ(none.out, "");
}

TEST(CliGenerate, ModelOrPlanFromADescription) {
  const std::string text = "The drone contains a battery and a motor.";
  const ToolRun plan = runTool({"generate", text, "--plan"});
  ASSERT_EQ(plan.exitCode, 0) << plan.err;
  EXPECT_TRUE(plan.out.starts_with("TITLE|The drone contains a battery and a motor\nNODE|n1|")) << plan.out;
  EXPECT_NE(plan.err.find("Parsed "), std::string::npos) << plan.err;
  // The plan reads back unchanged.
  EXPECT_EQ(runTool({"plan", "-"}, plan.out).out, plan.out);

  // The model carries the kind in its frame and one node per plan node.
  const ToolRun model = runTool({"generate", "--kind", "ibd", "-"}, text + "\n");
  ASSERT_EQ(model.exitCode, 0) << model.err;
  EXPECT_NE(model.out.find("<DiagramFrame kind=\"ibd\""), std::string::npos) << model.out;
  std::size_t planNodes = 0;
  for (std::size_t at = plan.out.find("\nNODE|"); at != std::string::npos; at = plan.out.find("\nNODE|", at + 1))
    ++planNodes;
  const ToolRun info = runTool({"info", "-"}, model.out);
  EXPECT_NE(info.out.find("  nodes: " + std::to_string(planNodes) + "\n"), std::string::npos) << info.out;

  // The cloud backend falls back to the offline interpreter, and says so.
  const ToolRun cloud = runTool({"generate", text, "--backend", "cloud"});
  EXPECT_EQ(cloud.exitCode, 0);
  EXPECT_EQ(cloud.out, runTool({"generate", text}).out);
  EXPECT_NE(cloud.err.find("Cloud AI is not configured; using deterministic fallback.\n"), std::string::npos)
      << cloud.err;

  const ToolRun nothing = runTool({"generate", "the and of", "--plan"});
  EXPECT_EQ(nothing.exitCode, 1);
  EXPECT_EQ(nothing.out, "");
  EXPECT_TRUE(nothing.err.ends_with(
      "AI Generate: no named entities found. Name components such as System, Subsystem, Component, "
      "Interface, Actor.\n"))
      << nothing.err;
  EXPECT_EQ(runTool({"generate", "the and of"}).exitCode, 1);
  EXPECT_EQ(runTool({"generate", "  "}).exitCode, 2);
  EXPECT_EQ(runTool({"generate", text, "--backend", "psychic"}).exitCode, 2);
}

// Layout writes the model back laid out; laying out its output changes
// nothing; generate --layout gives the bytes layout gives.
TEST(CliLayout, LaysOutAndWritesTheModelBack) {
  const fs::path dir = scratchDir("layout");
  fs::copy_file(kSamples / "bdd-vehicle.xml", dir / "m.xml");
  const std::string before = readText(dir / "m.xml");
  for (const char* algorithm : {"layered", "organic"}) {
    SCOPED_TRACE(algorithm);
    const ToolRun once = runTool({"layout", "m.xml", "--algorithm", algorithm, "-o", "out.xml"}, {}, dir);
    ASSERT_EQ(once.exitCode, 0) << once.err;
    EXPECT_EQ(once.out, "");
    const std::string laidOut = readText(dir / "out.xml");
    EXPECT_NE(laidOut, before);
    EXPECT_EQ(runTool({"format", "-"}, laidOut).out, laidOut);  // a valid model in canonical form
    EXPECT_EQ(runTool({"layout", "-", "--algorithm", algorithm}, laidOut).out, laidOut);
  }
  EXPECT_EQ(runTool({"layout", "m.xml"}, {}, dir).out, runTool({"layout", "m.xml", "--algorithm", "layered"}, {}, dir).out);

  const ToolRun empty = runTool({"layout", "-"}, "<diagram formatVersion=\"1.0\" xmlns=\"modelyne:diagram\">\n</diagram>\n");
  EXPECT_EQ(empty.exitCode, 1);
  EXPECT_EQ(empty.err, "<stdin>: left as it was: the document has no nodes\n");
  EXPECT_NE(empty.out.find("<diagram "), std::string::npos);

  // In a project only the active model changes; the others are written back
  // as they were, though only the active one is read.
  const std::string other = kBddXml.substr(kBddXml.find("<diagram"), kBddXml.rfind("</diagram>") + 10 - kBddXml.find("<diagram"));
  const std::string project = "<modelyneProject version=\"1\" name=\"P\" active=\"0\">\n"
                              "<modelyneModel id=\"a\" name=\"A\">\n" + before + "</modelyneModel>\n"
                              "<modelyneModel id=\"b\" name=\"B\">\n" + other + "\n</modelyneModel>\n</modelyneProject>\n";
  const ToolRun inProject = runTool({"layout", "-"}, project);
  ASSERT_EQ(inProject.exitCode, 0) << inProject.err;
  EXPECT_TRUE(inProject.out.ends_with("<modelyneModel id=\"b\" name=\"B\">\n" + other + "\n</modelyneModel>\n</modelyneProject>\n"))
      << inProject.out;

  const ToolRun wrong = runTool({"layout", "m.xml", "--algorithm", "spring"}, {}, dir);
  EXPECT_EQ(wrong.exitCode, 2);
  EXPECT_EQ(wrong.err, "modelyne: error: unknown layout algorithm 'spring' (algorithms: layered, organic)\n");

  const std::string text = "The drone contains a battery and a motor. The motor contains a rotor.";
  for (const char* algorithm : {"layered", "organic"}) {
    const ToolRun generated = runTool({"generate", text, "--layout", algorithm});
    ASSERT_EQ(generated.exitCode, 0) << generated.err;
    EXPECT_NE(generated.out, runTool({"generate", text}).out);
    EXPECT_EQ(runTool({"layout", "-", "--algorithm", algorithm}, generated.out).out, generated.out) << algorithm;
  }
  EXPECT_EQ(runTool({"generate", text, "--layout", "grid"}).exitCode, 2);
}

TEST(CliPrompt, GenerateAndRefinePrompts) {
  const ToolRun gen = runTool({"prompt", "generate", "A", "pump"});
  EXPECT_EQ(gen.exitCode, 0);
  EXPECT_TRUE(gen.out.starts_with("You are Modelyne diagram model generator.\n"
                                  "Convert the user's system description into a diagram plan.\n"));
  EXPECT_TRUE(gen.out.ends_with("User prompt:\nA pump\n")) << gen.out;

  const ToolRun refine = runTool({"prompt", "refine", "-", "add a tank"}, "NODE|n1|block|Pump\n");
  EXPECT_EQ(refine.exitCode, 0) << refine.err;
  EXPECT_TRUE(refine.out.ends_with("CURRENT MODEL:\nNODE|n1|Block|Pump\nUser refinement request:\nadd a tank\n"))
      << refine.out;

  // A model file stands for its diagram as a plan.
  const ToolRun fromModel = runTool({"prompt", "refine", "-", "more"}, kBddXml);
  EXPECT_NE(fromModel.out.find("CURRENT MODEL:\nNODE|n1|Block|Drone\n"), std::string::npos) << fromModel.out;

  EXPECT_EQ(runTool({"prompt", "refine", "-", "x"}, "no plan\n").exitCode, 2);
  EXPECT_EQ(runTool({"prompt", "summarise", "x"}).exitCode, 2);
}

}  // namespace
}  // namespace modelyne::cli::test

namespace modelyne::cli::test {
namespace {

// SysML v2 text in and out: the summary and loss lines, the JSON form, the
// exit codes, and export of the imported project back to the same text.
TEST(CliSysml, ImportAndExport) {
  const fs::path dir = scratchDir("cli_sysml");
  writeText(dir / "v.sysml", "package P {\n  part def A;\n  part b : A;\n  @Meta;\n}\n");
  ToolRun r = runTool({"import", "v.sysml", "-o", "v.xml"}, {}, dir);
  EXPECT_EQ(r.exitCode, 0);
  EXPECT_EQ(r.err,
            "Read 4 declarations: 3 as nodes, 0 as edges, 0 as properties, 1 not drawn.\n"
            "v.sysml:4: metadata Meta: metadata not drawn\n");
  r = runTool({"import", "v.sysml", "-o", "v.xml", "--format", "json"}, {}, dir);
  EXPECT_EQ(r.out,
            "{\"declarations\": 4, \"nodes\": 3, \"edges\": 0, \"properties\": 0, \"lost\": [{\"line\": 4, "
            "\"kind\": \"metadata\", \"name\": \"Meta\", \"reason\": \"metadata not drawn\"}], \"errors\": [], "
            "\"models\": [{\"id\": \"m1\", \"kind\": \"pkg\", \"nodes\": 1, \"edges\": 0}, {\"id\": \"m2\", "
            "\"kind\": \"bdd\", \"nodes\": 2, \"edges\": 0}]}\n");
  r = runTool({"export", "v.xml", "-o", "back.sysml"}, {}, dir);
  EXPECT_EQ(r.exitCode, 0);
  EXPECT_EQ(readText(dir / "back.sysml"), "package P {\n  part def A;\n  part b : A;\n}\n");
  EXPECT_EQ(r.err, "back.sysml: position: positions and sizes of nodes not written\n");

  writeText(dir / "bad.sysml", "part def A {\n  part b\n}\npart def C;\n");
  r = runTool({"import", "bad.sysml"}, {}, dir);
  EXPECT_EQ(r.exitCode, 1);
  EXPECT_EQ(r.err,
            "bad.sysml:3:1: Expected ';' after 'b' to end the statement.\n"
            "Read 2 declarations: 2 as nodes, 0 as edges, 0 as properties, 0 not drawn.\n");
  EXPECT_NE(r.out.find("<text>C</text>"), std::string::npos);
  writeText(dir / "none.sysml", "part a");
  EXPECT_EQ(runTool({"import", "none.sysml"}, {}, dir).exitCode, 2);
}

}  // namespace
}  // namespace modelyne::cli::test
