#pragma once

#include <mutex>

namespace zqxml {

/// A lock that the thread which holds it may take again.
class ZqCriticalSection {
 public:
  /// Held by nobody.
  ZqCriticalSection() = default;
  ZqCriticalSection(const ZqCriticalSection&) = delete;
  ZqCriticalSection& operator=(const ZqCriticalSection&) = delete;

  /// Waits until the section is this thread's. Each enter, and each tryEnter that succeeds, wants one leave.
  void enter() { mutex_.lock(); }
  /// Takes the section if no other thread has it; false otherwise, at once.
  bool tryEnter() { return mutex_.try_lock(); }
  /// Gives it back. REQUIRES: this thread has it.
  void leave() { mutex_.unlock(); }

 private:
  std::recursive_mutex mutex_;
};

/// Holds a critical section from construction to destruction.
class [[nodiscard]] ZqCriticalSectionLock {
 public:
  /// @{
  /// Enters, which may wait, and leaves. The section is borrowed.
  explicit ZqCriticalSectionLock(ZqCriticalSection& section) : section_(section) { section_.enter(); }
  ~ZqCriticalSectionLock() { section_.leave(); }
  /// @}
  ZqCriticalSectionLock(const ZqCriticalSectionLock&) = delete;
  ZqCriticalSectionLock& operator=(const ZqCriticalSectionLock&) = delete;

 private:
  ZqCriticalSection& section_;
};

}  // namespace zqxml
