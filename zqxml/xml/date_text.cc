#include <zqxml/logging/xml_log_context.h>
#include <zqxml/platform/number_text.h>
#include <zqxml/xml/date_text.h>
#include <zqxml/xml/internal/date_forms.h>

#include <algorithm>
#include <cinttypes>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <locale>
#include <optional>
#include <sstream>
#include <string_view>

namespace zqxml {
namespace {

constexpr int kSecondsPerDay = 86400;
constexpr int kSecondsPerHour = 3600;

/// Copies the low `size` bytes of `value`, at most all eight.
void store(std::int64_t value, void* out, int size) {
  if (out != nullptr && size > 0)
    std::memcpy(out, &value, std::min(static_cast<std::size_t>(size), sizeof value));
}

/// The product as 32-bit arithmetic gives it: it wraps.
std::int32_t wrappingProduct(std::int32_t count, std::int32_t unit) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(count) * static_cast<std::uint32_t>(unit));
}

/// The number at the start of the text, 0 without one.
std::int64_t streamNumber(const std::string& text) {
  std::istringstream stream(text);
  stream.imbue(std::locale::classic());
  std::int64_t value = 0;
  stream >> value;
  return value;
}

/// A calendar text taken apart: the parts as written, those that were not there 0.
struct CalendarParts {
  int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
  bool complete = false;  ///< every part of the form was there
};

CalendarParts scanDate(const char* text) {
  CalendarParts parts;
  parts.complete = std::sscanf(text, "%04d-%02d-%02d", &parts.year, &parts.month, &parts.day) == 3;
  return parts;
}

CalendarParts scanDateTime(const char* text) {
  CalendarParts parts;
  parts.complete = std::sscanf(text, "%04d-%02d-%02d %02d:%02d:%02d", &parts.year, &parts.month, &parts.day,
                               &parts.hour, &parts.minute, &parts.second) == 6;
  return parts;
}

std::time_t localTime(const CalendarParts& parts) {
  std::tm broken{};
  broken.tm_year = parts.year - 1900;
  broken.tm_mon = parts.month - 1;
  broken.tm_mday = parts.day;
  broken.tm_hour = parts.hour;
  broken.tm_min = parts.minute;
  broken.tm_sec = parts.second;
  broken.tm_isdst = -1;
  return std::mktime(&broken);
}

/// A part out of its range: the error number, and the line's text with the value that it prints.
struct RangeError {
  DateTextError number;
  const char* format;
  int value;
};

/// The first part out of range. QUIRK: 0 is a month and a day, 24 an hour, and no month's length is looked
/// at.
std::optional<RangeError> findRangeError(const CalendarParts& parts) {
  struct Range {
    int value, max;
    RangeError error;
  };
  const Range ranges[] = {
      // QUIRK: the line shows the month counted from 0, one less than the text has.
      {parts.month, 12, {kDateMonthOutOfRange, "Invalid month [%d] for input [%s]", parts.month - 1}},
      {parts.day, 31, {kDateDayOutOfRange, "Invalid day [%d] for input [%s]", parts.day}},
      {parts.hour, 24, {kDateHourOutOfRange, "Invalid hour [%d] for input [%s]", parts.hour}},
      {parts.minute, 60, {kDateMinutesOutOfRange, "Invalid minutes [%d] for input [%s]", parts.minute}},
      {parts.second, 60, {kDateSecondsOutOfRange, "Invalid seconds [%d] for input [%s]", parts.second}},
  };
  for (const Range& range : ranges)
    if (range.value < 0 || range.value > range.max) return range.error;
  return std::nullopt;
}

void setError(int* error, DateTextError number) {
  if (error != nullptr) *error = number;
}

