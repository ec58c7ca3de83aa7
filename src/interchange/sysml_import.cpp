#include "interchange/sysml_import.h"

#include <algorithm>
#include <map>
#include <optional>
#include <unordered_map>
#include <utility>

#include "interchange/placement.h"
#include "interchange/sysml_header.h"
#include "interchange/sysml_keywords.h"
#include "interchange/sysml_properties.h"
#include "interchange/sysml_syntax.h"
#include "io/diagram_writer.h"
#include "io/frame_block.h"

namespace modelyne::interchange {

namespace {

using S = core::ShapeType;
using E = core::EdgeType;
using K = core::DiagramKind;

// ---- Text helpers ----

/// A name for display: the quotes of quoted segments removed.
std::string displayOf(std::string_view written) {
  std::string out;
  bool quoted = false;
  for (std::size_t i = 0; i < written.size(); ++i) {
    const char c = written[i];
    if (c == '\'') {
      quoted = !quoted;
      continue;
    }
    if (quoted && c == '\\' && i + 1 < written.size()) {
      out += written[++i];
      continue;
    }
    out += c;
  }
  return out;
}

std::string parentOf(const std::string& qn) {
  const std::vector<std::string> parts = splitQualified(qn);
  std::string out;
  for (std::size_t i = 0; i + 1 < parts.size(); ++i) out += (i ? "::" : "") + parts[i];
  return out;
}

std::string lastSegment(const std::string& written) {
  std::string_view s = written;
  const std::size_t colon = s.rfind("::");
  if (colon != std::string_view::npos) s = s.substr(colon + 2);
  const std::size_t dot = s.rfind('.');
  if (dot != std::string_view::npos && s.find('\'') == std::string_view::npos) s = s.substr(dot + 1);
  return std::string(s);
}

std::string joinQualified(const std::string& owner, const std::string& segment) {
  return owner.empty() ? segment : owner + "::" + segment;
}

/// The written form of a chain ("a.b", "P::x") as a qualified path.
std::string chainAsPath(std::string_view chain) {
  std::string out;
  bool quoted = false;
  for (const char c : chain) {
    if (c == '\'') quoted = !quoted;
    if (c == '.' && !quoted) out += "::";
    else out += c;
  }
  return out;
}

/// Removes the common indentation and the leading '*' of the lines of a
/// comment's text between its delimiters.
std::string commentText(std::string_view raw) {
  if (raw.size() >= 4 && raw.substr(0, 2) == "/*") raw = raw.substr(2, raw.size() - 4);
  std::vector<std::string> lines;
  std::size_t start = 0;
  while (start <= raw.size()) {
    const std::size_t nl = raw.find('\n', start);
    std::string_view line = raw.substr(start, nl == std::string_view::npos ? std::string_view::npos : nl - start);
    while (!line.empty() && (line.front() == ' ' || line.front() == '\t' || line.front() == '\r')) line.remove_prefix(1);
    while (!line.empty() && (line.back() == ' ' || line.back() == '\t' || line.back() == '\r')) line.remove_suffix(1);
    if (!lines.empty() || !line.empty()) {
      if (!line.empty() && line.front() == '*') {
        line.remove_prefix(1);
        if (!line.empty() && line.front() == ' ') line.remove_prefix(1);
      }
      lines.emplace_back(line);
    }
    if (nl == std::string_view::npos) break;
    start = nl + 1;
  }
  while (!lines.empty() && lines.back().empty()) lines.pop_back();
  std::string out;
  for (std::size_t i = 0; i < lines.size(); ++i) out += (i ? "\n" : "") + lines[i];
  return out;
}

/// The index of the first header token at bracket depth 0 equal to `word`
/// at or after `from`, or npos.
std::size_t findTop(std::span<const Token> h, std::string_view word, std::size_t from = 0) {
  int depth = 0;
  for (std::size_t i = from; i < h.size(); ++i) {
    const Token& t = h[i];
    if (t.is("(") || t.is("[") || t.is("{")) ++depth;
    else if (t.is(")") || t.is("]") || t.is("}")) --depth;
    else if (depth == 0 && t.is(word) && t.kind == TokenKind::name) return i;
    else if (depth == 0 && t.kind == TokenKind::symbol && t.text == word) return i;
  }
  return std::string_view::npos;
}

std::size_t findLastTop(std::span<const Token> h, std::string_view word, std::size_t from = 0) {
  std::size_t found = std::string_view::npos;
  for (std::size_t i = findTop(h, word, from); i != std::string_view::npos; i = findTop(h, word, i + 1)) found = i;
  return found;
}

/// One past the end of the chain (names joined by '.' or '::') at `k`.
std::size_t chainEnd(std::span<const Token> h, std::size_t k) {
  if (k < h.size() && h[k].is("~")) ++k;
  if (k >= h.size() || !h[k].isName()) return k;
  ++k;
  while (k + 1 < h.size() && (h[k].is(".") || h[k].is("::")) && h[k + 1].isName()) k += 2;
  return k;
}

/// Whether an end carries a name (`e ::> x`) or a multiplicity that the
/// drawn edge does not keep.
bool endDecorated(std::span<const Token> span) {
  if (!span.empty() && span.front().is("[")) return true;
  for (const Token& t : span)
    if (t.is("::>") || t.is("references")) return true;
  return false;
}

/// The text of an end of a relationship: what follows `::>` when the end is
/// named, without a leading multiplicity.
std::string endText(std::span<const Token> span) {
  for (std::size_t i = 0; i < span.size(); ++i)
    if (span[i].is("::>") || span[i].is("references")) span = span.subspan(i + 1), i = 0;
  if (!span.empty() && span.front().is("[")) {
    std::size_t k = 0;
    while (k < span.size() && !span[k].is("]")) ++k;
    span = span.subspan(std::min(k + 1, span.size()));
  }
  return joinTokens(span);
}

// ---- The mapper ----

struct ModelBuild {
  ImportedModel m;
  std::string context;  ///< qualified name of the owner ("" for the file's root)
  std::unordered_map<std::string, std::size_t> byQn;
  std::unordered_map<std::string, std::size_t> byRef;
};

struct Owner {
  bool isPackage = true;
  std::string qn;
  std::string packageQn;        ///< nearest enclosing package ("" at the root)
  int packageNode = -1;         ///< its node in the package diagram
  int nodeModel = -1;           ///< element: the model its node is in
  int node = -1;
  int ownModel = -1;            ///< element: its own diagram, -1 when none
  S shape = S::rect;
  bool stateLike = false;       ///< transitions ("accept ... then") start at the last state
  std::size_t unnamed = 0;      ///< unnamed children drawn as nodes so far
};

/// An edge whose ends are resolved once every element is known.
struct PendingEdge {
  int model = -1;
  std::string context;  ///< where relative names are looked up
  E type = E::straightArrow;
  std::string text;
  std::string source, target;  ///< written ends, or empty when the node is known
  int sourceNode = -1, targetNode = -1;
  S sourceHint = S::sysmlPartUsage, targetHint = S::sysmlPartUsage;
};

/// A "first x;" whose end is drawn even when no succession follows.
struct FirstOnly {
  int model;
  std::string context;
  std::string written;
  S hint;
};

/// The previous node of a body, for successions that name no source.
struct Previous {
  int node = -1;
  std::string text;
  int model = -1;  ///< the model `node` is in
  bool set() const { return node >= 0 || !text.empty(); }
};

class Mapper {
 public:
  Mapper(const SyntaxTree& tree, InterchangeReport& report) : tree_(tree), report_(report) {}

