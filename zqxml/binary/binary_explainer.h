/// @file
/// The explainer of binary messages: what every byte of a buffer in binary form is.
///
/// It is the decoder itself, watched: what it tells is what BinarySerializer::unserialize does with these
/// bytes, unknown fields, damaged input and oddities of the form included. docs/wire-format.md tells the
/// form.
#pragma once

#include <zqxml/platform/export.h>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace zqxml {

/// One run of bytes, or one problem.
struct BinaryNote {
  /// Position of the run in the buffer, in bytes.
  std::uint64_t offset = 0;
  /// 0 for a problem that the decoder survives.
  std::uint64_t length = 0;
  /// Objects around the run: 0 for the header and the fields of the root.
  int depth = 0;
  /// The field, from the root on: "jobs[2].owner.name", "limits[0].value" for a side of a map, "?0x46b64b"
  /// for a field that the class does not have. Empty for the header and for bytes outside of fields.
  std::string field;
  /// What the run is: "key", "length", "value", ... Static text.
  const char* what = "";
  /// The value as printable text: texts are quoted and escaped, enumerators have their name. For a problem,
  /// what is wrong.
  std::string value;
  /// The run (from `offset` to the end of the buffer, when it has a length) could not be read.
  bool problem = false;
};

/// Calls `sink` for every run of `bytes`, in order and without gaps, and returns whether the decoder would
/// succeed.
///
/// A tag id that the catalogue does not have makes every field an unknown one, and that is a problem which
/// ends nothing. A failure ends in one problem note over the rest of the bytes. Nothing is logged and nothing
/// throws but what `sink` throws. Memory is bounded by the input as for the decoder. Any thread.
ZQXML_EXPORT bool explainBinary(std::string_view bytes, const std::function<void(const BinaryNote&)>& sink);

}  // namespace zqxml
