#include "interchange/sysml_syntax.h"

#include <algorithm>
#include <string>
#include <utility>

#include "interchange/sysml_keywords.h"

namespace modelyne::interchange {

namespace {

constexpr std::size_t kMaxErrors = 100;

std::string quoteToken(const Token& t) {
  if (t.kind == TokenKind::end) return "the end of the text";
  std::string text(t.text.substr(0, 40));
  return "'" + text + "'";
}

class Parser {
 public:
  explicit Parser(SyntaxTree& tree) : t_(tree), toks_(tree.tokens) {}

  void run() {
    t_.statements = statements(0, nullptr);
  }

 private:
  const Token& cur() const { return toks_[i_]; }
  bool atEnd() const { return toks_[i_].kind == TokenKind::end; }

  void error(const Token& at, std::string message) {
    if (t_.errors.size() < kMaxErrors) t_.errors.push_back({at.line, at.column, std::move(message)});
  }

  /// Statements up to the `}` that closes `open` (or the end of the text
  /// when `open` is null), which is consumed.
  std::vector<Statement> statements(std::size_t depth, const Token* open) {
    std::vector<Statement> out;
    while (true) {
      const Token& tok = cur();
      if (tok.kind == TokenKind::end) {
        if (open) error(*open, "Expected '}' to close this body before the end of the text.");
        return out;
      }
      if (tok.is("}")) {
        ++i_;
        if (open) return out;
        error(tok, "Unexpected '}'; expected a statement.");
        continue;
      }
      if (tok.is(";")) {
        ++i_;
        continue;
      }
      Statement s;
      if (statement(depth, s)) out.push_back(std::move(s));
    }
  }

  /// Whether a `{` at the top of a header opens an expression rather than a body.
  bool expressionBrace(std::uint32_t headerStart) const {
    if (i_ == headerStart) return false;
    const Token& prev = toks_[i_ - 1];
    if (prev.is(".?") || prev.is("=") || prev.is(":=") || prev.is("default")) return true;
    return i_ >= headerStart + 2 && prev.kind == TokenKind::name && toks_[i_ - 2].is("->");
  }

  /// A statement may end at its owner's `}` without `;` only when it is an
  /// expression (the result of a calculation or constraint).
  bool expressionStatement(std::uint32_t headerStart) const {
    const Token& first = toks_[headerStart];
    if (first.kind != TokenKind::name) return true;
    return !isReservedWord(first.text) || isExpressionWord(first.text);
  }

