#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace zqxml {

/// How a program ended and what it wrote.
struct ProgramRun {
  /// Exit status; 128 and the number of the signal when one ended it; -1 when it did not start.
  int status = -1;
  std::string out;
  std::string err;
  long peakMemory = 0;  ///< KiB that it had in memory at most

  friend std::ostream& operator<<(std::ostream& stream, const ProgramRun& run) {
    return stream << "exit status " << run.status << "\nout: " << run.out.substr(0, 1000)
                  << "\nerr: " << run.err.substr(0, 1000);
  }
};

/// How a program is run.
struct ProgramSetup {
  std::string input;                     ///< its standard input
  std::string folder;                    ///< its working folder; the present one when empty
  std::vector<std::string> environment;  ///< "NAME=value", on top of the present ones; "NAME" takes one away
  bool fullOutput = false;               ///< standard output is /dev/full: every write fails
  bool errorTerminal = false;            ///< standard error is a terminal; what arrives there is in `err`
};

/// Runs a program (its path, then its arguments) to its end, or for at most two minutes: then it is killed.
ProgramRun runProgram(const std::vector<std::string>& command, const ProgramSetup& setup = {});

}  // namespace zqxml
