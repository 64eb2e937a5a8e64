// The names, attributes and texts that a source of XML events gives: UTF-8 (char) or UTF-16 (char16_t). Not
// installed.
#pragma once

#include <zqxml/catalogue/name_hash.h>
#include <zqxml/platform/text.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace zqxml {

/// The name hash of UTF-16 text: that of its UTF-8 bytes, taken without a conversion where it is ASCII.
constexpr std::uint32_t nameHash(std::u16string_view name) {
  std::uint32_t hash = 0;
  for (const char16_t unit : name) {
    if (unit > 0x7f) return nameHash(toUtf8(name));
    hash = hash * 31 + unit;
  }
  return hash & 0xffffff;
}

/// A text of either form as UTF-8: itself where it is that.
inline std::string_view asUtf8(std::string_view text) {
  return text;
}
inline std::string asUtf8(std::u16string_view text) {
  return toUtf8(text);
}

/// A text of either form as UTF-8, and as UTF-16.
inline std::string utf8Text(std::string_view text) {
  return std::string(text);
}
inline std::string utf8Text(std::u16string_view text) {
  return toUtf8(text);
}
inline std::u16string wideText(std::string_view text) {
  return toUtf16(text);
}
inline std::u16string wideText(std::u16string_view text) {
  return std::u16string(text);
}

/// A name with its hash, which its source may know already.
template <class Char>
struct NameView {
  NameView() = default;
  NameView(std::basic_string_view<Char> name) : text(name), hash(nameHash(name)) {}
  NameView(const Char* name) : NameView(std::basic_string_view<Char>(name)) {}
  NameView(std::basic_string_view<Char> name, std::uint32_t itsHash) : text(name), hash(itsHash) {}

  std::basic_string_view<Char> text;
  std::uint32_t hash = 0;
};

/// No position of a field.
inline constexpr std::uint8_t kNoPosition = 255;

/// One attribute: its local name, and its value with all references resolved.
template <class Char>
struct BasicAttributeView {
  NameView<Char> name;
  std::basic_string_view<Char> value;
  /// Where its class may have the field of that name; a guess.
  std::uint8_t position = kNoPosition;
};

}  // namespace zqxml
