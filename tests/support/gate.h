#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace zqxml {

/// A job for a thread pool that runs until it is let go.
class Gate {
 public:
  /// `gate` is a Gate, which must outlive the job.
  static unsigned job(void* gate) {
    static_cast<Gate*>(gate)->pass();
    return 0;
  }
  /// Lets go whoever waits or comes.
  void open() {
    const std::lock_guard<std::mutex> lock(mutex_);
    open_ = true;
    change_.notify_all();
  }
  /// Waits till so many jobs have begun; false when they do not in time.
  bool waitForArrivals(int count) {
    std::unique_lock<std::mutex> lock(mutex_);
    return change_.wait_for(lock, std::chrono::seconds(20), [&] { return arrived_ >= count; });
  }

 private:
  void pass() {
    std::unique_lock<std::mutex> lock(mutex_);
    ++arrived_;
    change_.notify_all();
    change_.wait(lock, [&] { return open_; });
  }

  std::mutex mutex_;
  std::condition_variable change_;
  bool open_ = false;
  int arrived_ = 0;
};

}  // namespace zqxml
