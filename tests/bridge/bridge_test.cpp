// Document operations: checks, error codes and messages, ids, history.

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>

#include "bridge/bridge.h"

using namespace modelyne;
using bridge::BridgeError;
using S = core::ShapeType;

namespace {

struct DocDeleter {
  void operator()(core::Document* d) const { bridge::destroyDocument(d); }
};
using DocPtr = std::unique_ptr<core::Document, DocDeleter>;
DocPtr newDoc() { return DocPtr(bridge::createDocument()); }

// Runs `f`, expects a BridgeError with `code` and `message`, and checks that
// the document's text and history did not change.
void expectError(core::Document* doc, std::uint32_t code, const std::string& message, const std::function<void()>& f) {
  const std::string before = doc ? bridge::saveDiagramXml(doc) : std::string();
  const std::size_t undoBefore = doc ? doc->history().undoCount() : 0;
  try {
    f();
    ADD_FAILURE() << "no error; expected " << message;
  } catch (const BridgeError& e) {
    EXPECT_EQ(e.code(), code);
    EXPECT_EQ(std::string(e.what()), message);
  }
  if (doc) {
    EXPECT_EQ(bridge::saveDiagramXml(doc), before) << message;
    EXPECT_EQ(doc->history().undoCount(), undoBefore) << message;
  }
}

}  // namespace

TEST(Bridge, NullHandleIsRefusedEverywhere) {
  const std::vector<std::string> ids{"a"};
  const std::vector<std::function<void()>> calls = {
      [] { bridge::loadDiagramXml(nullptr, "<diagram/>"); },
      [] { bridge::saveDiagramXml(nullptr); },
      [] { bridge::addNode(nullptr, S::rect, 0, 0, 1, 1); },
      [] { bridge::deleteNode(nullptr, "a"); },
      [] { bridge::setNodeProperty(nullptr, "a", "k", "v"); },
      [] { bridge::addEdge(nullptr, "a", core::Anchor::right, "b", core::Anchor::left); },
      [] { bridge::setEdgeText(nullptr, "e", "t"); },
      [&] { bridge::alignNodes(nullptr, ids, 0); },
      [&] { bridge::groupNodes(nullptr, ids); },
      [&] { bridge::deleteElements(nullptr, ids, {}); },
      [] { bridge::undo(nullptr); },
      [] { bridge::canRedo(nullptr); },
      [] { bridge::nodeAt(nullptr, 0); },
      [] { bridge::findNode(nullptr, "a"); },
  };
  for (const auto& call : calls) expectError(nullptr, 1, "Document handle is null", call);
  bridge::destroyDocument(nullptr);  // harmless
}

TEST(Bridge, AddNodeIdsAndFields) {
  auto doc = newDoc();
  EXPECT_EQ(bridge::addNode(doc.get(), S::rect, 1, 2, 3, 4), "rect");
  EXPECT_EQ(bridge::addNode(doc.get(), S::rect, 0, 0, 0, 0), "rect_1");
  EXPECT_EQ(bridge::addNode(doc.get(), S::mindmapMainTopic, 0, 0, 0, 0), "major");
  EXPECT_EQ(bridge::addNode(doc.get(), S::mindmapSubTopic, 0, 0, 0, 0), "minor");
  EXPECT_EQ(bridge::addNode(doc.get(), S::mindmapCentral, 0, 0, 0, 0), "central");
  EXPECT_EQ(bridge::addNode(doc.get(), S::umlClass, 0, 0, 0, 0), "node");
  EXPECT_EQ(bridge::addNode(doc.get(), S::sysmlBlock, 0, 0, 0, 0, std::nullopt, std::string()), "node_1");
  EXPECT_EQ(bridge::addNode(doc.get(), S::umlClass, 5, 6, 7, 8, "Car", "car"), "car");
  EXPECT_EQ(bridge::addNode(doc.get(), S::umlClass, 0, 0, 0, 0, std::nullopt, "car"), "car_1");

  const auto n = bridge::findNode(doc.get(), "car");
  ASSERT_TRUE(n);
  EXPECT_EQ(n->geom, (core::NodeGeometry{5, 6, 7, 8}));  // no default size
  EXPECT_EQ(n->text, "Car");
  EXPECT_TRUE(n->fillColor.empty());
  EXPECT_TRUE(n->properties.empty());
  EXPECT_FALSE(n->dataIntegration);
  EXPECT_EQ(bridge::nodeAt(doc.get(), 0)->id, "rect");
  EXPECT_FALSE(bridge::nodeAt(doc.get(), -1));
  EXPECT_FALSE(bridge::nodeAt(doc.get(), 9));
  EXPECT_FALSE(bridge::findNode(doc.get(), "nope"));
  EXPECT_EQ(doc->history().undoCount(), 9u);
}

