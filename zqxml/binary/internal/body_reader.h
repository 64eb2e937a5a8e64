// BodyReader: a body in binary form into a message.
#pragma once

#include <zqxml/annotation/annotation_record.h>
#include <zqxml/binary/internal/body_frame.h>
#include <zqxml/binary/internal/map_reader.h>
#include <zqxml/binary/internal/wire_reader.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/platform/base64.h>
#include <zqxml/platform/text.h>
#include <zqxml/xml/xml_decoder.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zqxml {

/// What one call of unserialize is given.
struct BinaryDecoding {
  int version = wire::kDefaultVersion;
  ZqXMLContextInfo* context = nullptr;
  /// Levels of objects, the root's included; 0 for no limit.
  int maxNesting = 0;
};

/// One reader serves one call on one object. Bodies nest by recursion; a level takes less than 1 KiB of
/// stack, 2 KiB under AddressSanitizer.
template <class Observer>
class BodyReader : public WireReader<Observer> {
 public:
  using WireReader<Observer>::element;
  using WireReader<Observer>::fail;
  using WireReader<Observer>::fixed32;
  using WireReader<Observer>::overrun;
  using WireReader<Observer>::report;
  using WireReader<Observer>::skip;
  using WireReader<Observer>::text;
  using WireReader<Observer>::varint;

  /// `size` is that of the whole message.
  BodyReader(std::uint64_t size, const BinaryDecoding& decoding, Observer& observer)
      : WireReader<Observer>(observer), decoding_(decoding), reserve_(kReserveBase + size * kReserveFactor) {}

  /// Reads records into `message` until fewer than four bytes are left before `end`, and leaves those unread.
  /// False after a reported failure; what was stored before it stays.
  bool body(XNMessageBase& message, BinaryStream& in, std::uint64_t end) {
    if (end > in.limit()) return overrun(in);
    if (decoding_.maxNesting != 0 && depth_ >= decoding_.maxNesting) {
      return fail("Objects are nested deeper than [%d] levels", decoding_.maxNesting);
    }
    ++depth_;
    const bool complete = records(message, in, end);
    --depth_;
    return complete;
  }

  /// The same for a sub-object, whose body has `size` bytes.
  bool nested(XNMessageBase& object, BinaryStream& in, std::uint32_t size) {
    return body(object, in, in.position() + size);
  }

 private:
  using Base = WireReader<Observer>;
  using Base::noted;
  using Base::observer_;

  using Frame = BodyFrame;

  /// Flat, with what is long kept out: this is where the time goes.
  [[gnu::flatten]] bool records(XNMessageBase& message, BinaryStream& stream, std::uint64_t end) {
    Frame frame{message, MessageAccess::classDef(message), end};
    observer_.body(frame.classDef);
    BinaryStream in = stream;  // stays in registers from one call to the next
    bool complete = true;
    // Unsigned on purpose: what is left of the last record may reach beyond the end.
    while (complete && in.position() < end - 3) complete = record(frame, in);
    stream = in;
    if (!complete) return false;
    if (depth_ == 1 && in.position() < end) {
      const std::string_view rest(in.buffer() + in.position(), end - in.position());
      observer_.part(WirePart::kUnread, in.position(), rest.size(), rest);
    }
    observer_.bodyEnd();
    return true;
  }

  bool record(Frame& frame, BinaryStream& in) {
    const std::uint64_t position = in.position();
    std::uint32_t key = 0;
    if (!in.fits(sizeof key)) return overrun(in);
    in.readFixed32(key);
    const FieldDef* field = frame.find(key);
    observer_.record(field);
    noted(in, WirePart::kKey, sizeof key, key);
    if constexpr (Observer::kTraces) {
      if (field != nullptr && traces_) [[unlikely]] {
        logDebug("BinarySerializer::unserializeBinaryRecur", 15,
                 "Identified  [%s] : [%s] at buffer position : [%d]", frame.classDef->getName(),
                 field->getName(), position);
      }
    }
    if (field == nullptr || kKeptOutTypes.contains(field->getType())) return apart(frame, in, field, key);
    // QUIRK: the type of the field alone decides; the encoding in the key is not compared with it.
    return visitStorage(field->getType(), [&](auto storage) {
      if constexpr (kIsKeptOut(decltype(storage){}))
        return true;  // NOCOVER: apart() reads these
      else
        return this->value(frame, in, *field, storage);
    });
  }

