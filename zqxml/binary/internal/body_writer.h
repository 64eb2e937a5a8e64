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
};

/// One writer serves one pass over one object. Bodies nest by recursion.
template <class Sink>
class BodyWriter {
 public:
  BodyWriter(Sink& sink, BinaryEncoding& encoding) : sink_(sink), encoding_(encoding) {}

  /// The set fields of `message`, in declared order.
  void body(XNMessageBase& message) {
    const _ClassDef* classDef = MessageAccess::classDef(message);
    if (classDef == nullptr || classDef->getFields() == nullptr) return;
    const int count = classDef->getNumberOfFields();
    const unsigned char* bits = MessageAccess::buffer(message).getIsSet();
    for (int first = 0; first < count; first += 8) {
      for (unsigned set = *bits++; set != 0; set &= set - 1) {
        const int position = first + std::countr_zero(set);
        if (position >= count) return;
        record(message, *classDef, classDef->getFields()[position]);
      }
    }
  }

  /// Size of the body of `message`: counted, and stored in the object, in the first pass; the stored one in
  /// the second.
  std::uint64_t bodySize(XNMessageBase& message) {
    if constexpr (Sink::kCounts) {
      ByteCounter counter;
      BodyWriter<ByteCounter>(counter, encoding_).body(message);
      message.SetCachedSize(static_cast<std::uint32_t>(counter.size()));
      return counter.size();
    } else {
      return message.GetCachedSize();
    }
  }

 private:
  void record(XNMessageBase& message, const _ClassDef& classDef, const FieldDef& field) {
    const FieldDataType type = field.getType();
    if (type == FDT_NONE) return;  // the self record of a class: no field
    if constexpr (!Sink::kCounts) {
      if (traces_) [[unlikely]] {
        logDebug("BinarySerializer::serializeBinaryRecursive", 15,
                 "Writing field [%s]:[%s] at buffer position : [%d]", classDef.getName(), field.getName(),
                 sink_.position());
      }
    }
    // QUIRK: an FDT_ULONGLONG counts as a collection, so its value stands behind the marker without a key,
    // and an FDT_LIST_ULONGLONG does not, so its key stands in the marker's place. Readers cannot read either
    // back.
    sink_.fixed32(wire::firstWordOf(field));
    visitStorage(type, [&](auto storage) { value(message, field, storage); });
  }

  /// No value form: the key stands alone.
  void value(XNMessageBase&, const FieldDef&, Nothing) {}

  template <class E>
  void value(XNMessageBase& message, const FieldDef& field, Scalar<E>) {
    if constexpr (wire::kCoding<E> == wire::NumberCoding::kZigzag) {
      sink_.varint(BinaryStream::zigzag(MessageAccess::scalar<std::int32_t>(message, field)));
    } else if constexpr (wire::kCoding<E> == wire::NumberCoding::kVarint) {
      sink_.varint(MessageAccess::scalar<std::uint32_t>(message, field));
    } else if constexpr (wire::kCoding<E> == wire::NumberCoding::kFixed64) {
      sink_.fixed64(MessageAccess::scalar<std::uint64_t>(message, field));
    } else {
      sink_.fixed32(MessageAccess::scalar<std::uint32_t>(message, field));
    }
  }

  template <class E>
  void value(XNMessageBase& message, const FieldDef& field, InPlace<E>) {
    text<E>(MessageAccess::inPlace<typename E::Value>(message, field));
  }

  void value(XNMessageBase& message, const FieldDef& field, Owned<element::BStr>) {
    const bstring* bytes = MessageAccess::owned<bstring>(message, field);
    text<element::BStr>(bytes == nullptr ? std::string_view() : std::string_view(bytes->str()));
  }

  void value(XNMessageBase& message, const FieldDef& field, Owned<element::PStr>) {
    if (!field.hasAnnotation()) {
      logError(Sink::kFunction, "No Password annotation found on member : %s", field.getName());
      return;
    }
    const pstring* password = MessageAccess::owned<pstring>(message, field);
    const int type = AnnotationRecord(field).passwordType();
    if (!wire::transformsText(encoding_.version) || type == 0) {
      prefixed(password == nullptr ? std::string_view() : wire::upToNul(password->str()));
      return;
    }
    std::string encrypted;
    if (encrypt(type, password == nullptr ? pstring() : *password, encrypted) == XN_MSG_NO_PASSWORD_HANDLER) {
      logError(Sink::kFunction, "Password Handler Not Found while serializing pstring field [%s]",
               field.getName());
    }
    prefixed(encrypted);
  }

  void value(XNMessageBase& message, const FieldDef& field, Object) {
    XNMessageBase* object = MessageAccess::owned<XNMessageBase>(message, field);
    if (object == nullptr) {
      sink_.varint(0);
    } else {
      nested(*object);
    }
  }

