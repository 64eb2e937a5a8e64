// OncePerProcess: an event that counts only the first time in a process.
#pragma once

#include <atomic>

namespace zqxml {

class OncePerProcess {
 public:
  /// True for the first caller in the process, false for all others. Any thread.
  bool first() noexcept { return !happened_.exchange(true, std::memory_order_relaxed); }
  /// The event has not happened yet; for tests.
  void reset() noexcept { happened_.store(false, std::memory_order_relaxed); }

 private:
  std::atomic<bool> happened_{false};
};

/// The error lines of pstring::getPlainPassword and pstring::getV8Password.
extern OncePerProcess plainPasswordFailure;
extern OncePerProcess v8PasswordFailure;

}  // namespace zqxml
