// What the binary writer logs, and the sizes that it leaves in the objects.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/binary/binary_forms.h>
#include <tests/support/log_capture.h>
#include <tests/support/open_message.h>
#include <zqxml/catalogue/generated/Demo.h>

#include <cstdint>
#include <map>

namespace zqxml {
namespace {

using Demo::EveryType;
using testing::IsEmpty;

TEST(BinaryWriterTest, TracesSizeAndFieldsAtLevel15) {
  EveryType message;
  message.setIntField(1);
  message.setStringField("text");
  LogCapture capture(15);
  serialized(message);
  EXPECT_THAT(capture.lines(),
              testing::ElementsAre(
                  CapturedLine{"BinarySerializer::serialize", 15, "Required buffer size is 22"},
                  CapturedLine{"BinarySerializer::serializeBinaryRecursive", 15,
                               "Writing field [EveryType]:[intField] at buffer position : [8]"},
                  CapturedLine{"BinarySerializer::serializeBinaryRecursive", 15,
                               "Writing field [EveryType]:[stringField] at buffer position : [13]"}));
}

TEST(BinaryWriterTest, TracesNoSelfRecord) {
  OpenMessage message = newMessage("Demo_SelfPair");
  MessageAccess::mark(message, 2);
  LogCapture capture(15);
  serialized(message);
  EXPECT_THAT(capture.lines(), testing::ElementsAre(CapturedLine{"BinarySerializer::serialize", 15,
                                                                 "Required buffer size is 8"}));
}

TEST(BinaryWriterTest, TracesNothingAtLevel14) {
  EveryType message;
  message.setIntField(1);
  LogCapture capture(14);
  serialized(message);
  EXPECT_THAT(capture.lines(), IsEmpty());
}

TEST(BinaryWriterTest, SizesAreCachedInEveryObject) {
  EveryType message;
  message.setIntField(1);
  message.mutableObjectField().setNumber(2);
  message.addToListObjectField().setText("ab");
  auto& map = collectionOf<std::map<std::int64_t, XNMessageBase>>(message, "mapInt64ObjectField");
  map.emplace(1, Demo::EveryChild());
  setInteger(map.at(1), "number", 1000);
  const unsigned size = BinarySerializerTestAccess::bodySize(message);
  EXPECT_EQ(message.GetCachedSize(), size);
  EXPECT_EQ(serialized(message).size(), 8u + size);
  EXPECT_EQ(ownedBy<XNMessageBase>(message, "objectField")->GetCachedSize(), 5u);
  EXPECT_EQ(message.mutableListObjectFieldVector()[0].GetCachedSize(), 7u);
  EXPECT_EQ(map.at(1).GetCachedSize(), 6u);
}

}  // namespace
}  // namespace zqxml
