#pragma once
/// Reads diagram XML: a small, forgiving, hand-written tokeniser (unknown
/// elements and attributes are skipped, either quote works, comments,
/// processing instructions and declarations are skipped) that still refuses
/// a text it cannot read whole: wrong root, truncated text, broken tags,
/// malformed numbers. Loading is all or nothing.
///
///   io::ReadError err;
///   std::vector<io::Diagnostic> warnings;
///   bool ok = io::parseDiagramInto(xml, doc, &err, &warnings);   // doc untouched on failure
///   if (auto content = io::readDiagram(xml, &err)) ...             // the same, as plain lists
///
/// One pass builds the document with its id index. A node or edge whose id
/// is empty or already used is skipped (the first one wins) and the load goes
/// on; each skip is a warning. An edge that names a missing node is kept as
/// read. The frame line and the data-integration block are the first
/// "<DiagramFrame" and "<DataIntegration" of the text, wherever they stand
/// (inside a comment too), as the block readers find them.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/diagram_kind.h"
#include "core/document.h"
#include "core/model.h"
#include "io/diagnostic.h"

namespace modelyne::io {

/// Everything one diagram XML text holds.
struct DiagramContent {
  std::vector<core::Node> nodes;
  std::vector<core::Edge> edges;
  core::DiagramFrame frame;                      ///< defaults when the text has no frame line
  std::vector<core::DataIntegrationLink> links;
  std::vector<Diagnostic> warnings;              ///< skipped elements, in file order
};

/// Where a diagram text stands in its file, for the places in diagnostics.
struct TextPlace {
  std::string file;       ///< the file as named to the user (may be empty)
  std::size_t line = 1;   ///< line of the file on which the text begins
};

/// Reads `xml` into `doc`, replacing its nodes, edges, frame and links and
/// clearing its history. On failure `doc` keeps its content and history and
/// `error` says what and where. Skipped elements are appended to `warnings`.
/// After a successful read, `projectMark` tells whether the text holds
/// "<modelyneProject" anywhere (as a model file it is then a project
/// wrapper), found in the same pass.
bool parseDiagramInto(std::string_view xml, core::Document& doc, ReadError* error = nullptr,
                      std::vector<Diagnostic>* warnings = nullptr, const TextPlace& place = {},
                      bool* projectMark = nullptr);

/// Nodes, edges, the frame line and the data-integration block.
std::optional<DiagramContent> readDiagram(std::string_view xml, ReadError* error = nullptr);

/// Nodes and edges only (the frame and links stay default / empty).
std::optional<DiagramContent> parseDiagram(std::string_view xml, ReadError* error = nullptr);

/// Replaces the document's nodes, edges, frame and links with `content` and
/// clears its history.
void applyDiagram(DiagramContent&& content, core::Document& doc);

}  // namespace modelyne::io
