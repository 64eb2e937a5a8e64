// Enumerations and typed message classes, as C++ text.
#pragma once

#include <string>
#include <string_view>

#include "model.h"

namespace zqxml::zqcatc {

/// Header of a subsystem's enumerations; depends on nothing but <cstdint>.
std::string writeEnumHeader(const Subsystem& subsystem, std::string_view firstLine);

/// Header of a subsystem's message classes, one per described class, and of RegisterSubsystem.
std::string writeClassHeader(const Catalogue& catalogue, const Subsystem& subsystem,
                             std::string_view firstLine);

/// Header that includes those of all subsystems.
std::string writeCatalogueHeader(const Catalogue& catalogue, std::string_view firstLine);

/// Path of generated headers as they are included, with a '/' at its end.
inline constexpr std::string_view kIncludeFolder = "zqxml/catalogue/generated/";

}  // namespace zqxml::zqcatc
