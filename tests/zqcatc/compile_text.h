// Compiles schema texts in memory.
#pragma once

#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "compiler.h"

namespace zqxml::zqcatc {

/// What came of a few schema files.
struct Compiled {
  std::vector<SchemaSource> sources;  ///< positions in the catalogue refer to these
  std::vector<std::string> errors;    ///< lines, as the program prints them
  Catalogue catalogue;

  const Class& classNamed(std::string_view subsystem, std::string_view name) const {
    return *catalogue.find(subsystem)->find(name);
  }
  const Field& field(std::string_view subsystem, std::string_view name, std::string_view fieldName) const {
    for (const Field& candidate : classNamed(subsystem, name).fields)
      if (candidate.name == fieldName) return candidate;
    throw std::out_of_range(std::string(fieldName));
  }
  /// Output by the last part of its path.
  std::string output(std::string_view name) const {
    for (const OutputFile& file : writeCatalogue(catalogue, "zqcatc test"))
      if (file.path.ends_with(name)) return file.text;
    throw std::out_of_range(std::string(name));
  }
};

/// Each source is a file name and its text.
inline Compiled compileFiles(std::vector<SchemaSource> sources) {
  Compiled compiled;
  compiled.sources = std::move(sources);
  Diagnostics diagnostics;
  SchemaParser parser;
  compiled.catalogue = compileCatalogue(compiled.sources, parser, diagnostics);
  std::ostringstream lines;
  diagnostics.print(lines);
  std::istringstream in(lines.str());
  for (std::string line; std::getline(in, line);) compiled.errors.push_back(line);
  return compiled;
}

/// Subsystem T of slot 202, 20 records; `body` begins at line 2, column 1 of T.xml.
inline Compiled compile(std::string_view body) {
  return compileFiles({{"T.xml", "<subsystem name=\"T\" slot=\"202\" records=\"20\">\n" + std::string(body) +
                                     "\n</subsystem>\n"}});
}

/// The same for a class C at index 0; `fields` begins at line 3, column 1.
inline Compiled compileClass(std::string_view fields) {
  return compile("<class name=\"C\" index=\"0\">\n" + std::string(fields) + "\n</class>");
}

}  // namespace zqxml::zqcatc
