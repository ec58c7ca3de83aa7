#include "ai/name_words.h"

namespace modelyne::ai::words {

namespace {

// Auxiliaries, modals and common adverbs: never part of a name, skipped
// between a subject and its verb.
constexpr std::string_view kFillerWords[] = {
    "can", "will", "shall", "must", "should", "may", "might", "could", "would", "does", "do", "did",
    "cannot", "never", "always", "only", "directly", "periodically", "continuously", "automatically",
    "optionally", "typically", "usually", "immediately", "wirelessly", "electrically", "mechanically",
};
constexpr std::string_view kNegations[] = {"not", "no", "never", "cannot"};
// Words that may stand before a noun phrase without belonging to its name.
constexpr std::string_view kDeterminers[] = {"a", "an", "the", "this", "that", "these", "those", "its", "their",
                                             "our", "your", "my", "his", "her", "each", "every", "some", "any",
                                             "both", "either", "neither", "also", "such"};
// Stop words that may stand between a subject and its verb.
constexpr std::string_view kVerbLead[] = {"is", "are", "was", "were", "be", "been", "being", "also", "then", "not",
                                          "no"};
constexpr std::string_view kPronouns[] = {"it", "they", "this", "that", "these", "those", "he", "she", "we"};
// Leading quantity words dropped from a name.
constexpr std::string_view kQuantityWords[] = {"one", "two", "three", "four", "five", "six", "seven", "eight",
                                               "nine", "ten", "eleven", "twelve", "several", "multiple", "many",
                                               "few", "various", "numerous", "all"};

template <std::size_t N>
bool inList(const std::string_view (&list)[N], std::string_view w) noexcept {
  for (std::string_view x : list)
    if (x == w) return true;
  return false;
}

}  // namespace

bool isFiller(std::string_view lower) noexcept { return inList(kFillerWords, lower); }
bool isNegation(std::string_view lower) noexcept { return inList(kNegations, lower); }
bool isDeterminer(std::string_view lower) noexcept { return inList(kDeterminers, lower); }
bool leadsVerb(std::string_view lower) noexcept { return inList(kVerbLead, lower); }
bool isPronoun(std::string_view lower) noexcept { return inList(kPronouns, lower); }
bool isQuantity(std::string_view lower) noexcept { return inList(kQuantityWords, lower); }

}  // namespace modelyne::ai::words
