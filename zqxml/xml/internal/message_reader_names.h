// The fixed names of the XML form.
#pragma once

#include <zqxml/catalogue/field_types.h>
#include <zqxml/catalogue/name_hash.h>

#include <cstdint>
#include <string_view>

namespace zqxml {

/// The attribute that holds the value of a list element or of a side of a map entry.
inline constexpr std::u16string_view kValName = u"val";
inline constexpr std::uint32_t kMapKeyHash = nameHash(std::string_view("__mapKey__"));
inline constexpr std::uint32_t kMapValueHash = nameHash(std::string_view("__mapValue__"));
static_assert(kMapKeyHash == 0x321e63 && kMapValueHash == 0x882bf5);

/// Fields whose elements are objects of their own.
inline constexpr FieldTypeSet kObjectFields{FDT_OBJECT, FDT_LIST_OBJECT};

}  // namespace zqxml
