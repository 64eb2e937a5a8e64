#include "compiler.h"

#include <filesystem>
#include <map>

#include "checks.h"
#include "cpp_names.h"
#include "header_writer.h"
#include "model_builder.h"
#include "paths.h"
#include "resolve.h"
#include "table_writer.h"

namespace zqxml::zqcatc {

namespace {

/// A file is named after its subsystem, so that builds know its outputs without reading it.
void checkFileName(const SchemaSource& source, const Element& root, Diagnostics& diagnostics) {
  const std::string fileName = std::filesystem::path(source.path).filename().string();
  if (root.name == "subsystem") {
    if (fileName == root.value("name") + ".xml") return;
    diagnostics.error(root.at("name"), cat("the file of subsystem '", root.value("name"), "' must be named ",
                                           root.value("name"), ".xml; rename the file or the subsystem"));
  } else if (!fileName.ends_with(".extension.xml")) {
    diagnostics.error(root.position,
                      cat("the file of an extension must have a name that ends in .extension.xml; "
                          "rename it to ",
                          root.value("subsystem"), ".extension.xml"));
  }
}

/// Two files of one name would overwrite each other's outputs.
void checkDistinctFiles(std::span<const SchemaSource> sources, Diagnostics& diagnostics) {
  std::map<std::string_view, int> seen;
  for (const SchemaSource& source : sources)
    if (++seen[source.path] == 2) diagnostics.error({source.path}, "the file is given twice; give it once");
}

std::string firstLine(std::string_view command, std::string_view from) {
  return cat("// Written by zqcatc from ", from, " (", command, "); changes are lost.\n");
}

}  // namespace

Catalogue compileCatalogue(std::span<const SchemaSource> sources, SchemaParser& parser,
                           Diagnostics& diagnostics) {
  checkDistinctFiles(sources, diagnostics);
  std::vector<Element> roots;
  for (const SchemaSource& source : sources) {
    std::optional<Element> root = parser.parse(source, diagnostics);
    if (!root.has_value()) continue;
    checkFileName(source, *root, diagnostics);
    roots.push_back(std::move(*root));
  }
  // What follows would only repeat the consequences of an invalid file.
  if (diagnostics.hasErrors()) return {};
  diagnostics.setCode("numbers");
  Catalogue catalogue = buildCatalogue(roots, diagnostics);
  diagnostics.setCode("names");
  checkNames(catalogue, diagnostics);
  checkCppNames(catalogue, diagnostics);
  diagnostics.setCode("defaults");
  checkDefaults(catalogue, diagnostics);
  diagnostics.setCode("references");
  followReferences(catalogue, diagnostics);
  diagnostics.setCode("records");
  assignNumbers(catalogue, diagnostics);
  if (diagnostics.hasErrors()) return catalogue;
  // These walk from class to class and need every reference.
  diagnostics.setCode("cycles");
  checkCycles(catalogue, diagnostics);
  diagnostics.setCode("paths");
  findPaths(catalogue, diagnostics);
  return catalogue;
}

std::vector<OutputFile> writeCatalogue(const Catalogue& catalogue, std::string_view command) {
  const std::string folder(kIncludeFolder);
  std::vector<OutputFile> files;
  for (const auto& subsystem : catalogue.subsystems) {
    const std::string line = firstLine(command, subsystem->name + ".xml");
    files.push_back({folder + subsystem->name + ".cc", writeSubsystemTables(*subsystem, line)});
    files.push_back({folder + subsystem->name + "_enums.h", writeEnumHeader(*subsystem, line)});
    files.push_back({folder + subsystem->name + ".h", writeClassHeader(catalogue, *subsystem, line)});
  }
  const std::string line = firstLine(command, "all schema files");
  files.push_back({folder + "subsystem_table.cc", writeSubsystemTable(catalogue, line)});
  files.push_back({folder + "catalogue.h", writeCatalogueHeader(catalogue, line)});
  return files;
}

}  // namespace zqxml::zqcatc
