#include "interchange/sysml_header.h"

#include <array>

namespace modelyne::interchange {

namespace {

// ---- Spacing of joined tokens ----

bool noSpaceBefore(const Token& t) {
  if (t.kind != TokenKind::symbol) return false;
  static constexpr std::array<std::string_view, 8> kTight{",", ";", ")", "]", ".", "::", ".?", ".."};
  for (std::string_view s : kTight)
    if (t.text == s) return true;
  return t.text == "->";
}

bool noSpaceAfter(const Token& t) {
  if (t.kind != TokenKind::symbol) return false;
  static constexpr std::array<std::string_view, 10> kTight{"(", "[", ".", "::", "~", "#", "@", ".?", "->", ".."};
  for (std::string_view s : kTight)
    if (t.text == s) return true;
  return false;
}

bool callLike(const Token& a, const Token& b) {
  const bool opener = b.kind == TokenKind::symbol && (b.text == "(" || b.text == "[");
  const bool callee = a.kind == TokenKind::quotedName || (a.kind == TokenKind::name && !isReservedWord(a.text)) ||
                      (a.kind == TokenKind::symbol && (a.text == ")" || a.text == "]"));
  return opener && callee;
}

// ---- Header reading ----

class HeaderReader {
 public:
  HeaderReader(std::span<const Token> h, std::vector<SyntaxError>& errors) : h_(h), errors_(errors) {}

  Header run() {
    Header out;
    prefixes(out);
    kind(out);
    identification(out);
    relations(out);
    return out;
  }

 private:
  bool more() const { return i_ < h_.size(); }
  const Token& at(std::size_t k) const { return h_[k]; }
  bool plainWord(std::size_t k) const { return k < h_.size() && h_[k].kind == TokenKind::name; }

  void fault(const Token& t, std::string message) { errors_.push_back({t.line, t.column, std::move(message)}); }

  /// Whether the words from `k` start a kind phrase.
  bool kindAt(std::size_t k) const {
    std::array<std::string_view, 4> words{};
    std::size_t n = 0;
    while (n < words.size() && plainWord(k + n)) words[n] = h_[k + n].text, ++n;
    std::size_t matched = 0;
    return findKind(std::span<const std::string_view>(words.data(), n), matched) != nullptr;
  }

  void prefixes(Header& out) {
    while (more()) {
      const Token& t = at(i_);
      if (t.is("#") && i_ + 1 < h_.size() && h_[i_ + 1].isName()) {
        const std::size_t end = qualifiedEnd(i_ + 1);
        out.prefixes.push_back(joinTokens(h_.subspan(i_, end - i_)));
        i_ = end;
        continue;
      }
      if (!plainWord(i_) || !isPrefixWord(t.text)) return;
      // A prefix that is also a kind ("ref", "end", "event") is the kind
      // when no other kind phrase or prefix follows it.
      if (kindAt(i_) && !kindAt(i_ + 1) && !(plainWord(i_ + 1) && isPrefixWord(h_[i_ + 1].text))) {
        // "event occurrence" is one phrase: leave both words to kind().
        return;
      }
      out.prefixes.emplace_back(t.text);
      ++i_;
    }
  }

  void kind(Header& out) {
    std::array<std::string_view, 4> words{};
    std::size_t n = 0;
    while (n < words.size() && plainWord(i_ + n)) words[n] = h_[i_ + n].text, ++n;
    std::size_t matched = 0;
    out.kind = findKind(std::span<const std::string_view>(words.data(), n), matched);
    i_ += matched;
  }

  /// One past the end of the qualified name or feature chain at `k`.
  std::size_t qualifiedEnd(std::size_t k) const {
    if (k < h_.size() && h_[k].is("~")) ++k;
    if (k < h_.size() && h_[k].is("$") && k + 1 < h_.size() && h_[k + 1].is("::")) k += 2;
    if (k >= h_.size() || !h_[k].isName()) return k;
    ++k;
    while (k + 1 < h_.size() && (h_[k].is("::") || h_[k].is(".")) && h_[k + 1].isName()) k += 2;
    return k;
  }

  void identification(Header& out) {
    if (!more()) return;
    if (at(i_).is("<") && i_ + 2 < h_.size() && h_[i_ + 1].isName() && h_[i_ + 2].is(">")) {
      out.shortName = unquoteName(h_[i_ + 1].text);
      i_ += 3;
    }
    if (!more()) return;
    const Token& t = at(i_);
    const bool nameToken = t.kind == TokenKind::quotedName || (t.kind == TokenKind::name && !isReservedWord(t.text));
    if (!nameToken) return;
    const std::size_t end = qualifiedEnd(i_);
    out.nameLine = t.line;
    out.name = end == i_ + 1 ? unquoteName(t.text) : joinTokens(h_.subspan(i_, end - i_));
    i_ = end;
  }

  /// A comma-separated list of qualified names after a relation symbol.
  void nameList(std::vector<std::string>& into, std::string_view what) {
    const Token& relation = at(i_ - 1);
    do {
      const std::size_t end = qualifiedEnd(i_);
      if (end == i_ || (end == i_ + 1 && at(i_).is("~"))) {
        fault(more() ? at(i_) : relation, "Expected " + std::string(what) + " after '" + std::string(relation.text) + "'.");
        return;
      }
      into.push_back(joinTokens(h_.subspan(i_, end - i_)));
      i_ = end;
    } while (more() && at(i_).is(",") && ++i_);
  }

