// Document primitives: refusals, z-order moves, id generation and bulk changes.
#include <gtest/gtest.h>

#include <unordered_set>

#include "core/document.h"
#include "core/document_builder.h"

using namespace modelyne::core;

namespace {
Node node(std::string id) {
  Node n;
  n.id = std::move(id);
  return n;
}
Edge edge(std::string id, std::string s, std::string t) {
  Edge e;
  e.id = std::move(id);
  e.source = std::move(s);
  e.target = std::move(t);
  return e;
}
std::string order(const Document& d) {
  std::string out;
  for (const Node& n : d.nodes()) out += n.id + " ";
  return out;
}
std::string edgeOrder(const Document& d) {
  std::string out;
  for (const Edge& e : d.edges()) out += e.id + " ";
  return out;
}
}  // namespace

TEST(Document, RefusesEmptyAndDuplicateIdsAndKeepsIndexInStep) {
  Document d;
  EXPECT_TRUE(d.addNode(node("a")));
  EXPECT_FALSE(d.addNode(node("a")));
  EXPECT_FALSE(d.addNode(node("")));
  EXPECT_TRUE(d.insertNodeAt(0, node("b")));
  EXPECT_FALSE(d.insertNodeAt(-1, node("c")));
  EXPECT_FALSE(d.insertNodeAt(3, node("c")));
  EXPECT_TRUE(d.insertNodeAt(2, node("c")));  // == count appends
  EXPECT_TRUE(d.insertNodeAt(1, node("d")));
  EXPECT_EQ(order(d), "b d a c ");
  for (int i = 0; i < 4; ++i) EXPECT_EQ(d.indexOfNode(d.nodeAt(i)->id), i);
  EXPECT_EQ(d.nodeAt(4), nullptr);
  EXPECT_EQ(d.nodeAt(-1), nullptr);
  EXPECT_EQ(d.findNode("zz"), nullptr);

  // Edges are not checked against nodes by the primitive add.
  EXPECT_TRUE(d.addEdge(edge("e", "nowhere", "a")));
  EXPECT_FALSE(d.addEdge(edge("e", "a", "b")));
  EXPECT_TRUE(d.removeNode("d"));
  EXPECT_FALSE(d.removeNode("d"));
  EXPECT_EQ(order(d), "b a c ");
  EXPECT_EQ(d.indexOfNode("c"), 2);
  EXPECT_EQ(d.edges().size(), 1u);
}

TEST(Document, MoveNodeToClampsBothWays) {
  Document d;
  for (const char* id : {"a", "b", "c", "d"}) d.addNode(node(id));
  EXPECT_TRUE(d.moveNodeTo("c", -5));
  EXPECT_EQ(order(d), "c a b d ");
  EXPECT_TRUE(d.moveNodeTo("a", 99));
  EXPECT_EQ(order(d), "c b d a ");
  EXPECT_TRUE(d.moveNodeTo("a", 1));
  EXPECT_EQ(order(d), "c a b d ");
  EXPECT_FALSE(d.moveNodeTo("x", 0));
  for (int i = 0; i < 4; ++i) EXPECT_EQ(d.indexOfNode(d.nodeAt(i)->id), i);
}

TEST(Document, GeneratesFirstFreeSuffixPerKind) {
  Document d;
  EXPECT_EQ(d.makeNodeId(""), "node");
  d.addNode(node("node"));
  d.addNode(node("node_1"));
  d.addNode(node("node_3"));
  EXPECT_EQ(d.makeNodeId(""), "node_2");
  d.addNode(node("node_2"));
  EXPECT_EQ(d.makeNodeId("node"), "node_4");
  // Node and edge ids are separate name spaces.
  EXPECT_EQ(d.makeEdgeId("node"), "node");
  EXPECT_EQ(d.makeEdgeId(""), "edge");
  // Freeing a low suffix makes it the first free one again.
  d.removeNode("node_1");
  EXPECT_EQ(d.makeNodeId("node"), "node_1");
  // A batch can reserve ids it is about to add.
  EXPECT_EQ(d.makeNodeId("node", [](std::string_view id) { return id == "node_1"; }), "node_4");
}

