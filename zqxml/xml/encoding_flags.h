// EncodingFlags: the option record of a codec call.
#pragma once

#include <cstdint>

namespace zqxml {

/// Bits of EncodingFlags::encoding_options.
enum EncodingOption : std::uint64_t {
  MASK_PASSWORDS = 1,  ///< passwords are written as "*******"
  MASK_SENSITIVE = 2,  ///< primitive fields with the Sensitive annotation are written as "########"
};

/// The options of a codec call. Copied by value; the reserved members are copied and read by nothing in the
/// codecs.
struct EncodingFlags {
  bool reserved0 = true;  ///< copied, never read
  /// Scalars as child elements instead of attributes, list and map values as text.
  bool useElements = false;
  /// Booleans as "true" and "false", enumerations by name, dates and times as text, and pretty printing.
  bool readable = false;
  /// Password type in place of the annotation's, when not 0 and keepPasswordEncType is clear; 6 passes
  /// through.
  std::int32_t passwordEncType = 0;
  std::int32_t reserved1 = 0;   ///< copied, never read
  std::int32_t reserved2 = -1;  ///< copied, never read
  bool reserved3 = false;       ///< copied, never read
  /// passwordEncType is ignored and the given type stands.
  bool keepPasswordEncType = false;
  bool reserved4 = true;  ///< copied, never read
  /// Enumerations by name also when `readable` is off.
  bool enumAsText = false;
  /// EncodingOption bits.
  std::uint64_t encoding_options = 0;
};

}  // namespace zqxml
