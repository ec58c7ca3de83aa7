#pragma once
/// ShapeSet and EdgeSet: constant-time membership in a fixed set of shape or
/// edge types, built at compile time from a list. The checker's type tables
/// (allowed types, element categories, pillars) are written as such lists.

#include <array>
#include <cstdint>
#include <initializer_list>
#include <span>

#include "core/catalogue.h"

namespace modelyne::check {

class ShapeSet {
 public:
  constexpr ShapeSet() = default;
  constexpr ShapeSet(std::initializer_list<core::ShapeType> types) {
    for (const core::ShapeType t : types) add(t);
  }
  constexpr explicit ShapeSet(std::span<const core::ShapeType> types) {
    for (const core::ShapeType t : types) add(t);
  }

  constexpr bool contains(core::ShapeType t) const noexcept {
    const auto v = static_cast<std::uint32_t>(t);
    return v < kBits && ((words_[v / 64] >> (v % 64)) & 1u) != 0;
  }

  constexpr ShapeSet operator|(const ShapeSet& other) const noexcept {
    ShapeSet out;
    for (std::size_t i = 0; i < words_.size(); ++i) out.words_[i] = words_[i] | other.words_[i];
    return out;
  }

 private:
  static constexpr std::uint32_t kBits = 384;  // shape values end at 365

  constexpr void add(core::ShapeType t) {
    const auto v = static_cast<std::uint32_t>(t);
    if (v < kBits) words_[v / 64] |= std::uint64_t{1} << (v % 64);
  }

  std::array<std::uint64_t, kBits / 64> words_{};
};

class EdgeSet {
 public:
  constexpr EdgeSet() = default;
  constexpr EdgeSet(std::initializer_list<core::EdgeType> types) {
    for (const core::EdgeType t : types) add(t);
  }
  constexpr explicit EdgeSet(std::span<const core::EdgeType> types) {
    for (const core::EdgeType t : types) add(t);
  }

  constexpr bool contains(core::EdgeType t) const noexcept {
    const auto v = static_cast<std::uint32_t>(t);
    return v < 64 && ((bits_ >> v) & 1u) != 0;
  }

 private:
  constexpr void add(core::EdgeType t) {
    const auto v = static_cast<std::uint32_t>(t);
    if (v < 64) bits_ |= std::uint64_t{1} << v;
  }

  std::uint64_t bits_ = 0;
};

}  // namespace modelyne::check
