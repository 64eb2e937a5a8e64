// UTF-16 to UTF-8 without a buffer in between: the length first, then the bytes in place.
//
// Total, as platform/text.h: a lone surrogate becomes U+FFFD.
#pragma once

#include <cstddef>
#include <string_view>

namespace zqxml {

/// Bytes of the UTF-8 form of `text`.
inline std::size_t utf8Length(std::u16string_view text) {
  // Every unit counts as if it stood alone, a surrogate as the three bytes of U+FFFD; a pair takes two bytes
  // less. Pairs cannot overlap, so both loops are free of branches.
  std::size_t length = 0;
  for (char16_t unit : text) length += 1u + (unit >= 0x80) + (unit >= 0x800);
  std::size_t pairs = 0;
  for (std::size_t i = 1; i < text.size(); ++i) {
    pairs += static_cast<unsigned>((text[i - 1] & 0xfc00) == 0xd800) & ((text[i] & 0xfc00) == 0xdc00);
  }
  return length - 2 * pairs;
}

/// Writes the utf8Length(text) bytes at `to`.
inline void writeUtf8(std::u16string_view text, char* to) {
  const auto put = [&to](unsigned byte) { *to++ = static_cast<char>(byte); };
  for (std::size_t i = 0; i < text.size(); ++i) {
    char32_t code = text[i];
    if (code < 0x80) {
      put(code);
      continue;
    }
    if (code < 0x800) {
      put(0xc0 | code >> 6);
      put(0x80 | (code & 0x3f));
      continue;
    }
    if ((code & 0xf800) == 0xd800) {
      const bool pair = code < 0xdc00 && i + 1 < text.size() && (text[i + 1] & 0xfc00) == 0xdc00;
      code = pair ? 0x10000 + ((code & 0x3ff) << 10) + (text[++i] & 0x3ff) : 0xfffd;
    }
    if (code < 0x10000) {
      put(0xe0 | code >> 12);
    } else {
      put(0xf0 | code >> 18);
      put(0x80 | (code >> 12 & 0x3f));
    }
    put(0x80 | (code >> 6 & 0x3f));
    put(0x80 | (code & 0x3f));
  }
}

}  // namespace zqxml
