// What changed from one version of a catalogue to another, and what each change breaks.
//
// A change breaks a form when two programs, one of each version, no longer get a value across that both know,
// whichever of them writes; what only one of them knows the other passes over. It breaks compiled callers
// when a program built with the typed classes of the old version goes wrong with the new catalogue, or does
// not compile against it. docs/evolution.md lists the changes.
#pragma once

#include <vector>

#include "findings.h"
#include "snapshot.h"

namespace zqxml::zqcatc {

/// The changes, in the order of the new catalogue, what is gone behind it. A change stands at its place in
/// the new version, or in the old one when the new has none with a line. Texts are those of findings.h;
/// `breaks` holds "xml", "binary" and "callers", as far as they are, and nothing for a safe change.
std::vector<Finding> compareCatalogues(const Snapshot& before, const Snapshot& after);

}  // namespace zqxml::zqcatc
