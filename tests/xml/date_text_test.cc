#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/log_capture.h>
#include <tests/support/time_zone.h>
#include <zqxml/xml/date_text.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

namespace zqxml {
namespace {

using testing::ElementsAre;

constexpr const char* kUtc = "UTC0";
constexpr const char* kEightHoursWest = "XYZ8";
/// Standard time five hours west of UTC, in summer four.
constexpr const char* kWestWithSummer = "EST5EDT,M3.2.0,M11.1.0";
constexpr std::int64_t k2020 = 1577836800;  // 2020-01-01 00:00:00 UTC
constexpr std::int64_t kUntouched = 0x5555555555555555;

struct DateReading {
  bool result;
  std::int64_t value = kUntouched;
  int error = 0;
};

DateReading readDate(const std::string& text, bool validate = false, int size = 8) {
  DateReading reading{};
  reading.result = readDateAnnotation(text, &reading.value, validate, &reading.error, size);
  return reading;
}

std::int64_t readTime(const std::string& text, int size = 8) {
  std::int64_t value = kUntouched;
  EXPECT_TRUE(readZQTimeAnnotation(text, &value, false, nullptr, size)) << text;
  return value;
}

std::string formatDate(int seconds, unsigned dateType = kDateTypeDateTime) {
  std::array<char, 512> out{};
  EXPECT_TRUE(formatDateAnnotation(seconds, dateType, out.data()));
  return out.data();
}

/// The seconds that processZQTime accepts, or -1.
std::int64_t acceptTime(const char* text) {
  std::uint32_t seconds = 0x55555555;
  return processZQTime(text, &seconds) ? std::int64_t{seconds} : -1;
}

std::int64_t acceptDate(const char* text, int dateType) {
  std::uint32_t seconds = 0x55555555;
  return processXDate(text, &seconds, dateType) ? std::int64_t{seconds} : -1;
}

TEST(DateText, TextTooShortForACalendarDateIsANumber) {
  EXPECT_EQ(readDate("2020-1-1").value, 2020);
}

TEST(DateText, CalendarDateIsLocalMidnightAndIntervalsCountDaysAndHours) {
  {
    const ScopedTimeZone zone(kUtc);
    EXPECT_EQ(readDate("2020-01-01").value, k2020);
  }
  {
    const ScopedTimeZone zone(kEightHoursWest);
    EXPECT_EQ(readDate("2020-01-01").value, k2020 + 8 * 3600);
  }
  EXPECT_EQ(readDate("1 dd").value, 86400);
  EXPECT_EQ(readDate("3 hh").value, 10800);
  EXPECT_EQ(readDate("12345").value, 12345);
}

TEST(DateText, KeepsASizeBeyondEightBytesTrueAndTheValueUntouched) {
  LogCapture capture;
  for (const int size : {9, -1}) {
    const DateReading reading = readDate("2020-01-01", true, size);
    EXPECT_TRUE(reading.result);
    EXPECT_EQ(reading.value, kUntouched);
  }
  EXPECT_THAT(
      capture.lines(),
      ElementsAre(CapturedLine{"readDateAnnotation", 0,
                               "Size of field [9] is more than size of time_t. So not setting date"},
                  CapturedLine{"readDateAnnotation", 0,
                               "Size of field [-1] is more than size of time_t. So not setting date"}));
}

TEST(DateText, KeepsTheMonthCountedFromZeroInTheLineOfABadMonth) {
  LogCapture capture;
  const DateReading reading = readDate("2020-13-01", true);
  EXPECT_FALSE(reading.result);
  EXPECT_EQ(reading.error, 2338);
  EXPECT_EQ(reading.value, kUntouched);
  EXPECT_THAT(capture.lines(), ElementsAre(CapturedLine{"readDateAnnotation", 0,
                                                        "Invalid month [12] for input [2020-13-01]"}));
}

TEST(DateText, KeepsMonthZeroValid) {
  const ScopedTimeZone zone(kUtc);
  const DateReading reading = readDate("2020-00-10", true);
  EXPECT_TRUE(reading.result);
  EXPECT_EQ(reading.value, k2020 - 22 * 86400);  // 2019-12-10
}

TEST(DateText, TimeTextHasAnyNumberOfPartsOfSixty) {
  EXPECT_EQ(readTime("2:00"), 120);
  EXPECT_EQ(readTime("1:00:00:00"), 216000);
  EXPECT_EQ(readTime(""), kUntouched);
}

TEST(DateText, StrictTimeEndsWithTheDayAndHasThreeParts) {
  EXPECT_EQ(acceptTime("24:00:00"), 86400);
  EXPECT_EQ(acceptTime("24:00:01"), -1);
  EXPECT_EQ(acceptTime("12:30"), -1);
}

TEST(DateText, EarlyTimesAreIntervals) {
  for (const char* name : {kUtc, kEightHoursWest, "ABC-9"}) {
    const ScopedTimeZone zone(name);
    EXPECT_EQ(formatDate(86400), "1 dd");
    EXPECT_EQ(formatDate(3600), "1 hh");
    EXPECT_EQ(formatDate(100), "100");
  }
}

// --- readDateAnnotation

TEST(ReadDateAnnotation, DateAndTimeAreReadInTheLocalZone) {
  {
    const ScopedTimeZone zone(kUtc);
    EXPECT_EQ(readDate("2020-01-01 12:34:56").value, k2020 + 45296);
  }
  const ScopedTimeZone zone(kWestWithSummer);
  EXPECT_EQ(readDate("2020-01-01 12:34:56").value, k2020 + 45296 + 5 * 3600);
  EXPECT_EQ(readDate("2020-07-01 00:00:00").value, 1593561600 + 4 * 3600);
}

TEST(ReadDateAnnotation, FieldOfFourBytesTakesTheLowFour) {
  const ScopedTimeZone zone(kUtc);
  const std::int64_t above = kUntouched & ~std::int64_t{0xffffffff};
  EXPECT_EQ(readDate("2020-01-01", false, 4).value, above | k2020);
  EXPECT_EQ(readDate("4294967297", false, 4).value, above | 1);
  EXPECT_EQ(readDate("-1", false, 4).value, above | 0xffffffff);
}

TEST(ReadDateAnnotation, FieldOfAnyOtherSizeTakesSoManyBytes) {
  const ScopedTimeZone zone(kUtc);
  EXPECT_EQ(readDate("258", false, 1).value, (kUntouched & ~std::int64_t{0xff}) | 2);
  EXPECT_EQ(readDate("258", false, 0).value, kUntouched);
  EXPECT_EQ(readDate("-2", false, 8).value, -2);
  EXPECT_EQ(readDate("2020-01-01", false, 2).value, (kUntouched & ~std::int64_t{0xffff}) | (k2020 & 0xffff));
  EXPECT_EQ(readDate("2020-01-01", false, 6).value, (kUntouched & ~std::int64_t{0xffffffffffff}) | k2020);
}

TEST(ReadDateAnnotation, KeepsTheBlankBeforeAUnitDroppedByPosition) {
  EXPECT_EQ(readDate("12dd").value, 86400);
  EXPECT_EQ(readDate("dd").value, 0);
  EXPECT_EQ(readDate("5hh").value, 0);
  EXPECT_EQ(readDate("-2 hh").value, -7200);
  EXPECT_EQ(readDate("4 hh 1 dd").value, 4 * 86400);
}

TEST(ReadDateAnnotation, ProductsOfIntervalsWrapAt32Bits) {
  EXPECT_EQ(readDate("49710 dd").value, static_cast<std::int32_t>(49710u * 86400u));
  EXPECT_EQ(readDate("99999999999 hh").value, static_cast<std::int32_t>(2147483647u * 3600u));
}

TEST(ReadDateAnnotation, NumberTextWithoutNumberIsZero) {
  EXPECT_EQ(readDate("").value, 0);
  EXPECT_EQ(readDate("soon").value, 0);
  EXPECT_EQ(readDate("  17 or so").value, 17);
  EXPECT_EQ(readDate("99999999999999999999").value, std::numeric_limits<std::int64_t>::max());
}

TEST(ReadDateAnnotation, TextIsACalendarDateOnlyByLengthAndTheDashAtFour) {
  EXPECT_EQ(readDate("20200-01-01").value, 20200);
  EXPECT_EQ(readDate("2020/01/01").value, 2020);
}

struct RangeCase {
  const char* text;
  int error;
  const char* line;
};

TEST(ReadDateAnnotation, EachPartOutOfRangeHasItsErrorAndLine) {
  const RangeCase cases[] = {
      {"2020-13-01", 2338, "Invalid month [12] for input [2020-13-01]"},
      {"2020--1-01", 2338, "Invalid month [-2] for input [2020--1-01]"},
      {"2020-01-32", 2337, "Invalid day [32] for input [2020-01-32]"},
      {"2020-01--1", 2337, "Invalid day [-1] for input [2020-01--1]"},
      {"2020-01-01 25:00:00", 2339, "Invalid hour [25] for input [2020-01-01 25:00:00]"},
      {"2020-01-01 00:61:00", 2340, "Invalid minutes [61] for input [2020-01-01 00:61:00]"},
      {"2020-01-01 00:00:61", 2341, "Invalid seconds [61] for input [2020-01-01 00:00:61]"},
      {"2020-99-99 99:99:99", 2338, "Invalid month [98] for input [2020-99-99 99:99:99]"},
      {"2020-01-99 99:99:99", 2337, "Invalid day [99] for input [2020-01-99 99:99:99]"},
      {"2020-01-01 99:99:99", 2339, "Invalid hour [99] for input [2020-01-01 99:99:99]"},
      {"2020-01-01 00:99:99", 2340, "Invalid minutes [99] for input [2020-01-01 00:99:99]"},
  };
  for (const RangeCase& each : cases) {
    LogCapture capture;
    const DateReading reading = readDate(each.text, true);
    EXPECT_FALSE(reading.result) << each.text;
    EXPECT_EQ(reading.error, each.error) << each.text;
    EXPECT_EQ(reading.value, kUntouched) << each.text;
    EXPECT_THAT(capture.lines(), ElementsAre(CapturedLine{"readDateAnnotation", 0, each.line}));
  }
}

TEST(ReadDateAnnotation, KeepsTheEndsOfTheRangesValid) {
  const ScopedTimeZone zone(kUtc);
  EXPECT_TRUE(readDate("2020-12-31 24:60:60", true).result);
  EXPECT_TRUE(readDate("2020-00-00 00:00:00", true).result);
  EXPECT_EQ(readDate("2020-02-31", true).value, readDate("2020-03-02").value);
}

TEST(ReadDateAnnotation, WithoutValidationNoRangeIsTested) {
  const ScopedTimeZone zone(kUtc);
  LogCapture capture;
  const DateReading reading = readDate("2020-13-01 25:00:00");
  EXPECT_TRUE(reading.result);
  EXPECT_EQ(reading.value, readDate("2021-01-02 01:00:00").value);
  EXPECT_EQ(reading.error, 0);
  EXPECT_TRUE(capture.empty());
}

TEST(ReadDateAnnotation, PartsThatAreMissingAreZeroWithoutValidation) {
  const ScopedTimeZone zone(kUtc);
  EXPECT_EQ(readDate("2020-06-05 07:").value, readDate("2020-06-05 07:00:00").value);
  EXPECT_EQ(readDate("2020-06-xx").value, readDate("2020-05-31").value);
}

TEST(ReadDateAnnotation, TextThatIsNoDateAndTimeIsRefusedWithALine) {
  LogCapture capture;
  const DateReading reading = readDate("2020-01-01 12:34", true);
  EXPECT_FALSE(reading.result);
  EXPECT_EQ(reading.error, 2345);
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{"readDateAnnotation", 0,
                                       "Invalid date time format for input [2020-01-01 12:34]"}));
}