TEST(Bridge, NodeOperationsReportMissingNodes) {
  auto doc = newDoc();
  bridge::addNode(doc.get(), S::rect, 0, 0, 1, 1);
  core::Document* d = doc.get();
  const std::vector<std::function<void()>> calls = {
      [d] { bridge::deleteNode(d, "x"); },          [d] { bridge::moveNode(d, "x", 1, 1); },
      [d] { bridge::resizeNode(d, "x", 0, 0, 1, 1); }, [d] { bridge::setNodeText(d, "x", "t"); },
      [d] { bridge::setNodeColor(d, "x", "red"); },  [d] { bridge::setNodeDataIntegration(d, "x", true); },
      [d] { bridge::setNodeProperty(d, "x", "documentation", "v"); },
      [d] { bridge::bringToFront(d, "x"); },         [d] { bridge::sendToBack(d, "x"); },
      [d] { bridge::bringForward(d, "x"); },         [d] { bridge::sendBackward(d, "x"); },
  };
  for (const auto& call : calls) expectError(d, 4, "Node not found", call);
}

TEST(Bridge, SetNodePropertyChecksTheSchema) {
  auto doc = newDoc();
  const std::string req = bridge::addNode(doc.get(), S::sysmlRequirementUsage, 0, 0, 10, 10);
  const std::string rect = bridge::addNode(doc.get(), S::rect, 0, 0, 10, 10);
  expectError(doc.get(), 1, "Property 'reqId' is not defined for this node type",
              [&] { bridge::setNodeProperty(doc.get(), rect, "reqId", "R1"); });
  expectError(doc.get(), 1,
              "Invalid value for 'reqId': Identifiers may only contain letters, digits, '_', '-' or '.'.",
              [&] { bridge::setNodeProperty(doc.get(), req, "reqId", "R 1"); });
  expectError(doc.get(), 1, "Invalid value for 'requirementKind': Value is not one of the allowed choices.",
              [&] { bridge::setNodeProperty(doc.get(), req, "requirementKind", "Physical"); });
  bridge::setNodeProperty(doc.get(), req, "reqId", "REQ-1");
  bridge::setNodeProperty(doc.get(), rect, "documentation", "why");
  EXPECT_EQ(bridge::findNode(doc.get(), req)->properties.at("reqId"), "REQ-1");
  bridge::undo(doc.get());
  bridge::undo(doc.get());
  EXPECT_FALSE(bridge::findNode(doc.get(), req)->properties.count("reqId"));  // absent again, not empty
}

TEST(Bridge, ReorderPushesOneCommandEachEvenAtTheEnds) {
  auto doc = newDoc();
  for (const char* id : {"a", "b", "c"}) bridge::addNode(doc.get(), S::rect, 0, 0, 1, 1, std::nullopt, id);
  auto order = [&] {
    std::string s;
    for (const auto& n : doc->nodes()) s += n.id;
    return s;
  };
  const std::size_t base = doc->history().undoCount();
  bridge::sendBackward(doc.get(), "a");  // already bottom: still a command
  EXPECT_EQ(order(), "abc");
  EXPECT_EQ(doc->history().undoCount(), base + 1);
  bridge::bringToFront(doc.get(), "a");
  EXPECT_EQ(order(), "bca");
  bridge::sendToBack(doc.get(), "c");
  EXPECT_EQ(order(), "cba");
  bridge::bringForward(doc.get(), "c");
  EXPECT_EQ(order(), "bca");
  bridge::sendBackward(doc.get(), "a");
  EXPECT_EQ(order(), "bac");
  bridge::undo(doc.get());
  bridge::undo(doc.get());
  EXPECT_EQ(order(), "cba");
}

