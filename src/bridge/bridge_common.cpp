#include <unordered_set>

#include "bridge/bridge_internal.h"

namespace modelyne::bridge::detail {

namespace {

struct BaseWord {
  core::ShapeType type;
  std::string_view word;
};

constexpr BaseWord kBaseWords[] = {
    {core::ShapeType::rect, "rect"},
    {core::ShapeType::text, "text"},
    {core::ShapeType::oval, "oval"},
    {core::ShapeType::rounded, "rounded"},
    {core::ShapeType::triangle, "triangle"},
    {core::ShapeType::mindmapCentral, "central"},
    {core::ShapeType::mindmapMainTopic, "major"},
    {core::ShapeType::mindmapSubTopic, "minor"},
    {core::ShapeType::mindmapFloatingTopic, "floating"},
    {core::ShapeType::mindmapCallout, "callout"},
    {core::ShapeType::mindmapBoundary, "boundary"},
    {core::ShapeType::mindmapComment, "comment"},
};

}  // namespace

core::Document& documentOf(DocumentHandle h) {
  if (h == nullptr) fail(kInvalidArgument, "Document handle is null");
  return *h;
}

void fail(std::uint32_t code, std::string message) { throw BridgeError(code, std::move(message)); }

core::Node& requireNode(core::Document& doc, std::string_view id) {
  core::Node* n = doc.findNode(id);
  if (!n) fail(kNotFound, "Node not found");
  return *n;
}

core::Edge& requireEdge(core::Document& doc, std::string_view id) {
  core::Edge* e = doc.findEdge(id);
  if (!e) fail(kNotFound, "Edge not found");
  return *e;
}

std::string_view nodeIdBase(core::ShapeType type) noexcept {
  for (const BaseWord& b : kBaseWords)
    if (b.type == type) return b.word;
  return "node";
}

std::vector<const core::Node*> resolveSelection(const core::Document& doc, std::span<const std::string> ids) {
  std::vector<const core::Node*> nodes;
  nodes.reserve(ids.size());
  std::unordered_set<std::string_view> seen;
  seen.reserve(ids.size());
  for (const std::string& id : ids) {
    const core::Node* n = doc.findNode(id);
    if (n && seen.insert(n->id).second) nodes.push_back(n);
  }
  return nodes;
}

}  // namespace modelyne::bridge::detail
