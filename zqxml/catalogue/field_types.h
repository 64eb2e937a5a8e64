/// @file
/// Field types: the type byte of a catalogue field and everything that follows from it.
///
/// Three doors, all generated from field_types.def:
/// - kFieldTypes, facts about one type (text, slots, wire encoding, classification);
/// - FieldTypeSet, a question about a type, as one 64-bit word;
/// - visitStorage(), work on a value: calls a handler with the storage of the type, that is shape and
/// element.
///
/// visitStorage holds the only switch over field types in the program. A handler is a class (or a set of
/// lambdas) with one call operator per shape, templated on the element where that makes no difference:
///
///     struct SlotCleaner {
///       void operator()(Nothing) {}
///       template <class E> void operator()(Scalar<E>) { ... typename E::Value ... }
///       template <class E> void operator()(List<E>) { ... std::vector<typename E::Value> ... }
///     };
///
/// All of it is constant and safe from any thread.
#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace zqxml {

class XNMessageBase;
class bstring;
class pstring;

/// The type byte of a field record, an enumerator for each row of this table:
///
/// @include catalogue/field_types.def
enum FieldDataType : std::uint8_t {
#define ZQXML_FIELD_TYPE(value, name, text, slots, flags, enc, ...) name = (value),
#include <zqxml/catalogue/field_types.def>
#undef ZQXML_FIELD_TYPE
};

/// Number of field types; every type byte at or above it is unknown.
inline constexpr unsigned kFieldTypeCount = 43;

/// Class of a value on the wire: the low three bits of a field's key.
enum BinaryEncodingType : std::uint8_t {
  BinaryEncodingVarint = 0,           ///< one base-128 value
  BinaryEncodingFixed64 = 1,          ///< 8 bytes
  BinaryEncodingLengthDelimited = 2,  ///< a base-128 byte count, then the bytes
  BinaryEncodingFixed32 = 5,          ///< 4 bytes
  BinaryEncodingSignedVarint = 6,     ///< one zigzag base-128 value
  BinaryEncodingUnknown = 7,          ///< nothing: the type has no encoding
};

/// Elements: what one value, one list entry or one side of a map is. The element of a scalar tells how the
/// 64-bit slot is to be read; the slot itself is always 8 bytes.
namespace element {
/// A signed number of 32 bits; times too.
struct Int32 {
  using Value = std::int32_t;  ///< its C++ type
};
/// An unsigned number of 32 bits.
struct UInt32 {
  using Value = std::uint32_t;  ///< its C++ type
};
/// A signed number of 64 bits; times too.
struct Int64 {
  using Value = std::int64_t;  ///< its C++ type
};
/// An unsigned number of 64 bits.
struct UInt64 {
  using Value = std::uint64_t;  ///< its C++ type
};
/// A truth value; lists hold any number.
struct Bool {
  using Value = std::uint32_t;  ///< its C++ type
};
/// An enumerator by its value. Lists of them have UInt32.
struct Enum {
  using Value = std::int32_t;  ///< its C++ type
};
/// A floating-point number of 64 bits (IEEE 754).
struct Double {
  using Value = double;  ///< its C++ type
};
/// A floating-point number of 32 bits (IEEE 754).
struct Float {
  using Value = float;  ///< its C++ type
};
/// A text in UTF-8.
struct Str {
  using Value = std::string;  ///< its C++ type
};
/// A text in UTF-16.
struct WStr {
  using Value = std::u16string;  ///< its C++ type
};
/// A string of any bytes.
struct BStr {
  using Value = bstring;  ///< its C++ type
};
/// A password with its encryption type.
struct PStr {
  using Value = pstring;  ///< its C++ type
};
/// A message.
struct Obj {
  using Value = XNMessageBase;  ///< its C++ type
};

/// Elements that a scalar field keeps as a 64-bit integer in its slot.
template <class E>
concept Integer = std::same_as<E, Int32> || std::same_as<E, UInt32> || std::same_as<E, Int64> ||
    std::same_as<E, UInt64> || std::same_as<E, Bool> || std::same_as<E, Enum>;
/// Elements that are floating-point numbers.
template <class E>
concept Floating = std::same_as<E, Double> || std::same_as<E, Float>;
/// Elements that are numbers of any kind.
template <class E>
concept Number = Integer<E> || Floating<E>;
}  // namespace element

// Shapes: how a field's slots hold its value.