  /// Numbers are packed: one key and the byte count, then the elements.
  template <element::Number E>
  void value(XNMessageBase& message, const FieldDef& field, List<E>) {
    using Values = typename List<E>::Value;
    static const Values kNone;
    const Values* present = MessageAccess::owned<Values>(message, field);
    const Values& values = present == nullptr ? kNone : *present;
    const std::uint64_t size = packedSize<E>(values);
    sink_.varint(static_cast<std::uint32_t>(values.size()));
    sink_.fixed32(wire::keyOf(field));
    sink_.varint(static_cast<std::uint32_t>(size));
    sink_.group(size, [&] { sink_.template numbers<E>(values); });
  }

  /// Everything else repeats the key before each element. QUIRK: so an empty list has no key at all, and its
  /// reader cannot know that the field was set.
  template <class E>
  void value(XNMessageBase& message, const FieldDef& field, List<E>) {
    auto* values = MessageAccess::owned<typename List<E>::Value>(message, field);
    sink_.varint(values == nullptr ? 0 : static_cast<std::uint32_t>(values->size()));
    if (values == nullptr) return;
    for (auto& element : *values) {
      sink_.fixed32(wire::keyOf(field));
      if constexpr (std::same_as<E, element::Obj>) {
        nested(element);
      } else {
        text<E>(view(element));
      }
    }
  }

  template <class K, class V>
  void value(XNMessageBase& message, const FieldDef& field, Map<K, V>) {
    auto* pairs = MessageAccess::owned<typename Map<K, V>::Value>(message, field);
    std::uint64_t payload = 0;
    if (pairs != nullptr) {
      for (auto& [key, mapped] : *pairs) payload += sideSize(key) + sideSize(mapped);
    }
    sink_.varint(pairs == nullptr ? 0 : static_cast<std::uint32_t>(pairs->size()));
    sink_.fixed32(wire::keyOf(field));
    // The body size counts the two encodings, a byte each, and the pairs.
    sink_.varint(static_cast<std::uint32_t>(payload + 2));
    sink_.varint(wire::kSideEncoding<K>);
    sink_.varint(wire::kSideEncoding<V>);
    if (pairs == nullptr) return;
    sink_.group(payload, [&] {
      for (auto& [key, mapped] : *pairs) {
        side(key);
        side(mapped);
      }
    });
  }

  static std::uint64_t sideSize(std::int64_t) { return 8; }
  static std::uint64_t sideSize(const std::string& text) { return prefixedSize(wire::upToNul(text).size()); }
  /// A map's key is constant, but the cached size is no part of its value.
  std::uint64_t sideSize(const XNMessageBase& object) {
    return prefixedSize(bodySize(const_cast<XNMessageBase&>(object)));
  }
  static std::uint64_t prefixedSize(std::uint64_t size) {
    return BinaryStream::varint32Size(static_cast<std::uint32_t>(size)) + size;
  }

  void side(std::int64_t value) { sink_.fixed64(static_cast<std::uint64_t>(value)); }
  void side(const std::string& value) { prefixed(wire::upToNul(value)); }
  void side(const XNMessageBase& object) { nested(const_cast<XNMessageBase&>(object)); }

  void nested(XNMessageBase& object) {
    const std::uint64_t size = bodySize(object);
    sink_.varint(static_cast<std::uint32_t>(size));
    sink_.group(size, [&] { body(object); });
  }

  void prefixed(std::string_view bytes) {
    sink_.varint(static_cast<std::uint32_t>(bytes.size()));
    sink_.bytes(bytes);
  }

  static std::string_view view(const std::string& value) { return value; }
  static std::u16string_view view(const std::u16string& value) { return value; }
  static std::string_view view(const bstring& value) { return value.str(); }

  /// One text with its length: narrow text up to its first NUL, wide text as UTF-8, bytes by the version's
  /// rule.
  template <class E>
  void text(std::conditional_t<std::same_as<E, element::WStr>, std::u16string_view, std::string_view> value) {
    if constexpr (std::same_as<E, element::Str>) {
      prefixed(wire::upToNul(value));
    } else if constexpr (std::same_as<E, element::WStr>) {
      const std::size_t size = utf8Length(value);
      sink_.varint(static_cast<std::uint32_t>(size));
      sink_.produce(size, [value](char* to) { writeUtf8(value, to); });
    } else if (!wire::transformsText(encoding_.version)) {
      prefixed(value);
    } else {
      const std::size_t size = UlBase64::encodedLength(value.size());
      sink_.varint(static_cast<std::uint32_t>(size));
      sink_.produce(size, [value](char* to) { UlBase64::EncodeTo(value, to); });
    }
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

  Sink& sink_;
  BinaryEncoding& encoding_;
  const bool traces_ = debugEnabled(15);
};

}  // namespace zqxml
