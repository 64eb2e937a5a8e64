// The fixed names of the XML form as the reader compares them. Not installed.
#pragma once

#include <zqxml/catalogue/field_types.h>
#include <zqxml/xml/internal/name_view.h>
#include <zqxml/xml/internal/xml_names.h>

#include <cstdint>

namespace zqxml {

inline constexpr std::uint32_t kMapKeyHash = nameHash(kMapKeyName);
inline constexpr std::uint32_t kMapValueHash = nameHash(kMapValueName);
static_assert(kMapKeyHash == 0x321e63 && kMapValueHash == 0x882bf5);

/// Fields whose elements are objects of their own.
inline constexpr FieldTypeSet kObjectFields{FDT_OBJECT, FDT_LIST_OBJECT};

}  // namespace zqxml
