#include "ai/tokens.h"

#include "ai/name_words.h"
#include "ai/text_util.h"

namespace modelyne::ai {

namespace {

bool isHigh(char c) noexcept { return static_cast<unsigned char>(c) >= 0x80; }
bool isWordChar(char c) noexcept { return text::isAlnum(c) || c == '_' || c == '-' || isHigh(c); }
bool isLetterOrDigit(char c) noexcept { return text::isAlnum(c) || isHigh(c); }

// Length of a multi-byte punctuation or space sequence at i (general
// punctuation U+2000..U+206F, no-break space), or 0.
std::size_t unicodePunctuation(std::string_view s, std::size_t i) noexcept {
  const auto b = [&](std::size_t k) { return static_cast<unsigned char>(s[k]); };
  if (i + 2 < s.size() && b(i) == 0xE2 && (b(i + 1) == 0x80 || b(i + 1) == 0x81)) return 3;
  if (i + 1 < s.size() && b(i) == 0xC2 && b(i + 1) == 0xA0) return 2;
  return 0;
}

std::optional<PlanNodeKind> roleOf(const WordTables& tables, std::string_view lower) {
  if (const PlanNodeKind* k = tables.roleNoun(lower)) return *k;
  // Plural forms name the same role ("sensors", "activities").
  if (lower.size() > 3 && lower.back() == 's') {
    if (lower.size() > 4 && lower.ends_with("ies")) {
      std::string singular(lower.substr(0, lower.size() - 3));
      singular += 'y';
      if (const PlanNodeKind* k = tables.roleNoun(singular)) return *k;
    }
    if (const PlanNodeKind* k = tables.roleNoun(lower.substr(0, lower.size() - 1))) return *k;
  }
  return std::nullopt;
}

bool isAcronym(std::string_view w) noexcept {
  bool upper = false;
  for (char c : w) {
    if (text::isUpper(c)) upper = true;
    else if (!(c >= '0' && c <= '9')) return false;
  }
  return upper && w.size() >= 2;
}

void classify(const WordTables& tables, Token& t, bool firstInSentence) {
  const std::string_view w = t.lower;
  // A capitalised word inside a sentence, or an acronym ("CAN", "IT"), is
  // part of a name even when it spells a verb, a modal or a stop word.
  const bool named = isAcronym(t.text) || (t.capitalised && !firstInSentence);
  if (const RelationVerb* v = tables.relationVerb(w); v && !named) {
    t.type = TokType::Verb;
    t.verb = v;
  } else if (w == "and" || w == "or") {
    t.type = TokType::Conj;
  } else if (tables.isStopWord(w) && !isAcronym(t.text)) {
    t.type = TokType::Stop;
  } else if (words::isFiller(w) && !named) {
    t.type = TokType::Filler;
  } else {
    t.type = TokType::Word;
    t.role = roleOf(tables, w);
  }
}

void pushWord(std::vector<Token>& out, std::string_view word, TokType type) {
  Token t;
  t.text = word;
  t.lower = text::lower(word);
  t.capitalised = text::isUpper(word.front());
  t.type = type;
  out.push_back(std::move(t));
}

}  // namespace

void tokenize(const WordTables& tables, std::string_view s, std::vector<Token>& out) {
  out.clear();
  std::size_t i = 0;
  while (i < s.size()) {
    const char c = s[i];
    if (text::isSpace(c)) {
      ++i;
    } else if (c == '(' || c == ')' || c == ',' || c == ':' || c == ';') {
      Token t;
      t.type = TokType::Sep;
      t.sep = c;
      out.push_back(std::move(t));
      ++i;
    } else if (c == '"' || c == '\'') {
      if (c == '\'' && i > 0 && isLetterOrDigit(s[i - 1])) {
        // An apostrophe inside a word ("driver's", "don't"): drop the
        // ending, keep the word before it.
        ++i;
        while (i < s.size() && isWordChar(s[i])) ++i;
        continue;
      }
      const std::size_t close = s.find(c, i + 1);
      if (close == std::string_view::npos) {
        ++i;  // an unmatched mark quotes nothing
        continue;
      }
      const std::string_view inner = text::trim(s.substr(i + 1, close - i - 1));
      if (!inner.empty()) pushWord(out, inner, TokType::Quoted);
      i = close + 1;
    } else if (const std::size_t len = unicodePunctuation(s, i); len != 0) {
      i += len;
    } else if (isWordChar(c)) {
      std::size_t j = i;
      while (j < s.size() && isWordChar(s[j]) && unicodePunctuation(s, j) == 0) ++j;
      std::string_view word = s.substr(i, j - i);
      while (!word.empty() && !isLetterOrDigit(word.front())) word.remove_prefix(1);
      while (!word.empty() && !isLetterOrDigit(word.back())) word.remove_suffix(1);
      if (!word.empty()) pushWord(out, word, TokType::Word);
      i = j;
    } else {
      ++i;  // other punctuation separates words
    }
  }
  bool first = true;
  for (Token& t : out) {
    if (t.type == TokType::Word) classify(tables, t, first);
    if (t.type == TokType::Quoted) {
      // A quoted name takes the role of the role noun at its head.
      std::optional<PlanNodeKind> role;
      std::size_t p = 0;
      const std::string_view in = t.lower;
      while (p < in.size()) {
        while (p < in.size() && !isLetterOrDigit(in[p])) ++p;
        std::size_t q = p;
        while (q < in.size() && isWordChar(in[q])) ++q;
        if (q > p) {
          const std::string_view w = in.substr(p, q - p);
          const bool identifier = w.find_first_of("0123456789") != std::string_view::npos || w.size() == 1;
          if (auto r = roleOf(tables, w)) role = r;
          else if (!identifier) role.reset();
        }
        p = q;
      }
      t.role = role;
    }
    if (t.type != TokType::Sep) first = false;
  }
  // "use case" names a use case, not a use of a case.
  for (std::size_t k = 0; k + 1 < out.size(); ++k) {
    if (out[k].type == TokType::Verb && out[k].lower == "use" && out[k + 1].type == TokType::Word &&
        (out[k + 1].lower == "case" || out[k + 1].lower == "cases")) {
      out[k].type = TokType::Word;
      out[k].verb = nullptr;
      out[k + 1].role = PlanNodeKind::UseCase;
    }
  }
}

}  // namespace modelyne::ai
