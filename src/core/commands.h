#pragma once
/// The undoable commands of a Document. Each holds ids and values, never
/// pointers; each looks its target up afresh on every run and does nothing
/// when the target is gone. `execute` re-saves the old state every time, so
/// redo after undo restores exactly what the first execution produced.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "core/command_history.h"
#include "core/document.h"
#include "core/model.h"

namespace modelyne::core {

class CreateNodeCommand final : public ICommand {
 public:
  explicit CreateNodeCommand(Node node) : node_(std::move(node)) {}
  void execute(Document& doc) override;
  void undo(Document& doc) override;

 private:
  Node node_;
};

class DeleteNodeCommand final : public ICommand {
 public:
  explicit DeleteNodeCommand(std::string id) : id_(std::move(id)) {}
  void execute(Document& doc) override;
  void undo(Document& doc) override;

 private:
  std::string id_;
  Node saved_;
  std::int32_t index_ = -1;
  std::vector<Edge> savedEdges_;
  bool found_ = false;
};

class CreateEdgeCommand final : public ICommand {
 public:
  explicit CreateEdgeCommand(Edge edge) : edge_(std::move(edge)) {}
  void execute(Document& doc) override;
  void undo(Document& doc) override;

 private:
  Edge edge_;
};

class DeleteEdgeCommand final : public ICommand {
 public:
  explicit DeleteEdgeCommand(std::string id) : id_(std::move(id)) {}
  void execute(Document& doc) override;
  void undo(Document& doc) override;

 private:
  std::string id_;
  Edge saved_;
  bool found_ = false;
};

class MoveNodeCommand final : public ICommand {
 public:
  MoveNodeCommand(std::string id, float dx, float dy) : id_(std::move(id)), dx_(dx), dy_(dy) {}
  void execute(Document& doc) override;
  void undo(Document& doc) override;

 private:
  std::string id_;
  float dx_;
  float dy_;
};

class ResizeNodeCommand final : public ICommand {
 public:
  ResizeNodeCommand(std::string id, NodeGeometry rect) : id_(std::move(id)), new_(rect) {}
  void execute(Document& doc) override;
  void undo(Document& doc) override;

 private:
  std::string id_;
  NodeGeometry new_;
  NodeGeometry old_;
};

class ReorderNodeCommand final : public ICommand {
 public:
  ReorderNodeCommand(std::string id, std::int32_t targetIndex)
      : id_(std::move(id)), target_(targetIndex) {}
  void execute(Document& doc) override;
  void undo(Document& doc) override;

 private:
  std::string id_;
  std::int32_t target_;
  std::int32_t former_ = -1;
};

class SetNodeColorCommand final : public ICommand {
 public:
  SetNodeColorCommand(std::string id, std::string color) : id_(std::move(id)), new_(std::move(color)) {}
  void execute(Document& doc) override;
  void undo(Document& doc) override;

 private:
  std::string id_;
  std::string new_;
  std::string old_;
};

class SetNodeDataIntegrationCommand final : public ICommand {
 public:
  SetNodeDataIntegrationCommand(std::string id, bool flag) : id_(std::move(id)), new_(flag) {}
  void execute(Document& doc) override;
  void undo(Document& doc) override;

 private:
  std::string id_;
  bool new_;
  bool old_ = false;
};

class SetNodePropertyCommand final : public ICommand {
 public:
  SetNodePropertyCommand(std::string id, std::string key, std::string value)
      : id_(std::move(id)), key_(std::move(key)), new_(std::move(value)) {}
  void execute(Document& doc) override;
  void undo(Document& doc) override;

 private:
  std::string id_;
  std::string key_;
  std::string new_;
  std::string old_;
  bool existed_ = false;
};

class SetTextCommand final : public ICommand {
 public:
  SetTextCommand(std::string id, std::string text) : id_(std::move(id)), new_(std::move(text)) {}
  void execute(Document& doc) override;
  void undo(Document& doc) override;

 private:
  std::string id_;
  std::string new_;
  std::string old_;
};

/// Children executed first to last and undone last to first.
class CompositeCommand final : public ICommand {
 public:
  CompositeCommand() = default;
  void add(std::unique_ptr<ICommand> child);
  bool empty() const noexcept { return children_.empty(); }
  std::size_t size() const noexcept { return children_.size(); }
  void execute(Document& doc) override;
  void undo(Document& doc) override;

 private:
  std::vector<std::unique_ptr<ICommand>> children_;
};

}  // namespace modelyne::core
