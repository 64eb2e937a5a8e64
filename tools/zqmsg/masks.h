// What stands in place of values that are hidden.
#pragma once

#include <zqxml/annotation/annotation_record.h>

#include <string_view>

namespace zqxml::tool {

inline constexpr std::string_view kMaskedPassword = "*******";
inline constexpr std::string_view kMaskedValue = "########";

/// Which values are hidden: those of passwords, and those that the schema calls sensitive.
struct Masks {
  bool passwords = false;
  bool sensitive = false;

  /// What to write in place of the field's value; empty when it is not hidden.
  std::string_view of(const FieldDef& field, const AnnotationRecord& annotation) const {
    if (sensitive && annotation.isSensitive()) return kMaskedValue;
    const bool isPassword = annotation.passwordType() != 0 || field.getType() == FDT_PSTRING;
    return passwords && isPassword ? kMaskedPassword : std::string_view();
  }
};

}  // namespace zqxml::tool
