#pragma once
/// Writes diagram XML, the text of a model file with one diagram.
///
///   std::string xml = io::serializeDocument(doc);            // what Save writes
///   std::string bare = io::serializeDiagram(doc.nodes(), doc.edges());
///
/// Output is byte-identical for the same input: nodes and edges in document
/// order, properties in key order, two-space indentation, a line feed after
/// every line, numbers as a default text stream writes floats.

#include <span>
#include <string>

#include "core/document.h"
#include "core/model.h"

namespace modelyne::io {

/// The diagram XML of the nodes and edges only (no frame, no links).
std::string serializeDiagram(std::span<const core::Node> nodes, std::span<const core::Edge> edges);

/// The document's diagram XML, then its data-integration block and its frame
/// line inserted before the closing "</diagram>".
std::string serializeDocument(const core::Document& doc);

/// Appends one node's element (opening tag to "</node>") to `out`.
void appendNodeXml(std::string& out, const core::Node& node);
/// Appends one edge's element line to `out`.
void appendEdgeXml(std::string& out, const core::Edge& edge);

}  // namespace modelyne::io