  /// Whether reading values of a storage is kept out of records().
  static constexpr Overloaded kIsKeptOut{
      []<class E>(List<E>) { return true; }, []<class K, class V>(Map<K, V>) { return true; },
      [](Object) { return true; }, [](Owned<element::PStr>) { return true; }, [](auto) { return false; }};
  static constexpr FieldTypeSet kKeptOutTypes = FieldTypeSet::ofStorage(kIsKeptOut);

  /// What is kept out gets copies: so the frame and the stream of records() have no address, and stay in
  /// registers. One place of call for all: each would have copies of its own, and levels nest.
  bool apart(Frame& frame, BinaryStream& in, const FieldDef* field, std::uint32_t key) {
    Frame frameCopy = frame;
    BinaryStream inCopy = in;
    const bool complete = keptOut(frameCopy, inCopy, field, key);
    frame.collectionCount = frameCopy.collectionCount;
    in = inCopy;
    return complete;
  }
  [[gnu::noinline]] bool keptOut(Frame& frame, BinaryStream& in, const FieldDef* field, std::uint32_t key) {
    if (field == nullptr) return unknown(frame, in, key);
    return visitStorage(field->getType(), [&](auto storage) {
      if constexpr (kIsKeptOut(decltype(storage){}))
        return this->value(frame, in, *field, storage);
      else
        return true;  // NOCOVER: record() reads these
    });
  }

  [[gnu::noinline]] bool unknown(Frame& frame, BinaryStream& in, std::uint32_t key) {
    if (in.position() >= frame.end) return true;
    std::uint32_t value = 0;
    switch (wire::encodingOfKey(key)) {
      case BinaryEncodingFixed32:
        return fixed32(in, WirePart::kUnknownNumber, value);
      case BinaryEncodingFixed64: {
        std::uint64_t wide = 0;
        return this->template number<element::UInt64>(in, WirePart::kUnknownNumber, wide);
      }
      case BinaryEncodingVarint:
        if (wire::hashOfKey(key) == wire::hashOfKey(wire::kCollectionMarker)) return count(frame, in);
        return varint(in, WirePart::kUnknownNumber, value);
      case BinaryEncodingSignedVarint: {
        std::int32_t signedValue = 0;
        return this->template number<element::Int32>(in, WirePart::kUnknownNumber, signedValue);
      }
      case BinaryEncodingLengthDelimited:
        return unknownBytes(in);
      default:
        return true;  // nothing: the next four bytes are taken for a key
    }
  }

  bool count(Frame& frame, BinaryStream& in) {
    if (!varint(in, WirePart::kCount, frame.collectionCount)) return false;
    if constexpr (Observer::kTraces) {
      if (traces_) [[unlikely]] {
        logDebug("BinarySerializer::unserializeBinaryRecur", 15, "Cached collection(list/map) size is : [%d]",
                 frame.collectionCount);
      }
    }
    return true;
  }

  bool unknownBytes(BinaryStream& in) {
    std::uint32_t length = 0;
    if (!varint(in, WirePart::kLength, length)) return false;
    if (!in.fits(length)) {
      return fail(
          "Error unserializing in binary mode. Specified string size [%u] > buffer size [%u]. CurrentPosition : [%u]",
          length, in.limit(), in.position());
    }
    return skip(in, WirePart::kSkipped, length);
  }

  // --- Values by shape.

  bool value(Frame&, BinaryStream&, const FieldDef&, Nothing) { return true; }

  template <class E>
  bool value(Frame& frame, BinaryStream& in, const FieldDef& field, Scalar<E>) {
    typename E::Value content{};
    if (!this->template number<E>(in, WirePart::kNumber, content)) return false;
    if constexpr (std::same_as<E, element::Float>) {
      MessageAccess::setFloat(frame.message, field, content);
    } else if constexpr (std::same_as<E, element::Double>) {
      MessageAccess::setDouble(frame.message, field, content);
    } else {
      MessageAccess::setInteger(frame.message, field, static_cast<std::int64_t>(content));
    }
    return true;
  }

