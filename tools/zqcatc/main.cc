// zqcatc: the catalogue compiler.
#include <filesystem>
#include <iostream>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "command_line.h"
#include "compiler.h"
#include "findings.h"
#include "output_files.h"
#include "source_files.h"
#include "tools/command_pages/bash_completion.h"
#include "tools/command_pages/man_page.h"

namespace fs = std::filesystem;
using namespace zqxml::zqcatc;

namespace {

constexpr const char* kFooter =
    R"(One schema file describes one subsystem and is named after it; files named *.extension.xml add
classes to a subsystem of another file. Errors are lines "file:line:column: error: what is wrong and
what to do". When there is one, nothing is written.

Examples:
  zqcatc --check schema                            is the catalogue in order?
  zqcatc --out build schema                        compile it
  zqcatc --out build schema my-schema Common.extension.xml
                                                   with further subsystems, and more classes in Common

Exit status: 0 done, 1 errors in a schema file, 2 wrong usage, 3 a file cannot be read or written.)";

struct Options {
  std::string out;
  bool check = false;
  bool list = false;
  std::vector<std::string> schemas;
  ErrorFormat format = ErrorFormat::kText;
};

void define(CLI::App& app, Options& options) {
  app.set_version_flag("--version", "zqcatc " ZQCATC_VERSION, "print the version");
  app.footer(kFooter);
  app.add_option("SCHEMA", options.schemas, "schema files, or folders whose *.xml files are taken");
  app.add_option("--out", options.out,
                 "write constant tables and typed C++ classes to FOLDER/zqxml/catalogue/generated/; a file "
                 "whose content stays the same is not touched")
      ->type_name("FOLDER")
      ->take_last();
  app.add_flag("--check", options.check, "read and check only");
  app.add_flag("--list", options.list, "print the names of the files that --out would write, one per line");
  addErrorFormat(app, options.format,
                 "text (default), or json: one object per line, with file, line, column, severity, code and "
                 "message");
}

int run(const Options& options, std::string_view command) {
  if (options.schemas.empty()) return usage("no schema given");
  if (!options.out.empty() + options.check + options.list != 1)
    return usage("give one of --out, --check and --list");
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

int generate(const CLI::App& app, std::string_view what) {
  if (what == "man") return print(zqxml::command_pages::manPage(app, ZQCATC_VERSION));
  if (what == "bash-completion") return print(zqxml::command_pages::bashCompletion(app));
  return usage("--generate makes man or bash-completion");
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("compiles the schema files of the message catalogue", "zqcatc");
  Options options;
  EvolveOptions diff, lint;
  define(app, options);
  CLI::App& diffCommand = defineDiff(app, diff);
  CLI::App& lintCommand = defineLint(app, lint);
  // For those who build packages; no command of its own.
  if (argc == 3 && std::string_view(argv[1]) == "--generate") return generate(app, argv[2]);
  const int status = parse(app, argc, argv);
  if (status >= 0) return status;
  if (diffCommand.parsed()) return runDiff(diff);
  if (lintCommand.parsed()) return runLint(lint);
  return run(options, commandLine(options));
}
