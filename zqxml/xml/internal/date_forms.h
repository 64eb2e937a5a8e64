// The readable form of a date, with the words of whoever writes it. Not installed.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace zqxml {

/// printf formats, each with one int, of an interval: a count of days, of hours, and the number of seconds.
struct DateForms {
  const char* days;
  const char* hours;
  const char* seconds;
};

/// Room for any form.
inline constexpr std::size_t kDateRoom = 512;

/// Writes the form of a date value: a time before 1991 (local time) is an interval, in whole days or hours
/// where it is one; else the date, with the time unless `dateType` is 2. False, and nothing is written, for a
/// value without local time.
bool formatDate(std::int64_t seconds, unsigned dateType, const DateForms& forms,
                std::array<char, kDateRoom>& out);

}  // namespace zqxml