  std::vector<ImportedModel> run() {
    Owner root;
    members(tree_.statements, root);
    for (PendingEdge& p : pending_) resolve(p);
    for (const FirstOnly& f : firstOnly_)
      endNode(models_[static_cast<std::size_t>(f.model)], f.model, f.context, f.written, f.hint);
    std::vector<ImportedModel> out;
    out.reserve(models_.size());
    for (ModelBuild& b : models_) out.push_back(std::move(b.m));
    return out;
  }

 private:
  // ---- models and nodes ----

  int modelFor(const std::string& context, K kind, std::string_view elementType) {
    const auto key = std::make_pair(context, static_cast<int>(kind));
    const auto it = modelIndex_.find(key);
    if (it != modelIndex_.end()) return it->second;
    ModelBuild b;
    b.context = context;
    b.m.id = "m" + std::to_string(models_.size() + 1);
    const std::vector<std::string> parts = splitQualified(context);
    b.m.name = context.empty() ? std::string(report_.file) : displayOf(parts.back());
    b.m.frame.kind = kind;
    b.m.frame.elementType = context.empty() ? "namespace" : std::string(elementType);
    b.m.frame.elementName = context;
    b.m.frame.name = b.m.name;
    models_.push_back(std::move(b));
    const int index = static_cast<int>(models_.size() - 1);
    modelIndex_.emplace(key, index);
    return index;
  }

  int packageModel() {
    if (pkgModel_ < 0) pkgModel_ = modelFor("", K::pkg, "namespace");
    return pkgModel_;
  }

  int addNode(int model, core::Node node, bool declares) {
    ModelBuild& b = models_[static_cast<std::size_t>(model)];
    node.id = "n" + std::to_string(b.m.nodes.size() + 1);
    const int index = static_cast<int>(b.m.nodes.size());
    const std::string qn = propertyOf(node, kQualifiedNameKey);
    if (!qn.empty()) {
      b.byQn.emplace(qn, static_cast<std::size_t>(index));
      if (declares) {
        elements_.emplace(qn, std::make_pair(model, index));
        const std::string simple = displayOf(lastSegment(qn));
        bySimpleName_.emplace(simple, qn);
      }
    }
    b.m.nodes.push_back(std::move(node));
    return index;
  }

  void addEdge(int model, int source, int target, E type, std::string text) {
    ModelBuild& b = models_[static_cast<std::size_t>(model)];
    core::Edge e;
    e.id = "e" + std::to_string(b.m.edges.size() + 1);
    e.source = b.m.nodes[static_cast<std::size_t>(source)].id;
    e.target = b.m.nodes[static_cast<std::size_t>(target)].id;
    e.type = type;
    e.text = std::move(text);
    b.m.edges.push_back(std::move(e));
  }

  core::Node& nodeAt(int model, int node) {
    return models_[static_cast<std::size_t>(model)].m.nodes[static_cast<std::size_t>(node)];
  }

  /// Appends a line to a multi-line property.
  static void appendLine(core::Node& n, std::string_view key, const std::string& line, const char* separator = "\n") {
    std::string& v = n.properties[std::string(key)];
    if (!v.empty()) v += separator;
    v += line;
  }

  // ---- accounting ----

  const Token& first(const Statement& s) const { return tree_.firstToken(s); }

  void countTree(const Statement& s, Disposition d) {
    report_.account(d);
    for (const Statement& c : s.body) countTree(c, d);
  }

  void lose(const Statement& s, std::string kind, std::string name, std::string reason) {
    report_.lose({first(s).line, kind, name, reason});
    for (const Statement& c : s.body) {
      std::vector<SyntaxError> ignored;
      const Header h = readHeader(tree_.header(c), ignored);
      lose(c, kindWord(h), h.name,
           "inside " + kind + (name.empty() ? "" : " " + name) + ", not drawn");
    }
  }

  /// The kind a loss line names: the kind phrase, else what the statement is.
  static std::string kindWord(const Header& h) {
    if (h.kind) return std::string(h.kind->phrase);
    return h.name.empty() ? "expression" : "feature";
  }

  void partial(const Statement& s, std::string kind, std::string name, std::string reason) {
    report_.lose({first(s).line, std::move(kind), std::move(name), std::move(reason), true});
  }

  // ---- statement text ----

  std::string fullText(const Statement& s) const {
    std::string out = joinTokens(tree_.header(s));
    if (s.hasBody) {
      out += " {";
      for (const Statement& c : s.body) out += " " + fullText(c) + (c.semicolon ? ";" : "");
      out += " }";
    }
    return out;
  }

  /// A body that fits on one compartment line: empty, annotations only, or
  /// one result expression.
  bool compact(const Statement& s) const {
    std::size_t expressions = 0;
    for (const Statement& c : s.body) {
      const Token& t = first(c);
      const bool metadata = t.is("@") || (t.is("metadata") && !tree_.tokens[c.first + 1].is("def"));
      if (metadata) continue;
      const bool expression = t.kind != TokenKind::name || !isReservedWord(t.text) || isExpressionWord(t.text);
      if (c.semicolon || c.hasBody || !expression || ++expressions > 1) return false;
      for (std::uint32_t k = c.first; k < c.end; ++k)
        if (tree_.tokens[k].kind == TokenKind::comment) return false;
    }
    return true;
  }

