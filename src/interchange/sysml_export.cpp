#include "interchange/sysml_export.h"

#include <array>
#include <map>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "interchange/sysml_header.h"
#include "interchange/sysml_keywords.h"
#include "interchange/sysml_properties.h"
#include "io/diagram_reader.h"

namespace modelyne::interchange {

namespace {

using S = core::ShapeType;
using E = core::EdgeType;

constexpr std::string_view kIndent = "  ";

// ---- Names ----

std::string parentOf(const std::string& qn) {
  const std::vector<std::string> parts = splitQualified(qn);
  std::string out;
  for (std::size_t i = 0; i + 1 < parts.size(); ++i) out += (i ? "::" : "") + parts[i];
  return out;
}

/// A displayed chain ("Vehicle Example::v.engine") written with each
/// segment quoted as needed.
std::string writeChain(std::string_view display) {
  std::string out, segment;
  auto flush = [&] {
    out += quoteName(segment);
    segment.clear();
  };
  for (std::size_t i = 0; i < display.size(); ++i) {
    if (display[i] == ':' && i + 1 < display.size() && display[i + 1] == ':') {
      flush();
      out += "::";
      ++i;
    } else if (display[i] == '.') {
      flush();
      out += '.';
    } else {
      segment += display[i];
    }
  }
  flush();
  return out;
}

/// A node's name as written in its declaration.
std::string writtenName(const std::string& text) {
  if (text.find('.') != std::string::npos && isWrittenName(writeChain(text))) return writeChain(text);
  return quoteName(text);
}

std::vector<std::string> lines(const std::string& value) {
  std::vector<std::string> out;
  std::size_t start = 0;
  while (start <= value.size()) {
    const std::size_t nl = value.find('\n', start);
    out.push_back(value.substr(start, nl == std::string::npos ? std::string::npos : nl - start));
    if (nl == std::string::npos) break;
    start = nl + 1;
  }
  return out;
}

bool firstWordReserved(std::string_view line) {
  std::size_t end = 0;
  while (end < line.size() && (std::isalnum(static_cast<unsigned char>(line[end])) || line[end] == '_')) ++end;
  return end > 0 && (isReservedWord(line.substr(0, end)) || line.substr(0, 1) == "#");
}

// Compartment keys in the order they are written, with the word a line
// stands for when it names none of its own.
struct LineKey {
  std::string_view key;
  std::string_view word;
};
constexpr std::array kLineKeys{
    LineKey{"values", "attribute"},   LineKey{"parts", "part"},   LineKey{"references", "ref"},
    LineKey{"ports", "port"},         LineKey{"constraints", "constraint"},
    LineKey{"literals", "enum"},      LineKey{"parameters", ""},  LineKey{"flowProperties", ""},
    LineKey{"sysmlMembers", ""},
};

// State actions: property key and the word that writes it.
constexpr std::array<std::pair<std::string_view, std::string_view>, 3> kStateActions{
    {{"entry", "entry"}, {"doActivity", "do"}, {"exit", "exit"}}};

// ---- The element tree ----

struct ModelView {
  std::string context;
  const core::DiagramFrame* frame = nullptr;
  const std::vector<core::Node>* nodes = nullptr;
  const std::vector<core::Edge>* edges = nullptr;
};

struct Element {
  std::string qn;
  const core::Node* node = nullptr;  ///< null for a package made up from a qualified name
  std::vector<std::size_t> children;
  std::vector<std::pair<const core::Edge*, std::size_t>> edges;  ///< with the model they are in
  std::vector<const core::Node*> notes;
  std::vector<std::string> extraSpecializes;  ///< from generalization edges of drawn diagrams
  /// References without edges: where a later succession starts ("first x;").
  std::vector<std::pair<const core::Node*, std::size_t>> starts;
};

class Writer {
 public:
  Writer(std::vector<ModelView> views, InterchangeReport& report) : views_(std::move(views)), report_(report) {}

  std::string run() {
    elements_.push_back({});  // 0: the root
    collect();
    attachEdges();
    std::string out;
    body(0, 0, out);
    return out;
  }

