// The structural section: top-level parts, the containment tree, interfaces,
// ports and the relationships by kind.
#include <array>

#include "explain/explain_detail.h"

namespace modelyne::explain::detail {

namespace {

// Children per container, in edge order, each child once.
struct Containment {
  std::vector<std::size_t> offset;  // node -> first slot in `child`; size nodes + 1
  std::vector<std::size_t> child;
  std::vector<bool> contained;
  std::size_t containers = 0;

  std::span<const std::size_t> childrenOf(std::size_t node) const {
    return {child.data() + offset[node], offset[node + 1] - offset[node]};
  }
};

Containment buildContainment(const DiagramView& view) {
  const std::size_t n = view.nodes.size();
  Containment c;
  c.offset.assign(n + 1, 0);
  c.contained.assign(n, false);
  const auto isLink = [&view](std::size_t e) {
    return view.edgeTraits[e]->role == EdgeRole::containment && view.resolved(e) &&
           view.source[e] != view.target[e];
  };
  for (std::size_t e = 0; e < view.edges.size(); ++e)
    if (isLink(e)) ++c.offset[static_cast<std::size_t>(view.source[e]) + 1];
  for (std::size_t i = 0; i < n; ++i) c.offset[i + 1] += c.offset[i];
  std::vector<std::size_t> fill(c.offset.begin(), c.offset.end() - 1);
  std::vector<std::size_t> raw(c.offset[n]);
  for (std::size_t e = 0; e < view.edges.size(); ++e) {
    if (!isLink(e)) continue;
    const auto parent = static_cast<std::size_t>(view.source[e]);
    const auto part = static_cast<std::size_t>(view.target[e]);
    raw[fill[parent]++] = part;
    c.contained[part] = true;
  }
  // Drop repeated links between the same pair; `seenBy` marks the last parent that listed a node.
  std::vector<std::size_t> seenBy(n, n);
  std::vector<std::size_t> compactOffset(n + 1, 0);
  c.child.reserve(raw.size());
  for (std::size_t p = 0; p < n; ++p) {
    compactOffset[p] = c.child.size();
    for (std::size_t k = c.offset[p]; k < c.offset[p + 1]; ++k) {
      if (seenBy[raw[k]] == p) continue;
      seenBy[raw[k]] = p;
      c.child.push_back(raw[k]);
    }
    if (c.child.size() > compactOffset[p]) ++c.containers;
  }
  compactOffset[n] = c.child.size();
  c.offset = std::move(compactOffset);
  return c;
}

// Depth-first from each top-level container, then from containers caught in cycles.
void decompositionLines(const DiagramView& view, const Containment& c,
                        std::vector<std::string>& lines) {
  const std::size_t n = view.nodes.size();
  std::vector<bool> expanded(n, false);
  std::size_t written = 0;
  std::vector<std::pair<std::size_t, std::size_t>> stack;  // node, depth
  const auto walkFrom = [&](std::size_t root) {
    stack.emplace_back(root, 0);
    while (!stack.empty() && written < kLineCap) {
      const auto [node, depth] = stack.back();
      stack.pop_back();
      if (expanded[node]) continue;
      expanded[node] = true;
      const auto children = c.childrenOf(node);
      std::vector<std::size_t> list(children.begin(), children.end());
      std::string line(2 * (depth + 1), ' ');
      line += "- ";
      line += view.name(node);
      line += " contains ";
      line += joinNames(view, list, kBranchCap);
      line += '.';
      lines.push_back(std::move(line));
      ++written;
      // Reverse push keeps the children in edge order on the way out.
      for (auto it = children.rbegin(); it != children.rend(); ++it)
        if (!expanded[*it] && !c.childrenOf(*it).empty()) stack.emplace_back(*it, depth + 1);
    }
    stack.clear();
  };
  for (std::size_t i = 0; i < n && written < kLineCap; ++i)
    if (!c.contained[i] && !c.childrenOf(i).empty()) walkFrom(i);
  for (std::size_t i = 0; i < n && written < kLineCap; ++i)
    if (!expanded[i] && !c.childrenOf(i).empty()) walkFrom(i);
  if (c.containers > written)
    lines.push_back("  - and " + std::to_string(c.containers - written) + " more containers.");
}

void relationshipLines(const DiagramView& view, std::vector<std::string>& lines) {
  std::array<std::size_t, kRelationCount> count{};
  std::array<std::vector<std::size_t>, kRelationCount> examples;
  std::array<const EdgeTraits*, kRelationCount> traits{};
  for (std::size_t e = 0; e < view.edges.size(); ++e) {
    const EdgeTraits* t = view.edgeTraits[e];
    if (t->relationRank < 0 || !view.resolved(e)) continue;
    const auto rank = static_cast<std::size_t>(t->relationRank);
    ++count[rank];
    traits[rank] = t;
    if (examples[rank].size() < kExampleCap) examples[rank].push_back(e);
  }
  for (std::size_t r = 0; r < kRelationCount; ++r) {
    if (count[r] == 0) continue;
    std::string line = "  - ";
    line += traits[r]->word;
    line += ": ";
    line += std::to_string(count[r]);
    line += " (e.g. ";
    for (std::size_t k = 0; k < examples[r].size(); ++k) {
      const std::size_t e = examples[r][k];
      if (k > 0) line += ", ";
      line += view.name(static_cast<std::size_t>(view.source[e]));
      line += view.edgeTraits[e]->joiner;
      line += view.name(static_cast<std::size_t>(view.target[e]));
      // What an item flow carries, or a relation's role name, is worth reading.
      const std::string label = oneLine(view.edges[e].text);
      if (!label.empty()) line += " [" + label + "]";
    }
    line += ").";
    lines.push_back(std::move(line));
  }
}

}  // namespace

std::string structuralBody(const DiagramView& view) {
  const Containment containment = buildContainment(view);
  std::vector<std::size_t> topLevel, interfaces, ports;
  for (std::size_t i = 0; i < view.nodes.size(); ++i) {
    switch (view.nodeTraits[i].role) {
      case NodeRole::part:
        if (!containment.contained[i]) topLevel.push_back(i);
        break;
      case NodeRole::interface: interfaces.push_back(i); break;
      case NodeRole::port: ports.push_back(i); break;
      default: break;
    }
  }
  std::vector<std::string> lines;
  if (!topLevel.empty())
    lines.push_back("Top-level blocks / parts: " + joinNames(view, topLevel, kInlineCap) + ".");

  std::vector<std::string> decomposition;
  decompositionLines(view, containment, decomposition);
  if (!decomposition.empty()) {
    lines.emplace_back("Decomposition:");
    lines.insert(lines.end(), decomposition.begin(), decomposition.end());
  }
  if (!interfaces.empty())
    lines.push_back("Interfaces: " + joinNames(view, interfaces, kInlineCap) + ".");
  if (!ports.empty()) lines.push_back("Ports: " + joinNames(view, ports, kInlineCap) + ".");

  std::vector<std::string> relationships;
  relationshipLines(view, relationships);
  if (!relationships.empty()) {
    lines.emplace_back("Relationships:");
    lines.insert(lines.end(), relationships.begin(), relationships.end());
  }
  if (decomposition.empty() && relationships.empty())
    lines.emplace_back(
        "The diagram declares structural elements but no decomposition or relationships connect "
        "them yet.");
  return joinBlocks(lines);
}

}  // namespace modelyne::explain::detail
