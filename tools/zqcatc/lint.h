// What a catalogue may hold, and its owner will hardly want.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "findings.h"
#include "snapshot.h"

namespace zqxml::zqcatc {

/// Codes of all rules, in the order of the documentation.
std::span<const std::string_view> lintRules();

/// What the rules find, in the order of the catalogue; docs/evolution.md tells them.
std::vector<Finding> lintCatalogue(const Snapshot& catalogue);

}  // namespace zqxml::zqcatc
