#include "io/diagram_reader.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "core/document_builder.h"
#include "io/data_integration.h"
#include "io/frame_block.h"
#include "io/number_format.h"
#include "io/quoted_text.h"
#include "io/xml_escape.h"
#include "io/xml_scan.h"

namespace modelyne::io {

namespace {

// ---- Tokeniser ----

// Character classes, one table lookup per byte in the hot loops. A "<"
// inside a name or value is noted: the blocks are found by substring search.
enum : unsigned char { kSpace = 1, kNameEnd = 2, kQuote = 4, kLt = 8 };
constexpr std::array<unsigned char, 256> kCharClass = [] {
  std::array<unsigned char, 256> t{};
  for (unsigned char c : {' ', '\t', '\n', '\r'}) t[c] = kSpace | kNameEnd;
  for (unsigned char c : {'/', '>', '='}) t[c] = kNameEnd;
  t[static_cast<unsigned char>('"')] = kQuote;
  t[static_cast<unsigned char>('\'')] = kQuote;
  t[static_cast<unsigned char>('<')] = kLt;
  return t;
}();
inline unsigned char charClass(char c) noexcept { return kCharClass[static_cast<unsigned char>(c)]; }
inline bool isSpace(char c) noexcept { return charClass(c) & kSpace; }

// Equality with a literal; the fixed length lets the compiler compare inline.
template <std::size_t N>
inline bool is(std::string_view s, const char (&lit)[N]) noexcept {
  return s.size() == N - 1 && std::memcmp(s.data(), lit, N - 1) == 0;
}

// Names found by substring search wherever they stand: the two blocks, and
// the project root that makes the whole text a project wrapper.
enum Mark : std::size_t { kFrameMark, kLinksMark, kProjectMark, kMarkCount };
constexpr std::array<std::string_view, kMarkCount> kMarks = {"<DiagramFrame", "<DataIntegration", "<modelyneProject"};
constexpr std::size_t kNone = static_cast<std::size_t>(-1);

struct Attr {
  std::string_view name;
  std::string_view value;  // raw, entities not yet decoded
};

// One start or empty-element tag: its name and attributes, views into the text.
struct Tag {
  std::string_view name;
  std::vector<Attr> attrs;  // reused from tag to tag
  bool selfClosing = false;
};

// Thrown inside the reader only; turned into a ReadError at its boundary.
struct Failure {
  std::string what;
  std::size_t offset;
  std::string element;
};

// "<name>" for a message, a long name shortened.
std::string angled(std::string_view name) { return "<" + shortenedText(name) + ">"; }
std::string named(std::string_view name) { return quotedText(name, '\''); }

// Reads one diagram text into a DocumentBuilder, element by element.
class DiagramParser {
 public:
  DiagramParser(std::string_view text, core::DocumentBuilder& out) : text_(text), out_(out) {}

  void run() {
    p_ = text_.data();
    end_ = p_ + text_.size();
    // A UTF-8 byte order mark is allowed before the declaration.
    if (text_.size() >= 3 && std::memcmp(p_, "\xEF\xBB\xBF", 3) == 0) p_ += 3;
    readProlog();
    readBody();
  }

  /// Offset of the first occurrence of a mark in the whole text, or npos
  /// (after `run`).
  std::size_t markAt(Mark m) const {
    return markAt_[m] != kNone ? markAt_[m] : detail::findText(text_, kMarks[m], bodyEnd_);
  }

 private:
  [[noreturn]] void fail(std::string what, const char* at, std::string element = {}) {
    throw Failure{std::move(what), offsetOf(at), std::move(element)};
  }
  std::size_t offsetOf(const char* at) const { return static_cast<std::size_t>(at - text_.data()); }

  // ---- Where the blocks start ----

  bool blocksFound() const noexcept { return missing_ == 0; }

  // A "<" that is not the start of an element tag, or one that is.
  void noteLt(const char* at) {
    const std::string_view rest(at, static_cast<std::size_t>(end_ - at));
    for (std::size_t m = 0; m < kMarkCount; ++m) {
      if (markAt_[m] == kNone && rest.starts_with(kMarks[m])) {
        markAt_[m] = offsetOf(at);
        --missing_;
      }
    }
  }
  void noteLts(const char* begin, const char* end) {
    for (const char* p = begin; p != end && !blocksFound(); ++p)
      if (*p == '<') noteLt(p);
  }

