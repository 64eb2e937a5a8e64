#pragma once

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

namespace zqxml {

/// The process's time zone during its life, in POSIX form ("UTC0", "XYZ8" is eight hours west of it); what
/// was set before comes back at the end. One at a time, and no other thread may look at the time meanwhile.
class ScopedTimeZone {
 public:
  explicit ScopedTimeZone(const char* zone) {
    if (const char* before = std::getenv("TZ")) before_ = before;
    set(zone);
  }
  ~ScopedTimeZone() { set(before_.has_value() ? before_->c_str() : nullptr); }
  ScopedTimeZone(const ScopedTimeZone&) = delete;
  ScopedTimeZone& operator=(const ScopedTimeZone&) = delete;

 private:
  static void set(const char* zone) {
    if (zone == nullptr) {
      unsetenv("TZ");
    } else {
      setenv("TZ", zone, 1);
    }
    tzset();
  }

  std::optional<std::string> before_;
};

}  // namespace zqxml
