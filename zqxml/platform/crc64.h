#pragma once

#include <zqxml/platform/export.h>

#include <cstdint>

namespace zqxml {

/// The 64-bit checksum of ECMA-182, in the reflected form that the .xz format uses (check value of
/// "123456789": 0x995DC9BBDF1939FA). One object sums one sequence of bytes; it belongs to one thread at a
/// time.
class ZQXML_EXPORT CUlCRC64 {
 public:
  /// Adds `size` bytes to the sequence. A null `data` adds nothing.
  void UpdateCRC64(const unsigned char* data, unsigned size);
  /// The checksum of all bytes so far; 0 before the first.
  std::uint64_t GetCRC64() const { return value_; }
  /// Starts a new sequence.
  void Reset() { value_ = 0; }

 private:
  std::uint64_t value_ = 0;
};

}  // namespace zqxml
