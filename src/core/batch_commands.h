#pragma once
/// Commands that change many elements in one pass, so that one user gesture
/// on a large diagram (delete a selection, paste, apply generated content,
/// move a selection) is one undo step and costs one pass, not one per element.

#include <string>
#include <vector>

#include "core/command_history.h"
#include "core/document.h"

namespace modelyne::core {

/// Deletes nodes (with every edge incident to them) and edges. Undo puts
/// everything back at its former position in the node and edge order.
class DeleteElementsCommand final : public ICommand {
 public:
  DeleteElementsCommand(std::vector<std::string> nodeIds, std::vector<std::string> edgeIds)
      : nodeIds_(std::move(nodeIds)), edgeIds_(std::move(edgeIds)) {}
  void execute(Document& doc) override;
  void undo(Document& doc) override;

 private:
  std::vector<std::string> nodeIds_;
  std::vector<std::string> edgeIds_;
  RemovedElements removed_;
};

/// Appends nodes, then edges, in the given order; undo removes them again.
/// Elements whose id is taken when it runs are skipped.
class InsertElementsCommand final : public ICommand {
 public:
  InsertElementsCommand(std::vector<Node> nodes, std::vector<Edge> edges)
      : nodes_(std::move(nodes)), edges_(std::move(edges)) {}
  void execute(Document& doc) override;
  void undo(Document& doc) override;

 private:
  std::vector<Node> nodes_;
  std::vector<Edge> edges_;
  std::vector<std::string> addedNodes_;
  std::vector<std::string> addedEdges_;
};

/// Moves several nodes by the same offset.
class MoveNodesCommand final : public ICommand {
 public:
  MoveNodesCommand(std::vector<std::string> ids, float dx, float dy)
      : ids_(std::move(ids)), dx_(dx), dy_(dy) {}
  void execute(Document& doc) override;
  void undo(Document& doc) override;

 private:
  std::vector<std::string> ids_;
  float dx_;
  float dy_;
};

}  // namespace modelyne::core
