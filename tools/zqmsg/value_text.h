// Values as text for people: quoted, escaped, and no longer than a line.
#pragma once

#include <zqxml/catalogue/records.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace zqxml::tool {

/// `text` on one line: control characters as \n, \t, \r or \xNN, bytes that are no UTF-8 as \xNN; `quote` and
/// the backslash are escaped too, unless `quote` is NUL.
std::string escapedText(std::string_view text, char quote);

/// `text` in double quotes, escaped. Of a long one only some 60 bytes are shown, from a little before
/// `position`, with what was left out told behind it.
std::string quotedText(std::string_view text, std::size_t position = 0);

/// The shortest text that reads back as the same number.
std::string numberText(double value);
std::string numberText(float value);

/// What the schema calls a number of this field or of one of its elements: the name of the enumerator, or
/// "true" and "false" of a boolean. Null when it has no such name.
const char* nameOfValue(const FieldDef& field, std::int64_t value);

}  // namespace zqxml::tool
