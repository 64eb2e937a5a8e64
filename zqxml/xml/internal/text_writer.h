// TextWriter: values as XML text, in the words of the XML library's DOM writer. Not installed.
#pragma once

#include <zqxml/platform/base64.h>
#include <zqxml/xml/internal/chunked_text.h>
#include <zqxml/xml/internal/class_plan.h>
#include <zqxml/xml/internal/plain_text.h>
#include <zqxml/xml/internal/wide_text.h>
#include <zqxml/xml/internal/xml_values.h>
#include <zqxml/xml/value_text.h>

#include <charconv>
#include <cstddef>
#include <cstring>
#include <string_view>
#include <type_traits>

namespace zqxml {

/// Where a text stands, which decides what is escaped in it.
enum class TextPlace { attribute, content, section };

/// Writes UTF-8 (Char is char) or UTF-16 in native byte order (char16_t).
template <class Char>
class TextWriter {
 public:
  ChunkedText<Char>& text() { return text_; }

  /// `before`, the name, `after`: both of plain ASCII and short.
  template <std::size_t B, std::size_t A>
  void putName(const char (&before)[B], PlannedName name, const char (&after)[A]) {
    Char* at = text_.room(B + A + name.length + PlannedName::kBlock);
    text_.endAt(putLiteral(copyName(putLiteral(at, before), name), after));
  }
  template <std::size_t N>
  void putLiteral(const char (&ascii)[N]) {
    text_.endAt(putLiteral(text_.room(N), ascii));
  }
  void putRepeated(char ascii, std::size_t count) {
    Char* at = text_.room(count);
    for (std::size_t i = 0; i < count; ++i) *at++ = static_cast<Char>(ascii);
    text_.endAt(at);
  }

  /// `name="value"` behind a blank.
  template <class Value>
  void putAttribute(PlannedName name, Value value) {
    Char* at = text_.room(4 + name.length + PlannedName::kBlock + most(value));
    at = putLiteral(copyName(putLiteral(at, " "), name), "=\"");
    if constexpr (std::is_same_v<Value, SignedValue> || std::is_same_v<Value, UnsignedValue>) {
      at = printNumber(at, value.number);
    } else if constexpr (std::is_same_v<Value, TextValue<char>>) {
      if (isUsualText(value.text)) {
        at = copyText(at, value.text);
      } else {
        text_.endAt(at);
        putUnusual(value, TextPlace::attribute);
        at = text_.room(1);
      }
    } else {
      text_.endAt(at);
      put(value, TextPlace::attribute);
      at = text_.room(1);
    }
    *at = '"';
    text_.endAt(at + 1);
  }

  void put(SignedValue value, TextPlace) { putNumber(value.number); }
  void put(UnsignedValue value, TextPlace) { putNumber(value.number); }
  void put(FloatingValue value, TextPlace) { putAscii(NumberText::ofFloating(value.number)); }
  void put(PlainValue value, TextPlace) { putAscii(value.text); }
  void put(BytesValue value, TextPlace) {
    if constexpr (std::is_same_v<Char, char>) {
      const std::size_t length = UlBase64::encodedLength(value.bytes.size());
      char* at = text_.room(length);
      UlBase64::EncodeTo(value.bytes, at);
      text_.endAt(at + length);
    } else {
      putAscii(UlBase64::Encode(value.bytes));
    }
  }
  void put(TextValue<char> value, TextPlace place) {
    if (isUsualText(value.text)) return putAscii(value.text);
    putUnusual(value, place);
  }
  void put(TextValue<char16_t> value, TextPlace place) { putWide(value, place); }

 private:
  template <std::size_t N>
  static Char* putLiteral(Char* at, const char (&ascii)[N]) {
    for (std::size_t i = 0; i + 1 < N; ++i) at[i] = static_cast<Char>(ascii[i]);
    return at + N - 1;
  }

  static constexpr std::size_t kMostDigits = 24;

  /// Units that a value takes at the end of putAttribute, where that is known.
  static std::size_t most(TextValue<char> value) { return value.text.size(); }
  template <class Value>
  static std::size_t most(Value) {
    return kMostDigits;
  }

