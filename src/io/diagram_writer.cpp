#include "io/diagram_writer.h"

#include <cmath>

#include "io/data_integration.h"
#include "io/frame_block.h"
#include "io/number_format.h"
#include "io/xml_escape.h"

namespace modelyne::io {

namespace {

constexpr std::string_view kHeader =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<diagram formatVersion=\"1.0\" appVersion=\"0.1.0-win\" xmlns=\"modelyne:diagram\">\n";
constexpr std::string_view kFooter = "</diagram>\n";

// A rough size per element, so that big diagrams are written without regrowing.
constexpr std::size_t kNodeBytesGuess = 160;
constexpr std::size_t kEdgeBytesGuess = 150;

void appendBody(std::string& out, std::span<const core::Node> nodes, std::span<const core::Edge> edges) {
  out.reserve(out.size() + kHeader.size() + kFooter.size() + nodes.size() * kNodeBytesGuess +
              edges.size() * kEdgeBytesGuess + 512);
  out.append(kHeader);
  for (const core::Node& n : nodes) appendNodeXml(out, n);
  for (const core::Edge& e : edges) appendEdgeXml(out, e);
}

}  // namespace

void appendNodeXml(std::string& out, const core::Node& n) {
  out.append("  <node id=\"");
  appendEscaped(out, n.id);
  out.append("\" type=\"");
  out.append(core::shapeKey(n.type));
  out.push_back('"');
  if (!n.fillColor.empty()) {
    out.append(" fillColor=\"");
    appendEscaped(out, n.fillColor);
    out.push_back('"');
  }
  if (n.dataIntegration) out.append(" dataIntegration=\"true\"");
  out.append(">\n    <geom x=\"");
  appendFloat(out, n.geom.x);
  out.append("\" y=\"");
  appendFloat(out, n.geom.y);
  out.append("\" w=\"");
  appendFloat(out, n.geom.w);
  out.append("\" h=\"");
  appendFloat(out, n.geom.h);
  out.append("\"/>\n");
  if (!n.text.empty()) {
    out.append("    <text>");
    appendEscaped(out, n.text);
    out.append("</text>\n");
  }
  // std::map iterates in byte-wise key order.
  for (const auto& [key, value] : n.properties) {
    out.append("    <property key=\"");
    appendEscaped(out, key);
    out.append("\" value=\"");
    appendEscaped(out, value);
    out.append("\"/>\n");
  }
  out.append("  </node>\n");
}

void appendEdgeXml(std::string& out, const core::Edge& e) {
  out.append("  <edge id=\"");
  appendEscaped(out, e.id);
  out.append("\" source=\"");
  appendEscaped(out, e.source);
  out.append("\" sourcePort=\"");
  out.append(core::anchorKey(e.sourcePort));
  out.append("\" target=\"");
  appendEscaped(out, e.target);
  out.append("\" targetPort=\"");
  out.append(core::anchorKey(e.targetPort));
  out.append("\" edgeType=\"");
  out.append(core::edgeKey(e.type));
  out.push_back('"');
  if (!e.text.empty()) {
    out.append(" text=\"");
    appendEscaped(out, e.text);
    out.push_back('"');
  }
  if (!std::isnan(e.srcAnchorDY)) {
    out.append(" srcAnchorDY=\"");
    appendFloat(out, e.srcAnchorDY);
    out.push_back('"');
  }
  if (!std::isnan(e.tgtAnchorDY)) {
    out.append(" tgtAnchorDY=\"");
    appendFloat(out, e.tgtAnchorDY);
    out.push_back('"');
  }
  out.append("/>\n");
}

std::string serializeDiagram(std::span<const core::Node> nodes, std::span<const core::Edge> edges) {
  std::string out;
  appendBody(out, nodes, edges);
  out.append(kFooter);
  return out;
}

std::string serializeDocument(const core::Document& doc) {
  // Same result as inserting the two blocks into serializeDiagram's text
  // before its closing tag, without searching and shifting the text.
  std::string out;
  appendBody(out, doc.nodes(), doc.edges());
  out.append(dataIntegrationBlock(doc.links()));
  out.append(diagramFrameLine(doc.frame()));
  out.append(kFooter);
  return out;
}

}  // namespace modelyne::io
