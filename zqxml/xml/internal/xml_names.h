// The fixed names of the XML form, for its writer and its reader. Not installed.
#pragma once

namespace zqxml {

/// The attribute that holds the value of a list element or of a side of a map entry.
inline constexpr char16_t kValName[] = u"val";
/// The elements of the two sides of a map entry.
inline constexpr char16_t kMapKeyName[] = u"__mapKey__";
inline constexpr char16_t kMapValueName[] = u"__mapValue__";

}  // namespace zqxml
