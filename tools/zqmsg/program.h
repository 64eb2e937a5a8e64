#pragma once

namespace zqxml::tool {

/// The whole program: reads the command line, runs the command, reports a failure; gives the exit status.
int runProgram(int argc, const char* const* argv);

}  // namespace zqxml::tool