/// False when `validate` refuses the parts.
bool validateCalendar(const CalendarParts& parts, bool hasTime, const std::string& text, int* error) {
  if (!parts.complete) {
    setError(error, kDateFormatMismatch);
    // QUIRK: a text without a time is refused without a line.
    if (hasTime) logError("readDateAnnotation", "Invalid date time format for input [%s]", text);
    return false;
  }
  if (const std::optional<RangeError> found = findRangeError(parts)) {
    setError(error, found->number);
    logError("readDateAnnotation", found->format, found->value, text);
    return false;
  }
  return true;
}

bool readCalendarText(const std::string& text, void* out, bool validate, int* error, int size) {
  const bool hasTime = text.find(':') != text.npos;
  const CalendarParts parts = hasTime ? scanDateTime(text.c_str()) : scanDate(text.c_str());
  if (validate && !validateCalendar(parts, hasTime, text, error)) return false;
  const std::int64_t time = localTime(parts);
  if (size == 8) {
    store(time, out, size);
    logDebug("readDateAnnotation", 10,
             "Input to method : [%s], size of field : [%d], data being returned : [%d]", text, size, time);
  } else {
    const auto narrowed = static_cast<std::uint32_t>(time);
    store(narrowed, out, size);
    logDebug(
        "readDateAnnotation", 15,
        "Input to method : [%s], size of field : [%d], data being returned after conversion to unsigned int : [%u]",
        text, size, narrowed);
  }
  return true;
}

/// "N dd" and "N hh" count days and hours. QUIRK: the blank is dropped by position, not by looking.
std::int64_t intervalOrNumber(const std::string& text) {
  const auto countBefore = [&text](std::size_t unit) {
    return parseInt32(std::string_view(text).substr(0, unit == 0 ? 0 : unit - 1));
  };
  if (const std::size_t days = text.find("dd"); days != text.npos)
    return wrappingProduct(countBefore(days), kSecondsPerDay);
  if (const std::size_t hours = text.find("hh"); hours != text.npos)
    return wrappingProduct(countBefore(hours), kSecondsPerHour);
  return streamNumber(text);
}

bool readNumberText(const std::string& text, void* out, int size) {
  const std::int64_t value = intervalOrNumber(text);
  store(value, out, size);
  if (size == 4) {
    logDebug(
        "readDateAnnotation", 15,
        "Input to method : [%s], size of field : [%d], data being returned after conversion to time_t : [%u]",
        text, size, static_cast<std::uint32_t>(value));
  } else {
    logDebug("readDateAnnotation", 15,
             "Input to method : [%s], size of field : [%d], data being returned : [%llu]", text, size, value);
  }
  return true;
}

/// Parts joined by ':', each counting 60 of the next, in 32 bits.
std::int32_t sumOfParts(std::string_view text) {
  std::uint32_t total = 0;
  for (;;) {
    const std::size_t colon = text.find(':');
    total = total * 60 + static_cast<std::uint32_t>(parseInt32(text.substr(0, colon)));
    if (colon == text.npos) return static_cast<std::int32_t>(total);
    text.remove_prefix(colon + 1);
  }
}

}  // namespace

bool readDateAnnotation(std::string text, void* out, bool validate, int* error, int size) {
  if (size < 0 || size > 8) {
    logError("readDateAnnotation", "Size of field [%d] is more than size of time_t. So not setting date",
             size);
    return true;
  }
  const bool isCalendar = text.size() > 9 && text[4] == '-';
  try {
    return isCalendar ? readCalendarText(text, out, validate, error, size) : readNumberText(text, out, size);
  } catch (...) {
    if (isCalendar) {
      logError("readDateAnnotation", "Exception while reading formatted date for string [%s]", text);
    } else {
      logError("readDateAnnotation", "Exception while reading int(date) from string using stream");
    }
    return false;
  }
}

bool readZQTimeAnnotation(std::string text, void* out, bool /*validate*/, int* /*error*/, int size) {
  if (text.empty()) return true;
  try {
    store(text.find(':') == text.npos ? streamNumber(text) : sumOfParts(text), out, size);
    return true;
  } catch (...) {
    logError("readZQTimeAnnotation", "Exception while reading int(time) from string using stream");
    return false;
  }
}

