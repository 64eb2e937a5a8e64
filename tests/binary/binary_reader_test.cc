// Messages out of the binary form.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/binary/binary_readings.h>
#include <tests/support/log_capture.h>
#include <tests/support/open_message.h>
#include <zqxml/catalogue/generated/Demo.h>
#include <zqxml/xml/xml_decoder.h>
#include <zqxml/xml/zq_xml_context_info.h>

#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace zqxml {
namespace {

using Demo::EveryType;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(BinaryReaderTest, ShortBufferHasNoMetadataInOneFormAndIsNotSetInTheOther) {
  for (std::size_t size : {1u, 4u, 7u}) {
    const std::string bytes = everyType("").substr(0, size);
    EveryType message;
    LogCapture capture;
    EXPECT_EQ(readInto(message, bytes), -1);
    EXPECT_EQ(readNew(bytes), nullptr);
    EXPECT_THAT(capture.lines(),
                ElementsAre(CapturedLine{kEntry, 0, "[Buffer does not contain necessary metadata]"},
                            CapturedLine{kEntry, 0, "[Buffer received for unserialization is not set]"}));
  }
}

TEST(BinaryReaderTest, HeaderAloneIsAnObjectWithoutSetFields) {
  EveryType message;
  LogCapture capture;
  EXPECT_EQ(readInto(message, everyType("")), 0);
  EXPECT_EQ(serializedBody(message), "");
  const auto made = readNew(everyType(""));
  ASSERT_NE(made, nullptr);
  EXPECT_EQ(made->getTagID(), EveryType::kTagId);
  EXPECT_EQ(serializedBody(*made), "");
  EXPECT_THAT(capture.lines(), IsEmpty());
}

TEST(BinaryReaderTest, LastBytesThatAreNoKeyAreLeftUnread) {
  const std::string record = Wire().key("intField", 6).varint(2);
  for (const char* rest : {"\xff", "\xff\xff", "\xff\xff\xff"}) {
    EveryType message;
    EXPECT_EQ(readInto(message, everyType(record + rest)), 0);
    EXPECT_EQ(message.getIntField(), 1);
    std::string body = record + rest;
    BinaryStream stream(body.data(), body.size());
    EXPECT_TRUE(BinarySerializerTestAccess::readBody(message, stream, body.size()));
    EXPECT_EQ(stream.position(), record.size());
  }
}

TEST(BinaryReaderTest, FieldsInReverseOrderAreFoundByTheSecondWalk) {
  EveryType message;
  const std::string body =
      Wire().key("time32Field", 6).varint(6).key("uintField", 0).varint(5).key("intField", 6).varint(2);
  EXPECT_EQ(readInto(message, everyType(body)), 0);
  EXPECT_EQ(message.getTime32Field(), 3);
  EXPECT_EQ(message.getUintField(), 5u);
  EXPECT_EQ(message.getIntField(), 1);
}

TEST(BinaryReaderTest, UnknownFieldWithoutAnEncodingTakesItsKeyAlone) {
  for (unsigned encoding : {3u, 4u, 7u}) {
    EveryType message;
    const std::string body = Wire().key("nobody", encoding).key("intField", 6).varint(2);
    EXPECT_EQ(readInto(message, everyType(body)), 0);
    EXPECT_EQ(message.getIntField(), 1) << encoding;
  }
}

TEST(BinaryReaderTest, UnknownBytesBeyondTheEndFailTheMessage) {
  EveryType message;
  LogCapture capture;
  EXPECT_EQ(readInto(message, everyType(Wire().key("nobody", 2).varint(4).raw("abc"))), -1);
  EXPECT_THAT(
      capture.lines(),
      ElementsAre(CapturedLine{kReader, 0,
                               "Error unserializing in binary mode. Specified string size [4] > buffer size "
                               "[16]. CurrentPosition : [13]"},
                  CapturedLine{kEntry, 0, kFailedEveryType}));
  EXPECT_EQ(readInto(message, everyType(Wire().key("nobody", 2).varint(3).raw("abc"))), 0);
}

TEST(BinaryReaderTest, LengthOrCountThatIsCutOffFailsTheMessage) {
  EveryType message;
  for (const std::string& body :
       {Wire().key("nobody", 2).raw("\x80").bytes(), Wire().fixed32(0x7f7f7f78).raw("\x80").bytes()}) {
    LogCapture capture;
    EXPECT_EQ(readInto(message, everyType(body)), -1);
    EXPECT_TRUE(capture.has(
        kReader, 0, "Buffer ends before its content does. Buffer size : [13]. CurrentPosition : [12]"));
  }
}

TEST(BinaryReaderTest, BodyThatEndsBeforeTheThirdByteOfAStreamHasNoKey) {
  std::string bytes(2, '\0');
  BinaryStream stream(bytes.data(), bytes.size());
  EveryType message;
  LogCapture capture;
  EXPECT_FALSE(BinarySerializerTestAccess::readBody(message, stream, bytes.size()));
  EXPECT_TRUE(capture.has(kReader, 0,
                          "Buffer ends before its content does. Buffer size : [2]. CurrentPosition : [0]"));
  EXPECT_EQ(stream.position(), 0u);
}

TEST(BinaryReaderTest, KeepsBinaryStringsCutAtVersion1AndRawWhenTheyDecodeToNothing) {
  EveryType message;
  const std::string withNul = Wire().key("bstringField", 2).text(std::string_view("ab\0cd", 5));
  ASSERT_EQ(readInto(message, everyType(withNul, 1)), 0);
  EXPECT_EQ(message.getBstringField().str(), "ab");
  for (const char* text : {"no base64", "====", "", "YQ="}) {
    ASSERT_EQ(readInto(message, everyType(Wire().key("bstringField", 2).text(text), 2)), 0);
    EXPECT_EQ(message.getBstringField().str(), text);
  }
  ASSERT_EQ(readInto(message, everyType(Wire().key("bstringField", 2).text("YQBi"), 2)), 0);
  EXPECT_EQ(message.getBstringField().str(), std::string("a\0b", 3));
  ASSERT_EQ(readInto(message, everyType(Wire().key("bstringField", 2).text("YQBi"), 1)), 0);
  EXPECT_EQ(message.getBstringField().str(), "YQBi");
}

TEST(BinaryReaderTest, MapOfOtherEncodingsFailsTheMessage) {
  EveryType message;
  LogCapture capture;
  const std::string body = Wire()
                               .marker(0)
                               .key("mapStringStringField", 2)
                               .varint(2)
                               .varint(2)
                               .varint(1)
                               .key("intField", 6)
                               .varint(2);
  EXPECT_EQ(readInto(message, everyType(body)), -1);
  EXPECT_FALSE(message.isIntFieldSet());
  EXPECT_FALSE(message.isMapStringStringFieldSet());
  EXPECT_THAT(
      capture.lines(),
      ElementsAre(CapturedLine{kReader, 0,
                               "Map member [mapStringStringField] has key/value encoding type mismatch\n"
                               "key type = [1]; received key type = [2]\n"
                               "Value type = [1]; received value type = [1] "},
                  CapturedLine{kEntry, 0, kFailedEveryType}));
}

TEST(BinaryReaderTest, EmptyMapArrivesAndEmptyListOfTextsDoesNot) {
  EveryType source;
  source.mutableMapStringStringField();
  source.mutableListStringField();
  ASSERT_TRUE(source.isListStringFieldSet());
  EveryType message;
  ASSERT_EQ(readInto(message, serialized(source)), 0);
  EXPECT_TRUE(message.isMapStringStringFieldSet());
  EXPECT_THAT(message.getMapStringStringField(), IsEmpty());
  EXPECT_FALSE(message.isListStringFieldSet());
}

TEST(BinaryReaderTest, EarlierValuesAreGone) {
  EveryType message;
  message.setStringField("old");
  message.setListIntField({1, 2});
  message.mutableObjectField().setNumber(1);
  ASSERT_EQ(readInto(message, everyType(Wire().key("intField", 6).varint(2))), 0);
  EXPECT_EQ(toHex(serializedBody(message)), toHex(Wire().key("intField", 6).varint(2).bytes()));
  EXPECT_EQ(message.getStringField(), "");
  EXPECT_EQ(ownedBy<XNMessageBase>(message, "objectField"), nullptr);
}

// --- The entries.

TEST(BinaryReaderTest, BufferThatIsNotSetIsRefused) {
  EveryType message;
  BinaryBuffer buffer;
  LogCapture capture;
  EXPECT_EQ(BinarySerializer::unserialize(message, buffer, nullptr, false), -1);
  EXPECT_EQ(BinarySerializer::unserialize(buffer, nullptr, false), nullptr);
  const CapturedLine line{kEntry, 0, "[Buffer received for unserialization is not set]"};
  EXPECT_THAT(capture.lines(), ElementsAre(line, line));
}

TEST(BinaryReaderTest, BufferWithAFalseStatusIsRefused) {
  EveryType message;
  ExactBuffer buffer(everyType(""));
  buffer->setDataSize(9);
  EXPECT_EQ(BinarySerializer::unserialize(message, buffer, nullptr, false), -1);
  EXPECT_EQ(BinarySerializer::unserialize(buffer, nullptr, false), nullptr);
}

TEST(BinaryReaderTest, ContentEndsAtTheDataSizeAndNotAtTheCapacity) {
  EveryType message;
  ExactBuffer buffer(everyType(Wire().key("intField", 6).varint(2)));
  buffer->setDataSize(8);
  EXPECT_EQ(BinarySerializer::unserialize(message, buffer, nullptr, false), 0);
  EXPECT_FALSE(message.isIntFieldSet());
}

TEST(BinaryReaderTest, BufferOfAnotherClassIsRefusedAndLeavesTheObjectAlone) {
  EveryType message;
  message.setIntField(1);
  LogCapture capture;
  EXPECT_EQ(readInto(message, withHeader(Demo::Sample::kTagId, "")), -1);
  EXPECT_EQ(message.getIntField(), 1);
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{kEntry, 0,
                                       "Received object with tagID [" + std::to_string(EveryType::kTagId) +
                                           "] does not match with the received buffer with tagID [" +
                                           std::to_string(Demo::Sample::kTagId) + "]"}));
}

