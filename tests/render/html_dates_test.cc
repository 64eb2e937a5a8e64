// Dates in an outline.
#include <gmock/gmock.h>
#include <tests/render/rendering.h>
#include <tests/support/time_zone.h>

#include <limits>

namespace zqxml {
namespace {

TEST(HTMLRenderContext, DateOfTwoDaysIsAnInterval) {
  const ScopedTimeZone zone("UTC0");
  OpenMessage message = newMessage("Demo_Dated");
  setInteger(message, "dateInt", 172800);
  EXPECT_EQ(outlineOf(message), "Dated:" + item("dateInt", "2 day(s)") + "</div>");
}

struct DateForm {
  const char* field;
  std::int64_t value;
  const char* text;
};

class HTMLDates : public testing::TestWithParam<DateForm> {};

TEST_P(HTMLDates, AreWrittenAsPeopleWriteThem) {
  const ScopedTimeZone zone("UTC0");
  OpenMessage message = newMessage("Demo_Dated");
  setInteger(message, GetParam().field, GetParam().value);
  EXPECT_EQ(outlineOf(message), "Dated:" + item(GetParam().field, GetParam().text) + "</div>");
}

INSTANTIATE_TEST_SUITE_P(
    Forms, HTMLDates,
    testing::Values(DateForm{"dateInt", 86400, "1 day(s)"}, DateForm{"dateInt", 7200, "2 hour(s)"},
                    DateForm{"dateInt", 3600, "1 hour(s)"}, DateForm{"dateInt", 90, "90"},
                    DateForm{"dateInt", 1, "1"}, DateForm{"dateInt", -5, "4294967291"},
                    DateForm{"dateInt", -86400, "4294880896"}, DateForm{"dateInt", 0, "0"},
                    DateForm{"dateTime64", 0, "0"}, DateForm{"dateInt", 662687999, "662687999"},
                    DateForm{"dateInt", 662688000, "1991-01-01 00:00:00"},
                    DateForm{"dateInt", 1577934245, "2020-01-02 03:04:05"},
                    DateForm{"dayInt", 1577934245, "2020-01-02"},
                    DateForm{"dateUint", 4102444800, "2100-01-01 00:00:00"},
                    DateForm{"dayUlong", 4102444800, "2100-01-01"},
                    DateForm{"dateLong", 1577934245, "2020-01-02 03:04:05"},
                    DateForm{"dateLonglong", 253402300799, "9999-12-31 23:59:59"},
                    DateForm{"dateTime32", 1577934245, "2020-01-02 03:04:05"},
                    DateForm{"dayTime64", 253402300799, "9999-12-31"}, DateForm{"timeInt", 3600, "3600"}));

TEST(HTMLRenderContext, DateOfAnyOtherTypeNumberHasTheTime) {
  const ScopedTimeZone zone("UTC0");
  OpenMessage message = newMessage("Demo_Forced");
  setInteger(message, "oddDate", 1577934245);
  EXPECT_EQ(outlineOf(message), "Forced:" + item("oddDate", "2020-01-02 03:04:05") + "</div>");
}

TEST(HTMLRenderContext, DateWithoutLocalTimeIsPassedOver) {
  OpenMessage message = newMessage("Demo_Dated");
  setInteger(message, "dateLonglong", std::numeric_limits<std::int64_t>::max());
  setInteger(message, "dateTime64", std::numeric_limits<std::int64_t>::min());
  setInteger(message, "timeInt", 1);
  EXPECT_EQ(outlineOf(message), "Dated:" + item("timeInt", "1") + "</div>");
}

TEST(HTMLRenderContext, LastYearsWithALocalTimeAreWrittenWhole) {
  const ScopedTimeZone zone("UTC0");
  OpenMessage message = newMessage("Demo_Dated");
  setInteger(message, "dateTime64", 67768036191676799);
  setInteger(message, "dayTime64", 67767976233532800);
  EXPECT_EQ(outlineOf(message), "Dated:" + item("dateTime64", "2147485547-12-31 23:59:59") +
                                    item("dayTime64", "2147483648-01-01") + "</div>");
}

TEST(HTMLRenderContext, DateOnATextIsNoDate) {
  OpenMessage message = newMessage("Demo_Forced");
  setText(message, "dateText", "next week");
  EXPECT_EQ(outlineOf(message), "Forced:" + item("dateText", "next week") + "</div>");
}

}  // namespace
}  // namespace zqxml