TEST(ReadDateAnnotation, KeepsTheRefusalOfATextThatIsNoDateSilent) {
  LogCapture capture(25);
  const DateReading reading = readDate("2020-xx-01", true);
  EXPECT_FALSE(reading.result);
  EXPECT_EQ(reading.error, 2345);
  EXPECT_TRUE(capture.empty());
}

TEST(ReadDateAnnotation, ErrorNumberMayBeUnwanted) {
  std::int64_t value = kUntouched;
  LogCapture capture;
  for (const char* text : {"2020-13-01", "2020-xx-01", "2020-01-01 12:34", "2020-01-01 25:00:00"})
    EXPECT_FALSE(readDateAnnotation(text, &value, true, nullptr, 8)) << text;
  EXPECT_EQ(value, kUntouched);
}

TEST(ReadDateAnnotation, EachReadingIsTraced) {
  const ScopedTimeZone zone(kUtc);
  LogCapture capture(15);
  readDate("12345", false, 4);
  readDate("12345", false, 8);
  readDate("2020-01-01", false, 8);
  readDate("2020-01-01", false, 4);
  EXPECT_THAT(
      capture.lines(),
      ElementsAre(
          CapturedLine{
              "readDateAnnotation", 15,
              "Input to method : [12345], size of field : [4], data being returned after conversion to "
              "time_t : [12345]"},
          CapturedLine{"readDateAnnotation", 15,
                       "Input to method : [12345], size of field : [8], data being returned : [12345]"},
          CapturedLine{
              "readDateAnnotation", 10,
              "Input to method : [2020-01-01], size of field : [8], data being returned : [1577836800]"},
          CapturedLine{
              "readDateAnnotation", 15,
              "Input to method : [2020-01-01], size of field : [4], data being returned after conversion to "
              "unsigned int : [1577836800]"}));
}

