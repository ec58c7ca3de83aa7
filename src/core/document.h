#pragma once
/// Document: the open editing unit behind a document handle. It owns the
/// nodes (in drawing order), the edges (in order of addition), the command
/// history, the diagram frame and the data-integration links. Lookups by id
/// are O(1) through an index kept beside each sequence; bulk removal and
/// restoration run in one pass, so a change of thousands of elements does
/// not cost a pass per element.

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "core/command_history.h"
#include "core/diagram_kind.h"
#include "core/id_index.h"
#include "core/model.h"

namespace modelyne::core {

/// What a bulk removal took out, each element with its former position,
/// positions ascending; handed back to `restoreElements` to undo it.
struct RemovedElements {
  std::vector<std::pair<std::uint32_t, Node>> nodes;
  std::vector<std::pair<std::uint32_t, Edge>> edges;
};

class Document {
 public:
  Document();
  Document(const Document&) = delete;
  Document& operator=(const Document&) = delete;
  ~Document();

  // ---- nodes (drawing order: first is bottom-most) ----
  const std::vector<Node>& nodes() const noexcept { return nodes_; }
  const Node* findNode(std::string_view id) const noexcept;
  /// Mutable access for commands; the id must not be changed through it.
  Node* findNode(std::string_view id) noexcept;
  int indexOfNode(std::string_view id) const noexcept { return nodeIndex_.find(id); }
  const Node* nodeAt(int index) const noexcept;
  /// Appends a copy; false when the id is empty or used.
  bool addNode(Node node);
  /// Inserts before `index` (== count appends); false when the id is empty
  /// or used, or the index is negative or above the count.
  bool insertNodeAt(int index, Node node);
  /// Reinserts the node at max(0, index) clamped to the count after removal.
  bool moveNodeTo(std::string_view id, int index);
  /// Removes the node (its edges stay); false when absent.
  bool removeNode(std::string_view id);
  /// Removes every edge whose source or target is the id; returns how many.
  std::size_t removeEdgesOfNode(std::string_view id);

  // ---- edges (order of addition) ----
  const std::vector<Edge>& edges() const noexcept { return edges_; }
  const Edge* findEdge(std::string_view id) const noexcept;
  Edge* findEdge(std::string_view id) noexcept;
  int indexOfEdge(std::string_view id) const noexcept { return edgeIndex_.find(id); }
  /// Appends; false when the id is empty or used. Endpoints are not checked.
  bool addEdge(Edge edge);
  bool insertEdgeAt(int index, Edge edge);
  bool removeEdge(std::string_view id);

  // ---- identifiers ----
  /// The requested id when free, else requested + "_" + n for the first free
  /// n = 1, 2, ...; an empty request uses the base "node".
  /// `reserved`, when given, names further ids to avoid (ids a batch is about to add).
  std::string makeNodeId(std::string_view requested,
                         const std::function<bool(std::string_view)>& reserved = {});
  /// The same for edges, with the base "edge".
  std::string makeEdgeId(std::string_view requested,
                         const std::function<bool(std::string_view)>& reserved = {});

  // ---- bulk changes, one pass each ----
  /// Removes the listed nodes, every edge incident to them and the listed
  /// edges. Unknown ids are ignored. The views must not point into this
  /// document's own elements, which move during the pass.
  RemovedElements removeElements(const std::unordered_set<std::string_view>& nodeIds,
                                 const std::unordered_set<std::string_view>& edgeIds);
  /// Puts removed elements back at their former positions. Elements whose id
  /// has been taken meanwhile are dropped.
  void restoreElements(RemovedElements removed);
  /// Replaces all nodes and edges; elements with an empty or repeated id are
  /// refused (first wins). Returns how many nodes and edges were refused.
  std::pair<std::size_t, std::size_t> replaceContent(std::vector<Node> nodes, std::vector<Edge> edges);
  void reserve(std::size_t nodeCount, std::size_t edgeCount);
  /// Exchanges nodes, edges, frame and links (with their indexes) with
  /// `other`; both histories stay where they are.
  void swapContent(Document& other) noexcept;

  // ---- further lists of the diagram ----
  DiagramFrame& frame() noexcept { return frame_; }
  const DiagramFrame& frame() const noexcept { return frame_; }
  std::vector<DataIntegrationLink>& links() noexcept { return links_; }
  const std::vector<DataIntegrationLink>& links() const noexcept { return links_; }

  CommandHistory& history() noexcept { return history_; }
  const CommandHistory& history() const noexcept { return history_; }

  /// Heap bytes held by the sequences and indexes (strings' own heap excluded).
  std::size_t structuralMemoryBytes() const noexcept;
  /// The node part of it: the node records and their index.
  std::size_t nodeMemoryBytes() const noexcept;

 private:
  friend class DocumentBuilder;

  std::string makeId(std::string_view requested, std::string_view fallback, bool forNode,
                     const std::function<bool(std::string_view)>& reserved);

  std::vector<Node> nodes_;
  std::vector<Edge> edges_;
  IdIndex<Node> nodeIndex_{nodes_};
  IdIndex<Edge> edgeIndex_{edges_};
  // Lower bounds of the first free suffix per base, valid until an id is freed.
  std::unordered_map<std::string, std::uint32_t> nodeSuffixHint_;
  std::unordered_map<std::string, std::uint32_t> edgeSuffixHint_;
  DiagramFrame frame_;
  std::vector<DataIntegrationLink> links_;
  CommandHistory history_;
};

}  // namespace modelyne::core
