// Commands and history: exact state after undo and redo, including edges and order.
#include <gtest/gtest.h>

#include "core/batch_commands.h"
#include "core/commands.h"

using namespace modelyne::core;

namespace {
Node node(std::string id, float x = 0, float y = 0) {
  Node n;
  n.id = std::move(id);
  n.geom = {x, y, 10, 10};
  return n;
}
Edge edge(std::string id, std::string s, std::string t) {
  Edge e;
  e.id = std::move(id);
  e.source = std::move(s);
  e.target = std::move(t);
  return e;
}
std::string snapshot(const Document& d) {
  std::string out;
  for (const Node& n : d.nodes()) {
    out += n.id + "@" + std::to_string(static_cast<int>(n.geom.x)) + "," + std::to_string(static_cast<int>(n.geom.y));
    for (const auto& [k, v] : n.properties) out += "[" + k + "=" + v + "]";
    out += " ";
  }
  out += "|";
  for (const Edge& e : d.edges()) out += " " + e.id + ":" + e.source + ">" + e.target;
  return out;
}
template <class C, class... A>
void push(Document& d, A&&... args) {
  d.history().pushAndExecute(std::make_unique<C>(std::forward<A>(args)...), d);
}
}  // namespace

TEST(Commands, DeleteNodeUndoRestoresZOrderAndEdgesBothWays) {
  Document d;
  for (const char* id : {"a", "b", "c"}) d.addNode(node(id));
  d.addEdge(edge("ab", "a", "b"));
  d.addEdge(edge("bc", "b", "c"));
  d.addEdge(edge("ca", "c", "a"));
  const std::string before = snapshot(d);
  push<DeleteNodeCommand>(d, "b");
  EXPECT_EQ(snapshot(d), "a@0,0 c@0,0 | ca:c>a");
  ASSERT_TRUE(d.history().undo(d));
  // The node returns to its place; its edges return at the end, in their saved order.
  EXPECT_EQ(snapshot(d), "a@0,0 b@0,0 c@0,0 | ca:c>a ab:a>b bc:b>c");
  ASSERT_TRUE(d.history().redo(d));
  EXPECT_EQ(snapshot(d), "a@0,0 c@0,0 | ca:c>a");
  ASSERT_TRUE(d.history().undo(d));
  EXPECT_NE(snapshot(d), before);  // edge order changed by design, content did not
  EXPECT_EQ(d.edges().size(), 3u);
}

TEST(Commands, PropertyUndoErasesAbsentKeyAndRestoresExisting) {
  Document d;
  Node n = node("a");
  n.properties["kept"] = "old";
  d.addNode(n);
  push<SetNodePropertyCommand>(d, "a", "fresh", "1");
  push<SetNodePropertyCommand>(d, "a", "kept", "new");
  EXPECT_EQ(snapshot(d), "a@0,0[fresh=1][kept=new] |");
  d.history().undo(d);
  d.history().undo(d);
  EXPECT_EQ(snapshot(d), "a@0,0[kept=old] |");
  d.history().redo(d);
  EXPECT_EQ(snapshot(d), "a@0,0[fresh=1][kept=old] |");
}

TEST(Commands, HistoryStacksAndMissingTargets) {
  Document d;
  EXPECT_FALSE(d.history().undo(d));
  EXPECT_FALSE(d.history().redo(d));
  d.addNode(node("a"));
  push<MoveNodeCommand>(d, "a", 5.f, 1.f);
  push<MoveNodeCommand>(d, "a", 5.f, 1.f);
  d.history().undo(d);
  d.history().undo(d);
  push<SetTextCommand>(d, "a", "hello");
  EXPECT_FALSE(d.history().redo(d));  // the two undone moves are gone
  EXPECT_EQ(d.history().undoCount(), 1u);
  // Commands whose target is gone do nothing.
  push<MoveNodeCommand>(d, "ghost", 1.f, 1.f);
  push<DeleteEdgeCommand>(d, "ghost");
  d.history().undo(d);
  d.history().undo(d);
  EXPECT_EQ(snapshot(d), "a@0,0 |");
  d.history().pushAndExecute(nullptr, d);
  EXPECT_EQ(d.history().undoCount(), 1u);
}

