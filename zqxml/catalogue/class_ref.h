// ClassRef: the catalogue's internal link to a class. Byte order: big-endian, four bytes, unaligned.
#pragma once

#include <cstdint>

namespace zqxml {

/// The catalogue's internal link to a class, as two numbers. In tables it is four bytes, big-endian,
/// unaligned.
///
/// Top byte: slot of the subsystem. Low 24 bits: class index, that is the position in the subsystem's class
/// records. Not to be confused with a tag id, whose low 24 bits are a class id.
struct ClassRef {
  int subsystem = 0;   ///< slot
  int classIndex = 0;  ///< position in the subsystem's class records

  static constexpr unsigned kSize = 4;  ///< bytes in a table

  /// Reads the four bytes at `bytes`, which must not be null.
  static constexpr ClassRef read(const char* bytes) {
    const auto at = [bytes](int i) { return static_cast<int>(static_cast<unsigned char>(bytes[i])); };
    return {at(0), (at(1) << 16) | (at(2) << 8) | at(3)};
  }
};

/// Tag id of a class: slot in the top 8 bits, class id (24 bits) in the rest.
constexpr std::uint32_t makeTagId(int subsystem, std::uint32_t classId) {
  return (static_cast<std::uint32_t>(subsystem) << 24) | classId;
}
/// Slot of a tag id's subsystem.
constexpr int subsystemOfTag(std::uint32_t tagId) {
  return static_cast<int>(tagId >> 24);
}

}  // namespace zqxml
