// Single values of a JSON document as values of message fields.
#pragma once

#include <zqxml/catalogue/field_types.h>
#include <zqxml/catalogue/records.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zqxml::tool {

/// A value of a document that is no array and no object.
struct JsonValue {
  enum class Kind { kNull, kBoolean, kInteger, kUnsigned, kFraction, kText };

  Kind kind = Kind::kNull;
  std::int64_t integer = 0;         ///< of kInteger; of kBoolean 0 or 1
  std::uint64_t unsignedValue = 0;  ///< of kUnsigned
  double fraction = 0;              ///< of kFraction
  std::string_view text{};          ///< of kText; of kFraction as it was written
};

/// What a value could not become: "needs a number from 0 to 4294967295 and has 7.5".
using JsonMisfit = std::string;

/// The content of an integer field's slot, or of an element or side of the field. `E` is its element: numbers
/// fit its width; booleans may be true and false, and enumerations names of enumerators. Every number may be
/// a text.
template <element::Integer E>
std::optional<std::int64_t> integerOf(const JsonValue& value, const FieldDef& field, JsonMisfit& misfit);

/// `T` is float or double. The texts "NaN", "Infinity" and "-Infinity" are numbers too.
template <class T>
std::optional<T> floatingOf(const JsonValue& value, JsonMisfit& misfit);

/// What a member of this field needs: "needs an array of pairs".
std::string needOf(const FieldDef& field);

/// How a message calls what the document has: `the text "x"`, `null`.
std::string shown(const JsonValue& value);

}  // namespace zqxml::tool
