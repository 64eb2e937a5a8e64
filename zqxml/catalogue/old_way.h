/// @file
/// The 28 old-way subsystems: their objects are built whole, and marked set, at construction.
///
/// A list of its own, apart from the flag of the subsystem's row, because here the tag alone answers. zqcatc
/// refuses a row that says otherwise.
#pragma once

#include <array>
#include <cstddef>

namespace zqxml {

/// Whether a slot's subsystem is old-way.
inline constexpr auto kOldWaySlots = [] {
  std::array<bool, 256> slots{};
  for (int slot : {1,  2,  3,  4,  5,  6,  7,  9,   10,  11,  13,  15,  16,  17,
                   19, 25, 31, 33, 34, 36, 50, 103, 110, 111, 113, 114, 116, 201})
    slots[static_cast<std::size_t>(slot)] = true;
  return slots;
}();

/// The same for any number; false where there is no slot.
constexpr bool isOldWaySlot(int slot) {
  return slot >= 0 && slot < 256 && kOldWaySlots[static_cast<std::size_t>(slot)];
}

}  // namespace zqxml
