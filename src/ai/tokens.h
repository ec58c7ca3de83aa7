#pragma once
/// The offline interpreter's tokens: a sentence cut into words, quoted names
/// and clause separators, each word classified against the word tables
/// (relation verb, conjunction, stop word, filler or a word of a name with
/// the role its noun gives). Internal to modelyne_ai.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ai/plan.h"
#include "ai/word_tables.h"

namespace modelyne::ai {

/// What a token is: a word of a name, a quoted name, a relation verb, "and"
/// or "or", a stop word, a filler word, or a clause separator.
enum class TokType : std::uint8_t { Word, Quoted, Verb, Conj, Stop, Filler, Sep };

struct Token {
  std::string_view text;  ///< as written; the inner text for a quoted name
  std::string lower;
  bool capitalised = false;
  TokType type = TokType::Word;
  char sep = 0;
  const RelationVerb* verb = nullptr;
  std::optional<PlanNodeKind> role;
};

/// Cuts one sentence into tokens (replacing `out`'s content); "(", ")",
/// ",", ":" and ";" become Sep tokens. Tokens view `sentence`.
void tokenize(const WordTables& tables, std::string_view sentence, std::vector<Token>& out);

}  // namespace modelyne::ai
