// The sections of an annotation record: variable parts that flag byte 1 names, in the order of the functions
// here.
//
// Every section begins with its own flags; a string is a 2-byte length and its bytes, numbers are big-endian.
// Each function reads one section at the cursor and gives the values that it holds, by the name of the
// annotation class's field. A section that ends too early leaves the cursor failed; the values are then of no
// use.
#pragma once

#include <zqxml/annotation/annotation_record.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zqxml {

/// One value of an annotation. The text lies in the record.
struct AnnotationValue {
  std::string_view field;
  std::string_view text;     ///< of a string field
  std::uint32_t number = 0;  ///< of any other field
};

/// The values of one annotation, in the order of the record.
class AnnotationValues {
 public:
  void add(std::string_view field, std::string_view text) { values_[size_++] = {field, text, 0}; }
  void add(std::string_view field, std::uint32_t number) { values_[size_++] = {field, {}, number}; }

  const AnnotationValue* begin() const { return values_.data(); }
  const AnnotationValue* end() const { return values_.data() + size_; }

 private:
  static constexpr std::size_t kMost = 19;  // SearchCriteriaDef has all of them
  std::array<AnnotationValue, kMost> values_;
  std::size_t size_ = 0;
};

/// One flag byte: 7 `text`, 6 `comment`, 5 `falseText`, 4 `commentID`, 3 `localise` with its value in bit 2;
/// then the strings and the 4-byte number, in this order.
AnnotationValues getTextAnnotation(AnnotationCursor& cursor);

/// One flag byte: 7 `name`, 6 `useDefault` with its value in bit 4, 2 or 0 `ignoreReplace` with its value in
/// bit 3; then the name. QUIRK: the section takes one byte more than it holds; a later section would begin
/// behind it.
AnnotationValues getCommandParamAnnotation(AnnotationCursor& cursor);

/// A boolean of SearchCriteriaDef: the numbers of its bits in the three presence bytes and in the three last
/// value bytes, counted from the low end of the third byte.
struct SearchCriterion {
  std::string_view field;
  unsigned presence;
  unsigned value;
};

inline constexpr SearchCriterion kSearchCriteria[] = {
    {"Or", 20, 18},
    {"And", 19, 17},
    {"Nor", 18, 16},
    {"Between", 17, 10},
    {"In", 16, 9},
    {"Nin", 15, 8},
    {"Lt", 14, 7},
    {"Gt", 13, 6},
    {"Equals1", 12, 5},
    {"Lte", 11, 4},
    {"Gte", 10, 3},
    {"metadata", 9, 2},
    {"DefaultVisibility", 8, 1},
};

/// Three bytes of presence flags, one byte of values, the string `text`, three bytes of values; the value
/// bytes are there whether anything is present or not.
AnnotationValues getSearchCriteriaDefAnnotation(AnnotationCursor& cursor);

/// The string `name`.
AnnotationValues getStoredProcedure(AnnotationCursor& cursor);

}  // namespace zqxml
