#pragma once
/// FirstSeen: remembers the first element of each key in one flat
/// open-addressing table of positions, so the duplicate rules (names,
/// reqIds, allocations) run in linear time without a heap node per entry.
/// The caller supplies the key's hash and an equality test on positions.

#include <cstdint>
#include <vector>

namespace modelyne::check {

class FirstSeen {
 public:
  static constexpr std::uint32_t kNew = 0xFFFFFFFFu;

  explicit FirstSeen(std::size_t expected) {
    std::size_t cap = 16;
    while (cap < expected * 2) cap <<= 1;
    slots_.assign(cap, Slot{});
    mask_ = cap - 1;
  }

  /// The position first recorded under a key equal to `pos`'s, or kNew after
  /// recording `pos`. `same(other)` tells whether `other`'s key equals `pos`'s.
  template <class Same>
  std::uint32_t firstOf(std::uint64_t hash, std::uint32_t pos, Same&& same) {
    const auto h = static_cast<std::uint32_t>(hash ^ (hash >> 32));
    if ((count_ + 1) * 2 > slots_.size()) grow();
    std::size_t i = h & mask_;
    for (; slots_[i].pos1 != 0; i = (i + 1) & mask_)
      if (slots_[i].hash == h && same(slots_[i].pos1 - 1)) return slots_[i].pos1 - 1;
    slots_[i] = Slot{pos + 1, h};
    ++count_;
    return kNew;
  }

 private:
  struct Slot {
    std::uint32_t pos1 = 0;  // position + 1; 0 is empty
    std::uint32_t hash = 0;
  };

  void grow() {
    std::vector<Slot> old(slots_.size() * 2);
    old.swap(slots_);
    mask_ = slots_.size() - 1;
    for (const Slot& s : old) {
      if (s.pos1 == 0) continue;
      std::size_t i = s.hash & mask_;
      while (slots_[i].pos1 != 0) i = (i + 1) & mask_;
      slots_[i] = s;
    }
  }

  std::vector<Slot> slots_;
  std::size_t mask_ = 0;
  std::size_t count_ = 0;
};

}  // namespace modelyne::check
