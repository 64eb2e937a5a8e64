#pragma once

#include <zqxml/catalogue/records.h>
#include <zqxml/message/xn_message_base.h>

#include <cstdint>
#include <string>

namespace zqxml::tool {

/// Writes the set fields of a message as HTML: a row for each value, and for each sub-object, list of objects
/// and map a section that a button opens. The names of the classes are those of page.css:
///
///   .f  a field: .n its name, .v its value, .i an element of a list, .m what is masked
///   .s  a section: a button with its title .t, and .b the block that it opens, closed at first
///   .h  the title of a section below the 100th level: what is in it follows, in the block of that level
///
/// Fields that are hidden from summaries and reports are left out. Passwords, sensitive values and byte
/// strings are masked unless `showSecrets` says otherwise; that a list or a sub-object is sensitive masks all
/// of it. Everything that is written of the message is escaped.
class FieldRows {
 public:
  explicit FieldRows(bool showSecrets) : showSecrets_(showSecrets) {}

  /// Appends the fields of `message`, in the order of its class.
  void append(const XNMessageBase& message);
  /// What was written so far.
  const std::string& html() const { return html_; }
  /// Values written so far.
  std::uint64_t rows() const { return rows_; }

 private:
  friend class FieldRow;

  /// Sections inside one another. A section is two elements, and browsers put what lies below some 512
  /// elements beside its block instead of into it, where no search would find it.
  static constexpr int kDeepest = 100;

  void row(const std::string& nameHtml, const std::string& valueHtml);
  /// `titleHtml` is what the button says.
  void openSection(const std::string& titleHtml);
  void closeSection();
  void object(const std::string& titleHtml, const XNMessageBase& message);

  const bool showSecrets_;
  std::string html_;
  std::uint64_t rows_ = 0;
  std::uint64_t sections_ = 0;
  int open_ = 0;
};

}  // namespace zqxml::tool
