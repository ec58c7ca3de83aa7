#pragma once
/// The interpreter's four fixed word tables (role nouns, relation verbs,
/// prepositions, stop words), all lower case. Built once on first use
/// (thread-safe) and immutable afterwards.

#include <cstddef>
#include <string_view>

#include "ai/plan.h"

namespace modelyne::ai {

struct RelationVerb {
  PlanEdgeKind kind;
  bool takesPreposition;  ///< a preposition comes before the verb's object
};

class WordTables {
 public:
  /// The kind an entity named with this role noun receives, or nullptr.
  virtual const PlanNodeKind* roleNoun(std::string_view lower) const noexcept = 0;
  virtual const RelationVerb* relationVerb(std::string_view lower) const noexcept = 0;
  virtual bool isPreposition(std::string_view lower) const noexcept = 0;
  virtual bool isStopWord(std::string_view lower) const noexcept = 0;

  virtual std::size_t roleNounCount() const noexcept = 0;
  virtual std::size_t relationVerbCount() const noexcept = 0;
  virtual std::size_t prepositionCount() const noexcept = 0;
  virtual std::size_t stopWordCount() const noexcept = 0;

 protected:
  ~WordTables() = default;
};

/// The tables, built on the first call.
const WordTables& wordTables();

}  // namespace modelyne::ai