  void relations(Header& out) {
    while (more()) {
      const Token& t = at(i_);
      const bool word = t.kind == TokenKind::name;
      if (t.is(":") || (word && (t.text == "defined" || t.text == "typed") && i_ + 1 < h_.size() && h_[i_ + 1].is("by"))) {
        i_ += t.is(":") ? 1 : 2;
        nameList(out.typedBy, "a type name");
      } else if (t.is(":>") || (word && (t.text == "subsets" || t.text == "specializes"))) {
        ++i_;
        nameList(out.specializes, "a name to specialize");
      } else if (t.is(":>>") || (word && t.text == "redefines")) {
        ++i_;
        nameList(out.redefines, "a name to redefine");
      } else if (t.is("::>") || (word && t.text == "references")) {
        ++i_;
        nameList(out.references, "a name to reference");
      } else if (t.is("[")) {
        std::size_t depth = 0, k = i_;
        for (; k < h_.size(); ++k) {
          if (h_[k].is("[")) ++depth;
          else if (h_[k].is("]") && --depth == 0) break;
        }
        const std::size_t end = k < h_.size() ? k + 1 : k;
        out.multiplicity += joinTokens(h_.subspan(i_, end - i_));
        i_ = end;
      } else if (word && (t.text == "ordered" || t.text == "nonunique")) {
        out.multiplicity += (out.multiplicity.empty() ? "" : " ") + std::string(t.text);
        ++i_;
      } else if (t.is("=") || t.is(":=") || (word && t.text == "default")) {
        out.value = joinTokens(h_.subspan(i_));
        i_ = h_.size();
      } else {
        out.restBegin = i_;
        out.rest = joinTokens(h_.subspan(i_));
        i_ = h_.size();
      }
    }
  }

  std::span<const Token> h_;
  std::vector<SyntaxError>& errors_;
  std::size_t i_ = 0;
};

bool isIdentifier(std::string_view s) {
  if (s.empty() || (s[0] >= '0' && s[0] <= '9')) return false;
  for (const char c : s) {
    const auto u = static_cast<unsigned char>(c);
    if (!((u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z') || (u >= '0' && u <= '9') || u == '_')) return false;
  }
  return true;
}

}  // namespace

Header readHeader(std::span<const Token> header, std::vector<SyntaxError>& errors) {
  return HeaderReader(header, errors).run();
}

std::string joinTokens(std::span<const Token> tokens) {
  std::string out;
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    const Token& t = tokens[i];
    // A short name after a keyword: "<'1'>", not a comparison.
    const bool shortName = t.is("<") && i + 2 < tokens.size() && tokens[i + 1].isName() && tokens[i + 2].is(">") &&
                           (i == 0 || (tokens[i - 1].kind == TokenKind::name && isReservedWord(tokens[i - 1].text)));
    if (i > 0 && !noSpaceBefore(t) && !noSpaceAfter(tokens[i - 1]) && !callLike(tokens[i - 1], t)) out += ' ';
    if (shortName) {
      out += "<";
      out.append(tokens[i + 1].text);
      out += ">";
      i += 2;
      continue;
    }
    if (t.kind == TokenKind::comment) {
      // One line: runs of white space in the comment become one space.
      bool space = false;
      for (const char c : t.text) {
        const bool ws = c == ' ' || c == '\t' || c == '\n' || c == '\r';
        if (ws && space) continue;
        out += ws ? ' ' : c;
        space = ws;
      }
      continue;
    }
    out.append(t.text);
  }
  return out;
}

std::string quoteName(std::string_view name) {
  if (isIdentifier(name) && !isReservedWord(name)) return std::string(name);
  std::string out = "'";
  for (const char c : name) {
    if (c == '\'' || c == '\\') out += '\\';
    out += c;
  }
  return out + "'";
}

bool isWrittenName(std::string_view text) {
  const LexResult lx = lexSysml(text);
  if (!lx.errors.empty() || lx.tokens.size() < 2) return false;
  const auto& t = lx.tokens;
  const std::size_t n = t.size() - 1;  // without the end token
  for (std::size_t i = 0; i < n; ++i) {
    const bool want = i % 2 == 0;
    if (want && !(t[i].kind == TokenKind::quotedName || (t[i].kind == TokenKind::name && !isReservedWord(t[i].text))))
      return false;
    if (!want && !(t[i].is(".") || t[i].is("::"))) return false;
  }
  return n % 2 == 1 && t.back().kind == TokenKind::end;
}

std::vector<std::string> splitQualified(std::string_view q) {
  std::vector<std::string> out;
  std::string cur;
  bool quoted = false;
  for (std::size_t i = 0; i < q.size(); ++i) {
    const char c = q[i];
    if (quoted && c == '\\' && i + 1 < q.size()) {
      cur += c;
      cur += q[++i];
      continue;
    }
    if (c == '\'') quoted = !quoted;
    if (!quoted && c == ':' && i + 1 < q.size() && q[i + 1] == ':') {
      out.push_back(std::move(cur));
      cur.clear();
      ++i;
      continue;
    }
    cur += c;
  }
  out.push_back(std::move(cur));
  return out;
}

}  // namespace modelyne::interchange