TEST(BinaryReaderTest, UnknownTagMakesNoObject) {
  LogCapture capture;
  EXPECT_EQ(readNew(withHeader(0xfffffffe, "")), nullptr);
  EXPECT_TRUE(capture.has(kEntry, 0, "Error identifying the object received. TagID = [4294967294]"));
}

TEST(BinaryReaderTest, FailureDestroysTheNewObjectAndKeepsTheCallers) {
  const std::string bytes = everyType(Wire().key("intField", 6).varint(2).key("stringField", 2).varint(1));
  EveryType message;
  LogCapture capture;
  EXPECT_EQ(readInto(message, bytes), -1);
  EXPECT_EQ(message.getIntField(), 1);
  EXPECT_EQ(readNew(bytes), nullptr);
  EXPECT_EQ(capture.count(kEntry, 0, kFailedEveryType), 2u);
}

TEST(BinaryReaderTest, NewObjectOfAClassWithDefaultsHasNothingSet) {
  const ClassIndices defaults = classNamed("Demo_Defaults");
  for (bool keep : {false, true}) {
    ExactBuffer buffer(withHeader(defaults.tag(), ""));
    const std::unique_ptr<XNMessageBase> made(BinarySerializer::unserialize(buffer, nullptr, keep));
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(serializedBody(*made), "");
    EXPECT_EQ(textOf(*made, "stringField"), "a<b");
  }
}

