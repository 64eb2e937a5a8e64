#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zqxml::tool {

class Console;

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
  /// Whether a failure since the last take() has `part` in its "Class::function: text".
  bool mentions(std::string_view part) const;

 private:
  void keep(std::string_view function, std::string_view text);

  Console& console_;
  bool showAll_ = false;
  std::vector<std::string> lines_;
  std::string texts_;  // of all failures kept or shown, for mentions()
  std::size_t dropped_ = 0;
};

}  // namespace zqxml::tool