 private:
  // ---- collecting ----

  std::size_t elementFor(const std::string& qn) {
    if (qn.empty()) return 0;
    if (const auto it = index_.find(qn); it != index_.end()) return it->second;
    const std::size_t parent = elementFor(parentOf(qn));
    elements_.push_back({qn, nullptr, {}, {}, {}, {}, {}});
    const std::size_t i = elements_.size() - 1;
    index_.emplace(qn, i);
    elements_[parent].children.push_back(i);
    return i;
  }

  std::string qnOf(const core::Node& n, const ModelView& v) const {
    const std::string qn = propertyOf(n, kQualifiedNameKey);
    if (!qn.empty()) return qn;
    const std::string name = n.text.empty() ? n.id : n.text;
    return v.context.empty() ? quoteName(name) : v.context + "::" + quoteName(name);
  }

  void collect() {
    for (std::size_t m = 0; m < views_.size(); ++m) {
      const ModelView& v = views_[m];
      if (!v.context.empty()) elementFor(v.context);
      for (const core::Node& n : *v.nodes) {
        if (propertyOf(n, kReferenceKey) == "true") continue;
        if (n.type == S::umlNote) {
          elements_[elementFor(v.context)].notes.push_back(&n);
          continue;
        }
        if (defaultPhraseOf(n.type).empty()) {
          report_.lose({0, std::string(core::shapeKey(n.type)), n.text, "node type without a SysML v2 form not written"});
          continue;
        }
        const std::string qn = qnOf(n, v);
        if (const auto it = index_.find(qn); it != index_.end() && elements_[it->second].node) continue;
        elements_[elementFor(qn)].node = &n;
      }
    }
    for (const ModelView& v : views_)
      for (const core::Node& n : *v.nodes)
        if (!n.fillColor.empty()) report_.lose({0, "colour", n.text, "fill colour not written", true});
    if (!views_.empty()) report_.lose({0, "position", "", "positions and sizes of nodes not written", true});
  }

  const core::Node* nodeById(const ModelView& v, const std::string& id) const {
    for (const core::Node& n : *v.nodes)
      if (n.id == id) return &n;
    return nullptr;
  }

  void attachEdges() {
    for (std::size_t m = 0; m < views_.size(); ++m) {
      const ModelView& v = views_[m];
      std::unordered_map<std::string, const core::Node*> byId;
      for (const core::Node& n : *v.nodes) byId.emplace(n.id, &n);
      std::unordered_map<std::string_view, bool> used;
      for (const core::Edge& e : *v.edges) used[e.source] = used[e.target] = true;
      for (const core::Node& n : *v.nodes)
        if (propertyOf(n, kReferenceKey) == "true" && !used.count(n.id))
          elements_[elementFor(v.context)].starts.emplace_back(&n, m);
      for (const core::Edge& e : *v.edges) {
        const auto s = byId.find(e.source), t = byId.find(e.target);
        if (s == byId.end() || t == byId.end()) {
          report_.lose({0, std::string(core::edgeKey(e.type)), e.text, "edge with a missing end not written"});
          continue;
        }
        const core::Node& src = *s->second;
        const core::Node& tgt = *t->second;
        const bool qualified = !propertyOf(src, kQualifiedNameKey).empty() && !propertyOf(tgt, kQualifiedNameKey).empty();
        if ((e.type == E::composition || e.type == E::sysmlContainment) && qualified) continue;  // nesting
        if (e.type == E::generalization) {
          const Detail d = defaultPhraseOf(src.type).ends_with("def") ? Detail::specializes : Detail::subsets;
          if (!propertyOf(src, detailKey(src.type, d)).empty()) continue;  // written with the node
          elements_[elementFor(qnOf(src, v))].extraSpecializes.push_back(endName(tgt, v, parentOf(qnOf(src, v))));
          continue;
        }
        const std::string_view phrase = defaultPhraseOf(e.type);
        if (phrase.empty()) {
          report_.lose({0, std::string(core::edgeKey(e.type)), e.text, "edge kind without a SysML v2 form not written"});
          continue;
        }
        std::size_t owner = elementFor(v.context);
        if (e.type == E::sysmlVerify || e.type == E::sysmlImport) owner = elementFor(qnOf(src, v));
        elements_[owner].edges.emplace_back(&e, m);
      }
    }
  }

