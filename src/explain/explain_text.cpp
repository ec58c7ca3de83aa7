// The diagram index every section reads, and the small text helpers they share.

#include "explain/explain_detail.h"

namespace modelyne::explain::detail {

namespace {

// Node id -> first position with that id. Open addressing over 64-bit hashes,
// with the ids copied into one buffer: at 100,000 nodes the probes stay in
// cache instead of chasing each node's string.
class IdLookup {
 public:
  explicit IdLookup(std::span<const core::Node> nodes) {
    std::size_t capacity = 16;
    while (capacity < nodes.size() * 2) capacity *= 2;
    mask_ = capacity - 1;
    slots_.assign(capacity, Slot{});
    offsets_.reserve(nodes.size() + 1);
    offsets_.push_back(0);
    for (const core::Node& n : nodes) {
      ids_ += n.id;
      offsets_.push_back(ids_.size());
    }
    for (std::size_t i = 0; i < nodes.size(); ++i) {
      const std::uint64_t h = hashOf(nodes[i].id);
      std::size_t k = h & mask_;
      for (; slots_[k].pos != kEmpty; k = (k + 1) & mask_)
        if (slots_[k].hash == h && idAt(slots_[k].pos) == nodes[i].id) break;
      if (slots_[k].pos == kEmpty) slots_[k] = {h, i};  // a repeated id keeps its first node
    }
  }

  /// Position of the first node with this id, or -1.
  std::int64_t find(std::string_view id) const noexcept {
    const std::uint64_t h = hashOf(id);
    for (std::size_t k = h & mask_; slots_[k].pos != kEmpty; k = (k + 1) & mask_)
      if (slots_[k].hash == h && idAt(slots_[k].pos) == id)
        return static_cast<std::int64_t>(slots_[k].pos);
    return -1;
  }

 private:
  static constexpr std::size_t kEmpty = static_cast<std::size_t>(-1);
  struct Slot {
    std::uint64_t hash = 0;
    std::size_t pos = kEmpty;
  };

  static std::uint64_t hashOf(std::string_view id) noexcept {
    std::uint64_t h = 14695981039346656037ull;  // FNV-1a, then a final mix for the low bits
    for (const char c : id) h = (h ^ static_cast<unsigned char>(c)) * 1099511628211ull;
    h ^= h >> 32;
    h *= 0x9E3779B97F4A7C15ull;
    return h ^ (h >> 29);
  }
  std::string_view idAt(std::size_t pos) const noexcept {
    return std::string_view(ids_).substr(offsets_[pos], offsets_[pos + 1] - offsets_[pos]);
  }

  std::vector<Slot> slots_;
  std::size_t mask_ = 0;
  std::string ids_;
  std::vector<std::size_t> offsets_;
};

}  // namespace

DiagramView::DiagramView(std::span<const core::Node> ns, std::span<const core::Edge> es)
    : nodes(ns), edges(es) {
  const IdLookup index(nodes);
  nodeTraits.reserve(nodes.size());
  for (const core::Node& n : nodes) nodeTraits.push_back(shapeTraits(n.type));
  std::vector<std::size_t> degreeOfOwner(nodes.size(), 0);
  source.reserve(edges.size());
  target.reserve(edges.size());
  edgeTraits.reserve(edges.size());
  for (const core::Edge& e : edges) {
    const std::int64_t s = index.find(e.source);
    const std::int64_t t = index.find(e.target);
    source.push_back(s);
    target.push_back(t);
    edgeTraits.push_back(&detail::edgeTraits(e.type));
    if (s >= 0) ++degreeOfOwner[static_cast<std::size_t>(s)];
    if (t >= 0) ++degreeOfOwner[static_cast<std::size_t>(t)];
  }
  // Should a span repeat an id, every node with it shares the first one's edges.
  degree.resize(nodes.size());
  for (std::size_t i = 0; i < nodes.size(); ++i)
    degree[i] = degreeOfOwner[static_cast<std::size_t>(index.find(nodes[i].id))];
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

}  // namespace modelyne::explain::detail
