#include "ai/word_tables.h"

#include <unordered_map>
#include <unordered_set>

namespace modelyne::ai {

namespace {

struct RoleEntry {
  std::string_view word;
  PlanNodeKind kind;
};

constexpr RoleEntry kRoleNouns[] = {
    {"actor", PlanNodeKind::Actor},           {"user", PlanNodeKind::Actor},
    {"operator", PlanNodeKind::Actor},        {"person", PlanNodeKind::Actor},
    {"customer", PlanNodeKind::Actor},        {"state", PlanNodeKind::State},
    {"status", PlanNodeKind::State},          {"mode", PlanNodeKind::State},
    {"phase", PlanNodeKind::State},           {"action", PlanNodeKind::Action},
    {"activity", PlanNodeKind::Action},       {"process", PlanNodeKind::Action},
    {"task", PlanNodeKind::Action},           {"operation", PlanNodeKind::Action},
    {"step", PlanNodeKind::Action},           {"requirement", PlanNodeKind::Requirement},
    {"req", PlanNodeKind::Requirement},       {"constraint", PlanNodeKind::Constraint},
    {"limit", PlanNodeKind::Constraint},      {"interface", PlanNodeKind::Interface},
    {"api", PlanNodeKind::Interface},         {"port", PlanNodeKind::Interface},
    {"protocol", PlanNodeKind::Interface},    {"usecase", PlanNodeKind::UseCase},
    {"use-case", PlanNodeKind::UseCase},      {"scenario", PlanNodeKind::UseCase},
    {"system", PlanNodeKind::Block},          {"subsystem", PlanNodeKind::Block},
    {"component", PlanNodeKind::Block},       {"block", PlanNodeKind::Block},
    {"module", PlanNodeKind::Block},          {"service", PlanNodeKind::Block},
    {"unit", PlanNodeKind::Block},            {"device", PlanNodeKind::Block},
    {"engine", PlanNodeKind::Block},          {"controller", PlanNodeKind::Block},
    {"sensor", PlanNodeKind::Block},
};
static_assert(std::size(kRoleNouns) == 37);

struct VerbEntry {
  std::string_view word;
  RelationVerb verb;
};

constexpr RelationVerb kContains{PlanEdgeKind::Containment, false};
constexpr RelationVerb kConsists{PlanEdgeKind::Containment, true};
constexpr RelationVerb kConnects{PlanEdgeKind::Connection, true};
constexpr RelationVerb kSends{PlanEdgeKind::Flow, true};
constexpr RelationVerb kUses{PlanEdgeKind::Dependency, false};
constexpr RelationVerb kDepends{PlanEdgeKind::Dependency, true};
constexpr RelationVerb kSatisfies{PlanEdgeKind::Satisfy, false};
constexpr RelationVerb kAllocated{PlanEdgeKind::Allocate, true};
constexpr RelationVerb kExtends{PlanEdgeKind::Generalization, false};
constexpr RelationVerb kInherits{PlanEdgeKind::Generalization, true};

constexpr VerbEntry kRelationVerbs[] = {
    {"contains", kContains},       {"contain", kContains},       {"has", kContains},
    {"have", kContains},           {"owns", kContains},          {"own", kContains},
    {"includes", kContains},       {"include", kContains},       {"comprises", kContains},
    {"comprise", kContains},       {"consists", kConsists},      {"composed", kConsists},
    {"connects", kConnects},       {"connect", kConnects},       {"links", kConnects},
    {"link", kConnects},           {"interacts", kConnects},     {"interact", kConnects},
    {"communicates", kConnects},   {"communicate", kConnects},   {"sends", kSends},
    {"send", kSends},              {"receives", kSends},         {"receive", kSends},
    {"flows", kSends},             {"flow", kSends},             {"uses", kUses},
    {"use", kUses},                {"depends", kDepends},        {"depend", kDepends},
    {"requires", kUses},           {"require", kUses},           {"satisfies", kSatisfies},
    {"satisfy", kSatisfies},       {"fulfills", kSatisfies},     {"fulfill", kSatisfies},
    {"allocated", kAllocated},     {"allocate", kAllocated},     {"extends", kExtends},
    {"extend", kExtends},          {"inherits", kInherits},      {"inherit", kInherits},
};
static_assert(std::size(kRelationVerbs) == 42);

constexpr std::string_view kPrepositions[] = {"to", "on", "of", "with", "from", "into", "at", "for", "by"};
static_assert(std::size(kPrepositions) == 9);

constexpr std::string_view kStopWords[] = {
    "a",     "an",      "and",   "or",     "of",      "the",     "this",   "that",    "these", "those",
    "it",    "its",     "is",    "are",    "was",     "were",    "be",     "been",    "being", "to",
    "into",  "for",     "with",  "by",     "from",    "as",      "at",     "in",      "on",    "i",
    "we",    "you",     "they",  "he",     "she",     "them",    "there",  "their",   "our",   "your",
    "my",    "his",     "her",   "when",   "while",   "then",    "also",   "but",     "not",   "no",
    "yes",   "so",      "if",    "such",   "like",    "via",     "using",  "because", "since", "whether",
    "each",  "every",   "some",  "any",    "both",    "either",  "neither", "please", "let",
};
static_assert(std::size(kStopWords) == 69);

class Tables final : public WordTables {
 public:
  Tables() {
    for (const auto& e : kRoleNouns) roles_.emplace(e.word, e.kind);
    for (const auto& e : kRelationVerbs) verbs_.emplace(e.word, e.verb);
    for (std::string_view w : kPrepositions) prepositions_.insert(w);
    for (std::string_view w : kStopWords) stopWords_.insert(w);
  }

  const PlanNodeKind* roleNoun(std::string_view lower) const noexcept override {
    const auto it = roles_.find(lower);
    return it == roles_.end() ? nullptr : &it->second;
  }
  const RelationVerb* relationVerb(std::string_view lower) const noexcept override {
    const auto it = verbs_.find(lower);
    return it == verbs_.end() ? nullptr : &it->second;
  }
  bool isPreposition(std::string_view lower) const noexcept override { return prepositions_.count(lower) != 0; }
  bool isStopWord(std::string_view lower) const noexcept override { return stopWords_.count(lower) != 0; }

  std::size_t roleNounCount() const noexcept override { return roles_.size(); }
  std::size_t relationVerbCount() const noexcept override { return verbs_.size(); }
  std::size_t prepositionCount() const noexcept override { return prepositions_.size(); }
  std::size_t stopWordCount() const noexcept override { return stopWords_.size(); }

 private:
  std::unordered_map<std::string_view, PlanNodeKind> roles_;
  std::unordered_map<std::string_view, RelationVerb> verbs_;
  std::unordered_set<std::string_view> prepositions_;
  std::unordered_set<std::string_view> stopWords_;
};

}  // namespace

const WordTables& wordTables() {
  static const Tables tables;  // initialised once, thread-safe
  return tables;
}

}  // namespace modelyne::ai
