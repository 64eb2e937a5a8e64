#include <tests/support/message_dump.h>
#include <tests/support/random_message.h>
#include <zqxml/annotation/annotation_record.h>
#include <zqxml/platform/text.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace zqxml {
namespace {

namespace gen = rc::gen;

constexpr std::size_t kMaxDepth = 3;
constexpr std::size_t kMaxElements = 4;
constexpr std::size_t kMaxText = 8;

/// Makes one message; every random choice is a pick of RapidCheck's, so that it can shrink.
class Maker {
 public:
  using Classes = std::vector<const _ClassDef*>;

  explicit Maker(Losses losses) : losses_(losses) {}

  std::vector<ClassIndices> classes() const {
    std::vector<ClassIndices> found;
    for (short slot = 1; slot < kSubsystemCount; ++slot)
      for (int index = 0; index < gSubsystemTable[slot].recordCount; ++index)
        if (isMessageClass({slot, index}) &&
            !(has(kClassIdZero) && ClassIndices{slot, index}.record().getClassId() == 0))
          found.push_back({slot, index});
    return found;
  }

  /// `around` are the classes of the messages that this one goes into, the nearest last.
  OpenMessage make(ClassIndices indices, const Classes& around) const {
    OpenMessage message(indices.subsystem, indices.index);
    MessageAccess::wipeBitset(message);
    for (const FieldDef& field : indices.record())
      if (mayBeSet(field, around) && *gen::inRange<std::size_t>(0, around.size() + 2) == 0)
        fill(message, field, around);
    return message;
  }

 private:
  struct Filler;

  bool has(Loss loss) const { return (losses_ & loss) != 0; }

  bool isMessageClass(ClassIndices indices) const {
    const _ClassDef* record = catalogue::classAt(indices.subsystem, indices.index);
    if (record == nullptr || record->getName() == nullptr || record->isEnumeration()) return false;
    return !(has(kOldWayClasses) && gSubsystemTable[indices.subsystem].oldWay);
  }

  /// Whether a field of this class can hold a sub-object of that class and get it back.
  bool mayHold(ClassRef ref, bool asElement) const {
    if (!isMessageClass({static_cast<short>(ref.subsystem), ref.classIndex})) return false;
    if (!asElement || !has(kBuiltElements)) return true;
    const SubsystemDef& row = gSubsystemTable[ref.subsystem];
    return !row.oldWay && row.classDefs[ref.classIndex].defaultsStart() == -1;
  }
  bool mayHoldObjects(const FieldDef& field, std::size_t depth) const {
    for (unsigned at = 0; at < field.classRefBytes(); at += ClassRef::kSize) {
      if (kEnumTypes.contains(field.getType())) break;
      if (depth + 1 >= kMaxDepth) return false;
      if (!mayHold(ClassRef::read(field.namePointer() + at), field.getType() != FDT_OBJECT)) return false;
    }
    return true;
  }

  bool mayBeSet(const FieldDef& field, const Classes& around) const {
    const unsigned type = field.getType();
    if (type == FDT_NONE) return false;
    if (has(kUnstored) && fieldTypeFacts(type).encoding == BinaryEncodingUnknown) return false;
    if (has(kHashlessFields) && field.getFieldHashId() == 0) return false;
    if (has(kUnsignedLonglongs) && (type == FDT_ULONGLONG || type == FDT_LIST_ULONGLONG)) return false;
    if (has(kNestedMaps) && !around.empty() && kMapTypes.contains(type) && type != FDT_MAP_OBJECT_OBJECT)
      return false;
    const AnnotationRecord annotation(field);
    if (type == FDT_PSTRING && annotation.passwordType() != 1) return false;
    if (has(kDates) && (annotation.isTime() || annotation.dateType() != 0)) return false;
    if (has(kCdata) && annotation.isCdata()) return false;
    if (has(kTwinNames) && hasTwin(field, around)) return false;
    return mayHoldObjects(field, around.size());
  }
  /// Whether the end tag of the field's element would close more than that: a message by the name of an
  /// object of the message around it, an entry by the name of its map.
  static bool hasTwin(const FieldDef& field, const Classes& around) {
    const auto named = [&field](const _ClassDef& record, FieldTypeSet types) {
      return std::any_of(record.begin(), record.end(), [&](const FieldDef& other) {
        return other.getFieldHashId() == field.getFieldHashId() && types.contains(other.getType());
      });
    };
    constexpr FieldTypeSet kObjects{FDT_OBJECT, FDT_LIST_OBJECT};
    if (around.empty() || kObjects.contains(field.getType())) return false;
    if (named(*around.back(), kObjects)) return true;
    return !kMapTypes.contains(field.getType()) &&
           std::any_of(around.begin(), around.end(),
                       [&](const _ClassDef* record) { return named(*record, kMapTypes); });
  }

