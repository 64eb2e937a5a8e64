// Short ways to bytes in binary form: written by hand, made from messages, read back.
#pragma once

#include <zqxml/binary/binary_serializer.h>
#include <zqxml/catalogue/name_hash.h>
#include <zqxml/message/xn_message_base.h>

#include <cctype>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zqxml {

/// The private operations of BinarySerializer.
struct BinarySerializerTestAccess {
  static BinaryEncodingType encodingType(int type) {
    return BinarySerializer::getEncodingType(static_cast<char>(type));
  }
  static bool isCollectionType(int type) {
    return BinarySerializer::isCollectionType(static_cast<FieldDataType>(type));
  }
  static unsigned bodySize(XNMessageBase& object, int version = 2,
                           const BinarySerializer::BinarySerializerParameters* parameters = nullptr) {
    return BinarySerializer::calculateReqBinStreamSize(object, version, parameters);
  }
  static void writeBody(XNMessageBase& object, BinaryStream& stream, int version = 2) {
    BinarySerializer::serializeBinaryRecursive(object, stream, version, nullptr);
  }
  static bool readBody(XNMessageBase& object, BinaryStream& stream, std::size_t end, int version = 2) {
    return BinarySerializer::unserializeBinaryRecur(object, stream, end, version, nullptr, false);
  }
};

/// "4A 00" or "4a00" as bytes.
inline std::string fromHex(std::string_view hex) {
  std::string out;
  int high = -1;
  for (char c : hex) {
    if (std::isspace(static_cast<unsigned char>(c)) != 0) continue;
    const int digit = std::isdigit(static_cast<unsigned char>(c)) != 0 ? c - '0' : (c | 0x20) - 'a' + 10;
    if (high < 0) {
      high = digit;
    } else {
      out += static_cast<char>(high * 16 + digit);
      high = -1;
    }
  }
  return out;
}

/// "4a 00": what differs is easier to see than in escapes.
inline std::string toHex(std::string_view bytes) {
  std::string out;
  for (char byte : bytes) {
    char pair[4];
    std::snprintf(pair, sizeof pair, "%02x ", static_cast<unsigned>(static_cast<unsigned char>(byte)));
    out += pair;
  }
  if (!out.empty()) out.pop_back();
  return out;
}

/// Bytes put together by hand, without the library's own coding.
class Wire {
 public:
  Wire& fixed32(std::uint32_t value) { return fixed(value, 4); }
  Wire& fixed64(std::uint64_t value) { return fixed(value, 8); }
  Wire& varint(std::uint64_t value) {
    for (; value >= 0x80; value >>= 7) bytes_ += static_cast<char>(value | 0x80);
    bytes_ += static_cast<char>(value);
    return *this;
  }
  Wire& raw(std::string_view bytes) {
    bytes_ += bytes;
    return *this;
  }
  Wire& text(std::string_view bytes) { return varint(bytes.size()).raw(bytes); }
  Wire& key(std::string_view field, unsigned encoding) { return fixed32((nameHash(field) << 3) | encoding); }
  Wire& marker(std::uint32_t count) { return fixed32(0x7f7f7f78).varint(count); }

  operator const std::string&() const { return bytes_; }
  const std::string& bytes() const { return bytes_; }

 private:
  Wire& fixed(std::uint64_t value, int size) {
    for (int i = 0; i < size; ++i) bytes_ += static_cast<char>(value >> (8 * i));
    return *this;
  }

  std::string bytes_;
};

/// The message of a class with this body.
inline std::string withHeader(std::uint32_t tag, const std::string& body, std::uint32_t version = 2) {
  return Wire().fixed32(version).fixed32(tag).raw(body);
}

inline std::string_view contentOf(const BinaryBuffer& buffer) {
  return {buffer.getBuffer(), static_cast<std::size_t>(buffer.getDataSize())};
}

/// The whole form of a message; empty when it cannot be written.
inline std::string serialized(XNMessageBase& message, int version = 2) {
  BinaryBuffer buffer;
  return BinarySerializer::serialize(message, buffer, version) == 0 ? std::string()
                                                                    : std::string(contentOf(buffer));
}
inline std::string serializedBody(XNMessageBase& message, int version = 2) {
  return serialized(message, version).substr(8);
}

/// A block of exactly the bytes' size, so that a sanitizer sees the first byte read behind them.
class ExactBuffer {
 public:
  explicit ExactBuffer(std::string_view bytes) : block_(new char[bytes.size()]) {
    bytes.copy(block_.get(), bytes.size());
    buffer_.SetReadBuffer(block_.get(), bytes.size(), true);
  }
  operator BinaryBuffer&() { return buffer_; }
  BinaryBuffer* operator->() { return &buffer_; }

 private:
  std::unique_ptr<char[]> block_;
  BinaryBuffer buffer_;
};

inline int readInto(XNMessageBase& message, std::string_view bytes, bool keepExisting = false) {
  ExactBuffer buffer(bytes);
  return BinarySerializer::unserialize(message, buffer, nullptr, keepExisting);
}
inline std::unique_ptr<XNMessageBase> readNew(std::string_view bytes) {
  ExactBuffer buffer(bytes);
  return std::unique_ptr<XNMessageBase>(BinarySerializer::unserialize(buffer, nullptr, false));
}

}  // namespace zqxml
