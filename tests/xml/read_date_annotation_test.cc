#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/log_capture.h>
#include <tests/support/time_zone.h>
#include <tests/xml/date_readings.h>
#include <zqxml/xml/date_text.h>

#include <cstdint>
#include <limits>
#include <string>

namespace zqxml {
namespace {

using testing::ElementsAre;

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
  EXPECT_EQ(readDate("2020-01-1").value, 2020) << "nine characters";
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

}  // namespace
}  // namespace zqxml