  void fill(OpenMessage& message, const FieldDef& field, const Classes& around) const;

  // --- Values.

  template <class T>
  static T number() {
    using Limits = std::numeric_limits<T>;
    return *gen::weightedOneOf<T>(
        {{3, gen::arbitrary<T>()}, {1, gen::element<T>(Limits::min(), Limits::max(), T{0}, T{1})}});
  }
  template <class T>
  T floating() const {
    if (has(kDigits)) return static_cast<T>(*gen::inRange(-4000, 4000)) / 4;
    return *gen::weightedOneOf<T>({{3, gen::arbitrary<T>()},
                                   {1, gen::element<T>(T{-0.0}, std::numeric_limits<T>::infinity(),
                                                       std::numeric_limits<T>::denorm_min())}});
  }

  /// A scalar's slot.
  template <class E>
  std::int64_t integer(const FieldDef& field) const {
    if constexpr (std::same_as<E, element::Bool>) return *gen::inRange(0, 2);
    if constexpr (std::same_as<E, element::Enum>) return enumerator(field);
    if (has(kHighHalves)) return static_cast<std::int64_t>(number<typename E::Value>());
    return number<std::int64_t>();
  }
  std::int64_t enumerator(const FieldDef& field) const {
    std::vector<std::int64_t> values;
    if (!has(kUnnamedEnums)) values = {0, 5, 2147483647};
    if (!has(kUnnamedEnums) && !has(kNegativeEnums)) values.push_back(-1);
    if (const _ClassDef* record = catalogue::classOfField(field)) {
      for (const FieldDef& value : *record) {
        const auto signedValue = static_cast<std::int32_t>(value.getFieldHashId());
        if (signedValue >= 0 || !has(kNegativeEnums)) values.push_back(signedValue);
      }
    }
    return *gen::elementOf(values);
  }

  char32_t character() const {
    return *gen::oneOf(gen::inRange<char32_t>(0x20, 0x7f),
                       gen::inRange<char32_t>(has(kNulInTexts) ? 1 : 0, 0x20),
                       gen::inRange<char32_t>(0x7f, 0x800), gen::inRange<char32_t>(0x800, 0xd800),
                       gen::inRange<char32_t>(0xe000, 0x10000), gen::inRange<char32_t>(0x10000, 0x110000),
                       gen::elementOf(std::u32string(U"&<>\"'|#![]\r\n\t \\%")));
  }
  std::u16string wideText(bool mayBeEmpty = true) const {
    std::u16string text;
    const std::size_t size = *gen::inRange<std::size_t>(mayBeEmpty && !has(kEmptyTexts) ? 0 : 1, kMaxText);
    while (text.size() < size) {
      const char32_t code = character();
      if (has(kEscapeLookalikes) && code == U'#') continue;
      if (code >= 0x10000) {
        text += static_cast<char16_t>(0xd7c0 + (code >> 10));
        text += static_cast<char16_t>(0xdc00 + (code & 0x3ff));
      } else {
        text += static_cast<char16_t>(code);
      }
    }
    if (!has(kEscapeLookalikes) && *gen::inRange(0, 8) == 0) text = u"|" + text + u"|#41!";
    return text;
  }
  std::u16string wideTextWithSurrogates() const {
    std::u16string text = wideText();
    if (!has(kLoneSurrogates) && *gen::inRange(0, 4) == 0) text += *gen::inRange<char16_t>(0xd800, 0xe000);
    return text;
  }
  std::string bytes() const {
    std::string text;
    const std::size_t size = *gen::inRange<std::size_t>(has(kEmptyTexts) ? 1 : 0, kMaxText);
    for (std::size_t i = 0; i < size; ++i)
      text += static_cast<char>(*gen::inRange<int>(has(kNulInBytes) ? 1 : 0, 256));
    return text;
  }
  std::string password() const {
    std::string text = toUtf8(wideText());
    if (has(kPasswordMarks)) std::erase(text, '\0');
    if (has(kPasswordMarks) && !text.empty() && static_cast<unsigned char>(text[0]) < 0x20) return "p" + text;
    return text;
  }

