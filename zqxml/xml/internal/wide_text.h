// Names and values in the form that the DOM takes: UTF-16, NUL-terminated. Not installed.
//
// Both are made for a hot path: no allocation for a name of ordinary length, one reused buffer for all
// values, and no call of the XML library's transcoder, which takes a lock of the process.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zqxml {

/// A field's name, widened from UTF-8.
class WideName {
 public:
  explicit WideName(const char* name);
  WideName(const WideName&) = delete;
  WideName& operator=(const WideName&) = delete;

  const char16_t* c_str() const { return text_; }

 private:
  static constexpr std::size_t kShort = 64;

  const char16_t* text_;
  char16_t short_[kShort];
  std::u16string long_;
};

/// The text of one value at a time. Every assignment replaces it; the pointer is valid until the next one.
class WideText {
 public:
  const char16_t* c_str() const { return text_.c_str(); }

  void assignSigned(std::int64_t value);
  void assignUnsigned(std::uint64_t value);
  /// Six significant digits, as a default-formatted stream prints them.
  void assignFloating(double value);
  /// Text of our own making: bytes below 0x80 only, all of them legal in XML.
  void assignAscii(std::string_view text);

  /// A message's text. It ends at its first NUL; "]]>" is escaped when it goes into a CDATA section, and what
  /// XML cannot hold is encoded (xml_invalid_char_handler.h).
  void assignMessageText(std::string_view utf8, bool asCdata);
  void assignMessageText(std::u16string_view utf16, bool asCdata);

 private:
  void assignEncoded(std::u16string_view utf16);

  std::u16string text_;
};

}  // namespace zqxml
