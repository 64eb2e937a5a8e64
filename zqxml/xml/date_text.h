/// @file
/// Text forms of dates and times, which are stored as plain integers: seconds since the epoch, or seconds in
/// a day.
///
/// A field is a date or a time by its annotation (annotation_record.h). Conversions use the process's local
/// time zone (TZ), so one text can mean two numbers on two machines. Free functions without state; nothing
/// throws. Two pairs of readers exist on purpose: the exported read...Annotation are lenient, the process...
/// pair that the XML reader uses is strict.
#pragma once

#include <zqxml/platform/export.h>

#include <cstdint>
#include <string>

namespace zqxml {

/// Error numbers of readDateAnnotation.
enum DateTextError : int {
  kDateDayOutOfRange = 2337,
  kDateMonthOutOfRange = 2338,
  kDateHourOutOfRange = 2339,
  kDateMinutesOutOfRange = 2340,
  kDateSecondsOutOfRange = 2341,
  kDateFormatMismatch = 2345,
};

/// Annotation::DateType of a date with a time, as the functions below take it.
inline constexpr unsigned kDateTypeDateTime = 1;
/// Annotation::DateType of a date alone.
inline constexpr unsigned kDateTypeDate = 2;

/// Reads a date text into `size` bytes (0 to 8) at `out`, machine byte order: "2020-01-31", "2020-01-31
/// 12:00:00", an interval "N dd" (days) or "N hh" (hours), or a plain number; the interval's product wraps at
/// 32 bits. A calendar text has more than 9 characters and a '-' at index 4; anything else is a number text.
///
/// `validate` tests form and ranges; then a failure is false, `*error` (when not null) gets a DateTextError
/// and an error-level line tells the part. Without it nothing is tested, and parts that the text does not
/// have are zero. QUIRK: a size beyond 0 to 8 logs and gives true, `out` untouched: callers skip the field.
/// QUIRK: a text with '-' but no ':' that is no date sets `*error` without a line.
ZQXML_EXPORT bool readDateAnnotation(std::string text, void* out, bool validate, int* error, int size);

/// Reads a time text into `size` bytes at `out`: a plain number of seconds, or parts joined by ':', each
/// counting 60 of the next ("1:30" is 90). Any number of parts, no range; "" writes nothing, and no size
/// writes more than 8 bytes. `validate` and `error` are not used. True but for an exception, which is logged.
ZQXML_EXPORT bool readZQTimeAnnotation(std::string text, void* out, bool validate, int* error, int size);

/// Writes the readable form of a date value into `out`, at least 512 bytes which the caller clears: before
/// 1991 (local time) an interval "N dd", "N hh" or the number; else the date, with the time unless `dateType`
/// is 2. False for a null `out` and for a value without local time.
ZQXML_EXPORT bool formatDateAnnotation(int seconds, unsigned dateType, char* out);

/// Writes "HH:MM:SS" into `out`, at least 9 bytes, for 0 to 86400 seconds ("24:00:00"); false, `out`
/// untouched and nothing logged, for any other value.
ZQXML_EXPORT bool formatTimeOfDay(std::int32_t seconds, char* out);

/// The XML reader's time: three parts joined by ':' that give 0:00:00 to 24:00:00; surrounding white space is
/// ignored, and each part is the number that it begins with, 0 without one. False, and an error-level line,
/// for anything else. False without a line, after the same tests, for a null `seconds`.
ZQXML_EXPORT bool processZQTime(const char* text, std::uint32_t* seconds);

/// The XML reader's date: `dateType` 1 takes "YYYY-MM-DD HH:MM:SS", 2 "YYYY-MM-DD"; the low 32 bits of the
/// local time go to `*out`; what follows the date is not looked at. False, without a line, for anything else
/// and for a null text or `out`.
ZQXML_EXPORT bool processXDate(const char* text, std::uint32_t* out, int dateType);

}  // namespace zqxml
