#include "ai/interpreter.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "ai/name_words.h"
#include "ai/text_util.h"
#include "ai/tokens.h"
#include "ai/word_tables.h"

namespace modelyne::ai {

namespace {

// Longest list of subjects or objects of one verb that becomes edges.
constexpr std::size_t kMaxListItems = 64;

// ---- sentence structure ----

enum class ElemType : std::uint8_t { Run, Token, Aside };
enum class RunRole : std::uint8_t { None, Entity, Label, Category };

struct Elem {
  ElemType type;
  std::uint32_t index;  // run index or token index
};

struct Run {
  std::uint32_t begin = 0;  // token range
  std::uint32_t end = 0;
  RunRole role = RunRole::None;
  std::optional<PlanNodeKind> kindOverride;  // from "X is a <role>"
  std::optional<PlanNodeKind> inherited;     // from a category before a colon
  int node = -1;
};

// An entity a relation names: a run of the current sentence's tokens, or a
// node already in the plan (through a pronoun or an earlier sentence).
struct EntityRef {
  enum class Source : std::uint8_t { run, node };
  Source source;
  std::uint32_t index;  // into the sentence's runs, or into the plan's nodes

  static EntityRef ofRun(std::uint32_t run) noexcept { return {Source::run, run}; }
  static EntityRef ofNode(int node) noexcept { return {Source::node, static_cast<std::uint32_t>(node)}; }
  bool isRun() const noexcept { return source == Source::run; }
};

struct Relation {
  std::vector<EntityRef> subjects;
  std::vector<EntityRef> objects;
  PlanEdgeKind kind;
  int labelRun = -1;
  bool reverse = false;
};

struct EntityInfo {
  bool kindFromRole = false;
};

class Interpreter {
 public:
  Interpreter() : tables_(wordTables()) {}

  DiagramPlan run(std::string_view text);

 private:
  void sentence(std::string_view s);
  void buildElements();
  const Token* tokenAt(std::size_t e) const {
    return e < elems_.size() && elems_[e].type == ElemType::Token ? &tokens_[elems_[e].index] : nullptr;
  }
  bool isRun(std::size_t e) const { return e < elems_.size() && elems_[e].type == ElemType::Run; }
  bool isDeterminer(std::size_t e) const {
    const Token* t = tokenAt(e);
    return t && t->type == TokType::Stop && words::isDeterminer(t->lower);
  }
  bool isPreposition(std::size_t e) const {
    const Token* t = tokenAt(e);
    return t && t->type == TokType::Stop && tables_.isPreposition(t->lower);
  }
  bool isSep(std::size_t e, char c) const {
    const Token* t = tokenAt(e);
    return t && t->type == TokType::Sep && t->sep == c;
  }
  bool isAside(std::size_t e) const { return e < elems_.size() && elems_[e].type == ElemType::Aside; }
  std::size_t skipForward(std::size_t e) const {
    while (e < elems_.size() && (isDeterminer(e) || isAside(e) || isFiller(e))) ++e;
    return e;
  }
  bool isFiller(std::size_t e) const {
    const Token* t = tokenAt(e);
    return t && t->type == TokType::Filler;
  }
  std::optional<PlanNodeKind> headRole(const Run& r) const;
  std::optional<PlanNodeKind> kindOf(EntityRef r) const {
    if (!r.isRun()) return plan_.nodes[r.index].kind;
    const Run& run = runs_[r.index];
    if (run.kindOverride) return run.kindOverride;
    if (auto k = headRole(run)) return k;
    return run.inherited;
  }
  bool hasInnerCapital(const Run& r) const;
  void subjectsOf(std::size_t vi, Relation& rel, bool& negated) const;
  bool objectsOf(std::size_t vi, Relation& rel);
  int entityFor(std::size_t runIndex);
  std::string labelOf(const Run& r) const;
  std::string wordsOf(const Run& r) const;

