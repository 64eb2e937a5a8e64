// Catalogues that `zqmsg dump-catalogue` printed.
#pragma once

#include <optional>

#include "diagnostics.h"
#include "snapshot.h"
#include "xml_tree.h"

namespace zqxml::zqcatc {

/// A dump may be this large; a larger one is refused.
inline constexpr std::size_t kMaxDumpBytes = std::size_t{32} << 20;

/// The catalogue in a dump; nothing, with an error reported, when the text is no such dump. Texts are
/// untrusted: each number is checked for its range, and nothing may occur twice that has to be unique. Keys
/// that are not known are passed over. Positions refer to `source.path`, and have no lines.
std::optional<Snapshot> readDump(const SchemaSource& source, Diagnostics& diagnostics);

}  // namespace zqxml::zqcatc
