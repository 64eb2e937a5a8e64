#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace zqxml::command_pages {

/// A script for bash that completes the program's commands, options and values.
///
/// Positionals are completed by their name: for CLASS and SUBSYSTEM the program is asked
/// (`--generate classes` and `--generate subsystems`, a name on each line), for everything else files are
/// offered. Options with a fixed set of values offer these, other options files. Needs bash alone.
std::string bashCompletion(const CLI::App& app);

}  // namespace zqxml::command_pages
