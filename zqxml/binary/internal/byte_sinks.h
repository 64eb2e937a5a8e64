// The two sinks of BodyWriter: one counts the bytes of a body, the other one writes them.
//
// Both have the same operations, so that one body of code serves both passes and they cannot drift:
//
//   fixed32, fixed64, varint   one value
//   bytes                      a byte run that exists
//   produce(size, make)        a byte run of known size that make(char*) writes in place; counting does not
//   call it group(size, write)         values of known size that write() hands to the sink; counting does not
//   call it
#pragma once

#include <zqxml/binary/binary_stream.h>
#include <zqxml/binary/internal/wire_form.h>

#include <bit>
#include <cstdint>
#include <string_view>
#include <vector>

namespace zqxml {

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

/// First pass: sizes only.
class ByteCounter {
 public:
  static constexpr bool kCounts = true;
  static constexpr const char* kFunction = "BinarySerializer::calculateReqBinStreamSize";

  std::uint64_t size() const { return size_; }

  void fixed32(std::uint32_t) { size_ += 4; }
  void fixed64(std::uint64_t) { size_ += 8; }
  void varint(std::uint32_t value) { size_ += BinaryStream::varint32Size(value); }
  void bytes(std::string_view run) { size_ += run.size(); }
  template <class Make>
  void produce(std::size_t size, Make&&) {
    size_ += size;
  }
  template <class Write>
  void group(std::uint64_t size, Write&&) {
    size_ += size;
  }
  template <element::Number E>
  void numbers(const std::vector<typename E::Value>&) {}

 private:
  std::uint64_t size_ = 0;
};

/// Second pass: into a stream.
class ByteWriter {
 public:
  static constexpr bool kCounts = false;
  static constexpr const char* kFunction = "BinarySerializer::serializeBinaryRecursive";

  explicit ByteWriter(BinaryStream& stream) : stream_(stream) {}

  std::uint64_t position() const { return stream_.position(); }

  void fixed32(std::uint32_t value) { stream_.writeFixed32(value); }
  void fixed64(std::uint64_t value) { stream_.writeFixed64(value); }
  void varint(std::uint32_t value) { stream_.writeVarint32(value); }
  void bytes(std::string_view run) { stream_.writeBytes(run.data(), run.size()); }
  template <class Make>
  void produce(std::size_t size, Make&& make) {
    if (char* place = stream_.claim(size); place != nullptr) make(place);
  }
  template <class Write>
  void group(std::uint64_t, Write&& write) {
    write();
  }
  template <element::Number E>
  void numbers(const std::vector<typename E::Value>& values) {
    BinaryStream stream = stream_;  // a copy that nothing else can reach stays in registers
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
    stream_ = stream;
  }

 private:
  BinaryStream& stream_;
};

}  // namespace zqxml
