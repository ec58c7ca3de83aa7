#include "core/model.h"

namespace modelyne::core {

namespace {
bool sameOffset(float a, float b) noexcept { return (std::isnan(a) && std::isnan(b)) || a == b; }
}  // namespace

bool sameEdge(const Edge& a, const Edge& b) noexcept {
  return a.id == b.id && a.source == b.source && a.sourcePort == b.sourcePort && a.target == b.target &&
         a.targetPort == b.targetPort && a.type == b.type && a.text == b.text &&
         sameOffset(a.srcAnchorDY, b.srcAnchorDY) && sameOffset(a.tgtAnchorDY, b.tgtAnchorDY);
}

}  // namespace modelyne::core
