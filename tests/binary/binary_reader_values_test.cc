// Values, lists and objects out of the binary form.
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

// --- Texts.

TEST(BinaryReaderValuesTest, LengthBeyondTheEndFailsWithTheTypesName) {
  struct Case {
    const char* field;
    const char* kind;
    bool collection;
  };
  for (const Case& one : std::vector<Case>{{"stringField", "string", false},
                                           {"wstringField", "wstring", false},
                                           {"bstringField", "bstring", false},
                                           {"pstringField", "pstring", false},
                                           {"listStringField", "list<string>", true},
                                           {"listWstringField", "list<wstring>", true},
                                           {"listBstringField", "list<bstring>", true}}) {
    Wire body;
    if (one.collection) body.marker(1);
    body.key(one.field, 2).varint(4).raw("abc");
    EveryType message;
    LogCapture capture;
    EXPECT_EQ(readInto(message, everyType(body)), -1);
    const std::size_t size = 8 + body.bytes().size();
    EXPECT_THAT(
        capture.lines(),
        ElementsAre(CapturedLine{kReader, 0,
                                 std::string("Error constructing ") + one.kind + " field [" + one.field +
                                     "]. Specified string size [4] causes a buffer overrun. Buffer size : [" +
                                     std::to_string(size) + "]. CurrentPosition : [" +
                                     std::to_string(size - 3) + "]"},
                    CapturedLine{kEntry, 0, kFailedEveryType}));
  }
}

TEST(BinaryReaderValuesTest, StringsAndPasswordsKeepANul) {
  EveryType message;
  const std::string_view text("a\0b", 3);
  const std::string body = Wire().key("stringField", 2).text(text).key("wstringField", 2).text(text);
  ASSERT_EQ(readInto(message, everyType(body)), 0);
  EXPECT_EQ(message.getStringField(), text);
  EXPECT_EQ(message.getWstringField(), std::u16string_view(u"a\0b", 3));
  ASSERT_EQ(readInto(message, everyType(Wire().key("pstringField", 2).text(text), 1)), 0);
  EXPECT_EQ(message.getPstringField().str(), text);
}

TEST(BinaryReaderValuesTest, KeepsTextsInListsCutAtTheirFirstNul) {
  const std::string_view text("a\0b", 3);
  const auto list = [&](const char* name) {
    return std::string(Wire().marker(2).key(name, 2).text(text).key(name, 2).text("cc"));
  };
  EveryType message;
  ASSERT_EQ(
      readInto(message,
               everyType(list("listStringField") + list("listWstringField") + list("listBstringField"), 1)),
      0);
  EXPECT_THAT(message.getListStringField(), ElementsAre("a", "cc"));
  EXPECT_THAT(message.getListWstringField(), ElementsAre(u"a", u"cc"));
  EXPECT_THAT(message.getListBstringField(), ElementsAre(bstring("a"), bstring("cc")));
}

TEST(BinaryReaderValuesTest, IllFormedUtf8BecomesReplacementCharacters) {
  EveryType message;
  ASSERT_EQ(readInto(message, everyType(Wire()
                                            .key("wstringField", 2)
                                            .text("a\xff"
                                                  "b"))),
            0);
  EXPECT_EQ(message.getWstringField(), u"a\uFFFDb");
}

// --- Lists.

TEST(BinaryReaderValuesTest, ListOfTextsThatEndsBeforeItsNextKeyFails) {
  // Two elements of a byte each would fit; the first is longer.
  EveryType message;
  LogCapture capture;
  const std::string bytes = everyType(Wire().marker(2).key("listStringField", 2).text("abcde"));
  EXPECT_EQ(readInto(message, bytes), -1);
  const std::string size = std::to_string(bytes.size());
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{kReader, 0,
                                       "Buffer ends before its content does. Buffer size : [" + size +
                                           "]. CurrentPosition : [" + size + "]"},
                          CapturedLine{kEntry, 0, kFailedEveryType}));
  EXPECT_THAT(message.getListStringField(), ElementsAre("abcde")) << "what came stays";
}

TEST(BinaryReaderValuesTest, KeepsTheByteCountOfAPackedListUnused) {
  EveryType message;
  const std::string body = Wire().marker(2).key("listIntField", 2).varint(100).varint(2).varint(4);
  ASSERT_EQ(readInto(message, everyType(body)), 0);
  EXPECT_THAT(message.getListIntField(), ElementsAre(1, 2));
}

TEST(BinaryReaderValuesTest, KeepsTheCountOfAnEarlierCollection) {
  EveryType message;
  const std::string body = Wire()
                               .marker(2)
                               .key("listIntField", 2)
                               .varint(2)
                               .varint(2)
                               .varint(4)
                               .key("listUintField", 2)
                               .varint(2)
                               .varint(5)
                               .varint(6);
  ASSERT_EQ(readInto(message, everyType(body)), 0);
  EXPECT_THAT(message.getListUintField(), ElementsAre(5, 6));
}

