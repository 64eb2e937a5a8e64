#pragma once

#include <signal.h>

#include <string>

namespace zqxml::tool {

/// Holds SIGINT, SIGTERM and SIGHUP back from construction to destruction, so that a file can be made and
/// remembered in one.
class InterruptionsHeld {
 public:
  InterruptionsHeld();
  ~InterruptionsHeld();
  InterruptionsHeld(const InterruptionsHeld&) = delete;
  InterruptionsHeld& operator=(const InterruptionsHeld&) = delete;

 private:
  sigset_t before_;
};

/// A file that is removed when the user interrupts the program (SIGINT, SIGTERM, SIGHUP): the unfinished
/// output beside its target. One at a time.
class RemovedOnInterruption {
 public:
  RemovedOnInterruption() = default;
  ~RemovedOnInterruption() { forget(); }
  RemovedOnInterruption(const RemovedOnInterruption&) = delete;
  RemovedOnInterruption& operator=(const RemovedOnInterruption&) = delete;

  /// An empty path is none.
  void remember(const std::string& path);
  void forget();
};

}  // namespace zqxml::tool