  // ---- classification ----

  enum class Act { package, import, alias, doc, comment, metadata, control, textual, stateAction, relationship,
                   thenDeclaration, definition, usage, feature, expression };

  struct Reading {
    Act act = Act::expression;
    Header header;
    std::span<const Token> tokens;
    const KindInfo* kind = nullptr;
  };

  Reading classify(const Statement& s, const Owner& owner) {
    Reading r;
    r.tokens = tree_.header(s);
    const Token& t0 = r.tokens.front();
    if (t0.kind == TokenKind::comment) {
      r.act = Act::comment;
      return r;
    }
    if (t0.is("@")) {
      r.act = Act::metadata;
      return r;
    }
    r.header = readHeader(r.tokens, headerErrors_);
    r.kind = r.header.kind;
    if (!r.kind) {
      const bool declaration = !r.header.prefixes.empty() || !r.header.name.empty() || !r.header.typedBy.empty() ||
                               !r.header.specializes.empty() || !r.header.redefines.empty();
      const bool plain = r.header.rest.empty() || r.header.restBegin > 0;
      r.act = declaration && plain && (s.semicolon || s.hasBody) ? Act::feature : Act::expression;
      if (r.act == Act::expression && t0.kind == TokenKind::name && t0.text == "if" && !s.hasBody &&
          findTop(r.tokens, "then") != std::string_view::npos)
        r.act = Act::relationship;  // conditional succession "if g then b"
      return r;
    }
    switch (r.kind->role) {
      case Role::package: r.act = Act::package; break;
      case Role::import: r.act = Act::import; break;
      case Role::alias: r.act = Act::alias; break;
      case Role::doc: r.act = Act::doc; break;
      case Role::comment: r.act = Act::comment; break;
      case Role::metadata: r.act = Act::metadata; break;
      case Role::control: r.act = Act::control; break;
      case Role::textual: r.act = Act::textual; break;
      case Role::stateAction: r.act = Act::stateAction; break;
      case Role::definition: r.act = Act::definition; break;
      case Role::usage: r.act = Act::usage; break;
      case Role::relationship: r.act = Act::relationship; break;
    }
    const std::string_view phrase = r.kind->phrase;
    if (r.act == Act::usage) {
      // Usages that carry their ends are relationships.
      if ((phrase == "connection" || phrase == "interface") && findTop(r.tokens, "connect") != std::string_view::npos)
        r.act = Act::relationship;
      else if (phrase == "allocation" && findTop(r.tokens, "allocate") != std::string_view::npos)
        r.act = Act::relationship;
      else if (phrase == "binding" && findTop(r.tokens, "bind") != std::string_view::npos)
        r.act = Act::relationship;
      else if (phrase == "accept" && owner.stateLike && findTop(r.tokens, "then") != std::string_view::npos)
        r.act = Act::relationship;
    }
    if (r.act == Act::relationship && phrase == "then") {
      std::array<std::string_view, 4> words{};
      std::size_t n = 0;
      while (n < words.size() && 1 + n < r.tokens.size() && r.tokens[1 + n].kind == TokenKind::name)
        words[n] = r.tokens[1 + n].text, ++n;
      std::size_t matched = 0;
      const KindInfo* k = findKind(std::span<const std::string_view>(words.data(), n), matched);
      if ((k && k->role == Role::usage) || (n > 0 && isPrefixWord(words[0]))) r.act = Act::thenDeclaration;
    }
    return r;
  }

  // ---- members of a namespace or an element ----

  void members(const std::vector<Statement>& body, Owner& owner) {
    Previous prev;
    for (const Statement& s : body) member(s, owner, prev);
  }

  void member(const Statement& s, Owner& owner, Previous& prev) {
    Reading r = classify(s, owner);
    const std::string phrase = r.kind ? std::string(r.kind->phrase) : std::string();
    switch (r.act) {
      case Act::package: package(s, r, owner); return;
      case Act::import: importStatement(s, r, owner); return;
      case Act::alias: lose(s, "alias", r.header.name, "alias not drawn"); return;
      case Act::metadata:
        lose(s, "metadata", r.kind ? r.header.name : joinTokens(r.tokens.subspan(1, std::min<std::size_t>(r.tokens.size() - 1, 1))),
             "metadata not drawn");
        return;
      case Act::control: lose(s, phrase, "", "structured control not drawn"); return;
      case Act::textual: lose(s, phrase, r.header.name, "textual representation not drawn"); return;
      case Act::doc: documentation(s, r, owner); return;
      case Act::comment: comment(s, r, owner); return;
      case Act::stateAction: stateAction(s, r, owner); return;
      case Act::relationship: relationship(s, r, owner, prev); return;
      case Act::thenDeclaration: thenDeclaration(s, r, owner, prev); return;
      case Act::definition:
      case Act::usage:
      case Act::feature: declaration(s, r, owner, prev); return;
      case Act::expression: expression(s, r, owner); return;
    }
  }

  void package(const Statement& s, const Reading& r, Owner& owner) {
    const std::string qn = joinQualified(owner.packageQn, quoteName(r.header.name));
    core::Node n;
    n.type = S::umlPackage;
    n.text = r.header.name;
    n.properties[std::string(kQualifiedNameKey)] = qn;
    std::string keyword;
    for (const std::string& p : r.header.prefixes) keyword += p + " ";
    keyword += r.kind->phrase;
    if (keyword != "package") n.properties[std::string(kKeywordKey)] = keyword;
    const int model = packageModel();
    const int index = addNode(model, std::move(n), true);
    report_.account(Disposition::node);
    if (owner.packageNode >= 0) addEdge(model, owner.packageNode, index, E::sysmlContainment, "");
    Owner inner;
    inner.qn = qn;
    inner.packageQn = qn;
    inner.packageNode = index;
    members(s.body, inner);
  }