  // ---- writing ----

  /// How an end is named from inside `context`.
  std::string endName(const core::Node& n, const ModelView& v, const std::string& context) const {
    std::string qn = propertyOf(n, kQualifiedNameKey);
    if (qn.empty() && propertyOf(n, kReferenceKey) == "true") return writeChain(n.text);
    if (qn.empty()) qn = qnOf(n, v);
    if (!context.empty() && qn.size() > context.size() + 2 && qn.starts_with(context) &&
        qn.compare(context.size(), 2, "::") == 0) {
      std::string rest = qn.substr(context.size() + 2);
      std::vector<std::string> parts = splitQualified(rest);
      std::string out;
      for (std::size_t i = 0; i < parts.size(); ++i) out += (i ? "." : "") + parts[i];
      return out;
    }
    return qn;
  }

  static std::pair<std::string, std::string> splitPhrase(const std::string& text, E type, EndSyntax ends) {
    std::vector<std::string_view> words;
    std::size_t pos = 0;
    while (words.size() < 4 && pos < text.size()) {
      const std::size_t sp = text.find(' ', pos);
      words.push_back(std::string_view(text).substr(pos, sp == std::string::npos ? std::string::npos : sp - pos));
      if (sp == std::string::npos) break;
      pos = sp + 1;
    }
    std::size_t matched = 0;
    const KindInfo* k = findKind(words, matched);
    // Usages that carry their ends ("connection c connect a to b") name the
    // relationship too.
    const bool carrier = k && k->role == Role::usage &&
                         (k->phrase == "connection" || k->phrase == "interface" || k->phrase == "allocation" ||
                          k->phrase == "binding");
    const bool same = k && (carrier || (k->role == Role::relationship && k->ends == ends));
    if (same && matched > 0) {
      std::size_t cut = 0;
      for (std::size_t i = 0; i < matched; ++i) cut += words[i].size() + 1;
      return {text.substr(0, cut - 1), cut - 1 < text.size() ? text.substr(cut) : std::string()};
    }
    return {std::string(defaultPhraseOf(type)), text};
  }

  static std::string spaced(const std::string& s) { return s.empty() ? s : " " + s; }

