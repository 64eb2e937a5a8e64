#pragma once

#include <zqxml/platform/export.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace zqxml {

/// Base64 of RFC 4648, section 4: the standard alphabet, padded.
class ZQXML_EXPORT UlBase64 {
 public:
  /// The bytes as one line, without breaks.
  static std::string Encode(std::string_view bytes);
  /// The same into the encodedLength(bytes.size()) bytes at `to`; no terminator.
  static void EncodeTo(std::string_view bytes, char* to);

  /// Replaces `out` by the bytes that `text` stands for. False, with `out` unchanged, when the length is no
  /// multiple of four, or a character is outside the alphabet (blanks and line ends included), or padding
  /// stands elsewhere than in the last two places. Bits behind the last byte are not looked at. An empty text
  /// gives no bytes. `text` may be a part of `out`.
  static bool Decode(std::string_view text, std::string& out);

  /// The length of Encode's result for so many bytes, without encoding anything.
  static constexpr std::size_t encodedLength(std::size_t bytes) {
    return (bytes / 3 + (bytes % 3 != 0 ? 1 : 0)) * 4;
  }
};

}  // namespace zqxml
