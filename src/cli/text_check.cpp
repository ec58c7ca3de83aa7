#include "cli/text_check.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "cli/output.h"
#include "io/xml_chars.h"
#include "io/xml_escape.h"

namespace modelyne::cli {

namespace {

struct Finding {
  std::string element;  ///< "node 'a'"
  std::string what;     ///< "text holds U+0007, which XML 1.0 does not allow"
  bool isNode = false;
  std::string id;
  std::size_t offset = std::string::npos;  ///< of the element's tag in the model's diagram text
};

/// Bytes a terminal would act on, written as \xNN, so that quoting an id
/// cannot drive the terminal.
std::string printable(std::string_view text) {
  std::string out;
  std::size_t i = 0;
  while (i < text.size()) {
    const auto fault = io::firstXmlTextFault(text.substr(i));
    const std::size_t end = fault ? i + fault->offset : text.size();
    for (std::size_t k = i; k < end; ++k) {
      const auto b = static_cast<unsigned char>(text[k]);
      if (b < 0x20 || b == 0x7F) {
        char buf[8];
        std::snprintf(buf, sizeof buf, "\\x%02X", b);
        out += buf;
      } else {
        out += text[k];
      }
    }
    if (!fault) break;
    char buf[8];
    std::snprintf(buf, sizeof buf, "\\x%02X", static_cast<unsigned>(static_cast<unsigned char>(text[end])));
    out += buf;
    i = end + 1;
  }
  return out;
}

std::optional<std::string> fault(std::string_view field, std::string_view text) {
  if (auto f = io::firstXmlTextFault(text)) return std::string(field) + " holds " + io::describeXmlTextFault(*f);
  return std::nullopt;
}

std::optional<std::string> nodeFault(const core::Node& n) {
  if (auto f = fault("id", n.id)) return f;
  if (auto f = fault("text", n.text)) return f;
  if (auto f = fault("fill colour", n.fillColor)) return f;
  for (const auto& [key, value] : n.properties) {
    if (auto f = fault("property key", key)) return f;
    if (auto f = fault("property '" + printable(key) + "'", value)) return f;
  }
  return std::nullopt;
}

std::optional<std::string> edgeFault(const core::Edge& e) {
  if (auto f = fault("id", e.id)) return f;
  if (auto f = fault("text", e.text)) return f;
  if (auto f = fault("source", e.source)) return f;
  return fault("target", e.target);
}

std::optional<std::string> frameFault(const core::DiagramFrame& frame) {
  if (auto f = fault("element type", frame.elementType)) return f;
  if (auto f = fault("element name", frame.elementName)) return f;
  return fault("name", frame.name);
}

/// The value of attribute `id` inside the tag text `tag`, decoded.
std::optional<std::string> idAttribute(std::string_view tag) {
  for (std::size_t at = tag.find("id="); at != std::string_view::npos; at = tag.find("id=", at + 1)) {
    const char before = tag[at - 1];
    if (before != ' ' && before != '\t' && before != '\n' && before != '\r') continue;
    const std::size_t open = at + 3;
    if (open >= tag.size() || (tag[open] != '"' && tag[open] != '\'')) continue;
    const std::size_t close = tag.find(tag[open], open + 1);
    if (close == std::string_view::npos) return std::nullopt;
    return io::decodeXml(tag.substr(open + 1, close - open - 1));
  }
  return std::nullopt;
}

/// Finds each finding's element tag in the diagram text: the first
/// <node> or <edge> carrying its id, as the reader keeps the first.
void locate(std::string_view xml, std::vector<Finding>& findings) {
  std::unordered_map<std::string, std::size_t> wanted[2];  // edges, nodes: id -> finding
  for (std::size_t i = 0; i < findings.size(); ++i) wanted[findings[i].isNode].emplace(findings[i].id, i);
  for (std::size_t at = xml.find('<'); at != std::string_view::npos; at = xml.find('<', at + 1)) {
    const std::string_view rest = xml.substr(at + 1);
    const bool isNode = rest.starts_with("node");
    if (!isNode && !rest.starts_with("edge")) continue;
    if (rest.size() < 5 || (rest[4] != ' ' && rest[4] != '\t' && rest[4] != '\n' && rest[4] != '\r')) continue;
    const std::size_t end = rest.find('>');
    const auto id = idAttribute(rest.substr(0, end));
    if (!id) continue;
    auto it = wanted[isNode].find(*id);
    if (it == wanted[isNode].end()) continue;
    findings[it->second].offset = at;
    wanted[isNode].erase(it);
  }
}

}  // namespace

std::size_t warnAboutUnwritableText(const ModelFile& file, std::size_t index, const core::Document& doc) {
  std::vector<Finding> findings;
  for (const core::Node& n : doc.nodes())
    if (auto what = nodeFault(n)) findings.push_back({"node '" + printable(n.id) + "'", *what, true, n.id});
  for (const core::Edge& e : doc.edges())
    if (auto what = edgeFault(e)) findings.push_back({"edge '" + printable(e.id) + "'", *what, false, e.id});
  const auto frame = frameFault(doc.frame());
  if (findings.empty() && !frame) return 0;

  // Lines counted in the file, in one pass over the model's diagram text.
  const std::string_view xml = file.diagramText(index);
  const unsigned base = diagramFirstLine(file, index);
  locate(xml, findings);
  std::vector<std::size_t> order(findings.size());
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
  std::stable_sort(order.begin(), order.end(),
                   [&](std::size_t a, std::size_t b) { return findings[a].offset < findings[b].offset; });
  std::vector<unsigned> lines(findings.size(), 0);
  std::size_t counted = 0;
  unsigned line = base;
  for (std::size_t i : order) {
    if (findings[i].offset == std::string::npos) continue;
    line += static_cast<unsigned>(std::count(xml.begin() + static_cast<std::ptrdiff_t>(counted),
                                             xml.begin() + static_cast<std::ptrdiff_t>(findings[i].offset), '\n'));
    counted = findings[i].offset;
    lines[i] = line;
  }

  if (frame) {
    const std::size_t at = xml.find("<DiagramFrame");
    const unsigned frameLine =
        at == std::string::npos ? 0 : base + static_cast<unsigned>(std::count(xml.begin(), xml.begin() + static_cast<std::ptrdiff_t>(at), '\n'));
    diagnostic("modelyne: warning: " + located(file.name, frameLine, "diagram frame " + *frame));
  }
  // In document order: nodes, then edges.
  for (std::size_t i = 0; i < findings.size(); ++i)
    diagnostic("modelyne: warning: " + located(file.name, lines[i], findings[i].element + " " + findings[i].what));
  return findings.size() + (frame ? 1 : 0);
}

}  // namespace modelyne::cli
