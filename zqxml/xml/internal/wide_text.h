// Names and values in the form that the DOM takes: UTF-16, NUL-terminated. Not installed.
//
// Both are made for a hot path: no allocation for a name of ordinary length, one reused buffer for all
// values, and no call of the XML library's transcoder, which takes a lock of the process.
#pragma once

#include <zqxml/xml/internal/xml_values.h>

#include <cstddef>
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

  void assign(SignedValue value);
  void assign(UnsignedValue value);
  void assign(FloatingValue value);
  void assign(PlainValue value);
  void assign(BytesValue value);
  void assign(TextValue<char> value);
  void assign(TextValue<char16_t> value);

  const std::u16string& text() const { return text_; }

 private:
  void assignAscii(std::string_view text);
  void assignEncoded(std::u16string_view utf16);

  std::u16string text_;
};

}  // namespace zqxml