bool formatDate(std::int64_t seconds, unsigned dateType, const DateForms& forms,
                std::array<char, kDateRoom>& out) {
  const std::time_t time = seconds;
  std::tm local{};
  if (localtime_r(&time, &local) == nullptr) return false;
  const auto print = [&out](const char* format, auto... values) {
    std::snprintf(out.data(), out.size(), format, values...);
  };
  if (local.tm_year < 91) {
    // So early a time is an interval that the field holds in place of a date.
    if (seconds >= kSecondsPerDay && seconds % kSecondsPerDay == 0) {
      print(forms.days, static_cast<int>(seconds / kSecondsPerDay));
    } else if (seconds >= kSecondsPerHour && seconds % kSecondsPerHour == 0) {
      print(forms.hours, static_cast<int>(seconds / kSecondsPerHour));
    } else {
      print(forms.seconds, static_cast<int>(seconds));
    }
    return true;
  }
  // The last years that the system knows do not fit in an int.
  const std::int64_t year = std::int64_t{local.tm_year} + 1900;
  if (dateType == kDateTypeDate) {
    print("%04" PRId64 "-%02d-%02d", year, local.tm_mon + 1, local.tm_mday);
  } else {
    print("%04" PRId64 "-%02d-%02d %02d:%02d:%02d", year, local.tm_mon + 1, local.tm_mday, local.tm_hour,
          local.tm_min, local.tm_sec);
  }
  return true;
}

bool formatDateAnnotation(int seconds, unsigned dateType, char* out) {
  constexpr DateForms kForms{"%d dd", "%d hh", "%d"};
  std::array<char, kDateRoom> form;
  if (out == nullptr || !formatDate(seconds, dateType, kForms, form)) return false;
  std::strcpy(out, form.data());
  return true;
}

bool formatTimeOfDay(std::int32_t seconds, char* out) {
  if (seconds < 0 || seconds > kSecondsPerDay) return false;
  std::snprintf(out, sizeof "HH:MM:SS", "%02d:%02d:%02d", seconds / 3600, seconds % 3600 / 60, seconds % 60);
  return true;
}

bool processZQTime(const char* text, std::uint32_t* seconds) {
  if (text == nullptr) {
    logError("processZQTime", "[%s]", "Received NULL string");
    return false;
  }
  const std::string_view trimmed = trimSpace(std::string_view(text));
  if (std::count(trimmed.begin(), trimmed.end(), ':') != 2) {
    logError("processZQTime", "Error in Time representation : [%s]", trimmed);
    return false;
  }
  const std::size_t first = trimmed.find(':');
  const std::size_t second = trimmed.find(':', first + 1);
  const std::int32_t hour = parseInt32(trimmed.substr(0, first));
  const std::int32_t minute = parseInt32(trimmed.substr(first + 1, second - first - 1));
  const std::int32_t rest = parseInt32(trimmed.substr(second + 1));
  const bool inDay = hour >= 0 && hour < 24 && minute >= 0 && minute < 60 && rest >= 0 && rest < 60;
  const bool endOfDay = hour == 24 && minute == 0 && rest == 0;
  if (!inDay && !endOfDay) {
    logError("processZQTime", "Error in 24 hour time representation : [%s]", trimmed);
    return false;
  }
  if (seconds == nullptr) return false;
  *seconds = static_cast<std::uint32_t>(hour * 3600 + minute * 60 + rest);
  return true;
}

bool processXDate(const char* text, std::uint32_t* out, int dateType) {
  const bool hasTime = dateType == static_cast<int>(kDateTypeDateTime);
  if (text == nullptr || out == nullptr || (!hasTime && dateType != static_cast<int>(kDateTypeDate)))
    return false;
  const CalendarParts parts = hasTime ? scanDateTime(text) : scanDate(text);
  if (!parts.complete || findRangeError(parts).has_value()) return false;
  *out = static_cast<std::uint32_t>(localTime(parts));
  return true;
}

}  // namespace zqxml