/// The shape of no value: the type stores nothing (its slot, if it has one, stays zero).
struct Nothing {};
/// The number itself in one slot.
template <class E>
struct Scalar {
  using Element = E;                ///< of the value, or of each in it
  using Value = typename E::Value;  ///< the C++ type of the whole
};
/// A std::string or std::u16string constructed directly in four slots; always exists.
template <class E>
struct InPlace {
  using Element = E;                ///< of the value, or of each in it
  using Value = typename E::Value;  ///< the C++ type of the whole
};
/// One slot owning a bstring or pstring; always exists in an object with owned content.
template <class E>
struct Owned {
  using Element = E;                ///< of the value, or of each in it
  using Value = typename E::Value;  ///< the C++ type of the whole
};
/// One slot owning a vector; null until it exists.
template <class E>
struct List {
  using Element = E;                             ///< of the value, or of each in it
  using Value = std::vector<typename E::Value>;  ///< the C++ type of the whole
};
/// One slot owning an ordered map; null until it exists.
template <class K, class V>
struct Map {
  using Key = K;                                                 ///< element of the keys
  using Mapped = V;                                              ///< element of the values
  using Value = std::map<typename K::Value, typename V::Value>;  ///< the C++ type of the whole
};
/// One slot owning a message; null until it exists.
struct Object {
  using Value = XNMessageBase;  ///< the C++ type of the whole
};

/// Facts about one field type; a row of field_types.def.
struct FieldTypeFacts {
  const char* name;    ///< "FDT_INT"
  const char* text;    ///< text of the type in schema output; null when it has none or needs a class name
  std::uint8_t slots;  ///< 8-byte slots that a field takes
  std::uint8_t flags;  ///< of field_type_flag
  BinaryEncodingType encoding;  ///< on the wire
};

/// The flags of a row in field_types.def, a bit each, and what they answer.
namespace field_type_flag {
inline constexpr std::uint8_t P = 1;   ///< FieldDef::isPrimitiveType
inline constexpr std::uint8_t X = 2;   ///< XMLDecoder::isPrimitive
inline constexpr std::uint8_t L = 4;   ///< XMLDecoder::isListType
inline constexpr std::uint8_t C = 8;   ///< what the binary form writes as a collection
inline constexpr std::uint8_t R = 16;  ///< the value stands in the slots themselves
}  // namespace field_type_flag

