// zqcatc: the catalogue compiler.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "compiler.h"
#include "output_files.h"

namespace fs = std::filesystem;
using namespace zqxml::zqcatc;

namespace {

enum ExitStatus { kDone = 0, kSchemaErrors = 1, kUsage = 2, kFileError = 3 };

constexpr std::string_view kHelp =
    R"(zqcatc - compiles the schema files of the message catalogue

Usage: zqcatc --out FOLDER SCHEMA...
       zqcatc --check SCHEMA...
       zqcatc --list SCHEMA...

A SCHEMA is a schema file, or a folder whose *.xml files are taken. One file describes one subsystem and is
named after it; files named *.extension.xml add classes to a subsystem of another file.

  --out FOLDER   write constant tables and typed C++ classes to FOLDER/zqxml/catalogue/generated/;
                 a file whose content stays the same is not touched
  --check        read and check only
  --list         print the names of the files that --out would write, one per line
  --version      print the version
  -h, --help     print this text

Errors are lines "file:line:column: error: what is wrong and what to do". When there is one, nothing is written.

Examples:
  zqcatc --check schema                            is the catalogue in order?
  zqcatc --out build schema                        compile it
  zqcatc --out build schema my-schema Common.extension.xml
                                                   with further subsystems, and more classes in Common

Exit status: 0 done, 1 errors in a schema file, 2 wrong usage, 3 a file cannot be read or written.
)";

struct Options {
  std::string out;
  bool check = false;
  bool list = false;
  std::vector<std::string> schemas;
};

/// Prints to standard output; an exit status.
int print(std::string_view text) {
  std::cout << text << std::flush;
  if (std::cout) return kDone;
  std::cerr << "zqcatc: cannot write to standard output\n";
  return kFileError;
}

int usage(std::string_view why) {
  std::cerr << "zqcatc: " << why << "; 'zqcatc --help' shows the usage\n";
  return kUsage;
}

/// An exit status, or -1 to go on.
int parseOptions(int argc, char** argv, Options& options) {
  for (int i = 1; i < argc; ++i) {
    const std::string_view argument = argv[i];
    if (argument == "-h" || argument == "--help") {
      return print(kHelp);
    }
    if (argument == "--version") {
      return print("zqcatc " ZQCATC_VERSION "\n");
    }
    if (argument == "--out") {
      if (++i == argc) return usage("--out needs a folder");
      options.out = argv[i];
    } else if (argument == "--check") {
      options.check = true;
    } else if (argument == "--list") {
      options.list = true;
    } else if (argument.starts_with("-")) {
      return usage(cat("unknown option '", argument, "'"));
    } else {
      options.schemas.emplace_back(argument);
    }
  }
  if (options.schemas.empty()) return usage("no schema given");
  if (!options.out.empty() + options.check + options.list != 1)
    return usage("give one of --out, --check and --list");
  return -1;
}

/// The files of a folder in the order of their names; a file stands for itself.
bool expand(const std::string& schema, std::vector<std::string>& paths, std::string& error) {
  std::error_code code;
  if (!fs::is_directory(schema, code)) {
    paths.push_back(schema);
    return true;
  }
  std::vector<std::string> found;
  for (fs::directory_iterator entry(schema, code), end; !code && entry != end; entry.increment(code))
    if (entry->path().extension() == ".xml") found.push_back(entry->path().string());
  if (code) error = cat("cannot read folder ", schema, ": ", code.message());
  if (!code && found.empty()) error = cat("there is no *.xml file in folder ", schema);
  std::sort(found.begin(), found.end());
  paths.insert(paths.end(), found.begin(), found.end());
  return error.empty();
}

/// Reads at most one byte more than a file may have, however long the file is; the parser refuses that.
bool readFile(const std::string& path, std::string& text, std::string& error) {
  std::ifstream file(path, std::ios::binary);
  std::vector<char> chunk(std::size_t{1} << 16);
  while (file && text.size() <= SchemaParser::kMaxFileBytes) {
    file.read(chunk.data(), static_cast<std::streamsize>(chunk.size()));
    text.append(chunk.data(), static_cast<std::size_t>(file.gcount()));
  }
  if (!file.is_open() || file.bad()) error = cat("cannot read ", path);
  return error.empty();
}

int run(const Options& options, std::string_view command) {
  std::string error;
  std::vector<std::string> paths;
  std::vector<SchemaSource> sources;
  for (const std::string& schema : options.schemas) {
    if (!expand(schema, paths, error)) break;
  }
  for (const std::string& path : paths) {
    if (error.empty() && readFile(path, sources.emplace_back(SchemaSource{path, {}}).text, error)) continue;
    break;
  }
  if (!error.empty()) {
    std::cerr << "zqcatc: " << error << '\n';
    return kFileError;
  }
  Diagnostics diagnostics;
  SchemaParser parser;
  const Catalogue catalogue = compileCatalogue(sources, parser, diagnostics);
  if (diagnostics.hasErrors()) {
    diagnostics.print(std::cerr);
    return kSchemaErrors;
  }
  if (options.check) return kDone;
  const std::vector<OutputFile> files = writeCatalogue(catalogue, command);
  if (options.list) {
    std::string names;
    for (const OutputFile& file : files) names += file.path + "\n";
    return print(names);
  }
  if (writeFiles(options.out, files, error)) return kDone;
  std::cerr << "zqcatc: " << error << '\n';
  return kFileError;
}

/// The command line with folders cut to their last part, so that outputs are the same wherever they are made.
std::string commandLine(const Options& options) {
  std::string command = "zqcatc --out FOLDER";
  for (const std::string& schema : options.schemas) {
    std::error_code code;
    const fs::path path = fs::absolute(schema, code).lexically_normal();
    std::string name = (path.has_filename() ? path : path.parent_path()).filename().string();
    // It goes into a comment: nothing of it may end the line.
    for (char& byte : name)
      if (static_cast<unsigned char>(byte) < 0x20 || byte == 0x7f) byte = '?';
    command += " " + name;
  }
  return command;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  const int status = parseOptions(argc, argv, options);
  return status >= 0 ? status : run(options, commandLine(options));
}
