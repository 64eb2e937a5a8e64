#pragma once

#include <zqxml/platform/export.h>

#include <chrono>
#include <cstdint>
#include <memory>

namespace zqxml {

/// A bounded pool of threads for short jobs. It takes a job only when a thread is free for it, and never
/// queues.
///
/// Threads are started when they are needed and end after a time without work; signals are not delivered to
/// them. A child process made by `fork` finds the pool empty and ready: jobs that ran or waited in the parent
/// stay the parent's. A pool that is never destroyed does not hinder the end of the process. Nothing throws,
/// what a job throws included. Any thread may call any operation at any time but the constructor and
/// destructor.
class ZQXML_EXPORT ZqThreadPool {
 public:
  /// The answer of doWork when it did not take the job.
  static constexpr unsigned kRefused = 0xFFFFFFFF;

  /// Not prepared yet: it refuses every job until initThreadPool.
  ZqThreadPool();
  /// Waits for the jobs that run. Not to be called from a job.
  virtual ~ZqThreadPool();
  ZqThreadPool(const ZqThreadPool&) = delete;
  ZqThreadPool& operator=(const ZqThreadPool&) = delete;

  /// Prepares the pool: the name of its threads (of which the system shows 15 characters), the seconds after
  /// which a thread without work ends, and the most threads there are. The second and the third number are
  /// not used. False when there is to be no thread, or the pool was prepared before.
  bool initThreadPool(const char* name, unsigned long idleSeconds, unsigned long reserved,
                      unsigned reservedThreads, unsigned maximumThreads) noexcept;

  /// How many jobs the pool would take now; 0 before it is prepared.
  std::uint32_t getCurrentAvailableThreadCount() const noexcept;

  /// Runs `job(argument)` on a thread of the pool. 0, or kRefused when no thread is free or can be started;
  /// the job is not run then.
  unsigned doWork(unsigned (*job)(void*), void* argument) noexcept;

  /// Waits till no job runs, at most so long. False when one still does.
  bool waitUntilIdle(std::chrono::milliseconds longest) noexcept;

 private:
  struct Impl;
  friend struct ZqThreadPoolRegistry;
  std::shared_ptr<Impl> impl_;
};

}  // namespace zqxml
