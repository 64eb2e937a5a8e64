// Random messages of any class, for properties that hold for all of them.
#pragma once

#include <zqxml/catalogue/field_types.h>
#include <zqxml/message/xn_message_base.h>

namespace zqxml {

/// Which values a random message may have; a form that loses something leaves it out.
struct RandomValues {
  /// Types that stay unset.
  FieldTypeSet without;
  /// Fields of name hash 0 too.
  bool hashless = false;
  /// Lists and maps may be set and empty.
  bool emptyCollections = false;
  /// Levels of sub-objects below the message.
  int depth = 2;
};

/// Sets about half of the fields to values that rapidcheck draws: to be called in a property. Texts are
/// well-formed UTF-8 or UTF-16 without NUL, byte strings hold any bytes, integers fit their type, passwords
/// are plain and set only where the field is annotated as one of type 0 or 1. A map keyed by messages gets
/// one entry at most.
void fillAtRandom(XNMessageBase& message, const RandomValues& values = {});

}  // namespace zqxml
