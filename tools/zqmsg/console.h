#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

#include "tools/zqmsg/failure.h"

namespace zqxml::tool {

/// What the program tells its user, on standard error: errors, warnings, and on a terminal the progress of
/// long work. Colours only on a terminal, and not when NO_COLOR is set to anything (no-color.org).
///
/// Everything is shown with its control characters made visible: what a message or a file name holds must not
/// reach the terminal as a command.
class Console {
 public:
  Console();
  ~Console() { endProgress(); }
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;

  /// "zqmsg: WHERE: WHAT", the library's lines below it, and what to do.
  void report(const Failure& failure);
  /// "zqmsg: WHERE: WHAT".
  void tell(std::string_view where, std::string_view what);
  void warn(std::string_view where, std::string_view what);
  /// A line of the library's log, for --verbose.
  void trace(int level, std::string_view function, std::string_view text);

  /// How much of a whole is done; a whole of 0 is not known.
  struct Share {
    std::uint64_t done = 0;
    std::uint64_t whole = 0;
  };
  /// Shows a count, and a bar when the share is known, a few times a second; nothing when standard error is
  /// no terminal.
  void progress(std::string_view what, std::uint64_t count, Share share = {0, 0});
  void endProgress();

 private:
  void line(std::string_view text);
  std::string bar(Share share) const;
  std::string painted(const char* colour, std::string_view text) const;

  bool terminal_;
  bool colours_;
  bool progressShown_ = false;
  std::chrono::steady_clock::time_point lastProgress_;
};

/// `text` on one line: control characters as \n, \t, \xNN, what is no UTF-8 as \xNN.
std::string visible(std::string_view text);

}  // namespace zqxml::tool
