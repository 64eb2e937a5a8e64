#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/log_capture.h>
#include <tests/support/time_zone.h>
#include <tests/xml/date_readings.h>
#include <zqxml/catalogue/generated/App.h>
#include <zqxml/xml/date_text.h>
#include <zqxml/xml/xml_serializer.h>

#include <array>
#include <cstdint>
#include <limits>
#include <string>

namespace zqxml {
namespace {

using testing::ElementsAre;

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

TEST(ProcessZQTime, PartIsTheNumberThatItBeginsWith) {
  EXPECT_EQ(acceptTime("1h: 2m:+3s"), 3723);
  EXPECT_EQ(acceptTime("x:y:z"), 0);
}

TEST(ProcessZQTime, ResultMayBeUnwanted) {
  LogCapture capture;
  EXPECT_FALSE(processZQTime("01:02:03", nullptr));
  EXPECT_TRUE(capture.empty());
  EXPECT_FALSE(processZQTime("25:00:00", nullptr));
  EXPECT_TRUE(capture.has("processZQTime", 0, "Error in 24 hour time representation : [25:00:00]"));
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

TEST(ProcessXDate, NullResultIsRefused) {
  EXPECT_FALSE(processXDate("2020-01-01", nullptr, 2));
  EXPECT_FALSE(processXDate("2020-01-01 12:34:56", nullptr, 1));
}

TEST(ProcessXDate, OtherDateTypesAreRefused) {
  for (const int dateType : {-1, 0, 3})
    EXPECT_EQ(acceptDate("2020-01-01 12:34:56", dateType), -1) << dateType;
}

// --- The round trip of an interval

TEST(DateText, KeepsAnIntervalOfOneDayComingBackAsOne) {
  const ScopedTimeZone zone(kUtc);
  EncodingFlags flags;
  flags.readable = true;
  App::AnnotationSample written;
  written.setDateTime(86400);
  std::string xml;
  ASSERT_EQ(XMLSerializer(flags, nullptr).serialize(written, xml, true), XN_MSG_OK);
  EXPECT_THAT(xml, testing::HasSubstr("dateTime=\"1 dd\""));
  App::AnnotationSample read;
  ASSERT_EQ(XMLSerializer().unserialize(read, xml, false), XN_MSG_OK);
  EXPECT_EQ(read.getDateTime(), 1);
}

}  // namespace
}  // namespace zqxml
