#include "synthetic.h"

#include <cmath>
#include <cstdio>
#include <random>
#include <sstream>

namespace modelyne::bench {

namespace {

using core::EdgeType;
using core::ShapeType;

constexpr ShapeType kShapes[] = {
    ShapeType::sysmlBlock,       ShapeType::sysmlPartUsage,   ShapeType::umlClass,
    ShapeType::sysmlRequirementDef, ShapeType::umlAction,     ShapeType::umlState,
    ShapeType::sysmlActionUsage, ShapeType::umlUseCase,       ShapeType::umlNote,
    ShapeType::sysmlPort,        ShapeType::bpmnTask,         ShapeType::mindmapMainTopic,
    ShapeType::sysmlConstraintBlock, ShapeType::umlDecision,  ShapeType::rect,
};
constexpr EdgeType kEdges[] = {
    EdgeType::straightArrow, EdgeType::association,   EdgeType::composition, EdgeType::generalization,
    EdgeType::dependency,    EdgeType::sysmlSatisfy,  EdgeType::elbowArrow,  EdgeType::curvedArrow,
    EdgeType::sysmlControlFlow, EdgeType::sysmlAllocate, EdgeType::sysmlSyncMessage, EdgeType::mindmapBranch,
};
constexpr const char* kColours[] = {"", "", "blue", "red", "green", "yellow", "orange", "purple"};
constexpr const char* kWords[] = {"Brake", "Engine", "Controller", "Sensor", "Pump", "Valve", "Display",
                                  "Battery", "Motor", "Gateway", "Bus", "Monitor", "Filter", "Cooling"};

template <class T, std::size_t N>
const T& pick(const T (&arr)[N], std::mt19937_64& rng) {
  return arr[rng() % N];
}

}  // namespace

void syntheticDocument(core::Document& doc, std::size_t nodes, std::uint64_t seed) {
  std::mt19937_64 rng(seed);
  const std::size_t edges = nodes + nodes / 2;
  doc.reserve(nodes, edges);
  const std::size_t columns = std::max<std::size_t>(1, static_cast<std::size_t>(std::sqrt(static_cast<double>(nodes))));
  for (std::size_t i = 0; i < nodes; ++i) {
    core::Node n;
    n.id = "n" + std::to_string(i);
    n.type = pick(kShapes, rng);
    n.geom = {static_cast<float>((i % columns) * 220 + 40), static_cast<float>((i / columns) * 150 + 40), 160.f,
              90.f};
    n.text = std::string(pick(kWords, rng)) + " " + pick(kWords, rng) + " " + std::to_string(i);
    n.fillColor = pick(kColours, rng);
    if (rng() % 4 == 0) n.properties["documentation"] = "Generated element " + std::to_string(i) + " & notes";
    if (n.type == ShapeType::sysmlRequirementDef) {
      n.properties["reqId"] = "REQ-" + std::to_string(i);
      n.properties["requirementText"] = "The system shall <respond> within " + std::to_string(i % 100) + " ms.";
    }
    doc.addNode(std::move(n));
  }
  for (std::size_t i = 0; nodes > 1 && i < edges; ++i) {
    core::Edge e;
    e.id = "e" + std::to_string(i);
    // Mostly near neighbours (like hand-drawn diagrams), some long links.
    const std::size_t s = rng() % nodes;
    const std::size_t t = (rng() % 8 == 0) ? rng() % nodes : (s + 1 + rng() % 3) % nodes;
    e.source = "n" + std::to_string(s);
    e.target = "n" + std::to_string(t);
    e.sourcePort = static_cast<core::Anchor>(rng() % 4);
    e.targetPort = static_cast<core::Anchor>(rng() % 4);
    e.type = pick(kEdges, rng);
    if (rng() % 3 == 0) e.text = "flow " + std::to_string(i);
    if (e.type == EdgeType::sysmlSyncMessage) e.srcAnchorDY = e.tgtAnchorDY = static_cast<float>(rng() % 80) + 0.5f;
    doc.addEdge(std::move(e));
  }
}

namespace {
void escape(std::string& out, const std::string& s) {
  for (char c : s) {
    switch (c) {
      case '"': out += "&quot;"; break;
      case '&': out += "&amp;"; break;
      case '\'': out += "&apos;"; break;
      case '<': out += "&lt;"; break;
      case '>': out += "&gt;"; break;
      default: out += c;
    }
  }
}
std::string num(float v) {
  std::ostringstream os;
  os << v;
  return os.str();
}
}  // namespace

std::string syntheticDiagramXml(std::size_t nodes, std::uint64_t seed) {
  core::Document doc;
  syntheticDocument(doc, nodes, seed);
  std::string out;
  out.reserve(nodes * 260);
  out += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
  out += "<diagram formatVersion=\"1.0\" appVersion=\"0.1.0-win\" xmlns=\"modelyne:diagram\">\n";
  for (const core::Node& n : doc.nodes()) {
    out += "  <node id=\"";
    escape(out, n.id);
    out += "\" type=\"";
    out += core::shapeKey(n.type);
    out += "\"";
    if (!n.fillColor.empty()) {
      out += " fillColor=\"";
      escape(out, n.fillColor);
      out += "\"";
    }
    out += ">\n    <geom x=\"" + num(n.geom.x) + "\" y=\"" + num(n.geom.y) + "\" w=\"" + num(n.geom.w) + "\" h=\"" +
           num(n.geom.h) + "\"/>\n";
    if (!n.text.empty()) {
      out += "    <text>";
      escape(out, n.text);
      out += "</text>\n";
    }
    for (const auto& [k, v] : n.properties) {
      out += "    <property key=\"";
      escape(out, k);
      out += "\" value=\"";
      escape(out, v);
      out += "\"/>\n";
    }
    out += "  </node>\n";
  }
  for (const core::Edge& e : doc.edges()) {
    out += "  <edge id=\"";
    escape(out, e.id);
    out += "\" source=\"";
    escape(out, e.source);
    out += "\" sourcePort=\"";
    out += core::anchorKey(e.sourcePort);
    out += "\" target=\"";
    escape(out, e.target);
    out += "\" targetPort=\"";
    out += core::anchorKey(e.targetPort);
    out += "\" edgeType=\"";
    out += core::edgeKey(e.type);
    out += "\"";
    if (!e.text.empty()) {
      out += " text=\"";
      escape(out, e.text);
      out += "\"";
    }
    if (!std::isnan(e.srcAnchorDY)) out += " srcAnchorDY=\"" + num(e.srcAnchorDY) + "\"";
    if (!std::isnan(e.tgtAnchorDY)) out += " tgtAnchorDY=\"" + num(e.tgtAnchorDY) + "\"";
    out += "/>\n";
  }
  out += "  <DiagramFrame kind=\"bdd\" elementType=\"package\" elementName=\"Synthetic\" name=\"\" show=\"true\"/>\n";
  out += "</diagram>\n";
  return out;
}

}  // namespace modelyne::bench
