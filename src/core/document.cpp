#include "core/document.h"

#include <algorithm>

namespace modelyne::core {

namespace {

// Merges removed elements (with their former positions, ascending) back into
// a sequence that lost them, in one pass.
template <class T>
std::vector<T> mergeBack(std::vector<T>& current, std::vector<std::pair<std::uint32_t, T>>& removed) {
  std::vector<T> out;
  out.reserve(current.size() + removed.size());
  std::size_t c = 0;
  std::size_t r = 0;
  while (c < current.size() || r < removed.size()) {
    if (r < removed.size() && (removed[r].first <= out.size() || c == current.size())) {
      out.push_back(std::move(removed[r].second));
      ++r;
    } else {
      out.push_back(std::move(current[c]));
      ++c;
    }
  }
  return out;
}

}  // namespace

Document::Document() = default;

Document::~Document() { history_.clear(); }

// ---------------------------------------------------------------- nodes

const Node* Document::findNode(std::string_view id) const noexcept {
  const int i = nodeIndex_.find(id);
  return i < 0 ? nullptr : &nodes_[static_cast<std::size_t>(i)];
}

Node* Document::findNode(std::string_view id) noexcept {
  const int i = nodeIndex_.find(id);
  return i < 0 ? nullptr : &nodes_[static_cast<std::size_t>(i)];
}

const Node* Document::nodeAt(int index) const noexcept {
  if (index < 0 || static_cast<std::size_t>(index) >= nodes_.size()) return nullptr;
  return &nodes_[static_cast<std::size_t>(index)];
}

bool Document::addNode(Node node) {
  if (node.id.empty()) return false;
  // Appended first so that the index only ever points at stored elements;
  // taken back out when the id is in use.
  nodes_.push_back(std::move(node));
  bool fresh = false;
  try {
    fresh = nodeIndex_.insertIfAbsent(nodes_.back().id, static_cast<std::uint32_t>(nodes_.size() - 1));
  } catch (...) {
    nodes_.pop_back();
    throw;
  }
  if (!fresh) nodes_.pop_back();
  return fresh;
}

bool Document::insertNodeAt(int index, Node node) {
  if (node.id.empty() || nodeIndex_.find(node.id) >= 0) return false;
  if (index < 0 || static_cast<std::size_t>(index) > nodes_.size()) return false;
  if (static_cast<std::size_t>(index) == nodes_.size()) return addNode(std::move(node));
  const auto pos = static_cast<std::uint32_t>(index);
  nodeIndex_.shift(pos, +1);
  nodes_.insert(nodes_.begin() + index, std::move(node));
  nodeIndex_.insert(nodes_[pos].id, pos);
  return true;
}

bool Document::moveNodeTo(std::string_view id, int index) {
  const int from = nodeIndex_.find(id);
  if (from < 0) return false;
  const int last = static_cast<int>(nodes_.size()) - 1;  // count after taking it out
  const int to = std::min(std::max(0, index), last);
  if (to == from) return true;
  if (from < to) {
    std::rotate(nodes_.begin() + from, nodes_.begin() + from + 1, nodes_.begin() + to + 1);
  } else {
    std::rotate(nodes_.begin() + to, nodes_.begin() + from, nodes_.begin() + from + 1);
  }
  nodeIndex_.moveEntry(static_cast<std::uint32_t>(from), static_cast<std::uint32_t>(to));
  return true;
}

bool Document::removeNode(std::string_view id) {
  const int p = nodeIndex_.find(id);
  if (p < 0) return false;
  nodeIndex_.erase(id);
  nodes_.erase(nodes_.begin() + p);
  nodeIndex_.shift(static_cast<std::uint32_t>(p) + 1, -1);
  nodeSuffixHint_.clear();
  return true;
}

std::size_t Document::removeEdgesOfNode(std::string_view id) {
  const auto keep = std::remove_if(edges_.begin(), edges_.end(),
                                   [&](const Edge& e) { return e.source == id || e.target == id; });
  const auto removed = static_cast<std::size_t>(edges_.end() - keep);
  if (removed == 0) return 0;
  edges_.erase(keep, edges_.end());
  edgeIndex_.rebuild();
  edgeSuffixHint_.clear();
  return removed;
}

// ---------------------------------------------------------------- edges

const Edge* Document::findEdge(std::string_view id) const noexcept {
  const int i = edgeIndex_.find(id);
  return i < 0 ? nullptr : &edges_[static_cast<std::size_t>(i)];
}

Edge* Document::findEdge(std::string_view id) noexcept {
  const int i = edgeIndex_.find(id);
  return i < 0 ? nullptr : &edges_[static_cast<std::size_t>(i)];
}

bool Document::addEdge(Edge edge) {
  if (edge.id.empty()) return false;
  // Appended first so that the index only ever points at stored elements;
  // taken back out when the id is in use.
  edges_.push_back(std::move(edge));
  bool fresh = false;
  try {
    fresh = edgeIndex_.insertIfAbsent(edges_.back().id, static_cast<std::uint32_t>(edges_.size() - 1));
  } catch (...) {
    edges_.pop_back();
    throw;
  }
  if (!fresh) edges_.pop_back();
  return fresh;
}

bool Document::insertEdgeAt(int index, Edge edge) {
  if (edge.id.empty() || edgeIndex_.find(edge.id) >= 0) return false;
  if (index < 0 || static_cast<std::size_t>(index) > edges_.size()) return false;
  if (static_cast<std::size_t>(index) == edges_.size()) return addEdge(std::move(edge));
  const auto pos = static_cast<std::uint32_t>(index);
  edgeIndex_.shift(pos, +1);
  edges_.insert(edges_.begin() + index, std::move(edge));
  edgeIndex_.insert(edges_[pos].id, pos);
  return true;
}

bool Document::removeEdge(std::string_view id) {
  const int p = edgeIndex_.find(id);
  if (p < 0) return false;
  edgeIndex_.erase(id);
  edges_.erase(edges_.begin() + p);
  edgeIndex_.shift(static_cast<std::uint32_t>(p) + 1, -1);
  edgeSuffixHint_.clear();
  return true;
}

// ---------------------------------------------------------------- identifiers

std::string Document::makeNodeId(std::string_view requested,
                                 const std::function<bool(std::string_view)>& reserved) {
  return makeId(requested, "node", true, reserved);
}

std::string Document::makeEdgeId(std::string_view requested,
                                 const std::function<bool(std::string_view)>& reserved) {
  return makeId(requested, "edge", false, reserved);
}

std::string Document::makeId(std::string_view requested, std::string_view fallback, bool forNode,
                             const std::function<bool(std::string_view)>& reserved) {
  const std::string base(requested.empty() ? fallback : requested);
  auto takenHere = [&](std::string_view id) {
    return forNode ? nodeIndex_.find(id) >= 0 : edgeIndex_.find(id) >= 0;
  };
  auto blocked = [&](std::string_view id) { return takenHere(id) || (reserved && reserved(id)); };
  if (!blocked(base)) return base;

  // The hint is a lower bound of the first suffix that is free in the
  // document: every suffix below it is taken. It makes generating many ids
  // from one base linear overall instead of quadratic, and is dropped
  // whenever an id is freed.
  auto& hints = forNode ? nodeSuffixHint_ : edgeSuffixHint_;
  std::uint32_t& hint = hints[base];
  if (hint == 0) hint = 1;
  bool allTakenSoFar = true;
  std::string candidate;
  for (std::uint32_t n = hint;; ++n) {
    candidate = base;
    candidate += '_';
    candidate += std::to_string(n);
    if (takenHere(candidate)) {
      if (allTakenSoFar) hint = n + 1;
      continue;
    }
    if (reserved && reserved(candidate)) {
      allTakenSoFar = false;
      continue;
    }
    return candidate;
  }
}

// ---------------------------------------------------------------- bulk changes

RemovedElements Document::removeElements(const std::unordered_set<std::string_view>& nodeIds,
                                         const std::unordered_set<std::string_view>& edgeIds) {
  RemovedElements removed;
  if (!nodeIds.empty()) {
    std::size_t w = 0;
    for (std::size_t r = 0; r < nodes_.size(); ++r) {
      if (nodeIds.count(nodes_[r].id)) {
        removed.nodes.emplace_back(static_cast<std::uint32_t>(r), std::move(nodes_[r]));
      } else {
        if (w != r) nodes_[w] = std::move(nodes_[r]);
        ++w;
      }
    }
    nodes_.resize(w);
  }
  std::unordered_set<std::string_view> gone;
  gone.reserve(removed.nodes.size());
  for (const auto& [pos, node] : removed.nodes) gone.insert(node.id);

  if (!gone.empty() || !edgeIds.empty()) {
    std::size_t w = 0;
    for (std::size_t r = 0; r < edges_.size(); ++r) {
      const Edge& e = edges_[r];
      if (edgeIds.count(e.id) || gone.count(e.source) || gone.count(e.target)) {
        removed.edges.emplace_back(static_cast<std::uint32_t>(r), std::move(edges_[r]));
      } else {
        if (w != r) edges_[w] = std::move(edges_[r]);
        ++w;
      }
    }
    edges_.resize(w);
  }
  if (!removed.nodes.empty()) {
    nodeIndex_.rebuild();
    nodeSuffixHint_.clear();
  }
  if (!removed.edges.empty()) {
    edgeIndex_.rebuild();
    edgeSuffixHint_.clear();
  }
  return removed;
}

void Document::restoreElements(RemovedElements removed) {
  // An id taken meanwhile would break uniqueness: such an element stays out.
  std::erase_if(removed.nodes, [&](const auto& p) { return p.second.id.empty() || nodeIndex_.find(p.second.id) >= 0; });
  std::erase_if(removed.edges, [&](const auto& p) { return p.second.id.empty() || edgeIndex_.find(p.second.id) >= 0; });
  if (!removed.nodes.empty()) {
    nodes_ = mergeBack(nodes_, removed.nodes);
    nodeIndex_.rebuild();
  }
  if (!removed.edges.empty()) {
    edges_ = mergeBack(edges_, removed.edges);
    edgeIndex_.rebuild();
  }
}

std::pair<std::size_t, std::size_t> Document::replaceContent(std::vector<Node> nodes, std::vector<Edge> edges) {
  nodes_.clear();
  edges_.clear();
  nodeIndex_.clear();
  edgeIndex_.clear();
  nodeSuffixHint_.clear();
  edgeSuffixHint_.clear();
  nodes_.reserve(nodes.size());
  edges_.reserve(edges.size());
  nodeIndex_.reserve(nodes.size());
  edgeIndex_.reserve(edges.size());
  std::size_t refusedNodes = 0;
  std::size_t refusedEdges = 0;
  for (Node& n : nodes)
    if (!addNode(std::move(n))) ++refusedNodes;
  for (Edge& e : edges)
    if (!addEdge(std::move(e))) ++refusedEdges;
  return {refusedNodes, refusedEdges};
}

void Document::reserve(std::size_t nodeCount, std::size_t edgeCount) {
  nodes_.reserve(nodeCount);
  edges_.reserve(edgeCount);
  nodeIndex_.reserve(nodeCount);
  edgeIndex_.reserve(edgeCount);
}

void Document::swapContent(Document& other) noexcept {
  nodes_.swap(other.nodes_);
  edges_.swap(other.edges_);
  nodeIndex_.swapEntries(other.nodeIndex_);
  edgeIndex_.swapEntries(other.edgeIndex_);
  nodeSuffixHint_.swap(other.nodeSuffixHint_);
  edgeSuffixHint_.swap(other.edgeSuffixHint_);
  std::swap(frame_, other.frame_);
  links_.swap(other.links_);
}

std::size_t Document::nodeMemoryBytes() const noexcept {
  return nodes_.capacity() * sizeof(Node) + nodeIndex_.memoryBytes();
}

std::size_t Document::structuralMemoryBytes() const noexcept {
  return nodes_.capacity() * sizeof(Node) + edges_.capacity() * sizeof(Edge) + nodeIndex_.memoryBytes() +
         edgeIndex_.memoryBytes();
}

}  // namespace modelyne::core