  void importStatement(const Statement& s, const Reading& r, Owner& owner) {
    const std::size_t at = findTop(r.tokens, "import");
    std::string text = joinTokens(r.tokens.subspan(0, at));  // visibility
    const std::string spec = joinTokens(r.tokens.subspan(at + 1));
    text += (text.empty() ? "" : " ") + spec;
    if (!owner.isPackage) {
      appendLine(nodeAt(owner.nodeModel, owner.node), compartmentKey(Compartment::members), fullText(s));
      countTree(s, Disposition::property);
      return;
    }
    if (owner.packageNode < 0) {
      lose(s, "import", spec, "import outside a package not drawn");
      return;
    }
    // The imported namespace: the written name without its wildcards.
    std::string target = spec;
    for (std::string_view tail : {"::**", "::*"})
      while (target.size() > tail.size() && target.ends_with(tail)) target.resize(target.size() - tail.size());
    if (const std::size_t filter = target.find('['); filter != std::string::npos) target.resize(filter);
    while (!target.empty() && target.back() == ' ') target.pop_back();
    PendingEdge p;
    p.model = packageModel();
    p.type = E::sysmlImport;
    p.text = text;
    p.sourceNode = owner.packageNode;
    p.target = target;
    p.targetHint = S::umlPackage;
    pending_.push_back(std::move(p));
    report_.account(Disposition::edge);
    loseMembers(s, "import");
  }

  /// Members of something drawn as an edge cannot be drawn.
  void loseMembers(const Statement& s, const std::string& what) {
    for (const Statement& c : s.body) {
      std::vector<SyntaxError> ignored;
      const Header ch = readHeader(tree_.header(c), ignored);
      lose(c, kindWord(ch), ch.name,
           "member of " + what + " not drawn");
    }
  }

  /// The node that documentation and member lines of the owner go to, or -1.
  std::pair<int, int> ownerNode(const Owner& owner) const {
    if (owner.isPackage) return {owner.packageNode >= 0 ? pkgModel_ : -1, owner.packageNode};
    return {owner.nodeModel, owner.node};
  }

  void documentation(const Statement& s, const Reading& r, Owner& owner) {
    const auto [model, node] = ownerNode(owner);
    if (node < 0) {
      lose(s, "doc", r.header.name, "documentation outside a package not drawn");
      return;
    }
    const Token& body = r.tokens.back();
    std::string text = body.kind == TokenKind::comment ? commentText(body.text) : std::string();
    core::Node& n = nodeAt(model, node);
    if (!text.empty()) appendLine(n, detailKey(n.type, Detail::documentation), text, "\n\n");
    report_.account(Disposition::property);
    loseMembers(s, "documentation");
    if (r.tokens.size() > 2) partial(s, "doc", r.header.name, "name and locale of the documentation not kept");
  }

  /// The model an owner's member nodes are drawn in (its own diagram, or the
  /// diagram its node is in, or its package's diagram of `home`).
  int memberModel(const Owner& owner, Home home, K kindForPackage = K::bdd) {
    if (!owner.isPackage) return owner.ownModel >= 0 ? owner.ownModel : owner.nodeModel;
    (void)home;
    return modelFor(owner.packageQn, kindForPackage, owner.qn.empty() ? "namespace" : "package");
  }

  static K homeKind(Home h) { return h == Home::req ? K::req : h == Home::uc ? K::uc : K::bdd; }

  void comment(const Statement& s, const Reading& r, Owner& owner) {
    const Token& body = r.tokens.back();
    if (!owner.isPackage) {  // a comment inside an element documents it
      core::Node& n = nodeAt(owner.nodeModel, owner.node);
      const std::string text = body.kind == TokenKind::comment ? commentText(body.text) : std::string();
      if (!text.empty()) appendLine(n, detailKey(n.type, Detail::documentation), text, "\n\n");
      report_.account(Disposition::property);
      if (r.kind) partial(s, "comment", r.header.name, "kept as documentation of its owner");
      loseMembers(s, "a comment");
      return;
    }
    core::Node n;
    n.type = S::umlNote;
    n.properties["body"] = body.kind == TokenKind::comment ? commentText(body.text) : std::string();
    if (r.kind) {
      n.text = r.header.name;
      if (!r.header.rest.empty() && r.header.rest != joinTokens(r.tokens.subspan(r.tokens.size() - 1)))
        partial(s, "comment", r.header.name, "what the comment is about is not drawn");
    }
    addNode(memberModel(owner, Home::bdd), std::move(n), false);
    report_.account(Disposition::node);
    loseMembers(s, "a comment");
  }

  void stateAction(const Statement& s, const Reading& r, Owner& owner) {
    const auto [model, node] = ownerNode(owner);
    if (node < 0) {
      lose(s, std::string(r.kind->phrase), "", "state action outside a state not drawn");
      return;
    }
    core::Node& n = nodeAt(model, node);
    const std::string_view word = r.kind->phrase;
    const std::string key = word == "do" ? "doActivity" : std::string(word);
    std::string text = fullText(s);
    text = text.size() > word.size() ? text.substr(word.size() + 1) : std::string();
    if (schemaHas(n.type, key) && !n.properties.count(key)) {
      n.properties[key] = text;
    } else {
      appendLine(n, compartmentKey(Compartment::members), fullText(s));
    }
    countTree(s, Disposition::property);
  }

  void expression(const Statement& s, const Reading& r, Owner& owner) {
    (void)r;
    const auto [model, node] = ownerNode(owner);
    if (node < 0) {
      lose(s, "expression", "", "expression outside an element not drawn");
      return;
    }
    core::Node& n = nodeAt(model, node);
    if (s.semicolon || s.hasBody)
      appendLine(n, compartmentKey(Compartment::members), fullText(s));
    else
      appendLine(n, detailKey(n.type, Detail::expression), fullText(s));
    countTree(s, Disposition::property);
  }

  // ---- declarations ----

  /// Whether an element's body needs a diagram of its own, and of which kind.
  std::optional<K> ownDiagram(const Statement& s, const KindInfo* kind, bool stateLike) {
    if (!s.hasBody || !kind) return std::nullopt;
    bool relation = false, message = false, behaviour = false, connect = false, bind = false, constraint = false;
    Owner probe;
    probe.isPackage = false;
    probe.stateLike = stateLike;
    for (const Statement& c : s.body) {
      std::vector<SyntaxError> ignored;
      std::swap(ignored, headerErrors_);
      const Reading r = classify(c, probe);
      std::swap(ignored, headerErrors_);
      if (r.act == Act::relationship || r.act == Act::thenDeclaration) {
        const std::string_view p = r.kind ? r.kind->phrase : std::string_view();
        // Satisfy and verify are drawn in the package's requirement diagram.
        if (p == "satisfy" || p.starts_with("verify")) continue;
        relation = true;
        message = message || p == "message";
        connect = connect || p == "connect" || p == "connection" || p == "interface";
        bind = bind || p == "bind" || p == "binding";
      }
      if (r.act == Act::usage && r.kind->nodeInOwnModel &&
          (r.kind->ownKind == K::act || r.kind->ownKind == K::stm) && kind->ownKind == r.kind->ownKind)
        behaviour = true;
      if (r.act == Act::usage && r.kind->shape == S::sysmlConstraintUsage) constraint = true;
    }
    if (!relation && !behaviour) return std::nullopt;
    if (message) return K::sd;
    if (kind->ownKind == K::ibd && bind && constraint && !connect) return K::par;
    return kind->ownKind;
  }