  std::string edgeLine(const core::Edge& e, const ModelView& v, const std::string& context) const {
    const core::Node* src = nodeById(v, e.source);
    const core::Node* tgt = nodeById(v, e.target);
    const std::string a = endName(*src, v, context);
    const std::string b = endName(*tgt, v, context);
    const KindInfo* k = kindByPhrase(defaultPhraseOf(e.type));
    const EndSyntax ends = k ? k->ends : EndSyntax::fromTo;
    auto [phrase, rest] = splitPhrase(e.text, e.type, ends);
    switch (ends) {
      case EndSyntax::connectTo:
        if (phrase == "connect" && rest.starts_with("#")) return rest + " connect " + a + " to " + b + ";";
        if (phrase == "connect" && !rest.empty()) phrase = "connection";
        return phrase == "connect" ? "connect " + a + " to " + b + ";"
                                   : phrase + spaced(rest) + " connect " + a + " to " + b + ";";
      case EndSyntax::bindEquals:
        if (phrase == "bind" && rest.empty()) return "bind " + a + " = " + b + ";";
        return "binding" + spaced(rest) + " bind " + a + " = " + b + ";";
      case EndSyntax::fromTo: return phrase + spaced(rest) + " from " + a + " to " + b + ";";
      case EndSyntax::firstThen: {
        if (phrase != "succession") return "first " + a + spaced(rest) + " then " + b + ";";
        // "succession s if g": the name before "first", the guard after it.
        std::string name = rest, guard;
        if (const std::size_t at = (" " + rest).find(" if "); at != std::string::npos) {
          name = at == 0 ? std::string() : rest.substr(0, at - 1);
          guard = rest.substr(at);
        }
        return "succession" + spaced(name) + " first " + a + spaced(guard) + " then " + b + ";";
      }
      case EndSyntax::transition: {
        std::string name, mid = rest;
        const LexResult lx = lexSysml(rest);
        if (lx.tokens.size() > 1 && (lx.tokens[0].kind == TokenKind::quotedName ||
                                     (lx.tokens[0].kind == TokenKind::name && !isReservedWord(lx.tokens[0].text)))) {
          name = std::string(lx.tokens[0].text);
          mid = rest.size() > name.size() ? rest.substr(name.size() + 1) : std::string();
        }
        return "transition" + spaced(name) + " first " + a + spaced(mid) + " then " + b + ";";
      }
      case EndSyntax::satisfyBy: return "satisfy" + spaced(rest) + " " + b + " by " + a + ";";
      case EndSyntax::ownerTo: return phrase + spaced(rest) + " " + b + ";";
      case EndSyntax::allocateTo:
        if (phrase == "allocate" && rest.empty()) return "allocate " + a + " to " + b + ";";
        return "allocation" + spaced(rest) + " allocate " + a + " to " + b + ";";
      case EndSyntax::import: {
        if (e.text.empty()) return "import " + endName(*tgt, v, "") + "::*;";
        const std::string_view t = e.text;
        for (std::string_view vis : {"private ", "public ", "protected "})
          if (t.starts_with(vis)) return std::string(vis) + "import " + std::string(t.substr(vis.size())) + ";";
        return "import " + e.text + ";";
      }
    }
    return {};
  }

  std::string header(const Element& el) const {
    const core::Node& n = *el.node;
    // An empty keyword is kept: a feature declared without one.
    const auto kw = n.properties.find(std::string(kKeywordKey));
    std::string keyword = kw != n.properties.end() ? kw->second : std::string(defaultPhraseOf(n.type));
    std::string out;
    if (propertyOf(n, "isAbstract") == "true" && keyword.find("abstract") == std::string::npos) out += "abstract ";
    const std::string direction = propertyOf(n, "direction");
    if (!direction.empty() && direction != "none") out += direction + " ";
    out += keyword;
    if (!keyword.empty() || !out.empty()) out += " ";
    const std::string shortName = propertyOf(n, detailKey(n.type, Detail::shortName));
    if (!shortName.empty()) out += "<" + quoteName(shortName) + "> ";
    if (!n.text.empty()) out += writtenName(n.text);
    while (!out.empty() && out.back() == ' ') out.pop_back();
    std::string typing = propertyOf(n, detailKey(n.type, Detail::typing));
    if (!typing.empty()) {
      if (propertyOf(n, "isConjugated") == "true") typing = "~" + typing;
      out += (out.empty() ? ": " : " : ") + typing;
    }
    const bool definition = keyword.ends_with("def") || n.type == S::umlPackage;
    std::string special = propertyOf(n, detailKey(n.type, definition ? Detail::specializes : Detail::subsets));
    for (const std::string& s : el.extraSpecializes) special += (special.empty() ? "" : ", ") + s;
    if (!special.empty()) out += (out.empty() ? ":> " : " :> ") + special;
    const std::string redefines = propertyOf(n, detailKey(n.type, Detail::redefines));
    if (!redefines.empty()) out += (out.empty() ? ":>> " : " :>> ") + redefines;
    const std::string references = propertyOf(n, detailKey(n.type, Detail::references));
    if (!references.empty()) out += " ::> " + references;
    const std::string multiplicity = propertyOf(n, detailKey(n.type, Detail::multiplicity));
    if (!multiplicity.empty()) out += (multiplicity.front() == '[' ? "" : " ") + multiplicity;
    const std::string clause = propertyOf(n, detailKey(n.type, Detail::clause));
    if (!clause.empty()) out += " " + clause;
    const std::string value = propertyOf(n, detailKey(n.type, Detail::value));
    if (!value.empty()) out += " " + value;
    return out;
  }

