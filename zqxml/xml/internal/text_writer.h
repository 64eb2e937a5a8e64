// TextWriter: values as XML text, in the words of the XML library's DOM writer. Not installed.
#pragma once

#include <zqxml/platform/base64.h>
#include <zqxml/xml/internal/class_plan.h>
#include <zqxml/xml/internal/decimal_text.h>
#include <zqxml/xml/internal/plain_text.h>
#include <zqxml/xml/internal/text_buffer.h>
#include <zqxml/xml/internal/wide_text.h>
#include <zqxml/xml/internal/xml_values.h>
#include <zqxml/xml/value_text.h>
#include <zqxml/xml/xml_invalid_char_handler.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
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
  TextBuffer<Char>& text() { return text_; }

  /// `before`, the name, `after`: both of plain ASCII and short.
  template <std::size_t B, std::size_t A>
  void putName(const char (&before)[B], const PlannedName& name, const char (&after)[A]) {
    Char* at = text_.room(B + A + name.length + PlannedName::kBlock);
    at = copyBlocks(copyLiteral(at, before), name.text(), name.length);
    text_.endAt(copyLiteral(at, after));
  }
  /// `<name`, behind the `>` of a start tag that is `open`.
  void putStartTag(const PlannedName& name, bool open) {
    Char* at = text_.room(2 + name.length + PlannedName::kBlock);
    if (open) *at++ = '>';
    *at++ = '<';
    text_.endAt(copyBlocks(at, name.text(), name.length));
  }
  template <std::size_t N>
  void putLiteral(const char (&ascii)[N]) {
    text_.endAt(copyLiteral(text_.room(N), ascii));
  }
  void putRepeated(char ascii, std::size_t count) {
    text_.endAt(std::fill_n(text_.room(count), count, static_cast<Char>(ascii)));
  }

  /// `name="value"` behind a blank.
  template <class Value>
  [[gnu::always_inline]] void putAttribute(const PlannedName& name, Value value) {
    const std::size_t length = name.attributeLength();
    Char* at =
        copyBlocks(text_.room(length + PlannedName::kBlock + mostUnits(value)), name.attribute, length);
    if (Char* const end = print(at, value)) [[likely]]
      at = end;
    else
      at = putUnusualAt(at, value);
    *at = '"';
    text_.endAt(at + 1);
  }
  template <class Value>
  void put(Value value, TextPlace place) {
    if (Char* const end = print(text_.room(mostUnits(value)), value)) return text_.endAt(end);
    putUnusual(value, place);
  }

 private:
  template <std::size_t N>
  static Char* copyLiteral(Char* at, const char (&ascii)[N]) {
    for (std::size_t i = 0; i + 1 < N; ++i) at[i] = static_cast<Char>(ascii[i]);
    return at + N - 1;
  }
  /// A text behind which stands a block that may be copied with it.
  [[gnu::always_inline]] static Char* copyBlocks(Char* at, const char* ascii, std::size_t length) {
    copyBlock(at, ascii);
    for (std::size_t done = PlannedName::kBlock; done < length; done += PlannedName::kBlock)
      copyBlock(at + done, ascii + done);
    return at + length;
  }
  static void copyBlock(char* at, const char* ascii) { std::memcpy(at, ascii, PlannedName::kBlock); }
  static void copyBlock(char16_t* at, const char* ascii) { copyText(at, {ascii, PlannedName::kBlock}); }

  // Units that the usual form of a value takes, or may touch, at most; and that form: the end of it, or null
  // for a value that has none, with anything in its place.

  static std::size_t mostUnits(SignedValue) { return kNumberRoom; }
  static std::size_t mostUnits(UnsignedValue) { return kNumberRoom; }
  static std::size_t mostUnits(FloatingValue) { return kNumberRoom; }
  static std::size_t mostUnits(PlainValue value) { return value.text.size(); }
  static std::size_t mostUnits(BytesValue value) { return UlBase64::encodedLength(value.bytes.size()); }
  template <class Unit>
  static std::size_t mostUnits(TextValue<Unit> value) {
    return value.text.size();
  }

  static Char* print(Char* at, SignedValue value) { return printDecimal(at, value.number); }
  static Char* print(Char* at, UnsignedValue value) { return printDecimal(at, value.number); }
  static Char* print(Char* at, FloatingValue value) {
    if (Char* const end = printUsualFloating(at, value.number)) return end;
    return copyText(at, NumberText::ofFloating(value.number).view());
  }
  static Char* print(Char* at, PlainValue value) { return copyText(at, value.text); }
  static char* print(char* at, BytesValue value) {
    UlBase64::EncodeTo(value.bytes, at);
    return at + mostUnits(value);
  }
  static char16_t* print(char16_t* at, BytesValue value) {
    return copyText(at, UlBase64::Encode(value.bytes));
  }
  static Char* print(Char* at, TextValue<char> value) { return copyUsualText(at, value.text); }
  static Char* print(Char*, TextValue<char16_t>) { return nullptr; }

  void putUnusual(TextValue<char> value, TextPlace place) {
    if constexpr (std::is_same_v<Char, char>) {
      const std::string_view text = value.text.substr(0, value.text.find('\0'));
      if (isLegalText(text)) return putEscaped(text, place);
    }
    putWide(value, place);
  }
  void putUnusual(TextValue<char16_t> value, TextPlace place) {
    const std::u16string_view text = value.text.substr(0, value.text.find(u'\0'));
    if (XmlInvalidCharHandler::isPlain(text)) return putEscaped(text, place);
    putWide(value, place);
  }
  template <class Value>
  void putUnusual(Value, TextPlace) {}
  /// The value of an attribute; the place behind it, with room for a quotation mark.
  template <class Value>
  [[gnu::noinline]] Char* putUnusualAt(Char* at, Value value) {
    text_.endAt(at);
    putUnusual(value, TextPlace::attribute);
    return text_.room(1);
  }

  /// Whether there is a place where a reference stands for the character.
  static bool mayBeEscaped(char16_t character) {
    constexpr std::uint64_t kEscaped = [] {
      std::uint64_t bits = 0;
      for (const char c : {'&', '<', '>', '"', '\t', '\n', '\r'}) bits |= std::uint64_t{1} << c;
      return bits;
    }();
    return character < 64 && (kEscaped >> character & 1) != 0;
  }

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
      Char* at = text_.room(kMostPerUnit * piece.size());
      for (const auto unit : piece) {
        const auto code = static_cast<char16_t>(static_cast<std::make_unsigned_t<decltype(unit + 0)>>(unit));
        const char* const instead = mayBeEscaped(code) ? reference(code, place) : nullptr;
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

  TextBuffer<Char> text_;
  WideText wide_;
};

}  // namespace zqxml
