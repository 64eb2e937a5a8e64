// The walk over a message, in both modes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/every_type.h>
#include <tests/support/log_capture.h>
#include <tests/support/message_dump.h>
#include <tests/traverse/recording_handler.h>

#include <stdexcept>

namespace zqxml {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

TEST(XmlTraverse, ClassWithoutFieldsCallsNoVisit) {
  OpenMessage empty = newMessage("Demo_Empty");
  EXPECT_THAT(eventsOf(empty), ElementsAre("begin Empty", "finish Empty"));
  EXPECT_THAT(eventsOf(empty, RecordingHandler(true)), ElementsAre("begin Empty", "finish Empty"));
}

TEST(XmlTraverse, UnsetObjectFieldIsVisitedAndNotEntered) {
  OpenMessage sample = newMessage("Demo_Sample");
  EXPECT_THAT(eventsOf(sample), ElementsAre("begin Sample", "unset id", "unset title", "unset mode",
                                            "unset tags", "unset sizes", "unset child", "finish Sample"));
}

}  // namespace
}  // namespace zqxml
