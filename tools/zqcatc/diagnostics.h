// Errors of a catalogue, each at a place in a schema file, collected so that one run shows many.
#pragma once

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace zqxml::zqcatc {

/// A place in a schema file. Lines and columns count from 1, columns in characters. `file` is the path as it
/// was given and must outlive every use; 0 as line means the file as a whole.
struct Position {
  std::string_view file;
  int line = 0;
  int column = 0;
};

/// Joins texts and integers.
template <class... Parts>
std::string cat(const Parts&... parts) {
  std::string text;
  const auto append = [&text](const auto& part) {
    if constexpr (std::is_integral_v<std::remove_cvref_t<decltype(part)>>) {
      text += std::to_string(part);
    } else {
      text += part;
    }
  };
  (append(parts), ...);
  return text;
}

/// What people are shown of a text from elsewhere: names and files may hold anything, and nothing of them may
/// end the line or speak to the terminal. Control characters become '?'.
std::string shown(std::string_view text);

/// The errors of one run, in the order in which they were found.
class Diagnostics {
 public:
  /// Errors beyond this number are counted, not kept.
  static constexpr std::size_t kMaxKept = 100;

  /// Names what the errors from here on are about, in one word or a few: "names". The text must be a literal.
  void setCode(std::string_view code) { code_ = code; }

  /// `text` says what is wrong, where, and what to do about it.
  void error(const Position& position, std::string text);

  bool hasErrors() const { return count_ != 0; }
  std::size_t count() const { return count_; }
  /// One line per error, "file:line:column: error: text", sorted by place.
  void print(std::ostream& out) const;
  /// Calls visit(position, code, text) for each error that was kept, sorted by place.
  void forEach(const std::function<void(const Position&, std::string_view, const std::string&)>& visit) const;

 private:
  struct Entry {
    Position position;
    std::string_view code;
    std::string text;
  };
  std::string_view code_ = "schema";
  std::vector<Entry> entries_;
  std::size_t count_ = 0;
};

}  // namespace zqxml::zqcatc
