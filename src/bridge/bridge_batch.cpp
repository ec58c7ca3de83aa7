// Batch operations: one gesture on many elements is one command, checked
// whole before anything changes.

#include <memory>
#include <unordered_map>
#include <unordered_set>

#include "core/batch_commands.h"
#include "bridge/bridge_internal.h"
#include "core/commands.h"
#include "io/property_schema.h"

namespace modelyne::bridge {

using detail::documentOf;

std::size_t deleteElements(DocumentHandle h, std::span<const std::string> nodeIds,
                           std::span<const std::string> edgeIds) {
  core::Document& doc = documentOf(h);
  std::vector<std::string> nodes;
  std::unordered_set<std::string_view> nodeSet;
  for (const std::string& id : nodeIds)
    if (doc.findNode(id) && nodeSet.insert(id).second) nodes.push_back(id);
  std::vector<std::string> edges;
  std::unordered_set<std::string_view> edgeSet;
  for (const std::string& id : edgeIds)
    if (doc.findEdge(id) && edgeSet.insert(id).second) edges.push_back(id);
  // Count the edges that go with the deleted nodes too, each once.
  std::size_t removed = nodes.size() + edges.size();
  if (!nodeSet.empty())
    for (const core::Edge& e : doc.edges())
      if (!edgeSet.count(e.id) && (nodeSet.count(e.source) || nodeSet.count(e.target))) ++removed;
  if (removed == 0) return 0;
  doc.history().pushAndExecute(std::make_unique<core::DeleteElementsCommand>(std::move(nodes), std::move(edges)), doc);
  return removed;
}

std::size_t moveNodes(DocumentHandle h, std::span<const std::string> nodeIds, float dx, float dy) {
  core::Document& doc = documentOf(h);
  std::vector<std::string> ids;
  std::unordered_set<std::string_view> seen;
  for (const std::string& id : nodeIds)
    if (doc.findNode(id) && seen.insert(id).second) ids.push_back(id);
  if (ids.empty() || (dx == 0.0f && dy == 0.0f)) return 0;
  const std::size_t count = ids.size();
  doc.history().pushAndExecute(std::make_unique<core::MoveNodesCommand>(std::move(ids), dx, dy), doc);
  return count;
}

InsertResult insertElements(DocumentHandle h, std::vector<core::Node> nodes, std::vector<core::Edge> edges,
                            std::optional<LayoutAlgorithm> layoutAdded) {
  core::Document& doc = documentOf(h);
  InsertResult result;
  if (nodes.empty() && edges.empty()) return result;

  std::unordered_set<std::string> newNodeIds;
  std::unordered_map<std::string, std::string> renamed;  // requested id -> given id (first holder)
  newNodeIds.reserve(nodes.size());
  renamed.reserve(nodes.size());
  auto reservedNode = [&](std::string_view id) { return newNodeIds.count(std::string(id)) > 0; };
  for (core::Node& n : nodes) {
    const std::string requested = n.id;
    n.id = doc.makeNodeId(requested.empty() ? detail::nodeIdBase(n.type) : std::string_view(requested), reservedNode);
    newNodeIds.insert(n.id);
    if (!requested.empty()) renamed.emplace(requested, n.id);
    result.nodeIds.push_back(n.id);
  }

  auto endpoint = [&](std::string& ref) {
    const auto it = renamed.find(ref);
    if (it != renamed.end()) {
      ref = it->second;
      return;
    }
    if (!doc.findNode(ref)) detail::fail(kNotFound, "Endpoint node not found");
  };
  std::unordered_set<std::string> newEdgeIds;
  newEdgeIds.reserve(edges.size());
  auto reservedEdge = [&](std::string_view id) { return newEdgeIds.count(std::string(id)) > 0; };
  for (core::Edge& e : edges) {
    endpoint(e.source);
    endpoint(e.target);
    e.sourcePort = core::normalizeAnchor(e.sourcePort);
    e.targetPort = core::normalizeAnchor(e.targetPort);
    e.id = doc.makeEdgeId(e.id, reservedEdge);
    newEdgeIds.insert(e.id);
    result.edgeIds.push_back(e.id);
  }
  if (layoutAdded) detail::layoutInserted(doc, nodes, edges, *layoutAdded);
  doc.history().pushAndExecute(std::make_unique<core::InsertElementsCommand>(std::move(nodes), std::move(edges)), doc);
  return result;
}

std::size_t setNodeProperties(DocumentHandle h, std::span<const PropertyChange> changes) {
  core::Document& doc = documentOf(h);
  for (const PropertyChange& c : changes) {
    const core::Node& node = detail::requireNode(doc, c.nodeId);
    const io::PropertyDef* def = io::findProperty(node.type, c.key);
    if (!def) detail::fail(kInvalidArgument, "Property '" + c.key + "' is not defined for this node type");
    std::string reason;
    if (!io::validateValue(*def, c.value, reason))
      detail::fail(kInvalidArgument, "Invalid value for '" + c.key + "': " + reason);
  }
  if (changes.empty()) return 0;
  auto composite = std::make_unique<core::CompositeCommand>();
  for (const PropertyChange& c : changes)
    composite->add(std::make_unique<core::SetNodePropertyCommand>(c.nodeId, c.key, c.value));
  doc.history().pushAndExecute(std::move(composite), doc);
  return changes.size();
}

}  // namespace modelyne::bridge
