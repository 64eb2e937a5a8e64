// From schema files to C++ sources, all in memory.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "diagnostics.h"
#include "model.h"
#include "xml_tree.h"

namespace zqxml::zqcatc {

/// A file to be written: path below the output folder, and content.
struct OutputFile {
  std::string path;
  std::string text;
};

/// Reads and checks all files and works out the numbers. `sources` must outlive `diagnostics`. With an error
/// reported the catalogue is incomplete and must not be written.
Catalogue compileCatalogue(std::span<const SchemaSource> sources, SchemaParser& parser,
                           Diagnostics& diagnostics);

/// The files of a catalogue without errors: per subsystem the tables, the enumerations and the typed classes,
/// then the table of subsystems and a header that includes all. `command` is the command line to show in
/// their first lines.
std::vector<OutputFile> writeCatalogue(const Catalogue& catalogue, std::string_view command);

}  // namespace zqxml::zqcatc
