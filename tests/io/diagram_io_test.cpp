// The diagram XML writer and reader: exact text, round trips, the forgiving
// parts of the reader and the inputs it must refuse.

#include <gtest/gtest.h>

#include <cmath>

#include "core/document.h"
#include "io/data_integration.h"
#include "io/diagram_reader.h"
#include "io/diagram_writer.h"
#include "io/frame_block.h"

using namespace modelyne;

namespace {

core::Node makeNode(std::string id, core::ShapeType t, core::NodeGeometry g, std::string text = {}) {
  core::Node n;
  n.id = std::move(id);
  n.type = t;
  n.geom = g;
  n.text = std::move(text);
  return n;
}

core::Edge makeEdge(std::string id, std::string s, std::string t) {
  core::Edge e;
  e.id = std::move(id);
  e.source = std::move(s);
  e.target = std::move(t);
  return e;
}

void expectSameEdges(const std::vector<core::Edge>& a, const std::vector<core::Edge>& b) {
  ASSERT_EQ(a.size(), b.size());
  for (std::size_t i = 0; i < a.size(); ++i) EXPECT_TRUE(core::sameEdge(a[i], b[i])) << a[i].id;
}

constexpr const char* kHead =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<diagram formatVersion=\"1.0\" appVersion=\"0.1.0-win\" xmlns=\"modelyne:diagram\">\n";

}  // namespace

TEST(DiagramWriter, WritesTheExactText) {
  core::Node a = makeNode("a", core::ShapeType::umlClass, {10, 20.5f, 120, 1234567}, "A <b> & 'c'");
  a.fillColor = "blue";
  a.dataIntegration = true;
  a.properties = {{"zeta", "1"}, {"alpha", "x\"y"}};
  core::Node b = makeNode("b", static_cast<core::ShapeType>(7), {0, 0, 1, 1});  // unassigned type
  core::Edge e = makeEdge("e", "a", "b");
  e.type = core::EdgeType::composition;
  e.text = "owns";
  e.tgtAnchorDY = 0.0f;
  core::Edge f = makeEdge("f", "b", "a");
  f.sourcePort = static_cast<core::Anchor>(12);
  f.type = static_cast<core::EdgeType>(46);
  const std::vector<core::Node> nodes{a, b};
  const std::vector<core::Edge> edges{e, f};
  EXPECT_EQ(io::serializeDiagram(nodes, edges),
            std::string(kHead) +
                "  <node id=\"a\" type=\"umlClass\" fillColor=\"blue\" dataIntegration=\"true\">\n"
                "    <geom x=\"10\" y=\"20.5\" w=\"120\" h=\"1.23457e+06\"/>\n"
                "    <text>A &lt;b&gt; &amp; &apos;c&apos;</text>\n"
                "    <property key=\"alpha\" value=\"x&quot;y\"/>\n"
                "    <property key=\"zeta\" value=\"1\"/>\n"
                "  </node>\n"
                "  <node id=\"b\" type=\"rect\">\n"
                "    <geom x=\"0\" y=\"0\" w=\"1\" h=\"1\"/>\n"
                "  </node>\n"
                "  <edge id=\"e\" source=\"a\" sourcePort=\"right\" target=\"b\" targetPort=\"left\" "
                "edgeType=\"composition\" text=\"owns\" tgtAnchorDY=\"0\"/>\n"
                "  <edge id=\"f\" source=\"b\" sourcePort=\"right\" target=\"a\" targetPort=\"left\" "
                "edgeType=\"straightArrow\"/>\n"
                "</diagram>\n");
}

