#include <gtest/gtest.h>
#include <tests/annotation/annotation_samples.h>
#include <zqxml/annotation/annotation_record.h>

#include <string>

namespace zqxml {
namespace {

AnnotationRecord recordOf(const std::string& bytes) {
  return AnnotationRecord(std::string_view(bytes));
}

TEST(AnnotationRecord, NoRecordSaysNothing) {
  for (const AnnotationRecord record :
       {AnnotationRecord(), AnnotationRecord(static_cast<const char*>(nullptr)),
        AnnotationRecord(FieldDef())}) {
    EXPECT_FALSE(record.exists());
    EXPECT_EQ(record.size(), 0u);
    EXPECT_EQ(record.flags(0), 0u);
    EXPECT_EQ(record.passwordType(), 0);
    EXPECT_EQ(record.dateType(), 0u);
  }
}

TEST(AnnotationRecord, LengthBelowThreeSaysNothing) {
  for (const unsigned length : {0u, 1u, 2u}) {
    const std::string bytes = packBytes({0, length, 0xff, 0xff, 0xff});
    const AnnotationRecord record(bytes.data());
    EXPECT_FALSE(record.exists());
    EXPECT_FALSE(record.isTime());
    EXPECT_FALSE(record.isCdata());
  }
}

TEST(AnnotationRecord, FlagBytesAreThereAsFarAsTheLengthReaches) {
  for (const unsigned length : {3u, 4u, 5u}) {
    const std::string bytes = packBytes({0, length, 0xff, 0xff, 0xff});
    const AnnotationRecord record(bytes.data());
    EXPECT_EQ(record.size(), length);
    for (const unsigned number : {0u, 1u, 2u}) {
      EXPECT_EQ(record.hasFlags(number), length > 2 + number) << length << number;
      EXPECT_EQ(record.flags(number), length > 2 + number ? 0xffu : 0u) << length << number;
    }
  }
}

TEST(AnnotationRecord, FlagByteZeroHoldsPasswordTimeSuppressionAndDate) {
  EXPECT_EQ(recordOf(packRecord(packBytes({0x50}))).passwordType(), 5);
  EXPECT_EQ(recordOf(packRecord(packBytes({0xf0}))).passwordType(), 15);
  EXPECT_TRUE(recordOf(packRecord(packBytes({0x08}))).isTime());
  EXPECT_FALSE(recordOf(packRecord(packBytes({0xf7}))).isTime());
  EXPECT_TRUE(recordOf(packRecord(packBytes({0x04}))).isSuppressed());
  EXPECT_FALSE(recordOf(packRecord(packBytes({0xfb}))).isSuppressed());
  EXPECT_EQ(recordOf(packRecord(packBytes({0xfe}))).dateType(), 2u);
}

TEST(AnnotationRecord, FlagByteOneHoldsWhatReportsHide) {
  EXPECT_TRUE(recordOf(packRecord(packBytes({0, 0x40}))).isHiddenInReports());
  EXPECT_FALSE(recordOf(packRecord(packBytes({0xff, 0xbf}))).isHiddenInReports());
}

TEST(AnnotationRecord, FlagByteTwoHoldsCdataSensitivityAndIndexedMetadata) {
  EXPECT_TRUE(recordOf(packRecord(packBytes({0, 0, 0x80}))).isCdata());
  EXPECT_FALSE(recordOf(packRecord(packBytes({0, 0, 0x7f}))).isCdata());
  EXPECT_TRUE(recordOf(packRecord(packBytes({0, 0, 0x40}))).isSensitive());
  EXPECT_FALSE(recordOf(packRecord(packBytes({0, 0, 0xbf}))).isSensitive());
  EXPECT_TRUE(recordOf(packRecord(packBytes({0, 0, 0x01}))).indexedMetadata());
  EXPECT_FALSE(recordOf(packRecord(packBytes({0, 0, 0xfe}))).indexedMetadata());
}

TEST(AnnotationRecord, LengthIsBigEndian) {
  const std::string bytes = packRecord(std::string(298, '\0'));
  EXPECT_EQ(AnnotationRecord(bytes.data()).size(), 300u);
}

TEST(AnnotationRecord, RecordEndsWhereItsBytesEnd) {
  EXPECT_EQ(recordOf(packBytes({0xff, 0xff, 0x08})).size(), 3u);
  EXPECT_FALSE(recordOf(packBytes({0xff, 0xff})).exists());
  EXPECT_FALSE(recordOf(packBytes({0xff})).exists());
  EXPECT_FALSE(recordOf("").exists());
}

TEST(AnnotationRecord, IsReadAtCompileTime) {
  static constexpr char kBytes[] = {0, 5, '\x38', 0, '\x80'};
  constexpr AnnotationRecord kRecord(kBytes);
  static_assert(kRecord.passwordType() == 3 && kRecord.isTime() && kRecord.isCdata() &&
                !kRecord.isSensitive());
}

TEST(AnnotationCursor, ReadsNumbersBigEndianAndTextsInPlace) {
  const std::string bytes =
      packRecord(packBytes({0, 0, 0}) + packBytes({7, 0x12, 0x34, 0x56, 0x78}) + packText("ab"));
  const AnnotationRecord record(bytes.data());
  AnnotationCursor cursor(record);
  EXPECT_EQ(cursor.position(), 5u);
  EXPECT_EQ(cursor.byte(), 7u);
  EXPECT_EQ(cursor.word32(), 0x12345678u);
  const std::string_view text = cursor.text();
  EXPECT_EQ(text, "ab");
  EXPECT_EQ(text.data(), bytes.data() + 12);
  EXPECT_FALSE(cursor.failed());
}

TEST(AnnotationCursor, FailsForGoodAtTheFirstReadBeyondTheRecord) {
  const std::string bytes = packRecord(packBytes({0, 0, 0, 1, 2, 3}));
  const AnnotationRecord record(bytes.data());
  AnnotationCursor cursor(record);
  EXPECT_EQ(cursor.word32(), 0u);
  EXPECT_TRUE(cursor.failed());
  EXPECT_EQ(cursor.byte(), 0u);
  EXPECT_EQ(cursor.text(), "");
}

TEST(AnnotationCursor, TextLongerThanTheRecordFails) {
  const std::string bytes = packRecord(packBytes({0, 0, 0}) + packLength(3) + "ab");
  const AnnotationRecord record(bytes.data());
  AnnotationCursor cursor(record);
  EXPECT_EQ(cursor.text(), "");
  EXPECT_TRUE(cursor.failed());
}

TEST(AnnotationCursor, PositionBeyondTheEndFailsOnlyWithTheNextRead) {
  const std::string bytes = packRecord(packBytes({0, 0, 0, 1}));
  const AnnotationRecord record(bytes.data());
  AnnotationCursor cursor(record);
  cursor.skip(3);
  EXPECT_FALSE(cursor.failed());
  EXPECT_EQ(cursor.byte(), 0u);
  EXPECT_TRUE(cursor.failed());
}

TEST(AnnotationCursor, ShortRecordHasNoSections) {
  const std::string bytes = packRecord(packBytes({0}));
  const AnnotationRecord record(bytes.data());
  AnnotationCursor cursor(record);
  EXPECT_EQ(cursor.byte(), 0u);
  EXPECT_TRUE(cursor.failed());
}

}  // namespace
}  // namespace zqxml
