#include "core/batch_commands.h"

#include <unordered_set>

namespace modelyne::core {

namespace {
std::unordered_set<std::string_view> viewsOf(const std::vector<std::string>& ids) {
  std::unordered_set<std::string_view> set;
  set.reserve(ids.size());
  for (const std::string& id : ids) set.insert(id);
  return set;
}
}  // namespace

void DeleteElementsCommand::execute(Document& doc) {
  removed_ = doc.removeElements(viewsOf(nodeIds_), viewsOf(edgeIds_));
}

void DeleteElementsCommand::undo(Document& doc) {
  doc.restoreElements(std::move(removed_));
  removed_ = RemovedElements{};
}

void InsertElementsCommand::execute(Document& doc) {
  addedNodes_.clear();
  addedEdges_.clear();
  doc.reserve(doc.nodes().size() + nodes_.size(), doc.edges().size() + edges_.size());
  for (const Node& n : nodes_)
    if (doc.addNode(n)) addedNodes_.push_back(n.id);
  for (const Edge& e : edges_)
    if (doc.addEdge(e)) addedEdges_.push_back(e.id);
}

void InsertElementsCommand::undo(Document& doc) {
  doc.removeElements(viewsOf(addedNodes_), viewsOf(addedEdges_));
}

void MoveNodesCommand::execute(Document& doc) {
  for (const std::string& id : ids_) {
    if (Node* n = doc.findNode(id)) {
      n->geom.x += dx_;
      n->geom.y += dy_;
    }
  }
}

void MoveNodesCommand::undo(Document& doc) {
  for (const std::string& id : ids_) {
    if (Node* n = doc.findNode(id)) {
      n->geom.x -= dx_;
      n->geom.y -= dy_;
    }
  }
}

}  // namespace modelyne::core
