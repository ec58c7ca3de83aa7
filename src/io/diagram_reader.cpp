#include "io/diagram_reader.h"

#include <array>
#include <cstring>
#include <utility>

#include "core/id_index.h"
#include "io/data_integration.h"
#include "io/frame_block.h"
#include "io/number_format.h"
#include "io/xml_escape.h"
#include "io/xml_scan.h"

namespace modelyne::io {

namespace {

// ---- Tokeniser ----

// Character classes, one table lookup per byte in the hot loops.
enum : unsigned char { kSpace = 1, kNameEnd = 2, kQuote = 4 };
constexpr std::array<unsigned char, 256> kCharClass = [] {
  std::array<unsigned char, 256> t{};
  for (unsigned char c : {' ', '\t', '\n', '\r'}) t[c] = kSpace | kNameEnd;
  for (unsigned char c : {'/', '>', '='}) t[c] = kNameEnd;
  t[static_cast<unsigned char>('"')] = kQuote;
  t[static_cast<unsigned char>('\'')] = kQuote;
  return t;
}();
inline bool isSpace(char c) noexcept { return kCharClass[static_cast<unsigned char>(c)] & kSpace; }
inline bool endsName(char c) noexcept { return kCharClass[static_cast<unsigned char>(c)] & kNameEnd; }
inline bool endsAttrName(char c) noexcept { return kCharClass[static_cast<unsigned char>(c)] & (kNameEnd | kQuote); }

// Equality with a literal; the fixed length lets the compiler compare inline.
template <std::size_t N>
inline bool is(std::string_view s, const char (&lit)[N]) noexcept {
  return s.size() == N - 1 && std::memcmp(s.data(), lit, N - 1) == 0;
}

// Anchor keys have distinct lengths, so the length picks the candidate.
bool anchorFromKeyFast(std::string_view key, core::Anchor& out) noexcept {
  using A = core::Anchor;
  A a;
  switch (key.size()) {
    case 3: a = A::top; break;
    case 6: a = A::bottom; break;
    case 4: a = A::left; break;
    case 5: a = A::right; break;
    case 7: a = A::topLeft; break;
    case 8: a = A::topRight; break;
    case 10: a = A::bottomLeft; break;
    case 11: a = A::bottomRight; break;
    default: return false;
  }
  if (key != core::anchorKey(a)) return false;
  out = a;
  return true;
}

// The next `c` in [p, end), or nullptr. Most searches here end within a
// few bytes (attribute values, white space between tags), where a plain
// loop beats a library call; longer runs go to memchr.
inline const char* findChar(const char* p, const char* end, char c) noexcept {
  const char* quick = end - p > 16 ? p + 16 : end;
  for (; p != quick; ++p)
    if (*p == c) return p;
  if (p == end) return nullptr;
  return static_cast<const char*>(std::memchr(p, c, static_cast<std::size_t>(end - p)));
}

// Key lookups for the types of the catalogue, built once: an open-addressing
// table with a cheap hash, because every node and edge of a file asks.
template <class T>
class KeyTable {
 public:
  template <class Catalogue, class KeyOf, class ValueOf>
  KeyTable(const Catalogue& entries, KeyOf keyOf, ValueOf valueOf) {
    std::size_t cap = 16;
    while (cap < entries.size() * 4) cap <<= 1;
    slots_.assign(cap, Slot{});
    mask_ = cap - 1;
    for (const auto& e : entries) {
      const std::string_view key = keyOf(e);
      std::size_t i = hash(key) & mask_;
      while (!slots_[i].key.empty()) i = (i + 1) & mask_;
      slots_[i] = Slot{key, valueOf(e)};
    }
  }
  bool find(std::string_view key, T& out) const noexcept {
    for (std::size_t i = hash(key) & mask_;; i = (i + 1) & mask_) {
      const Slot& s = slots_[i];
      if (s.key.empty()) return false;
      if (s.key == key) {
        out = s.value;
        return true;
      }
    }
  }

