#pragma once

#include "tools/zqmsg/console.h"
#include "tools/zqmsg/failure.h"
#include "tools/zqmsg/library_log.h"

namespace zqxml::tool {

/// What every command works with: one run of the program.
struct Session {
  Console console;
  LibraryLog log{console};
  ExitStatus status = kDone;  ///< what a command that did not fail answers
};

}  // namespace zqxml::tool
