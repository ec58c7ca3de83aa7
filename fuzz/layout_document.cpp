// Lays out arbitrary documents built from the bytes: any shape and edge
// types (assigned or not), any float geometry (NaN, infinities, huge,
// negative), edges with dangling or repeated ends and any anchors. Each
// layout must either lay out every node with finite corners or leave the
// document untouched with a reason, give the same rectangles when run
// again, and never change the document.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "layout/layout.h"

using namespace modelyne;

namespace {

class Bytes {
 public:
  Bytes(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}
  bool empty() const { return at_ >= size_; }
  std::uint8_t byte() { return at_ < size_ ? data_[at_++] : 0; }
  std::int32_t int32() {
    std::uint32_t v = 0;
    for (int i = 0; i < 4; ++i) v = (v << 8) | byte();
    return static_cast<std::int32_t>(v);
  }
  float real() {
    const std::uint8_t kind = byte();
    if (kind < 200) return static_cast<float>(static_cast<std::int8_t>(byte())) * 8.0f;
    std::uint32_t bits = static_cast<std::uint32_t>(int32());
    float f;
    std::memcpy(&f, &bits, sizeof f);
    return f;
  }

 private:
  const std::uint8_t* data_;
  std::size_t size_;
  std::size_t at_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Bytes in(data, size);
  core::Document doc;
  const int nodes = in.byte() % 64;
  for (int i = 0; i < nodes; ++i) {
    core::Node n;
    n.id = "n" + std::to_string(in.byte() % 80);
    const std::uint8_t pick = in.byte();
    n.type = static_cast<core::ShapeType>(pick < 240 ? (pick * 3) % 370 : in.int32());
    n.geom = {in.real(), in.real(), in.real(), in.real()};
    doc.addNode(std::move(n));
  }
  while (!in.empty()) {
    core::Edge e;
    e.id = "e" + std::to_string(doc.edges().size());
    e.source = "n" + std::to_string(in.byte() % 80);
    e.target = "n" + std::to_string(in.byte() % 80);
    e.sourcePort = static_cast<core::Anchor>(in.byte() % 10);
    e.targetPort = static_cast<core::Anchor>(in.byte() % 10);
    e.type = static_cast<core::EdgeType>(in.byte() % 50);
    doc.addEdge(std::move(e));
  }
  for (auto run : {&layout::layoutLayered, &layout::layoutOrganic}) {
    const layout::LayoutResult r = run(doc, {});
    if (r.laidOut) {
      if (r.placements.size() != doc.nodes().size()) __builtin_trap();
      for (std::size_t i = 0; i < r.placements.size(); ++i) {
        const core::NodeGeometry& g = r.placements[i].geom;
        if (r.placements[i].id != doc.nodes()[i].id || !std::isfinite(g.x) || !std::isfinite(g.y)) __builtin_trap();
      }
    } else if (r.reason.empty() || !r.placements.empty()) {
      __builtin_trap();
    }
    if (run(doc, {}).placements != r.placements) __builtin_trap();
  }
  return 0;
}
