// Single-node operations: each checks, then pushes one command.

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "bridge/bridge_internal.h"
#include "core/commands.h"
#include "io/property_schema.h"

namespace modelyne::bridge {

using detail::documentOf;
using detail::requireNode;

namespace {

void push(core::Document& doc, std::unique_ptr<core::ICommand> cmd) { doc.history().pushAndExecute(std::move(cmd), doc); }

void reorder(DocumentHandle h, std::string_view nodeId, int (*target)(int index, int count)) {
  core::Document& doc = documentOf(h);
  requireNode(doc, nodeId);
  const int index = doc.indexOfNode(nodeId);
  const int count = static_cast<int>(doc.nodes().size());
  push(doc, std::make_unique<core::ReorderNodeCommand>(std::string(nodeId), target(index, count)));
}

}  // namespace

std::string addNode(DocumentHandle h, core::ShapeType type, float x, float y, float w, float h2,
                    std::optional<std::string> text, std::optional<std::string> id) {
  core::Document& doc = documentOf(h);
  core::Node node;
  node.type = type;
  node.geom = core::NodeGeometry{x, y, w, h2};
  if (text) node.text = std::move(*text);
  const std::string_view requested = (id && !id->empty()) ? std::string_view(*id) : detail::nodeIdBase(type);
  node.id = doc.makeNodeId(requested);
  std::string result = node.id;
  push(doc, std::make_unique<core::CreateNodeCommand>(std::move(node)));
  return result;
}

void deleteNode(DocumentHandle h, std::string_view nodeId) {
  core::Document& doc = documentOf(h);
  requireNode(doc, nodeId);
  push(doc, std::make_unique<core::DeleteNodeCommand>(std::string(nodeId)));
}

void moveNode(DocumentHandle h, std::string_view nodeId, float dx, float dy) {
  core::Document& doc = documentOf(h);
  requireNode(doc, nodeId);
  push(doc, std::make_unique<core::MoveNodeCommand>(std::string(nodeId), dx, dy));
}

void resizeNode(DocumentHandle h, std::string_view nodeId, float x, float y, float w, float h2) {
  core::Document& doc = documentOf(h);
  requireNode(doc, nodeId);
  push(doc, std::make_unique<core::ResizeNodeCommand>(std::string(nodeId), core::NodeGeometry{x, y, w, h2}));
}

void setNodeText(DocumentHandle h, std::string_view nodeId, std::string_view text) {
  core::Document& doc = documentOf(h);
  requireNode(doc, nodeId);
  push(doc, std::make_unique<core::SetTextCommand>(std::string(nodeId), std::string(text)));
}

void setNodeColor(DocumentHandle h, std::string_view nodeId, std::string_view color) {
  core::Document& doc = documentOf(h);
  requireNode(doc, nodeId);
  push(doc, std::make_unique<core::SetNodeColorCommand>(std::string(nodeId), std::string(color)));
}

void setNodeDataIntegration(DocumentHandle h, std::string_view nodeId, bool flag) {
  core::Document& doc = documentOf(h);
  requireNode(doc, nodeId);
  push(doc, std::make_unique<core::SetNodeDataIntegrationCommand>(std::string(nodeId), flag));
}

void setNodeProperty(DocumentHandle h, std::string_view nodeId, std::string_view key, std::string_view value) {
  core::Document& doc = documentOf(h);
  const core::Node& node = requireNode(doc, nodeId);
  const io::PropertyDef* def = io::findProperty(node.type, key);
  if (!def) detail::fail(kInvalidArgument, "Property '" + std::string(key) + "' is not defined for this node type");
  std::string v(value);
  std::string reason;
  if (!io::validateValue(*def, v, reason))
    detail::fail(kInvalidArgument, "Invalid value for '" + std::string(key) + "': " + reason);
  push(doc, std::make_unique<core::SetNodePropertyCommand>(std::string(nodeId), std::string(key), std::move(v)));
}

void bringToFront(DocumentHandle h, std::string_view nodeId) {
  reorder(h, nodeId, [](int, int count) { return count - 1; });
}

void sendToBack(DocumentHandle h, std::string_view nodeId) {
  reorder(h, nodeId, [](int, int) { return 0; });
}

void bringForward(DocumentHandle h, std::string_view nodeId) {
  reorder(h, nodeId, [](int index, int) { return index + 1; });
}

void sendBackward(DocumentHandle h, std::string_view nodeId) {
  reorder(h, nodeId, [](int index, int) { return index - 1; });
}

std::size_t reorderNodes(DocumentHandle h, std::span<const std::string> nodeIds, ZOrder order) {
  core::Document& doc = documentOf(h);
  std::vector<std::pair<int, const std::string*>> members;  // (index, id), each node once
  for (const std::string& id : nodeIds) {
    const int index = doc.indexOfNode(id);
    if (index >= 0) members.emplace_back(index, &id);
  }
  std::sort(members.begin(), members.end());
  members.erase(std::unique(members.begin(), members.end(),
                            [](const auto& a, const auto& b) { return a.first == b.first; }),
                members.end());
  if (members.empty()) return 0;
  // In these orders a step never shifts a member that is still to come, so
  // every target can be taken from the stacking as it is now.
  if (order == ZOrder::toBack || order == ZOrder::forward) std::reverse(members.begin(), members.end());
  const int count = static_cast<int>(doc.nodes().size());
  auto composite = std::make_unique<core::CompositeCommand>();
  for (const auto& [index, id] : members) {
    int target = 0;
    switch (order) {
      case ZOrder::toFront: target = count - 1; break;
      case ZOrder::toBack: target = 0; break;
      case ZOrder::forward: target = index + 1; break;
      case ZOrder::backward: target = index - 1; break;
    }
    composite->add(std::make_unique<core::ReorderNodeCommand>(*id, target));
  }
  const std::size_t changed = composite->size();
  push(doc, std::move(composite));
  return changed;
}

}  // namespace modelyne::bridge