  const WordTables& tables_;
  DiagramPlan plan_;
  std::unordered_map<std::string, int> byKey_;
  std::vector<EntityInfo> info_;
  std::unordered_set<std::uint64_t> edgeKeys_;
  std::vector<Token> tokens_;
  std::vector<Run> runs_;
  std::vector<Elem> elems_;
  std::size_t firstRunElem_ = 0;   // element index of the sentence's first run
  std::vector<EntityRef> lastSubjects_;  // of the last relation, within the sentence
  std::vector<EntityRef> lastObjects_;
  std::vector<EntityRef> previousSubjects_;  // of the sentence before, as node references
  std::vector<EntityRef> previousObjects_;
};

void Interpreter::buildElements() {
  runs_.clear();
  elems_.clear();
  std::size_t i = 0;
  const std::size_t n = tokens_.size();
  // The last ')' bounds every search for a closing one, so that many
  // unmatched '(' cost one pass, not one pass each.
  std::size_t lastClose = 0;
  bool anyClose = false;
  for (std::size_t k = 0; k < n; ++k)
    if (tokens_[k].type == TokType::Sep && tokens_[k].sep == ')') {
      lastClose = k;
      anyClose = true;
    }
  while (i < n) {
    const Token& t = tokens_[i];
    if (t.type == TokType::Word) {
      Run r;
      r.begin = static_cast<std::uint32_t>(i);
      while (i < n && tokens_[i].type == TokType::Word) ++i;
      r.end = static_cast<std::uint32_t>(i);
      // A last word in -s right before a determiner is a verb the tables do
      // not know ("the controller monitors the sensor"): not part of the name.
      if (r.end - r.begin >= 2 && i < n && tokens_[i].type == TokType::Stop && words::isDeterminer(tokens_[i].lower)) {
        Token& last = tokens_[r.end - 1];
        const std::string_view w = last.lower;
        if (!last.capitalised && w.size() > 3 && w.back() == 's' && !w.ends_with("ss") && !w.ends_with("us") &&
            !w.ends_with("is")) {
          last.type = TokType::Filler;
          last.role.reset();
          --r.end;
        }
      }
      elems_.push_back({ElemType::Run, static_cast<std::uint32_t>(runs_.size())});
      runs_.push_back(r);
      if (r.end < i) elems_.push_back({ElemType::Token, r.end});
      continue;
    }
    if (t.type == TokType::Quoted) {
      Run r;
      r.begin = static_cast<std::uint32_t>(i);
      r.end = static_cast<std::uint32_t>(i + 1);
      r.role = RunRole::Entity;
      elems_.push_back({ElemType::Run, static_cast<std::uint32_t>(runs_.size())});
      runs_.push_back(r);
      ++i;
      continue;
    }
    if (t.type == TokType::Sep && t.sep == '(' && anyClose && lastClose > i) {
      // A parenthetical aside ("(ECU)") is skipped; it still ends the run.
      std::size_t close = i + 1;
      while (close < n && !(tokens_[close].type == TokType::Sep && tokens_[close].sep == ')')) ++close;
      if (close < n) {
        elems_.push_back({ElemType::Aside, static_cast<std::uint32_t>(i)});
        i = close + 1;
        continue;
      }
    }
    elems_.push_back({ElemType::Token, static_cast<std::uint32_t>(i)});
    ++i;
  }
}

std::optional<PlanNodeKind> Interpreter::headRole(const Run& r) const {
  for (std::uint32_t k = r.end; k > r.begin; --k) {
    const Token& t = tokens_[k - 1];
    if (t.role) return t.role;
    if (t.type == TokType::Quoted) return std::nullopt;
    // Identifiers after the head ("Sensor A", "requirement R1") keep it.
    const bool identifier = t.lower.find_first_of("0123456789") != std::string::npos || t.text.size() == 1 ||
                            (t.text.size() <= 4 && std::all_of(t.text.begin(), t.text.end(), [](char c) {
                               return text::isUpper(c);
                             }));
    if (!identifier || k - 1 == r.begin) return std::nullopt;
  }
  return std::nullopt;
}

bool Interpreter::hasInnerCapital(const Run& r) const {
  for (std::uint32_t k = r.begin; k < r.end; ++k)
    if (tokens_[k].capitalised && k != 0) return true;
  return false;
}

std::string Interpreter::labelOf(const Run& r) const {
  if (tokens_[r.begin].type == TokType::Quoted) return std::string(tokens_[r.begin].text);
  std::uint32_t b = r.begin;
  while (b + 1 < r.end &&
         (words::isQuantity(tokens_[b].lower) ||
          tokens_[b].lower.find_first_not_of("0123456789") == std::string::npos))
    ++b;
  std::string label;
  for (std::uint32_t k = b; k < r.end; ++k) {
    if (!label.empty()) label += ' ';
    const std::size_t at = label.size();
    label += tokens_[k].text;
    if (label[at] >= 'a' && label[at] <= 'z') label[at] = static_cast<char>(label[at] - 'a' + 'A');
  }
  return label;
}

std::string Interpreter::wordsOf(const Run& r) const {
  std::string words;
  for (std::uint32_t k = r.begin; k < r.end; ++k) {
    if (!words.empty()) words += ' ';
    words += tokens_[k].text;
  }
  return words;
}

void Interpreter::subjectsOf(std::size_t vi, Relation& rel, bool& negated) const {
  std::size_t j = vi;
  while (j > 0) {
    const Token* t = tokenAt(j - 1);
    const bool skip = isAside(j - 1) || (t && t->type == TokType::Filler) ||
                      (t && t->type == TokType::Stop && words::leadsVerb(t->lower));
    if (!skip) break;
    if (t && words::isNegation(t->lower)) negated = true;
    --j;
  }
  if (j == 0) return;
  const std::size_t e = j - 1;
  const Token* t = tokenAt(e);
  if (t && (t->type == TokType::Conj || (t->type == TokType::Sep && t->sep == ','))) {
    // "... and sends data to ...": the verb shares the earlier subject.
    if (!lastSubjects_.empty()) {
      rel.subjects = lastSubjects_;
    } else {
      if (firstRunElem_ < e) rel.subjects.push_back(EntityRef::ofRun(elems_[firstRunElem_].index));
    }
    return;
  }
  if (t && t->type == TokType::Stop && words::isPronoun(t->lower)) {
    // "it" names one thing: the single subject before, else the single
    // object before; a plural pronoun takes all earlier subjects.
    const bool singular = t->lower == "it" || t->lower == "this" || t->lower == "that" || t->lower == "he" ||
                          t->lower == "she";
    const std::vector<EntityRef>& subjects = lastSubjects_.empty() ? previousSubjects_ : lastSubjects_;
    const std::vector<EntityRef>& objects = lastSubjects_.empty() ? previousObjects_ : lastObjects_;
    // "it" is not a person: an actor is skipped.
    const auto thing = [&](const std::vector<EntityRef>& refs) {
      return refs.size() == 1 && (!singular || t->lower != "it" || kindOf(refs[0]) != PlanNodeKind::Actor);
    };
    if (!singular) rel.subjects = subjects;
    else if (thing(subjects)) rel.subjects = subjects;
    else if (thing(objects)) rel.subjects = objects;
    return;
  }
  if (!isRun(e)) return;
  std::vector<EntityRef> found{EntityRef::ofRun(elems_[e].index)};
  bool sawConj = false;
  std::size_t k = e;  // elements before k are still to read
  for (;;) {
    while (k > 0 && (isDeterminer(k - 1) || isAside(k - 1))) --k;
    if (k == 0) break;
    const Token* c = tokenAt(k - 1);
    if (!c) break;
    std::size_t m = k - 1;
    if (c->type == TokType::Conj) {
      if (m > 0 && isSep(m - 1, ',')) --m;  // "A, B, and C"
      sawConj = true;
    } else if (!(c->type == TokType::Sep && c->sep == ',' && sawConj)) {
      break;
    }
    while (m > 0 && isDeterminer(m - 1)) --m;
    if (m == 0 || !isRun(m - 1)) break;
    found.push_back(EntityRef::ofRun(elems_[m - 1].index));
    k = m - 1;
  }
  rel.subjects.assign(found.rbegin(), found.rend());
}

bool Interpreter::objectsOf(std::size_t vi, Relation& rel) {
  const Token& verb = tokens_[elems_[vi].index];
  std::size_t k = skipForward(vi + 1);
  std::vector<EntityRef> items;
  std::string_view preposition;
  if (verb.verb->takesPreposition) {
    if (isPreposition(k)) {
      preposition = tokenAt(k)->lower;
      k = skipForward(k + 1);
    } else if (isRun(k)) {
      const std::size_t after = skipForward(k + 1);
      if (isPreposition(after)) {
        const auto r = EntityRef::ofRun(elems_[k].index);
        // What is sent is the edge's label; what is connected is an object.
        if (rel.kind == PlanEdgeKind::Flow && tokens_[runs_[r.index].begin].type != TokType::Quoted) {
          rel.labelRun = static_cast<int>(r.index);
        } else {
          items.push_back(r);
        }
        preposition = tokenAt(after)->lower;
        k = skipForward(after + 1);
      }
    }
  } else if (isPreposition(k) && tokenAt(k)->lower == "to") {
    return false;  // "has to", "have to": a modal, not a relation
  }
  rel.reverse = preposition == "from" && (verb.lower == "receives" || verb.lower == "receive");

  if (!isRun(k)) {
    rel.objects = std::move(items);
    return !rel.objects.empty();
  }
  std::vector<EntityRef> list{EntityRef::ofRun(elems_[k].index)};
  std::size_t keep = 1;  // items confirmed by a conjunction
  bool sawConj = false;
  ++k;
  for (;;) {
    while (isAside(k)) ++k;
    if (list.size() == 1 && !sawConj && isSep(k, ':')) {
      // "has three subsystems: power, propulsion and navigation"
      Run& category = runs_[list[0].index];
      std::vector<EntityRef> named;
      std::size_t m = k + 1;
      for (;;) {
        m = skipForward(m);
        if (!isRun(m)) break;
        named.push_back(EntityRef::ofRun(elems_[m].index));
        ++m;
        const Token* c = tokenAt(m);
        if (!c || !(c->type == TokType::Conj || (c->type == TokType::Sep && c->sep == ','))) break;
        ++m;
        if (isSep(m - 1, ',') && tokenAt(m) && tokenAt(m)->type == TokType::Conj) ++m;
      }
      if (!named.empty()) {
        if (tokens_[category.begin].type != TokType::Quoted) category.role = RunRole::Category;
        const std::optional<PlanNodeKind> kind = headRole(category);
        for (EntityRef r : named) runs_[r.index].inherited = kind;
        list = std::move(named);
        keep = list.size();
      }
      break;
    }
    const Token* c = tokenAt(k);
    if (!c) break;
    std::size_t m = k + 1;
    if (c->type == TokType::Conj) {
      sawConj = true;
    } else if (c->type == TokType::Sep && c->sep == ',') {
      if (tokenAt(m) && tokenAt(m)->type == TokType::Conj) {
        sawConj = true;
        ++m;
      }
    } else {
      break;
    }
    if (isPreposition(m) && sawConj) ++m;  // "to the display and to the logger"
    m = skipForward(m);
    if (!isRun(m)) break;
    list.push_back(EntityRef::ofRun(elems_[m].index));
    if (sawConj) keep = list.size();
    k = m + 1;
  }
  list.resize(keep);
  items.insert(items.end(), list.begin(), list.end());
  rel.objects = std::move(items);
  return !rel.objects.empty();
}

int Interpreter::entityFor(std::size_t runIndex) {
  Run& r = runs_[runIndex];
  if (r.node >= 0) return r.node;
  std::string label = labelOf(r);
  std::string key = text::lower(label);
  std::optional<PlanNodeKind> kind = r.kindOverride;
  if (!kind) kind = headRole(r);
  if (!kind) kind = r.inherited;
  const auto found = byKey_.find(key);
  if (found != byKey_.end()) {
    r.node = found->second;
    EntityInfo& info = info_[static_cast<std::size_t>(r.node)];
    if (kind && !info.kindFromRole) {
      plan_.nodes[static_cast<std::size_t>(r.node)].kind = *kind;
      info.kindFromRole = true;
    }
    return r.node;
  }
  PlanNode node;
  node.id = "n" + std::to_string(plan_.nodes.size() + 1);
  node.label = std::move(label);
  node.kind = kind.value_or(PlanNodeKind::Block);
  r.node = static_cast<int>(plan_.nodes.size());
  byKey_.emplace(std::move(key), r.node);
  info_.push_back({kind.has_value()});
  plan_.nodes.push_back(std::move(node));
  return r.node;
}

void Interpreter::sentence(std::string_view s) {
  tokenize(tables_, s, tokens_);
  buildElements();
  firstRunElem_ = elems_.size();
  for (std::size_t k = 0; k < elems_.size(); ++k)
    if (isRun(k)) {
      firstRunElem_ = k;
      break;
    }
  lastSubjects_.clear();
  lastObjects_.clear();

  std::vector<Relation> relations;
  for (std::size_t vi = 0; vi < elems_.size(); ++vi) {
    const Token* t = tokenAt(vi);
    if (!t) continue;
    if (t->type == TokType::Stop && (t->lower == "is" || t->lower == "are") && vi > 0 && isRun(vi - 1)) {
      // "The pilot is a user": the role word classifies the subject.
      const Token* article = tokenAt(vi + 1);
      if (article && (article->lower == "a" || article->lower == "an") && isRun(vi + 2)) {
        const Token* after = tokenAt(vi + 3);
        if (vi + 3 >= elems_.size() || (after && (after->type == TokType::Sep || after->type == TokType::Conj))) {
          Run& subject = runs_[elems_[vi - 1].index];
          Run& predicate = runs_[elems_[vi + 2].index];
          if (const auto kind = headRole(predicate); kind && predicate.role == RunRole::None &&
                                                      tokens_[predicate.begin].type != TokType::Quoted) {
            subject.kindOverride = kind;
            subject.role = RunRole::Entity;
            predicate.role = RunRole::Category;
          }
        }
      }
      continue;
    }
    if (t->type != TokType::Verb) continue;
    Relation rel;
    rel.kind = t->verb->kind;
    bool negated = false;
    subjectsOf(vi, rel, negated);
    const bool hasObjects = objectsOf(vi, rel);
    // No real enumeration is longer; the cap keeps edges linear in the text.
    if (rel.subjects.size() > kMaxListItems) rel.subjects.resize(kMaxListItems);
    if (rel.objects.size() > kMaxListItems) rel.objects.resize(kMaxListItems);
    if (!hasObjects || negated || rel.subjects.empty()) {
      if (!rel.subjects.empty()) lastSubjects_ = rel.subjects;
      // "Also include the battery": an object without a subject is still
      // something the user named.
      if (hasObjects && !negated)
        for (EntityRef r : rel.objects) runs_[r.index].role = RunRole::Entity;
      continue;
    }
    for (EntityRef r : rel.subjects)
      if (r.isRun()) runs_[r.index].role = RunRole::Entity;
    for (EntityRef r : rel.objects) runs_[r.index].role = RunRole::Entity;
    if (rel.labelRun >= 0) runs_[static_cast<std::size_t>(rel.labelRun)].role = RunRole::Label;
    lastSubjects_ = rel.subjects;
    lastObjects_ = rel.objects;
    relations.push_back(std::move(rel));
  }

  // Entities in order of first occurrence: every subject and object, and
  // every other name that is quoted, capitalised or headed by a role noun.
  int firstEntity = -1;
  for (std::size_t ri = 0; ri < runs_.size(); ++ri) {
    Run& r = runs_[ri];
    if (r.role == RunRole::None && (headRole(r) || hasInnerCapital(r))) r.role = RunRole::Entity;
    if (r.role == RunRole::Entity) {
      const int node = entityFor(ri);
      if (firstEntity < 0) firstEntity = node;
    }
  }

  for (const Relation& rel : relations) {
    const auto nodeOf = [&](EntityRef r) { return r.isRun() ? runs_[r.index].node : static_cast<int>(r.index); };
    std::string label;
    if (rel.labelRun >= 0) label = wordsOf(runs_[static_cast<std::size_t>(rel.labelRun)]);
    for (EntityRef s : rel.subjects) {
      for (EntityRef o : rel.objects) {
        int from = nodeOf(s);
        int to = nodeOf(o);
        if (rel.reverse) std::swap(from, to);
        if (from < 0 || to < 0 || from == to) continue;
        const std::uint64_t key = (static_cast<std::uint64_t>(from) << 35) ^ (static_cast<std::uint64_t>(to) << 3) ^
                                  static_cast<std::uint64_t>(rel.kind);
        if (!edgeKeys_.insert(key).second) continue;
        plan_.edges.push_back(PlanEdge{plan_.nodes[static_cast<std::size_t>(from)].id,
                                       plan_.nodes[static_cast<std::size_t>(to)].id, rel.kind, label});
      }
    }
  }

  // References into this sentence become node references for the next.
  const auto asNodes = [&](const std::vector<EntityRef>& refs) {
    std::vector<EntityRef> out;
    for (EntityRef r : refs) {
      const int node = r.isRun() ? runs_[r.index].node : static_cast<int>(r.index);
      if (node >= 0) out.push_back(EntityRef::ofNode(node));
    }
    return out;
  };
  if (!relations.empty()) {
    previousSubjects_ = asNodes(relations.back().subjects);
    previousObjects_ = asNodes(relations.back().objects);
  } else {
    previousSubjects_.clear();
    previousObjects_.clear();
    if (firstEntity >= 0) previousSubjects_.push_back(EntityRef::ofNode(firstEntity));
  }
}

// The first `limit` characters (UTF-8 code points) of s.
std::string_view firstCharacters(std::string_view s, std::size_t limit) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < s.size(); ++i) {
    if ((static_cast<unsigned char>(s[i]) & 0xC0) == 0x80) continue;
    if (count == limit) return s.substr(0, i);
    ++count;
  }
  return s;
}