// --- readZQTimeAnnotation

TEST(ReadZQTimeAnnotation, TextWithoutColonIsANumber) {
  EXPECT_EQ(readTime("90"), 90);
  EXPECT_EQ(readTime("-1"), -1);
  EXPECT_EQ(readTime("4294967297"), 4294967297);
  EXPECT_EQ(readTime("4294967297", 4), (kUntouched & ~std::int64_t{0xffffffff}) | 1);
}

TEST(ReadZQTimeAnnotation, PartsAreJoinedInBaseSixtyWithoutRange) {
  EXPECT_EQ(readTime("1:30"), 90);
  EXPECT_EQ(readTime("1:02:03"), 3723);
  EXPECT_EQ(readTime("99:99"), 6039);
  EXPECT_EQ(readTime("-1:30"), -30);
  EXPECT_EQ(readTime(":5"), 5);
  EXPECT_EQ(readTime("5:"), 300);
  EXPECT_EQ(readTime(":"), 0);
  EXPECT_EQ(readTime("1:30", 4), (kUntouched & ~std::int64_t{0xffffffff}) | 90);
}

TEST(ReadZQTimeAnnotation, TotalWrapsAt32Bits) {
  EXPECT_EQ(readTime("2147483647:1"), static_cast<std::int32_t>(2147483647u * 60u + 1u));
}

