// The sinks of BodyWriter: one counts the bytes of a body, two write them.
//
// All have the same operations, so that one body of code serves both passes and they cannot drift. Each takes
// the position that it starts at and returns the one behind it: handed on by value, it stays in a register.
//
//   fixed32, fixed64, varint   one value
//   bytes                      a byte run that exists
//   wholeText                  a string with its length (where kWholeTexts says that nothing is cut off)
//   produce(at, size, make)    a byte run of known size that make(char*) writes in place
//   group(at, size, nested)    values of known size that nested(at) hands to the sink
//   numbers<E>                 the elements of a packed list, whose size the caller knows
//
// Counting calls neither make nor nested.
#pragma once

#include <zqxml/binary/binary_stream.h>
#include <zqxml/binary/internal/wire_form.h>

#include <bit>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace zqxml {

/// First pass: sizes only.
class ByteCounter {
 public:
  static constexpr bool kCounts = true;
  static constexpr bool kTraces = false;
  static constexpr bool kWholeTexts = false;
  static constexpr const char* kFunction = "BinarySerializer::calculateReqBinStreamSize";
  using Position = std::uint64_t;

  static Position fixed32(Position at, std::uint32_t) { return at + 4; }
  static Position fixed64(Position at, std::uint64_t) { return at + 8; }
  static Position varint(Position at, std::uint32_t value) { return at + BinaryStream::varint32Size(value); }
  static Position bytes(Position at, std::string_view run) { return at + run.size(); }
  template <class Make>
  static Position produce(Position at, std::uint64_t size, Make&&) {
    return at + size;
  }
  template <class Nested>
  static Position group(Position at, std::uint64_t size, Nested&&) {
    return at + size;
  }
  template <element::Number E>
  static Position numbers(Position at, std::uint64_t size, const std::vector<typename E::Value>&) {
    return at + size;
  }
};

/// Second pass: into a byte range. What does not fit is not stored, as BinaryStream has it, and counts all
/// the same.
class ByteWriter {
 public:
  static constexpr bool kCounts = false;
  static constexpr bool kTraces = true;
  static constexpr bool kWholeTexts = false;
  static constexpr const char* kFunction = "BinarySerializer::serializeBinaryRecursive";
  using Position = std::uint64_t;

  ByteWriter(char* buffer, std::uint64_t limit) : buffer_(buffer), limit_(limit) {}

  Position fixed32(Position at, std::uint32_t value) const {
    return write(at, [value](BinaryStream& stream) { stream.writeFixed32(value); });
  }
  Position fixed64(Position at, std::uint64_t value) const {
    return write(at, [value](BinaryStream& stream) { stream.writeFixed64(value); });
  }
  Position varint(Position at, std::uint32_t value) const {
    return write(at, [value](BinaryStream& stream) { stream.writeVarint32(value); });
  }
  Position bytes(Position at, std::string_view run) const {
    return write(at, [run](BinaryStream& stream) { stream.writeBytes(run.data(), run.size()); });
  }
  template <class Make>
  Position produce(Position at, std::uint64_t size, Make&& make) const {
    return write(at, [size, &make](BinaryStream& stream) {
      if (char* place = stream.claim(size); place != nullptr) make(place);
    });
  }
  template <class Nested>
  static Position group(Position at, std::uint64_t, Nested&& nested) {
    return nested(at);
  }
  template <element::Number E>
  Position numbers(Position at, std::uint64_t, const std::vector<typename E::Value>& values) const {
    return write(at, [&values](BinaryStream& stream) {
      for (const auto value : values) {
        if constexpr (wire::kCoding<E> == wire::NumberCoding::kZigzag) {
          stream.writeSignedVarint32(value);
        } else if constexpr (wire::kCoding<E> == wire::NumberCoding::kVarint) {
          stream.writeVarint32(value);
        } else if constexpr (wire::kCoding<E> == wire::NumberCoding::kFixed64) {
          stream.writeFixed64(std::bit_cast<std::uint64_t>(value));
        } else {
          stream.writeFixed32(std::bit_cast<std::uint32_t>(value));
        }
      }
    });
  }

 private:
  /// The stream lives in registers for the length of `values`.
  template <class Values>
  Position write(Position at, Values&& values) const {
    BinaryStream stream(buffer_, limit_, at);
    values(stream);
    return stream.position();
  }

