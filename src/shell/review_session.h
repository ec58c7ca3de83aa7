#pragma once
/// ReviewSession: the generated nodes and edges awaiting review. Each entry
/// shows its decision as "[Accept ] ", "[Modify ] ", "[Discard] " or, while
/// undecided, "[?      ] ", followed by what it is. Candidates carry the
/// rule identifier "__ml_candidate__" until decided. Decisions are recorded
/// through the bridge (one undo step per call); the entries are re-read
/// from the document after undo and redo, so the list always tells the
/// document's truth.

#include <QString>
#include <QStringList>
#include <string>
#include <vector>

#include "bridge/bridge.h"

namespace modelyne::shell {

class ReviewSession {
 public:
  enum class State { undecided, accept, modify, discard };

  struct Entry {
    std::string id;
    bool edge = false;
    std::string ruleId;  ///< "__ml_candidate__" until decided
    State state = State::undecided;
    QString description;
  };

  /// Starts a review of freshly generated elements (replacing any other).
  void start(bridge::DocumentHandle doc, const std::vector<std::string>& nodeIds,
             const std::vector<std::string>& edgeIds);
  void clear();
  bool active() const noexcept { return doc_ != nullptr && !entries_.empty(); }
  bridge::DocumentHandle document() const noexcept { return doc_; }

  /// Re-reads every entry's state from the document.
  void refresh();
  const std::vector<Entry>& entries() const noexcept { return entries_; }
  /// The line shown for an entry: its decision mark, then its description.
  QString line(std::size_t index) const;
  static QString mark(State s);
  std::size_t undecidedCount() const;

  /// Records one decision ("ACCEPT", "DISCARD", "MODIFY") on an entry;
  /// returns the review record.
  std::string decide(std::size_t index, const std::string& decision);
  /// Accepts (or discards) every entry not yet accepted or discarded, as one step.
  std::vector<std::string> decideAll(const std::string& decision);
  /// Records of the decisions taken, in order.
  const QStringList& records() const noexcept { return records_; }

 private:
  bridge::DocumentHandle doc_ = nullptr;
  std::vector<Entry> entries_;
  QStringList records_;
};

}  // namespace modelyne::shell