  // ---- Scanning ----

  void skipSpace() {
    while (p_ != end_ && isSpace(*p_)) ++p_;
  }
  bool startsWith(std::string_view s) const {
    return static_cast<std::size_t>(end_ - p_) >= s.size() && std::memcmp(p_, s.data(), s.size()) == 0;
  }
  // Moves p_ to the first byte of class `stop`; a "<" on the way is noted.
  void scanUntil(unsigned char stop) {
    for (;;) {
      while (p_ != end_ && !(charClass(*p_) & (stop | kLt))) ++p_;
      if (p_ == end_ || *p_ != '<') return;
      noteLt(p_++);
    }
  }
  // The closing `quote` of the value starting at p_, or nullptr. Most values
  // end within a few bytes, where a plain loop beats a library call; the
  // loop stops at either quote and at "<" by one table lookup a byte.
  const char* valueEnd(char quote) {
    const char* p = p_;
    for (;;) {
      const char* quick = end_ - p > 16 ? p + 16 : end_;
      while (p != quick && !(charClass(*p) & (kQuote | kLt))) ++p;
      if (p == quick) break;
      if (*p == quote) return p;
      if (*p == '<') noteLt(p);
      ++p;
    }
    if (p == end_) return nullptr;
    const auto* close = static_cast<const char*>(std::memchr(p, quote, static_cast<std::size_t>(end_ - p)));
    if (close && !blocksFound()) noteLts(p, close);
    return close;
  }
  // The next "<" in [p_, end_), or nullptr.
  const char* nextLt() const {
    const char* p = p_;
    const char* quick = end_ - p > 16 ? p + 16 : end_;
    for (; p != quick; ++p)
      if (*p == '<') return p;
    if (p == end_) return nullptr;
    return static_cast<const char*>(std::memchr(p, '<', static_cast<std::size_t>(end_ - p)));
  }
  // Moves past the next `term`; fails naming `what` when the text ends first.
  void skipPast(std::string_view term, const char* what) {
    const char* start = p_;
    const std::string_view rest(p_, static_cast<std::size_t>(end_ - p_));
    const std::size_t at = rest.find(term);
    if (at == std::string_view::npos) fail(std::string("unterminated ") + what, start);
    p_ += at + term.size();
    // No mark holds a terminator, so a mark begun inside ends inside.
    const std::string_view body(start, static_cast<std::size_t>(p_ - start));
    for (std::size_t m = 0; m < kMarkCount && !blocksFound(); ++m) {
      if (markAt_[m] != kNone) continue;
      if (const std::size_t at = detail::findText(body, kMarks[m], 0); at != std::string_view::npos) {
        markAt_[m] = offsetOf(start) + at;
        --missing_;
      }
    }
  }

  // At "<!" or "<?": skips a comment, declaration or processing instruction.
  // Returns false when p_ is at an element tag instead.
  bool skipMarkup() {
    if (startsWith("<?")) {
      skipPast("?>", "processing instruction");
      return true;
    }
    if (startsWith("<!--")) {
      skipPast("-->", "comment");
      return true;
    }
    if (startsWith("<!")) {
      skipPast(">", "declaration");
      return true;
    }
    return false;
  }