  char* const buffer_;
  const std::uint64_t limit_;
};

/// Second pass where the first one has counted exactly these bytes and found every string to be written as a
/// whole, and no line is logged: into a range that holds them, unchecked.
class ExactWriter {
 public:
  static constexpr bool kCounts = false;
  static constexpr bool kTraces = false;
  static constexpr bool kWholeTexts = true;
  static constexpr const char* kFunction = ByteWriter::kFunction;
  using Position = char*;

  /// `end` is that of the range.
  explicit ExactWriter(const char* end) : end_(end) {}

  static Position fixed32(Position at, std::uint32_t value) { return fixed(at, value); }
  static Position fixed64(Position at, std::uint64_t value) { return fixed(at, value); }
  static Position varint(Position at, std::uint32_t value) {
    for (; value >= 0x80; value >>= 7) *at++ = static_cast<char>(value | 0x80);
    *at++ = static_cast<char>(value);
    return at;
  }
  static Position bytes(Position at, std::string_view run) {
    if (!run.empty()) std::memcpy(at, run.data(), run.size());
    return at + run.size();
  }
  Position wholeText(Position at, const std::string& text) const {
    // Most are short, and copies of fixed length need no call. What is copied from behind a short text is
    // written over by what follows it.
    constexpr std::size_t kBlock = wire::kStringRoom;
    const std::size_t size = text.size();
    at = varint(at, static_cast<std::uint32_t>(size));
    if (size < kBlock && static_cast<std::size_t>(end_ - at) >= kBlock) [[likely]] {
      std::memcpy(at, text.data(), kBlock);
    } else if (size >= kBlock && size <= 2 * kBlock) {
      std::memcpy(at, text.data(), kBlock);
      std::memcpy(at + size - kBlock, text.data() + size - kBlock, kBlock);
    } else {
      // NOLINTNEXTLINE(bugprone-not-null-terminated-result): the length stands before it
      std::memcpy(at, text.data(), size);
    }
    return at + size;
  }
  template <class Make>
  static Position produce(Position at, std::uint64_t size, Make&& make) {
    make(at);
    return at + size;
  }
  template <class Nested>
  static Position group(Position at, std::uint64_t, Nested&& nested) {
    return nested(at);
  }
  template <element::Number E>
  static Position numbers(Position at, std::uint64_t size, const std::vector<typename E::Value>& values) {
    if constexpr (wire::kCopied<E>) return bytes(at, {reinterpret_cast<const char*>(values.data()), size});
    for (const auto value : values) {
      if constexpr (wire::kCoding<E> == wire::NumberCoding::kZigzag) {
        at = varint(at, BinaryStream::zigzag(value));
      } else if constexpr (wire::kCoding<E> == wire::NumberCoding::kVarint) {
        at = varint(at, value);
      } else if constexpr (wire::kCoding<E> == wire::NumberCoding::kFixed64) {
        at = fixed64(at, std::bit_cast<std::uint64_t>(value));
      } else {
        at = fixed32(at, std::bit_cast<std::uint32_t>(value));
      }
    }
    return at;
  }

 private:
  template <class T>
  static Position fixed(Position at, T value) {
    value = BinaryStream::littleEndian(value);
    std::memcpy(at, &value, sizeof value);
    return at + sizeof value;
  }

  const char* const end_;
};

/// Bytes of a packed list's elements.
template <element::Number E>
std::uint64_t packedSize(const std::vector<typename E::Value>& values) {
  constexpr wire::NumberCoding kCoding = wire::kCoding<E>;
  if constexpr (kCoding == wire::NumberCoding::kFixed64 || kCoding == wire::NumberCoding::kFixed32) {
    return std::uint64_t{values.size()} * wire::kLeastSize<E>;
  } else {
    // One byte each, and one more for each threshold that is reached: no branches, so it is done in vectors.
    std::uint64_t size = values.size();
    for (const auto value : values) {
      auto bits = static_cast<std::uint32_t>(value);
      if constexpr (kCoding == wire::NumberCoding::kZigzag) bits = BinaryStream::zigzag(value);
      size += 0u + (bits >= 0x80) + (bits >= 0x4000) + (bits >= 0x200000) + (bits >= 0x10000000);
    }
    return size;
  }
}

}  // namespace zqxml