TEST(DiagramWriter, DocumentCarriesLinksThenFrame) {
  core::Document doc;
  doc.addNode(makeNode("n", core::ShapeType::rect, {1, 2, 3, 4}));
  doc.frame().kind = core::DiagramKind::bdd;
  doc.frame().elementName = "Car & Co";
  doc.frame().show = false;
  doc.links().push_back({"l1", "project", "C:/m/o.xml", "Other"});
  EXPECT_EQ(io::serializeDocument(doc),
            std::string(kHead) +
                "  <node id=\"n\" type=\"rect\">\n"
                "    <geom x=\"1\" y=\"2\" w=\"3\" h=\"4\"/>\n"
                "  </node>\n"
                "  <DataIntegration version=\"1\">\n"
                "    <Link id=\"l1\" type=\"project\" path=\"C:/m/o.xml\" label=\"Other\"/>\n"
                "  </DataIntegration>\n"
                "  <DiagramFrame kind=\"bdd\" elementType=\"package\" elementName=\"Car &amp; Co\" name=\"\" "
                "show=\"false\"/>\n"
                "</diagram>\n");
  // Inserting into the bare text gives the same bytes as writing the document.
  std::string text = io::serializeDiagram(doc.nodes(), doc.edges());
  io::insertDataIntegrationBlock(text, doc.links());
  io::insertDiagramFrame(text, doc.frame());
  EXPECT_EQ(text, io::serializeDocument(doc));
  // Re-inserting replaces rather than adds.
  doc.links().clear();
  io::insertDataIntegrationBlock(text, doc.links());
  io::insertDiagramFrame(text, doc.frame());
  EXPECT_EQ(text, io::serializeDocument(doc));
}

TEST(DiagramWriter, TextWithoutClosingTagGetsNoBlocks) {
  std::string text = "<diagram>";
  const std::vector<core::DataIntegrationLink> links{{"l", "project", "p.xml", ""}};
  io::insertDataIntegrationBlock(text, links);
  io::insertDiagramFrame(text, core::DiagramFrame{});
  EXPECT_EQ(text, "<diagram>");
}

TEST(DiagramReader, RoundTripsEveryField) {
  core::Document doc;
  core::Node a = makeNode("a&1", core::ShapeType::sysmlBlock, {-5.5f, 1e-3f, 3.25f, 1e6f}, "line1\nline2 <x> & \"y\" 'z'");
  a.fillColor = "#FFDC5A";
  a.dataIntegration = true;
  a.properties = {{"values", "m : Mass = 1\nv : Speed"}, {"empty", ""}, {"__layoutGroupId__", "grp-2-a|b|"}};
  doc.addNode(a);
  doc.addNode(makeNode("b", core::ShapeType::mindmapComment, {0, 0, 10, 10}));
  core::Edge e = makeEdge("e1", "a&1", "b");
  e.sourcePort = core::Anchor::bottomLeft;
  e.targetPort = core::Anchor::top;
  e.type = core::EdgeType::sysmlSatisfy;
  e.text = "«satisfy» & more";
  e.srcAnchorDY = 12.5f;
  doc.addEdge(e);
  doc.addEdge(makeEdge("e2", "b", "missing"));  // dangling ends are kept as read
  doc.frame() = core::DiagramFrame{core::DiagramKind::req, "requirement", "Needs", "Top <1>", false};
  doc.links() = {{"l1", "project", "../x.xml", "X & Y"}, {"l2", "folder", "C:\\m", ""}};

  const std::string xml = io::serializeDocument(doc);
  io::ReadError err;
  auto content = io::readDiagram(xml, &err);
  ASSERT_TRUE(content) << err.what;
  EXPECT_EQ(content->nodes, doc.nodes());
  expectSameEdges(content->edges, doc.edges());
  EXPECT_TRUE(std::isnan(content->edges[0].tgtAnchorDY));
  EXPECT_TRUE(std::isnan(content->edges[1].srcAnchorDY));
  EXPECT_EQ(content->frame, doc.frame());
  EXPECT_EQ(content->links, doc.links());
  EXPECT_TRUE(content->warnings.empty());

  core::Document again;
  ASSERT_TRUE(io::parseDiagramInto(xml, again, &err));
  EXPECT_EQ(io::serializeDocument(again), xml);
}