  /// Sets the header's details on a node.
  void details(core::Node& n, const Header& h, bool definition) {
    auto set = [&](Detail d, const std::string& v) {
      if (!v.empty()) n.properties[std::string(detailKey(n.type, d))] = v;
    };
    auto list = [](const std::vector<std::string>& v) {
      std::string out;
      for (std::size_t i = 0; i < v.size(); ++i) out += (i ? ", " : "") + v[i];
      return out;
    };
    std::vector<std::string> typing = h.typedBy;
    if (typing.size() == 1 && typing[0].starts_with("~") && schemaHas(n.type, "isConjugated")) {
      typing[0].erase(0, 1);
      n.properties["isConjugated"] = "true";
    }
    set(Detail::typing, list(typing));
    set(definition ? Detail::specializes : Detail::subsets, list(h.specializes));
    set(Detail::redefines, list(h.redefines));
    set(Detail::references, list(h.references));
    set(Detail::multiplicity, h.multiplicity);
    set(Detail::value, h.value);
    set(Detail::shortName, h.shortName);
    set(Detail::clause, h.rest);
  }

  void declaration(const Statement& s, const Reading& r, Owner& owner, Previous& prev) {
    const Header& h = r.header;
    const KindInfo* kind = r.kind;
    const bool definition = kind && kind->role == Role::definition;

    // Body-less members of an element go to its compartments.
    if (!owner.isPackage && !definition && compact(s) && !(owner.ownModel >= 0 && kind && kind->nodeInOwnModel)) {
      compartmentLine(s, r, owner);
      return;
    }
    if (!owner.isPackage && !definition && !kind && compact(s)) {
      compartmentLine(s, r, owner);
      return;
    }

    core::Node n;
    n.type = kind ? kind->shape : S::sysmlValueProperty;
    if (n.type == S::rect) n.type = S::sysmlPartUsage;
    n.text = h.name;
    std::string segment = h.name.empty() ? std::string() : (h.name.find('.') != std::string::npos ? h.name : quoteName(h.name));
    if (segment.empty() && !h.redefines.empty()) segment = lastSegment(h.redefines.front());
    if (segment.empty()) segment = "<" + std::to_string(++owner.unnamed) + ">";
    const std::string qn = joinQualified(owner.qn, segment);
    n.properties[std::string(kQualifiedNameKey)] = qn;

    std::string keyword;
    for (const std::string& p : h.prefixes) {
      if (p == "abstract" && schemaHas(n.type, "isAbstract")) {
        n.properties["isAbstract"] = "true";
        continue;
      }
      if ((p == "in" || p == "out" || p == "inout") && schemaHas(n.type, "direction")) {
        n.properties["direction"] = p;
        continue;
      }
      keyword += p + " ";
    }
    if (kind) keyword += kind->phrase;
    else if (!keyword.empty()) keyword.pop_back();
    if (keyword != defaultPhraseOf(n.type)) n.properties[std::string(kKeywordKey)] = keyword;
    details(n, h, definition);

    const bool stateLike = kind && kind->ownKind == K::stm;
    const std::optional<K> own = ownDiagram(s, kind, stateLike);

    int model = -1;
    if (owner.isPackage) {
      model = memberModel(owner, kind ? kind->home : Home::bdd, homeKind(kind ? kind->home : Home::bdd));
    } else {
      model = memberModel(owner, Home::bdd);
    }
    const int index = addNode(model, std::move(n), true);
    report_.account(Disposition::node);
    // Nesting outside an own diagram is drawn as composition (usages) or
    // containment (definitions).
    if (!owner.isPackage && owner.ownModel < 0 && owner.nodeModel == model)
      addEdge(model, owner.node, index, definition ? E::sysmlContainment : E::composition, "");
    if (!owner.isPackage && owner.ownModel == model) prev = Previous{index, {}, model};
    if (owner.isPackage && (kind && (kind->shape == S::sysmlActionUsage || kind->ownKind == K::act)))
      prev = Previous{index, {}, model};

    Owner inner;
    inner.isPackage = false;
    inner.qn = qn;
    inner.packageQn = owner.packageQn;
    inner.packageNode = owner.packageNode;
    inner.nodeModel = model;
    inner.node = index;
    inner.shape = kind ? kind->shape : S::sysmlValueProperty;
    inner.stateLike = stateLike;
    if (own) inner.ownModel = modelFor(qn, *own, kind->phrase);
    members(s.body, inner);
  }

  void compartmentLine(const Statement& s, const Reading& r, Owner& owner) {
    core::Node& n = nodeAt(owner.nodeModel, owner.node);
    Compartment c = r.kind ? r.kind->compartment : Compartment::values;
    const bool directed = std::any_of(r.header.prefixes.begin(), r.header.prefixes.end(),
                                      [](const std::string& p) { return p == "in" || p == "out" || p == "inout"; });
    if (!r.kind && n.type == S::sysmlEnumeration) c = Compartment::literals;
    if (directed || (r.kind && r.kind->phrase == "return")) c = Compartment::parameters;
    std::string key(compartmentKey(c));
    if (c == Compartment::parameters && !schemaHas(n.type, key) && schemaHas(n.type, "flowProperties")) key = "flowProperties";
    if (c == Compartment::none || !schemaHas(n.type, key)) {
      c = Compartment::members;
      key = compartmentKey(c);
    }
    std::string line = fullText(s);
    const std::string_view word = compartmentWord(c);
    if (!word.empty() && line.size() > word.size() && line.starts_with(word) && line[word.size()] == ' ')
      line.erase(0, word.size() + 1);
    appendLine(n, key, line);
    countTree(s, Disposition::property);
  }

