#pragma once

#include <zqxml/platform/export.h>

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

namespace zqxml {

/// One argument of formatText: a value that knows its type, so that no conversion can misread it.
///
/// Texts are referenced, not copied: they must outlive the call. A null `const char*` is a null text.
class FormatArg {
 public:
  /// Which of the values it holds.
  enum class Kind : std::uint8_t { kSigned, kUnsigned, kDouble, kText, kWideText, kPointer };

  /// @{
  /// Of any value that a text can show; an enumerator is its number.
  template <std::signed_integral T>
  FormatArg(T value) : kind_(Kind::kSigned), number_(static_cast<std::uint64_t>(std::int64_t{value})) {}
  template <std::unsigned_integral T>
  FormatArg(T value) : kind_(Kind::kUnsigned), number_(value) {}
  template <typename T>
  requires std::is_enum_v<T> FormatArg(T value) : FormatArg(static_cast<std::underlying_type_t<T>>(value)) {}
  FormatArg(double value) : kind_(Kind::kDouble), double_(value) {}
  FormatArg(const char* text)
      : kind_(Kind::kText), size_(text == nullptr ? 0 : std::char_traits<char>::length(text)), text_(text) {}
  FormatArg(std::string_view text)
      : kind_(Kind::kText), size_(text.size()), text_(nonNull(text.data(), "")) {}
  FormatArg(const std::string& text) : FormatArg(std::string_view(text)) {}
  FormatArg(const char16_t* text)
      : kind_(Kind::kWideText),
        size_(text == nullptr ? 0 : std::char_traits<char16_t>::length(text)),
        wide_(text) {}
  FormatArg(std::u16string_view text)
      : kind_(Kind::kWideText), size_(text.size()), wide_(nonNull(text.data(), u"")) {}
  FormatArg(const std::u16string& text) : FormatArg(std::u16string_view(text)) {}
  FormatArg(std::nullptr_t) : FormatArg(static_cast<const char*>(nullptr)) {}
  FormatArg(const void* value) : kind_(Kind::kPointer), pointer_(value) {}
  /// @}

  /// Which of the values counts.
  Kind kind() const { return kind_; }
  /// Integers: the value, sign-extended to 64 bits.
  std::uint64_t number() const { return number_; }
  /// @{
  /// The value of kDouble, and the address of kPointer.
  double floating() const { return double_; }
  const void* pointer() const { return pointer_; }
  /// @}
  /// Texts: whether the argument was a null pointer.
  bool isNull() const { return kind_ == Kind::kWideText ? wide_ == nullptr : text_ == nullptr; }
  /// @{
  /// The text of kText, and of kWideText; empty for a null one.
  std::string_view text() const { return {text_, size_}; }
  std::u16string_view wideText() const { return {wide_, size_}; }
  /// @}

 private:
  template <typename T>
  static const T* nonNull(const T* pointer, const T* fallback) {
    return pointer == nullptr ? fallback : pointer;
  }

  Kind kind_;
  std::size_t size_ = 0;
  union {
    std::uint64_t number_;
    double double_;
    const void* pointer_;
    const char* text_;
    const char16_t* wide_;
  };
};

/// Formats as C's `printf` does, in the "C" locale, but knows its arguments and is total on any input:
///
/// - Without a length modifier an integer is taken as 32 bits, with `hh` as 8, with `h` as 16, with `l`,
/// `ll`,
///   `j`, `z`, `t` or `I64` as 64.
/// - `%s`, `%ls` and `%S` take narrow text (written as it is) and wide text (written as UTF-8) alike; a null
///   text is "(null)". `%c` and `%lc` take a character's number; a `char16_t` is written as UTF-8.
/// - An argument whose type does not fit its conversion is written in its own natural form.
/// - A conversion without an argument, and one that is not known, stands in the result as it stands in the
///   format. `%n` writes nothing and takes no argument.
/// - Width, and the precision of a number, end at 1024: a format cannot make the result much longer than that
///   for each of its conversions.
/// - `*` takes the next argument.
///
/// Throws nothing but std::bad_alloc.
ZQXML_EXPORT std::string formatText(std::string_view format, std::span<const FormatArg> arguments);

/// The same with the arguments in place. A null format gives an empty text.
template <typename... Args>
std::string formatText(const char* format, const Args&... arguments) {
  const std::array<FormatArg, sizeof...(Args)> list{FormatArg(arguments)...};
  return formatText(std::string_view(format == nullptr ? "" : format), std::span<const FormatArg>(list));
}

}  // namespace zqxml
