// How deep the readers of messages let objects nest.
#pragma once

#include <zqxml/platform/platform_info.h>

#include <atomic>

namespace zqxml {

/// Number "nMaxNesting" of section "EventManager", read at the first call and kept; 1,000 without it (or when
/// it is below 0), 0 for no limit. The root counts as the first level. Any thread.
class NestingLimit {
 public:
  static constexpr int kDefault = 1000;

  static int get() noexcept {
    const int known = value_.load(std::memory_order_relaxed);
    return known >= 0 ? known : read();
  }
  /// The next call of get() reads the setting again; for tests.
  static void forget() noexcept { value_.store(kUnknown, std::memory_order_relaxed); }

 private:
  static constexpr int kUnknown = -1;

  static int read() noexcept {
    int limit = kDefault;
    ZQPlatformInfo().getNumber("EventManager", "nMaxNesting", limit);
    if (limit < 0) limit = kDefault;
    value_.store(limit, std::memory_order_relaxed);
    return limit;
  }

  static inline std::atomic<int> value_{kUnknown};
};

}  // namespace zqxml
