/// @file
/// Text forms of single values: plain decimal numbers, default-formatted floating point, Base64 for byte
/// strings.
///
/// Every form is independent of the process's locale. Dates and times have their forms in date_text.h.
#pragma once

#include <zqxml/catalogue/lookup.h>
#include <zqxml/platform/export.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zqxml {

/// Text of one value by its field type. `value` points to an 8-byte cell for integers of every width,
/// booleans and enumerations (sign- or zero-extended by its owner), to the float, double, string, bstring or
/// pstring otherwise; list types take one element. Null, and every type without a text form, give "".
///
/// Enumerations give their number. A bstring, pstring or element of a bstring list gives Base64.
/// QUIRK: of its bytes, only those up to the first NUL count; callers that need all of them encode
/// themselves.
ZQXML_EXPORT std::string getStringFromFld(int type, const void* value);

namespace internal {
/// Text of at most 24 characters, made by one of the functions below.
using NumberBuffer = std::array<char, 24>;
ZQXML_EXPORT std::size_t printSigned(NumberBuffer& buffer, std::int64_t value);
ZQXML_EXPORT std::size_t printUnsigned(NumberBuffer& buffer, std::uint64_t value);
ZQXML_EXPORT std::size_t printFloating(NumberBuffer& buffer, double value);
}  // namespace internal

/// The text of a number, held in place: no heap. `Char` is char or char16_t.
template <class Char>
class BasicNumberText {
 public:
  /// @{
  /// A whole number in decimal.
  static BasicNumberText ofSigned(std::int64_t value) {
    return BasicNumberText([value](auto& buffer) { return internal::printSigned(buffer, value); });
  }
  static BasicNumberText ofUnsigned(std::uint64_t value) {
    return BasicNumberText([value](auto& buffer) { return internal::printUnsigned(buffer, value); });
  }
  /// @}
  /// What a default-formatted stream prints in the classic locale: six significant digits, the shorter of
  /// fixed and scientific form ("0.1", "1e+06", "-inf", "nan"). A float prints as its double. Digits beyond
  /// the sixth are lost; the form requires it.
  static BasicNumberText ofFloating(double value) {
    return BasicNumberText([value](auto& buffer) { return internal::printFloating(buffer, value); });
  }

  /// The text, valid as long as this object.
  std::basic_string_view<Char> view() const { return {text_.data(), size_}; }
  /// NUL-terminated, like every c_str().
  const Char* c_str() const { return text_.data(); }
  /// view().
  operator std::basic_string_view<Char>() const { return view(); }

 private:
  template <class Print>
  explicit BasicNumberText(Print print) {
    internal::NumberBuffer ascii;
    size_ = print(ascii);
    for (std::size_t i = 0; i < size_; ++i) text_[i] = static_cast<Char>(ascii[i]);
    text_[size_] = 0;
  }

  std::array<Char, std::tuple_size_v<internal::NumberBuffer> + 1> text_;
  std::size_t size_ = 0;
};

/// The text of a number in UTF-8.
using NumberText = BasicNumberText<char>;
/// The text of a number in UTF-16.
using WideNumberText = BasicNumberText<char16_t>;

}  // namespace zqxml