TEST(DiagramReader, NumbersKeepSixSignificantDigits) {
  core::Document doc;
  doc.addNode(makeNode("n", core::ShapeType::rect, {1.23456789f, 98765.4321f, 0.5f, 3}));
  auto content = io::readDiagram(io::serializeDocument(doc));
  ASSERT_TRUE(content);
  EXPECT_EQ(content->nodes[0].geom.x, 1.23457f);
  EXPECT_EQ(content->nodes[0].geom.y, 98765.4f);
}

TEST(DiagramReader, IsForgivingAboutSyntaxItCanRead) {
  const std::string xml =
      "\xEF\xBB\xBF<?xml version='1.0'?>\n<!DOCTYPE diagram>\n<!-- a comment -->\n"
      "<diagram xmlns='x' unknown=\"1\">\n"
      "<!-- between nodes -->\n"
      "<node type='umlActor' id='n1' extra='ignored'><unknown a='1'/><geom x='1' w='2'/>"
      "<text>caf\xC3\xA9 &#65; &lt;</text><property key='k' value='v1'/><property key='k' value='v2'/></node>\n"
      "<node id='n2' type='Rect' dataIntegration='1'/>\n"
      "<node id='n3' type='rect' dataIntegration='TRUE'></node>\n"
      "<edge id='e' source='n1' target='n2' sourcePort='Right' targetPort='bogus' edgeType='nope' "
      "srcAnchorDY=''/>\n"
      "<somethingElse><node id='inner'/></somethingElse>\n"
      "</diagram>\n trailing text is not read <";
  io::ReadError err;
  auto c = io::parseDiagram(xml, &err);
  ASSERT_TRUE(c) << err.what;
  ASSERT_EQ(c->nodes.size(), 4u);
  const core::Node& n1 = c->nodes[0];
  EXPECT_EQ(n1.type, core::ShapeType::umlActor);
  EXPECT_EQ(n1.geom, (core::NodeGeometry{1, 0, 2, 0}));
  EXPECT_EQ(n1.text, "caf\xC3\xA9 &#65; <");
  EXPECT_EQ(n1.properties.at("k"), "v2");
  EXPECT_EQ(c->nodes[1].type, core::ShapeType::rect);  // unknown key reads as rect
  EXPECT_TRUE(c->nodes[1].dataIntegration);
  EXPECT_FALSE(c->nodes[2].dataIntegration);
  EXPECT_EQ(c->nodes[3].id, "inner");
  ASSERT_EQ(c->edges.size(), 1u);
  EXPECT_EQ(c->edges[0].sourcePort, core::Anchor::right);
  EXPECT_EQ(c->edges[0].targetPort, core::Anchor::left);
  EXPECT_EQ(c->edges[0].type, core::EdgeType::straightArrow);
  EXPECT_TRUE(std::isnan(c->edges[0].srcAnchorDY));
}

TEST(DiagramReader, SkipsDuplicateAndEmptyIdsWithWarnings) {
  const std::string xml =
      "<diagram>\n"
      "  <node id=\"a\"><geom x=\"1\"/></node>\n"
      "  <node id=\"a\"><geom x=\"2\"/></node>\n"
      "  <node><geom x=\"3\"/></node>\n"
      "  <edge id=\"e\" source=\"a\" target=\"a\"/>\n"
      "  <edge id=\"e\" source=\"a\" target=\"a\" text=\"second\"/>\n"
      "</diagram>\n";
  auto c = io::parseDiagram(xml);
  ASSERT_TRUE(c);
  ASSERT_EQ(c->nodes.size(), 1u);
  EXPECT_EQ(c->nodes[0].geom.x, 1.0f);  // the first wins
  ASSERT_EQ(c->edges.size(), 1u);
  EXPECT_EQ(c->edges[0].text, "");
  // The place is in fields, never in the message.
  EXPECT_EQ(c->warnings,
            (std::vector<io::Diagnostic>{{"node id 'a' is used twice; the later node was skipped", 3, "node", ""},
                                         {"node without id skipped", 4, "node", ""},
                                         {"edge id 'e' is used twice; the later edge was skipped", 6, "edge", ""}}));
}

