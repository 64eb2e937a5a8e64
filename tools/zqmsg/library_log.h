#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zqxml::tool {

class Console;

/// What the lines of failures tell and no result does.
struct ToldByLog {
  bool parseError = false;         ///< XML is not well formed
  bool unknownClass = false;       ///< a root element names no class
  bool noPasswordRoutine = false;  ///< a password's encryption has no routine
  bool passwordFailed = false;     ///< a routine of the platform failed
  bool keyWithoutValue = false;    ///< the binary form of a password field cannot be read any more
};

/// The library's log while the program runs. Failures (level 0) are kept, to explain why a step went wrong;
/// with --verbose every line is shown at once instead. One at a time.
class LibraryLog {
 public:
  explicit LibraryLog(Console& console) noexcept;
  ~LibraryLog();
  LibraryLog(const LibraryLog&) = delete;
  LibraryLog& operator=(const LibraryLog&) = delete;

  /// From now on every line up to level 15 is shown, and none is kept for explanations.
  void showAll();

  /// The failures since the last call, as "Class::function: text", the first few of them and a count of the
  /// rest. Without those that were shown already.
  std::vector<std::string> take();
  /// What the failures since the last take() tell.
  const ToldByLog& told() const { return told_; }

 private:
  void keep(std::string_view function, std::string_view text);

  Console& console_;
  bool showAll_ = false;
  std::vector<std::string> lines_;
  ToldByLog told_;
  std::size_t dropped_ = 0;
};

}  // namespace zqxml::tool
