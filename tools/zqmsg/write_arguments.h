#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "tools/zqmsg/codec.h"

namespace zqxml::tool {

/// The part of a command line that says how messages are written: --to and what belongs to its forms.
class WriteArguments {
 public:
  /// Adds the options to `command`, which keeps references to this object; gives the one of --to.
  CLI::Option& addTo(CLI::App& command);
  /// What was said. Throws Failure, a usage error of the command called `name`, for an option that has no
  /// effect on the form.
  WriteOptions options(const CLI::App& command, const std::string& name) const;

  std::string to;

 private:
  WriteOptions options_;
  int version_ = 2;
};

}  // namespace zqxml::tool
