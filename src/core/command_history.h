#pragma once
/// ICommand, the undoable change, and CommandHistory, the undo and redo
/// stacks that every Document owns, with the mark of the saved state.

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
  /// Destroys every command, undo stack first. The empty history counts as
  /// saved (a document just loaded is what its file holds).
  void clear();

  /// Marks the present state as the one the file holds.
  void markSaved() noexcept { savedDepth_ = undo_.size(); }
  /// Whether the document is in the marked state: as many commands applied
  /// as when marked, none of them dropped since. The mark dies when a new
  /// command drops the undone commands it stood on, and never comes back.
  bool atSavedState() const noexcept { return savedDepth_ == undo_.size(); }

  std::size_t undoCount() const noexcept { return undo_.size(); }
  std::size_t redoCount() const noexcept { return redo_.size(); }

 private:
  static void destroyBottomToTop(std::vector<std::unique_ptr<ICommand>>& stack);

  static constexpr std::size_t kNoSavedState = static_cast<std::size_t>(-1);

  std::vector<std::unique_ptr<ICommand>> undo_;
  std::vector<std::unique_ptr<ICommand>> redo_;
  std::size_t savedDepth_ = 0;  // undo depth of the saved state, or kNoSavedState
};

}  // namespace modelyne::core