// More elements than one indexing batch, with repeats inside a batch and
// across batches: the first of each id wins, every repeat is reported in
// file order, and the index finds every element kept.
TEST(DiagramReader, RepeatedIdsAcrossManyElements) {
  std::string xml = "<diagram>\n";
  for (int i = 0; i < 100; ++i) xml += "<node id='n" + std::to_string(i % 70) + "'><text>" + std::to_string(i) + "</text></node>\n";
  for (int i = 0; i < 100; ++i) xml += "<edge id='e" + std::to_string(i % 40) + "' source='n1' target='n2'/>\n";
  xml += "</diagram>\n";
  core::Document doc;
  std::vector<io::Diagnostic> warnings;
  ASSERT_TRUE(io::parseDiagramInto(xml, doc, nullptr, &warnings));
  ASSERT_EQ(doc.nodes().size(), 70u);
  ASSERT_EQ(doc.edges().size(), 40u);
  for (int i = 0; i < 70; ++i) {
    const core::Node* n = doc.findNode("n" + std::to_string(i));
    ASSERT_NE(n, nullptr) << i;
    EXPECT_EQ(n->text, std::to_string(i));
    EXPECT_EQ(doc.indexOfNode(n->id), i);
  }
  for (int i = 0; i < 40; ++i) EXPECT_EQ(doc.indexOfEdge("e" + std::to_string(i)), i);
  ASSERT_EQ(warnings.size(), 30u + 60u);
  EXPECT_EQ(warnings[0], (io::Diagnostic{"node id 'n0' is used twice; the later node was skipped", 72, "node", ""}));
  EXPECT_EQ(warnings[29].line, 101u);
  EXPECT_EQ(warnings[30], (io::Diagnostic{"edge id 'e0' is used twice; the later edge was skipped", 142, "edge", ""}));
  EXPECT_EQ(warnings.back().line, 201u);
}

// Inputs a damaged or foreign file could hold: each is refused with what and where.
TEST(DiagramReader, RefusesWhatItCannotRead) {
  struct Case {
    const char* xml;
    const char* what;
    std::size_t line;
  };
  const Case cases[] = {
      {"", "the text is empty", 1},
      {"  \n ", "the text is empty", 2},
      {"<?xml version=\"1.0\"?>\n", "no <diagram> element", 2},
      {"<svg>\n</svg>", "root element is <svg>, expected <diagram>", 1},
      {"\n<modelyneProject version=\"1\">",
       "root element is <modelyneProject>, a project of several models, not one diagram", 2},
      {"hello <diagram/>", "text before the root element", 1},
      {"<diagram>\n  <node id=\"a\">\n    <geom x=\"1\"/>\n", "<node> is not closed: the text ends early", 2},
      {"<diagram>\n  <node id=\"a\"/>\n", "<diagram> is not closed: the text ends early", 1},
      {"<diagram>\n  <node id=\"a\">\n  <node id=\"b\"/>\n</diagram>", "<node> is not closed before the next <node>", 2},
      {"<diagram>\n  <node id=\"a\">\n</diagram>", "<node> is not closed before </diagram>", 2},
      {"<diagram>\n<!-- never closed", "unterminated comment", 2},
      {"<diagram>\n<edge id=\"e", "unterminated value of attribute 'id' of <edge>", 2},
      {"<diagram>\n<edge id=e/>", "value of attribute 'id' of <edge> is not quoted", 2},
      {"<diagram>\n<edge id/>", "attribute 'id' of <edge> has no value", 2},
      {"<diagram>\n<edge id='e'", "unexpected end of text inside <edge>", 2},
      {"<diagram>\n< node/>", "malformed tag", 2},
      {"<diagram>\n  <node id=\"n7\">\n    <geom x=\"1\" y=\"abc\"/>\n  </node>\n</diagram>",
       "invalid stof argument: attribute 'y' of <geom> in node 'n7' is \"abc\"", 3},
      {"<diagram>\n<node id=\"n\"><geom w=\"\"/></node></diagram>",
       "invalid stof argument: attribute 'w' of <geom> in node 'n' is \"\"", 2},
      {"<diagram>\n<node id=\"n\"><geom h=\"1e999\"/></node></diagram>",
       "stof argument out of range: attribute 'h' of <geom> in node 'n' is \"1e999\"", 2},
      {"<diagram>\n\n<edge id=\"e\" source=\"a\" target=\"b\" tgtAnchorDY=\"x\"/></diagram>",
       "invalid stof argument: attribute 'tgtAnchorDY' of <edge> in edge 'e' is \"x\"", 3},
      // Text from the file is quoted at most 80 characters long.
      {"<diagram><node id='n'><geom x='9\x07' y='x123456789012345678901234567890123456789012345678901234567890123456789012345678901234567890'/></node></diagram>",
       "invalid stof argument: attribute 'y' of <geom> in node 'n' is "
       "\"x1234567890123456789012345678901234567890123456789012345678901234567890123456789\u2026\"", 1},
  };
  for (const Case& c : cases) {
    io::ReadError err;
    EXPECT_FALSE(io::parseDiagram(c.xml, &err)) << c.xml;
    EXPECT_EQ(err.what, c.what) << c.xml;
    EXPECT_EQ(err.line, c.line) << c.xml;
  }
}