TEST(Document, BulkRemovalTakesIncidentEdgesAndRestoresPositions) {
  Document d;
  for (const char* id : {"a", "b", "c", "d", "e"}) d.addNode(node(id));
  d.addEdge(edge("ab", "a", "b"));
  d.addEdge(edge("cd", "c", "d"));
  d.addEdge(edge("ea", "e", "a"));
  d.addEdge(edge("de", "d", "e"));
  const std::string gone[] = {"b", "e", "missing"};
  const std::string goneEdge[] = {"cd"};
  RemovedElements removed = d.removeElements({gone[0], gone[1], gone[2]}, {goneEdge[0]});
  EXPECT_EQ(order(d), "a c d ");
  EXPECT_EQ(edgeOrder(d), "");
  EXPECT_EQ(removed.nodes.size(), 2u);
  EXPECT_EQ(removed.edges.size(), 4u);
  EXPECT_EQ(d.indexOfNode("d"), 2);
  EXPECT_EQ(d.findEdge("ab"), nullptr);

  d.restoreElements(std::move(removed));
  EXPECT_EQ(order(d), "a b c d e ");
  EXPECT_EQ(edgeOrder(d), "ab cd ea de ");
  EXPECT_EQ(d.indexOfNode("e"), 4);
  EXPECT_EQ(d.indexOfEdge("de"), 3);
}

TEST(Document, IndexSurvivesManyInsertionsAndRemovals) {
  Document d;
  for (int i = 0; i < 2000; ++i) d.addNode(node("n" + std::to_string(i)));
  for (int i = 0; i < 2000; i += 3) d.removeNode("n" + std::to_string(i));
  for (int i = 0; i < 2000; i += 7) d.moveNodeTo("n" + std::to_string(i), i / 2);
  d.insertNodeAt(5, node("x"));
  for (int i = 0; i < static_cast<int>(d.nodes().size()); ++i) ASSERT_EQ(d.indexOfNode(d.nodeAt(i)->id), i);
  EXPECT_EQ(d.findNode("n3"), nullptr);
  EXPECT_NE(d.findNode("n4"), nullptr);
}

// A bulk fill: more elements than one indexing batch, repeats inside a batch
// and across batches, empty ids. The first of each id stays, in order; every
// refusal is reported with its tag; the index finds what stayed.
TEST(DocumentBuilder, KeepsTheFirstOfEachIdAndReportsTheRest) {
  Document d;
  {
    DocumentBuilder b(d, 4, 4);
    for (std::size_t i = 0; i < 150; ++i) b.addNode(node(i == 100 || i == 140 ? "" : "n" + std::to_string(i % 60)), i);
    for (std::size_t i = 0; i < 70; ++i) b.addEdge(edge("e" + std::to_string(i % 35), "n1", "n2"), 1000 + i);
    b.finish();
    ASSERT_EQ(b.refusedNodes().size(), 90u);  // 60..149
    EXPECT_EQ(b.refusedNodes().front(), 60u);
    EXPECT_EQ(b.refusedNodes()[40], 100u);
    EXPECT_EQ(b.refusedNodes().back(), 149u);
    ASSERT_EQ(b.refusedEdges().size(), 35u);
    EXPECT_EQ(b.refusedEdges().front(), 1035u);
    EXPECT_EQ(b.refusedEdges().back(), 1069u);
  }
  ASSERT_EQ(d.nodes().size(), 60u);
  for (int i = 0; i < 60; ++i) EXPECT_EQ(d.indexOfNode("n" + std::to_string(i)), i) << i;
  EXPECT_EQ(d.edges().size(), 35u);
  EXPECT_EQ(d.indexOfEdge("e34"), 34);
  // The document works on as usual.
  EXPECT_FALSE(d.addNode(node("n0")));
  EXPECT_TRUE(d.addNode(node("n60")));
  EXPECT_EQ(d.indexOfNode("n60"), 60);

  // What was added after the last finish is not part of the document.
  {
    DocumentBuilder b(d);
    b.addNode(node("late"), 0);
  }
  EXPECT_EQ(d.findNode("late"), nullptr);
  EXPECT_EQ(d.nodes().size(), 61u);

  // Swapping content swaps the indexes with it.
  Document other;
  other.addNode(node("x"));
  other.frame().name = "other";
  d.swapContent(other);
  EXPECT_EQ(order(d), "x ");
  EXPECT_EQ(d.frame().name, "other");
  EXPECT_EQ(other.indexOfNode("n59"), 59);
  EXPECT_EQ(d.indexOfNode("n59"), -1);
}