  // ---- relationships ----

  S endHint(E type, std::string_view text) const {
    if (text == "start") return S::umlInitialNode;
    if (text == "done") return S::umlFinalNode;
    switch (type) {
      case E::sysmlTransition: return S::sysmlStateUsage;
      case E::sysmlControlFlow: return S::sysmlActionUsage;
      case E::sysmlObjectFlow: return S::sysmlActionUsage;
      case E::association:
      case E::sysmlBindingConnector:
      case E::sysmlItemFlow: return text.find('.') != std::string_view::npos ? S::sysmlPort : S::sysmlPartUsage;
      default: return S::sysmlPartUsage;
    }
  }

  /// Edge text: the written words without the edge type's own phrase.
  static std::string edgeText(std::string text, E type) {
    const std::string_view def = defaultPhraseOf(type);
    if (!def.empty() && text.starts_with(def) && (text.size() == def.size() || text[def.size()] == ' '))
      text.erase(0, std::min(text.size(), def.size() + 1));
    return text;
  }

  void relationship(const Statement& s, const Reading& r, Owner& owner, Previous& prev) {
    const auto h = r.tokens;
    const std::string phrase = r.kind ? std::string(r.kind->phrase) : std::string("if");
    PendingEdge p;
    p.context = owner.qn;
    bool ok = true;
    const auto npos = std::string_view::npos;
    auto span = [&](std::size_t a, std::size_t b) { return h.subspan(a, (b == npos ? h.size() : b) - a); };

    if (phrase == "connect" || phrase == "connection" || phrase == "interface" || phrase == "connector") {
      p.type = E::association;
      const std::size_t c = findTop(h, "connect");
      p.text = joinTokens(span(0, c));
      if (c + 1 < h.size() && h[c + 1].is("(")) {
        std::vector<std::string> ends;
        std::size_t begin = c + 2, depth = 0;
        for (std::size_t i = c + 2; i < h.size(); ++i) {
          if (h[i].is("(") || h[i].is("[")) ++depth;
          else if ((h[i].is(")") || h[i].is("]")) && depth > 0) --depth;
          else if (depth == 0 && (h[i].is(",") || h[i].is(")"))) {
            ends.push_back(endText(span(begin, i)));
            begin = i + 1;
            if (h[i].is(")")) break;
          }
        }
        ok = ends.size() >= 2;
        if (ok) p.source = ends[0], p.target = ends[1];
        if (ends.size() > 2) partial(s, phrase, r.header.name, "only the first two ends of the connection are drawn");
      } else {
        const std::size_t to = findTop(h, "to", c);
        ok = to != npos;
        if (ok) p.source = endText(span(c + 1, to)), p.target = endText(span(to + 1, npos));
        if (ok && (endDecorated(span(c + 1, to)) || endDecorated(span(to + 1, npos))))
          partial(s, phrase, r.header.name, "names and multiplicities of the connection ends not kept");
      }
    } else if (phrase == "bind" || phrase == "binding") {
      p.type = E::sysmlBindingConnector;
      const std::size_t b = findTop(h, "bind");
      const std::size_t eq = findTop(h, "=", b);
      p.text = joinTokens(span(0, b));
      ok = eq != npos;
      if (ok) p.source = endText(span(b + 1, eq)), p.target = endText(span(eq + 1, npos));
    } else if (phrase == "allocate" || phrase == "allocation") {
      p.type = E::sysmlAllocate;
      const std::size_t a = findTop(h, "allocate");
      const std::size_t to = findTop(h, "to", a);
      p.text = joinTokens(span(0, a));
      ok = to != npos;
      if (ok) p.source = endText(span(a + 1, to)), p.target = endText(span(to + 1, npos));
    } else if (phrase == "flow" || phrase == "succession flow" || phrase == "message" || phrase == "dependency") {
      p.type = phrase == "message" ? E::sysmlAsyncMessage : phrase == "dependency" ? E::dependency : E::sysmlItemFlow;
      if (p.type == E::sysmlItemFlow && owner.ownModel >= 0 &&
          models_[static_cast<std::size_t>(owner.ownModel)].m.frame.kind == K::act)
        p.type = E::sysmlObjectFlow;
      const std::size_t from = findTop(h, "from");
      const std::size_t to = findLastTop(h, "to");
      ok = to != npos;
      if (ok && from != npos && from < to) {
        p.text = joinTokens(span(0, from));
        p.source = endText(span(from + 1, to));
      } else if (ok) {
        std::size_t a = to;
        while (a > 1 && (h[a - 1].isName() || h[a - 1].is(".") || h[a - 1].is("::"))) --a;
        ok = a < to && a >= 1;
        p.text = joinTokens(span(0, a));
        p.source = joinTokens(span(a, to));
      }
      if (ok) p.target = endText(span(to + 1, npos));
      if (p.type == E::sysmlObjectFlow && p.text.starts_with("flow")) p.text.erase(0, std::min<std::size_t>(p.text.size(), 5));
    } else if (phrase == "first" || phrase == "succession" || phrase == "then" || phrase == "if") {
      p.type = owner.stateLike ? E::sysmlTransition : E::sysmlControlFlow;
      const std::size_t f = findTop(h, "first");
      const std::size_t t = findLastTop(h, "then");
      std::string pre = joinTokens(span(0, f == npos ? 0 : f));
      if (f != npos) {
        const std::size_t aEnd = chainEnd(h, f + 1);
        p.source = joinTokens(span(f + 1, aEnd));
        if (t == npos) {  // "first x;" names where the next "then" starts
          prev = Previous{-1, p.source};
          if (p.source.empty()) return lose(s, phrase, "", "succession without ends not drawn");
          firstOnly_.push_back({owner.ownModel >= 0 ? owner.ownModel : memberModelFor(owner, p.type), owner.qn, p.source,
                                endHint(p.type, p.source)});
          report_.account(Disposition::node);
          loseMembers(s, "a succession");
          return;
        }
        const std::string mid = joinTokens(span(aEnd, t));
        p.text = pre.empty() ? mid : mid.empty() ? pre : pre + " " + mid;
      } else {
        // "then x;" or "if g then x;": from the body's previous node.
        if (!prev.set()) prev = Previous{-1, "start"};
        p.source = prev.text;
        p.sourceNode = prev.node;
        p.text = phrase == "if" ? joinTokens(span(0, t)) : std::string();
      }
      ok = t != npos;
      if (ok) p.target = joinTokens(span(t + 1, npos));
      if (p.type == E::sysmlTransition) p.text = edgeText(p.text, E::sysmlControlFlow);
    } else if (phrase == "transition" || phrase == "accept") {
      p.type = E::sysmlTransition;
      const std::size_t t = findLastTop(h, "then");
      const std::size_t f = findTop(h, "first");
      ok = t != npos;
      std::string name, mid;
      if (phrase == "transition") {
        const std::size_t nameEnd = f != npos ? f : t;
        name = joinTokens(span(1, nameEnd == npos ? 1 : nameEnd));
        if (f != npos) {
          const std::size_t aEnd = chainEnd(h, f + 1);
          p.source = joinTokens(span(f + 1, aEnd));
          mid = joinTokens(span(aEnd, t));
        } else {
          mid = std::string();
        }
      } else {
        mid = joinTokens(span(0, t));
      }
      if (p.source.empty()) {
        if (!prev.set()) prev = Previous{-1, "start"};
        p.source = prev.text;
        p.sourceNode = prev.node;
      }
      p.text = name.empty() ? mid : mid.empty() ? name : name + " " + mid;
      if (ok) p.target = joinTokens(span(t + 1, npos));
    } else if (phrase == "satisfy") {
      p.type = E::sysmlSatisfy;
      const std::size_t by = findTop(h, "by");
      const std::size_t end = by == npos ? h.size() : by;
      std::size_t a = end;
      while (a > 1 && (h[a - 1].isName() || h[a - 1].is(".") || h[a - 1].is("::"))) --a;
      p.text = joinTokens(span(1, a));
      p.target = joinTokens(span(a, end));
      ok = a < end;
      if (by != npos) p.source = joinTokens(span(by + 1, npos));
      else ownerSource(p, owner);
      placeInPackage(p, owner, K::req);
    } else if (phrase == "verify" || phrase == "verify requirement") {
      p.type = E::sysmlVerify;
      std::size_t a = h.size();
      while (a > 1 && (h[a - 1].isName() || h[a - 1].is(".") || h[a - 1].is("::"))) --a;
      p.text = joinTokens(span(1, a));
      p.target = joinTokens(span(a, npos));
      ok = a < h.size() && !owner.isPackage;
      if (ok) ownerSource(p, owner);
      placeInPackage(p, owner, K::req);
    } else {
      ok = false;
    }
    if (!ok || p.target.empty() || (p.source.empty() && p.sourceNode < 0)) {
      lose(s, phrase, r.header.name, "relationship whose ends could not be read not drawn");
      return;
    }
    p.text = edgeText(p.text, p.type);
    if (p.model < 0) p.model = owner.ownModel >= 0 ? owner.ownModel : memberModelFor(owner, p.type);
    if (p.sourceNode >= 0 && prev.model != p.model) sourceByName(p, prev.model);
    p.sourceHint = endHint(p.type, p.source);
    p.targetHint = endHint(p.type, p.target);
    if (p.type == E::sysmlSatisfy) p.targetHint = S::sysmlRequirementUsage;
    if (p.type == E::sysmlControlFlow || p.type == E::sysmlTransition) prev = Previous{-1, p.target};
    loseMembers(s, "a relationship");
    pending_.push_back(std::move(p));
    report_.account(Disposition::edge);
  }

