// Where a text stops being well-formed XML, for tools that tell their users. Not installed.
#pragma once

#include <zqxml/platform/export.h>

#include <cstdint>
#include <optional>
#include <string_view>

namespace zqxml {

/// A place in a text; both count from 1, columns in UTF-16 units.
struct TextPlace {
  std::uint64_t line = 0;
  std::uint64_t column = 0;
};

/// Reads `xml` as XMLSerializer::unserialize does, drops what it reads, and gives the place of the parse
/// error that ends it; nothing when the text is read to its end or fails otherwise. What the reader logs is
/// logged again. REQUIRES: Xerces-C runs, as it does after any unserialize.
ZQXML_EXPORT std::optional<TextPlace> placeOfParseError(std::string_view xml);

}  // namespace zqxml
