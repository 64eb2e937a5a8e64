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
    Char* const at = text_.room(B + A + roomFor(name));
    text_.endAt(copyLiteral(copyName(copyLiteral(at, before), name), after));
  }
  /// `<name`, behind the `>` of a start tag that is `open`.
  void putStartTag(const PlannedName& name, bool open) {
    text_.endAt(copyStartTag(text_.room(kStartTagRoom + roomFor(name)), name, open));
  }
  template <std::size_t N>
  void putLiteral(const char (&ascii)[N]) {
    text_.endAt(copyLiteral(text_.room(N), ascii));
  }
  void putRepeated(char ascii, std::size_t count) {
    text_.endAt(std::fill_n(text_.room(count), count, static_cast<Char>(ascii)));
  }
  template <class Value>
  void put(Value value, TextPlace place) {
    text_.endAt(copyValue(text_.room(roomFor(value)), value, place));
  }

  /// `name="value"` behind a blank. The end of the text is told and given: between the attributes of an
  /// element it stays in a register.
  template <class Value>
  [[gnu::always_inline]] Char* putAttribute(Char* at, const PlannedName& name, Value value) {
    const std::size_t length = name.attributeLength();
    at = text_.room(at, length + PlannedName::kBlock + roomFor(value));
    at = copyValue(copyBlocks(at, name.attribute, length), value, TextPlace::attribute);
    *at = '"';
    return at + 1;
  }
  /// `<name val="value"/>`, behind the `>` of a start tag that is `open`.
  template <class Value>
  [[gnu::always_inline]] void putListEntry(const PlannedName& name, bool open, Value value) {
    Char* at = text_.room(kStartTagRoom + roomFor(name) + sizeof kVal + roomFor(value));
    at = copyLiteral(copyStartTag(at, name, open), kVal);
    text_.endAt(copyLiteral(copyValue(at, value, TextPlace::attribute), kEmptyEnd));
  }
  /// The same of an entry of a map.
  template <class Key, class Value>
  [[gnu::always_inline]] void putMapEntry(const PlannedName& name, bool open, Key key, Value value) {
    Char* at = text_.room(kStartTagRoom + roomFor(name) + sizeof kKeyStart + roomFor(key));
    at = copyLiteral(copyStartTag(at, name, open), kKeyStart);
    at = copyValue(at, key, TextPlace::attribute);
    at = text_.room(at, sizeof kValueStart + roomFor(value) + sizeof kEntryEnd + roomFor(name));
    at = copyValue(copyLiteral(at, kValueStart), value, TextPlace::attribute);
    at = text_.room(at, sizeof kEntryEnd + roomFor(name));
    text_.endAt(copyLiteral(copyName(copyLiteral(at, kEntryEnd), name), ">"));
  }

 private:
  static constexpr char kVal[] = " val=\"";
  static constexpr char kEmptyEnd[] = "\"/>";
  static constexpr char kKeyStart[] = "><__mapKey__ val=\"";
  static constexpr char kValueStart[] = "\"/><__mapValue__ val=\"";
  static constexpr char kEntryEnd[] = "\"/></";

  static constexpr std::size_t kStartTagRoom = 2;
  /// Behind every value: for what ends it.
  static constexpr std::size_t kEndRoom = 8;
  /// The most that stands for one unit of a text.
  static constexpr std::size_t kMostPerUnit = 6;

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

  [[gnu::always_inline]] static Char* copyName(Char* at, const PlannedName& name) {
    return copyBlocks(at, name.text(), name.length);
  }
  [[gnu::always_inline]] static Char* copyStartTag(Char* at, const PlannedName& name, bool open) {
    *at = '>';
    at += open ? 1 : 0;
    *at = '<';
    return copyName(at + 1, name);
  }

  // Units that a value takes, or may touch, as a rule, and what ends it; a text takes more when need be.

  static std::size_t roomFor(const PlannedName& name) { return name.length + PlannedName::kBlock; }
  static std::size_t roomFor(SignedValue) { return kNumberRoom + kEndRoom; }
  static std::size_t roomFor(UnsignedValue) { return kNumberRoom + kEndRoom; }
  static std::size_t roomFor(FloatingValue) { return kNumberRoom + kEndRoom; }
  static std::size_t roomFor(PlainValue value) { return value.text.size() + kEndRoom; }
  static std::size_t roomFor(BytesValue value) {
    return UlBase64::encodedLength(value.bytes.size()) + kEndRoom;
  }
  static std::size_t roomFor(TextValue<char> value) { return value.text.size() + kCopyRoom; }
  static std::size_t roomFor(TextValue<char16_t>) { return kEndRoom; }
  static_assert(kCopyRoom >= kEndRoom);

  // A value into room that there is for it; its end, behind which there is room for kEndRoom units.

  [[gnu::always_inline]] static Char* copyValue(Char* at, SignedValue value, TextPlace) {
    return printDecimal(at, value.number);
  }
  [[gnu::always_inline]] static Char* copyValue(Char* at, UnsignedValue value, TextPlace) {
    return printDecimal(at, value.number);
  }
  [[gnu::noinline]] static Char* copyValue(Char* at, FloatingValue value, TextPlace) {
    if (Char* const end = printUsualFloating(at, value.number)) [[likely]]
      return end;
    return copyText(at, NumberText::ofFloating(value.number).view());
  }
  static Char* copyValue(Char* at, PlainValue value, TextPlace) { return copyText(at, value.text); }
  static char* copyValue(char* at, BytesValue value, TextPlace) {
    UlBase64::EncodeTo(value.bytes, at);
    return at + UlBase64::encodedLength(value.bytes.size());
  }
  static char16_t* copyValue(char16_t* at, BytesValue value, TextPlace) {
    return copyText(at, UlBase64::Encode(value.bytes));
  }
  [[gnu::always_inline]] Char* copyValue(Char* at, TextValue<char> value, TextPlace place) {
    const std::size_t usual = copyUsual(at, value.text, value.inString);
    if (usual == value.text.size()) [[likely]]
      return at + usual;
    return copyUnusual(at + usual, value.text, usual, place);
  }
  Char* copyValue(Char* at, TextValue<char16_t> value, TextPlace place) {
    const std::size_t start = text_.numberOf(at);
    if (Char* const end = copyUnits(at, value.text, place)) return end;
    return copyWide(text_.place(start), value, place);
  }

  /// The rest of a text, behind `done` characters that are written; it begins with one that has to be looked
  /// at. No text of a CDATA section has the section's end mark in it, so all are written alike.
  [[gnu::noinline]] Char* copyUnusual(Char* at, std::string_view text, std::size_t done, TextPlace place) {
    const std::size_t start = text_.numberOf(at) - done;
    for (std::string_view rest = text.substr(done); !rest.empty();) {
      const auto first = static_cast<unsigned char>(rest.front());
      if (first == 0) break;
      const bool ascii = first < 0x80;
      const std::size_t size = ascii ? 1 : wideCharacter(rest);
      const bool isKept = ascii ? XmlInvalidCharHandler::isLegal(first) : sizeof(Char) == 1 && size != 0;
      if (!isKept) return copyWide(text_.place(start), TextValue<char>{text}, place);
      at = text_.room(at, kMostPerUnit + rest.size() + kCopyRoom);
      if (ascii)
        at = copyAscii(at, first, place);
      else
        at = copyText(at, rest.substr(0, size));
      rest.remove_prefix(size);
      const std::size_t usual = copyUsual(at, rest, false);
      at += usual;
      rest.remove_prefix(usual);
    }
    return text_.room(at, kEndRoom);
  }
  /// A text up to its first NUL; null when XML cannot hold it.
  Char* copyUnits(Char* at, std::u16string_view text, TextPlace place) {
    constexpr std::size_t kPiece = 256;
    for (; !text.empty(); text.remove_prefix(std::min(kPiece, text.size()))) {
      const std::u16string_view piece = text.substr(0, kPiece);
      at = text_.room(at, kMostPerUnit * piece.size() + kEndRoom);
      for (const char16_t unit : piece) {
        if (unit < 0x80 && !isUnusual(unit)) {
          *at++ = static_cast<Char>(unit);
        } else if (unit == 0) {
          return at;
        } else if (!XmlInvalidCharHandler::isLegal(unit)) {
          return nullptr;
        } else {
          at = unit < 0x80 ? copyAscii(at, unit, place) : copyUnit(at, unit);
        }
      }
    }
    return at;
  }
  /// A text that XML cannot hold as it stands, or that is not well-formed.
  template <class Value>
  [[gnu::noinline]] Char* copyWide(Char* at, Value value, TextPlace place) {
    wide_.assign(value);
    return copyUnits(text_.room(at, kEndRoom), wide_.text(), place);
  }

  /// Whether a character of ASCII has to be looked at.
  static bool isUnusual(char16_t character) {
    constexpr std::uint64_t kUnusual = [] {
      std::uint64_t bits = 0xffff'ffff;
      for (const char c : {'&', '<', '>', '"'}) bits |= std::uint64_t{1} << c;
      return bits;
    }();
    return character < 64 && (kUnusual >> character & 1) != 0;
  }
  /// A legal character of ASCII, or the reference that stands in its place.
  static Char* copyAscii(Char* at, char16_t character, TextPlace place) {
    const char* const instead = reference(character, place);
    if (instead == nullptr) {
      *at = static_cast<Char>(character);
      return at + 1;
    }
    for (const char* next = instead; *next != 0; ++next) *at++ = static_cast<Char>(*next);
    return at;
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
  /// A unit of UTF-16, no surrogate and beyond ASCII.
  static char16_t* copyUnit(char16_t* at, char16_t unit) {
    *at = unit;
    return at + 1;
  }
  /// The same as UTF-8.
  static char* copyUnit(char* at, char16_t unit) {
    const auto put = [&at](unsigned byte) { *at++ = static_cast<char>(byte); };
    if (unit < 0x800) {
      put(0xc0u | unit >> 6);
    } else {
      put(0xe0u | unit >> 12);
      put(0x80u | (unit >> 6 & 0x3fu));
    }
    put(0x80u | (unit & 0x3fu));
    return at;
  }

  TextBuffer<Char> text_;
  WideText wide_;
};

}  // namespace zqxml