// The saved mark is a depth that undo and redo come back to, and that dies
// for good when a new command drops the undone commands it stood on. The
// sequence save, then "undo, a different edit" twice, once reused a freed
// command's address and reported the document as saved.
TEST(Commands, SavedMarkDiesWithTheCommandsItStandsOn) {
  Document d;
  d.addNode(node("a"));
  EXPECT_TRUE(d.history().atSavedState());  // nothing done yet
  push<MoveNodeCommand>(d, "a", 1.f, 0.f);
  EXPECT_FALSE(d.history().atSavedState());
  d.history().markSaved();
  EXPECT_TRUE(d.history().atSavedState());
  d.history().undo(d);
  EXPECT_FALSE(d.history().atSavedState());
  d.history().redo(d);
  EXPECT_TRUE(d.history().atSavedState());

  for (int round = 0; round < 2; ++round) {
    d.history().undo(d);
    push<MoveNodeCommand>(d, "a", 0.f, 1.f);  // same class and size as the one dropped
    EXPECT_FALSE(d.history().atSavedState()) << "round " << round;
  }
  // Undo and redo never lead back to a dead mark.
  d.history().undo(d);
  EXPECT_FALSE(d.history().atSavedState());
  d.history().redo(d);
  EXPECT_FALSE(d.history().atSavedState());
  // A mark below the top survives new commands on top of it.
  d.history().markSaved();
  push<MoveNodeCommand>(d, "a", 1.f, 1.f);
  d.history().undo(d);
  EXPECT_TRUE(d.history().atSavedState());
  d.history().clear();  // what a load does: the loaded state is the saved one
  EXPECT_TRUE(d.history().atSavedState());
}

TEST(Commands, ReorderAndResizeRedoRestoreFirstExecution) {
  Document d;
  for (const char* id : {"a", "b", "c"}) d.addNode(node(id));
  push<ReorderNodeCommand>(d, "a", 2);
  EXPECT_EQ(d.nodeAt(2)->id, "a");
  d.history().undo(d);
  EXPECT_EQ(d.nodeAt(0)->id, "a");
  push<ResizeNodeCommand>(d, "b", NodeGeometry{1, 2, 3, 4});
  d.history().undo(d);
  EXPECT_EQ(d.findNode("b")->geom, (NodeGeometry{0, 0, 10, 10}));
  d.history().redo(d);
  EXPECT_EQ(d.findNode("b")->geom, (NodeGeometry{1, 2, 3, 4}));
}

TEST(Commands, CompositeUndoesInReverse) {
  Document d;
  d.addNode(node("a"));
  auto comp = std::make_unique<CompositeCommand>();
  comp->add(std::make_unique<ResizeNodeCommand>("a", NodeGeometry{5, 5, 10, 10}));
  comp->add(std::make_unique<ResizeNodeCommand>("a", NodeGeometry{9, 9, 10, 10}));
  d.history().pushAndExecute(std::move(comp), d);
  EXPECT_EQ(snapshot(d), "a@9,9 |");
  d.history().undo(d);
  EXPECT_EQ(snapshot(d), "a@0,0 |");  // reverse order restores the first old state last
}

TEST(Commands, BatchDeleteAndInsertRoundTripExactly) {
  Document d;
  for (int i = 0; i < 6; ++i) d.addNode(node("n" + std::to_string(i), static_cast<float>(i)));
  for (int i = 0; i < 5; ++i) d.addEdge(edge("e" + std::to_string(i), "n" + std::to_string(i), "n" + std::to_string(i + 1)));
  const std::string before = snapshot(d);
  push<DeleteElementsCommand>(d, std::vector<std::string>{"n1", "n4"}, std::vector<std::string>{"e2"});
  EXPECT_EQ(snapshot(d), "n0@0,0 n2@2,0 n3@3,0 n5@5,0 |");
  d.history().undo(d);
  EXPECT_EQ(snapshot(d), before);
  d.history().redo(d);
  d.history().undo(d);
  EXPECT_EQ(snapshot(d), before);

  push<InsertElementsCommand>(d, std::vector<Node>{node("n0"), node("x")}, std::vector<Edge>{edge("ex", "x", "n0")});
  EXPECT_EQ(d.nodes().size(), 7u);  // the taken id n0 was skipped
  d.history().undo(d);
  EXPECT_EQ(snapshot(d), before);

  push<MoveNodesCommand>(d, std::vector<std::string>{"n0", "n5", "gone"}, 10.f, 20.f);
  EXPECT_EQ(d.findNode("n5")->geom.x, 15.f);
  d.history().undo(d);
  EXPECT_EQ(snapshot(d), before);
}