  bool value(Frame& frame, BinaryStream& in, const FieldDef& field, InPlace<element::Str>) {
    std::string_view bytes;
    if (!text(in, "string", field, bytes)) return false;
    MessageAccess::inPlace<std::string>(frame.message, field).assign(bytes);
    MessageAccess::mark(frame.message, field.getMemNum());
    return true;
  }

  bool value(Frame& frame, BinaryStream& in, const FieldDef& field, InPlace<element::WStr>) {
    std::string_view bytes;
    if (!text(in, "wstring", field, bytes)) return false;
    assign(MessageAccess::inPlace<std::u16string>(frame.message, field), bytes);
    MessageAccess::mark(frame.message, field.getMemNum());
    return true;
  }

  bool value(Frame& frame, BinaryStream& in, const FieldDef& field, Owned<element::BStr>) {
    std::string_view bytes;
    if (!text(in, "bstring", field, bytes)) return false;
    assign(MessageAccess::make<bstring>(frame.message, field, true), wire::upToNul(bytes));
    return true;
  }

  [[gnu::noinline]] bool value(Frame& frame, BinaryStream& in, const FieldDef& field, Owned<element::PStr>) {
    std::string_view bytes;
    if (!text(in, "pstring", field, bytes)) return false;
    if (!field.hasAnnotation()) return fail("No Password annotation found on member : %s", field.getName());
    std::unique_ptr<pstring> password;
    if (AnnotationRecord(field).passwordType() == 0 || !wire::transformsText(decoding_.version)) {
      password = std::make_unique<pstring>(std::string(bytes), 1);
    } else if constexpr (Observer::kDecrypts) {
      pstring* decrypted = nullptr;
      const std::u16string wide = toUtf16(wire::upToNul(bytes));
      if (!XMLDecoder(decoding_.context).decryptPassword(field, wide.c_str(), decrypted)) {
        report("Password Handler Not Found while serializing pstring field [%s]", field.getName());
      }
      password.reset(decrypted);
    }
    if (password == nullptr) return true;
    pstring& stored = MessageAccess::make<pstring>(frame.message, field, true);
    stored.str() = std::move(password->str());
    stored.setEncryptionType(password->getEncryptionType());
    return true;
  }

  [[gnu::noinline]] bool value(Frame& frame, BinaryStream& in, const FieldDef& field, Object) {
    std::uint32_t size = 0;
    if (!varint(in, WirePart::kSize, size)) return false;
    XNMessageBase*& slot = MessageAccess::owned<XNMessageBase>(frame.message, field);
    std::unique_ptr<XNMessageBase> made;
    if (slot == nullptr) made.reset(XNMessageBase::createObjectFromClassID(field.namePointer()));
    XNMessageBase* object = slot == nullptr ? made.get() : slot;
    if (object == nullptr) {
      return fail("Error instantiating member : [%s]::[%s]", frame.classDef->getName(), field.getName());
    }
    MessageAccess::wipeBitset(*object);
    // QUIRK: it is the enclosing object that gets the size of this one; its next size pass puts that right.
    frame.message.SetCachedSize(size);
    if (!nested(*object, in, size)) return fail("Error unserializing on field [%s]", field.getName());
    if (slot == nullptr) slot = made.release();
    MessageAccess::mark(frame.message, field.getMemNum());
    return true;
  }

  // --- Lists. The count stands in the frame; a list starts out empty and grows as its elements arrive.

  template <element::Number E>
  [[gnu::noinline]] bool value(Frame& frame, BinaryStream& in, const FieldDef& field, List<E>) {
    std::uint32_t unused = 0;
    if (!varint(in, WirePart::kByteCount, unused)) return false;
    auto& values = MessageAccess::make<typename List<E>::Value>(frame.message, field, true);
    values.clear();
    const std::uint64_t count = frame.collectionCount;
    if (!in.fits(count * wire::kLeastSize<E>)) return overrun(in);
    values.resize(count);
    if constexpr (wire::kCopied<E> && !Observer::kWatches) {
      const std::uint64_t size = count * wire::kLeastSize<E>;
      if (size != 0) std::memcpy(values.data(), in.buffer() + in.position(), size);
      in.skip(size);
      return true;
    }
    for (std::uint32_t i = 0; i < count; ++i) {
      element(i, "");
      if (!this->template number<E>(in, WirePart::kNumber, values[i])) {
        values.resize(i);
        return false;
      }
    }
    return true;
  }