TEST(BinaryReaderValuesTest, KeepsAListWithoutAMarkerEmpty) {
  EveryType message;
  ASSERT_EQ(readInto(message, everyType(Wire().key("listIntField", 2).varint(2))), 0);
  EXPECT_TRUE(message.isListIntFieldSet());
  EXPECT_THAT(message.getListIntField(), IsEmpty());
}

TEST(BinaryReaderValuesTest, KeepsTheRepeatedKeyOfAListUnlooked) {
  EveryType message;
  const std::string body = Wire().marker(2).key("listStringField", 2).text("a").fixed32(0xffffffff).text("b");
  ASSERT_EQ(readInto(message, everyType(body)), 0);
  EXPECT_THAT(message.getListStringField(), ElementsAre("a", "b"));
}

TEST(BinaryReaderValuesTest, KeepsALostTypeUlonglong) {
  EveryType source;
  source.setUlonglongField(5);
  source.setEnumField(Demo::EveryMode::ON);
  EveryType message;
  // The value's first byte is taken for a count, the seven others for the start of the next key.
  readInto(message, serialized(source));
  EXPECT_FALSE(message.isUlonglongFieldSet());
  EXPECT_FALSE(message.isEnumFieldSet());
}

TEST(BinaryReaderValuesTest, UlonglongUnderAKeyOfItsOwnIsRead) {
  EveryType message;
  ASSERT_EQ(readInto(message, everyType(Wire().key("ulonglongField", 1).fixed64(~std::uint64_t{0}))), 0);
  EXPECT_EQ(message.getUlonglongField(), ~std::uint64_t{0});
}

TEST(BinaryReaderValuesTest, KeepsTheCountOfAListUlonglongAsItsByteCount) {
  EveryType source;
  collectionOf<std::vector<std::uint64_t>>(source, "listUlonglongField") = {1};
  EveryType message;
  readInto(message, serialized(source));
  EXPECT_TRUE(hasBit(message, "listUlonglongField"));
  EXPECT_THAT(*ownedBy<std::vector<std::uint64_t>>(message, "listUlonglongField"), IsEmpty());
  // With a count left over by another collection as many values are read, from behind the first varint on.
  const std::string body = Wire()
                               .marker(1)
                               .key("listIntField", 2)
                               .varint(1)
                               .varint(2)
                               .key("listUlonglongField", 2)
                               .varint(1)
                               .fixed64(0x1122334455667788);
  ASSERT_EQ(readInto(message, everyType(body)), 0);
  EXPECT_THAT(*ownedBy<std::vector<std::uint64_t>>(message, "listUlonglongField"),
              ElementsAre(0x1122334455667788u));
}

TEST(BinaryReaderValuesTest, CountThatTheBytesCannotHoldIsRefusedBeforeAnythingIsAllocated) {
  const std::string tail(16, '\x01');
  for (const FieldDef& field : *XNMessageBase::GetClassDef(EveryType::kTagId)) {
    if (!kCollectionTypes.contains(field.getType()) || field.getType() == FDT_ULONGLONG) continue;
    Wire body;
    body.marker(0xffffffff).key(field.getName(), 2);
    if (kMapTypes.contains(field.getType())) {
      const auto encoding = [](FieldDataType type) { return fieldTypeFacts(type).encoding; };
      body.varint(0)
          .varint(encoding(FieldDef::getMapKeyType(field.getType())))
          .varint(encoding(FieldDef::getMapValueType(field.getType())));
    }
    body.raw(tail);
    EveryType message;
    LogCapture capture;
    EXPECT_EQ(readInto(message, everyType(body)), -1) << field.getName();
    EXPECT_TRUE(capture.hasPart(kReader, 0, "Buffer ends before its content does")) << field.getName();
    EXPECT_TRUE(capture.has(kEntry, 0, kFailedEveryType));
    EXPECT_EQ(message.getListIntField().capacity(), 0u);
  }
}

TEST(BinaryReaderValuesTest, FailedListKeepsTheElementsThatArrived) {
  EveryType message;
  std::string body = Wire().marker(3).key("listIntField", 2).varint(3).varint(2).varint(4).raw("\xff");
  EXPECT_EQ(readInto(message, everyType(body)), -1);
  EXPECT_THAT(message.getListIntField(), ElementsAre(1, 2));
  body = Wire().marker(2).key("listStringField", 2).text("a").key("listStringField", 2).varint(9);
  EXPECT_EQ(readInto(message, everyType(body)), -1);
  EXPECT_THAT(message.getListStringField(), ElementsAre("a"));
  body = Wire().marker(2).key("listObjectField", 2).varint(0).key("listObjectField", 2).varint(9);
  EXPECT_EQ(readInto(message, everyType(body)), -1);
  EXPECT_EQ(message.getListObjectField().size(), 1u);
}

// --- Objects.

