// A value of a document as an element: what a field holds, an entry of a list, or one side of a pair.
#pragma once

#include <zqxml/message/bstring.h>
#include <zqxml/message/pstring.h>

#include <string>
#include <string_view>

#include "tools/zqmsg/json/json_value.h"

namespace zqxml::tool {

/// A text as a value of a text element; false when it is none. A password that cannot be decrypted is logged,
/// and empty.
bool textOf(std::string_view text, const FieldDef& field, std::string& out, JsonMisfit& misfit);
bool textOf(std::string_view text, const FieldDef& field, std::u16string& out, JsonMisfit& misfit);
bool textOf(std::string_view text, const FieldDef& field, bstring& out, JsonMisfit& misfit);
bool textOf(std::string_view text, const FieldDef& field, pstring& out, JsonMisfit& misfit);

/// A value as one of the element `E`; false when it is none.
template <class E>
bool elementOf(const JsonValue& value, const FieldDef& field, typename E::Value& out, JsonMisfit& misfit) {
  if constexpr (element::Integer<E>) {
    const auto number = integerOf<E>(value, field, misfit);
    if (number) out = static_cast<typename E::Value>(*number);
    return number.has_value();
  } else if constexpr (element::Floating<E>) {
    const auto number = floatingOf<typename E::Value>(value, misfit);
    if (number) out = *number;
    return number.has_value();
  } else {
    if (value.kind == JsonValue::Kind::kText) return textOf(value.text, field, out, misfit);
    misfit = "needs a text and has " + shown(value);
    return false;
  }
}

}  // namespace zqxml::tool
