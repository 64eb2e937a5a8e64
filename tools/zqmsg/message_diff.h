#pragma once

#include <zqxml/message/xn_message_base.h>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "tools/zqmsg/masks.h"

namespace zqxml::tool {

/// Compares two messages field by field, in the order of the class's fields.
///
/// Stricter than XNMessageBase's own comparison: maps are compared entry by entry, and passwords by the form
/// that they are held in too. Fields without a name hash and without storage do not count, as there.
class MessageDiff {
 public:
  /// Gets each difference: the path of the field (`jobs[3].owner`, `sizes["k"]`), and both values as text. A
  /// value that is not there is "(not set)" or "(none)"; of a password only its form is told.
  using Report = std::function<void(const std::string& path, const std::string& a, const std::string& b)>;

  /// Values that `masks` hide are told as their mask.
  explicit MessageDiff(Report report, Masks masks = {}) : report_(std::move(report)), masks_(masks) {}

  /// `path` is put in front of the names of fields; empty for the root.
  void compare(const std::string& path, const XNMessageBase& a, const XNMessageBase& b);
  /// Differences reported so far.
  std::uint64_t count() const { return count_; }

 private:
  friend class FieldComparison;
  void report(const std::string& path, const std::string& a, const std::string& b);

  /// Tells that a hidden field differs, wherever in it.
  void compareHidden(const std::string& path, std::string_view mask, const FieldDef& field,
                     const XNMessageBase& a, const XNMessageBase& b);

  Report report_;
  Masks masks_;
  std::uint64_t count_ = 0;
};

}  // namespace zqxml::tool
