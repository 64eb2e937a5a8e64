// The numbers of the catalogue: references followed, hashes, slots, annotation records and runs of defaults.
#pragma once

#include "diagnostics.h"
#include "model.h"

namespace zqxml::zqcatc {

/// Follows every reference. Reports names that nothing has, and an enumeration where a class is wanted or the
/// other way round. True when all were found.
bool followReferences(Catalogue& catalogue, Diagnostics& diagnostics);

/// Works out hash, memNum, index, element counts and the runs of defaults, and packs the annotations. Reports
/// what does not fit into a record, and annotations that cannot be packed. Needs followed references.
void assignNumbers(Catalogue& catalogue, Diagnostics& diagnostics);

}  // namespace zqxml::zqcatc