  /// Reads one statement into `s`; false when it was skipped for an error.
  bool statement(std::size_t depth, Statement& s) {
    const auto start = static_cast<std::uint32_t>(i_);
    s.first = start;
    if (cur().kind == TokenKind::comment) {  // a comment is a statement of its own
      ++i_;
      s.end = static_cast<std::uint32_t>(i_);
      return true;
    }
    const bool textual = cur().is("doc") || cur().is("comment") || cur().is("rep") || cur().is("language") ||
                         cur().is("locale");
    std::vector<const Token*> brackets;  // open ( [ { inside the header
    while (true) {
      const Token& tok = cur();
      if (tok.kind == TokenKind::end) {
        if (!brackets.empty())
          error(*brackets.back(), "Expected '" + std::string(closerOf(*brackets.back())) + "' to close this bracket before the end of the text.");
        else
          error(toks_[start], "Expected ';' or a body to end this statement before the end of the text.");
        return false;
      }
      if (tok.kind == TokenKind::comment && textual && brackets.empty()) {
        ++i_;
        s.end = static_cast<std::uint32_t>(i_);
        return true;
      }
      if (tok.kind == TokenKind::symbol) {
        const std::string_view x = tok.text;
        if (x == "(" || x == "[" || (x == "{" && !brackets.empty())) {
          brackets.push_back(&tok);
        } else if (x == "{" && expressionBrace(start)) {
          brackets.push_back(&tok);
        } else if (x == ")" || x == "]" || (x == "}" && !brackets.empty())) {
          if (brackets.empty() || closerOf(*brackets.back()) != x) {
            error(tok, "Unexpected '" + std::string(x) + "'; expected " +
                           (brackets.empty() ? std::string("';' or a body")
                                             : "'" + std::string(closerOf(*brackets.back())) + "'") +
                           ".");
            recover();
            return false;
          }
          brackets.pop_back();
        } else if (x == ";" && !brackets.empty() && brackets.back()->text == "{") {
          // A statement inside an expression's braces: part of the expression.
        } else if (x == ";") {
          if (!brackets.empty()) {
            error(tok, "Expected '" + std::string(closerOf(*brackets.back())) + "' before ';'.");
            ++i_;
            return false;
          }
          s.end = static_cast<std::uint32_t>(i_);
          s.semicolon = true;
          ++i_;
          return true;
        } else if (x == "}") {  // the owner's closing brace
          s.end = static_cast<std::uint32_t>(i_);
          if (i_ == start) return false;
          if (expressionStatement(start)) return true;
          error(tok, "Expected ';' after " + quoteToken(toks_[i_ - 1]) + " to end the statement.");
          return false;
        } else if (x == "{") {
          s.end = static_cast<std::uint32_t>(i_);
          s.hasBody = true;
          const Token& open = tok;
          ++i_;
          if (depth + 1 >= kMaxNesting) {
            error(open, "Bodies nest deeper than " + std::to_string(kMaxNesting) +
                            " levels; expected at most that many. The body is skipped.");
            skipBody();
            return false;
          }
          s.body = statements(depth + 1, &open);
          return true;
        }
      }
      ++i_;
    }
  }

  static std::string_view closerOf(const Token& open) {
    return open.text == "(" ? ")" : open.text == "[" ? "]" : "}";
  }

  /// After an error: skips to the end of the statement (a `;` outside
  /// braces, or a balanced body), leaving a closing `}` of the owner alone.
  void recover() {
    std::size_t braces = 0;
    while (!atEnd()) {
      const Token& tok = cur();
      if (tok.is("{")) {
        ++braces;
      } else if (tok.is("}")) {
        if (braces == 0) return;
        if (--braces == 0) {
          ++i_;
          return;
        }
      } else if (tok.is(";") && braces == 0) {
        ++i_;
        return;
      }
      ++i_;
    }
  }

  /// Skips the rest of a body whose `{` was just consumed, without recursion.
  void skipBody() {
    std::size_t braces = 1;
    while (!atEnd() && braces > 0) {
      if (cur().is("{")) ++braces;
      else if (cur().is("}")) --braces;
      ++i_;
    }
  }

  SyntaxTree& t_;
  const std::vector<Token>& toks_;
  std::size_t i_ = 0;
};

}  // namespace

SyntaxTree parseSysml(std::string text) {
  SyntaxTree tree;
  if (text.size() > kMaxSysmlBytes) {
    tree.refused = true;
    tree.errors.push_back({1, 1, "The text is " + std::to_string(text.size()) + " bytes long; expected at most " +
                                     std::to_string(kMaxSysmlBytes) + " bytes."});
    tree.source = std::make_shared<const std::string>();
    tree.tokens.push_back({});
    return tree;
  }
  tree.source = std::make_shared<const std::string>(std::move(text));
  LexResult lx = lexSysml(*tree.source);
  tree.tokens = std::move(lx.tokens);
  tree.errors = std::move(lx.errors);
  Parser(tree).run();
  // Lexical and statement errors were found in two passes; report them in
  // source order.
  std::stable_sort(tree.errors.begin(), tree.errors.end(), [](const SyntaxError& a, const SyntaxError& b) {
    return a.line != b.line ? a.line < b.line : a.column < b.column;
  });
  return tree;
}

}  // namespace modelyne::interchange
