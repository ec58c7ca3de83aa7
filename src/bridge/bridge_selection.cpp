// Align, distribute, flip, group and ungroup a selection. Each builds one
// CompositeCommand (of ResizeNodeCommands or SetNodePropertyCommands) and
// pushes it only when it changes something.

#include <algorithm>
#include <memory>

#include "bridge/bridge_internal.h"
#include "core/commands.h"

namespace modelyne::bridge {

using detail::documentOf;
using detail::resolveSelection;

namespace {

struct Bounds {
  float minX, minY, maxR, maxB, cx, cy;
};

Bounds boundsOf(const std::vector<const core::Node*>& nodes) {
  Bounds b{nodes.front()->geom.x, nodes.front()->geom.y, nodes.front()->geom.x + nodes.front()->geom.w,
           nodes.front()->geom.y + nodes.front()->geom.h, 0.0f, 0.0f};
  for (const core::Node* n : nodes) {
    b.minX = std::min(b.minX, n->geom.x);
    b.minY = std::min(b.minY, n->geom.y);
    b.maxR = std::max(b.maxR, n->geom.x + n->geom.w);
    b.maxB = std::max(b.maxB, n->geom.y + n->geom.h);
  }
  b.cx = (b.minX + b.maxR) * 0.5f;
  b.cy = (b.minY + b.maxB) * 0.5f;
  return b;
}

// Adds a resize to `composite` when the new position differs; returns whether it did.
bool addMove(core::CompositeCommand& composite, const core::Node& n, float x, float y) {
  if (x == n.geom.x && y == n.geom.y) return false;
  composite.add(std::make_unique<core::ResizeNodeCommand>(n.id, core::NodeGeometry{x, y, n.geom.w, n.geom.h}));
  return true;
}

int pushIfAny(core::Document& doc, std::unique_ptr<core::CompositeCommand> composite) {
  const int count = static_cast<int>(composite->size());
  if (count > 0) doc.history().pushAndExecute(std::move(composite), doc);
  return count;
}

}  // namespace

int alignNodes(DocumentHandle h, std::span<const std::string> nodeIds, int axis) {
  core::Document& doc = documentOf(h);
  const auto nodes = resolveSelection(doc, nodeIds);
  if (nodes.size() < 2) return 0;
  if (axis < 0 || axis > 5) detail::fail(kInvalidArgument, "Unknown alignment axis");
  const Bounds b = boundsOf(nodes);
  auto composite = std::make_unique<core::CompositeCommand>();
  for (const core::Node* n : nodes) {
    float x = n->geom.x;
    float y = n->geom.y;
    switch (axis) {
      case 0: x = b.minX; break;
      case 1: x = b.cx - n->geom.w * 0.5f; break;
      case 2: x = b.maxR - n->geom.w; break;
      case 3: y = b.minY; break;
      case 4: y = b.cy - n->geom.h * 0.5f; break;
      default: y = b.maxB - n->geom.h; break;
    }
    addMove(*composite, *n, x, y);
  }
  return pushIfAny(doc, std::move(composite));
}

int distributeNodes(DocumentHandle h, std::span<const std::string> nodeIds, int axis) {
  core::Document& doc = documentOf(h);
  auto nodes = resolveSelection(doc, nodeIds);
  if (nodes.size() < 3) return 0;
  if (axis != 0 && axis != 1) detail::fail(kInvalidArgument, "Unknown distribute axis");
  const bool horizontal = axis == 0;
  auto centre = [horizontal](const core::Node* n) {
    return horizontal ? n->geom.x + n->geom.w * 0.5f : n->geom.y + n->geom.h * 0.5f;
  };
  std::stable_sort(nodes.begin(), nodes.end(),
                   [&](const core::Node* a, const core::Node* b) { return centre(a) < centre(b); });
  const float first = centre(nodes.front());
  const float span = centre(nodes.back()) - first;
  if (!(span > 0.0f)) return 0;
  const float step = span / static_cast<float>(nodes.size() - 1);
  auto composite = std::make_unique<core::CompositeCommand>();
  for (std::size_t i = 1; i + 1 < nodes.size(); ++i) {
    const core::Node& n = *nodes[i];
    const float target = first + static_cast<float>(i) * step;
    if (horizontal)
      addMove(*composite, n, target - n.geom.w * 0.5f, n.geom.y);
    else
      addMove(*composite, n, n.geom.x, target - n.geom.h * 0.5f);
  }
  return pushIfAny(doc, std::move(composite));
}

int flipNodes(DocumentHandle h, std::span<const std::string> nodeIds, int axis) {
  core::Document& doc = documentOf(h);
  const auto nodes = resolveSelection(doc, nodeIds);
  if (nodes.empty()) return 0;
  if (axis != 0 && axis != 1) detail::fail(kInvalidArgument, "Unknown flip axis");
  const Bounds b = boundsOf(nodes);
  auto composite = std::make_unique<core::CompositeCommand>();
  for (const core::Node* n : nodes) {
    const core::NodeGeometry& g = n->geom;
    if (axis == 0)
      addMove(*composite, *n, 2.0f * b.cx - (g.x + g.w * 0.5f) - g.w * 0.5f, g.y);
    else
      addMove(*composite, *n, g.x, 2.0f * b.cy - (g.y + g.h * 0.5f) - g.h * 0.5f);
  }
  return pushIfAny(doc, std::move(composite));
}

std::string groupNodes(DocumentHandle h, std::span<const std::string> nodeIds) {
  core::Document& doc = documentOf(h);
  const auto nodes = resolveSelection(doc, nodeIds);
  if (nodes.size() < 2) return {};
  std::vector<std::string_view> sorted;
  sorted.reserve(nodes.size());
  for (const core::Node* n : nodes) sorted.push_back(n->id);
  std::sort(sorted.begin(), sorted.end());  // byte order
  std::string groupId = "grp-" + std::to_string(doc.nodes().size()) + "-";
  for (std::string_view id : sorted) {
    groupId.append(id);
    groupId.push_back('|');
  }
  auto composite = std::make_unique<core::CompositeCommand>();
  for (const core::Node* n : nodes)
    composite->add(std::make_unique<core::SetNodePropertyCommand>(n->id, core::kLayoutGroupKey, groupId));
  doc.history().pushAndExecute(std::move(composite), doc);
  return groupId;
}

int ungroupNodes(DocumentHandle h, std::span<const std::string> nodeIds) {
  core::Document& doc = documentOf(h);
  const auto nodes = resolveSelection(doc, nodeIds);
  auto composite = std::make_unique<core::CompositeCommand>();
  for (const core::Node* n : nodes) {
    const auto it = n->properties.find(core::kLayoutGroupKey);
    if (it != n->properties.end() && !it->second.empty())
      composite->add(std::make_unique<core::SetNodePropertyCommand>(n->id, core::kLayoutGroupKey, std::string()));
  }
  return pushIfAny(doc, std::move(composite));
}

}  // namespace modelyne::bridge
