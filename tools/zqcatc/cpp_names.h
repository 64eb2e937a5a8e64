// Names and literals of the C++ that is written.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "diagnostics.h"
#include "model.h"

namespace zqxml::zqcatc {

/// The name as a C++ identifier: other characters than letters, digits and '_' become '_', and a name that
/// C++ or the written code needs for itself ("default", "std") gets a '_' behind it.
std::string cppIdentifier(std::string_view name);

/// What stands behind get, set, ... in the accessors of a field: its cpp name, or its name with a capital.
std::string accessorStem(const Field& field);

/// A C++ string literal of these bytes.
std::string stringLiteral(std::string_view bytes);
/// "0x1a2b"
std::string hexNumber(std::uint32_t value);
/// Doc comment, each line with `indent` before it; "" for an empty text.
std::string docComment(std::string_view text, std::string_view indent);

/// Reports classes of a subsystem, fields of a class and enumerators of an enumeration that would have one
/// C++ name.
void checkCppNames(const Catalogue& catalogue, Diagnostics& diagnostics);

}  // namespace zqxml::zqcatc
