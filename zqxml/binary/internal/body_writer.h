// BodyWriter: the body of a message, over a sink that counts or writes (internal/byte_sinks.h).
#pragma once

#include <zqxml/annotation/annotation_record.h>
#include <zqxml/binary/binary_serializer.h>
#include <zqxml/binary/internal/byte_sinks.h>
#include <zqxml/binary/internal/utf8.h>
#include <zqxml/binary/internal/wire_form.h>
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/platform/base64.h>
#include <zqxml/xml/xml_decoder.h>

#include <bit>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace zqxml {

/// What one call of serialize is given, and what its first pass finds out.
struct BinaryEncoding {
  int version = wire::kDefaultVersion;
  const BinarySerializer::BinarySerializerParameters* parameters = nullptr;
  /// A routine of the application made some of the bytes: the second pass may yield another number of them.
  bool usesPasswordRoutines = false;
  /// A string holds a NUL, and is written up to there.
  bool cutsTexts = false;
};

/// One writer serves one pass over one object. Bodies nest by recursion. As in the sink, each operation
/// returns the position behind what it wrote.
template <class Sink>
class BodyWriter {
 public:
  using Position = typename Sink::Position;

  BodyWriter(const Sink& sink, BinaryEncoding& encoding) : sink_(sink), encoding_(encoding) {}

  /// The set fields of `message`, in declared order. Flat, with what is long kept out: this is where the time
  /// goes.
  [[gnu::flatten]] Position body(XNMessageBase& message, Position at) {
    const _ClassDef* classDef = MessageAccess::classDef(message);
    if (classDef == nullptr || classDef->getFields() == nullptr) return at;
    const FieldDef* fields = classDef->getFields();  // of one byte of bits
    const unsigned char* bits = MessageAccess::buffer(message).getIsSet();
    for (int left = classDef->getNumberOfFields(); left > 0; left -= 8, fields += 8) {
      unsigned set = *bits++;
      if (left < 8) set &= (1u << left) - 1;  // no field belongs to the rest
      for (; set != 0; set &= set - 1) at = record(message, *classDef, fields[std::countr_zero(set)], at);
    }
    return at;
  }

  /// Size of the body of `message`: counted, and stored in the object, in the first pass; the stored one in
  /// the second.
  std::uint64_t bodySize(XNMessageBase& message) {
    if constexpr (Sink::kCounts) {
      const std::uint64_t size = body(message, 0);
      message.SetCachedSize(static_cast<std::uint32_t>(size));
      return size;
    } else {
      return message.GetCachedSize();
    }
  }

 private:
  Position record(XNMessageBase& message, const _ClassDef& classDef, const FieldDef& field, Position at) {
    const FieldDataType type = field.getType();
    if constexpr (Sink::kTraces) {
      if (traces_ && type != FDT_NONE) [[unlikely]]
        trace(classDef, field, at);
    }
    // QUIRK: an FDT_ULONGLONG counts as a collection, so its value stands behind the marker without a key,
    // and an FDT_LIST_ULONGLONG does not, so its key stands in the marker's place. Readers cannot read either
    // back.
    return visitStorage(type, [&](auto storage) {
      if constexpr (std::same_as<decltype(storage), Nothing>) {
        if (type == FDT_NONE) return at;  // the self record of a class: no field
      }
      return value(message, field, storage, sink_.fixed32(at, wire::firstWordOf<decltype(storage)>(field)));
    });
  }

  [[gnu::noinline, gnu::cold]] static void trace(const _ClassDef& classDef, const FieldDef& field,
                                                 Position at) {
    logDebug("BinarySerializer::serializeBinaryRecursive", 15,
             "Writing field [%s]:[%s] at buffer position : [%d]", classDef.getName(), field.getName(), at);
  }

  /// No value form: the key stands alone.
  Position value(XNMessageBase&, const FieldDef&, Nothing, Position at) { return at; }

