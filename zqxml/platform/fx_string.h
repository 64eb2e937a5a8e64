#pragma once

#include <zqxml/platform/export.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace zqxml {

/// Work on texts, byte by byte.
class ZQXML_EXPORT FXString {
 public:
  /// Replaces what stands between `left` and the next `right` behind it, at every such place from the byte
  /// `start` on; the two stay, and the search goes on behind `right`. The number of places. An empty `left`
  /// or `right` is nowhere. Throws nothing but std::bad_alloc; `text` is then as it was. The others may not
  /// be views of it.
  static int ReplaceAllByMatchingLeftAndRight(std::string& text, std::string_view left,
                                              std::string_view right, std::string_view replacement,
                                              std::size_t start);
};

}  // namespace zqxml
