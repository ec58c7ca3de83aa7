#pragma once
/// ICommand, the undoable change, and CommandHistory, the undo and redo
/// stacks that every Document owns.

#include <memory>
#include <vector>

namespace modelyne::core {

class Document;

/// An undoable change. Commands name their targets by id, look them up on
/// every run, and do nothing when a target is gone. `execute` is also redo,
/// so it re-saves whatever `undo` needs each time it runs.
class ICommand {
 public:
  virtual ~ICommand() = default;
  virtual void execute(Document& doc) = 0;
  virtual void undo(Document& doc) = 0;
};

class CommandHistory {
 public:
  CommandHistory() = default;
  CommandHistory(const CommandHistory&) = delete;
  CommandHistory& operator=(const CommandHistory&) = delete;
  ~CommandHistory();

  /// Executes the command, pushes it on the undo stack and empties the redo
  /// stack. A null command is ignored.
  void pushAndExecute(std::unique_ptr<ICommand> cmd, Document& doc);
  /// False when there is nothing to undo.
  bool undo(Document& doc);
  /// False when there is nothing to redo.
  bool redo(Document& doc);
  /// Destroys every command, undo stack first.
  void clear();

  std::size_t undoCount() const noexcept { return undo_.size(); }
  std::size_t redoCount() const noexcept { return redo_.size(); }
  /// The command that the next undo would take back, or nullptr.
  const ICommand* top() const noexcept { return undo_.empty() ? nullptr : undo_.back().get(); }

 private:
  static void destroyBottomToTop(std::vector<std::unique_ptr<ICommand>>& stack);

  std::vector<std::unique_ptr<ICommand>> undo_;
  std::vector<std::unique_ptr<ICommand>> redo_;
};

}  // namespace modelyne::core
