#include "field_forms.h"

#include <concepts>

#include "values.h"

namespace zqxml::zqcatc {

namespace {

// QUIRK: an unsigned 64-bit value goes out without its key, and a list of them without the marker that tells
// its length; no reader can find them again.
constexpr FieldTypeSet kLostInBinary{FDT_ULONGLONG, FDT_LIST_ULONGLONG};

// What an element is. In the binary form an enumerator is a zigzag like a signed number, a truth value a
// varint like an unsigned one, and both kinds of text are UTF-8.

constexpr std::string_view word(element::Int32) {
  return "int32";
}
constexpr std::string_view word(element::UInt32) {
  return "uint32";
}
constexpr std::string_view word(element::Int64) {
  return "int64";
}
constexpr std::string_view word(element::UInt64) {
  return "uint64";
}
constexpr std::string_view word(element::Bool) {
  return "bool";
}
constexpr std::string_view word(element::Enum) {
  return "enum";
}
constexpr std::string_view word(element::Double) {
  return "double";
}
constexpr std::string_view word(element::Float) {
  return "float";
}
constexpr std::string_view word(element::Str) {
  return "string";
}
constexpr std::string_view word(element::WStr) {
  return "wstring";
}
constexpr std::string_view word(element::BStr) {
  return "bstring";
}
constexpr std::string_view word(element::PStr) {
  return "pstring";
}
constexpr std::string_view word(element::Obj) {
  return "object";
}

enum class Form { kBinary, kXml, kStorage };

/// The element as a form shows it.
template <Form form, class E>
std::string_view elementWord(bool scalar) {
  constexpr bool kWide = std::same_as<E, element::WStr>;
  if constexpr (form == Form::kBinary) {
    if constexpr (std::same_as<E, element::Enum>) return word(element::Int32{});
    if constexpr (std::same_as<E, element::Bool>) return word(element::UInt32{});
    if constexpr (kWide) return word(element::Str{});
  } else if constexpr (form == Form::kXml) {
    // A single integer is decimal text and stays whole in its 64-bit slot, whatever its type.
    constexpr bool kNamed = std::same_as<E, element::Enum> || std::same_as<E, element::Bool>;
    if constexpr (element::Integer<E> && !kNamed) {
      if (scalar) return word(element::Int64{});
    }
    if constexpr (kWide) return word(element::Str{});
  }
  return word(E{});
}

template <Form form>
struct FormWriter {
  unsigned type;

  std::string operator()(Nothing) const { return cat("type ", type); }
  template <class E>
  std::string operator()(Scalar<E>) const {
    return std::string(elementWord<form, E>(true));
  }
  template <class E>
  std::string operator()(InPlace<E>) const {
    return std::string(elementWord<form, E>(true));
  }
  template <class E>
  std::string operator()(Owned<E>) const {
    return std::string(elementWord<form, E>(true));
  }
  template <class E>
  std::string operator()(List<E>) const {
    return cat("list of ", elementWord<form, E>(false));
  }
  template <class K, class V>
  std::string operator()(Map<K, V>) const {
    return cat("map of ", elementWord<form, K>(false), " to ", elementWord<form, V>(false));
  }
  std::string operator()(Object) const { return std::string(word(element::Obj{})); }
};

template <Form form>
std::string formOf(unsigned type) {
  return visitStorage(type, FormWriter<form>{type});
}

}  // namespace

std::string binaryForm(unsigned type) {
  return isLostInBinary(type) ? cat("lost ", type) : formOf<Form::kBinary>(type);
}

std::string xmlForm(unsigned type) {
  return formOf<Form::kXml>(type);
}

std::string storageForm(unsigned type) {
  return formOf<Form::kStorage>(type);
}

bool isLostInBinary(unsigned type) {
  return kLostInBinary.contains(type);
}

bool isPassword(unsigned type) {
  constexpr FieldTypeSet kPasswordTypes = FieldTypeSet::ofStorage(
      Overloaded{[](Owned<element::PStr>) { return true; }, [](auto) { return false; }});
  return kPasswordTypes.contains(type);
}

std::string typeText(unsigned type) {
  return type < kFieldTypeCount ? typeName(static_cast<FieldDataType>(type)) : cat("type ", type);
}

}  // namespace zqxml::zqcatc
