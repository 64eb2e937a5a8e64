// What the binary form answers when there is no memory.
#include <gtest/gtest.h>
#include <tests/logging/counted_allocations.h>
#include <tests/support/log_capture.h>
#include <zqxml/binary/binary_buffer.h>
#include <zqxml/binary/binary_serializer.h>
#include <zqxml/catalogue/generated/App.h>

#include <string>

namespace zqxml {
namespace {

#ifndef ZQXML_ALLOCATOR_IS_TAKEN
TEST(BinaryMemory, BufferThatCannotBeMadeIsTold) {
  App::TestMessage2 message;
  message.setStrField(std::string(2000, 'x'));
  BinaryBuffer buffer;
  LogCapture capture;
  failAllocationAfter(0);  // the buffer's: counting its bytes takes no memory
  EXPECT_EQ(BinarySerializer::serialize(message, buffer), 0u);
  EXPECT_FALSE(cancelFailure());
  EXPECT_TRUE(
      capture.hasPart("BinarySerializer::serialize", 0, "Unable to create a buffer of required size : [20"));
  EXPECT_FALSE(buffer.isSet());
}
#endif

TEST(BinaryMemory, OneBlockHoldsTheWholeForm) {
  App::TestMessage2 message;
  message.setStrField(std::string(2000, 'x'));
  BinaryBuffer buffer;
  const std::size_t before = allocationsOfThisThread();
  EXPECT_GT(BinarySerializer::serialize(message, buffer), 2000u);
  EXPECT_EQ(allocationsOfThisThread() - before, 1u);
}

}  // namespace
}  // namespace zqxml
