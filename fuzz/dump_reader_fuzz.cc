// Dumps of a catalogue of any bytes, through their reader, the look for traps, and the comparison.
//
// The input is one dump, or two that a NUL byte parts: an old and a new version.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "catalogue_diff.h"
#include "dump_reader.h"
#include "lint.h"

namespace zqxml::zqcatc {
namespace {

/// Ends the run where the reader contradicts itself.
void require(bool holds) {
  if (!holds) std::abort();
}

void requireLines(const std::vector<Finding>& findings) {
  for (ErrorFormat format : {ErrorFormat::kText, ErrorFormat::kJson}) {
    std::ostringstream lines;
    printFindings(lines, findings, format);
    require(findings.empty() == lines.str().empty());
  }
}

std::optional<Snapshot> readSource(const SchemaSource& source) {
  Diagnostics diagnostics;
  std::optional<Snapshot> snapshot = readDump(source, diagnostics);
  require(snapshot.has_value() != diagnostics.hasErrors());
  std::ostringstream lines;
  diagnostics.print(lines);
  require(diagnostics.hasErrors() != lines.str().empty());
  return snapshot;
}

void readInput(std::string_view input) {
  const std::size_t end = input.find('\0');
  const SchemaSource old{"before.json", std::string(input.substr(0, end))};
  const std::optional<Snapshot> before = readSource(old);
  if (!before) return;
  requireLines(lintCatalogue(*before));
  require(compareCatalogues(*before, *before).empty());
  if (end == std::string_view::npos) return;
  const SchemaSource changed{"after.json", std::string(input.substr(end + 1))};
  const std::optional<Snapshot> after = readSource(changed);
  if (after) requireLines(compareCatalogues(*before, *after));
}

}  // namespace
}  // namespace zqxml::zqcatc

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  zqxml::zqcatc::readInput({reinterpret_cast<const char*>(data), size});
  return 0;
}
