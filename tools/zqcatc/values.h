// Numbers and names as schema files write them.
#pragma once

#include <zqxml/catalogue/field_types.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "diagnostics.h"
#include "xml_tree.h"

namespace zqxml::zqcatc {

/// Decimal or "0x" hexadecimal, with an optional '-'; nothing when it is anything else or beyond 64 bits.
std::optional<std::int64_t> parseNumber(std::string_view text);

/// The attribute as a number from `low` to `high`; reports and gives nothing when it is none. `what` names it
/// in the error: "index of class 'Job'".
std::optional<std::int64_t> numberAttribute(const Element& element, std::string_view attribute,
                                            std::int64_t low, std::int64_t high, std::string_view what,
                                            Diagnostics& diagnostics);

/// True for "true" and "1", the values of a valid xs:boolean; false when the attribute is not there.
bool flagAttribute(const Element& element, std::string_view attribute);

/// Name of a field type in schema files: that of the type without "FDT_", in small letters ("list_int").
std::string typeName(FieldDataType type);
/// The type of the name; nothing for an unknown one.
std::optional<FieldDataType> typeFromName(std::string_view name);
/// The names of all types that a field may have, joined by ", ".
std::string fieldTypeNames();
/// A field may have every type that takes a slot.
inline bool isFieldType(FieldDataType type) {
  return fieldTypeFacts(type).slots != 0;
}

/// ASCII letters in small form.
std::string lower(std::string_view text);

}  // namespace zqxml::zqcatc
