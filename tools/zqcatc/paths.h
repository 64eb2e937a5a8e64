// Paths of a subsystem: how a value deep in a message is named by one line of text.
//
// catalogue/xpath_data.h tells the form of a path and of its id. Paths begin with an object of a root. Maps,
// fields without a hash, and lists of ulonglong or of byte strings have none. A class that contains itself
// ends its paths there.
#pragma once

#include "diagnostics.h"
#include "model.h"

namespace zqxml::zqcatc {

/// Fills the paths of each subsystem from the classes that are roots. Reports paths of one subsystem that
/// share an id, or a text with different field numbers.
void findPaths(Catalogue& catalogue, Diagnostics& diagnostics);

}  // namespace zqxml::zqcatc
