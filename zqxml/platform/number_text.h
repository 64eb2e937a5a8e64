/// @file
/// Numbers read from text, as the C library's parsers read them but never by the process's locale.
///
/// All forms skip leading white space (blank, `\t`, `\n`, `\v`, `\f`, `\r`), take an optional sign and the
/// longest run that is a number, and ignore the rest; a text without a number is 0. Nothing fails, logs or
/// allocates (a floating-point text of unusual length or magnitude apart). Results that do not fit saturate.
/// Safe from any thread.
#pragma once

#include <zqxml/platform/export.h>

#include <cstdint>
#include <string_view>

namespace zqxml {

/// @{
/// Signed decimal of 64 bits: strtoll in base 10, and atoll with its saturating result.
ZQXML_EXPORT std::int64_t parseInt64(std::string_view text);
ZQXML_EXPORT std::int64_t parseInt64(std::u16string_view text);
/// @}

/// @{
/// Signed decimal of 32 bits: atoi and atol where a long has 32 bits.
ZQXML_EXPORT std::int32_t parseInt32(std::string_view text);
ZQXML_EXPORT std::int32_t parseInt32(std::u16string_view text);
/// @}

/// @{
/// Unsigned decimal: strtoull and, where a long has 32 bits, strtoul, in base 10. A minus sign negates the
/// result modulo the width ("-1" is the greatest value); what does not fit saturates whatever its sign.
ZQXML_EXPORT std::uint64_t parseUInt64(std::string_view text);
ZQXML_EXPORT std::uint64_t parseUInt64(std::u16string_view text);
ZQXML_EXPORT std::uint32_t parseUInt32(std::string_view text);
ZQXML_EXPORT std::uint32_t parseUInt32(std::u16string_view text);
/// @}

/// @{
/// Floating point as strtod (and atof) in the "C" locale: decimal and hexadecimal, "inf", "nan"; too large
/// gives an infinity, too small the nearest of zero and the subnormals.
ZQXML_EXPORT double parseDouble(std::string_view text);
ZQXML_EXPORT double parseDouble(std::u16string_view text);
/// @}

/// @{
/// A number as a stream's `>>` reads it, with failure: false, and `value` stays as it was, when the text has
/// no number behind its leading white space or the number does not fit. An unsigned value takes a minus sign
/// as above. Floating point is decimal, "inf" or "nan"; what is too small is the nearest of zero and the
/// subnormals.
ZQXML_EXPORT bool readNumber(std::string_view text, std::int32_t& value);
ZQXML_EXPORT bool readNumber(std::string_view text, std::uint32_t& value);
ZQXML_EXPORT bool readNumber(std::string_view text, std::int64_t& value);
ZQXML_EXPORT bool readNumber(std::string_view text, float& value);
ZQXML_EXPORT bool readNumber(std::string_view text, double& value);
/// @}

/// @{
/// The text without leading and trailing white space (the six characters above).
constexpr std::string_view trimSpace(std::string_view text);
constexpr std::u16string_view trimSpace(std::u16string_view text);
/// @}

/// One of the six white-space characters above.
constexpr bool isSpace(char32_t unit) {
  return unit == ' ' || (unit >= '\t' && unit <= '\r');
}

namespace internal {
template <class View>
constexpr View trimSpaceOf(View text) {
  while (!text.empty() && isSpace(static_cast<char32_t>(text.front()))) text.remove_prefix(1);
  while (!text.empty() && isSpace(static_cast<char32_t>(text.back()))) text.remove_suffix(1);
  return text;
}
}  // namespace internal

constexpr std::string_view trimSpace(std::string_view text) {
  return internal::trimSpaceOf(text);
}
constexpr std::u16string_view trimSpace(std::u16string_view text) {
  return internal::trimSpaceOf(text);
}

}  // namespace zqxml
