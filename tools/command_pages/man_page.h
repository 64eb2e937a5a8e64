#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace zqxml::command_pages {

/// The manual page of a program and all its commands, section 1, as roff for man(7). Everything in it is what
/// the program's own help says: descriptions, options, and the footers with examples as they stand.
std::string manPage(const CLI::App& app, const std::string& version);

}  // namespace zqxml::command_pages
