// The diagram index every section reads, and the small text helpers they share.
#include <unordered_map>

#include "export/explain_detail.h"

namespace modelyne::exporter::explain_detail {

DiagramView::DiagramView(std::span<const core::Node> ns, std::span<const core::Edge> es)
    : nodes(ns), edges(es) {
  // Ids are unique in a document; should a span repeat one, the first node owns it.
  std::unordered_map<std::string_view, std::int64_t> index;
  index.reserve(nodes.size());
  nodeTraits.reserve(nodes.size());
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    index.emplace(nodes[i].id, static_cast<std::int64_t>(i));
    nodeTraits.push_back(shapeTraits(nodes[i].type));
  }
  const auto find = [&index](const std::string& id) -> std::int64_t {
    const auto it = index.find(id);
    return it == index.end() ? -1 : it->second;
  };
  std::vector<std::size_t> degreeOfOwner(nodes.size(), 0);
  source.reserve(edges.size());
  target.reserve(edges.size());
  edgeTraits.reserve(edges.size());
  for (const core::Edge& e : edges) {
    const std::int64_t s = find(e.source);
    const std::int64_t t = find(e.target);
    source.push_back(s);
    target.push_back(t);
    edgeTraits.push_back(&explain_detail::edgeTraits(e.type));
    if (s >= 0) ++degreeOfOwner[static_cast<std::size_t>(s)];
    if (t >= 0) ++degreeOfOwner[static_cast<std::size_t>(t)];
  }
  degree.resize(nodes.size());
  for (std::size_t i = 0; i < nodes.size(); ++i)
    degree[i] = degreeOfOwner[static_cast<std::size_t>(index.at(nodes[i].id))];
}

std::string DiagramView::name(std::size_t node) const {
  const core::Node& n = nodes[node];
  if (!n.text.empty()) return oneLine(n.text);
  std::string out(core::shapeKey(n.type));
  out += " [";
  out += oneLine(n.id);
  out += ']';
  return out;
}

std::string oneLine(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  bool inRun = false;
  for (const char c : text) {
    const auto u = static_cast<unsigned char>(c);
    if (u < 0x20 || u == 0x7F) {
      // A label's line breaks would otherwise break the Markdown structure.
      if (!inRun) out += ' ';
      inRun = true;
    } else {
      out += c;
      inRun = false;
    }
  }
  return out;
}

std::string joinCapped(const std::vector<std::string>& items, std::size_t cap,
                       std::string_view separator) {
  std::string out;
  const std::size_t shown = items.size() < cap ? items.size() : cap;
  for (std::size_t i = 0; i < shown; ++i) {
    if (i > 0) out += separator;
    out += items[i];
  }
  if (items.size() > shown) {
    out += separator;
    out += "and ";
    out += std::to_string(items.size() - shown);
    out += " more";
  }
  return out;
}

std::string joinNames(const DiagramView& view, const std::vector<std::size_t>& nodes,
                      std::size_t cap) {
  std::vector<std::string> names;
  const std::size_t shown = nodes.size() < cap ? nodes.size() : cap;
  names.reserve(shown + 1);
  for (std::size_t i = 0; i < shown; ++i) names.push_back(view.name(nodes[i]));
  std::string out = joinCapped(names, cap);
  if (nodes.size() > shown) {
    out += ", and ";
    out += std::to_string(nodes.size() - shown);
    out += " more";
  }
  return out;
}

std::string countPhrase(std::size_t n, std::string_view word) {
  std::string out = std::to_string(n);
  out += ' ';
  out += word;
  if (n != 1) out += 's';
  return out;
}

std::string joinBlocks(const std::vector<std::string>& lines) {
  std::string out;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (i > 0) out += lines[i].starts_with(' ') ? "\n" : "\n\n";
    out += lines[i];
  }
  return out;
}

}  // namespace modelyne::exporter::explain_detail
