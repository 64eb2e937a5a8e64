// One change on its way into the list of changes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "findings.h"

namespace zqxml::zqcatc {

/// Collects what a change breaks and why; without a break it is safe.
class Change {
 public:
  /// `what` is a sentence without its full stop.
  Change(std::string_view code, const Position& place, std::string what) {
    finding_.code = code;
    finding_.position = place;
    finding_.text = std::move(what);
    finding_.isChange = true;
  }

  Change& xml(std::string_view why) { return addBreak("xml", why); }
  Change& binary(std::string_view why) { return addBreak("binary", why); }
  Change& callers(std::string_view why) { return addBreak("callers", why); }
  /// Why it does not break something.
  Change& note(std::string_view why) {
    reasons_ += cat(reasons_.empty() ? ": " : "; ", why);
    return *this;
  }
  bool isSafe() const { return finding_.breaks.empty(); }

  Finding finding() const {
    Finding made = finding_;
    made.severity = isSafe() ? "safe" : "breaks ";
    std::string_view comma;
    for (const std::string& what : made.breaks) {
      made.severity += cat(comma, what);
      comma = ", ";
    }
    made.text += reasons_;
    return made;
  }

 private:
  Change& addBreak(std::string_view what, std::string_view why) {
    finding_.breaks.emplace_back(what);
    return note(cat(what, ": ", why));
  }

  Finding finding_;
  std::string reasons_;
};

/// Where a change is shown: in the new version, or in the old one when that alone has a line for it.
inline const Position& placeOf(const Position& before, const Position& after) {
  return after.line != 0 || before.line == 0 ? after : before;
}

}  // namespace zqxml::zqcatc