  template <class E>
  Position value(XNMessageBase& message, const FieldDef& field, Scalar<E>, Position at) {
    if constexpr (wire::kCoding<E> == wire::NumberCoding::kZigzag) {
      return sink_.varint(at, BinaryStream::zigzag(MessageAccess::scalar<std::int32_t>(message, field)));
    } else if constexpr (wire::kCoding<E> == wire::NumberCoding::kVarint) {
      return sink_.varint(at, MessageAccess::scalar<std::uint32_t>(message, field));
    } else if constexpr (wire::kCoding<E> == wire::NumberCoding::kFixed64) {
      return sink_.fixed64(at, MessageAccess::scalar<std::uint64_t>(message, field));
    } else {
      return sink_.fixed32(at, MessageAccess::scalar<std::uint32_t>(message, field));
    }
  }

  template <class E>
  Position value(XNMessageBase& message, const FieldDef& field, InPlace<E>, Position at) {
    return text(MessageAccess::inPlace<typename E::Value>(message, field), at);
  }

  [[gnu::noinline]] Position value(XNMessageBase& message, const FieldDef& field, Owned<element::BStr>,
                                   Position at) {
    static const bstring kNone;
    const bstring* bytes = MessageAccess::owned<bstring>(message, field);
    return text(bytes == nullptr ? kNone : *bytes, at);
  }

  [[gnu::noinline]] Position value(XNMessageBase& message, const FieldDef& field, Owned<element::PStr>,
                                   Position at) {
    if (!field.hasAnnotation()) {
      logError(Sink::kFunction, "No Password annotation found on member : %s", field.getName());
      return at;
    }
    const pstring* password = MessageAccess::owned<pstring>(message, field);
    const int type = AnnotationRecord(field).passwordType();
    if (!wire::transformsText(encoding_.version) || type == 0) {
      return prefixed(password == nullptr ? std::string_view() : wire::upToNul(password->str()), at);
    }
    std::string encrypted;
    if (encrypt(type, password == nullptr ? pstring() : *password, encrypted) == XN_MSG_NO_PASSWORD_HANDLER) {
      logError(Sink::kFunction, "Password Handler Not Found while serializing pstring field [%s]",
               field.getName());
    }
    return prefixed(encrypted, at);
  }

  [[gnu::noinline]] Position value(XNMessageBase& message, const FieldDef& field, Object, Position at) {
    XNMessageBase* object = MessageAccess::owned<XNMessageBase>(message, field);
    return object == nullptr ? sink_.varint(at, 0) : nested(*object, at);
  }

  /// Numbers are packed: one key and the byte count, then the elements.
  template <element::Number E>
  [[gnu::noinline]] Position value(XNMessageBase& message, const FieldDef& field, List<E>, Position at) {
    using Values = typename List<E>::Value;
    static const Values kNone;
    const Values* present = MessageAccess::owned<Values>(message, field);
    const Values& values = present == nullptr ? kNone : *present;
    const std::uint64_t size = packedSize<E>(values);
    at = sink_.varint(at, static_cast<std::uint32_t>(values.size()));
    at = sink_.fixed32(at, wire::keyOf(field));
    at = sink_.varint(at, static_cast<std::uint32_t>(size));
    return sink_.template numbers<E>(at, size, values);
  }

  /// Everything else repeats the key before each element. QUIRK: so an empty list has no key at all, and its
  /// reader cannot know that the field was set.
  template <class E>
  [[gnu::noinline]] Position value(XNMessageBase& message, const FieldDef& field, List<E>, Position at) {
    auto* values = MessageAccess::owned<typename List<E>::Value>(message, field);
    if (values == nullptr) return sink_.varint(at, 0);
    at = sink_.varint(at, static_cast<std::uint32_t>(values->size()));
    for (auto& element : *values) {
      at = sink_.fixed32(at, wire::keyOf(field));
      if constexpr (std::same_as<E, element::Obj>) {
        at = nested(element, at);
      } else {
        at = text(element, at);
      }
    }
    return at;
  }

