// What the XML walk (xml_walk.h) hands to its sink: one value, and how it becomes text. Not installed.
#pragma once

#include <cstdint>
#include <string_view>

namespace zqxml {

/// Decimal.
struct SignedValue {
  std::int64_t number;
};
struct UnsignedValue {
  std::uint64_t number;
};
/// Six significant digits, as a default-formatted stream prints them.
struct FloatingValue {
  double number;
};
/// Text of our own making: characters from 0x20 to 0x7e, none of which XML escapes anywhere.
struct PlainValue {
  std::string_view text;
};
/// Bytes, written as Base64.
struct BytesValue {
  std::string_view bytes;
};
/// A message's text, up to its first NUL. What XML cannot hold is encoded (xml_invalid_char_handler.h), and
/// with `asCdata` the end mark of CDATA sections is escaped (cdata_end.h).
template <class Char>
struct TextValue {
  std::basic_string_view<Char> text;
  bool asCdata = false;
  /// The text is that of a std::basic_string, from its beginning.
  bool inString = false;
};

}  // namespace zqxml