// A diagram text inside a file: lines and file name come from its place.
TEST(DiagramReader, LoadIntoDocumentReportsSkippedElementsAtTheirPlace) {
  core::Document doc;
  std::vector<io::Diagnostic> warnings;
  ASSERT_TRUE(io::parseDiagramInto("<diagram>\n<node id='a'/>\n<node id='a'/>\n<edge id='e'/><edge/>\n</diagram>", doc,
                                   nullptr, &warnings, {"p.xml", 10}));
  EXPECT_EQ(doc.nodes().size(), 1u);
  EXPECT_EQ(doc.edges().size(), 1u);
  EXPECT_EQ(warnings, (std::vector<io::Diagnostic>{{"node id 'a' is used twice; the later node was skipped", 12, "node", "p.xml"},
                                                   {"edge without id skipped", 13, "edge", "p.xml"}}));
  io::ReadError err;
  EXPECT_FALSE(io::parseDiagramInto("\n<diagram>\n<edge id='e' srcAnchorDY='?'/>", doc, &err, nullptr, {"p.xml", 10}));
  EXPECT_EQ(err, (io::Diagnostic{"invalid stof argument: attribute 'srcAnchorDY' of <edge> in edge 'e' is \"?\"", 12,
                                 "edge", "p.xml"}));
}

// The frame line and the data-integration block are the first occurrences
// of their names in the text, as a substring search finds them: inside a
// comment, an attribute value or a name too, and after the root.
TEST(DiagramReader, BlocksAreTheFirstOccurrenceWhereverItStands) {
  const std::string xml =
      "<diagram>\n<!-- <DiagramFrame kind=\"sd\"/> <DataIntegration><Link id=\"c\"/></DataIntegration> -->\n"
      "<DiagramFrame kind=\"act\"/>\n</diagram>\n"
      "<DataIntegration version=\"1\"><Link id=\"after\"/></DataIntegration>\n";
  auto c = io::readDiagram(xml);
  ASSERT_TRUE(c);
  EXPECT_EQ(c->frame.kind, core::DiagramKind::sd);
  ASSERT_EQ(c->links.size(), 1u);
  EXPECT_EQ(c->links[0].id, "c");

  struct Case {
    const char* xml;
    core::DiagramKind kind;
  };
  const Case cases[] = {
      {"<diagram><node id='a' fillColor='<DiagramFrame kind=\"uc\"/>'/><DiagramFrame kind='act'/></diagram>", core::DiagramKind::uc},
      {"<diagram><node id='a' x<DiagramFrame='1' kind='mm'/></diagram>", core::DiagramKind::mm},
      {"<diagram><DiagramFrameX kind='req'/><DiagramFrame kind='act'/></diagram>", core::DiagramKind::req},
      {"<?pi <DiagramFrame kind='stm'?><diagram><DiagramFrame kind='act'/></diagram>", core::DiagramKind::stm},
      {"<diagram></diagram><DiagramFrame kind='par'/>", core::DiagramKind::par},
      {"<diagram><node id='a' text='x'/></diagram>", core::DiagramKind::pkg},
  };
  for (const Case& k : cases) {
    auto r = io::readDiagram(k.xml);
    ASSERT_TRUE(r) << k.xml;
    EXPECT_EQ(r->frame.kind, k.kind) << k.xml;
    core::DiagramFrame bySearch;
    io::parseDiagramFrame(k.xml, bySearch);
    EXPECT_EQ(r->frame, bySearch) << k.xml;
  }
  auto blockInValue = io::readDiagram("<diagram><edge id='e' text='<DataIntegration><Link id=\"v\"/>'/></diagram>");
  ASSERT_TRUE(blockInValue);
  ASSERT_EQ(blockInValue->links.size(), 1u);
  EXPECT_EQ(blockInValue->links[0].id, "v");
}