DiagramPlan Interpreter::run(std::string_view text) {
  bool any = false;
  std::size_t start = 0;
  for (std::size_t i = 0; i <= text.size(); ++i) {
    if (i < text.size() && text[i] != '.' && text[i] != '!' && text[i] != '?' && text[i] != '\n') continue;
    const std::string_view piece = text::trim(text.substr(start, i - start));
    start = i + 1;
    if (piece.empty()) continue;
    if (!any) plan_.title = std::string(firstCharacters(piece, 80));
    any = true;
    sentence(piece);
  }
  if (!any) return {};
  PlaceOnGrid(plan_.nodes);
  const std::size_t entities = plan_.nodes.size();
  const std::size_t relationships = plan_.edges.size();
  plan_.notes = "Parsed " + std::to_string(entities) + " entit" + (entities == 1 ? "y" : "ies") + " and " +
                std::to_string(relationships) + " relationship" + (relationships == 1 ? "" : "s") + ".";
  return std::move(plan_);
}

}  // namespace

DiagramPlan InterpretText(std::string_view text) noexcept {
  try {
    Interpreter interpreter;
    return interpreter.run(text);
  } catch (...) {
    // Only allocation can fail; an interpreter out of memory finds nothing.
    return {};
  }
}

}  // namespace modelyne::ai
