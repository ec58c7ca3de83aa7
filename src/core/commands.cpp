#include "core/commands.h"

namespace modelyne::core {

// ---------------------------------------------------------------- create / delete

void CreateNodeCommand::execute(Document& doc) { doc.addNode(node_); }
void CreateNodeCommand::undo(Document& doc) { doc.removeNode(node_.id); }

void DeleteNodeCommand::execute(Document& doc) {
  const Node* node = doc.findNode(id_);
  found_ = node != nullptr;
  if (!found_) return;
  saved_ = *node;
  index_ = doc.indexOfNode(id_);
  savedEdges_.clear();
  for (const Edge& e : doc.edges())
    if (e.source == id_ || e.target == id_) savedEdges_.push_back(e);
  doc.removeEdgesOfNode(id_);
  doc.removeNode(id_);
}

void DeleteNodeCommand::undo(Document& doc) {
  if (!found_) return;
  // The saved index can lie beyond the end when the document changed
  // behind the history's back; the node then goes on top.
  if (index_ < 0 || !doc.insertNodeAt(index_, saved_)) doc.addNode(saved_);
  for (const Edge& e : savedEdges_) doc.addEdge(e);
}

void CreateEdgeCommand::execute(Document& doc) { doc.addEdge(edge_); }
void CreateEdgeCommand::undo(Document& doc) { doc.removeEdge(edge_.id); }

void DeleteEdgeCommand::execute(Document& doc) {
  const Edge* edge = doc.findEdge(id_);
  found_ = edge != nullptr;
  if (!found_) return;
  saved_ = *edge;
  doc.removeEdge(id_);
}

void DeleteEdgeCommand::undo(Document& doc) {
  if (found_) doc.addEdge(saved_);
}

// ---------------------------------------------------------------- geometry and order

void MoveNodeCommand::execute(Document& doc) {
  if (Node* n = doc.findNode(id_)) {
    n->geom.x += dx_;
    n->geom.y += dy_;
  }
}

void MoveNodeCommand::undo(Document& doc) {
  if (Node* n = doc.findNode(id_)) {
    n->geom.x -= dx_;
    n->geom.y -= dy_;
  }
}

void ResizeNodeCommand::execute(Document& doc) {
  if (Node* n = doc.findNode(id_)) {
    old_ = n->geom;
    n->geom = new_;
  }
}

void ResizeNodeCommand::undo(Document& doc) {
  if (Node* n = doc.findNode(id_)) n->geom = old_;
}

void ReorderNodeCommand::execute(Document& doc) {
  former_ = doc.indexOfNode(id_);
  if (former_ >= 0) doc.moveNodeTo(id_, target_);
}

void ReorderNodeCommand::undo(Document& doc) {
  if (former_ >= 0) doc.moveNodeTo(id_, former_);
}

// ---------------------------------------------------------------- attributes

void SetNodeColorCommand::execute(Document& doc) {
  if (Node* n = doc.findNode(id_)) {
    old_ = n->fillColor;
    n->fillColor = new_;
  }
}

void SetNodeColorCommand::undo(Document& doc) {
  if (Node* n = doc.findNode(id_)) n->fillColor = old_;
}

void SetNodeDataIntegrationCommand::execute(Document& doc) {
  if (Node* n = doc.findNode(id_)) {
    old_ = n->dataIntegration;
    n->dataIntegration = new_;
  }
}

void SetNodeDataIntegrationCommand::undo(Document& doc) {
  if (Node* n = doc.findNode(id_)) n->dataIntegration = old_;
}

void SetNodePropertyCommand::execute(Document& doc) {
  Node* n = doc.findNode(id_);
  if (!n) return;
  const auto it = n->properties.find(key_);
  existed_ = it != n->properties.end();
  old_ = existed_ ? it->second : std::string();
  n->properties[key_] = new_;
}

void SetNodePropertyCommand::undo(Document& doc) {
  Node* n = doc.findNode(id_);
  if (!n) return;
  if (existed_) {
    n->properties[key_] = old_;
  } else {
    n->properties.erase(key_);
  }
}

void SetTextCommand::execute(Document& doc) {
  if (Node* n = doc.findNode(id_)) {
    old_ = n->text;
    n->text = new_;
  }
}

void SetTextCommand::undo(Document& doc) {
  if (Node* n = doc.findNode(id_)) n->text = old_;
}

// ---------------------------------------------------------------- composite

void CompositeCommand::add(std::unique_ptr<ICommand> child) {
  if (child) children_.push_back(std::move(child));
}

void CompositeCommand::execute(Document& doc) {
  for (auto& child : children_) child->execute(doc);
}

void CompositeCommand::undo(Document& doc) {
  for (auto it = children_.rbegin(); it != children_.rend(); ++it) (*it)->undo(doc);
}

}  // namespace modelyne::core