TEST(DiagramReader, FailedLoadLeavesTheDocumentAlone) {
  core::Document doc;
  doc.addNode(makeNode("keep", core::ShapeType::rect, {1, 2, 3, 4}));
  doc.frame().name = "kept";
  io::ReadError err;
  EXPECT_FALSE(io::parseDiagramInto("<diagram><node id='x'><geom x='?'/></node></diagram>", doc, &err));
  EXPECT_EQ(err.element, "geom");
  ASSERT_EQ(doc.nodes().size(), 1u);
  EXPECT_EQ(doc.nodes()[0].id, "keep");
  EXPECT_EQ(doc.frame().name, "kept");
}

TEST(DiagramFrame, ReadsEachAttributeByItsRule) {
  core::DiagramFrame f;
  EXPECT_FALSE(io::parseDiagramFrame("<diagram></diagram>", f));
  EXPECT_EQ(f, core::DiagramFrame{});

  f = {};
  f.name = "old";
  ASSERT_TRUE(io::parseDiagramFrame("<DiagramFrame kind=\"nope\" elementType=\"\" show=\"False\"/>", f));
  EXPECT_EQ(f.kind, core::DiagramKind::pkg);  // unknown kind leaves it
  EXPECT_EQ(f.elementType, "package");        // empty keeps it
  EXPECT_EQ(f.name, "");                      // absent name clears it
  EXPECT_TRUE(f.show);                        // "False" is not "false"

  for (const char* hidden : {"0", "false"}) {
    f = {};
    io::parseDiagramFrame(std::string("<DiagramFrame kind='stm' elementName='M &amp; N' show='") + hidden + "'/>", f);
    EXPECT_FALSE(f.show) << hidden;
    EXPECT_EQ(f.kind, core::DiagramKind::stm);
    EXPECT_EQ(f.elementName, "M & N");
  }
  f = {};
  f.show = false;
  io::parseDiagramFrame("<DiagramFrame kind='mm'/>", f);
  EXPECT_FALSE(f.show);  // absent show leaves it
}

TEST(DataIntegrationBlock, ReadsLinksOfTheBlockOnly) {
  const std::string xml =
      "<diagram>\n<node id='Link'/>\n"
      "  <DataIntegration version=\"1\">\n"
      "    <Link id=\"a\" type=\"project\" path=\"x.xml\" label=\"&lt;A&gt;\"/>\n"
      "    <Link path='y' id='b'/>\n"
      "  </DataIntegration>\n"
      "<Link id='outside'/>\n</diagram>\n";
  const auto links = io::parseDataIntegration(xml);
  ASSERT_EQ(links.size(), 2u);
  EXPECT_EQ(links[0], (core::DataIntegrationLink{"a", "project", "x.xml", "<A>"}));
  EXPECT_EQ(links[1], (core::DataIntegrationLink{"b", "", "y", ""}));
  EXPECT_TRUE(io::parseDataIntegration("<diagram></diagram>").empty());
}
