#pragma once
/// Anchor: the port on a node's box where an edge end attaches, with its
/// persistent keys ("top", "bottomRight", ...) and the fall-backs to `right`.

#include <cstdint>
#include <string_view>

namespace modelyne::core {

enum class Anchor : std::int32_t {
  top = 0,
  bottom = 1,
  left = 2,
  right = 3,
  topLeft = 4,
  topRight = 5,
  bottomLeft = 6,
  bottomRight = 7,
};

/// Persistent key of an anchor; any value outside 0..7 yields "right".
std::string_view anchorKey(Anchor a) noexcept;

/// Exact, case-sensitive key lookup. On failure returns false and leaves
/// `out` untouched, so the caller keeps its default.
bool anchorFromKey(std::string_view key, Anchor& out) noexcept;

/// Values outside 0..7 become `right`.
Anchor normalizeAnchor(Anchor a) noexcept;

}  // namespace modelyne::core