  // At "<name": reads the tag up to and including its ">".
  void readTag(Tag& tag) {
    const char* start = p_;
    if (end_ - p_ > 1 && (p_[1] == 'D' || p_[1] == 'm')) noteLt(p_);
    ++p_;
    const char* nameBegin = p_;
    scanUntil(kNameEnd);
    tag.name = std::string_view(nameBegin, static_cast<std::size_t>(p_ - nameBegin));
    if (tag.name.empty()) fail("malformed tag", start);
    tag.attrs.clear();
    tag.selfClosing = false;
    for (;;) {
      skipSpace();
      if (p_ == end_) fail("unexpected end of text inside " + angled(tag.name), start, std::string(tag.name));
      if (*p_ == '>') {
        ++p_;
        return;
      }
      if (*p_ == '/') {
        if (end_ - p_ >= 2 && p_[1] == '>') {
          p_ += 2;
          tag.selfClosing = true;
          return;
        }
        fail("malformed tag " + angled(tag.name), p_, std::string(tag.name));
      }
      const char* attrBegin = p_;
      scanUntil(kNameEnd | kQuote);
      const std::string_view name(attrBegin, static_cast<std::size_t>(p_ - attrBegin));
      if (name.empty()) fail("malformed attribute in " + angled(tag.name), attrBegin, std::string(tag.name));
      skipSpace();
      if (p_ == end_ || *p_ != '=')
        fail("attribute " + named(name) + " of " + angled(tag.name) + " has no value", attrBegin, std::string(tag.name));
      ++p_;
      skipSpace();
      if (p_ == end_ || (*p_ != '"' && *p_ != '\''))
        fail("value of attribute " + named(name) + " of " + angled(tag.name) + " is not quoted", attrBegin,
             std::string(tag.name));
      const char quote = *p_++;
      const char* close = valueEnd(quote);
      if (!close)
        fail("unterminated value of attribute " + named(name) + " of " + angled(tag.name), attrBegin,
             std::string(tag.name));
      tag.attrs.push_back({name, std::string_view(p_, static_cast<std::size_t>(close - p_))});
      p_ = close + 1;
    }
  }

  // At "</": reads the closing tag's name and moves past its ">".
  std::string_view readClosingTag() {
    const char* start = p_;
    p_ += 2;
    const char* nameBegin = p_;
    scanUntil(kNameEnd);
    const std::string_view name(nameBegin, static_cast<std::size_t>(p_ - nameBegin));
    skipSpace();
    if (p_ == end_ || *p_ != '>') fail("malformed closing tag </" + shortenedText(name) + ">", start, std::string(name));
    ++p_;
    return name;
  }

  // ---- Document structure ----

  void readProlog() {
    for (;;) {
      skipSpace();
      if (p_ == end_) {
        if (text_.find_first_not_of(" \t\r\n") == std::string_view::npos) fail("the text is empty", p_);
        fail("no <diagram> element", p_);
      }
      if (*p_ != '<') fail("text before the root element", p_);
      if (skipMarkup()) continue;
      if (startsWith("</")) fail("closing tag before the root element", p_);
      const char* start = p_;
      readTag(tag_);
      if (!is(tag_.name, "diagram")) {
        if (is(tag_.name, "modelyneProject"))
          fail("root element is <modelyneProject>, a project of several models, not one diagram", start,
               "modelyneProject");
        fail("root element is " + angled(tag_.name) + ", expected <diagram>", start, std::string(tag_.name));
      }
      rootStart_ = start;
      rootClosed_ = tag_.selfClosing;
      return;
    }
  }

  void readBody() {
    if (rootClosed_) {
      bodyEnd_ = offsetOf(p_);
      return;
    }
    core::Node node;
    const char* nodeStart = nullptr;  // non-null while inside <node>...</node>
    for (;;) {
      const char* lt = nextLt();
      if (!lt) {
        if (nodeStart) fail("<node> is not closed: the text ends early", nodeStart, "node");
        fail("<diagram> is not closed: the text ends early", rootStart_, "diagram");
      }
      const char* textStart = p_;
      p_ = lt;
      if (pendingText_) {
        assignDecoded(node.text, std::string_view(textStart, static_cast<std::size_t>(p_ - textStart)));
        pendingText_ = false;
      }
      if (end_ - p_ >= 2 && (p_[1] == '!' || p_[1] == '?')) {
        skipMarkup();
        continue;
      }
      if (end_ - p_ >= 2 && p_[1] == '/') {
        const std::string_view name = readClosingTag();
        if (is(name, "node") && nodeStart) {
          out_.addNode(std::move(node), offsetOf(nodeStart));
          node = core::Node{};
          nodeStart = nullptr;
        } else if (is(name, "diagram")) {
          if (nodeStart) fail("<node> is not closed before </diagram>", nodeStart, "node");
          bodyEnd_ = offsetOf(p_);
          return;  // whatever follows the root is not read
        }
        continue;
      }
      const char* start = p_;
      readTag(tag_);
      if (nodeStart) {
        if (is(tag_.name, "geom")) {
          readGeom(node, start);
        } else if (is(tag_.name, "text")) {
          if (tag_.selfClosing)
            node.text.clear();
          else
            pendingText_ = true;
        } else if (is(tag_.name, "property")) {
          readProperty(node);
        } else if (is(tag_.name, "node")) {
          fail("<node> is not closed before the next <node>", nodeStart, "node");
        }
      } else if (is(tag_.name, "node")) {
        readNodeAttributes(node);
        if (tag_.selfClosing) {
          out_.addNode(std::move(node), offsetOf(start));
          node = core::Node{};
        } else {
          nodeStart = start;
        }
      } else if (is(tag_.name, "edge")) {
        readEdge(start);
      }
    }
  }

