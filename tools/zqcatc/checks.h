// What a catalogue must not hold, beyond what the shape of its files already rules out.
#pragma once

#include "diagnostics.h"
#include "model.h"

namespace zqxml::zqcatc {

/// Names, indices, ids and hashes: reports indices beyond the record count, and whatever occurs twice in a
/// subsystem (class names, indices, ids but 0), in a class (field names, hashes but 0) or in an enumeration
/// (names); field names whose hash is 0 or that of a map side.
void checkNames(const Catalogue& catalogue, Diagnostics& diagnostics);

/// Defaults: reports those on types that take none, and texts that would not be read as what they say.
void checkDefaults(const Catalogue& catalogue, Diagnostics& diagnostics);

/// Reports classes of old-way subsystems that contain themselves through object fields: an object of such a
/// class would be built without end.
void checkCycles(const Catalogue& catalogue, Diagnostics& diagnostics);

}  // namespace zqxml::zqcatc
