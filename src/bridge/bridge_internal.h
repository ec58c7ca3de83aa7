#pragma once
// Shared by the bridge's sources: handle checks, errors, id base words.

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "bridge/bridge.h"

namespace modelyne::bridge::detail {

/// The document behind the handle; throws code 1 for a null handle.
core::Document& documentOf(DocumentHandle h);

[[noreturn]] void fail(std::uint32_t code, std::string message);

/// The node, or throws code 4 "Node not found".
core::Node& requireNode(core::Document& doc, std::string_view id);
/// The edge, or throws code 4 "Edge not found".
core::Edge& requireEdge(core::Document& doc, std::string_view id);

/// The word a generated node id starts from, by shape type.
std::string_view nodeIdBase(core::ShapeType type) noexcept;

/// The existing nodes named by `ids`, in the order given, each once.
std::vector<const core::Node*> resolveSelection(const core::Document& doc, std::span<const std::string> ids);

/// Lays out nodes about to be inserted (their ids final) among themselves,
/// below the document's content; `edges` are the edges inserted with them.
void layoutInserted(const core::Document& doc, std::vector<core::Node>& nodes, const std::vector<core::Edge>& edges,
                    LayoutAlgorithm algorithm);

}  // namespace modelyne::bridge::detail
