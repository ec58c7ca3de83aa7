#include "io/diagram_reader.h"

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

bool isSpace(char c) noexcept { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }
bool endsName(char c) noexcept { return isSpace(c) || c == '/' || c == '>' || c == '='; }

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

class DiagramParser {
 public:
  explicit DiagramParser(std::string_view text) : text_(text), lines_(text) {}

  DiagramContent run() {
    p_ = text_.data();
    end_ = p_ + text_.size();
    // A UTF-8 byte order mark is allowed before the declaration.
    if (text_.size() >= 3 && std::memcmp(p_, "\xEF\xBB\xBF", 3) == 0) p_ += 3;
    readProlog();
    readBody();
    return std::move(content_);
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
      while (p_ != end_ && !endsName(*p_) && *p_ != '"' && *p_ != '\'') ++p_;
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
      const void* close = std::memchr(p_, quote, static_cast<std::size_t>(end_ - p_));
      if (!close)
        fail("unterminated value of attribute '" + std::string(name) + "' of <" + std::string(tag.name) + ">" +
                 atLine(attrBegin),
             attrBegin, std::string(tag.name));
      const char* valueEnd = static_cast<const char*>(close);
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
        if (tag_.name == "modelyneProject")
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
    if (rootClosed_) return;
    core::IdIndex<core::Node> nodeIds(content_.nodes);
    core::IdIndex<core::Edge> edgeIds(content_.edges);
    core::Node node;
    const char* nodeStart = nullptr;  // non-null while inside <node>...</node>
    for (;;) {
      const void* lt = std::memchr(p_, '<', static_cast<std::size_t>(end_ - p_));
      if (!lt) {
        if (nodeStart) fail("<node> opened" + atLine(nodeStart) + " is not closed: the text ends early", nodeStart, "node");
        fail("<diagram> opened" + atLine(rootStart_) + " is not closed: the text ends early", rootStart_, "diagram");
      }
      const char* textStart = p_;
      p_ = static_cast<const char*>(lt);
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
        if (name == "node" && nodeStart) {
          finishNode(std::move(node), nodeStart, nodeIds);
          node = core::Node{};
          nodeStart = nullptr;
        } else if (name == "diagram") {
          if (nodeStart)
            fail("<node> opened" + atLine(nodeStart) + " is not closed before </diagram>" + atLine(start), nodeStart, "node");
          return;  // whatever follows the root is not read
        }
        continue;
      }
      const char* start = p_;
      readTag(tag_);
      if (nodeStart) {
        if (tag_.name == "geom") {
          readGeom(node, start);
        } else if (tag_.name == "text") {
          if (tag_.selfClosing)
            node.text.clear();
          else
            pendingText_ = true;
        } else if (tag_.name == "property") {
          readProperty(node);
        } else if (tag_.name == "node") {
          fail("<node> opened" + atLine(nodeStart) + " is not closed before the next <node>" + atLine(start), nodeStart, "node");
        }
      } else if (tag_.name == "node") {
        readNodeAttributes(node);
        if (tag_.selfClosing) {
          finishNode(std::move(node), start, nodeIds);
          node = core::Node{};
        } else {
          nodeStart = start;
        }
      } else if (tag_.name == "edge") {
        readEdge(start, edgeIds);
      }
    }
  }

  // ---- Elements ----

  void readNodeAttributes(core::Node& node) {
    for (const Attr& a : tag_.attrs) {
      if (a.name == "id") {
        assignDecoded(node.id, a.value);
      } else if (a.name == "type") {
        core::ShapeType t = core::ShapeType::rect;
        if (std::memchr(a.value.data(), '&', a.value.size()))
          core::shapeFromKey(decodeXml(a.value), t);
        else
          core::shapeFromKey(a.value, t);
        node.type = t;
      } else if (a.name == "fillColor") {
        assignDecoded(node.fillColor, a.value);
      } else if (a.name == "dataIntegration") {
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
      if (a.name == "key") key = &a;
      else if (a.name == "value") value = &a;
    }
    if (!key) return;  // nothing to file it under
    std::string k = decodeXml(key->value);
    std::string& slot = node.properties[std::move(k)];
    if (value)
      assignDecoded(slot, value->value);
    else
      slot.clear();
  }

  void readEdge(const char* start, core::IdIndex<core::Edge>& edgeIds) {
    core::Edge e;
    for (const Attr& a : tag_.attrs) {
      const std::string_view n = a.name;
      if (n == "id") assignDecoded(e.id, a.value);
      else if (n == "source") assignDecoded(e.source, a.value);
      else if (n == "target") assignDecoded(e.target, a.value);
      else if (n == "sourcePort") {
        e.sourcePort = core::Anchor::right;
        core::anchorFromKey(a.value, e.sourcePort);
      } else if (n == "targetPort") {
        e.targetPort = core::Anchor::left;
        core::anchorFromKey(a.value, e.targetPort);
      } else if (n == "edgeType") {
        e.type = core::EdgeType::straightArrow;
        core::edgeFromKey(a.value, e.type);
      } else if (n == "text") assignDecoded(e.text, a.value);
      else if (n == "srcAnchorDY" || n == "tgtAnchorDY") {
        float v = core::kUnsetOffset;
        if (!a.value.empty()) v = number(a, start, "edge", "edge", e.id);
        (n == "srcAnchorDY" ? e.srcAnchorDY : e.tgtAnchorDY) = v;
      }
    }
    if (e.id.empty()) {
      warn("edge without id skipped", start);
      return;
    }
    if (edgeIds.find(e.id) >= 0) {
      warn("edge id '" + e.id + "' is used twice; the later edge was skipped", start);
      return;
    }
    content_.edges.push_back(std::move(e));
    edgeIds.insert(content_.edges.back().id, static_cast<std::uint32_t>(content_.edges.size() - 1));
  }

  void finishNode(core::Node&& node, const char* start, core::IdIndex<core::Node>& nodeIds) {
    if (node.id.empty()) {
      warn("node without id skipped", start);
      return;
    }
    if (nodeIds.find(node.id) >= 0) {
      warn("node id '" + node.id + "' is used twice; the later node was skipped", start);
      return;
    }
    content_.nodes.push_back(std::move(node));
    nodeIds.insert(content_.nodes.back().id, static_cast<std::uint32_t>(content_.nodes.size() - 1));
  }

  void warn(const std::string& what, const char* at) {
    content_.warnings.push_back("line " + std::to_string(lineOf(at)) + ": " + what);
  }

  std::string_view text_;
  LineCounter lines_;
  const char* p_ = nullptr;
  const char* end_ = nullptr;
  const char* rootStart_ = nullptr;
  bool rootClosed_ = false;
  bool pendingText_ = false;
  Tag tag_;
  DiagramContent content_;
};

}  // namespace

std::optional<DiagramContent> parseDiagram(std::string_view xml, ReadError* error) {
  try {
    DiagramParser parser(xml);
    return parser.run();
  } catch (const Failure& f) {
    if (error) *error = ReadError{f.what, detail::lineAt(xml, f.offset), f.element};
    return std::nullopt;
  }
}

std::optional<DiagramContent> readDiagram(std::string_view xml, ReadError* error) {
  std::optional<DiagramContent> content = parseDiagram(xml, error);
  if (!content) return content;
  parseDiagramFrame(xml, content->frame);
  content->links = parseDataIntegration(xml);
  return content;
}

void applyDiagram(DiagramContent&& content, core::Document& doc) {
  doc.history().clear();
  doc.replaceContent(std::move(content.nodes), std::move(content.edges));
  doc.frame() = std::move(content.frame);
  doc.links() = std::move(content.links);
}

bool parseDiagramInto(std::string_view xml, core::Document& doc, ReadError* error) {
  std::optional<DiagramContent> content = readDiagram(xml, error);
  if (!content) return false;
  applyDiagram(std::move(*content), doc);
  return true;
}

}  // namespace modelyne::io
