// Where the binary form is written to: the buffer's own memory, that of the caller, and ranges that are too
// small.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/binary/binary_forms.h>
#include <tests/binary/oversized_message.h>
#include <tests/support/log_capture.h>
#include <zqxml/catalogue/generated/Demo.h>

#include <array>
#include <limits>
#include <string>

namespace zqxml {
namespace {

using Demo::EveryType;
using testing::IsEmpty;

TEST(BinaryWriterBufferTest, ExternalMemoryIsWrittenToAndKeepsItsDataSize) {
  EveryType message;
  message.setIntField(1);
  std::array<char, 32> block{};
  BinaryBuffer buffer(block.data(), block.size());
  EXPECT_EQ(BinarySerializer::serialize(message, buffer), 0u);
  EXPECT_EQ(buffer.getBuffer(), block.data());
  EXPECT_EQ(std::string(block.data(), 13), serialized(message));
  EXPECT_EQ(toHex(std::string_view(block.data() + 13, 1)), "00");
  buffer.setDataSize(13);
  EXPECT_EQ(BinarySerializer::serialize(message, buffer), 13u);
}

TEST(BinaryWriterBufferTest, ExternalMemoryOfExactlyTheSizeSuffices) {
  EveryType message;
  message.setIntField(1);
  std::array<char, 13> block{};
  BinaryBuffer buffer(block.data(), block.size());
  LogCapture capture;
  BinarySerializer::serialize(message, buffer);
  EXPECT_EQ(std::string(block.data(), block.size()), serialized(message));
  EXPECT_THAT(capture.lines(), IsEmpty());
}

TEST(BinaryWriterBufferTest, KeepsTheFunctionNameAsTheTextWhenExternalMemoryIsTooSmall) {
  EveryType message;
  message.setIntField(1);
  std::array<char, 12> block{};
  BinaryBuffer buffer(block.data(), block.size());
  buffer.setDataSize(12);
  LogCapture capture;
  EXPECT_EQ(BinarySerializer::serialize(message, buffer), 0u);
  EXPECT_THAT(capture.lines(), testing::ElementsAre(CapturedLine{"BinarySerializer::serialize", 0,
                                                                 "BinarySerializer::serialize"}));
  EXPECT_EQ(toHex(std::string_view(block.data(), 4)), "00 00 00 00");
}

TEST(BinaryWriterBufferTest, ExternalBufferWithoutMemoryIsTooSmall) {
  EveryType message;
  BinaryBuffer buffer(nullptr, 100);
  LogCapture capture;
  EXPECT_EQ(BinarySerializer::serialize(message, buffer), 0u);
  EXPECT_TRUE(capture.has("BinarySerializer::serialize", 0, "BinarySerializer::serialize"));
}

TEST(BinaryWriterBufferTest, BodyThatThirtyTwoBitsCannotTellFails) {
  OversizedMessage oversized;
  ASSERT_GT(oversized.size(), std::numeric_limits<std::uint32_t>::max());
  LogCapture capture;
  BinaryBuffer buffer;
  EXPECT_EQ(BinarySerializer::serialize(oversized.message(), buffer, 1), 0u);
  EXPECT_EQ(capture.lines().size(), 1u);
  EXPECT_TRUE(
      capture.hasPart("BinarySerializer::serialize", 0, "Unable to create a buffer of required size : ["));
  EXPECT_FALSE(buffer.isSet());
}

TEST(BinaryWriterBufferTest, BodyThatThirtyTwoBitsCannotTellLeavesExternalMemoryAlone) {
  OversizedMessage oversized;
  std::array<char, 16> block{};
  BinaryBuffer buffer(block.data(), block.size());
  LogCapture capture;
  EXPECT_EQ(BinarySerializer::serialize(oversized.message(), buffer, 1), 0u);
  EXPECT_TRUE(
      capture.hasPart("BinarySerializer::serialize", 0, "Unable to create a buffer of required size : ["));
  EXPECT_EQ(buffer.getBuffer(), block.data());
  EXPECT_EQ(std::string(block.data(), block.size()), std::string(16, '\0'));
}

TEST(BinaryWriterBufferTest, SmallStreamDropsTheTail) {
  EveryType message;
  message.setIntField(1);
  message.setStringField("text");
  std::string range(8, '\xee');
  BinaryStream stream(range.data(), range.size());
  BinarySerializerTestAccess::writeBody(message, stream);
  EXPECT_EQ(stream.position(), 5u + 4 + 1 + 4);
  EXPECT_EQ(range, std::string(Wire().key("intField", 6).raw("\x02").raw("\xee\xee\xee")));
}

TEST(BinaryWriterBufferTest, SmallStreamDropsTextsThatAreMadeInPlace) {
  EveryType message;
  message.setWstringField(u"wide");
  message.setBstringField("bytes");
  std::string range(8, '\xee');
  BinaryStream stream(range.data(), range.size());
  BinarySerializerTestAccess::writeBody(message, stream);
  EXPECT_EQ(stream.position(), 5u + 4 + 5 + 8);
  EXPECT_EQ(range, std::string(Wire().key("wstringField", 2).varint(4).raw("\xee\xee\xee")));
}

}  // namespace
}  // namespace zqxml
