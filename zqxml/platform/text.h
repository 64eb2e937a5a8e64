#pragma once

#include <zqxml/platform/export.h>

#include <string>
#include <string_view>

namespace zqxml {

/// @{
/// Conversion between UTF-8 and UTF-16, whatever the locale.
///
/// Total: each maximal ill-formed sequence of bytes, and each lone surrogate, becomes one U+FFFD (the
/// practice that the Unicode standard recommends, section 3.9). NUL is a character like any other. Throws
/// nothing but std::bad_alloc. Any thread.
ZQXML_EXPORT std::string toUtf8(std::u16string_view text);
ZQXML_EXPORT std::u16string toUtf16(std::string_view text);
/// @}

/// @{
/// The same, put at the end of `out`. `text` may not be a part of `out`.
ZQXML_EXPORT void appendUtf8(std::string& out, std::u16string_view text);
ZQXML_EXPORT void appendUtf16(std::u16string& out, std::string_view text);
/// @}

/// @{
/// The conversions under the names that the suite's programs know.
inline std::string WideChar2UTF8String(std::u16string_view text) {
  return toUtf8(text);
}
inline std::u16string UTF8String2WideChar(std::string_view text) {
  return toUtf16(text);
}
/// @}

}  // namespace zqxml
