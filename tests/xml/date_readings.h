#pragma once

#include <gtest/gtest.h>
#include <zqxml/xml/date_text.h>

#include <cstdint>
#include <string>

namespace zqxml {

inline constexpr const char* kUtc = "UTC0";
inline constexpr const char* kEightHoursWest = "XYZ8";
/// Standard time five hours west of UTC, in summer four.
inline constexpr const char* kWestWithSummer = "EST5EDT,M3.2.0,M11.1.0";
inline constexpr std::int64_t k2020 = 1577836800;  // 2020-01-01 00:00:00 UTC
inline constexpr std::int64_t kUntouched = 0x5555555555555555;

struct DateReading {
  bool result;
  std::int64_t value = kUntouched;
  int error = 0;
};

inline DateReading readDate(const std::string& text, bool validate = false, int size = 8) {
  DateReading reading{};
  reading.result = readDateAnnotation(text, &reading.value, validate, &reading.error, size);
  return reading;
}

inline std::int64_t readTime(const std::string& text, int size = 8) {
  std::int64_t value = kUntouched;
  EXPECT_TRUE(readZQTimeAnnotation(text, &value, false, nullptr, size)) << text;
  return value;
}

}  // namespace zqxml
