#include "core/document_builder.h"

#include <utility>

namespace modelyne::core {

namespace {
// Elements indexed together: enough prefetches in flight to hide the
// memory latency, few enough that their slots stay in the cache.
constexpr std::size_t kBatch = 32;
}  // namespace

DocumentBuilder::DocumentBuilder(Document& doc, std::size_t nodeHint, std::size_t edgeHint) : doc_(doc) {
  doc_.reserve(nodeHint, edgeHint);
  nodes_.begin = doc_.nodes_.size();
  edges_.begin = doc_.edges_.size();
  nodes_.tags.reserve(kBatch);
  edges_.tags.reserve(kBatch);
  hashes_.reserve(kBatch);
}

DocumentBuilder::~DocumentBuilder() {
  // Whatever was not indexed is not part of the document.
  doc_.nodes_.resize(nodes_.begin);
  doc_.edges_.resize(edges_.begin);
}

void DocumentBuilder::addNode(Node&& node, std::size_t tag) {
  doc_.nodes_.push_back(std::move(node));
  nodes_.tags.push_back(tag);
  if (nodes_.tags.size() == kBatch) flush(doc_.nodes_, doc_.nodeIndex_, nodes_, refusedNodes_);
}

void DocumentBuilder::addEdge(Edge&& edge, std::size_t tag) {
  doc_.edges_.push_back(std::move(edge));
  edges_.tags.push_back(tag);
  if (edges_.tags.size() == kBatch) flush(doc_.edges_, doc_.edgeIndex_, edges_, refusedEdges_);
}

void DocumentBuilder::finish() {
  flush(doc_.nodes_, doc_.nodeIndex_, nodes_, refusedNodes_);
  flush(doc_.edges_, doc_.edgeIndex_, edges_, refusedEdges_);
}

template <class T>
void DocumentBuilder::flush(std::vector<T>& items, IdIndex<T>& index, Pending& pending,
                            std::vector<std::size_t>& refused) {
  const std::size_t n = pending.tags.size();
  if (n == 0) return;
  index.reserveMore(n);
  hashes_.clear();
  for (std::size_t i = 0; i < n; ++i) {
    const std::uint32_t h = IdIndex<T>::hashOf(items[pending.begin + i].id);
    hashes_.push_back(h);
    index.prefetch(h);
  }
  // In order, so that of two equal ids the first wins; refused elements
  // are closed up behind `to`.
  std::size_t to = pending.begin;
  for (std::size_t i = 0; i < n; ++i) {
    const std::size_t from = pending.begin + i;
    if (to != from) items[to] = std::move(items[from]);
    const auto pos = static_cast<std::uint32_t>(to);
    if (!items[to].id.empty() && index.insertHashedIfAbsent(items[to].id, hashes_[i], pos)) {
      ++to;
    } else {
      refused.push_back(pending.tags[i]);
    }
  }
  items.resize(to);
  pending.begin = to;
  pending.tags.clear();
}

}  // namespace modelyne::core
