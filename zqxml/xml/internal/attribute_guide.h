// AttributeGuide: which attributes the elements of a class may be expected to have. Not installed.
#pragma once

#include <zqxml/catalogue/records.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zqxml {

/// The names of the fields of one class that are attributes as a rule, in the order of the writer. It is a
/// guess, which whoever reads a text compares with it: an element need not be of that class at all, and may
/// have other attributes in any order.
class AttributeGuide {
 public:
  /// A name of ASCII that is plain (xml_scanner.h).
  struct Name {
    /// What stands before the value: ` name="`.
    const char* attribute;
    /// Of the part that such an attribute is (scanned_text.h).
    std::uint32_t marks;
    std::uint8_t length;
    /// Of the field in its class; kNoPosition when that is further behind.
    std::uint8_t position;

    std::uint32_t hash() const { return marks & 0xffffff; }
    std::size_t attributeLength() const { return length + std::size_t{3}; }
  };

  /// The guide of the class that a root element is named after, and of the elements of a field of this class.
  /// Null when there is no such class. They stay for the process. Any thread; throw std::bad_alloc.
  static const AttributeGuide* ofRoot(std::string_view name, std::uint32_t hash);
  const AttributeGuide* ofField(std::uint32_t hash) const;

  /// In the order of the writer, by code unit; no two are the same.
  std::span<const Name> names() const { return names_; }

 private:
  explicit AttributeGuide(const _ClassDef& classDef);
  static const AttributeGuide* of(int subsystem, int classIndex);

  const _ClassDef& classDef_;
  std::vector<Name> names_;
  std::string text_;
};

}  // namespace zqxml
