/// @file
/// BinaryStream: a cursor over a byte range, with the four codings of the binary form.
///
/// Fixed widths are little-endian; float and double are their IEEE 754 bits. A varint is a 32-bit value in
/// groups of seven bits, lowest first, bit 7 of a byte saying that another one follows: 1 to 5 bytes. A
/// signed varint is the varint of the zigzag form, which sends 0, -1, 1, -2 to 0, 1, 2, 3.
///
/// A stream borrows its bytes and lives on the stack for one call. Every read and write returns the number of
/// bytes that it took or needed. Nothing logs, throws or allocates.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zqxml {

/// A cursor over bytes that it borrows, with the codings of the binary form.
///
/// Reads are NOT checked against the limit: the caller must know that the bytes are there. Writes are: a
/// value that does not fit below the limit is not stored, never in part, and the position moves on all the
/// same, so that a stream over too small a range counts what it would have taken.
class BinaryStream {
 public:
  /// Bytes of the longest varint.
  static constexpr unsigned kMaxVarint = 5;

  /// Over the bytes from `buffer` to `buffer + limit`, which are borrowed.
  BinaryStream(char* buffer, std::uint64_t limit, std::uint64_t position = 0)
      : buffer_(buffer), limit_(limit), position_(position) {}

  /// @{
  /// The bytes, how many they are, and the place among them that is read or written next.
  char* buffer() const { return buffer_; }
  std::uint64_t limit() const { return limit_; }
  std::uint64_t position() const { return position_; }
  /// @}
  /// Bytes between position and limit; 0 beyond the limit.
  std::uint64_t remaining() const { return position_ < limit_ ? limit_ - position_ : 0; }

  /// @{
  /// Read a value and move on. Returned is what was taken.
  unsigned readFixed32(std::uint32_t& value) { return readFixed(value); }
  unsigned readFixed64(std::uint64_t& value) { return readFixed(value); }
  unsigned readFloat(float& value) {
    std::uint32_t bits = 0;
    readFixed(bits);
    value = std::bit_cast<float>(bits);
    return sizeof value;
  }
  unsigned readDouble(double& value) {
    std::uint64_t bits = 0;
    readFixed(bits);
    value = std::bit_cast<double>(bits);
    return sizeof value;
  }
  /// @}
  /// Stops after five bytes whatever the fifth holds; what does not fit 32 bits falls away.
  unsigned readVarint32(std::uint32_t& value) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(buffer_ + position_);
    std::uint32_t result = bytes[0] & 0x7fu;
    unsigned size = 1;
    for (; bytes[size - 1] >= 0x80 && size < kMaxVarint; ++size) {
      result |= (bytes[size] & 0x7fu) << (7 * size);
    }
    value = result;
    position_ += size;
    return size;
  }
  /// The same for a signed varint.
  unsigned readSignedVarint32(std::int32_t& value) {
    std::uint32_t encoded = 0;
    const unsigned size = readVarint32(encoded);
    value = unzigzag(encoded);
    return size;
  }

  /// @{
  /// Write a value, if it fits, and move on. Returned is what it takes.
  unsigned writeFixed32(std::uint32_t value) { return writeFixed(value); }
  unsigned writeFixed64(std::uint64_t value) { return writeFixed(value); }
  unsigned writeFloat(float value) { return writeFixed(std::bit_cast<std::uint32_t>(value)); }
  unsigned writeDouble(double value) { return writeFixed(std::bit_cast<std::uint64_t>(value)); }
  unsigned writeVarint32(std::uint32_t value) {
    const unsigned size = varint32Size(value);
    if (fits(size)) {
      char* to = buffer_ + position_;
      for (unsigned i = 1; i < size; ++i) {
        *to++ = static_cast<char>(value | 0x80);
        value >>= 7;
      }
      *to = static_cast<char>(value);
    }
    position_ += size;
    return size;
  }
  unsigned writeSignedVarint32(std::int32_t value) { return writeVarint32(zigzag(value)); }
  std::size_t writeBytes(const char* bytes, std::size_t size) {
    char* place = claim(size);
    if (place != nullptr && size != 0) std::memcpy(place, bytes, size);
    return size;
  }
  /// @}

  /// Moves on as a write of `size` bytes does; the place to store them, or null when they do not fit.
  char* claim(std::size_t size) {
    if (!fits(size)) [[unlikely]] {
      position_ = std::min(position_ + std::min<std::uint64_t>(size, kFar), kFar);
      return nullptr;
    }
    char* place = buffer_ + position_;
    position_ += size;
    return place;
  }

  /// Bytes that writeVarint32 needs.
  static constexpr unsigned varint32Size(std::uint32_t value) {
    // One byte for each seven bits begun: (bits + 6) / 7, at least 1.
    return (static_cast<unsigned>(std::bit_width(value | 1u)) * 9 + 64) / 64;
  }
  /// Bytes that writeSignedVarint32 needs.
  static constexpr unsigned signedVarint32Size(std::int32_t value) { return varint32Size(zigzag(value)); }

  /// @{
  /// The zigzag form of a number, and the number again.
  static constexpr std::uint32_t zigzag(std::int32_t value) {
    return (static_cast<std::uint32_t>(value) << 1) ^ (value < 0 ? ~0u : 0u);
  }
  static constexpr std::int32_t unzigzag(std::uint32_t encoded) {
    return static_cast<std::int32_t>((encoded >> 1) ^ (0u - (encoded & 1)));
  }
  /// @}

  /// Moves on by `size` bytes when that many are left; otherwise false, and the position stays.
  bool skip(std::size_t size) {
    if (!fits(size)) return false;
    position_ += size;
    return true;
  }
  /// True when `size` bytes are left.
  bool fits(std::size_t size) const { return position_ <= limit_ && size <= limit_ - position_; }

  /// The value as its bytes stand in the form.
  template <class T>
  static constexpr T littleEndian(T value) {
    if constexpr (std::endian::native == std::endian::little) {
      return value;
    } else {
      return sizeof(T) == 4 ? static_cast<T>(__builtin_bswap32(static_cast<std::uint32_t>(value)))
                            : static_cast<T>(__builtin_bswap64(value));
    }
  }

 private:
  template <class T>
  unsigned readFixed(T& value) {
    std::memcpy(&value, buffer_ + position_, sizeof value);
    value = littleEndian(value);
    position_ += sizeof value;
    return sizeof value;
  }
  template <class T>
  unsigned writeFixed(T value) {
    if (fits(sizeof value)) {
      value = littleEndian(value);
      std::memcpy(buffer_ + position_, &value, sizeof value);
    }
    position_ += sizeof value;
    return sizeof value;
  }

  /// Where the position of byte runs that do not fit ends, beyond any limit: it never comes round to bytes
  /// that exist.
  static constexpr std::uint64_t kFar = std::uint64_t{1} << 62;

  char* buffer_;
  std::uint64_t limit_;
  std::uint64_t position_;
};

static_assert(BinaryStream::varint32Size(0) == 1 && BinaryStream::varint32Size(127) == 1);
static_assert(BinaryStream::varint32Size(128) == 2 && BinaryStream::varint32Size(16383) == 2);
static_assert(BinaryStream::varint32Size(16384) == 3 && BinaryStream::varint32Size(2097151) == 3);
static_assert(BinaryStream::varint32Size(2097152) == 4 && BinaryStream::varint32Size(0xfffffff) == 4);
static_assert(BinaryStream::varint32Size(0x10000000) == 5 && BinaryStream::varint32Size(0xffffffff) == 5);

}  // namespace zqxml
