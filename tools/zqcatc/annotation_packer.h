// Annotations of a field, from readable elements to the packed record of the catalogue.
#pragma once

#include <optional>
#include <string>

#include "diagnostics.h"
#include "model.h"

namespace zqxml::zqcatc {

/// The record, all numbers big-endian:
///   2 bytes   length of the record with these two
///   1 byte    flags: Password type in bits 7-4, ZQTime 3, Suppress 2, XDate type in bits 1-0
///   1 byte    flags: GenPath 7, HideInReports 6, SingleInstanced 5, CommandParam 4, Text 3,
///             SearchCriteriaDef 2, StoredProcedure 1, IndexAttr 0
///   1 byte    flags: MarkAsCDATA 7, Sensitive 6, value of IndexAttr 0
///   sections  Text, CommandParam, SearchCriteriaDef, StoredProcedure, those that are there
/// A record ends after the last flag byte that says something; with a section all three stand. A string is a
/// 2-byte length and its bytes.
class AnnotationPacker {
 public:
  /// `catalogue` has its references followed: values may be names of enumerators of its annotation classes.
  AnnotationPacker(const Catalogue& catalogue, Diagnostics& diagnostics)
      : annotations_(catalogue.annotations()), diagnostics_(diagnostics) {}

  /// Nothing for a field without annotations; for a self record at least two zero bytes. Reports annotations
  /// that the field's type cannot have and values that do not fit.
  std::optional<std::string> pack(const Class& owner, const Field& field) const;

 private:
  const Subsystem* annotations_;
  Diagnostics& diagnostics_;
};

}  // namespace zqxml::zqcatc