  template <class E>
  typename E::Value element() const {
    if constexpr (std::same_as<E, element::Str>)
      return toUtf8(wideText());
    else if constexpr (std::same_as<E, element::WStr>)
      return wideTextWithSurrogates();
    else if constexpr (std::same_as<E, element::BStr>)
      return bytes();
    else if constexpr (element::Floating<E>)
      return floating<typename E::Value>();
    else
      return number<typename E::Value>();
  }

  const Losses losses_;
};

struct Maker::Filler {
  const Maker& maker;
  OpenMessage& message;
  const FieldDef& field;
  const Classes& around;

  void operator()(Nothing) const { MessageAccess::mark(message, field.getMemNum()); }
  template <element::Integer E>
  void operator()(Scalar<E>) const {
    MessageAccess::setInteger(message, field, maker.integer<E>(field));
  }
  void operator()(Scalar<element::Double>) const {
    MessageAccess::setDouble(message, field, maker.floating<double>());
  }
  void operator()(Scalar<element::Float>) const {
    MessageAccess::setFloat(message, field, maker.floating<float>());
  }
  template <class E>
  void operator()(InPlace<E>) const {
    MessageAccess::inPlace<typename E::Value>(message, field) = maker.element<E>();
    MessageAccess::mark(message, field.getMemNum());
  }
  void operator()(Owned<element::BStr>) const {
    MessageAccess::make<bstring>(message, field, true) = bstring(maker.bytes());
  }
  void operator()(Owned<element::PStr>) const {
    MessageAccess::make<pstring>(message, field, true) = pstring(maker.password());
  }
  void operator()(Object) const {
    OpenMessage made = object(0);
    XNMessageBase*& slot = MessageAccess::owned<XNMessageBase>(message, field);
    delete slot;
    slot = new OpenMessage(std::move(made));
    MessageAccess::mark(message, field.getMemNum());
  }
  template <class E>
  void operator()(List<E>) const {
    constexpr bool kPacked = element::Number<E>;
    auto& list = MessageAccess::make<typename List<E>::Value>(message, field, true);
    list.clear();
    const std::size_t size = *gen::inRange<std::size_t>(least(kPacked), kMaxElements);
    while (list.size() < size) {
      if constexpr (std::same_as<E, element::Obj>)
        list.push_back(object(0));
      else
        list.push_back(maker.element<E>());
    }
  }
  template <class K, class V>
  void operator()(Map<K, V>) const {
    auto& map = MessageAccess::make<typename Map<K, V>::Value>(message, field, true);
    map.clear();
    const std::size_t size = *gen::inRange<std::size_t>(least(true), kMaxElements);
    for (std::size_t i = 0; i < size; ++i)
      map.emplace(side<K>(0), side<V>(field.classRefBytes() - ClassRef::kSize));
  }

 private:
  std::size_t least(bool leavesATraceWhenEmpty) const {
    return maker.has(kEmptyCollections) || (!leavesATraceWhenEmpty && maker.has(kEmptyTextLists)) ? 1 : 0;
  }
  /// A message of the ClassRef at that place before the name.
  OpenMessage object(unsigned at) const {
    const ClassRef ref = ClassRef::read(field.namePointer() + at);
    Classes inside = around;
    inside.push_back(XNMessageBase::GetClassDef(&message));
    return maker.make({static_cast<short>(ref.subsystem), ref.classIndex}, inside);
  }
  template <class E>
  typename E::Value side(unsigned at) const {
    if constexpr (std::same_as<E, element::Obj>)
      return object(at);
    else
      return maker.element<E>();
  }
};

void Maker::fill(OpenMessage& message, const FieldDef& field, const Classes& around) const {
  visitStorage(field.getType(), Filler{*this, message, field, around});
}

}  // namespace

rc::Gen<OpenMessage> randomMessages(Losses losses) {
  return rc::gen::exec([losses] {
    const Maker maker(losses);
    // Half of them of the classes that have most to lose.
    const ClassIndices indices = *rc::gen::oneOf(
        rc::gen::elementOf(maker.classes()),
        rc::gen::map(rc::gen::element("Demo_EveryType", "Demo_Nest", "Demo_MapOuter"), classNamed));
    return maker.make(indices, {});
  });
}

rc::Gen<OpenMessage> randomMessagesOf(ClassIndices indices, Losses losses) {
  return rc::gen::exec([=] { return Maker(losses).make(indices, {}); });
}

void showValue(const OpenMessage& message, std::ostream& out) {
  out << dump(message);
}

}  // namespace zqxml