  // ---- Elements ----

  void readNodeAttributes(core::Node& node) {
    for (const Attr& a : tag_.attrs) {
      if (is(a.name, "id")) {
        assignDecoded(node.id, a.value);
      } else if (is(a.name, "type")) {
        // No key holds an entity, so the raw value is looked up as it stands.
        node.type = core::ShapeType::rect;
        core::shapeFromKey(a.value, node.type);
      } else if (is(a.name, "fillColor")) {
        assignDecoded(node.fillColor, a.value);
      } else if (is(a.name, "dataIntegration")) {
        node.dataIntegration = a.value == "true" || a.value == "1";
      }
    }
  }

  // `ownerKind` and `ownerId` name the node or edge in the message (only
  // built when the number is bad).
  float number(const Attr& a, const char* tagStart, std::string_view element, std::string_view ownerKind,
               const std::string& ownerId) {
    float v = 0.0f;
    const NumberStatus st = parseFloat(a.value, v);
    if (st != NumberStatus::ok) {
      std::string what = numberStatusText(st, "stof") + ": attribute " + named(a.name) + " of " + angled(element);
      if (!ownerId.empty()) what += " in " + std::string(ownerKind) + " " + named(ownerId);
      what += " is " + quotedText(a.value);
      fail(std::move(what), tagStart, std::string(element));
    }
    return v;
  }

  void readGeom(core::Node& node, const char* start) {
    for (const Attr& a : tag_.attrs) {
      if (a.name.size() != 1) continue;
      switch (a.name[0]) {
        case 'x': node.geom.x = number(a, start, "geom", "node", node.id); break;
        case 'y': node.geom.y = number(a, start, "geom", "node", node.id); break;
        case 'w': node.geom.w = number(a, start, "geom", "node", node.id); break;
        case 'h': node.geom.h = number(a, start, "geom", "node", node.id); break;
        default: break;
      }
    }
  }

  void readProperty(core::Node& node) {
    const Attr* key = nullptr;
    const Attr* value = nullptr;
    for (const Attr& a : tag_.attrs) {
      if (is(a.name, "key")) key = &a;
      else if (is(a.name, "value")) value = &a;
    }
    if (!key) return;  // nothing to file it under
    std::string& slot = node.properties[decodeXml(key->value)];
    if (value)
      assignDecoded(slot, value->value);
    else
      slot.clear();
  }

  void readEdge(const char* start) {
    core::Edge e;
    for (const Attr& a : tag_.attrs) {
      const std::string_view n = a.name;
      if (is(n, "id")) assignDecoded(e.id, a.value);
      else if (is(n, "source")) assignDecoded(e.source, a.value);
      else if (is(n, "target")) assignDecoded(e.target, a.value);
      else if (is(n, "sourcePort")) {
        e.sourcePort = core::Anchor::right;
        core::anchorFromKey(a.value, e.sourcePort);
      } else if (is(n, "targetPort")) {
        e.targetPort = core::Anchor::left;
        core::anchorFromKey(a.value, e.targetPort);
      } else if (is(n, "edgeType")) {
        e.type = core::EdgeType::straightArrow;
        core::edgeFromKey(a.value, e.type);
      } else if (is(n, "text")) assignDecoded(e.text, a.value);
      else if (is(n, "srcAnchorDY") || is(n, "tgtAnchorDY")) {
        float v = core::kUnsetOffset;
        if (!a.value.empty()) v = number(a, start, "edge", "edge", e.id);
        (is(n, "srcAnchorDY") ? e.srcAnchorDY : e.tgtAnchorDY) = v;
      }
    }
    out_.addEdge(std::move(e), offsetOf(start));
  }

