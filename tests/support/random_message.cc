#include <rapidcheck.h>
#include <tests/support/random_message.h>
#include <zqxml/annotation/annotation_record.h>
#include <zqxml/catalogue/lookup.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/platform/text.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zqxml {
namespace {

int draw(int below) {
  return *rc::gen::resize(100, rc::gen::inRange(0, below));
}

/// Numbers of every length rather than almost always huge ones.
std::uint64_t drawBits() {
  return *rc::gen::resize(1000, rc::gen::arbitrary<std::uint64_t>()) >> draw(64);
}

std::u16string drawWide() {
  std::u16string text;
  for (int length = draw(8); length > 0; --length) {
    const auto plane = draw(8);
    if (plane == 0) {
      text += static_cast<char16_t>(0xd800 + draw(0x400));
      text += static_cast<char16_t>(0xdc00 + draw(0x400));
    } else {
      text += static_cast<char16_t>(plane < 5   ? 0x20 + draw(0x5f)
                                    : plane < 7 ? 0xa0 + draw(0x700)
                                                : 0x1000 + draw(0x9000));
    }
  }
  return text;
}

std::string drawBytes() {
  std::string bytes;
  for (int length = draw(12); length > 0; --length) bytes += static_cast<char>(draw(256));
  return bytes;
}

struct FieldFiller {
  XNMessageBase& message;
  const FieldDef& field;
  const RandomValues& values;

  void operator()(Nothing) const {}

  template <class E>
  void operator()(Scalar<E>) const {
    if constexpr (element::Floating<E>) {
      store(number<typename E::Value>());
    } else if constexpr (std::same_as<E, element::Bool>) {
      MessageAccess::setInteger(message, field, draw(2));
    } else {
      MessageAccess::setInteger(message, field, static_cast<std::int64_t>(number<typename E::Value>()));
    }
  }
  template <class E>
  void operator()(InPlace<E>) const {
    fill(MessageAccess::inPlace<typename E::Value>(message, field));
    MessageAccess::mark(message, field.getMemNum());
  }
  void operator()(Owned<element::BStr>) const { fill(MessageAccess::make<bstring>(message, field, true)); }
  void operator()(Owned<element::PStr>) const {
    if (!field.hasAnnotation() || AnnotationRecord(field).passwordType() > 1) return;
    MessageAccess::make<pstring>(message, field, true) = toUtf8(drawWide());
  }
  template <class E>
  void operator()(List<E>) const {
    typename List<E>::Value list(count());
    for (auto& element : list) fillElement<E>(element, 0);
    if (list.empty() && !values.emptyCollections) return;
    MessageAccess::make<typename List<E>::Value>(message, field, true) = std::move(list);
  }
  template <class K, class V>
  void operator()(Map<K, V>) const {
    typename Map<K, V>::Value map;
    for (std::size_t entries = count(); entries > 0; --entries) {
      typename K::Value key{};
      typename V::Value value{};
      fillElement<K>(key, 0);
      fillElement<V>(value, std::same_as<K, element::Obj> ? ClassRef::kSize : 0);
      map.emplace(std::move(key), std::move(value));
    }
    if (map.empty() && !values.emptyCollections) return;
    MessageAccess::make<typename Map<K, V>::Value>(message, field, true) = std::move(map);
  }
  void operator()(Object) const {
    if (values.depth == 0) return;
    auto object = std::make_unique<XNMessageBase>();
    fillElement<element::Obj>(*object, 0);
    XNMessageBase*& slot = MessageAccess::owned<XNMessageBase>(message, field);
    delete std::exchange(slot, object.release());
    MessageAccess::mark(message, field.getMemNum());
  }

 private:
  std::size_t count() const {
    const bool objects =
        kOneClassRefTypes.contains(field.getType()) || kTwoClassRefTypes.contains(field.getType());
    return objects && values.depth == 0 ? 0 : static_cast<std::size_t>(draw(4));
  }
  template <class T>
  static T number() {
    if constexpr (std::is_floating_point_v<T>) {
      return static_cast<T>(static_cast<std::int32_t>(drawBits())) / T{64};
    } else {
      return static_cast<T>(draw(2) == 0 ? drawBits() : ~drawBits());
    }
  }
  void store(double value) const { MessageAccess::setDouble(message, field, value); }
  void store(float value) const { MessageAccess::setFloat(message, field, value); }

  template <class T>
  static void fill(T& value) {
    value = number<T>();
  }
  static void fill(std::string& text) { text = toUtf8(drawWide()); }
  static void fill(std::u16string& text) { text = drawWide(); }
  static void fill(bstring& bytes) { bytes = drawBytes(); }
  template <class E>
  void fillElement(typename E::Value& value, std::size_t refOffset) const {
    if constexpr (std::same_as<E, element::Obj>) {
      MessageAccess::initialize(value, ClassRef::read(field.namePointer() + refOffset));
      MessageAccess::wipeBitset(value);
      RandomValues inner = values;
      --inner.depth;
      fillAtRandom(value, inner);
    } else {
      fill(value);
    }
  }
};

}  // namespace

void fillAtRandom(XNMessageBase& message, const RandomValues& values) {
  for (const FieldDef& field : *MessageAccess::classDef(message)) {
    if (values.without.contains(field.getType()) || (field.getFieldHashId() == 0 && !values.hashless))
      continue;
    if (draw(2) == 0) visitStorage(field.getType(), FieldFiller{message, field, values});
  }
}

}  // namespace zqxml