  static Char* copyName(Char* at, PlannedName name) {
    if constexpr (std::is_same_v<Char, char>) {
      for (std::uint32_t done = 0; done < name.length; done += PlannedName::kBlock)
        std::memcpy(at + done, name.text + done, PlannedName::kBlock);
      return at + name.length;
    } else {
      return copyText(at, {name.text, name.length});
    }
  }

  template <class Number>
  static Char* printNumber(Char* at, Number number) {
    if constexpr (std::is_same_v<Char, char>) {
      return std::to_chars(at, at + kMostDigits, number).ptr;
    } else {
      char digits[kMostDigits];
      const char* const end = std::to_chars(digits, digits + kMostDigits, number).ptr;
      return copyText(at, {digits, static_cast<std::size_t>(end - digits)});
    }
  }
  template <class Number>
  void putNumber(Number number) {
    text_.endAt(printNumber(text_.room(kMostDigits), number));
  }

  void putUnusual(TextValue<char> value, TextPlace place) {
    if constexpr (std::is_same_v<Char, char>) {
      const std::string_view text = value.text.substr(0, value.text.find('\0'));
      if (isLegalText(text)) return putEscaped(text, place);
    }
    putWide(value, place);
  }

  void putAscii(std::string_view text) { text_.endAt(copyText(text_.room(text.size()), text)); }

  /// The reference in whose place a character stands, null when it stands for itself.
  static const char* reference(char32_t character, TextPlace place) {
    if (place == TextPlace::section) return nullptr;
    const bool attribute = place == TextPlace::attribute;
    switch (character) {
      case '&':
        return "&amp;";
      case '<':
        return "&lt;";
      case '>':
        return attribute ? nullptr : "&gt;";
      case '"':
        return attribute ? "&quot;" : nullptr;
      case '\t':
        return attribute ? "&#x9;" : nullptr;
      case '\n':
        return attribute ? "&#xA;" : nullptr;
      case '\r':
        return "&#xD;";
      default:
        return nullptr;
    }
  }

  static Char* putReference(Char* at, const char* ascii) {
    while (*ascii != 0) *at++ = static_cast<Char>(*ascii++);
    return at;
  }

  /// Legal text, in the units that it is written in or in wider ones.
  template <class View>
  void putEscaped(View text, TextPlace place) {
    constexpr std::size_t kMostPerUnit = 6;
    constexpr std::size_t kPiece = 256;
    for (; !text.empty(); text.remove_prefix(std::min(kPiece, text.size()))) {
      const View piece = text.substr(0, kPiece);
      Char* at = text_.room(kMostPerUnit * kPiece);
      for (const auto unit : piece) {
        const auto code = static_cast<char16_t>(static_cast<std::make_unsigned_t<decltype(unit + 0)>>(unit));
        const char* const instead = code <= '>' ? reference(code, place) : nullptr;
        at = instead == nullptr ? putUnit(at, unit) : putReference(at, instead);
      }
      text_.endAt(at);
    }
  }
  static Char* putUnit(Char* at, Char unit) {
    *at = unit;
    return at + 1;
  }
  /// A unit of UTF-16, no surrogate, as UTF-8.
  static char* putUnit(char* at, char16_t unit) requires std::is_same_v<Char, char> {
    const auto put = [&at](unsigned byte) { *at++ = static_cast<char>(byte); };
    if (unit < 0x80) {
      put(unit);
    } else if (unit < 0x800) {
      put(0xc0u | unit >> 6);
      put(0x80u | (unit & 0x3fu));
    } else {
      put(0xe0u | unit >> 12);
      put(0x80u | (unit >> 6 & 0x3fu));
      put(0x80u | (unit & 0x3fu));
    }
    return at;
  }

  template <class Value>
  void putWide(Value value, TextPlace place) {
    wide_.assign(value);
    putEscaped(std::u16string_view(wide_.text()), place);
  }

  ChunkedText<Char> text_;
  WideText wide_;
};

}  // namespace zqxml
