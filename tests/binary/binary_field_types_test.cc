// Every field type in the binary form: one row of the form's table, to the byte, in both directions.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/binary/binary_forms.h>
#include <tests/support/log_capture.h>
#include <tests/support/open_message.h>
#include <zqxml/catalogue/generated/Demo.h>

#include <functional>
#include <limits>
#include <map>
#include <string>
#include <vector>

namespace zqxml {
namespace {

using Demo::EveryChild;
using Demo::EveryType;

/// A field of Demo_EveryType with a value, and its record: `M` stands for the marker, `K` for the key.
struct Row {
  FieldDataType type;
  const char* field;
  unsigned encoding;  ///< in the key
  const char* record;
  std::function<void(EveryType&)> fill;
};

EveryChild child(int number) {
  EveryChild made;
  made.setNumber(number);
  return made;
}

/// The record of child(1), with its size in front: key of "number", zigzag.
#define ZQXML_CHILD "05 [number6] 02"

template <class Vector>
std::function<void(EveryType&)> list(const char* field, Vector values) {
  return [=](EveryType& message) { collectionOf<Vector>(message, field) = values; };
}
std::function<void(EveryType&)> integer(const char* field, std::int64_t value) {
  return [=](EveryType& message) { setInteger(message, field, value); };
}

const std::vector<Row>& rows() {
  using namespace std;
  static const vector<Row> kRows = {
      {FDT_INT, "intField", 6, "K 05", integer("intField", -3)},
      {FDT_UINT, "uintField", 0, "K ff ff ff ff 0f", integer("uintField", 0xffffffff)},
      {FDT_LONG, "longField", 6, "K ff ff ff ff 0f", integer("longField", numeric_limits<int32_t>::min())},
      {FDT_ULONG, "ulongField", 0, "K ac 02", integer("ulongField", 300)},
      {FDT_LONGLONG, "longlongField", 1, "K fe ff ff ff ff ff ff ff", integer("longlongField", -2)},
      {FDT_ULONGLONG, "ulonglongField", 1, "M 08 07 06 05 04 03 02 01",
       integer("ulonglongField", 0x0102030405060708)},
      {FDT_BOOL, "boolField", 0, "K 01", integer("boolField", 1)},
      {FDT_STRING, "stringField", 2, "K 02 68 69", [](EveryType& m) { m.setStringField("hi"); }},
      {FDT_WSTRING, "wstringField", 2, "K 03 e2 82 ac", [](EveryType& m) { m.setWstringField(u"€"); }},
      {FDT_ENUM, "enumField", 0, "K 04", integer("enumField", 2)},
      {FDT_DOUBLE, "doubleField", 1, "K 00 00 00 00 00 00 f8 3f",
       [](EveryType& m) { m.setDoubleField(1.5); }},
      {FDT_FLOAT, "floatField", 5, "K 00 00 20 c0", [](EveryType& m) { m.setFloatField(-2.5f); }},
      {FDT_LIST_INT, "listIntField", 2, "M 02 K 02 02 01", list("listIntField", vector<int32_t>{1, -1})},
      {FDT_LIST_UINT, "listUintField", 2, "M 02 K 03 01 ac 02",
       list("listUintField", vector<uint32_t>{1, 300})},
      {FDT_LIST_LONG, "listLongField", 2, "M 02 K 03 03 d8 04",
       list("listLongField", vector<int32_t>{-2, 300})},
      {FDT_LIST_ULONG, "listUlongField", 2, "M 01 K 05 ff ff ff ff 0f",
       list("listUlongField", vector<uint32_t>{0xffffffff})},
      {FDT_LIST_LONGLONG, "listLonglongField", 2, "M 02 K 10 01 00 00 00 00 00 00 00 ff ff ff ff ff ff ff ff",
       list("listLonglongField", vector<int64_t>{1, -1})},
      {FDT_LIST_ULONGLONG, "listUlonglongField", 2,
       "K 02 K 10 01 00 00 00 00 00 00 00 ff ff ff ff ff ff ff ff",
       list("listUlonglongField", vector<uint64_t>{1, numeric_limits<uint64_t>::max()})},
      {FDT_LIST_ENUM, "listEnumField", 2, "M 02 K 02 02 01", list("listEnumField", vector<uint32_t>{2, 1})},
      {FDT_LIST_STRING, "listStringField", 2, "M 02 K 01 61 K 00",
       list("listStringField", vector<string>{"a", ""})},
      {FDT_LIST_WSTRING, "listWstringField", 2, "M 02 K 02 c3 a9 K 01 62",
       list("listWstringField", vector<u16string>{u"é", u"b"})},
      {FDT_LIST_OBJECT, "listObjectField", 2, "M 02 K " ZQXML_CHILD " K 00",
       [](EveryType& m) {
         m.addToListObjectField().setNumber(1);
         m.addToListObjectField();
       }},
      {FDT_OBJECT, "objectField", 2, "K " ZQXML_CHILD,
       [](EveryType& m) { m.mutableObjectField().setNumber(1); }},
      {FDT_BSTRING, "bstringField", 2, "K 04 59 51 42 69",
       [](EveryType& m) { m.setBstringField(string_view("a\0b", 3)); }},
      {FDT_LIST_BOOL, "listBoolField", 2, "M 03 K 03 01 00 01",
       list("listBoolField", vector<uint32_t>{1, 0, 1})},
      {FDT_LIST_FLOAT, "listFloatField", 2, "M 02 K 08 00 00 80 3f 00 00 20 c0",
       list("listFloatField", vector<float>{1, -2.5f})},
      {FDT_LIST_DOUBLE, "listDoubleField", 2, "M 01 K 08 00 00 00 00 00 00 f8 3f",
       list("listDoubleField", vector<double>{1.5})},
      {FDT_LIST_BSTRING, "listBstringField", 2, "M 02 K 04 59 51 42 69 K 04 59 77 3d 3d",
       [](EveryType& m) {
         auto& values = collectionOf<vector<bstring>>(m, "listBstringField");
         values = {string("a\0b", 3), string("c")};
       }},
      {FDT_PSTRING, "pstringField", 2, "K 06 73 65 63 72 65 74",
       [](EveryType& m) { m.setPstringField("secret"); }},
      {FDT_MAP_INT64_INT64, "mapInt64Int64Field", 2,
       "M 02 K 22 01 01 ff ff ff ff ff ff ff ff 02 00 00 00 00 00 00 00 "
       "01 00 00 00 00 00 00 00 03 00 00 00 00 00 00 00",
       list("mapInt64Int64Field", map<int64_t, int64_t>{{-1, 2}, {1, 3}})},
      {FDT_MAP_INT64_STRING, "mapInt64StringField", 2, "M 01 K 0d 01 02 01 00 00 00 00 00 00 00 02 68 69",
       list("mapInt64StringField", map<int64_t, string>{{1, "hi"}})},
      {FDT_MAP_INT64_OBJECT, "mapInt64ObjectField", 2, "M 01 K 10 01 02 01 00 00 00 00 00 00 00 " ZQXML_CHILD,
       [](EveryType& m) {
         collectionOf<map<int64_t, XNMessageBase>>(m, "mapInt64ObjectField").emplace(1, child(1));
       }},
      {FDT_MAP_STRING_INT64, "mapStringInt64Field", 2, "M 01 K 0c 02 01 01 61 07 00 00 00 00 00 00 00",
       list("mapStringInt64Field", map<string, int64_t>{{"a", 7}})},
      {FDT_MAP_STRING_STRING, "mapStringStringField", 2, "M 02 K 09 02 02 00 00 01 61 02 62 63",
       list("mapStringStringField", map<string, string>{{"", ""}, {"a", "bc"}})},
      {FDT_MAP_STRING_OBJECT, "mapStringObjectField", 2, "M 01 K 0a 02 02 01 61 " ZQXML_CHILD,
       [](EveryType& m) {
         collectionOf<map<string, XNMessageBase>>(m, "mapStringObjectField").emplace("a", child(1));
       }},
      {FDT_MAP_OBJECT_OBJECT, "mapObjectObjectField", 2, "M 01 K 09 02 02 " ZQXML_CHILD " 00",
       [](EveryType& m) {
         collectionOf<map<XNMessageBase, XNMessageBase>>(m, "mapObjectObjectField")
             .emplace(child(1), EveryChild());
       }},
      {FDT_TIME32, "time32Field", 6, "K 80 a3 05", integer("time32Field", 43200)},
      {FDT_TIME64, "time64Field", 1, "K 80 51 01 00 01 00 00 00", integer("time64Field", 0x100015180)},
  };
  return kRows;
}
#undef ZQXML_CHILD

std::string keyHex(std::string_view field, unsigned encoding) {
  return toHex(Wire().key(field, encoding).bytes());
}

/// What the reader can take back: type 6 has no key, and type 18 no marker.
bool readable(FieldDataType type) {
  return type != FDT_ULONGLONG && type != FDT_LIST_ULONGLONG;
}

std::string expectedRecord(const Row& row) {
  std::string hex;
  for (const char* at = row.record; *at != 0; ++at) {
    if (*at == 'M') {
      hex += "78 7f 7f 7f";
    } else if (*at == 'K') {
      hex += keyHex(row.field, row.encoding);
    } else if (*at == '[') {
      hex += keyHex("number", 6);
      while (*at != ']') ++at;
    } else {
      hex += *at;
    }
  }
  return hex;
}

class BinaryFieldTypesTest : public testing::TestWithParam<Row> {};

TEST_P(BinaryFieldTypesTest, RecordIsRightToTheByte) {
  EveryType message;
  ASSERT_EQ(fieldOf(message, GetParam().field).getType(), GetParam().type);
  GetParam().fill(message);
  EXPECT_EQ(toHex(serializedBody(message)), expectedRecord(GetParam()));
}

TEST_P(BinaryFieldTypesTest, SizePassCountsWhatTheWritePassWrites) {
  EveryType message;
  GetParam().fill(message);
  for (int version : {0, 1, 2, 3}) {
    std::string range(4096, '\0');
    BinaryStream stream(range.data(), range.size());
    BinarySerializerTestAccess::writeBody(message, stream, version);
    EXPECT_EQ(stream.position(), BinarySerializerTestAccess::bodySize(message, version)) << version;
  }
}

TEST_P(BinaryFieldTypesTest, ValueComesBack) {
  if (!readable(GetParam().type)) return;  // the reader's own tests tell what becomes of it
  EveryType message;
  GetParam().fill(message);
  EveryType back;
  LogCapture capture;
  ASSERT_EQ(readInto(back, withHeader(EveryType::kTagId, fromHex(expectedRecord(GetParam())))), 0);
  EXPECT_TRUE(back == message);
  EXPECT_TRUE(hasBit(back, GetParam().field));
  // Equality does not look into maps; the bytes do.
  EXPECT_EQ(toHex(serializedBody(back)), expectedRecord(GetParam()));
  EXPECT_THAT(capture.lines(), testing::IsEmpty());
}

TEST_P(BinaryFieldTypesTest, RecordWithoutItsLastByteFailsTheMessage) {
  if (!readable(GetParam().type)) return;
  std::string whole = withHeader(EveryType::kTagId, fromHex(expectedRecord(GetParam())));
  whole.pop_back();
  EveryType back;
  LogCapture capture;
  EXPECT_EQ(readInto(back, whole), -1);
  EXPECT_TRUE(capture.has("BinarySerializer::unserialize", 0,
                          "Error unserializing from buffer on object [Demo_EveryType]"));
}

INSTANTIATE_TEST_SUITE_P(EveryType, BinaryFieldTypesTest, testing::ValuesIn(rows()),
                         [](const auto& row) { return std::string(kFieldTypes[row.param.type].name); });

TEST(BinaryFieldTypesTest, RowsHaveEveryStoredType) {
  for (unsigned type = 0; type < kFieldTypeCount; ++type) {
    const bool stored = kFieldTypes[type].slots != 0 && type != FDT_RESERVED_29;
    const auto has =
        std::count_if(rows().begin(), rows().end(), [=](const Row& row) { return row.type == type; });
    EXPECT_EQ(has, stored ? 1 : 0) << kFieldTypes[type].name;
  }
}

TEST(BinaryFieldTypesTest, EncodingOfEachType) {
  const std::map<int, std::vector<int>> expected = {{0, {2, 4, 7, 10}},
                                                    {1, {5, 6, 11, 40, 42}},
                                                    {2, {8,  9,  13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23,
                                                         25, 26, 27, 28, 30, 31, 33, 34, 35, 36, 37, 38, 39}},
                                                    {5, {12}},
                                                    {6, {1, 3, 41}}};
  std::vector<int> encodings(256, 7);
  for (const auto& [encoding, types] : expected) {
    for (int type : types) encodings[static_cast<std::size_t>(type)] = encoding;
  }
  for (int type = 0; type < 256; ++type) {
    EXPECT_EQ(BinarySerializerTestAccess::encodingType(type), encodings[static_cast<std::size_t>(type)])
        << type;
  }
}

TEST(BinaryFieldTypesTest, KeepsType6ACollectionAndType18None) {
  const std::vector<int> collections = {6,  13, 14, 15, 16, 17, 19, 20, 21, 22, 26,
                                        27, 28, 30, 33, 34, 35, 36, 37, 38, 39};
  for (int type = 0; type < 256; ++type) {
    const bool expected = std::find(collections.begin(), collections.end(), type) != collections.end();
    EXPECT_EQ(BinarySerializerTestAccess::isCollectionType(type), expected) << type;
  }
}

// --- The whole object.

EveryType filled() {
  EveryType message;
  for (const Row& row : rows()) {
    if (readable(row.type)) row.fill(message);
  }
  return message;
}

TEST(BinaryFieldTypesTest, RecordsStandInDeclaredOrder) {
  EveryType message = filled();
  std::string expected;
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&message)) {
    if (!hasBit(message, field.getName())) continue;
    for (const Row& row : rows()) {
      if (std::string_view(row.field) == field.getName()) expected += fromHex(expectedRecord(row));
    }
  }
  EXPECT_EQ(toHex(serializedBody(message)), toHex(expected));
}