  /// A previous node of another model: named instead, so that the edge's
  /// model gets a node of its own for it.
  void sourceByName(PendingEdge& p, int model) {
    const core::Node& n = nodeAt(model, p.sourceNode);
    const std::string qn = propertyOf(n, kQualifiedNameKey);
    p.source = qn.empty() ? n.text : "\x01" + qn;
    p.sourceNode = -1;
  }

  /// The model a relationship in an owner without a diagram of its own goes to.
  int memberModelFor(const Owner& owner, E type) {
    K kind = K::bdd;
    if (type == E::sysmlSatisfy || type == E::sysmlVerify) kind = K::req;
    else if (type == E::sysmlAsyncMessage) kind = K::sd;
    else if (type == E::sysmlControlFlow || type == E::sysmlObjectFlow) kind = K::act;
    else if (type == E::sysmlTransition) kind = K::stm;
    if (owner.isPackage) return modelFor(owner.packageQn, kind, owner.qn.empty() ? "namespace" : "package");
    return owner.nodeModel;
  }

  void ownerSource(PendingEdge& p, const Owner& owner) {
    if (owner.isPackage) return;
    p.source = std::string();
    p.sourceNode = -1;
    p.context = owner.qn;
    p.source = "\x01" + owner.qn;  // resolved to the owner's element
  }

  void placeInPackage(PendingEdge& p, const Owner& owner, K kind) {
    p.model = modelFor(owner.packageQn, kind, owner.packageQn.empty() ? "namespace" : "package");
  }

  void thenDeclaration(const Statement& s, const Reading& r, Owner& owner, Previous& prev) {
    // "then action x;": the declaration after "then", and a succession to it.
    Reading inner = r;
    inner.tokens = r.tokens.subspan(1);
    inner.header = readHeader(inner.tokens, headerErrors_);
    inner.kind = inner.header.kind;
    inner.act = inner.kind ? Act::usage : Act::feature;
    const Previous before = prev.set() ? prev : Previous{-1, "start"};
    const int model = owner.isPackage ? -1 : (owner.ownModel >= 0 ? owner.ownModel : owner.nodeModel);
    const std::size_t nodesBefore = model >= 0 ? models_[static_cast<std::size_t>(model)].m.nodes.size() : 0;
    Owner& o = owner;
    // Inside an own diagram the declaration is always a node.
    Statement copy = s;
    copy.first += 1;
    declarationNode(copy, inner, o, prev);
    const bool named = !inner.header.name.empty() || !inner.header.redefines.empty();
    if (!named && model >= 0) partial(s, "then", "", "succession to an unnamed element not drawn");
    if (named && model >= 0 && models_[static_cast<std::size_t>(model)].m.nodes.size() > nodesBefore) {
      PendingEdge p;
      p.model = model;
      p.context = owner.qn;
      p.type = owner.stateLike ? E::sysmlTransition : E::sysmlControlFlow;
      p.source = before.text;
      p.sourceNode = before.node;
      if (p.sourceNode >= 0 && before.model != model) sourceByName(p, before.model);
      p.targetNode = static_cast<int>(nodesBefore);
      p.sourceHint = endHint(p.type, p.source);
      pending_.push_back(std::move(p));
      prev = Previous{static_cast<int>(nodesBefore), {}, model};
    }
  }

