#include "core/anchor.h"

#include <array>

namespace modelyne::core {

namespace {
constexpr std::array<std::string_view, 8> kAnchorKeys = {
    "top", "bottom", "left", "right", "topLeft", "topRight", "bottomLeft", "bottomRight"};
}

std::string_view anchorKey(Anchor a) noexcept {
  const auto v = static_cast<std::int32_t>(a);
  if (v < 0 || v > 7) return "right";
  return kAnchorKeys[static_cast<std::size_t>(v)];
}

bool anchorFromKey(std::string_view key, Anchor& out) noexcept {
  for (std::size_t i = 0; i < kAnchorKeys.size(); ++i) {
    if (kAnchorKeys[i] == key) {
      out = static_cast<Anchor>(i);
      return true;
    }
  }
  return false;
}

Anchor normalizeAnchor(Anchor a) noexcept {
  const auto v = static_cast<std::int32_t>(a);
  return (v < 0 || v > 7) ? Anchor::right : a;
}

}  // namespace modelyne::core