TEST(BinaryFieldTypesTest, ObjectComesBackWholeAtEveryVersion) {
  EveryType message = filled();
  message.setBstringField("no nul");  // at version 1 the reader would cut it
  collectionOf<std::vector<bstring>>(message, "listBstringField") = {std::string("a"), std::string("b")};
  for (int version : {0, 1, 2, 3}) {
    EveryType back;
    ASSERT_EQ(readInto(back, serialized(message, version)), 0) << version;
    EXPECT_TRUE(back == message) << version;
    EXPECT_EQ(serialized(back, version), serialized(message, version)) << version;
  }
}

TEST(BinaryFieldTypesTest, FieldsInReverseOrderAreFound) {
  EveryType message = filled();
  std::vector<std::string> records;
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&message)) {
    for (const Row& row : rows()) {
      if (std::string_view(row.field) == field.getName() && hasBit(message, row.field)) {
        records.push_back(fromHex(expectedRecord(row)));
      }
    }
  }
  std::string reversed;
  for (auto record = records.rbegin(); record != records.rend(); ++record) reversed += *record;
  EveryType back;
  ASSERT_EQ(readInto(back, withHeader(EveryType::kTagId, reversed)), 0);
  EXPECT_EQ(serialized(back), serialized(message));
}

TEST(BinaryFieldTypesTest, ReaderOfAReversedClassFindsEveryField) {
  EveryType message = filled();
  OpenMessage reversed = newMessage("Drift_Reversed");
  LogCapture capture;
  ASSERT_EQ(readInto(reversed, withHeader(reversed.getTagID(), serializedBody(message))), 0);
  for (const Row& row : rows())
    EXPECT_EQ(hasBit(reversed, row.field), hasBit(message, row.field)) << row.field;
  EXPECT_THAT(capture.lines(), testing::IsEmpty());
}

TEST(BinaryFieldTypesTest, RetypedFieldsNeverCrashTheReader) {
  for (const Row& row : rows()) {
    EveryType message;
    row.fill(message);
    OpenMessage retyped = newMessage("Drift_Retyped");
    LogCapture capture;
    const int result = readInto(retyped, withHeader(retyped.getTagID(), serializedBody(message)));
    EXPECT_TRUE(result == 0 || result == -1) << row.field;
  }
}

}  // namespace
}  // namespace zqxml
