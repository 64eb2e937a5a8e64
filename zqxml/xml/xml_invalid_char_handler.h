/// @file
/// XmlInvalidCharHandler: carries text that XML 1.0 cannot hold through XML and back.
///
/// Escape form: one "|", then the text, each illegal UTF-16 unit as "|#" HEX "!" (upper case, no leading
/// zeros): A, U+0001, B is "|A|#1!B". A text without illegal units stands as it is. Legal units are 9, 10,
/// 13, 0x20 to 0xD7FF and 0xE000 to 0xFFFD; surrogates are illegal, each unit by itself.
#pragma once

#include <zqxml/platform/export.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace zqxml {

/// Carries text that XML 1.0 cannot hold through XML and back. A handler encodes or decodes one text in its
/// life; a fresh one is taken for the next. It belongs to one thread. The static members have no state.
class ZQXML_EXPORT XmlInvalidCharHandler {
 public:
  XmlInvalidCharHandler() = default;
  XmlInvalidCharHandler(const XmlInvalidCharHandler&) = delete;
  XmlInvalidCharHandler& operator=(const XmlInvalidCharHandler&) = delete;

  /// The escape form of a NUL-terminated text, valid as long as the handler. Null for a null text (logged)
  /// and for an empty one.
  char16_t* encodeInvalidChars(const char16_t* text);
  /// The text behind an escape form; any text that does not begin with "|" stands as it is. A sequence that
  /// does not parse stays. Null, and an error-level line, for a null or an empty text.
  char16_t* decodeInvalidChars(const char16_t* text);

  // The same for the codecs, without a copy where there is nothing to do.

  /// Whether XML 1.0 can hold the UTF-16 unit by itself; no surrogate is.
  static constexpr bool isLegal(char16_t unit) {
    return unit >= 0x20 ? unit < 0xd800 || (unit >= 0xe000 && unit <= 0xfffd)
                        : unit == 9 || unit == 10 || unit == 13;
  }
  /// True when the text has no illegal unit: encoding leaves it as it is. Scans, nothing else.
  static bool isPlain(std::u16string_view text);
  /// Appends what encodeInvalidChars gives for `text` (all of it; a NUL unit is escaped like any illegal
  /// one).
  static void appendEncoded(std::u16string& out, std::u16string_view text);
  /// True when decoding may change the text.
  template <class Text>
  static constexpr bool isEscaped(const Text& text) {
    return !text.empty() && text.front() == '|';
  }
  /// Appends what a reader of decodeInvalidChars's result sees: the text up to its first NUL, be it one that
  /// an escape sequence stood for.
  static void appendDecoded(std::u16string& out, std::u16string_view text);

  /// A unit that is not legal.
  static bool hasXmlInvalidChar(std::u16string_view text);
  /// QUIRK: every byte from 0x80 up counts (signed comparison), so any text beyond ASCII is "invalid".
  static bool hasXmlInvalidChar(std::string_view text);
  /// A unit below 32, tab and line ends included, or 127.
  static bool hasControlChar(std::u16string_view text);
  /// The same over bytes; those from 0x80 up do not count.
  static bool hasControlChar(std::string_view text);

 private:
  /// The last result; an earlier one is forgotten.
  std::u16string buffer_;
};

/// Decodes behind the first unit, which is taken for the "|" of the escape form. When no sequence was
/// replaced, the text was an ordinary one and gets its "|" back.
ZQXML_EXPORT std::u16string ParseAndReplaceUtil(std::u16string text);

}  // namespace zqxml
