#pragma once
/// The clipboard form of a selection: a diagram XML text holding the
/// selected nodes and the edges among them, under the MIME type
/// "application/x-modelyne-diagram" (and as plain text), so a selection can
/// be pasted into another diagram or another running editor.

#include <string>
#include <utility>
#include <vector>

#include "core/document.h"

namespace modelyne::shell {

inline constexpr const char* kClipboardMime = "application/x-modelyne-diagram";

/// The nodes and every edge that joins two of them.
std::string encodeSelection(const core::Document& doc, const std::vector<std::string>& nodeIds);

/// Nodes and edges of a clipboard text, nodes shifted by (dx, dy). Throws
/// bridge::BridgeError when the text is not a diagram.
std::pair<std::vector<core::Node>, std::vector<core::Edge>> decodeSelection(const std::string& xml, float dx,
                                                                          float dy);

}  // namespace modelyne::shell
