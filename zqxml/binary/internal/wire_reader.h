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
  static constexpr bool kWatches = false;

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

/// Every read takes the stream that it reads from. It is false after a reported failure; the bytes of a value
/// that is cut off by the end are left unread.
template <class Observer>
class WireReader {
 public:
  explicit WireReader(Observer& observer) : observer_(observer) {}

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
  [[gnu::noinline, gnu::cold]] bool overrun(std::uint64_t limit, std::uint64_t position) {
    return fail("Buffer ends before its content does. Buffer size : [%llu]. CurrentPosition : [%llu]", limit,
                position);
  }
  bool overrun(const BinaryStream& in) { return overrun(in.limit(), in.position()); }

  /// Tells the observer which element of a list or entry of a map comes next, and which side of it.
  void element(std::uint32_t index, const char* side) { observer_.element(index, side); }

  bool fixed32(BinaryStream& in, WirePart part, std::uint32_t& value) {
    if (!in.fits(sizeof value)) return overrun(in);
    return noted(in, part, in.readFixed32(value), value);
  }
  bool varint(BinaryStream& in, WirePart part, std::uint32_t& value) {
    if (!holdsVarint(in)) return overrun(in);
    return noted(in, part, in.readVarint32(value), value);
  }

  template <element::Number E>
  bool number(BinaryStream& in, WirePart part, typename E::Value& value) {
    using Value = typename E::Value;
    if constexpr (wire::kCoding<E> == wire::NumberCoding::kZigzag) {
      if (!holdsVarint(in)) return overrun(in);
      return noted(in, part, in.readSignedVarint32(value), value);
    } else if constexpr (wire::kCoding<E> == wire::NumberCoding::kVarint) {
      return varint(in, part, value);
    } else if constexpr (wire::kCoding<E> == wire::NumberCoding::kFixed64) {
      std::uint64_t bits = 0;
      if (!in.fits(sizeof bits)) return overrun(in);
      in.readFixed64(bits);
      value = std::bit_cast<Value>(bits);
      return noted(in, part, sizeof bits, value);
    } else {
      std::uint32_t bits = 0;
      if (!in.fits(sizeof bits)) return overrun(in);
      in.readFixed32(bits);
      value = std::bit_cast<Value>(bits);
      return noted(in, part, sizeof bits, value);
    }
  }

  /// A length and that many bytes, which stay where they are. `kind` is the type's name in the message of a
  /// failure.
  bool text(BinaryStream& in, const char* kind, const FieldDef& field, std::string_view& bytes) {
    std::uint32_t length = 0;
    if (!varint(in, WirePart::kLength, length)) return false;
    if (!in.fits(length)) [[unlikely]]
      return textOverrun(kind, field, length, in.limit(), in.position());
    bytes = {in.buffer() + in.position(), length};
    in.skip(length);
    return noted(in, WirePart::kText, length, bytes);
  }

  /// Passes over bytes. QUIRK: what cannot be passed over is read on from where it stands.
  bool skip(BinaryStream& in, WirePart part, std::uint64_t size) {
    const std::string_view bytes(in.buffer() + in.position(), in.fits(size) ? size : 0);
    in.skip(size);
    return noted(in, part, bytes.size(), bytes);
  }

 protected:
  /// Tells the observer of the last `size` bytes.
  template <class Value>
  bool noted(const BinaryStream& in, WirePart part, std::uint64_t size, const Value& value) {
    observer_.part(part, in.position() - size, size, value);
    return true;
  }

  Observer& observer_;

 private:
  [[gnu::noinline, gnu::cold]] bool textOverrun(const char* kind, const FieldDef& field, std::uint32_t length,
                                                std::uint64_t limit, std::uint64_t position) {
    return fail(
        "Error constructing %s field [%s]. Specified string size [%d] causes a buffer overrun. Buffer size : [%d]. CurrentPosition : [%d]",
        kind, field.getName(), length, limit, position);
  }

  /// Whether a varint that starts here ends before the limit.
  static bool holdsVarint(const BinaryStream& in) {
    if (in.fits(BinaryStream::kMaxVarint)) [[likely]]
      return true;
    for (std::uint64_t at = in.position(); at < in.limit(); ++at) {
      if (static_cast<unsigned char>(in.buffer()[at]) < 0x80) return true;
    }
    return false;
  }
};

}  // namespace zqxml
