// MapReader: the maps of a body.
#pragma once

#include <zqxml/binary/internal/wire_reader.h>
#include <zqxml/message/xn_message_base.h>

#include <concepts>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace zqxml {

/// Reads the value of one map field. `Reader` is a BodyReader: it has the bytes, and reads the objects in the
/// map.
template <class Reader>
class MapReader {
 public:
  MapReader(Reader& reader, BinaryStream& in, const FieldDef& field)
      : reader_(reader), in_(in), field_(field) {}

  /// Reads `count` entries into the map that make() gives; it is asked only after the encodings have been
  /// found right.
  template <class K, class V, class Make>
  bool read(Map<K, V> storage, std::uint64_t count, Make&& make) {
    if (!encodings(wire::kSideEncoding<K>, wire::kSideEncoding<V>)) return false;
    auto& map = make();
    if (!in_.fits(count * (wire::kLeastSize<K> + wire::kLeastSize<V>))) return reader_.overrun(in_);
    for (std::uint32_t i = 0; i < count; ++i) {
      index_ = i;
      if (!entry(storage, map)) return false;
    }
    return true;
  }

 private:
  using Int64 = element::Int64;
  using Obj = element::Obj;
  using ObjectPointer = std::unique_ptr<XNMessageBase>;

  bool encodings(BinaryEncodingType expectedKey, BinaryEncodingType expectedValue) {
    std::uint32_t unused = 0, key = 0, value = 0;
    if (!reader_.varint(in_, WirePart::kByteCount, unused) ||
        !reader_.varint(in_, WirePart::kKeyEncoding, key) ||
        !reader_.varint(in_, WirePart::kValueEncoding, value)) {
      return false;
    }
    if (key == expectedKey && value == expectedValue) return true;
    // QUIRK: the expected encodings always read 1, that of a 64-bit integer, whatever the map holds.
    constexpr int kShown = wire::kSideEncoding<Int64>;
    return reader_.fail(
        "Map member [%s] has key/value encoding type mismatch\nkey type = [%d]; received key type = [%d]\nValue type = [%d]; received value type = [%d] ",
        field_.getName(), kShown, key, kShown, value);
  }

  // An entry whose key is there already changes nothing. Entries come in the map's order, so the end is where
  // they belong.

  template <class K, class V>
  bool entry(Map<K, V>, typename Map<K, V>::Value& map) {
    typename K::Value key{};
    typename V::Value value{};
    // QUIRK: "(Value)" of a map from text to text has a capital.
    constexpr const char* kKind =
        std::same_as<K, element::Str> ? "map<string> (Value)" : "map<string> (value)";
    if (!keySide(key) || !valueSide(kKind, value)) return false;
    map.emplace_hint(map.end(), std::move(key), std::move(value));
    return true;
  }

  template <class K>
  bool entry(Map<K, Obj>, typename Map<K, Obj>::Value& map) {
    typename K::Value key{};
    ObjectPointer value;
    if (!keySide(key)) return false;
    reader_.element(index_, "value");
    if (!object(field_.namePointer(), "Error unserializing on field [%s]", value)) return false;
    if (value != nullptr) map.emplace_hint(map.end(), std::move(key), std::move(*value));
    return true;
  }

  // QUIRK: messages have no order: every key finds the first one, whatever it holds, and one entry stays.
  bool entry(Map<Obj, Obj>, typename Map<Obj, Obj>::Value& map) {
    const char* keyClass = field_.namePointer();
    const char* valueClass = keyClass + ClassRef::kSize;
    ObjectPointer key, value;
    reader_.element(index_, "key");
    if (!object(keyClass, "Error unserializing on field [%s]  (map key)", key)) return false;
    reader_.element(index_, "value");
    if (key == nullptr) return passOver();
    if (!object(valueClass, "Error unserializing on field [%s] (map value)", value)) return false;
    if (value != nullptr) map.emplace_hint(map.end(), std::move(*key), std::move(*value));
    return true;
  }

  template <class T>
  bool keySide(T& key) {
    reader_.element(index_, "key");
    return side("map<string> (key)", key);
  }
  template <class T>
  bool valueSide(const char* kind, T& value) {
    reader_.element(index_, "value");
    return side(kind, value);
  }
  bool side(const char*, std::int64_t& value) {
    return reader_.template number<Int64>(in_, WirePart::kNumber, value);
  }
  bool side(const char* kind, std::string& value) {
    std::string_view bytes;
    if (!reader_.text(in_, kind, field_, bytes)) return false;
    value.assign(bytes);
    return true;
  }

  /// A new object of the class at `classRef`. True with a null object when the class cannot be had: its bytes
  /// are passed over. QUIRK: unlike a single sub-object it keeps the set bits that its construction gave it.
  bool object(const char* classRef, const char* failure, ObjectPointer& made) {
    std::uint32_t size = 0;
    if (!reader_.varint(in_, WirePart::kSize, size)) return false;
    made.reset(XNMessageBase::createObjectFromClassID(classRef));
    if (made == nullptr) {
      reader_.report("Error constructing map object : [%s]", field_.getName());
      return reader_.skip(in_, WirePart::kSkipped, size);
    }
    made->SetCachedSize(size);
    if (reader_.nested(*made, in_, size)) return true;
    return reader_.fail(failure, field_.getName());
  }
  bool passOver() {
    std::uint32_t size = 0;
    if (!reader_.varint(in_, WirePart::kSize, size)) return false;
    return reader_.skip(in_, WirePart::kSkipped, size);
  }

  Reader& reader_;
  BinaryStream& in_;
  const FieldDef& field_;
  std::uint32_t index_ = 0;
};

}  // namespace zqxml
