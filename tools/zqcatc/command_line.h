// What the commands of the program share.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "findings.h"

namespace zqxml::zqcatc {

enum ExitStatus { kDone = 0, kSchemaErrors = 1, kUsage = 2, kFileError = 3, kFound = 10 };

/// Prints to standard output; an exit status.
int print(std::string_view text);

/// Tells on standard error how the program, or a command of it, was called wrongly; the exit status of that.
int usage(std::string_view why, std::string_view command = {});

/// A failure to read or write, on standard error; the exit status of that.
int fileError(std::string_view why, ErrorFormat format);

/// Adds --error-format to a command.
void addErrorFormat(CLI::App& command, ErrorFormat& format, const std::string& description);

/// Reads the command line into what the options of `app` and its commands refer to. An exit status when help
/// or version was asked for, or for wrong usage; -1 to go on.
int parse(CLI::App& app, int argc, const char* const* argv);

/// What `zqcatc diff` and `zqcatc lint` take.
struct EvolveOptions {
  ErrorFormat format = ErrorFormat::kText;
  std::vector<std::string> list;  ///< of --fail-on or --allow
  std::vector<std::string> with;
  std::vector<std::string> inputs;
};

/// Add the commands to the program's.
CLI::App& defineDiff(CLI::App& app, EvolveOptions& options);
CLI::App& defineLint(CLI::App& app, EvolveOptions& options);
/// Exit statuses.
int runDiff(const EvolveOptions& options);
int runLint(const EvolveOptions& options);

}  // namespace zqxml::zqcatc