TEST(ReadZQTimeAnnotation, NoMoreThanEightBytesAreWrittenAndNoErrorIsGiven) {
  std::int64_t value[2] = {kUntouched, kUntouched};
  int error = 7;
  EXPECT_TRUE(readZQTimeAnnotation("99:99:99", value, true, &error, 16));
  EXPECT_EQ(value[0], 99 * 3600 + 99 * 60 + 99);
  EXPECT_EQ(value[1], kUntouched);
  EXPECT_EQ(error, 7);
  EXPECT_TRUE(readZQTimeAnnotation("5", value + 1, true, &error, -1));
  EXPECT_EQ(value[1], kUntouched);
}

// --- formatDateAnnotation

TEST(FormatDateAnnotation, DateTypeChoosesTheForm) {
  const ScopedTimeZone zone(kUtc);
  EXPECT_EQ(formatDate(1577882096, 2), "2020-01-01");
  for (const unsigned dateType : {0u, 1u, 3u, 7u})
    EXPECT_EQ(formatDate(1577882096, dateType), "2020-01-01 12:34:56");
  EXPECT_EQ(formatDate(2147483647), "2038-01-19 03:14:07");
}

TEST(FormatDateAnnotation, DateIsThatOfTheLocalZone) {
  const ScopedTimeZone zone(kWestWithSummer);
  EXPECT_EQ(formatDate(1577836800), "2019-12-31 19:00:00");
  EXPECT_EQ(formatDate(1593561600), "2020-06-30 20:00:00");
}