 private:
  struct Slot {
    std::string_view key;
    T value{};
  };
  static std::size_t hash(std::string_view k) noexcept {
    std::uint32_t h = 2166136261u;  // FNV-1a
    for (unsigned char c : k) h = (h ^ c) * 16777619u;
    return h;
  }
  std::vector<Slot> slots_;
  std::size_t mask_ = 0;
};

bool shapeFromKeyFast(std::string_view key, core::ShapeType& out) {
  static const KeyTable<core::ShapeType> table(
      core::shapeCatalogue(), [](const core::ShapeInfo& i) { return i.key; },
      [](const core::ShapeInfo& i) { return i.type; });
  return table.find(key, out);
}

bool edgeFromKeyFast(std::string_view key, core::EdgeType& out) {
  static const KeyTable<core::EdgeType> table(
      core::edgeCatalogue(), [](const core::EdgeInfo& i) { return i.key; },
      [](const core::EdgeInfo& i) { return i.type; });
  return table.find(key, out);
}

struct Attr {
  std::string_view name;
  std::string_view value;  // raw, entities not yet decoded
};

// One start or empty-element tag: its name and attributes, views into the text.
struct Tag {
  std::string_view name;
  std::vector<Attr> attrs;  // reused from tag to tag
  bool selfClosing = false;
  std::size_t offset = 0;
};

// Thrown inside the reader only; turned into a ReadError at its boundary.
struct Failure {
  std::string what;
  std::size_t offset;
  std::string element;
};

// Turns byte offsets into line numbers; offsets asked for only grow, so the
// counting never goes over the same text twice.
class LineCounter {
 public:
  explicit LineCounter(std::string_view text) : text_(text) {}
  std::size_t lineAt(std::size_t offset) {
    if (offset < pos_) {
      pos_ = 0;
      line_ = 1;
    }
    if (offset > text_.size()) offset = text_.size();
    const char* p = text_.data() + pos_;
    const char* end = text_.data() + offset;
    while (p < end) {
      const void* nl = std::memchr(p, '\n', static_cast<std::size_t>(end - p));
      if (!nl) break;
      ++line_;
      p = static_cast<const char*>(nl) + 1;
    }
    pos_ = offset;
    return line_;
  }

 private:
  std::string_view text_;
  std::size_t pos_ = 0;
  std::size_t line_ = 1;
};

std::string quoted(std::string_view v) {
  constexpr std::size_t kMax = 40;
  std::string s = "\"";
  s.append(v.substr(0, kMax));
  if (v.size() > kMax) s.append("...");
  s.push_back('"');
  return s;
}

// Where the parser puts each finished element: `node(Node&&, offset)` and
// `edge(Edge&&, offset)`, with the byte offset of its tag.
template <class Sink>
class DiagramParser {
 public:
  DiagramParser(std::string_view text, Sink& sink) : text_(text), lines_(text), sink_(sink) {}

  /// Where the first frame line and data-integration block start, if the
  /// body holds them; otherwise where the root ends (they are then looked for
  /// after it).
  std::size_t frameAt() const { return frameAt_ != kNone ? frameAt_ : bodyEnd_; }
  std::size_t linksAt() const { return linksAt_ != kNone ? linksAt_ : bodyEnd_; }

  void run() {
    p_ = text_.data();
    end_ = p_ + text_.size();
    // A UTF-8 byte order mark is allowed before the declaration.
    if (text_.size() >= 3 && std::memcmp(p_, "\xEF\xBB\xBF", 3) == 0) p_ += 3;
    readProlog();
    readBody();
  }

 private:
  [[noreturn]] void fail(std::string what, const char* at, std::string element = {}) {
    throw Failure{std::move(what), static_cast<std::size_t>(at - text_.data()), std::move(element)};
  }
  std::size_t lineOf(const char* at) { return lines_.lineAt(static_cast<std::size_t>(at - text_.data())); }
  std::string atLine(const char* at) { return " at line " + std::to_string(lineOf(at)); }

