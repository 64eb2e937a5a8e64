// Paths of a subsystem: how a value deep in a message is named by one line of text.
//
// A path is the field names from below the root: an object step is the name and "[1]/", a scalar leaf is "@"
// and the name, a list leaf is the bare name. Its id is a 31-based hash of the text, as an absolute value.
// Lists of objects, maps and fields without a hash have no path. A class that contains itself ends its paths
// there.
#pragma once

#include <cstdint>
#include <string_view>

#include "diagnostics.h"
#include "model.h"

namespace zqxml::zqcatc {

/// Id of a path: h = h * 31 + signed byte in 32 bits, read as a signed number, its absolute value.
std::int32_t pathId(std::string_view text);

/// Reports paths of one subsystem that share an id, or a text with different field numbers.
void checkPaths(const Catalogue& catalogue, Diagnostics& diagnostics);

}  // namespace zqxml::zqcatc
