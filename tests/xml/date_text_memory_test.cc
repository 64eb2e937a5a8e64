// What the readers of dates and times do when memory runs out. In a program of its own: it replaces `operator
// new`.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/log_capture.h>
#include <tests/xml/failing_allocation.h>
#include <zqxml/xml/date_text.h>

#include <cstdint>
#include <string>
#include <utility>

namespace zqxml {
namespace {

using testing::ElementsAre;

/// A number whose text does not fit into a string itself.
constexpr char kLongNumber[] = "00000000000000000000000000000000000000000000000017";

TEST(DateTextMemory, NumberOfADateThatCannotBeReadIsRefusedWithALine) {
  std::string text = kLongNumber;
  std::int64_t value = 5;
  LogCapture capture;
  failNextAllocation();
  EXPECT_FALSE(readDateAnnotation(std::move(text), &value, false, nullptr, 8));
  EXPECT_EQ(value, 5);
  EXPECT_FALSE(allocationWillFail());
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{"readDateAnnotation", 0,
                                       "Exception while reading int(date) from string using stream"}));
}

TEST(DateTextMemory, NumberOfATimeThatCannotBeReadIsRefusedWithALine) {
  std::string text = kLongNumber;
  std::int64_t value = 5;
  LogCapture capture;
  failNextAllocation();
  EXPECT_FALSE(readZQTimeAnnotation(std::move(text), &value, false, nullptr, 8));
  EXPECT_EQ(value, 5);
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{"readZQTimeAnnotation", 0,
                                       "Exception while reading int(time) from string using stream"}));
}

TEST(DateTextMemory, SameTextIsReadOnceThereIsMemory) {
  std::int64_t value = 5;
  EXPECT_TRUE(readDateAnnotation(kLongNumber, &value, false, nullptr, 8));
  EXPECT_EQ(value, 17);
}

}  // namespace
}  // namespace zqxml
