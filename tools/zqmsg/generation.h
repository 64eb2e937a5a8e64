#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace zqxml::tool {

/// What `zqmsg --generate WHAT` prints: `man` and `bash-completion` are made of the commands of `app`;
/// `classes` and `subsystems` are the names of the catalogue that completion offers, one on each line. Throws
/// Failure for anything else.
std::string generated(const CLI::App& app, const std::string& what);

}  // namespace zqxml::tool