  void skipSpace() {
    while (p_ != end_ && isSpace(*p_)) ++p_;
  }
  bool startsWith(std::string_view s) const {
    return static_cast<std::size_t>(end_ - p_) >= s.size() && std::memcmp(p_, s.data(), s.size()) == 0;
  }
  // Moves past the next `term`; fails naming `what` when the text ends first.
  void skipPast(std::string_view term, const char* what) {
    const char* start = p_;
    std::string_view rest(p_, static_cast<std::size_t>(end_ - p_));
    const std::size_t at = rest.find(term);
    if (at == std::string_view::npos) fail(std::string("unterminated ") + what + atLine(start), start);
    p_ += at + term.size();
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
    tag.offset = static_cast<std::size_t>(start - text_.data());
    ++p_;
    const char* nameBegin = p_;
    while (p_ != end_ && !endsName(*p_)) ++p_;
    tag.name = std::string_view(nameBegin, static_cast<std::size_t>(p_ - nameBegin));
    if (tag.name.empty()) fail("malformed tag" + atLine(start), start);
    tag.attrs.clear();
    tag.selfClosing = false;
    for (;;) {
      skipSpace();
      if (p_ == end_) fail("unexpected end of text inside <" + std::string(tag.name) + ">" + atLine(start), start, std::string(tag.name));
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
        fail("malformed tag <" + std::string(tag.name) + ">" + atLine(p_), p_, std::string(tag.name));
      }
      const char* attrBegin = p_;
      while (p_ != end_ && !endsAttrName(*p_)) ++p_;
      const std::string_view name(attrBegin, static_cast<std::size_t>(p_ - attrBegin));
      if (name.empty())
        fail("malformed attribute in <" + std::string(tag.name) + ">" + atLine(attrBegin), attrBegin, std::string(tag.name));
      skipSpace();
      if (p_ == end_ || *p_ != '=')
        fail("attribute '" + std::string(name) + "' of <" + std::string(tag.name) + "> has no value" + atLine(attrBegin),
             attrBegin, std::string(tag.name));
      ++p_;
      skipSpace();
      if (p_ == end_ || (*p_ != '"' && *p_ != '\''))
        fail("value of attribute '" + std::string(name) + "' of <" + std::string(tag.name) + "> is not quoted" +
                 atLine(attrBegin),
             attrBegin, std::string(tag.name));
      const char quote = *p_++;
      const char* close = findChar(p_, end_, quote);
      if (!close)
        fail("unterminated value of attribute '" + std::string(name) + "' of <" + std::string(tag.name) + ">" +
                 atLine(attrBegin),
             attrBegin, std::string(tag.name));
      const char* valueEnd = close;
      tag.attrs.push_back({name, std::string_view(p_, static_cast<std::size_t>(valueEnd - p_))});
      p_ = valueEnd + 1;
    }
  }

  // At "</": reads the closing tag's name and moves past its ">".
  std::string_view readClosingTag() {
    const char* start = p_;
    p_ += 2;
    const char* nameBegin = p_;
    while (p_ != end_ && !endsName(*p_)) ++p_;
    const std::string_view name(nameBegin, static_cast<std::size_t>(p_ - nameBegin));
    skipSpace();
    if (p_ == end_ || *p_ != '>') fail("malformed closing tag </" + std::string(name) + ">" + atLine(start), start, std::string(name));
    ++p_;
    return name;
  }

  // ---- Document structure ----