TEST(Bridge, AddEdgeIdsPortsAndChecks) {
  auto doc = newDoc();
  bridge::addNode(doc.get(), S::rect, 0, 0, 1, 1, std::nullopt, "a");
  bridge::addNode(doc.get(), S::rect, 0, 0, 1, 1, std::nullopt, "b");
  EXPECT_EQ(bridge::addEdge(doc.get(), "a", core::Anchor::right, "b", core::Anchor::left), "edge");
  EXPECT_EQ(bridge::addEdge(doc.get(), "a", core::Anchor::right, "b", core::Anchor::left), "edge_1");
  EXPECT_EQ(bridge::addEdge(doc.get(), "a", static_cast<core::Anchor>(42), "b", core::Anchor::top), "edge_2");
  EXPECT_EQ(bridge::addEdge(doc.get(), "b", core::Anchor::top, "a", core::Anchor::top, "a"), "a");  // own name space
  const auto e = bridge::findEdge(doc.get(), "edge_2");
  ASSERT_TRUE(e);
  EXPECT_EQ(e->sourcePort, core::Anchor::right);
  EXPECT_EQ(e->targetPort, core::Anchor::top);
  EXPECT_EQ(e->type, core::EdgeType::straightArrow);
  EXPECT_TRUE(e->text.empty());
  EXPECT_TRUE(std::isnan(e->srcAnchorDY));
  EXPECT_TRUE(std::isnan(e->tgtAnchorDY));
  expectError(doc.get(), 4, "Endpoint node not found",
              [&] { bridge::addEdge(doc.get(), "a", core::Anchor::right, "zz", core::Anchor::left); });
  expectError(doc.get(), 4, "Edge not found", [&] { bridge::deleteEdge(doc.get(), "zz"); });
  bridge::deleteEdge(doc.get(), "edge");
  EXPECT_FALSE(bridge::findEdge(doc.get(), "edge"));
  bridge::undo(doc.get());
  EXPECT_EQ(doc->edges().back().id, "edge");  // restored at the end
}

TEST(Bridge, DirectEdgeEditsAreNotUndoable) {
  auto doc = newDoc();
  bridge::addNode(doc.get(), S::rect, 0, 0, 1, 1, std::nullopt, "a");
  bridge::addNode(doc.get(), S::rect, 0, 0, 1, 1, std::nullopt, "b");
  bridge::addNode(doc.get(), S::rect, 0, 0, 1, 1, std::nullopt, "c");
  const std::string e = bridge::addEdge(doc.get(), "a", core::Anchor::right, "b", core::Anchor::left);
  bridge::setEdgeAnchorOffsets(doc.get(), e, 5, 7);
  bridge::reconnectEdge(doc.get(), e, false, "c", static_cast<core::Anchor>(-1));
  auto edge = *bridge::findEdge(doc.get(), e);
  EXPECT_EQ(edge.target, "c");
  EXPECT_EQ(edge.targetPort, core::Anchor::right);
  EXPECT_EQ(edge.srcAnchorDY, 5.0f);  // only the reconnected end is reset
  EXPECT_TRUE(std::isnan(edge.tgtAnchorDY));
  bridge::reconnectEdge(doc.get(), e, true, "b", core::Anchor::bottom);
  edge = *bridge::findEdge(doc.get(), e);
  EXPECT_EQ(edge.source, "b");
  EXPECT_TRUE(std::isnan(edge.srcAnchorDY));
  expectError(doc.get(), 4, "Endpoint node not found",
              [&] { bridge::reconnectEdge(doc.get(), e, true, "zz", core::Anchor::top); });
  expectError(doc.get(), 4, "Edge not found", [&] { bridge::reconnectEdge(doc.get(), "zz", true, "zz", core::Anchor::top); });
  expectError(doc.get(), 4, "Edge not found", [&] { bridge::setEdgeType(doc.get(), "zz", core::EdgeType::elbow); });
  expectError(doc.get(), 4, "Edge not found", [&] { bridge::setEdgeAnchorOffsets(doc.get(), "zz", 0, 0); });

  bridge::setEdgeType(doc.get(), e, static_cast<core::EdgeType>(77));  // stored as given
  EXPECT_EQ(static_cast<int>(bridge::findEdge(doc.get(), e)->type), 77);
  bridge::setEdgeText(doc.get(), e, "label");
  bridge::undo(doc.get());  // takes back the edge creation, not the text
  EXPECT_FALSE(bridge::findEdge(doc.get(), e));
  bridge::redo(doc.get());
  EXPECT_EQ(bridge::findEdge(doc.get(), e)->text, "");
}

