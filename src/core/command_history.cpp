#include "core/command_history.h"

#include "core/document.h"

namespace modelyne::core {

CommandHistory::~CommandHistory() { clear(); }

void CommandHistory::destroyBottomToTop(std::vector<std::unique_ptr<ICommand>>& stack) {
  for (auto& cmd : stack) cmd.reset();
  stack.clear();
}

void CommandHistory::pushAndExecute(std::unique_ptr<ICommand> cmd, Document& doc) {
  if (!cmd) return;
  cmd->execute(doc);
  // The saved state was reached by undone commands that go now.
  if (savedDepth_ != kNoSavedState && savedDepth_ > undo_.size()) savedDepth_ = kNoSavedState;
  undo_.push_back(std::move(cmd));
  destroyBottomToTop(redo_);
}

bool CommandHistory::undo(Document& doc) {
  if (undo_.empty()) return false;
  std::unique_ptr<ICommand> cmd = std::move(undo_.back());
  undo_.pop_back();
  cmd->undo(doc);
  redo_.push_back(std::move(cmd));
  return true;
}

bool CommandHistory::redo(Document& doc) {
  if (redo_.empty()) return false;
  std::unique_ptr<ICommand> cmd = std::move(redo_.back());
  redo_.pop_back();
  cmd->execute(doc);
  undo_.push_back(std::move(cmd));
  return true;
}

void CommandHistory::clear() {
  destroyBottomToTop(undo_);
  destroyBottomToTop(redo_);
  savedDepth_ = 0;
}

}  // namespace modelyne::core
