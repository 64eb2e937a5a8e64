// Messages into the binary form.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/binary/binary_forms.h>
#include <tests/binary/hand_made_class.h>
#include <tests/support/open_message.h>
#include <zqxml/catalogue/generated/App.h>
#include <zqxml/catalogue/generated/Demo.h>
#include <zqxml/xml/xml_encoder.h>

#include <string>
#include <vector>

namespace zqxml {
namespace {

using Demo::EveryType;

void makeEmpty(XNMessageBase& message, const FieldDef& field) {
  visitStorage(field.getType(),
               Overloaded{[&]<class E>(List<E>) {
                            MessageAccess::make<typename List<E>::Value>(message, field, true);
                          },
                          [&]<class K, class V>(Map<K, V>) {
                            MessageAccess::make<typename Map<K, V>::Value>(message, field, true);
                          },
                          [](auto) {}});
}

/// Body of a message in which this one field is set and empty.
std::string emptyCollection(std::string_view name) {
  EveryType message;
  makeEmpty(message, fieldOf(message, name));
  EXPECT_TRUE(hasBit(message, name));
  return serializedBody(message);
}

TEST(BinaryWriterTest, MessageWithoutSetFieldsIsItsHeader) {
  Demo::Sample message;
  EXPECT_EQ(BinarySerializerTestAccess::bodySize(message), 0u);
  EXPECT_EQ(serialized(message), Wire().fixed32(2).fixed32(message.getTagID()).bytes());
}

TEST(BinaryWriterTest, EmptyNumericListWritesMarkerZeroKeyZero) {
  for (const char* name :
       {"listIntField", "listUintField", "listLongField", "listUlongField", "listLonglongField",
        "listEnumField", "listBoolField", "listFloatField", "listDoubleField"}) {
    EXPECT_EQ(emptyCollection(name), Wire().marker(0).key(name, 2).varint(0).bytes()) << name;
  }
}

TEST(BinaryWriterTest, EmptyListOfTextsOrObjectsWritesMarkerAndZeroAlone) {
  for (const char* name : {"listStringField", "listWstringField", "listBstringField", "listObjectField"}) {
    EXPECT_EQ(emptyCollection(name), Wire().marker(0).bytes()) << name;
  }
}

TEST(BinaryWriterTest, EmptyMapWritesItsEncodings) {
  struct Row {
    const char* name;
    unsigned keyEncoding, valueEncoding;
  };
  for (const Row& row : std::vector<Row>{{"mapInt64Int64Field", 1, 1},
                                         {"mapInt64StringField", 1, 2},
                                         {"mapInt64ObjectField", 1, 2},
                                         {"mapStringInt64Field", 2, 1},
                                         {"mapStringStringField", 2, 2},
                                         {"mapStringObjectField", 2, 2},
                                         {"mapObjectObjectField", 2, 2}}) {
    Wire expected;
    expected.marker(0).key(row.name, 2).varint(2).varint(row.keyEncoding).varint(row.valueEncoding);
    EXPECT_EQ(emptyCollection(row.name), expected.bytes()) << row.name;
  }
}

TEST(BinaryWriterTest, KeepsEnumerationsAsZigzagUnderAVarintKey) {
  EveryType message;
  setInteger(message, "enumField", 3);
  EXPECT_EQ(serializedBody(message), Wire().key("enumField", 0).raw("\x06").bytes());
}

TEST(BinaryWriterTest, IntegerOutsideOf32BitsLosesItsHighHalf) {
  EveryType message;
  setInteger(message, "intField", 0x7ffffffff);  // the low half is -1
  setInteger(message, "uintField", 0x500000001);
  EXPECT_EQ(serializedBody(message),
            Wire().key("intField", 6).raw("\x01").key("uintField", 0).raw("\x01").bytes());
}

TEST(BinaryWriterTest, StringEndsAtItsFirstNul) {
  EveryType message;
  message.setStringField(std::string("ab\0cd", 5));
  EXPECT_EQ(serializedBody(message), Wire().key("stringField", 2).text("ab").bytes());
}

TEST(BinaryWriterTest, NulIsFoundAtEveryPlaceOfTextsOfEveryLength) {
  EveryType message;
  for (std::size_t size = 0; size < 100; ++size) {
    for (std::size_t nul = 0; nul <= size; ++nul) {
      std::string text(size, '\x80');  // a byte that a look at whole words could take for a NUL's neighbour
      if (nul < size) text[nul] = '\0';
      if (nul + 1 < size) text[nul + 1] = '\1';
      message.setStringField(text);
      ASSERT_EQ(serializedBody(message), Wire().key("stringField", 2).text(text.substr(0, nul)).bytes())
          << nul << " of " << size;
    }
  }
}

TEST(BinaryWriterTest, TextsOfEveryLengthStandSideBySide) {
  EveryType message;
  for (std::size_t size = 0; size < 100; ++size) {
    const std::string text(size, 'x'), other(size / 2, 'y');
    message.setStringField(text);
    message.setListStringField({other, text, "z", text});
    const std::string expected = Wire().key("stringField", 2).text(text).bytes() + [&] {
      Wire list = Wire().marker(4);
      for (const std::string& element : {other, text, std::string("z"), text})
        list.key("listStringField", 2).text(element);
      return list.bytes();
    }();
    ASSERT_EQ(serializedBody(message), expected) << size;
  }
}

TEST(BinaryWriterTest, ShortTextIsWrittenAloneWhereALongOneStood) {
  EveryType message;
  for (char before : {'\0', 'x'}) {
    for (std::size_t size = 0; size < 40; ++size) {
      message.setStringField(std::string(40, before));
      MessageAccess::inPlace<std::string>(message, fieldOf(message, "stringField")).assign(size, 'y');
      ASSERT_EQ(serializedBody(message), Wire().key("stringField", 2).text(std::string(size, 'y')).bytes());
    }
  }
}

TEST(BinaryWriterTest, NothingIsWrittenBehindTheLastText) {
  EveryType message;
  for (std::size_t size = 0; size < 40; ++size) {
    message.setStringField(std::string(size, 'x'));
    const std::size_t needed = serialized(message).size();
    std::string memory(needed + 64, '\x55');
    BinaryBuffer buffer(memory.data(), memory.size());
    BinarySerializer::serialize(message, buffer);
    ASSERT_EQ(memory.substr(needed), std::string(64, '\x55')) << size;
  }
}

TEST(BinaryWriterTest, NulInAMapCutsThatTextAlone) {
  EveryType message;
  message.setStringField("whole");
  message.setMapStringStringField({{std::string("k\0cut", 5), std::string("v\0cut", 5)}});
  EXPECT_EQ(serializedBody(message), Wire()
                                         .key("stringField", 2)
                                         .text("whole")
                                         .marker(1)
                                         .key("mapStringStringField", 2)
                                         .varint(6)
                                         .raw("\x02\x02")
                                         .text("k")
                                         .text("v")
                                         .bytes());
}

TEST(BinaryWriterTest, WideTextIsCountedInBytesOfUtf8) {
  EveryType message;
  message.setWstringField(u"aé€\U0001F600");
  EXPECT_EQ(serializedBody(message), Wire().key("wstringField", 2).text("aé€\U0001F600").bytes());
}

TEST(BinaryWriterTest, HalfOfASurrogatePairIsTheReplacementCharacter) {
  EveryType message;
  message.setWstringField(u"\xd83dx\xdc00\xd83d");
  EXPECT_EQ(serializedBody(message),
            Wire().key("wstringField", 2).text("\xef\xbf\xbdx\xef\xbf\xbd\xef\xbf\xbd").bytes());
}

TEST(BinaryWriterTest, BinaryStringIsRawAtVersion1AndBase64AtVersion2) {
  EveryType message;
  message.setBstringField(std::string("a\0b", 3));
  EXPECT_EQ(serializedBody(message, 1),
            Wire().key("bstringField", 2).text(std::string_view("a\0b", 3)).bytes());
  EXPECT_EQ(serializedBody(message, 2), Wire().key("bstringField", 2).text("YQBi").bytes());
}

TEST(BinaryWriterTest, TextsThatWereEndedForGoodAreWrittenEmpty) {
  for (const int version : {1, 2}) {
    EveryType empty, ended;
    empty.setBstringField("");
    empty.setPstringField("");
    for (const char* name : {"bstringField", "pstringField"}) {
      open(ended).deleteMember(fieldOf(ended, name).getMemNum(), ended.getTagID(), 0, true);
      setBit(ended, name);
    }
    EXPECT_EQ(toHex(serialized(ended, version)), toHex(serialized(empty, version)));
  }
}

TEST(BinaryWriterTest, SecondCallReplacesTheOwnedBlock) {
  EveryType message;
  message.setStringField("first and long");
  BinaryBuffer buffer;
  ASSERT_NE(BinarySerializer::serialize(message, buffer), 0u);
  message.setStringField("2nd");
  const std::uint64_t size = BinarySerializer::serialize(message, buffer);
  EXPECT_EQ(size, 8u + 4 + 1 + 3);
  EXPECT_EQ(buffer.getDataSize(), size);
  EXPECT_EQ(buffer.getBufferSize(), size);  // exactly: not what was left of the first block
  EXPECT_EQ(contentOf(buffer), serialized(message));
}

TEST(BinaryWriterTest, VersionWordIsTheVersionAsGiven) {
  EveryType message;
  message.setBstringField(std::string("a\0b", 3));
  EXPECT_EQ(toHex(serialized(message, 2).substr(0, 4)), "02 00 00 00");
  EXPECT_EQ(toHex(serialized(message, 0).substr(0, 4)), "00 00 00 00");
  EXPECT_EQ(serializedBody(message, 0), serializedBody(message, 1));
  EXPECT_EQ(toHex(serialized(message, 3).substr(0, 4)), "03 00 00 00");
  EXPECT_EQ(serializedBody(message, 3), serializedBody(message, 2));
  EXPECT_EQ(toHex(serialized(message, -1).substr(0, 4)), "ff ff ff ff");
  EXPECT_EQ(serializedBody(message, -1), serializedBody(message, 1));
}

// --- The worked example.

TEST(BinaryWriterTest, WorkedExampleIsRightToTheByte) {
  App::TestMessage2 message;
  ASSERT_EQ(message.getTagID(), 0x1ED44BDDu);
  setInteger(message, "intField", -3);
  setText(message, "strField", "hi");
  collectionOf<std::vector<std::int32_t>>(message, "ListInt") = {1, -1};
  setInteger(message.mutableM1(), "intFieldM1", 5);
  collectionOf<std::map<std::string, std::int64_t>>(message, "mapStr_LL")["a"] = 7;
  EXPECT_EQ(toHex(serialized(message)),
            "02 00 00 00 dd 4b d4 1e "
            "5e b2 35 02 05 "
            "4a 4a 71 00 02 68 69 "
            "78 7f 7f 7f 02 8a d2 86 00 02 02 01 "
            "22 4c 00 00 05 7e c8 92 03 0a "
            "78 7f 7f 7f 01 52 96 4a 03 0c 02 01 01 61 07 00 00 00 00 00 00 00");
}

TEST(BinaryWriterTest, ForwardersUseVersion2) {
  EveryType message;
  message.setBstringField(std::string("a\0b", 3));
  const std::string expected = serialized(message, 2);
  BinaryBuffer buffer;
  EXPECT_EQ(message.SerializeBinary(buffer), expected.size());
  EXPECT_EQ(contentOf(buffer), expected);
  EXPECT_EQ(BinarySerializer::serialize(message, buffer), expected.size());
  EXPECT_EQ(contentOf(buffer), expected);
  EXPECT_EQ(XMLEncoder().SerializeBinary(message, buffer), expected.size());
  EXPECT_EQ(contentOf(buffer), expected);
  message.SerializeBinary(buffer, 1);
  EXPECT_EQ(contentOf(buffer), serialized(message, 1));
  XMLEncoder().SerializeBinary(message, buffer, 1);
  EXPECT_EQ(contentOf(buffer), serialized(message, 1));
}

// --- Set fields without a value.

TEST(BinaryWriterTest, SetObjectWithoutAValueIsKeyAndZero) {
  EveryType message;
  setBit(message, "objectField");
  EXPECT_EQ(serializedBody(message), Wire().key("objectField", 2).varint(0).bytes());
}

TEST(BinaryWriterTest, SetCollectionWithoutAValueIsAnEmptyOne) {
  for (const FieldDef& field : *XNMessageBase::GetClassDef(classNamed("Demo_EveryType").tag())) {
    if (field.getType() != FDT_LIST_ULONGLONG &&
        !BinarySerializerTestAccess::isCollectionType(field.getType()))
      continue;
    if (field.getType() == FDT_ULONGLONG) continue;
    EveryType message;
    setBit(message, field.getName());
    EXPECT_EQ(serializedBody(message), emptyCollection(field.getName())) << field.getName();
  }
}

TEST(BinaryWriterTest, SetBinaryStringWithoutAValueIsAnEmptyOne) {
  EveryType message;
  setBit(message, "bstringField");
  for (int version : {1, 2})
    EXPECT_EQ(serializedBody(message, version), Wire().key("bstringField", 2).varint(0).bytes());
}

TEST(BinaryWriterTest, BitsBehindTheLastFieldArePassedOver) {
  HandMadeClass handMade;
  handMade.field(FDT_INT, "only");
  OpenMessage message = handMade.message();
  setInteger(message, "only", 1);
  MessageAccess::mark(message, 5);
  EXPECT_EQ(serializedBody(message), Wire().key("only", 6).raw("\x02").bytes());
}

TEST(BinaryWriterTest, TypesWithoutAValueFormWriteTheirKeyAlone) {
  for (FieldDataType type : {FDT_RESERVED_24, FDT_RESERVED_29, FDT_ENUM_VALUE, FDT_INT64}) {
    HandMadeClass handMade;
    handMade.field(type, "odd").field(FDT_INT, "after");
    OpenMessage message = handMade.message();
    setBit(message, "odd");
    setInteger(message, "after", 1);
    const unsigned encoding = type == FDT_INT64 ? 1 : 7;
    EXPECT_EQ(serializedBody(message), Wire().key("odd", encoding).key("after", 6).raw("\x02").bytes())
        << +type;
  }
}

TEST(BinaryWriterTest, UnknownTypeWritesItsKeyAlone) {
  HandMadeClass handMade;
  handMade.field(static_cast<FieldDataType>(200), "odd");
  OpenMessage message = handMade.message();
  setBit(message, "odd");
  EXPECT_EQ(serializedBody(message), Wire().key("odd", 7).bytes());
}

TEST(BinaryWriterTest, SelfRecordIsPassedOver) {
  OpenMessage message = newMessage("Demo_SelfPair");
  setInteger(message, "number", 1);
  MessageAccess::mark(message, 2);
  EXPECT_EQ(serializedBody(message), Wire().key("number", 6).raw("\x02").bytes());
}

TEST(BinaryWriterTest, FieldWithoutHashHasAKeyOfItsEncodingAlone) {
  OpenMessage message = newMessage("Demo_Hashless");
  MessageAccess::wipeBitset(message);  // one of its fields has a default
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&message)) {
    if (field.getFieldHashId() != 0 || field.getType() != FDT_INT) continue;
    MessageAccess::setInteger(message, field, 4);
    EXPECT_EQ(toHex(serializedBody(message)), "06 00 00 00 08");
    return;
  }
  FAIL() << "the class has no integer without a hash";
}

TEST(BinaryWriterTest, ObjectWithoutAClassIsAHeaderOfTagZero) {
  XNMessageBase message;
  EXPECT_EQ(toHex(serialized(message)), "02 00 00 00 00 00 00 00");
}

TEST(BinaryWriterTest, FieldsOfALongClassKeepTheirOrder) {
  OpenMessage message = newMessage("Demo_Hundred");
  Wire expected;
  int value = 0;
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&message)) {
    if (++value % 3 == 0) continue;
    MessageAccess::setInteger(message, field, value);
    expected.key(field.getName(), 6).varint(static_cast<unsigned>(2 * value));
  }
  EXPECT_EQ(serializedBody(message), expected.bytes());
}

}  // namespace
}  // namespace zqxml