TEST(BinaryReaderTest, KeepExistingAddsToWhatIsThere) {
  EveryType message;
  message.setStringField("old");
  message.setListIntField({1, 2, 3});
  collectionOf<std::map<std::string, std::int64_t>>(message, "mapStringInt64Field")["a"] = 1;
  message.mutableObjectField().setText("kept out of the bits");
  const std::string body = Wire()
                               .marker(1)
                               .key("listIntField", 2)
                               .varint(1)
                               .varint(8)
                               .key("objectField", 2)
                               .varint(5)
                               .key("number", 6)
                               .varint(2)
                               .marker(2)
                               .key("mapStringInt64Field", 2)
                               .varint(22)
                               .varint(2)
                               .varint(1)
                               .text("a")
                               .fixed64(9)
                               .text("b")
                               .fixed64(2);
  ASSERT_EQ(readInto(message, everyType(body), true), 0);
  EXPECT_EQ(message.getStringField(), "old");
  EXPECT_THAT(message.getListIntField(), ElementsAre(4));
  EXPECT_THAT(message.getMapStringInt64Field(), ElementsAre(testing::Pair("a", 1), testing::Pair("b", 2)));
  // The sub-object is used again, with all its bits cleared first.
  EXPECT_EQ(message.getObjectField()->getNumber(), 1);
  EXPECT_FALSE(message.getObjectField()->isTextSet());
  EXPECT_EQ(textOf(*message.getObjectField(), "text"), "kept out of the bits");
}

TEST(BinaryReaderTest, ForwardersReadTheSame) {
  const std::string bytes = everyType(Wire().key("intField", 6).varint(2));
  const auto isRead = [](XNMessageBase* made) {
    const std::unique_ptr<XNMessageBase> owner(made);
    return made != nullptr && slotOf(*made, "intField") == 1;
  };
  EveryType message;
  EXPECT_EQ(message.UnserializeBinary(ExactBuffer(bytes)), 0);
  EXPECT_EQ(message.getIntField(), 1);
  XMLDecoder decoder;
  ZqXMLContextInfo context;
  EveryType second;
  EXPECT_EQ(decoder.UnserializeBinary(second, ExactBuffer(bytes)), 0);
  EXPECT_EQ(second.getIntField(), 1);
  EXPECT_TRUE(isRead(decoder.UnserializeBinary(ExactBuffer(bytes))));
  EXPECT_EQ(decoder.getContextObj(), nullptr);
  EveryType third;
  EXPECT_EQ(decoder.UnserializeBinary(third, ExactBuffer(bytes), &context), 0);
  EXPECT_EQ(third.getIntField(), 1);
  EXPECT_EQ(decoder.getContextObj(), &context);
  XMLDecoder other;
  EXPECT_TRUE(isRead(other.UnserializeBinary(ExactBuffer(bytes), &context)));
  EXPECT_EQ(other.getContextObj(), &context);
}

