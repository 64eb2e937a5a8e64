// WireReader: the values of the binary form, each read only when the bytes left hold it, with an observer
// that may watch every byte.
//
// The observer makes one reader serve both the decoder (SilentObserver: failures go to the log, nothing else
// happens) and the explainer of binary messages, so that what is explained is what the decoder does.
#pragma once

#include <zqxml/binary/binary_stream.h>
#include <zqxml/binary/internal/wire_form.h>
#include <zqxml/catalogue/records.h>
#include <zqxml/logging/xml_log_context.h>

#include <bit>
#include <cstdint>
#include <string_view>
#include <vector>

namespace zqxml {

/// What a run of bytes of the form is.
enum class WirePart {
  kKey,          ///< of a record; the collection marker too
  kRepeatedKey,  ///< ahead of each further element of a list
  kCount,        ///< behind the marker
  kByteCount,    ///< of a packed list or a map; read and not used
  kSize,         ///< of an object's body
  kLength,       ///< of a text or of an unknown field
  kText,
  kNumber,
  kKeyEncoding,    ///< of a map
  kValueEncoding,  ///< of a map
  kUnknownNumber,  ///< value of a field that the class does not have
  kSkipped,        ///< bytes of such a field, or of an object whose class cannot be had
  kUnread,         ///< too few bytes for a key at the end of a body
};

/// Observer of the decoder.
class SilentObserver {
 public:
  static constexpr bool kTraces = true;
  static constexpr bool kDecrypts = true;

  template <class... Args>
  void report(const char* format, const Args&... args) {
    logError("BinarySerializer::unserializeBinaryRecur", format, args...);
  }
  void body(const _ClassDef*) {}
  void bodyEnd() {}
  void record(const FieldDef*) {}
  void element(std::uint32_t, const char*) {}
  template <class Value>
  void part(WirePart, std::uint64_t, std::uint64_t, const Value&) {}
};

/// Reads are false after a reported failure; the bytes of a value that is cut off by the end are left unread.
template <class Observer>
class WireReader {
 public:
  WireReader(BinaryStream& stream, Observer& observer) : stream_(stream), observer_(observer) {}

  template <class... Args>
  void report(const char* format, const Args&... args) {
    observer_.report(format, args...);
  }
  template <class... Args>
  bool fail(const char* format, const Args&... args) {
    report(format, args...);
    return false;
  }
  /// Not inlined: the way out of every read.
  [[gnu::noinline, gnu::cold]] bool overrun() {
    return fail("Buffer ends before its content does. Buffer size : [%llu]. CurrentPosition : [%llu]",
                stream_.limit(), stream_.position());
  }

  /// Whether `size` bytes are left.
  bool holds(std::uint64_t size) const { return stream_.fits(size); }
  /// Tells the observer which element of a list or entry of a map comes next, and which side of it.
  void element(std::uint32_t index, const char* side) { observer_.element(index, side); }

  bool fixed32(WirePart part, std::uint32_t& value) {
    if (!stream_.fits(4)) return overrun();
    return noted(part, stream_.readFixed32(value), value);
  }
  bool varint(WirePart part, std::uint32_t& value) {
    if (!stream_.fits(BinaryStream::kMaxVarint) && !varintEnds()) return overrun();
    return noted(part, stream_.readVarint32(value), value);
  }

  template <element::Number E>
  bool number(WirePart part, typename E::Value& value) {
    using Value = typename E::Value;
    if constexpr (wire::kCoding<E> == wire::NumberCoding::kZigzag) {
      if (!stream_.fits(BinaryStream::kMaxVarint) && !varintEnds()) return overrun();
      return noted(part, stream_.readSignedVarint32(value), value);
    } else if constexpr (wire::kCoding<E> == wire::NumberCoding::kVarint) {
      return varint(part, value);
    } else if constexpr (wire::kCoding<E> == wire::NumberCoding::kFixed64) {
      if (!stream_.fits(8)) return overrun();
      std::uint64_t bits = 0;
      const unsigned size = stream_.readFixed64(bits);
      value = std::bit_cast<Value>(bits);
      return noted(part, size, value);
    } else {
      if (!stream_.fits(4)) return overrun();
      std::uint32_t bits = 0;
      const unsigned size = stream_.readFixed32(bits);
      value = std::bit_cast<Value>(bits);
      return noted(part, size, value);
    }
  }

  /// A length and that many bytes, which stay where they are. `kind` is the type's name in the message of a
  /// failure.
  bool text(const char* kind, const FieldDef& field, std::string_view& bytes) {
    std::uint32_t length = 0;
    if (!varint(WirePart::kLength, length)) return false;
    if (!stream_.fits(length)) [[unlikely]] {
      return fail(
          "Error constructing %s field [%s]. Specified string size [%d] causes a buffer overrun. Buffer size "
          ": [%d]. CurrentPosition : [%d]",
          kind, field.getName(), length, stream_.limit(), stream_.position());
    }
    bytes = {stream_.buffer() + stream_.position(), length};
    stream_.skip(length);
    return noted(WirePart::kText, length, bytes);
  }

  /// Passes over bytes. QUIRK: what cannot be passed over is read on from where it stands.
  bool skip(WirePart part, std::uint64_t size) {
    const std::string_view bytes(stream_.buffer() + stream_.position(), holds(size) ? size : 0);
    stream_.skip(size);
    return noted(part, bytes.size(), bytes);
  }

 protected:
  /// Tells the observer of the last `size` bytes.
  template <class Value>
  bool noted(WirePart part, std::uint64_t size, const Value& value) {
    observer_.part(part, stream_.position() - size, size, value);
    return true;
  }

  BinaryStream& stream_;
  Observer& observer_;

 private:
  /// Whether a varint that starts in the last few bytes ends there too.
  bool varintEnds() const {
    for (std::uint64_t at = stream_.position(); at < stream_.limit(); ++at) {
      if (static_cast<unsigned char>(stream_.buffer()[at]) < 0x80) return true;
    }
    return false;
  }
};

}  // namespace zqxml
