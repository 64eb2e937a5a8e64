#include "tools/zqmsg/json/json_value.h"

#include <zqxml/catalogue/lookup.h>
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/platform/base64.h>
#include <zqxml/platform/text.h>
#include <zqxml/xml/xml_decoder.h>

#include <charconv>
#include <cmath>
#include <limits>
#include <memory>
#include <utility>

#include "tools/zqmsg/json/json_element.h"
#include "tools/zqmsg/value_text.h"

namespace zqxml::tool {
namespace {

using Kind = JsonValue::Kind;

/// The range of an element: both ends, and both as they are told.
template <class E>
struct Range {
  using Limits = std::numeric_limits<typename E::Value>;
  static constexpr std::int64_t kLeast = Limits::min();
  static constexpr std::uint64_t kMost = Limits::max();
};
/// A boolean's slot may hold any number; those of 32 bits are written as numbers.
template <>
struct Range<element::Bool> {
  static constexpr std::int64_t kLeast = std::numeric_limits<std::int32_t>::min();
  static constexpr std::uint64_t kMost = std::numeric_limits<std::uint32_t>::max();
};

template <class Number>
std::optional<Number> parsed(std::string_view text) {
  Number number{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

/// A whole number of up to 64 bits, signed or not.
struct Whole {
  bool negative = false;
  std::int64_t least = 0;       // when negative
  std::uint64_t magnitude = 0;  // when not
};

std::optional<Whole> wholeOf(std::int64_t value) {
  if (value < 0) return Whole{true, value, 0};
  return Whole{false, 0, static_cast<std::uint64_t>(value)};
}

std::optional<Whole> wholeOf(const JsonValue& value) {
  if (value.kind == Kind::kInteger) return wholeOf(value.integer);
  if (value.kind == Kind::kUnsigned) return Whole{false, 0, value.unsignedValue};
  if (value.kind != Kind::kText) return std::nullopt;
  if (const auto number = parsed<std::int64_t>(value.text)) return wholeOf(*number);
  if (const auto number = parsed<std::uint64_t>(value.text)) return Whole{false, 0, *number};
  return std::nullopt;
}

std::optional<std::int64_t> enumeratorNamed(std::string_view name, const FieldDef& field) {
  const _ClassDef* enumeration = catalogue::classOfField(field);
  if (enumeration == nullptr) return std::nullopt;
  for (const FieldDef& enumerator : *enumeration)
    if (enumerator.getName() != nullptr && name == enumerator.getName())
      return static_cast<std::int32_t>(enumerator.getFieldHashId());
  return std::nullopt;
}

template <class E>
std::string need(const FieldDef& field) {
  const std::string range =
      " from " + std::to_string(Range<E>::kLeast) + " to " + std::to_string(Range<E>::kMost);
  if (kBoolTypes.contains(field.getType())) return "needs true or false";
  if (!kEnumTypes.contains(field.getType())) return "needs a whole number" + range;
  const _ClassDef* enumeration = catalogue::classOfField(field);
  const char* name = enumeration == nullptr ? nullptr : enumeration->getName();
  return "needs a name of " + std::string(name == nullptr ? "its enumeration" : name) + " or a number" +
         range;
}

}  // namespace

std::string needOf(const FieldDef& field) {
  return visitStorage(
      field.getType(),
      Overloaded{[](Nothing) { return std::string("holds no value"); },
                 []<class E>(Scalar<E>) { return std::string("needs a number"); },
                 [](Object) { return std::string("needs an object"); },
                 []<class E>(List<E>) { return std::string("needs an array"); },
                 []<class K, class V>(Map<K, V>) { return std::string("needs an array of pairs"); },
                 [](auto) { return std::string("needs a text"); }});
}

std::string shown(const JsonValue& value) {
  switch (value.kind) {
    case Kind::kNull:
      return "null";
    case Kind::kBoolean:
      return value.integer != 0 ? "true" : "false";
    case Kind::kInteger:
      return std::to_string(value.integer);
    case Kind::kUnsigned:
      return std::to_string(value.unsignedValue);
    case Kind::kFraction:
      return value.text.size() <= 40 ? std::string(value.text)
                                     : std::string(value.text.substr(0, 40)) + "...";
    case Kind::kText:
      break;
  }
  return "the text " + quotedText(value.text);
}

template <element::Integer E>
std::optional<std::int64_t> integerOf(const JsonValue& value, const FieldDef& field, JsonMisfit& misfit) {
  if (value.kind == Kind::kBoolean && kBoolTypes.contains(field.getType())) return value.integer;
  if (value.kind == Kind::kText && kEnumTypes.contains(field.getType())) {
    if (const auto named = enumeratorNamed(value.text, field)) {
      // Elements of lists are unsigned.
      return std::same_as<E, element::UInt32> ? static_cast<std::uint32_t>(*named) : *named;
    }
  }
  if (const std::optional<Whole> whole = wholeOf(value)) {
    if (whole->negative && whole->least >= Range<E>::kLeast) return whole->least;
    if (!whole->negative && whole->magnitude <= Range<E>::kMost)
      return static_cast<std::int64_t>(whole->magnitude);
  }
  misfit = need<E>(field) + " and has " + shown(value);
  return std::nullopt;
}

template std::optional<std::int64_t> integerOf<element::Int32>(const JsonValue&, const FieldDef&,
                                                               JsonMisfit&);
template std::optional<std::int64_t> integerOf<element::UInt32>(const JsonValue&, const FieldDef&,
                                                                JsonMisfit&);
template std::optional<std::int64_t> integerOf<element::Int64>(const JsonValue&, const FieldDef&,
                                                               JsonMisfit&);
template std::optional<std::int64_t> integerOf<element::UInt64>(const JsonValue&, const FieldDef&,
                                                                JsonMisfit&);
template std::optional<std::int64_t> integerOf<element::Bool>(const JsonValue&, const FieldDef&, JsonMisfit&);
template std::optional<std::int64_t> integerOf<element::Enum>(const JsonValue&, const FieldDef&, JsonMisfit&);

template <class T>
std::optional<T> floatingOf(const JsonValue& value, JsonMisfit& misfit) {
  using Limits = std::numeric_limits<T>;
  if (value.kind == Kind::kInteger) return static_cast<T>(value.integer);
  if (value.kind == Kind::kUnsigned) return static_cast<T>(value.unsignedValue);
  if (value.kind == Kind::kText && value.text == "NaN") return Limits::quiet_NaN();
  if (value.kind == Kind::kText && value.text == "Infinity") return Limits::infinity();
  if (value.kind == Kind::kText && value.text == "-Infinity") return -Limits::infinity();
  if (value.kind == Kind::kFraction || value.kind == Kind::kText) {
    // Of its own text, not of the double that the parser made: a float is rounded once.
    const std::optional<T> number = parsed<T>(value.text);
    if (number && std::isfinite(*number)) return number;
    // Too small to be told from 0, or too large.
    if (value.kind == Kind::kFraction && std::abs(value.fraction) < 1)
      return std::copysign(T{0}, static_cast<T>(value.fraction));
  }
  misfit = std::string(sizeof(T) == sizeof(float) ? "needs a number of 32 bits" : "needs a number") +
           " and has " + shown(value);
  return std::nullopt;
}

template std::optional<float> floatingOf<float>(const JsonValue&, JsonMisfit&);
template std::optional<double> floatingOf<double>(const JsonValue&, JsonMisfit&);

bool textOf(std::string_view text, const FieldDef&, std::string& out, JsonMisfit&) {
  out.assign(text);
  return true;
}
bool textOf(std::string_view text, const FieldDef&, std::u16string& out, JsonMisfit&) {
  out = toUtf16(text);
  return true;
}
bool textOf(std::string_view text, const FieldDef&, bstring& out, JsonMisfit& misfit) {
  if (UlBase64::Decode(text, out.str())) return true;
  misfit = "needs Base64 and has the text " + quotedText(text);
  return false;
}
bool textOf(std::string_view text, const FieldDef& field, pstring& out, JsonMisfit& misfit) {
  out = std::string();
  if (text.empty()) return true;
  if (text.find('\0') != text.npos) {
    misfit = "needs a password without a character 0";
    return false;
  }
  pstring* read = nullptr;
  if (XMLDecoder(EncodingFlags(), nullptr).decryptPassword(field, toUtf16(text).c_str(), read)) {
    const std::unique_ptr<pstring> owner(read);
    out = std::move(*owner);
  } else {
    logError("JsonReader::textOf", "Password Handler Not Found for field [%s]", field.getName());
  }
  return true;
}

}  // namespace zqxml::tool
