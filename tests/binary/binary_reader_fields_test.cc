// Unknown fields, fields that are found, and traces of the binary reader.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/binary/binary_readings.h>
#include <tests/binary/hand_made_class.h>
#include <tests/support/log_capture.h>
#include <tests/support/open_message.h>
#include <zqxml/catalogue/generated/Demo.h>

#include <map>
#include <string>
#include <vector>

namespace zqxml {
namespace {

using Demo::EveryType;
using testing::ElementsAre;
using testing::IsEmpty;

// --- Unknown fields.

TEST(BinaryReaderFieldsTest, UnknownFieldsAreSkippedByTheirEncoding) {
  EveryType message;
  LogCapture capture;
  const std::string body = Wire()
                               .key("nobody", 0)
                               .varint(0xffffffff)
                               .key("nobody", 1)
                               .fixed64(1)
                               .key("nobody", 2)
                               .text("some bytes")
                               .key("nobody", 5)
                               .fixed32(1)
                               .key("nobody", 6)
                               .varint(300)
                               .key("intField", 6)
                               .varint(2);
  EXPECT_EQ(readInto(message, everyType(body)), 0);
  EXPECT_EQ(toHex(serializedBody(message)), toHex(Wire().key("intField", 6).varint(2).bytes()));
  EXPECT_THAT(capture.lines(), IsEmpty());
}

TEST(BinaryReaderFieldsTest, ClassWithoutFieldsSkipsAllOfThem) {
  HandMadeClass handMade;
  OpenMessage message = handMade.message();
  ASSERT_EQ(XNMessageBase::GetClassDef(&message)->getFields(), nullptr);
  LogCapture capture;
  EXPECT_EQ(readInto(message, withHeader(message.getTagID(), Wire().key("nobody", 6).varint(300))), 0);
  EXPECT_THAT(capture.lines(), IsEmpty());
}

TEST(BinaryReaderFieldsTest, OlderClassReadsWhatItKnows) {
  OpenMessage newer = newMessage("Demo_Newer");
  for (const char* name : {"first", "newInt", "newUint", "newLonglong", "last"}) setInteger(newer, name, 3);
  setText(newer, "newString", "x");
  setText(newer, "middle", "m");
  collectionOf<std::vector<std::int32_t>>(newer, "newList") = {1, 2, 3};
  collectionOf<std::vector<std::string>>(newer, "newStrings") = {"a", "b"};
  collectionOf<std::vector<XNMessageBase>>(newer, "newObjects").push_back(newMessage("Demo_NewerChild"));
  collectionOf<std::map<std::string, std::int64_t>>(newer, "newMap")["a"] = 1;
  collectionOf<std::vector<std::int32_t>>(newer, "numbers") = {7};
  OpenMessage older = newMessage("Demo_Older");
  LogCapture capture;
  ASSERT_EQ(readInto(older, withHeader(older.getTagID(), serializedBody(newer))), 0);
  EXPECT_EQ(slotOf(older, "first"), 3);
  EXPECT_EQ(textOf(older, "middle"), "m");
  EXPECT_THAT(*ownedBy<std::vector<std::int32_t>>(older, "numbers"), ElementsAre(7));
  EXPECT_EQ(slotOf(older, "last"), 3);
  EXPECT_THAT(capture.lines(), IsEmpty());
}

TEST(BinaryReaderFieldsTest, FieldWithoutHashDoesNotArrive) {
  OpenMessage source = newMessage("Demo_Hashless");
  const _ClassDef& record = *XNMessageBase::GetClassDef(&source);
  MessageAccess::wipeBitset(source);
  int hashless = 0;
  for (const FieldDef& field : record) {
    if (field.getType() != FDT_INT) continue;
    hashless += field.getFieldHashId() == 0 ? 1 : 0;
    MessageAccess::setInteger(source, field, 4);
  }
  ASSERT_GT(hashless, 0);
  const auto made = readNew(serialized(source));
  ASSERT_NE(made, nullptr);
  for (const FieldDef& field : record) {
    if (field.getType() != FDT_INT) continue;
    EXPECT_EQ(MessageAccess::isSet(*made, field.getMemNum()), field.getFieldHashId() != 0) << field.getName();
  }
}

TEST(BinaryReaderFieldsTest, KeyOfASelfRecordIsAnUnknownField) {
  OpenMessage message = newMessage("Demo_SelfPair");
  const std::string body = Wire().key("SelfPair", 2).text("passed over").key("number", 6).varint(2);
  EXPECT_EQ(readInto(message, withHeader(message.getTagID(), body)), 0);
  EXPECT_EQ(slotOf(message, "number"), 1);
  EXPECT_FALSE(MessageAccess::isSet(message, 2));
}

TEST(BinaryReaderFieldsTest, FieldsThatComeAgainHaveTheirLatestValue) {
  HandMadeClass handMade;
  handMade.field(FDT_INT, "first").field(FDT_INT, "last");
  OpenMessage message = handMade.message();
  Wire body;
  for (unsigned value : {2u, 4u, 6u}) body.key("last", 6).varint(value);
  for (unsigned value : {8u, 10u}) body.key("nobody", 6).varint(1).key("first", 6).varint(value);
  EXPECT_EQ(readInto(message, withHeader(message.getTagID(), body)), 0);
  EXPECT_EQ(slotOf(message, "last"), 3);
  EXPECT_EQ(slotOf(message, "first"), 5);
}

TEST(BinaryReaderFieldsTest, TypesWithoutAValueFormReadNothing) {
  for (FieldDataType type : {FDT_RESERVED_24, FDT_RESERVED_29, FDT_ENUM_VALUE, FDT_INT64}) {
    HandMadeClass handMade;
    handMade.field(type, "odd").field(FDT_INT, "after");
    OpenMessage message = handMade.message();
    const std::string body = Wire().key("odd", 7).key("after", 6).varint(2);
    EXPECT_EQ(readInto(message, withHeader(message.getTagID(), body)), 0);
    EXPECT_EQ(slotOf(message, "after"), 1) << +type;
    EXPECT_FALSE(hasBit(message, "odd"));
  }
}

// --- Traces.

TEST(BinaryReaderFieldsTest, TracesFieldsAndCountsAtLevel15) {
  EveryType message;
  const std::string body =
      Wire().key("nobody", 0).varint(1).marker(1).key("listIntField", 2).varint(1).varint(2);
  LogCapture capture(15);
  ASSERT_EQ(readInto(message, everyType(body)), 0);
  EXPECT_THAT(
      capture.lines(),
      ElementsAre(
          CapturedLine{kReader, 15, "Cached collection(list/map) size is : [1]"},
          CapturedLine{kReader, 15, "Identified  [EveryType] : [listIntField] at buffer position : [18]"}));
}

}  // namespace
}  // namespace zqxml