  static void line(std::string& out, std::size_t depth, std::string_view text) {
    for (std::size_t i = 0; i < depth; ++i) out += kIndent;
    out.append(text);
    out += '\n';
  }

  static void comment(std::string& out, std::size_t depth, std::string_view head, const std::string& text) {
    std::string safe = text;
    for (std::size_t p = safe.find("*/"); p != std::string::npos; p = safe.find("*/", p)) safe.replace(p, 2, "* /");
    const std::vector<std::string> ls = lines(safe);
    if (ls.size() == 1) {
      line(out, depth, std::string(head) + (head.empty() ? "" : " ") + "/* " + ls[0] + " */");
      return;
    }
    line(out, depth, std::string(head) + (head.empty() ? "" : " ") + "/*");
    for (const std::string& l : ls) line(out, depth, l.empty() ? " *" : " * " + l);
    line(out, depth, " */");
  }

  /// The members of element `i` (its body, without braces) at `depth`.
  void body(std::size_t i, std::size_t depth, std::string& out) {
    const Element& el = elements_[i];
    const core::Node* n = el.node;
    if (n) {
      const std::string doc = propertyOf(*n, detailKey(n->type, Detail::documentation));
      if (!doc.empty()) comment(out, depth, "doc", doc);
      if (detailKey(n->type, Detail::documentation) != kDocumentationKey) {
        const std::string more = propertyOf(*n, kDocumentationKey);
        if (!more.empty()) comment(out, depth, "doc", more);
      }
    }
    for (const auto& [edge, model] : el.edges)
      if (edge->type == E::sysmlImport) line(out, depth, edgeLine(*edge, views_[model], el.qn));
    if (n) {
      for (const LineKey& k : kLineKeys) {
        const std::string value = propertyOf(*n, k.key);
        if (value.empty()) continue;
        for (const std::string& l : lines(value)) {
          if (l.empty()) continue;
          std::string text = (!k.word.empty() && !firstWordReserved(l)) ? std::string(k.word) + " " + l : l;
          if (!text.ends_with("}")) text += ";";
          line(out, depth, text);
        }
      }
      for (const auto& [key, word] : kStateActions) {
        const auto it = n->properties.find(std::string(key));
        if (it == n->properties.end()) continue;
        std::string text = std::string(word) + spaced(it->second);
        if (!text.ends_with("}")) text += ";";
        line(out, depth, text);
      }
    }
    // Successions from an element without a name follow it directly
    // ("then x;", "if g then x;"): there is no name to start them from.
    std::vector<std::pair<const core::Edge*, std::size_t>> fromUnnamed;
    std::unordered_map<const core::Node*, std::vector<std::size_t>> shorthand;
    for (const auto& [edge, model] : el.edges) {
      if (edge->type != E::sysmlControlFlow && edge->type != E::sysmlTransition) continue;
      const core::Node* src = nodeById(views_[model], edge->source);
      const std::vector<std::string> parts = splitQualified(src ? propertyOf(*src, kQualifiedNameKey) : std::string());
      if (!src || !parts.back().starts_with("<")) continue;
      shorthand[src].push_back(fromUnnamed.size());
      fromUnnamed.emplace_back(edge, model);
    }
    for (std::size_t c : el.children) {
      element(c, depth, out);
      const auto it = shorthand.find(elements_[c].node);
      if (it == shorthand.end()) continue;
      for (std::size_t k : it->second) {
        const auto& [edge, model] = fromUnnamed[k];
        const core::Node* tgt = nodeById(views_[model], edge->target);
        line(out, depth, edge->text + (edge->text.empty() ? "" : " ") + "then " + endName(*tgt, views_[model], el.qn) + ";");
        printed_.insert(edge);
      }
    }
    for (const core::Node* note : el.notes)
      comment(out, depth, note->text.empty() ? "" : "comment " + writtenName(note->text), propertyOf(*note, "body"));
    for (const auto& [node, model] : el.starts) line(out, depth, "first " + endName(*node, views_[model], el.qn) + ";");
    for (const auto& [edge, model] : el.edges)
      if (edge->type != E::sysmlImport && !printed_.count(edge)) line(out, depth, edgeLine(*edge, views_[model], el.qn));
    if (n) {
      const std::string expr = propertyOf(*n, detailKey(n->type, Detail::expression));
      for (const std::string& l : lines(expr))
        if (!l.empty()) line(out, depth, l);
    }
  }