  template <class K, class V>
  [[gnu::noinline]] Position value(XNMessageBase& message, const FieldDef& field, Map<K, V>, Position at) {
    static const typename Map<K, V>::Value kNone;
    const auto* present = MessageAccess::owned<typename Map<K, V>::Value>(message, field);
    const auto& pairs = present == nullptr ? kNone : *present;
    std::uint64_t payload = 0;
    for (const auto& [key, mapped] : pairs) payload += sideSize(key) + sideSize(mapped);
    at = sink_.varint(at, static_cast<std::uint32_t>(pairs.size()));
    at = sink_.fixed32(at, wire::keyOf(field));
    // The body size counts the two encodings, a byte each, and the pairs.
    at = sink_.varint(at, static_cast<std::uint32_t>(payload + 2));
    at = sink_.varint(at, wire::kSideEncoding<K>);
    at = sink_.varint(at, wire::kSideEncoding<V>);
    return sink_.group(at, payload, [&](Position next) {
      for (const auto& [key, mapped] : pairs) next = side(mapped, side(key, next));
      return next;
    });
  }

  // A cached size is no part of a message's value, so the objects of a constant map take it too.
  static XNMessageBase& cacheable(const XNMessageBase& object) { return const_cast<XNMessageBase&>(object); }

  static std::uint64_t sideSize(std::int64_t) { return 8; }
  std::uint64_t sideSize(const std::string& text) {
    return prefixedSize(Sink::kWholeTexts ? text.size() : written(text).size());
  }
  std::uint64_t sideSize(const XNMessageBase& object) { return prefixedSize(bodySize(cacheable(object))); }
  static std::uint64_t prefixedSize(std::uint64_t size) {
    return BinaryStream::varint32Size(static_cast<std::uint32_t>(size)) + size;
  }

  Position side(std::int64_t number, Position at) {
    return sink_.fixed64(at, static_cast<std::uint64_t>(number));
  }
  Position side(const std::string& value, Position at) { return text(value, at); }
  Position side(const XNMessageBase& object, Position at) { return nested(cacheable(object), at); }

  Position nested(XNMessageBase& object, Position at) {
    const std::uint64_t size = bodySize(object);
    at = sink_.varint(at, static_cast<std::uint32_t>(size));
    return sink_.group(at, size, [&](Position first) { return body(object, first); });
  }

  Position prefixed(std::string_view bytes, Position at) {
    return sink_.bytes(sink_.varint(at, static_cast<std::uint32_t>(bytes.size())), bytes);
  }

  // One text with its length.

  Position text(const std::string& value, Position at) {
    if constexpr (Sink::kWholeTexts)
      return sink_.wholeText(at, value);
    else
      return prefixed(written(value), at);
  }
  /// What of a string is written. The first pass notes whether that is less than all.
  std::string_view written(const std::string& value) {
    const std::string_view text = wire::upToNul(value);
    if constexpr (Sink::kCounts) {
      if (text.size() != value.size()) [[unlikely]]
        encoding_.cutsTexts = true;
    }
    return text;
  }
  [[gnu::noinline]] Position text(const std::u16string& value, Position at) {
    const std::size_t size = utf8Length(value);
    at = sink_.varint(at, static_cast<std::uint32_t>(size));
    return sink_.produce(at, size, [&value](char* to) { writeUtf8(value, to); });
  }
  [[gnu::noinline]] Position text(const bstring& value, Position at) {
    if (!wire::transformsText(encoding_.version)) return prefixed(value.str(), at);
    const std::size_t size = UlBase64::encodedLength(value.size());
    at = sink_.varint(at, static_cast<std::uint32_t>(size));
    return sink_.produce(at, size, [&value](char* to) { UlBase64::EncodeTo(value.str(), to); });
  }

  /// Runs in both passes: what the application's routine yields cannot be computed, and is not kept.
  eXNMsgRet encrypt(int type, const pstring& password, std::string& out) {
    encoding_.usesPasswordRoutines = true;
    const auto* parameters = encoding_.parameters;
    if (parameters == nullptr) return XMLDecoder::getXMLDecoderObject()->encryptPassword(type, password, out);
    if (parameters->encodingFlags != nullptr) {
      return XMLDecoder(*parameters->encodingFlags, parameters->contextInfo)
          .encryptPassword(type, password, out);
    }
    return XMLDecoder(parameters->contextInfo).encryptPassword(type, password, out);
  }

  const Sink sink_;
  BinaryEncoding& encoding_;
  const bool traces_ = debugEnabled(15);
};

}  // namespace zqxml
