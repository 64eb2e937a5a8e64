// Every field type in the binary form: one row of the form's table, to the byte, in both directions.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/binary/binary_forms.h>
#include <tests/binary/binary_type_rows.h>
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

using Demo::EveryType;

class BinaryFieldTypesTest : public testing::TestWithParam<BinaryTypeRow> {};

TEST_P(BinaryFieldTypesTest, RecordIsRightToTheByte) {
  EveryType message;
  ASSERT_EQ(fieldOf(message, GetParam().field).getType(), GetParam().type);
  GetParam().fill(message);
  EXPECT_EQ(toHex(serializedBody(message)), recordHex(GetParam()));
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
  if (!GetParam().readable()) return;  // the reader's own tests tell what becomes of it
  EveryType message;
  GetParam().fill(message);
  EveryType back;
  LogCapture capture;
  ASSERT_EQ(readInto(back, withHeader(EveryType::kTagId, fromHex(recordHex(GetParam())))), 0);
  EXPECT_TRUE(back == message);
  EXPECT_TRUE(hasBit(back, GetParam().field));
  // Equality does not look into maps; the bytes do.
  EXPECT_EQ(toHex(serializedBody(back)), recordHex(GetParam()));
  EXPECT_THAT(capture.lines(), testing::IsEmpty());
}

TEST_P(BinaryFieldTypesTest, RecordWithoutItsLastByteFailsTheMessage) {
  if (!GetParam().readable()) return;
  std::string whole = withHeader(EveryType::kTagId, fromHex(recordHex(GetParam())));
  whole.pop_back();
  EveryType back;
  LogCapture capture;
  EXPECT_EQ(readInto(back, whole), -1);
  EXPECT_TRUE(capture.has("BinarySerializer::unserialize", 0,
                          "Error unserializing from buffer on object [Demo_EveryType]"));
}

INSTANTIATE_TEST_SUITE_P(EveryType, BinaryFieldTypesTest, testing::ValuesIn(binaryTypeRows()),
                         [](const auto& row) { return std::string(kFieldTypes[row.param.type].name); });

TEST(BinaryFieldTypesTest, RowsHaveEveryStoredType) {
  for (unsigned type = 0; type < kFieldTypeCount; ++type) {
    const bool stored = kFieldTypes[type].slots != 0 && type != FDT_RESERVED_29;
    const auto has = std::count_if(binaryTypeRows().begin(), binaryTypeRows().end(),
                                   [=](const BinaryTypeRow& row) { return row.type == type; });
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
  for (const BinaryTypeRow& row : binaryTypeRows()) {
    if (row.readable()) row.fill(message);
  }
  return message;
}

TEST(BinaryFieldTypesTest, RecordsStandInDeclaredOrder) {
  EveryType message = filled();
  std::string expected;
  for (const FieldDef& field : *XNMessageBase::GetClassDef(&message)) {
    if (!hasBit(message, field.getName())) continue;
    for (const BinaryTypeRow& row : binaryTypeRows()) {
      if (std::string_view(row.field) == field.getName()) expected += fromHex(recordHex(row));
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
    for (const BinaryTypeRow& row : binaryTypeRows()) {
      if (std::string_view(row.field) == field.getName() && hasBit(message, row.field)) {
        records.push_back(fromHex(recordHex(row)));
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
  for (const BinaryTypeRow& row : binaryTypeRows())
    EXPECT_EQ(hasBit(reversed, row.field), hasBit(message, row.field)) << row.field;
  EXPECT_THAT(capture.lines(), testing::IsEmpty());
}

TEST(BinaryFieldTypesTest, RetypedFieldsNeverCrashTheReader) {
  for (const BinaryTypeRow& row : binaryTypeRows()) {
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
