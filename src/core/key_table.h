#pragma once
/// KeyTable: a lookup from persistent key to value, built at compile time
/// from a catalogue table (open addressing, FNV-1a). Readers of big files ask
/// it once per element, so a lookup is one hash of the key and, as a rule,
/// one comparison.
///
///   constexpr KeyTable<ShapeType, 256> kByKey(kShapes, keyOf, typeOf);
///   ShapeType t; if (kByKey.find("umlClass", t)) ...

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace modelyne::core {

template <class T, std::size_t Capacity>
class KeyTable {
  static_assert((Capacity & (Capacity - 1)) == 0, "the capacity is a power of two");

 public:
  template <class Entries, class KeyOf, class ValueOf>
  constexpr KeyTable(const Entries& entries, KeyOf keyOf, ValueOf valueOf) {
    std::size_t count = 0;
    for (const auto& e : entries) {
      const std::string_view key = keyOf(e);
      // At most half full, so that probe runs stay short; a key listed twice
      // is a fault of the table. Either stops compilation.
      if (key.empty() || ++count * 2 > Capacity) throw "KeyTable: empty key or too small";
      std::size_t i = hash(key) & kMask;
      for (; !keys_[i].empty(); i = (i + 1) & kMask)
        if (keys_[i] == key) throw "KeyTable: key listed twice";
      keys_[i] = key;
      values_[i] = valueOf(e);
    }
  }

  /// Exact, case-sensitive; false (and `out` untouched) for any other text.
  constexpr bool find(std::string_view key, T& out) const noexcept {
    for (std::size_t i = hash(key) & kMask;; i = (i + 1) & kMask) {
      if (keys_[i].empty()) return false;
      if (keys_[i] == key) {
        out = values_[i];
        return true;
      }
    }
  }

 private:
  static constexpr std::size_t kMask = Capacity - 1;
  static constexpr std::uint32_t hash(std::string_view key) noexcept {
    std::uint32_t h = 2166136261u;
    for (const char c : key) h = (h ^ static_cast<unsigned char>(c)) * 16777619u;
    return h;
  }

  std::array<std::string_view, Capacity> keys_{};
  std::array<T, Capacity> values_{};
};

}  // namespace modelyne::core
