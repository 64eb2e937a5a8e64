// The fixed names of the XML form, for its writer and its reader. Not installed.
#pragma once

namespace zqxml {

/// The attribute that holds the value of a list element or of a side of a map entry. Hidden by name: g++ 12
/// exports what comes of a template of variables whatever its options say.
template <class Char>
[[gnu::visibility("hidden")]] inline constexpr Char kValText[] = {'v', 'a', 'l', 0};
inline constexpr const char16_t (&kValName)[4] = kValText<char16_t>;
/// The elements of the two sides of a map entry.
inline constexpr char16_t kMapKeyName[] = u"__mapKey__";
inline constexpr char16_t kMapValueName[] = u"__mapValue__";

/// What our texts in UTF-8 begin with.
inline constexpr char kUtf8Declaration[] = R"(<?xml version="1.0" encoding="UTF-8" standalone="no" ?>)";

}  // namespace zqxml
