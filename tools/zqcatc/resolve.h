// The numbers of the catalogue: references followed, slots, annotation records and runs of defaults.
#pragma once

#include "diagnostics.h"
#include "model.h"

namespace zqxml::zqcatc {

/// Follows every reference. Reports names that nothing has, and an enumeration where a class is wanted or the
/// other way round; such a reference stays null.
void followReferences(Catalogue& catalogue, Diagnostics& diagnostics);

/// Works out memNum, index, element counts and the runs of defaults, and packs the annotations. Reports
/// what does not fit into a record, and annotations that cannot be packed. References are followed before.
void assignNumbers(Catalogue& catalogue, Diagnostics& diagnostics);

}  // namespace zqxml::zqcatc
