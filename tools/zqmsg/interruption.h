#pragma once

#include <string>

namespace zqxml::tool {

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
