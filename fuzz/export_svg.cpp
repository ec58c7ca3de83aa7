// Any diagram exports: nodes of every shape type (and unassigned values)
// with arbitrary geometry bits (NaN, infinities, huge, negative), text and
// properties, and edges of every type between existing, missing and equal
// ends. The SVG must come out whole, with only finite numbers.

#include <fuzzer/FuzzedDataProvider.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "core/model.h"
#include "export/diagram_drawing.h"
#include "export/svg_writer.h"

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

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider in(data, size);
  std::vector<core::Node> nodes(in.ConsumeIntegralInRange<std::size_t>(0, 12));
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    core::Node& n = nodes[i];
    n.id = in.ConsumeBool() ? std::to_string(i) : in.ConsumeRandomLengthString(4);
    n.type = static_cast<core::ShapeType>(in.ConsumeIntegralInRange<int>(-2, 370));
    n.geom = {anyFloat(in), anyFloat(in), anyFloat(in), anyFloat(in)};
    n.text = in.ConsumeRandomLengthString(40);
    n.fillColor = in.ConsumeRandomLengthString(8);
    for (int k = in.ConsumeIntegralInRange<int>(0, 4); k > 0; --k)
      n.properties[in.PickValueInArray(kKeys)] = in.ConsumeRandomLengthString(24);
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
    e.text = in.ConsumeRandomLengthString(16);
    if (in.ConsumeBool()) e.srcAnchorDY = anyFloat(in);
    if (in.ConsumeBool()) e.tgtAnchorDY = anyFloat(in);
  }
  core::DiagramFrame frame;
  frame.show = in.ConsumeBool();
  frame.name = in.ConsumeRandomLengthString(10);
  const float margin = anyFloat(in);
  const exporter::DrawingList list =
      exporter::buildDrawing(nodes, edges, {margin, in.ConsumeBool(), in.ConsumeBool() ? &frame : nullptr});
  const std::string svg = exporter::svgDocument(list);
  if (svg.size() < 7 || svg.compare(svg.size() - 7, 7, "</svg>\n") != 0) std::abort();
  // The builder drops what cannot be drawn, so every number written is finite.
  for (const exporter::Primitive& p : list.items)
    for (float v : p.v)
      if (!std::isfinite(v)) std::abort();
  for (const exporter::Point& p : list.points)
    if (!std::isfinite(p.x) || !std::isfinite(p.y)) std::abort();
  if (!std::isfinite(list.bounds.x) || !std::isfinite(list.bounds.width)) std::abort();
  return 0;
}