TEST(BinaryReaderValuesTest, FailureInsideAnObjectNamesEachField) {
  EveryType message;
  LogCapture capture;
  const std::string body = Wire().key("objectField", 2).varint(6).key("text", 2).varint(9).raw("a");
  EXPECT_EQ(readInto(message, everyType(body)), -1);
  EXPECT_THAT(
      capture.lines(),
      ElementsAre(CapturedLine{kReader, 0,
                               "Error constructing string field [text]. Specified string size [9] causes a "
                               "buffer overrun. Buffer size : [19]. CurrentPosition : [18]"},
                  CapturedLine{kReader, 0, "Error unserializing on field [objectField]"},
                  CapturedLine{kEntry, 0, kFailedEveryType}));
  EXPECT_FALSE(message.isObjectFieldSet());
  EXPECT_EQ(ownedBy<XNMessageBase>(message, "objectField"), nullptr);
}

TEST(BinaryReaderValuesTest, BodyThatEndsBeyondTheBufferFails) {
  EveryType message;
  LogCapture capture;
  EXPECT_EQ(readInto(message, everyType(Wire().key("objectField", 2).varint(6).key("number", 6).varint(2))),
            -1);
  EXPECT_TRUE(capture.has(kReader, 0, "Error unserializing on field [objectField]"));
  EXPECT_EQ(readInto(message, everyType(Wire().marker(1).key("listObjectField", 2).varint(0xffffffff))), -1);
  EXPECT_TRUE(capture.has(kReader, 0, "Error unserializing on field [listObjectField]"));
}

TEST(BinaryReaderValuesTest, ObjectTakesTheBytesOfItsSizeAndNoMore) {
  EveryType message;
  const std::string body =
      Wire().key("objectField", 2).varint(5).key("number", 6).varint(2).key("intField", 6).varint(4);
  ASSERT_EQ(readInto(message, everyType(body)), 0);
  EXPECT_EQ(message.getObjectField()->getNumber(), 1);
  EXPECT_EQ(message.getIntField(), 2);
}

TEST(BinaryReaderValuesTest, KeepsTheSizeOfASubObjectInTheEnclosingOne) {
  EveryType message;
  const std::string body = Wire().key("objectField", 2).varint(5).key("number", 6).varint(2);
  ASSERT_EQ(readInto(message, everyType(body)), 0);
  EXPECT_EQ(message.GetCachedSize(), 5u);
  EXPECT_EQ(message.getObjectField()->GetCachedSize(), 0u);
  serialized(message);
  EXPECT_EQ(message.GetCachedSize(), 10u);
}

TEST(BinaryReaderValuesTest, ElementOfAListHasItsSizeItself) {
  EveryType message;
  const std::string body = Wire().marker(1).key("listObjectField", 2).varint(5).key("number", 6).varint(2);
  ASSERT_EQ(readInto(message, everyType(body)), 0);
  EXPECT_EQ(message.mutableListObjectFieldVector()[0].GetCachedSize(), 5u);
}

TEST(BinaryReaderValuesTest, KeepsDefaultsSetInListsAndMapsAndNotInASingleObject) {
  const std::string ref = refTo("Demo_Defaults");
  HandMadeClass handMade;
  handMade.field(FDT_OBJECT, "one", ref)
      .field(FDT_LIST_OBJECT, "list", ref)
      .field(FDT_MAP_INT64_OBJECT, "map", ref);
  OpenMessage message = handMade.message();
  const std::string body = Wire()
                               .key("one", 2)
                               .varint(0)
                               .marker(1)
                               .key("list", 2)
                               .varint(0)
                               .marker(1)
                               .key("map", 2)
                               .varint(11)
                               .varint(1)
                               .varint(2)
                               .fixed64(7)
                               .varint(0);
  ASSERT_EQ(readInto(message, withHeader(message.getTagID(), body)), 0);
  EXPECT_FALSE(hasBit(*ownedBy<XNMessageBase>(message, "one"), "stringField"));
  EXPECT_TRUE(hasBit(ownedBy<std::vector<XNMessageBase>>(message, "list")->at(0), "stringField"));
  EXPECT_TRUE(hasBit(ownedBy<std::map<std::int64_t, XNMessageBase>>(message, "map")->at(7), "stringField"));
}

TEST(BinaryReaderValuesTest, ObjectWhoseClassCannotBeHadFails) {
  HandMadeClass handMade;
  handMade.field(FDT_OBJECT, "one", std::string("\xff\0\0\1", 4));
  OpenMessage message = handMade.message();
  LogCapture capture;
  EXPECT_EQ(readInto(message, withHeader(message.getTagID(), Wire().key("one", 2).varint(0))), -1);
  EXPECT_TRUE(capture.has(kReader, 0, "Error instantiating member : [HandMade]::[one]"));
}

TEST(BinaryReaderValuesTest, ListOfAClassOfSubsystemZeroFails) {
  HandMadeClass handMade;
  handMade.field(FDT_LIST_OBJECT, "list", std::string("\0\0\0\1", 4));
  OpenMessage message = handMade.message();
  LogCapture capture;
  EXPECT_EQ(readInto(message, withHeader(message.getTagID(), Wire().marker(1).key("list", 2).varint(0))), -1);
  EXPECT_TRUE(capture.has(kReader, 0, "Error unserializing on field [list]"));
  EXPECT_THAT(*ownedBy<std::vector<XNMessageBase>>(message, "list"), IsEmpty());
}

}  // namespace
}  // namespace zqxml