TEST(FormatDateAnnotation, IntervalsAreWholeDaysElseWholeHoursElseSeconds) {
  const ScopedTimeZone zone(kUtc);
  EXPECT_EQ(formatDate(30 * 86400), "30 dd");
  EXPECT_EQ(formatDate(90000), "25 hh");
  EXPECT_EQ(formatDate(90), "90");
  EXPECT_EQ(formatDate(0), "0");
  EXPECT_EQ(formatDate(-86400), "-86400");
}

TEST(FormatDateAnnotation, IntervalsEndWhereTheLocalYear1991Begins) {
  constexpr int k1991 = 662688000;  // 1991-01-01 00:00:00 UTC
  {
    const ScopedTimeZone zone(kUtc);
    EXPECT_EQ(formatDate(k1991 - 1), "662687999");
    EXPECT_EQ(formatDate(k1991), "1991-01-01 00:00:00");
  }
  const ScopedTimeZone zone(kEightHoursWest);
  EXPECT_EQ(formatDate(k1991), "7670 dd");
  EXPECT_EQ(formatDate(k1991 + 8 * 3600), "1991-01-01 00:00:00");
}

TEST(FormatDateAnnotation, NullBufferIsRefused) {
  EXPECT_FALSE(formatDateAnnotation(86400, 1, nullptr));
}

// --- formatTimeOfDay

TEST(FormatTimeOfDay, TimesOfOneDayHaveTwoDigitsEach) {
  char out[9] = "untouchd";
  EXPECT_TRUE(formatTimeOfDay(0, out));
  EXPECT_STREQ(out, "00:00:00");
  EXPECT_TRUE(formatTimeOfDay(3723, out));
  EXPECT_STREQ(out, "01:02:03");
  EXPECT_TRUE(formatTimeOfDay(86400, out));
  EXPECT_STREQ(out, "24:00:00");
}

TEST(FormatTimeOfDay, OtherTimesAreRefused) {
  char out[9] = "untouchd";
  for (const std::int32_t seconds : {-1, 86401, std::numeric_limits<std::int32_t>::min()})
    EXPECT_FALSE(formatTimeOfDay(seconds, out)) << seconds;
  EXPECT_STREQ(out, "untouchd");
}

// --- processZQTime

TEST(ProcessZQTime, PartsCountHoursMinutesAndSeconds) {
  EXPECT_EQ(acceptTime("01:02:03"), 3723);
  EXPECT_EQ(acceptTime("0:0:0"), 0);
  EXPECT_EQ(acceptTime("23:59:59"), 86399);
  EXPECT_EQ(acceptTime(" \f\n\r\t\v1:2:3 \f\n\r\t\v"), 3723);
  EXPECT_EQ(acceptTime("::"), 0);
}

TEST(ProcessZQTime, NullTextIsLogged) {
  LogCapture capture;
  EXPECT_EQ(acceptTime(nullptr), -1);
  EXPECT_THAT(capture.lines(), ElementsAre(CapturedLine{"processZQTime", 0, "[Received NULL string]"}));
}

TEST(ProcessZQTime, AnyOtherNumberOfColonsIsLogged) {
  LogCapture capture;
  for (const char* text : {"", "90", "1:30", "1:2:3:4"}) EXPECT_EQ(acceptTime(text), -1) << text;
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{"processZQTime", 0, "Error in Time representation : []"},
                          CapturedLine{"processZQTime", 0, "Error in Time representation : [90]"},
                          CapturedLine{"processZQTime", 0, "Error in Time representation : [1:30]"},
                          CapturedLine{"processZQTime", 0, "Error in Time representation : [1:2:3:4]"}));
}