// --- The header.

struct Header {
  bool read = false;
  int version = 0, tagId = 0, flag = 0;
};
Header headerOf(std::string bytes) {
  BinaryStream stream(bytes.data(), bytes.size());
  Header header;
  header.read =
      BinarySerializer::getVersionAndTagIDFromBuffer(stream, header.version, header.tagId, header.flag);
  EXPECT_EQ(stream.position(), header.read ? 8u : 0u);
  return header;
}

TEST(BinaryReaderTest, HeaderIsVersionAndTag) {
  const Header header = headerOf(fromHex("02 00 00 00 dd 4b d4 1e"));
  EXPECT_TRUE(header.read);
  EXPECT_EQ(header.version, 2);
  EXPECT_EQ(header.tagId, 0x1ED44BDD);
  EXPECT_EQ(header.flag, 0);
  EXPECT_FALSE(headerOf(fromHex("02 00 00 00 dd 4b d4")).read);
}

TEST(BinaryReaderTest, HeaderNeedsItsEightBytesWhereTheStreamStands) {
  const std::string bytes = "skip" + fromHex("02 00 00 00 dd 4b d4 1e");
  for (std::uint64_t position = 0; position <= bytes.size() + 1; ++position) {
    ExactBuffer buffer(bytes);
    BinaryStream stream(buffer->getBuffer(), bytes.size(), position);
    int version = 0, tagId = 0, flag = 0;
    EXPECT_EQ(BinarySerializer::getVersionAndTagIDFromBuffer(stream, version, tagId, flag), position <= 4)
        << position;
    EXPECT_EQ(stream.position(), position <= 4 ? position + 8 : position);
    if (position == 4) {
      EXPECT_EQ(version, 2);
      EXPECT_EQ(tagId, 0x1ED44BDD);
    }
  }
}

TEST(BinaryReaderTest, FlagCutsTheVersionTo16Bits) {
  const Header header = headerOf(fromHex("02 00 01 00 00 00 00 00"));
  EXPECT_EQ(header.flag, 1);
  EXPECT_EQ(header.version, 2);
  EXPECT_EQ(headerOf(fromHex("02 00 03 80 00 00 00 00")).version, 2);
}

TEST(BinaryReaderTest, KeepsHigherBitsOfTheVersionWithoutTheFlag) {
  EXPECT_EQ(headerOf(fromHex("02 00 02 00 00 00 00 00")).version, 0x20002);
  EXPECT_EQ(headerOf(fromHex("ff ff fe ff 00 00 00 00")).version, static_cast<int>(0xfffeffff));
}

// --- Threads.

TEST(BinaryReaderThreadsTest, OneBufferIsReadByManyThreadsAtOnce) {
  EveryType source;
  source.setStringField("shared");
  source.setListIntField({1, 2, 3});
  source.mutableObjectField().setNumber(4);
  BinaryBuffer buffer;
  ASSERT_NE(BinarySerializer::serialize(source, buffer), 0u);
  std::vector<std::thread> threads;
  std::vector<EveryType> messages(4);
  for (EveryType& message : messages) {
    threads.emplace_back([&buffer, &message] {
      for (int i = 0; i < 200; ++i) BinarySerializer::unserialize(message, buffer, nullptr, false);
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const EveryType& message : messages) EXPECT_TRUE(message == source);
}

TEST(BinaryReaderThreadsTest, DifferentObjectsAreWrittenAtOnce) {
  std::vector<std::thread> threads;
  std::vector<std::string> forms(4);
  for (std::size_t i = 0; i < forms.size(); ++i) {
    threads.emplace_back([&form = forms[i], i] {
      EveryType message;
      message.setIntField(static_cast<int>(i));
      message.mutableObjectField().setText(std::string(i, 'x'));
      for (int repeat = 0; repeat < 200; ++repeat) form = serialized(message);
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (std::size_t i = 0; i < forms.size(); ++i) {
    const auto back = readNew(forms[i]);
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(slotOf(*back, "intField"), static_cast<std::int64_t>(i));
  }
}

}  // namespace
}  // namespace zqxml
