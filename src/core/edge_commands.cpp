#include "core/edge_commands.h"

#include "core/document.h"

namespace modelyne::core {

void SetEdgeTextCommand::execute(Document& doc) {
  if (Edge* e = doc.findEdge(id_)) {
    old_ = e->text;
    e->text = new_;
  }
}

void SetEdgeTextCommand::undo(Document& doc) {
  if (Edge* e = doc.findEdge(id_)) e->text = old_;
}

void SetEdgeTypeCommand::execute(Document& doc) {
  if (Edge* e = doc.findEdge(id_)) {
    old_ = e->type;
    e->type = new_;
  }
}

void SetEdgeTypeCommand::undo(Document& doc) {
  if (Edge* e = doc.findEdge(id_)) e->type = old_;
}

void SetEdgeAnchorOffsetsCommand::execute(Document& doc) {
  if (Edge* e = doc.findEdge(id_)) {
    oldSrc_ = e->srcAnchorDY;
    oldTgt_ = e->tgtAnchorDY;
    e->srcAnchorDY = newSrc_;
    e->tgtAnchorDY = newTgt_;
  }
}

void SetEdgeAnchorOffsetsCommand::undo(Document& doc) {
  if (Edge* e = doc.findEdge(id_)) {
    e->srcAnchorDY = oldSrc_;
    e->tgtAnchorDY = oldTgt_;
  }
}

void ReconnectEdgeCommand::execute(Document& doc) {
  Edge* e = doc.findEdge(id_);
  if (!e) return;
  std::string& node = sourceEnd_ ? e->source : e->target;
  Anchor& port = sourceEnd_ ? e->sourcePort : e->targetPort;
  float& offset = sourceEnd_ ? e->srcAnchorDY : e->tgtAnchorDY;
  oldNode_ = node;
  oldPort_ = port;
  oldOffset_ = offset;
  node = node_;
  port = port_;
  offset = kUnsetOffset;
}

void ReconnectEdgeCommand::undo(Document& doc) {
  Edge* e = doc.findEdge(id_);
  if (!e) return;
  (sourceEnd_ ? e->source : e->target) = oldNode_;
  (sourceEnd_ ? e->sourcePort : e->targetPort) = oldPort_;
  (sourceEnd_ ? e->srcAnchorDY : e->tgtAnchorDY) = oldOffset_;
}

}  // namespace modelyne::core