  void declarationNode(const Statement& s, const Reading& r, Owner& owner, Previous& prev) {
    // As declaration(), but never a compartment line.
    const int saved = owner.ownModel;
    if (!owner.isPackage && owner.ownModel < 0) owner.ownModel = owner.nodeModel;
    Reading forced = r;
    static const KindInfo* action = kindByPhrase("action");
    if (!forced.kind) forced.kind = action;
    if (!forced.kind->nodeInOwnModel) forced.kind = action;
    forced.header.kind = forced.kind;
    declaration(s, forced, owner, prev);
    owner.ownModel = saved;
  }

  // ---- pass two: the ends ----

  /// The node for a written end in the edge's model: a node of the model,
  /// an element declared elsewhere drawn again, or a reference.
  int endNode(ModelBuild& b, int model, const std::string& context, const std::string& written, S hint) {
    if (written.starts_with("\x01")) {
      const std::string qn = written.substr(1);
      return copyOf(b, model, qn, hint, displayOf(lastSegment(qn)));
    }
    const std::string path = chainAsPath(written);
    for (std::string scope = context;; scope = parentOf(scope)) {
      const std::string qn = joinQualified(scope, path);
      if (const auto it = b.byQn.find(qn); it != b.byQn.end()) return static_cast<int>(it->second);
      if (elements_.count(qn)) return copyOf(b, model, qn, hint, displayOf(written));
      if (scope.empty()) break;
    }
    if (path.find("::") == std::string::npos) {
      if (const auto it = bySimpleName_.find(displayOf(path)); it != bySimpleName_.end())
        return copyOf(b, model, it->second, hint, displayOf(written));
    }
    if (const auto it = b.byRef.find(written); it != b.byRef.end()) return static_cast<int>(it->second);
    core::Node n;
    n.type = hint;
    n.text = displayOf(written);
    n.properties[std::string(kReferenceKey)] = "true";
    const int index = addNode(model, std::move(n), false);
    models_[static_cast<std::size_t>(model)].byRef.emplace(written, static_cast<std::size_t>(index));
    return index;
  }

  int copyOf(ModelBuild& b, int model, const std::string& qn, S hint, std::string text) {
    if (const auto it = b.byQn.find(qn); it != b.byQn.end()) return static_cast<int>(it->second);
    core::Node n;
    n.type = hint;
    if (const auto it = elements_.find(qn); it != elements_.end()) {
      const core::Node& decl = nodeAt(it->second.first, it->second.second);
      n.type = decl.type;
      text = decl.text;
    }
    n.text = std::move(text);
    n.properties[std::string(kQualifiedNameKey)] = qn;
    n.properties[std::string(kReferenceKey)] = "true";
    return addNode(model, std::move(n), false);
  }

  void resolve(PendingEdge& p) {
    ModelBuild& b = models_[static_cast<std::size_t>(p.model)];
    const int source = p.sourceNode >= 0 ? p.sourceNode : endNode(b, p.model, p.context, p.source, p.sourceHint);
    const int target = p.targetNode >= 0 ? p.targetNode : endNode(b, p.model, p.context, p.target, p.targetHint);
    addEdge(p.model, source, target, p.type, p.text);
  }

 public:
  std::vector<SyntaxError>& headerErrors() { return headerErrors_; }

 private:
  const SyntaxTree& tree_;
  InterchangeReport& report_;
  std::vector<ModelBuild> models_;
  std::map<std::pair<std::string, int>, int> modelIndex_;
  std::unordered_map<std::string, std::pair<int, int>> elements_;  // qualified name -> declaring node
  std::unordered_map<std::string, std::string> bySimpleName_;      // first declaration of a simple name
  std::vector<PendingEdge> pending_;
  std::vector<FirstOnly> firstOnly_;
  std::vector<SyntaxError> headerErrors_;
  int pkgModel_ = -1;
};

}  // namespace

SysmlContent readSysml(std::string text, std::string_view fileName) {
  SysmlContent out;
  out.report.file = std::string(fileName);
  SyntaxTree tree = parseSysml(std::move(text));
  out.report.errors = tree.errors;
  if (tree.refused) {
    out.status = ImportStatus::unreadable;
    return out;
  }
  Mapper mapper(tree, out.report);
  out.models = mapper.run();
  for (const SyntaxError& e : mapper.headerErrors()) out.report.errors.push_back(e);
  std::stable_sort(out.report.errors.begin(), out.report.errors.end(), [](const SyntaxError& a, const SyntaxError& b) {
    return a.line != b.line ? a.line < b.line : a.column < b.column;
  });
  for (const ImportedModel& m : out.models) out.report.models.push_back({m.id, m.frame.kind, m.nodes.size(), m.edges.size()});
  if (!out.report.errors.empty()) out.status = out.report.total() == 0 ? ImportStatus::unreadable : ImportStatus::partial;
  return out;
}

void placeImportedModel(ImportedModel& model) { placeNodes(model.nodes, model.edges, model.frame.kind); }

core::Project projectOf(const std::vector<ImportedModel>& models, std::string_view name) {
  core::Project p;
  p.name = std::string(name);
  for (const ImportedModel& m : models) {
    core::Model cm;
    cm.id = m.id;
    cm.name = m.name;
    cm.frame = m.frame;
    cm.diagramXml = io::serializeDiagram(m.nodes, m.edges);
    io::insertDiagramFrame(cm.diagramXml, m.frame);
    p.models.push_back(std::move(cm));
  }
  return p;
}

SysmlImport importSysml(std::string text, std::string_view fileName) {
  SysmlContent content = readSysml(std::move(text), fileName);
  for (ImportedModel& m : content.models) placeImportedModel(m);
  SysmlImport out;
  // The project is named after the file, without folders and extension.
  std::string_view stem = fileName.substr(std::min(fileName.size(), fileName.find_last_of("/\\") + 1));
  stem = stem.substr(0, stem.rfind('.'));
  out.project = projectOf(content.models, stem.empty() ? fileName : stem);
  out.report = std::move(content.report);
  out.status = content.status;
  return out;
}

}  // namespace modelyne::interchange