/// The rows of field_types.def by the number of the type. For any type byte see fieldTypeFacts.
inline constexpr std::array<FieldTypeFacts, kFieldTypeCount> kFieldTypes = [] {
  using namespace field_type_flag;
  return std::array<FieldTypeFacts, kFieldTypeCount>{{
#define ZQXML_FIELD_TYPE(value, name, text, slots, flags, enc, ...) \
  {#name, text, slots, static_cast<std::uint8_t>(flags), BinaryEncoding##enc},
#include <zqxml/catalogue/field_types.def>
#undef ZQXML_FIELD_TYPE
  }};
}();

/// A set of field types in one word; contains() is false for every unknown type byte.
class FieldTypeSet {
 public:
  /// The empty set.
  constexpr FieldTypeSet() = default;
  /// These types.
  constexpr FieldTypeSet(std::initializer_list<FieldDataType> types) {
    for (FieldDataType type : types) bits_ |= std::uint64_t{1} << type;
  }
  /// The types whose row has the flag (see field_type_flag).
  static constexpr FieldTypeSet withFlag(std::uint8_t flag) {
    FieldTypeSet set;
    for (unsigned type = 0; type < kFieldTypeCount; ++type)
      if ((kFieldTypes[type].flags & flag) != 0) set.bits_ |= std::uint64_t{1} << type;
    return set;
  }
  /// The types for whose storage the handler answers true: `FieldTypeSet::ofStorage(Overloaded{...})`.
  template <class Handler>
  static constexpr FieldTypeSet ofStorage(Handler handler);
  /// Whether the type is in the set.
  constexpr bool contains(unsigned type) const { return type < 64 && ((bits_ >> type) & 1) != 0; }
  /// The types of either set.
  constexpr FieldTypeSet operator|(FieldTypeSet other) const {
    FieldTypeSet set;
    set.bits_ = bits_ | other.bits_;
    return set;
  }

 private:
  std::uint64_t bits_ = 0;
};

/// FieldDef::isPrimitiveType.
inline constexpr FieldTypeSet kPrimitiveTypes = FieldTypeSet::withFlag(field_type_flag::P);
/// XMLDecoder::isPrimitive.
inline constexpr FieldTypeSet kXmlPrimitiveTypes = FieldTypeSet::withFlag(field_type_flag::X);
/// XMLDecoder::isListType.
inline constexpr FieldTypeSet kListTypes = FieldTypeSet::withFlag(field_type_flag::L);
/// What the binary form writes as a collection. QUIRK: with ulonglong, and without its list.
inline constexpr FieldTypeSet kCollectionTypes = FieldTypeSet::withFlag(field_type_flag::C);
/// Types whose value stands in the slots themselves, not behind a pointer.
inline constexpr FieldTypeSet kValueInSlotTypes = FieldTypeSet::withFlag(field_type_flag::R);
/// All maps.
inline constexpr FieldTypeSet kMapTypes{FDT_MAP_INT64_INT64,  FDT_MAP_INT64_STRING,  FDT_MAP_INT64_OBJECT,
                                        FDT_MAP_STRING_INT64, FDT_MAP_STRING_STRING, FDT_MAP_STRING_OBJECT,
                                        FDT_MAP_OBJECT_OBJECT};
/// Truth values, and lists of them.
inline constexpr FieldTypeSet kBoolTypes{FDT_BOOL, FDT_LIST_BOOL};
/// XMLDecoder::isEnum.
inline constexpr FieldTypeSet kEnumTypes{FDT_ENUM, FDT_LIST_ENUM};
/// Types whose field name is preceded by one ClassRef (4 bytes).
inline constexpr FieldTypeSet kOneClassRefTypes{FDT_ENUM,   FDT_LIST_ENUM,        FDT_LIST_OBJECT,
                                                FDT_OBJECT, FDT_MAP_INT64_OBJECT, FDT_MAP_STRING_OBJECT};
/// Types whose field name is preceded by two ClassRefs (8 bytes): key class, value class.
inline constexpr FieldTypeSet kTwoClassRefTypes{FDT_MAP_OBJECT_OBJECT};

static_assert(kFieldTypes[FDT_TIME64].slots == 1 && FDT_TIME64 + 1 == kFieldTypeCount);
static_assert(kListTypes.contains(FDT_ULONGLONG) && !kListTypes.contains(FDT_LIST_ULONGLONG));
static_assert(kCollectionTypes.contains(FDT_ULONGLONG) && !kCollectionTypes.contains(FDT_LIST_ULONGLONG));
static_assert(kCollectionTypes.contains(FDT_LIST_BSTRING) && !kListTypes.contains(FDT_LIST_BSTRING));

/// Facts of a type byte; those of FDT_NONE for an unknown one.
constexpr const FieldTypeFacts& fieldTypeFacts(unsigned type) {
  return kFieldTypes[type < kFieldTypeCount ? type : 0u];
}

/// Calls handler(Storage{}) with the storage of the type, Nothing{} for an unknown one, and returns its
/// result.
template <class Handler>
constexpr decltype(auto) visitStorage(unsigned type, Handler&& handler) {
  switch (type) {
#define ZQXML_FIELD_TYPE(value, name, text, slots, flags, enc, ...) \
  case name:                                                        \
    return std::forward<Handler>(handler)(__VA_ARGS__{});
#include <zqxml/catalogue/field_types.def>
#undef ZQXML_FIELD_TYPE
    default:
      return std::forward<Handler>(handler)(Nothing{});
  }
}

/// Handler made of lambdas: `visitStorage(type, Overloaded{[](Nothing) {}, ...})`.
template <class... Handlers>
struct Overloaded : Handlers... {
  using Handlers::operator()...;
};
/// So that lambdas need no types.
template <class... Handlers>
Overloaded(Handlers...) -> Overloaded<Handlers...>;

template <class Handler>
constexpr FieldTypeSet FieldTypeSet::ofStorage(Handler handler) {
  FieldTypeSet set;
  for (unsigned type = 0; type < kFieldTypeCount; ++type)
    if (visitStorage(type, handler)) set.bits_ |= std::uint64_t{1} << type;
  return set;
}

/// Types whose slot is a number and owns nothing.
inline constexpr FieldTypeSet kNumberTypes =
    FieldTypeSet::ofStorage(Overloaded{[]<class E>(Scalar<E>) { return true; }, [](auto) { return false; }});
/// Types whose slot may own something.
inline constexpr FieldTypeSet kOwningTypes = FieldTypeSet::ofStorage(Overloaded{
    [](Nothing) { return false; }, []<class E>(Scalar<E>) { return false; }, [](auto) { return true; }});
/// Types whose content exists for the whole life of a message.
inline constexpr FieldTypeSet kAlwaysBuiltTypes =
    FieldTypeSet::ofStorage(Overloaded{[]<class E>(InPlace<E>) { return true; },
                                       []<class E>(Owned<E>) { return true; }, [](auto) { return false; }});
static_assert(kNumberTypes.contains(FDT_ULONGLONG) && !kNumberTypes.contains(FDT_STRING));
static_assert(kAlwaysBuiltTypes.contains(FDT_PSTRING) && !kAlwaysBuiltTypes.contains(FDT_RESERVED_29));

}  // namespace zqxml
