// Edge operations: creating and deleting are undoable; the four edits of an
// existing edge change it in place, or, through their undoable twins, go
// through the history.

#include <cmath>
#include <memory>

#include "bridge/bridge_internal.h"
#include "core/commands.h"
#include "core/edge_commands.h"

namespace modelyne::bridge {

using detail::documentOf;
using detail::requireEdge;

std::string addEdge(DocumentHandle h, std::string_view source, core::Anchor sourcePort, std::string_view target,
                     core::Anchor targetPort, std::string_view requestedId) {
  core::Document& doc = documentOf(h);
  if (!doc.findNode(source) || !doc.findNode(target)) detail::fail(kNotFound, "Endpoint node not found");
  core::Edge edge;
  edge.source = std::string(source);
  edge.sourcePort = core::normalizeAnchor(sourcePort);
  edge.target = std::string(target);
  edge.targetPort = core::normalizeAnchor(targetPort);
  edge.id = doc.makeEdgeId(requestedId);
  std::string id = edge.id;
  doc.history().pushAndExecute(std::make_unique<core::CreateEdgeCommand>(std::move(edge)), doc);
  return id;
}

void deleteEdge(DocumentHandle h, std::string_view edgeId) {
  core::Document& doc = documentOf(h);
  requireEdge(doc, edgeId);
  doc.history().pushAndExecute(std::make_unique<core::DeleteEdgeCommand>(std::string(edgeId)), doc);
}

void setEdgeAnchorOffsets(DocumentHandle h, std::string_view edgeId, float srcAnchorDY, float tgtAnchorDY) {
  core::Edge& e = requireEdge(documentOf(h), edgeId);
  e.srcAnchorDY = srcAnchorDY;
  e.tgtAnchorDY = tgtAnchorDY;
}

void reconnectEdge(DocumentHandle h, std::string_view edgeId, bool sourceEnd, std::string_view nodeId,
                   core::Anchor port) {
  core::Document& doc = documentOf(h);
  core::Edge& e = requireEdge(doc, edgeId);
  if (!doc.findNode(nodeId)) detail::fail(kNotFound, "Endpoint node not found");
  if (sourceEnd) {
    e.source = std::string(nodeId);
    e.sourcePort = core::normalizeAnchor(port);
    e.srcAnchorDY = core::kUnsetOffset;
  } else {
    e.target = std::string(nodeId);
    e.targetPort = core::normalizeAnchor(port);
    e.tgtAnchorDY = core::kUnsetOffset;
  }
}

void setEdgeText(DocumentHandle h, std::string_view edgeId, std::string_view text) {
  requireEdge(documentOf(h), edgeId).text = std::string(text);
}

void setEdgeType(DocumentHandle h, std::string_view edgeId, core::EdgeType type) {
  requireEdge(documentOf(h), edgeId).type = type;
}

namespace {

// Offsets are NaN when not set; two unset offsets are the same offset.
bool sameOffset(float a, float b) { return a == b || (std::isnan(a) && std::isnan(b)); }

bool push(core::Document& doc, std::unique_ptr<core::ICommand> cmd) {
  doc.history().pushAndExecute(std::move(cmd), doc);
  return true;
}

}  // namespace

bool setEdgeTextUndoable(DocumentHandle h, std::string_view edgeId, std::string_view text) {
  core::Document& doc = documentOf(h);
  if (requireEdge(doc, edgeId).text == text) return false;
  return push(doc, std::make_unique<core::SetEdgeTextCommand>(std::string(edgeId), std::string(text)));
}

bool setEdgeTypeUndoable(DocumentHandle h, std::string_view edgeId, core::EdgeType type) {
  core::Document& doc = documentOf(h);
  if (requireEdge(doc, edgeId).type == type) return false;
  return push(doc, std::make_unique<core::SetEdgeTypeCommand>(std::string(edgeId), type));
}

bool setEdgeAnchorOffsetsUndoable(DocumentHandle h, std::string_view edgeId, float srcAnchorDY, float tgtAnchorDY) {
  core::Document& doc = documentOf(h);
  const core::Edge& e = requireEdge(doc, edgeId);
  if (sameOffset(e.srcAnchorDY, srcAnchorDY) && sameOffset(e.tgtAnchorDY, tgtAnchorDY)) return false;
  return push(doc, std::make_unique<core::SetEdgeAnchorOffsetsCommand>(std::string(edgeId), srcAnchorDY, tgtAnchorDY));
}

bool reconnectEdgeUndoable(DocumentHandle h, std::string_view edgeId, bool sourceEnd, std::string_view nodeId,
                           core::Anchor port) {
  core::Document& doc = documentOf(h);
  const core::Edge& e = requireEdge(doc, edgeId);
  if (!doc.findNode(nodeId)) detail::fail(kNotFound, "Endpoint node not found");
  port = core::normalizeAnchor(port);
  const bool same = sourceEnd ? e.source == nodeId && e.sourcePort == port && std::isnan(e.srcAnchorDY)
                              : e.target == nodeId && e.targetPort == port && std::isnan(e.tgtAnchorDY);
  if (same) return false;
  return push(doc, std::make_unique<core::ReconnectEdgeCommand>(std::string(edgeId), sourceEnd, std::string(nodeId), port));
}

}  // namespace modelyne::bridge