  void readProlog() {
    for (;;) {
      skipSpace();
      if (p_ == end_) {
        if (text_.empty() || text_.find_first_not_of(" \t\r\n") == std::string_view::npos)
          fail("the text is empty", p_);
        fail("no <diagram> element", p_);
      }
      if (*p_ != '<') fail("text before the root element" + atLine(p_), p_);
      if (skipMarkup()) continue;
      if (startsWith("</")) fail("closing tag before the root element" + atLine(p_), p_);
      const char* start = p_;
      readTag(tag_);
      if (tag_.name != "diagram") {
        if (is(tag_.name, "modelyneProject"))
          fail("root element is <modelyneProject>" + atLine(start) + ", a project of several models, not one diagram",
               start, "modelyneProject");
        fail("root element is <" + std::string(tag_.name) + ">" + atLine(start) + ", expected <diagram>", start,
             std::string(tag_.name));
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
      const char* lt = findChar(p_, end_, '<');
      if (!lt) {
        if (nodeStart) fail("<node> opened" + atLine(nodeStart) + " is not closed: the text ends early", nodeStart, "node");
        fail("<diagram> opened" + atLine(rootStart_) + " is not closed: the text ends early", rootStart_, "diagram");
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
        const char* start = p_;
        const std::string_view name = readClosingTag();
        if (is(name, "node") && nodeStart) {
          finishNode(std::move(node), nodeStart);
          node = core::Node{};
          nodeStart = nullptr;
        } else if (is(name, "diagram")) {
          if (nodeStart)
            fail("<node> opened" + atLine(nodeStart) + " is not closed before </diagram>" + atLine(start), nodeStart, "node");
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
          fail("<node> opened" + atLine(nodeStart) + " is not closed before the next <node>" + atLine(start), nodeStart, "node");
        }
      } else if (is(tag_.name, "node")) {
        readNodeAttributes(node);
        if (tag_.selfClosing) {
          finishNode(std::move(node), start);
          node = core::Node{};
        } else {
          nodeStart = start;
        }
      } else if (is(tag_.name, "edge")) {
        readEdge(start);
      } else if (is(tag_.name, "DiagramFrame")) {
        if (frameAt_ == kNone) frameAt_ = offsetOf(start);
      } else if (is(tag_.name, "DataIntegration")) {
        if (linksAt_ == kNone) linksAt_ = offsetOf(start);
      }
    }
  }

  // ---- Elements ----

  void readNodeAttributes(core::Node& node) {
    for (const Attr& a : tag_.attrs) {
      if (is(a.name, "id")) {
        assignDecoded(node.id, a.value);
      } else if (is(a.name, "type")) {
        core::ShapeType t = core::ShapeType::rect;
        if (std::memchr(a.value.data(), '&', a.value.size()))
          shapeFromKeyFast(decodeXml(a.value), t);
        else
          shapeFromKeyFast(a.value, t);
        node.type = t;
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
      std::string what = numberStatusText(st, "stof") + ": attribute '" + std::string(a.name) + "' of <" +
                         std::string(element) + ">";
      if (!ownerId.empty()) what += " in " + std::string(ownerKind) + " '" + ownerId + "'";
      what += atLine(tagStart) + " is " + quoted(a.value);
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
    std::string k = decodeXml(key->value);
    std::string& slot = node.properties[std::move(k)];
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
        anchorFromKeyFast(a.value, e.sourcePort);
      } else if (is(n, "targetPort")) {
        e.targetPort = core::Anchor::left;
        anchorFromKeyFast(a.value, e.targetPort);
      } else if (is(n, "edgeType")) {
        e.type = core::EdgeType::straightArrow;
        edgeFromKeyFast(a.value, e.type);
      } else if (is(n, "text")) assignDecoded(e.text, a.value);
      else if (is(n, "srcAnchorDY") || is(n, "tgtAnchorDY")) {
        float v = core::kUnsetOffset;
        if (!a.value.empty()) v = number(a, start, "edge", "edge", e.id);
        (is(n, "srcAnchorDY") ? e.srcAnchorDY : e.tgtAnchorDY) = v;
      }
    }
    sink_.edge(std::move(e), offsetOf(start));
  }

  void finishNode(core::Node&& node, const char* start) { sink_.node(std::move(node), offsetOf(start)); }

  std::size_t offsetOf(const char* at) const { return static_cast<std::size_t>(at - text_.data()); }

  std::string_view text_;
  LineCounter lines_;
  const char* p_ = nullptr;
  const char* end_ = nullptr;
  const char* rootStart_ = nullptr;
  bool rootClosed_ = false;
  bool pendingText_ = false;
  Tag tag_;
  Sink& sink_;
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
  std::size_t frameAt_ = kNone;
  std::size_t linksAt_ = kNone;
  std::size_t bodyEnd_ = 0;
};

// Collects the elements as read (repeated and empty ids included) with the
// byte offset of each, for messages.
struct VectorSink {
  DiagramContent content;
  std::vector<std::size_t> nodeOffsets;
  std::vector<std::size_t> edgeOffsets;
  void node(core::Node&& n, std::size_t at) {
    nodeOffsets.push_back(at);
    content.nodes.push_back(std::move(n));
  }
  void edge(core::Edge&& e, std::size_t at) {
    edgeOffsets.push_back(at);
    content.edges.push_back(std::move(e));
  }
};

// Runs the parser; false (and `error` set) when the text cannot be read.
template <class Sink>
bool runParser(std::string_view xml, Sink& sink, ReadError* error, std::size_t* frameAt = nullptr,
               std::size_t* linksAt = nullptr) {
  try {
    DiagramParser<Sink> parser(xml, sink);
    parser.run();
    if (frameAt) *frameAt = parser.frameAt();
    if (linksAt) *linksAt = parser.linksAt();
    return true;
  } catch (const Failure& f) {
    if (error) *error = ReadError{f.what, detail::lineAt(xml, f.offset), f.element};
    return false;
  }
}

// The id attribute of the tag at `offset`, read again for a message.
std::string idOfTagAt(std::string_view xml, std::size_t offset) {
  const std::size_t gt = xml.find('>', offset);
  return detail::attributeOr(xml.substr(offset, gt == std::string_view::npos ? std::string_view::npos : gt - offset + 1),
                             "id", "");
}

// Says why an element was skipped; offsets come in ascending order per kind.
class SkipReporter {
 public:
  SkipReporter(std::string_view text, std::vector<std::string>& out) : lines_(text), out_(out) {}
  void node(const std::string& id, std::size_t offset) {
    out_.push_back("line " + std::to_string(lines_.lineAt(offset)) + ": " +
                   (id.empty() ? std::string("node without id skipped")
                               : "node id '" + id + "' is used twice; the later node was skipped"));
  }
  void edge(const std::string& id, std::size_t offset) {
    out_.push_back("line " + std::to_string(lines_.lineAt(offset)) + ": " +
                   (id.empty() ? std::string("edge without id skipped")
                               : "edge id '" + id + "' is used twice; the later edge was skipped"));
  }