TEST(ProcessZQTime, PartsOutOfRangeAreLogged) {
  for (const char* text :
       {"25:00:00", "24:00:01", "24:01:00", "23:60:00", "23:59:60", "-1:00:00", "1:-1:0", "1:0:-1"}) {
    LogCapture capture;
    EXPECT_EQ(acceptTime(text), -1) << text;
    EXPECT_THAT(capture.lines(), ElementsAre(CapturedLine{
                                     "processZQTime", 0,
                                     "Error in 24 hour time representation : [" + std::string(text) + "]"}));
  }
}

// --- processXDate

TEST(ProcessXDate, DateIsLocalMidnight) {
  {
    const ScopedTimeZone zone(kUtc);
    EXPECT_EQ(acceptDate("2020-01-01", 2), k2020);
    EXPECT_EQ(acceptDate("2020-1-1", 2), k2020);
    EXPECT_EQ(acceptDate("2020-01-01 12:34:56", 2), k2020);
  }
  const ScopedTimeZone zone(kEightHoursWest);
  EXPECT_EQ(acceptDate("2020-01-01", 2), k2020 + 8 * 3600);
}

TEST(ProcessXDate, DateAndTimeNeedsAllSixParts) {
  const ScopedTimeZone zone(kUtc);
  EXPECT_EQ(acceptDate("2020-01-01 12:34:56", 1), k2020 + 45296);
  EXPECT_EQ(acceptDate("2020-01-01 12:34", 1), -1);
  EXPECT_EQ(acceptDate("2020-01-01", 1), -1);
}

TEST(ProcessXDate, OnlyTheLowHalfOfALateTimeIsGiven) {
  const ScopedTimeZone zone(kUtc);
  EXPECT_EQ(acceptDate("2106-02-07 06:28:17", 1), 1);
  EXPECT_EQ(acceptDate("1969-12-31 23:59:59", 1), 0xffffffff);
}

TEST(ProcessXDate, KeepsTheEndsOfTheRangesValid) {
  const ScopedTimeZone zone(kUtc);
  EXPECT_NE(acceptDate("2020-12-31 24:60:60", 1), -1);
  EXPECT_NE(acceptDate("2020-00-00", 2), -1);
}

TEST(ProcessXDate, OtherTextsAreRefusedWithoutAWord) {
  LogCapture capture(25);
  for (const char* text : {"2020-13-01", "2020--1-01", "2020-01-32", "2020-01--1", "86400", "1 dd", ""})
    EXPECT_EQ(acceptDate(text, 2), -1) << text;
  for (const char* text : {"2020-13-01 00:00:00", "2020-01-32 00:00:00", "2020-01-01 25:00:00",
                           "2020-01-01 00:61:00", "2020-01-01 00:00:61"}) {
    EXPECT_EQ(acceptDate(text, 1), -1) << text;
  }
  EXPECT_EQ(acceptDate(nullptr, 1), -1);
  EXPECT_TRUE(capture.empty());
}

TEST(ProcessXDate, OtherDateTypesAreRefused) {
  for (const int dateType : {-1, 0, 3})
    EXPECT_EQ(acceptDate("2020-01-01 12:34:56", dateType), -1) << dateType;
}

// --- The round trip of an interval

TEST(DateText, KeepsAnIntervalOfOneDayComingBackAsOne) {
  const ScopedTimeZone zone(kUtc);
  const std::string text = formatDate(86400);
  EXPECT_EQ(text, "1 dd");
  // The strict reader refuses the text, and what its caller then reads is the number at its start.
  EXPECT_EQ(acceptDate(text.c_str(), 1), -1);
  EXPECT_EQ(readDate(text).value, 86400);
}

}  // namespace
}  // namespace zqxml
