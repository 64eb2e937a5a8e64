#pragma once

#include <zqxml/platform/ev_debug.h>

#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace zqxml {

/// A line as LogCapture keeps it.
struct CapturedLine {
  std::string function;
  int level = 0;
  std::string text;

  friend bool operator==(const CapturedLine&, const CapturedLine&) = default;
  friend std::ostream& operator<<(std::ostream& out, const CapturedLine& line) {
    return out << '{' << line.function << ", " << line.level << ", \"" << line.text << "\"}";
  }
};

/// Collects the lines that the library logs during its life, instead of standard error; the level of the
/// process is `level` in that time. Both are restored at the end. One at a time; lines of any thread are
/// collected.
///
///   LogCapture capture;                                     // errors only
///   EXPECT_TRUE(capture.has("Class::function", 0, "text"));
///   EXPECT_THAT(capture.lines(), ElementsAre(CapturedLine{"Class::function", 0, "text"}));
class LogCapture {
 public:
  explicit LogCapture(int level = 0);
  ~LogCapture();
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  /// All lines so far, in their order.
  std::vector<CapturedLine> lines() const;
  /// How many lines are equal to this one.
  std::size_t count(std::string_view function, int level, std::string_view text) const;
  bool has(std::string_view function, int level, std::string_view text) const {
    return count(function, level, text) != 0;
  }
  /// Whether a line of this function and level has `part` in its text.
  bool hasPart(std::string_view function, int level, std::string_view part) const;
  bool empty() const { return lines().empty(); }
  void clear();

 private:
  struct Lines;
  std::shared_ptr<Lines> lines_;
  int previousLevel_;
};

}  // namespace zqxml
