#pragma once

#include <mutex>

namespace zqxml {

/// A lock that the thread which holds it may take again.
class ZqCriticalSection {
 public:
  ZqCriticalSection() = default;
  ZqCriticalSection(const ZqCriticalSection&) = delete;
  ZqCriticalSection& operator=(const ZqCriticalSection&) = delete;

  void enter() { mutex_.lock(); }
  bool tryEnter() { return mutex_.try_lock(); }
  void leave() { mutex_.unlock(); }

 private:
  std::recursive_mutex mutex_;
};

/// Holds a critical section from construction to destruction.
class [[nodiscard]] ZqCriticalSectionLock {
 public:
  explicit ZqCriticalSectionLock(ZqCriticalSection& section) : section_(section) { section_.enter(); }
  ~ZqCriticalSectionLock() { section_.leave(); }
  ZqCriticalSectionLock(const ZqCriticalSectionLock&) = delete;
  ZqCriticalSectionLock& operator=(const ZqCriticalSectionLock&) = delete;

 private:
  ZqCriticalSection& section_;
};

}  // namespace zqxml