  template <class E>
  [[gnu::noinline]] bool value(Frame& frame, BinaryStream& in, const FieldDef& field, List<E>) {
    auto& values = MessageAccess::make<typename List<E>::Value>(frame.message, field, true);
    values.clear();
    if (!holdsElements(in, frame.collectionCount)) return overrun(in);
    values.reserve(frame.collectionCount);
    for (std::uint32_t i = 0; i < frame.collectionCount; ++i) {
      std::string_view bytes;
      if (!repeatedKey(in, i) || !text(in, listKind<E>(), field, bytes)) return false;
      assign(values.emplace_back(), wire::upToNul(bytes));
    }
    return true;
  }

  [[gnu::noinline]] bool value(Frame& frame, BinaryStream& in, const FieldDef& field, List<element::Obj>) {
    auto& values = MessageAccess::make<std::vector<XNMessageBase>>(frame.message, field, true);
    values.clear();
    const ClassRef ref = ClassRef::read(field.namePointer());
    if (ref.subsystem == 0) return fail("Error unserializing on field [%s]", field.getName());
    if (!holdsElements(in, frame.collectionCount)) return overrun(in);
    reserve(values, frame.collectionCount);
    for (std::uint32_t i = 0; i < frame.collectionCount; ++i) {
      std::uint32_t size = 0;
      if (!repeatedKey(in, i) || !varint(in, WirePart::kSize, size)) return false;
      // QUIRK: unlike a single sub-object an element keeps the set bits that its construction gave it.
      XNMessageBase& message = values.emplace_back();
      MessageAccess::initialize(message, ref);
      message.SetCachedSize(size);
      if (!nested(message, in, size)) {
        values.pop_back();
        return fail("Error unserializing on field [%s]", field.getName());
      }
    }
    return true;
  }

  template <class E>
  static constexpr const char* listKind() {
    return std::same_as<E, element::Str>    ? "list<string>"
           : std::same_as<E, element::WStr> ? "list<wstring>"
                                            : "list<bstring>";
  }

  /// Elements other than numbers have a length or a size of a byte at least, and all but the first a key.
  static bool holdsElements(const BinaryStream& in, std::uint64_t count) {
    return count == 0 || in.fits(count * (wire::kKeySize + 1) - wire::kKeySize);
  }

  bool repeatedKey(BinaryStream& in, std::uint32_t i) {
    element(i, "");
    std::uint32_t unused = 0;
    return i == 0 || fixed32(in, WirePart::kRepeatedKey, unused);
  }

  /// Room for all elements at once while the call's allowance lasts. Lists nest, and each level may claim as
  /// many elements as there are bytes left: without an allowance a small message could ask for any amount of
  /// memory.
  void reserve(std::vector<XNMessageBase>& values, std::uint64_t count) {
    const std::uint64_t bytes = count * sizeof(XNMessageBase);
    if (bytes > reserve_) return;
    reserve_ -= bytes;
    values.reserve(count);
  }

  template <class K, class V>
  [[gnu::noinline]] bool value(Frame& frame, BinaryStream& in, const FieldDef& field, Map<K, V> storage) {
    return MapReader<BodyReader>(*this, in, field)
        .read(
            storage, frame.collectionCount, [&]() -> auto& {
              return MessageAccess::make<typename Map<K, V>::Value>(frame.message, field, true);
            });
  }

  static void assign(std::string& value, std::string_view bytes) { value.assign(bytes); }
  static void assign(std::u16string& value, std::string_view bytes) {
    value.clear();
    appendUtf16(value, bytes);
  }
  /// QUIRK: what decodes to nothing stays as the text that came.
  void assign(bstring& value, std::string_view bytes) const {
    std::string decoded;
    if (wire::transformsText(decoding_.version) && UlBase64::Decode(bytes, decoded) && !decoded.empty()) {
      value.str() = std::move(decoded);
    } else {
      value.assign(bytes.data(), bytes.size());
    }
  }

  static constexpr std::uint64_t kReserveBase = 65536;
  static constexpr std::uint64_t kReserveFactor = 128;

  const BinaryDecoding& decoding_;
  /// Bytes that lists of objects may still reserve ahead of their elements.
  std::uint64_t reserve_;
  int depth_ = 0;
  const bool traces_ = debugEnabled(15);
};

}  // namespace zqxml