  std::string_view text_;
  core::DocumentBuilder& out_;
  const char* p_ = nullptr;
  const char* end_ = nullptr;
  const char* rootStart_ = nullptr;
  bool rootClosed_ = false;
  bool pendingText_ = false;
  Tag tag_;
  std::array<std::size_t, kMarkCount> markAt_{kNone, kNone, kNone};
  std::size_t missing_ = kMarkCount;
  std::size_t bodyEnd_ = 0;
};

// The id attribute of the tag at `offset`, read again for a message.
std::string idOfTagAt(std::string_view xml, std::size_t offset) {
  const std::size_t gt = xml.find('>', offset);
  return detail::attributeOr(xml.substr(offset, gt == std::string_view::npos ? std::string_view::npos : gt - offset + 1),
                             "id", "");
}

// One warning per refused element, nodes and edges together in file order.
void reportSkipped(std::string_view xml, const core::DocumentBuilder& built, const TextPlace& place,
                   std::vector<Diagnostic>& out) {
  const std::vector<std::size_t>& nodes = built.refusedNodes();
  const std::vector<std::size_t>& edges = built.refusedEdges();
  detail::LineCounter lines(xml);
  std::size_t n = 0, e = 0;
  while (n < nodes.size() || e < edges.size()) {
    const bool isNode = e == edges.size() || (n < nodes.size() && nodes[n] < edges[e]);
    const std::size_t at = isNode ? nodes[n++] : edges[e++];
    const std::string kind = isNode ? "node" : "edge";
    const std::string id = idOfTagAt(xml, at);
    std::string what = id.empty() ? kind + " without id skipped"
                                  : kind + " id " + named(id) + " is used twice; the later " + kind + " was skipped";
    out.push_back(Diagnostic{std::move(what), place.line - 1 + lines.lineAt(at), kind, place.file});
  }
}

// Reads `xml` into the empty document `fresh`; false with `error` set when
// the text cannot be read (`fresh` is then to be thrown away).
bool readInto(std::string_view xml, core::Document& fresh, ReadError* error, std::vector<Diagnostic>* warnings,
              const TextPlace& place, bool* projectMark = nullptr) {
  // A guess from typical element sizes that saves most regrowing.
  core::DocumentBuilder builder(fresh, xml.size() / 300, xml.size() / 200);
  DiagramParser parser(xml, builder);
  try {
    parser.run();
  } catch (const Failure& f) {
    if (error)
      *error = ReadError{f.what, place.line - 1 + detail::lineAt(xml, f.offset), f.element, place.file};
    return false;
  }
  builder.finish();
  if (const std::size_t at = parser.markAt(kFrameMark); at != std::string_view::npos)
    parseDiagramFrame(xml.substr(at), fresh.frame());
  if (const std::size_t at = parser.markAt(kLinksMark); at != std::string_view::npos)
    fresh.links() = parseDataIntegration(xml.substr(at));
  if (projectMark) *projectMark = parser.markAt(kProjectMark) != std::string_view::npos;
  if (warnings) reportSkipped(xml, builder, place, *warnings);
  return true;
}

}  // namespace

bool parseDiagramInto(std::string_view xml, core::Document& doc, ReadError* error, std::vector<Diagnostic>* warnings,
                      const TextPlace& place, bool* projectMark) {
  core::Document fresh;
  if (!readInto(xml, fresh, error, warnings, place, projectMark)) return false;
  doc.history().clear();
  doc.swapContent(fresh);
  return true;
}

std::optional<DiagramContent> readDiagram(std::string_view xml, ReadError* error) {
  core::Document doc;
  DiagramContent c;
  if (!readInto(xml, doc, error, &c.warnings, {})) return std::nullopt;
  c.nodes = doc.nodes();
  c.edges = doc.edges();
  c.frame = std::move(doc.frame());
  c.links = std::move(doc.links());
  return c;
}

std::optional<DiagramContent> parseDiagram(std::string_view xml, ReadError* error) {
  std::optional<DiagramContent> c = readDiagram(xml, error);
  if (c) {
    c->frame = {};
    c->links.clear();
  }
  return c;
}

void applyDiagram(DiagramContent&& content, core::Document& doc) {
  doc.history().clear();
  doc.replaceContent(std::move(content.nodes), std::move(content.edges));
  doc.frame() = std::move(content.frame);
  doc.links() = std::move(content.links);
}

}  // namespace modelyne::io
