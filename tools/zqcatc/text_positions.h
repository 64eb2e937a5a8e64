// Where things stand in an XML text: from the parser's line and column to a byte, and from a byte to a place
// that an editor shows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "diagnostics.h"

namespace zqxml::zqcatc {

/// Index over one UTF-8 text. Lines end at LF, CR or CR LF, as they do for the XML parser. A question costs a
/// bounded number of steps, however long the lines are.
class TextPositions {
 public:
  struct AttributeName {
    std::string_view name;
    std::size_t offset;
  };

  /// Both must outlive the index.
  TextPositions(std::string_view file, std::string_view text);

  /// Byte at a line and column as the parser counts them: from 1, columns in UTF-16 units. Clamped to the
  /// text.
  std::size_t offset(std::uint64_t line, std::uint64_t column) const;
  Position position(std::size_t offset) const;
  /// The '<' that opens the tag which ends just before `end`; `end` itself when there is none. (A raw '<'
  /// cannot stand inside a tag.)
  std::size_t tagStart(std::size_t end) const;
  /// The attributes of the start tag at `tag`, in the order of the text.
  std::vector<AttributeName> attributes(std::size_t tag) const;

 private:
  /// UTF-16 units and characters before a byte.
  struct Count {
    std::size_t units = 0;
    std::size_t characters = 0;
  };
  Count countBefore(std::size_t offset) const;
  static void step(Count& count, char byte);

  std::string_view file_;
  std::string_view text_;
  std::vector<std::size_t> lineStarts_;
  std::vector<Count> blocks_;  ///< at every multiple of kBlock
  static constexpr std::size_t kBlock = 256;
};

}  // namespace zqxml::zqcatc