  bool hasBody(const Element& el) const {
    if (!el.children.empty() || !el.edges.empty() || !el.notes.empty() || !el.starts.empty()) return true;
    const core::Node& n = *el.node;
    if (!propertyOf(n, detailKey(n.type, Detail::documentation)).empty() || !propertyOf(n, kDocumentationKey).empty())
      return true;
    if (!propertyOf(n, detailKey(n.type, Detail::expression)).empty()) return true;
    for (const LineKey& k : kLineKeys)
      if (!propertyOf(n, k.key).empty()) return true;
    for (const auto& sa : kStateActions)
      if (n.properties.count(std::string(sa.first))) return true;
    return false;
  }

  void element(std::size_t i, std::size_t depth, std::string& out) {
    const Element& el = elements_[i];
    std::string head;
    if (!el.node) {
      head = "package " + splitQualified(el.qn).back();
    } else if (el.node->type == S::umlPackage) {
      std::string keyword = propertyOf(*el.node, kKeywordKey);
      head = (keyword.empty() ? "package" : keyword) + " " + writtenName(el.node->text);
    } else {
      head = header(el);
    }
    if (el.node && el.node->type != S::umlPackage && !hasBody(el)) {
      line(out, depth, head + ";");
      return;
    }
    line(out, depth, head + " {");
    body(i, depth + 1, out);
    line(out, depth, "}");
  }

  std::vector<ModelView> views_;
  InterchangeReport& report_;
  std::vector<Element> elements_;
  std::unordered_map<std::string, std::size_t> index_;
  std::unordered_set<const core::Edge*> printed_;
};

std::string contextOf(const core::DiagramFrame& frame, const std::string& modelName) {
  if (frame.elementType == "namespace") return {};
  if (!frame.elementName.empty()) {
    // A qualified name as imported, or a plain name of a drawn diagram.
    bool written = true;
    for (const std::string& segment : splitQualified(frame.elementName))
      written = written && (isWrittenName(segment) || segment.starts_with("<"));
    return written ? frame.elementName : quoteName(frame.elementName);
  }
  return quoteName(modelName.empty() ? "Model" : modelName);
}

}  // namespace

SysmlExport exportSysml(const std::vector<ImportedModel>& models, std::string_view fileName) {
  SysmlExport out;
  out.report.file = std::string(fileName);
  out.report.unit = "elements";
  std::vector<ModelView> views;
  for (const ImportedModel& m : models) views.push_back({contextOf(m.frame, m.name), &m.frame, &m.nodes, &m.edges});
  out.text = Writer(std::move(views), out.report).run();
  return out;
}

SysmlExport exportSysml(const core::Project& project, std::string_view fileName) {
  std::vector<ImportedModel> models;
  std::vector<LossEntry> unread;
  for (const core::Model& m : project.models) {
    io::ReadError err;
    auto content = io::readDiagram(m.diagramXml, &err);
    if (!content) {
      unread.push_back({static_cast<std::uint32_t>(err.line), "model", m.name, "diagram could not be read: " + err.what});
      continue;
    }
    ImportedModel im;
    im.id = m.id;
    im.name = m.name;
    im.frame = content->frame;
    im.nodes = std::move(content->nodes);
    im.edges = std::move(content->edges);
    models.push_back(std::move(im));
  }
  SysmlExport out = exportSysml(models, fileName);
  for (LossEntry& l : unread) out.report.lose(std::move(l));
  return out;
}

}  // namespace modelyne::interchange