 private:
  LineCounter lines_;
  std::vector<std::string>& out_;
};

// Keeps the first element of each id, drops empty ids, and reports each drop.
template <class T, class Report>
void keepFirstOfEachId(std::vector<T>& items, const std::vector<std::size_t>& offsets, Report report) {
  std::vector<T> kept;
  kept.reserve(items.size());
  core::IdIndex<T> index(kept);
  index.reserve(items.size());
  for (std::size_t i = 0; i < items.size(); ++i) {
    T& item = items[i];
    if (item.id.empty() || index.find(item.id) >= 0) {
      report(item.id, offsets[i]);
      continue;
    }
    kept.push_back(std::move(item));
    index.insert(kept.back().id, static_cast<std::uint32_t>(kept.size() - 1));
  }
  items = std::move(kept);
}

}  // namespace

namespace {

std::optional<DiagramContent> parseWithBlockOffsets(std::string_view xml, ReadError* error, std::size_t& frameAt,
                                                    std::size_t& linksAt) {
  VectorSink sink;
  if (!runParser(xml, sink, error, &frameAt, &linksAt)) return std::nullopt;
  DiagramContent& c = sink.content;
  // Nodes are reported before edges, each in file order.
  SkipReporter report(xml, c.warnings);
  keepFirstOfEachId(c.nodes, sink.nodeOffsets, [&](const std::string& id, std::size_t at) { report.node(id, at); });
  SkipReporter edgeReport(xml, c.warnings);
  keepFirstOfEachId(c.edges, sink.edgeOffsets, [&](const std::string& id, std::size_t at) { edgeReport.edge(id, at); });
  return std::move(sink.content);
}

// Adds each element to the document as soon as it is read; the document's
// own index refuses repeated and empty ids, whose offsets are kept for the
// messages.
struct DocumentSink {
  core::Document& doc;
  std::vector<std::size_t> skippedNodes;
  std::vector<std::size_t> skippedEdges;
  void node(core::Node&& n, std::size_t at) {
    if (!doc.addNode(std::move(n))) skippedNodes.push_back(at);
  }
  void edge(core::Edge&& e, std::size_t at) {
    if (!doc.addEdge(std::move(e))) skippedEdges.push_back(at);
  }
};

}  // namespace

std::optional<DiagramContent> parseDiagram(std::string_view xml, ReadError* error) {
  std::size_t frameAt = 0, linksAt = 0;
  return parseWithBlockOffsets(xml, error, frameAt, linksAt);
}

std::optional<DiagramContent> readDiagram(std::string_view xml, ReadError* error) {
  std::size_t frameAt = 0, linksAt = 0;
  std::optional<DiagramContent> content = parseWithBlockOffsets(xml, error, frameAt, linksAt);
  if (!content) return content;
  parseDiagramFrame(xml.substr(frameAt), content->frame);
  content->links = parseDataIntegration(xml.substr(linksAt));
  return content;
}

void applyDiagram(DiagramContent&& content, core::Document& doc) {
  doc.history().clear();
  doc.replaceContent(std::move(content.nodes), std::move(content.edges));
  doc.frame() = std::move(content.frame);
  doc.links() = std::move(content.links);
}

bool parseDiagramInto(std::string_view xml, core::Document& doc, ReadError* error, std::vector<std::string>* warnings) {
  // Elements go straight into the document, which is put back as it was if
  // the text turns out to be unreadable.
  std::vector<core::Node> oldNodes = doc.nodes();
  std::vector<core::Edge> oldEdges = doc.edges();
  doc.replaceContent({}, {});
  // A guess from typical element sizes that saves most regrowing.
  doc.reserve(xml.size() / 300, xml.size() / 200);
  DocumentSink sink{doc, {}, {}};
  std::size_t frameAt = 0, linksAt = 0;
  if (!runParser(xml, sink, error, &frameAt, &linksAt)) {
    doc.replaceContent(std::move(oldNodes), std::move(oldEdges));
    return false;
  }
  doc.history().clear();
  core::DiagramFrame frame;
  parseDiagramFrame(xml.substr(frameAt), frame);
  doc.frame() = std::move(frame);
  doc.links() = parseDataIntegration(xml.substr(linksAt));
  if (warnings) {
    warnings->clear();
    SkipReporter nodeReport(xml, *warnings);
    for (std::size_t at : sink.skippedNodes) nodeReport.node(idOfTagAt(xml, at), at);
    SkipReporter edgeReport(xml, *warnings);
    for (std::size_t at : sink.skippedEdges) edgeReport.edge(idOfTagAt(xml, at), at);
  }
  return true;
}

}  // namespace modelyne::io
