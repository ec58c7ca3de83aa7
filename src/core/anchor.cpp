#include "core/anchor.h"

#include <array>

#include "core/key_table.h"

namespace modelyne::core {

namespace {
constexpr std::array<std::string_view, 8> kAnchorKeys = {
    "top", "bottom", "left", "right", "topLeft", "topRight", "bottomLeft", "bottomRight"};

struct AnchorEntry {
  std::string_view key;
  Anchor anchor;
};
constexpr std::array<AnchorEntry, 8> kAnchors = [] {
  std::array<AnchorEntry, 8> a{};
  for (std::size_t i = 0; i < a.size(); ++i) a[i] = {kAnchorKeys[i], static_cast<Anchor>(i)};
  return a;
}();
constexpr KeyTable<Anchor, 16> kAnchorByKey(
    kAnchors, [](const AnchorEntry& e) { return e.key; }, [](const AnchorEntry& e) { return e.anchor; });
}  // namespace

std::string_view anchorKey(Anchor a) noexcept {
  const auto v = static_cast<std::int32_t>(a);
  if (v < 0 || v > 7) return "right";
  return kAnchorKeys[static_cast<std::size_t>(v)];
}

bool anchorFromKey(std::string_view key, Anchor& out) noexcept { return kAnchorByKey.find(key, out); }

Anchor normalizeAnchor(Anchor a) noexcept {
  const auto v = static_cast<std::int32_t>(a);
  return (v < 0 || v > 7) ? Anchor::right : a;
}

}  // namespace modelyne::core
