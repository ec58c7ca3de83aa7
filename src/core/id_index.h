#pragma once
/// IdIndex: an open-addressing hash index from an element's id to its
/// position in an ordered sequence (nodes or edges). It stores positions
/// only (8 bytes a slot) and reads the ids from the sequence itself, so it
/// costs little memory and never holds a pointer that a reallocation moves.
/// Bulk fills (a file being read) hash a batch of ids first and `prefetch`
/// their slots, then insert with the hashes they already have.

#include <cstdint>
#include <functional>
#include <string_view>
#include <utility>
#include <vector>

namespace modelyne::core {

template <class T>
class IdIndex {
 public:
  explicit IdIndex(const std::vector<T>& items) : items_(items) {}

  /// Position of the element with this id, or -1.
  int find(std::string_view id) const noexcept {
    if (slots_.empty()) return -1;
    const std::uint32_t h = hashOf(id);
    for (std::size_t i = h & mask_;; i = (i + 1) & mask_) {
      const Slot& s = slots_[i];
      if (s.pos == kEmpty) return -1;
      if (s.hash == h && items_[s.pos].id == id) return static_cast<int>(s.pos);
    }
  }

  /// Records that the element at `pos` has the (new, unused) id.
  void insert(std::string_view id, std::uint32_t pos) {
    if ((count_ + 1) * 2 > slots_.size()) grow();
    place(hashOf(id), pos);
    ++count_;
  }

  /// Records `pos` for the id unless the id is already present; one probe
  /// run serves both the check and the insertion. False when present.
  bool insertIfAbsent(std::string_view id, std::uint32_t pos) {
    if ((count_ + 1) * 2 > slots_.size()) grow();
    return insertHashedIfAbsent(id, hashOf(id), pos);
  }

  /// The hash the index files `id` under.
  static std::uint32_t hashOf(std::string_view id) noexcept {
    const std::size_t h = std::hash<std::string_view>{}(id);
    return static_cast<std::uint32_t>(h ^ (h >> 32));
  }

  /// Makes room for `more` insertions without growing in between, so that
  /// slots prefetched for them stay where they are.
  void reserveMore(std::size_t more) {
    if ((count_ + more) * 2 > slots_.size()) reserve(count_ + more);
  }

  /// Asks the processor to fetch the home slot of hash `h` ahead of use.
  void prefetch(std::uint32_t h) const noexcept {
#if defined(__GNUC__)
    __builtin_prefetch(&slots_[h & mask_]);
#else
    (void)h;
#endif
  }

  /// insertIfAbsent with the id's hash already known; room must have been
  /// made with `reserveMore`.
  bool insertHashedIfAbsent(std::string_view id, std::uint32_t h, std::uint32_t pos) noexcept {
    std::size_t i = h & mask_;
    for (;; i = (i + 1) & mask_) {
      const Slot& s = slots_[i];
      if (s.pos == kEmpty) break;
      if (s.hash == h && items_[s.pos].id == id) return false;
    }
    slots_[i] = Slot{pos, h};
    ++count_;
    return true;
  }

  /// Forgets the id (backward-shift deletion keeps probe runs intact).
  void erase(std::string_view id) noexcept {
    if (slots_.empty()) return;
    const std::uint32_t h = hashOf(id);
    std::size_t i = h & mask_;
    for (;; i = (i + 1) & mask_) {
      const Slot& s = slots_[i];
      if (s.pos == kEmpty) return;
      if (s.hash == h && items_[s.pos].id == id) break;
    }
    std::size_t hole = i;
    for (std::size_t j = (hole + 1) & mask_; slots_[j].pos != kEmpty; j = (j + 1) & mask_) {
      const std::size_t home = slots_[j].hash & mask_;
      // Move j into the hole unless its home lies cyclically in (hole, j].
      const bool homeInRange = hole <= j ? (home > hole && home <= j) : (home > hole || home <= j);
      if (!homeInRange) {
        slots_[hole] = slots_[j];
        hole = j;
      }
    }
    slots_[hole].pos = kEmpty;
    --count_;
  }

  /// Records that the element at `from` moved to `to` and the ones between
  /// shifted by one towards `from` (a rotate of the sequence).
  void moveEntry(std::uint32_t from, std::uint32_t to) noexcept {
    if (from == to) return;
    for (Slot& s : slots_) {
      if (s.pos == kEmpty) continue;
      if (s.pos == from) {
        s.pos = to;
      } else if (from < to && s.pos > from && s.pos <= to) {
        --s.pos;
      } else if (from > to && s.pos >= to && s.pos < from) {
        ++s.pos;
      }
    }
  }

  /// Adds `delta` to every stored position >= `from` (after an insert or erase in the middle).
  void shift(std::uint32_t from, int delta) noexcept {
    for (Slot& s : slots_)
      if (s.pos != kEmpty && s.pos >= from) s.pos = static_cast<std::uint32_t>(static_cast<int>(s.pos) + delta);
  }

  /// Rebuilds from the sequence (ids there are unique).
  void rebuild() {
    count_ = items_.size();
    std::size_t cap = 16;
    while (cap < count_ * 2 + 2) cap <<= 1;
    slots_.assign(cap, Slot{});
    mask_ = cap - 1;
    for (std::uint32_t p = 0; p < items_.size(); ++p) place(hashOf(items_[p].id), p);
  }

  void clear() noexcept {
    slots_.clear();
    mask_ = 0;
    count_ = 0;
  }

  void reserve(std::size_t n) {
    if (n * 2 + 2 > slots_.size()) {
      std::size_t cap = 16;
      while (cap < n * 2 + 2) cap <<= 1;
      rehash(cap);
    }
  }

  std::size_t memoryBytes() const noexcept { return slots_.capacity() * sizeof(Slot); }

  /// Exchanges the entries with `other`, whose sequence has been exchanged
  /// with this one's (each index keeps reading its own sequence).
  void swapEntries(IdIndex& other) noexcept {
    slots_.swap(other.slots_);
    std::swap(mask_, other.mask_);
    std::swap(count_, other.count_);
  }

 private:
  static constexpr std::uint32_t kEmpty = 0xFFFFFFFFu;
  struct Slot {
    std::uint32_t pos = kEmpty;
    std::uint32_t hash = 0;
  };

  void place(std::uint32_t h, std::uint32_t pos) noexcept {
    std::size_t i = h & mask_;
    while (slots_[i].pos != kEmpty) i = (i + 1) & mask_;
    slots_[i] = Slot{pos, h};
  }

  void grow() { rehash(slots_.empty() ? 16 : slots_.size() * 2); }

  void rehash(std::size_t cap) {
    std::vector<Slot> old;
    old.swap(slots_);
    slots_.assign(cap, Slot{});
    mask_ = cap - 1;
    for (const Slot& s : old)
      if (s.pos != kEmpty) place(s.hash, s.pos);
  }

  const std::vector<T>& items_;
  std::vector<Slot> slots_;
  std::size_t mask_ = 0;
  std::size_t count_ = 0;
};

}  // namespace modelyne::core
