#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace velmora {

/// Finds the row of a table by its id with one multiplication and one comparison: a multiplier,
/// searched at compile time, spreads the ids so that no two share a slot.
template <std::size_t Rows>
class IdIndex {
 public:
  static constexpr std::size_t kNone = Rows;

  template <class Row>
  explicit consteval IdIndex(const Row (&rows)[Rows]) {
    for (std::size_t i = 0; i < Rows; ++i) ids_[i] = rows[i].id;
    while (!spread()) multiplier_ += 2;
  }

  /// Index of the row with this id, or `kNone`.
  constexpr std::size_t operator()(int id) const {
    const std::size_t row = slots_[slotOf(id)];
    return row != kNone && ids_[row] == id ? row : kNone;
  }

 private:
  static constexpr unsigned kSlotBits = 11;
  static_assert(Rows < 255);

  constexpr std::size_t slotOf(int id) const {
    return (static_cast<std::uint32_t>(id) * multiplier_) >> (32 - kSlotBits);
  }

  /// Whether the current multiplier gives every id a slot of its own.
  constexpr bool spread() {
    slots_.fill(kNone);
    for (std::size_t row = 0; row < Rows; ++row) {
      std::uint8_t& slot = slots_[slotOf(ids_[row])];
      if (slot != kNone) return false;
      slot = static_cast<std::uint8_t>(row);
    }
    return true;
  }

  std::uint32_t multiplier_ = 0x9E3779B1;
  std::array<int, Rows> ids_{};
  std::array<std::uint8_t, std::size_t{1} << kSlotBits> slots_{};
};

}  // namespace velmora
