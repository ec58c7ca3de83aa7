// Documents, files, history and queries.

#include "bridge/bridge_internal.h"
#include "io/diagram_reader.h"
#include "io/diagram_writer.h"

namespace modelyne::bridge {

using detail::documentOf;

DocumentHandle createDocument() { return new core::Document(); }

void destroyDocument(DocumentHandle h) { delete h; }

void loadDiagramXml(DocumentHandle h, std::string_view xml) {
  core::Document& doc = documentOf(h);
  io::ReadError err;
  if (!io::parseDiagramInto(xml, doc, &err)) detail::fail(kParseFailure, "Failed to parse XML: " + err.what);
}

std::string saveDiagramXml(DocumentHandle h) { return io::serializeDocument(documentOf(h)); }

void undo(DocumentHandle h) {
  core::Document& doc = documentOf(h);
  if (!doc.history().undo(doc)) detail::fail(kNothingToUndo, "Nothing to undo");
}

void redo(DocumentHandle h) {
  core::Document& doc = documentOf(h);
  if (!doc.history().redo(doc)) detail::fail(kNothingToRedo, "Nothing to redo");
}

bool canUndo(DocumentHandle h) { return documentOf(h).history().undoCount() > 0; }

bool canRedo(DocumentHandle h) { return documentOf(h).history().redoCount() > 0; }

std::optional<core::Node> nodeAt(DocumentHandle h, int index) {
  const core::Node* n = static_cast<const core::Document&>(documentOf(h)).nodeAt(index);
  if (!n) return std::nullopt;
  return *n;
}

std::optional<core::Node> findNode(DocumentHandle h, std::string_view nodeId) {
  const core::Node* n = static_cast<const core::Document&>(documentOf(h)).findNode(nodeId);
  if (!n) return std::nullopt;
  return *n;
}

std::optional<core::Edge> findEdge(DocumentHandle h, std::string_view edgeId) {
  const core::Edge* e = static_cast<const core::Document&>(documentOf(h)).findEdge(edgeId);
  if (!e) return std::nullopt;
  return *e;
}

}  // namespace modelyne::bridge