// The undoable twins: same checks, one step each, nothing pushed for no change,
// and undo restores exactly what was there (also an unset offset).
TEST(Bridge, UndoableEdgeEditsAreOneStepEach) {
  auto doc = newDoc();
  for (const char* id : {"a", "b", "c"}) bridge::addNode(doc.get(), S::rect, 0, 0, 1, 1, std::nullopt, id);
  const std::string e = bridge::addEdge(doc.get(), "a", core::Anchor::right, "b", core::Anchor::left);
  const std::string created = bridge::saveDiagramXml(doc.get());
  const std::size_t base = doc->history().undoCount();

  EXPECT_TRUE(bridge::setEdgeTextUndoable(doc.get(), e, "flows"));
  EXPECT_FALSE(bridge::setEdgeTextUndoable(doc.get(), e, "flows"));
  EXPECT_TRUE(bridge::setEdgeTypeUndoable(doc.get(), e, core::EdgeType::composition));
  EXPECT_TRUE(bridge::setEdgeAnchorOffsetsUndoable(doc.get(), e, 5, 7));
  EXPECT_TRUE(bridge::reconnectEdgeUndoable(doc.get(), e, false, "c", static_cast<core::Anchor>(-1)));
  EXPECT_FALSE(bridge::reconnectEdgeUndoable(doc.get(), e, false, "c", core::Anchor::right));
  EXPECT_EQ(doc->history().undoCount(), base + 4);
  core::Edge edge = *bridge::findEdge(doc.get(), e);
  EXPECT_EQ(edge.text, "flows");
  EXPECT_EQ(edge.type, core::EdgeType::composition);
  EXPECT_EQ(edge.target, "c");
  EXPECT_EQ(edge.targetPort, core::Anchor::right);
  EXPECT_EQ(edge.srcAnchorDY, 5.0f);
  EXPECT_TRUE(std::isnan(edge.tgtAnchorDY));

  bridge::undo(doc.get());  // the reconnect: target, port and offset come back
  edge = *bridge::findEdge(doc.get(), e);
  EXPECT_EQ(edge.target, "b");
  EXPECT_EQ(edge.targetPort, core::Anchor::left);
  EXPECT_EQ(edge.tgtAnchorDY, 7.0f);
  bridge::undo(doc.get());
  bridge::undo(doc.get());
  bridge::undo(doc.get());
  EXPECT_EQ(bridge::saveDiagramXml(doc.get()), created);
  for (int i = 0; i < 4; ++i) bridge::redo(doc.get());
  EXPECT_EQ(bridge::findEdge(doc.get(), e)->target, "c");
  EXPECT_EQ(bridge::findEdge(doc.get(), e)->text, "flows");

  expectError(doc.get(), 4, "Edge not found", [&] { bridge::setEdgeTextUndoable(doc.get(), "zz", "x"); });
  expectError(doc.get(), 4, "Edge not found", [&] { bridge::setEdgeTypeUndoable(doc.get(), "zz", core::EdgeType::elbow); });
  expectError(doc.get(), 4, "Edge not found", [&] { bridge::setEdgeAnchorOffsetsUndoable(doc.get(), "zz", 1, 1); });
  expectError(doc.get(), 4, "Endpoint node not found",
              [&] { bridge::reconnectEdgeUndoable(doc.get(), e, true, "zz", core::Anchor::top); });
  expectError(doc.get(), 1, "Document handle is null", [&] { bridge::setEdgeTextUndoable(nullptr, e, "x"); });
}

TEST(Bridge, UndoRedoReportEmptyStacks) {
  auto doc = newDoc();
  expectError(doc.get(), 8, "Nothing to undo", [&] { bridge::undo(doc.get()); });
  expectError(doc.get(), 9, "Nothing to redo", [&] { bridge::redo(doc.get()); });
  bridge::addNode(doc.get(), S::rect, 0, 0, 1, 1);
  EXPECT_TRUE(bridge::canUndo(doc.get()));
  bridge::undo(doc.get());
  EXPECT_TRUE(bridge::canRedo(doc.get()));
  EXPECT_FALSE(bridge::canUndo(doc.get()));
}

TEST(Bridge, LoadIsAllOrNothingAndClearsHistory) {
  auto doc = newDoc();
  bridge::addNode(doc.get(), S::rect, 0, 0, 1, 1, "keep", "k");
  expectError(doc.get(), 2,
              "Failed to parse XML: invalid stof argument: attribute 'x' of <geom> in node 'n' is \"bad\"",
              [&] { bridge::loadDiagramXml(doc.get(), "<diagram>\n<node id=\"n\"><geom x=\"bad\"/></node></diagram>"); });
  expectError(doc.get(), 2, "Failed to parse XML: root element is <html>, expected <diagram>",
              [&] { bridge::loadDiagramXml(doc.get(), "<html></html>"); });
  EXPECT_TRUE(bridge::canUndo(doc.get()));

  const std::string saved = bridge::saveDiagramXml(doc.get());
  auto other = newDoc();
  bridge::loadDiagramXml(other.get(), saved);
  EXPECT_FALSE(bridge::canUndo(other.get()));
  EXPECT_EQ(bridge::saveDiagramXml(other.get()), saved);
  EXPECT_EQ(bridge::findNode(other.get(), "k")->text, "keep");
}
