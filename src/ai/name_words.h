#pragma once
/// Word classes of the offline interpreter beyond the four fixed tables:
/// words that delimit a name without being part of it (auxiliaries and
/// adverbs, negations, determiners, verb leads, pronouns, quantity words).
/// All lower case, matched whole against a token's lower-case text.
/// Internal to modelyne_ai.

#include <string_view>

namespace modelyne::ai::words {

/// Auxiliaries, modals and common adverbs: skipped between a subject and
/// its verb ("can", "always", "wirelessly").
bool isFiller(std::string_view lower) noexcept;
/// Words that negate the verb after them ("not", "never").
bool isNegation(std::string_view lower) noexcept;
/// Words that may stand before a noun phrase without belonging to its name.
bool isDeterminer(std::string_view lower) noexcept;
/// Stop words that may stand between a subject and its verb ("is", "also").
bool leadsVerb(std::string_view lower) noexcept;
/// Pronouns that refer back to an earlier subject or object.
bool isPronoun(std::string_view lower) noexcept;
/// Leading quantity words dropped from a name ("four motors" is "Motors").
bool isQuantity(std::string_view lower) noexcept;

}  // namespace modelyne::ai::words
