#pragma once
/// Undoable edits of an existing edge: its text, its type, its anchor
/// offsets and either end's node and port. They stand beside the direct
/// edge operations (which change the edge in place, outside the history) so
/// that an editor can make every user edit one undo step. Like every
/// command they hold ids and values, look the edge up on each run and do
/// nothing when it is gone.

#include <string>

#include "core/anchor.h"
#include "core/catalogue.h"
#include "core/command_history.h"
#include "core/model.h"

namespace modelyne::core {

class SetEdgeTextCommand final : public ICommand {
 public:
  SetEdgeTextCommand(std::string id, std::string text) : id_(std::move(id)), new_(std::move(text)) {}
  void execute(Document& doc) override;
  void undo(Document& doc) override;

 private:
  std::string id_;
  std::string new_;
  std::string old_;
};

class SetEdgeTypeCommand final : public ICommand {
 public:
  SetEdgeTypeCommand(std::string id, EdgeType type) : id_(std::move(id)), new_(type) {}
  void execute(Document& doc) override;
  void undo(Document& doc) override;

 private:
  std::string id_;
  EdgeType new_;
  EdgeType old_ = EdgeType::straightArrow;
};

class SetEdgeAnchorOffsetsCommand final : public ICommand {
 public:
  SetEdgeAnchorOffsetsCommand(std::string id, float srcAnchorDY, float tgtAnchorDY)
      : id_(std::move(id)), newSrc_(srcAnchorDY), newTgt_(tgtAnchorDY) {}
  void execute(Document& doc) override;
  void undo(Document& doc) override;

 private:
  std::string id_;
  float newSrc_;
  float newTgt_;
  float oldSrc_ = kUnsetOffset;
  float oldTgt_ = kUnsetOffset;
};

/// Moves one end of an edge to a node and port; that end's anchor offset
/// is reset (NaN), as the direct reconnect does.
class ReconnectEdgeCommand final : public ICommand {
 public:
  ReconnectEdgeCommand(std::string id, bool sourceEnd, std::string nodeId, Anchor port)
      : id_(std::move(id)), sourceEnd_(sourceEnd), node_(std::move(nodeId)), port_(port) {}
  void execute(Document& doc) override;
  void undo(Document& doc) override;

 private:
  std::string id_;
  bool sourceEnd_;
  std::string node_;
  Anchor port_;
  std::string oldNode_;
  Anchor oldPort_ = Anchor::right;
  float oldOffset_ = kUnsetOffset;
};

}  // namespace modelyne::core
