// The line form of a path and its value: PATH=VALUE.
//
// A value is any bytes on one line: the backslash is \\, a line feed \n, a tab \t, a carriage return \r;
// other control characters and bytes that are no UTF-8 are \xNN in hexadecimal. Everything else stands as it
// is, a
// "=" and blanks at both ends too. A path has none of these characters.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zqxml::tool {

struct PathLine {
  std::string_view path;  ///< a part of the line
  std::string value;

  friend bool operator==(const PathLine&, const PathLine&) = default;
};

/// The line, with its line feed.
std::string pathLine(std::string_view path, std::string_view value);

/// Takes a line, without its line feed, apart. Any byte in a value may be escaped, none but the backslash has
/// to be. Nothing when there is no "=", or a backslash with something else behind it.
std::optional<PathLine> readPathLine(std::string_view line);

}  // namespace zqxml::tool
