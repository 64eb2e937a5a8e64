// zqcatc: the catalogue compiler.
#include <filesystem>
#include <iostream>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "command_line.h"
#include "compiler.h"
#include "findings.h"
#include "output_files.h"
#include "source_files.h"

namespace fs = std::filesystem;
using namespace zqxml::zqcatc;

namespace {

constexpr std::string_view kHelp =
    R"(zqcatc - compiles the schema files of the message catalogue

Usage: zqcatc --out FOLDER SCHEMA...
       zqcatc --check SCHEMA...
       zqcatc --list SCHEMA...
       zqcatc diff OLD NEW          what changed, and what it breaks; 'zqcatc diff --help'
       zqcatc lint SCHEMA...        what an owner will hardly want; 'zqcatc lint --help'

A SCHEMA is a schema file, or a folder whose *.xml files are taken. One file describes one subsystem and is
named after it; files named *.extension.xml add classes to a subsystem of another file.

  --out FOLDER   write constant tables and typed C++ classes to FOLDER/zqxml/catalogue/generated/;
                 a file whose content stays the same is not touched
  --check        read and check only
  --list         print the names of the files that --out would write, one per line
  --error-format FORMAT
                 text (default), or json: one object per line, with file, line, column, severity, code and message
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
  ErrorFormat format = ErrorFormat::kText;
};

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
    } else if (argument == "--error-format") {
      if (++i == argc || !readErrorFormat(argv[i], options.format))
        return usage("--error-format is text or json");
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

int run(const Options& options, std::string_view command) {
  std::string error;
  std::vector<SchemaSource> sources;
  if (!readSchemas(options.schemas, sources, error)) return fileError(error, options.format);
  Diagnostics diagnostics;
  SchemaParser parser;
  const Catalogue catalogue = compileCatalogue(sources, parser, diagnostics);
  if (diagnostics.hasErrors()) {
    printErrors(std::cerr, diagnostics, options.format);
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
  return fileError(error, options.format);
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
  const std::span<char*> arguments(argv, static_cast<std::size_t>(argc));
  const std::string_view command = argc > 1 ? argv[1] : "";
  if (command == "diff") return runDiff(arguments.subspan(2));
  if (command == "lint") return runLint(arguments.subspan(2));
  Options options;
  const int status = parseOptions(argc, argv, options);
  return status >= 0 ? status : run(options, commandLine(options));
}
