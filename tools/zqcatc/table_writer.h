// The constant tables, as C++ text.
#pragma once

#include <string>
#include <string_view>

#include "model.h"

namespace zqxml::zqcatc {

/// Source file of one subsystem: its records, the index over class ids, the defaults, the paths, and
/// RegisterSubsystem.
/// `firstLine` is a comment that says where the file comes from. Only constant initialisers.
std::string writeSubsystemTables(const Subsystem& subsystem, std::string_view firstLine);

/// Source file of gSubsystemTable and gXPathTable, which name the tables of all subsystems.
std::string writeSubsystemTable(const Catalogue& catalogue, std::string_view firstLine);

}  // namespace zqxml::zqcatc
