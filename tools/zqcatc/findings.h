// What the compiler, the comparison and the look for traps have to say, as lines for people or for programs.
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "diagnostics.h"

namespace zqxml::zqcatc {

/// How lines are printed.
enum class ErrorFormat {
  kText,  ///< "file:line:column: error: text"
  kJson   ///< an object with file, line, column, severity, code and message
};

/// One line. `severity` stands behind the place in text form: "warning", "breaks xml, binary".
struct Finding {
  Position position;
  std::string severity;
  std::string code;  ///< short name of what it is: "field-type"
  std::string text;
  /// What a change breaks; only for lines of a comparison, which have the key "breaks" in JSON form.
  std::vector<std::string> breaks;
  bool isChange = false;
};

/// Texts are shown without control characters in the form for people, and as UTF-8 in both.
void printFindings(std::ostream& out, const std::vector<Finding>& findings, ErrorFormat format);

/// The errors of a run, sorted by place; at most Diagnostics::kMaxKept of them, and how many there were.
void printErrors(std::ostream& out, const Diagnostics& diagnostics, ErrorFormat format);

/// A failure that has no place in a file, "zqcatc: text".
void printFailure(std::ostream& out, std::string_view code, std::string_view text, ErrorFormat format);

}  // namespace zqxml::zqcatc
