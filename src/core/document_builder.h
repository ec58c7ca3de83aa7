#pragma once
/// DocumentBuilder: fills an empty Document from a reader in one pass.
/// Elements are appended where they stay; their ids are indexed in batches
/// whose index slots are prefetched together, so a big file does not wait on
/// one cache miss per element. An element whose id is empty or already used
/// is dropped (the first one wins) and reported by the tag the reader gave it
/// (a byte offset, say).
///
///   core::DocumentBuilder b(doc, expectedNodes, expectedEdges);
///   b.addNode(std::move(node), offset); ... b.addEdge(std::move(edge), offset);
///   b.finish();                       // b.refusedNodes(): tags of the dropped nodes
///
/// Until `finish`, the document must not be used; elements added after the
/// last `finish` are dropped when the builder goes away.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/document.h"

namespace modelyne::core {

class DocumentBuilder {
 public:
  /// `doc` should be empty; the counts are a guess that saves regrowing.
  DocumentBuilder(Document& doc, std::size_t nodeHint = 0, std::size_t edgeHint = 0);
  ~DocumentBuilder();
  DocumentBuilder(const DocumentBuilder&) = delete;
  DocumentBuilder& operator=(const DocumentBuilder&) = delete;

  void addNode(Node&& node, std::size_t tag);
  void addEdge(Edge&& edge, std::size_t tag);
  /// Indexes what is pending; the document is usable afterwards.
  void finish();

  /// Tags of the refused elements, in the order they were added.
  const std::vector<std::size_t>& refusedNodes() const noexcept { return refusedNodes_; }
  const std::vector<std::size_t>& refusedEdges() const noexcept { return refusedEdges_; }

 private:
  // Elements from `begin` on are stored but not yet indexed.
  struct Pending {
    std::size_t begin = 0;
    std::vector<std::size_t> tags;
  };

  template <class T>
  void flush(std::vector<T>& items, IdIndex<T>& index, Pending& pending, std::vector<std::size_t>& refused);

  Document& doc_;
  Pending nodes_;
  Pending edges_;
  std::vector<std::uint32_t> hashes_;
  std::vector<std::size_t> refusedNodes_;
  std::vector<std::size_t> refusedEdges_;
};

}  // namespace modelyne::core
