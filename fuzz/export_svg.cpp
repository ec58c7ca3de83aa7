// Any diagram exports: nodes of every shape type (and unassigned values)
// with arbitrary geometry bits (NaN, infinities, huge, negative), text and
// properties, and edges of every type between existing, missing and equal
// ends. The SVG must come out whole, with only finite numbers, and be
// well-formed XML whenever every text it was given is text XML can carry.

#include <fuzzer/FuzzedDataProvider.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "core/model.h"
#include "export/diagram_drawing.h"
#include "export/svg_writer.h"
#include "io/xml_chars.h"

namespace {

using namespace modelyne;

float anyFloat(FuzzedDataProvider& in) {
  if (in.ConsumeBool()) return static_cast<float>(in.ConsumeIntegralInRange<int>(-2000, 2000));
  const std::uint32_t bits = in.ConsumeIntegral<std::uint32_t>();
  float f;
  std::memcpy(&f, &bits, sizeof f);
  return f;
}

const char* const kKeys[] = {"operator", "boundarySide", "boundaryPos", "direction", "isConjugated", "type",
                             "multiplicity", "parts", "values", "operations", "showHeader", "frameLabel",
                             "contextBlock", "numOperands", "operandSplits", "guard", "guard2", "flowProperties"};

bool isNameChar(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == ':' ||
         c == '_' || c == '.';
}

/// Character data or an attribute value: no '<', and every '&' starts one
/// of the five entities.
bool cleanCharData(std::string_view s) {
  static constexpr std::string_view kEntities[] = {"&amp;", "&lt;", "&gt;", "&quot;", "&apos;"};
  for (std::size_t i = 0; i < s.size(); ++i) {
    if (s[i] == '<') return false;
    if (s[i] != '&') continue;
    bool known = false;
    for (std::string_view e : kEntities) known = known || s.substr(i, e.size()) == e;
    if (!known) return false;
  }
  return true;
}

/// A small well-formedness check, enough for what the writer produces: an
/// XML declaration, then one element tree of start, end and empty tags with
/// double-quoted attributes and character data, in valid UTF-8 that XML
/// allows.
bool wellFormedXml(std::string_view xml) {
  if (io::firstXmlTextFault(xml)) return false;
  constexpr std::string_view kDecl = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
  if (!xml.starts_with(kDecl)) return false;
  std::size_t i = kDecl.size();
  std::vector<std::string_view> open;
  bool rootSeen = false;
  while (i < xml.size()) {
    const std::size_t lt = xml.find('<', i);
    const std::string_view text = xml.substr(i, lt == std::string_view::npos ? std::string_view::npos : lt - i);
    if (!cleanCharData(text)) return false;
    if (open.empty() && text.find_first_not_of(" \t\r\n") != std::string_view::npos) return false;
    if (lt == std::string_view::npos) break;
    i = lt + 1;
    const bool closing = i < xml.size() && xml[i] == '/';
    if (closing) ++i;
    const std::size_t nameStart = i;
    while (i < xml.size() && isNameChar(xml[i])) ++i;
    const std::string_view name = xml.substr(nameStart, i - nameStart);
    if (name.empty()) return false;
    if (closing) {
      if (open.empty() || open.back() != name || i >= xml.size() || xml[i] != '>') return false;
      open.pop_back();
      ++i;
      continue;
    }
    if (open.empty() && rootSeen) return false;
    rootSeen = true;
    std::vector<std::string_view> attributes;
    for (;;) {
      while (i < xml.size() && xml[i] == ' ') ++i;
      if (i >= xml.size()) return false;
      if (xml[i] == '>') { open.push_back(name); ++i; break; }
      if (xml.substr(i, 2) == "/>") { i += 2; break; }
      const std::size_t attrStart = i;
      while (i < xml.size() && isNameChar(xml[i])) ++i;
      const std::string_view attr = xml.substr(attrStart, i - attrStart);
      if (attr.empty() || xml.substr(i, 2) != "=\"") return false;
      for (std::string_view seen : attributes)
        if (seen == attr) return false;
      attributes.push_back(attr);
      i += 2;
      const std::size_t close = xml.find('"', i);
      if (close == std::string_view::npos || !cleanCharData(xml.substr(i, close - i))) return false;
      i = close + 1;
    }
  }
  return rootSeen && open.empty();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider in(data, size);
  bool xmlText = true;  // every text given can go into XML as it is
  auto text = [&](std::size_t maxLength) {
    std::string t = in.ConsumeRandomLengthString(maxLength);
    xmlText = xmlText && !io::firstXmlTextFault(t);
    return t;
  };
  std::vector<core::Node> nodes(in.ConsumeIntegralInRange<std::size_t>(0, 12));
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    core::Node& n = nodes[i];
    n.id = in.ConsumeBool() ? std::to_string(i) : in.ConsumeRandomLengthString(4);
    n.type = static_cast<core::ShapeType>(in.ConsumeIntegralInRange<int>(-2, 370));
    n.geom = {anyFloat(in), anyFloat(in), anyFloat(in), anyFloat(in)};
    n.text = text(40);
    n.fillColor = text(8);
    for (int k = in.ConsumeIntegralInRange<int>(0, 4); k > 0; --k) n.properties[in.PickValueInArray(kKeys)] = text(24);
  }
  std::vector<core::Edge> edges(in.ConsumeIntegralInRange<std::size_t>(0, 12));
  for (core::Edge& e : edges) {
    const auto end = [&]() {
      return nodes.empty() || in.ConsumeBool() ? in.ConsumeRandomLengthString(3)
                                               : nodes[in.ConsumeIntegralInRange<std::size_t>(0, nodes.size() - 1)].id;
    };
    e.source = end();
    e.target = in.ConsumeBool() ? e.source : end();
    e.sourcePort = static_cast<core::Anchor>(in.ConsumeIntegralInRange<int>(-1, 9));
    e.targetPort = static_cast<core::Anchor>(in.ConsumeIntegralInRange<int>(-1, 9));
    e.type = static_cast<core::EdgeType>(in.ConsumeIntegralInRange<int>(-1, 47));
    e.text = text(16);
    if (in.ConsumeBool()) e.srcAnchorDY = anyFloat(in);
    if (in.ConsumeBool()) e.tgtAnchorDY = anyFloat(in);
  }
  core::DiagramFrame frame;
  frame.show = in.ConsumeBool();
  frame.name = text(10);
  const float margin = anyFloat(in);
  const exporter::DrawingList list =
      exporter::buildDrawing(nodes, edges, {margin, in.ConsumeBool(), in.ConsumeBool() ? &frame : nullptr});
  const std::string svg = exporter::svgDocument(list);
  if (svg.size() < 7 || svg.compare(svg.size() - 7, 7, "</svg>\n") != 0) std::abort();
  if (xmlText && !wellFormedXml(svg)) std::abort();
  // The builder drops what cannot be drawn, so every number written is finite.
  for (const exporter::Primitive& p : list.items)
    for (float v : p.v)
      if (!std::isfinite(v)) std::abort();
  for (const exporter::Point& p : list.points)
    if (!std::isfinite(p.x) || !std::isfinite(p.y)) std::abort();
  if (!std::isfinite(list.bounds.x) || !std::isfinite(list.bounds.width)) std::abort();
  return 0;
}
