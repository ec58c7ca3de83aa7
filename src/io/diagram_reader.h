#pragma once
/// Reads diagram XML: a small, forgiving, hand-written tokeniser (unknown
/// elements and attributes are skipped, either quote works, comments,
/// processing instructions and declarations are skipped) that still refuses
/// a text it cannot read whole: wrong root, truncated text, broken tags,
/// malformed numbers. Loading is all or nothing.
///
///   io::ReadError err;
///   if (auto content = io::readDiagram(xml, &err))        // nodes, edges, frame, links
///     io::applyDiagram(std::move(*content), doc);         // replaces content, clears history
///   // or in one step, leaving `doc` untouched on failure:
///   bool ok = io::parseDiagramInto(xml, doc, &err);
///
/// A node or edge whose id is empty or already used is skipped (the first
/// one wins) and the load goes on; each skip is reported in `warnings`.
/// An edge that names a missing node is kept as read.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/diagram_kind.h"
#include "core/document.h"
#include "core/model.h"
#include "io/read_error.h"

namespace modelyne::io {

/// Everything one diagram XML text holds.
struct DiagramContent {
  std::vector<core::Node> nodes;
  std::vector<core::Edge> edges;
  core::DiagramFrame frame;                      ///< defaults when the text has no frame line
  std::vector<core::DataIntegrationLink> links;
  std::vector<std::string> warnings;             ///< skipped elements, each with its line
};

/// Nodes and edges only (the frame and links stay empty / default).
/// Elements with empty or repeated ids are already dropped.
std::optional<DiagramContent> parseDiagram(std::string_view xml, ReadError* error = nullptr);

/// Nodes, edges, the frame line and the data-integration block.
std::optional<DiagramContent> readDiagram(std::string_view xml, ReadError* error = nullptr);

/// Replaces the document's nodes, edges, frame and links with `content` and
/// clears its history.
void applyDiagram(DiagramContent&& content, core::Document& doc);

/// readDiagram + applyDiagram in one pass; on failure `doc` keeps its
/// content and history and `error` says what and where. Skipped elements
/// are described in `warnings` when given.
bool parseDiagramInto(std::string_view xml, core::Document& doc, ReadError* error = nullptr,
                      std::vector<std::string>* warnings = nullptr);

}  // namespace modelyne::io
