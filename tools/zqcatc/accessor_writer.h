// The accessors of one field of a typed message class.
#pragma once

#include <string>
#include <string_view>

#include "model.h"

namespace zqxml::zqcatc {

/// Qualified C++ name of a class or enumeration, as written inside namespace zqxml::<home>.
std::string cppClassName(const Class& record, const Subsystem& home);

/// The accessors of `field`, each a declaration with a body of one line or two. `passwordType` is the C++
/// name of the enumeration of password encryption types, or "int" where the catalogue has none.
std::string writeAccessors(const Field& field, const Class& owner, std::string_view passwordType);

}  // namespace zqxml::zqcatc
