// Schema files of any bytes, through all of the catalogue compiler.
//
// The input is up to three files, parted by NUL bytes: Fuzz.xml, More.xml and Fuzz.extension.xml.

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "compiler.h"

namespace zqxml::zqcatc {
namespace {

constexpr std::array<const char*, 3> kNames{"Fuzz.xml", "More.xml", "Fuzz.extension.xml"};

/// Ends the run where the compiler contradicts itself.
void require(bool holds) {
  if (!holds) std::abort();
}

std::vector<SchemaSource> splitInput(std::string_view input) {
  std::vector<SchemaSource> sources;
  for (const char* name : kNames) {
    const std::size_t end = input.find('\0');
    sources.push_back({name, std::string(input.substr(0, end))});
    if (end == std::string_view::npos) break;
    input.remove_prefix(end + 1);
  }
  return sources;
}

void compileInput(std::string_view input) {
  const std::vector<SchemaSource> sources = splitInput(input);
  static SchemaParser parser;
  Diagnostics diagnostics;
  const Catalogue catalogue = compileCatalogue(sources, parser, diagnostics);
  std::ostringstream lines;
  diagnostics.print(lines);
  require(diagnostics.hasErrors() == !lines.str().empty());
  if (diagnostics.hasErrors()) return;
  const std::vector<OutputFile> files = writeCatalogue(catalogue, "zqcatc");
  require(files.size() == 3 * catalogue.subsystems.size() + 2);
  for (const OutputFile& file : files) require(file.text.starts_with("// Written by zqcatc from "));
}

}  // namespace
}  // namespace zqxml::zqcatc

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  zqxml::zqcatc::compileInput({reinterpret_cast<const char*>(data), size});
  return 0;
}
