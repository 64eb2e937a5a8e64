#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/annotation/annotation_samples.h>
#include <tests/support/log_capture.h>
#include <zqxml/annotation/stored_procedure.h>
#include <zqxml/catalogue/generated/Annotation.h>
#include <zqxml/xml/xml_decoder.h>

#include <string>

namespace zqxml {
namespace {

using testing::ElementsAre;

std::vector<std::uint32_t> idsOf(const std::string& record) {
  std::vector<std::uint32_t> ids;
  AnnotatedClass owner;
  owner.add("field", record);
  EXPECT_EQ(XMLDecoder::FillAnnotationIds(owner.field(0), ids), record.size() >= 3);
  return ids;
}

TEST(FillAnnotation, RecordOfThreeBytesHasNoSecondFlagByte) {
  EXPECT_FALSE(has(kHideInReportsIndex, packBytes({0, 3, 0xff, 0xff})));
}

TEST(FillAnnotation, CommandParamLiesBehindText) {
  EXPECT_EQ(filled(kCommandParamIndex, sampleRecord()), (SetFields{{"name", "st"}}));
  EXPECT_EQ(filled(kTextIndex, sampleRecord()), (SetFields{{"text", "Schedule Type"}}));
}

TEST(FillAnnotation, UnknownFieldHasNone) {
  AnnotatedClass owner;
  owner.add("field", packRecord(packBytes({0x08})));
  AnnotationBase out = annotation(kZQTimeIndex);
  LogCapture capture(10);
  EXPECT_FALSE(XMLDecoder::FillAnnotation(owner.def(), out, "other"));
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{"XMLDecoder::FillAnnotation", 10,
                                       "Couldn't find field [other] in the object [MadeUp]"}));
}

TEST(FillAnnotation, ClassWithoutRecordOfItsOwnIsTracedOnly) {
  AnnotatedClass owner;
  owner.add("field", packRecord(packBytes({0x08})));
  AnnotationBase out = annotation(kStoredProcedureIndex);
  {
    LogCapture errors;
    EXPECT_FALSE(XMLDecoder::FillAnnotation(owner.def(), out, "MadeUp"));
    EXPECT_TRUE(errors.empty());
  }
  LogCapture capture(10);
  EXPECT_FALSE(XMLDecoder::FillAnnotation(owner.def(), out, "MadeUp"));
  EXPECT_THAT(capture.lines(), ElementsAre(CapturedLine{"XMLDecoder::FillAnnotation", 10,
                                                        "No class level annotation found for [MadeUp]"}));
}

TEST(FillAnnotation, IdsOfByteZeroBeginWithThePassword) {
  EXPECT_THAT(idsOf(packRecord(packBytes({0x14}))),
              ElementsAre(Annotation::Password::kTagId, Annotation::Suppress::kTagId));
}

TEST(FillAnnotation, MessageOfAClassWithoutStoredProcedureVerifiesNone) {
  std::string name = "AnyProcedure";
  std::string xml = "<ZQGui_SaveAlert loginName=\"me\"/>";
  EXPECT_FALSE(verifyStoredProcedureName(name, xml));
}

TEST(FillAnnotation, AnnotationMayLieInABlockOfTheCaller) {
  std::int64_t block[16] = {};
  AnnotationBase out(kAnnotationSlot, kCommandParamIndex, block, sizeof block);
  EXPECT_TRUE(XMLDecoder::FillAnnotation(AnnotatedClass().add("field", sampleRecord()).def(), out, "field"));
  EXPECT_EQ(setFieldsOf(out), (SetFields{{"name", "st"}}));
}

// --- Flags

TEST(FillAnnotation, FlagsOfByteZeroAreRead) {
  EXPECT_TRUE(has(kSuppressIndex, packRecord(packBytes({0x04}))));
  EXPECT_FALSE(has(kSuppressIndex, packRecord(packBytes({0xfb}))));
  EXPECT_TRUE(has(kZQTimeIndex, packRecord(packBytes({0x08}))));
  EXPECT_FALSE(has(kZQTimeIndex, packRecord(packBytes({0xf7}))));
}

TEST(FillAnnotation, DateTakesItsType) {
  EXPECT_EQ(filled(kXDateIndex, packRecord(packBytes({0x01}))), (SetFields{{"type", "1"}}));
  EXPECT_EQ(filled(kXDateIndex, packRecord(packBytes({0xfe}))), (SetFields{{"type", "2"}}));
  EXPECT_EQ(filled(kXDateIndex, packRecord(packBytes({0xfc}))), kAbsent);
}

TEST(FillAnnotation, PasswordTakesItsType) {
  EXPECT_EQ(filled(kPasswordIndex, packRecord(packBytes({0x50}))), (SetFields{{"encType", "5"}}));
  EXPECT_EQ(filled(kPasswordIndex, packRecord(packBytes({0xbf}))), (SetFields{{"encType", "11"}}));
  EXPECT_EQ(filled(kPasswordIndex, packRecord(packBytes({0x0f}))), kAbsent);
}

TEST(FillAnnotation, FlagsOfByteOneAreRead) {
  const struct {
    AnnotationIndex index;
    unsigned mask;
  } flags[] = {{kGenPathIndex, 0x80}, {kHideInReportsIndex, 0x40}, {kSingleInstancedIndex, 0x20}};
  for (const auto& flag : flags) {
    EXPECT_TRUE(has(flag.index, packRecord(packBytes({0, flag.mask})))) << flag.index;
    EXPECT_FALSE(has(flag.index, packRecord(packBytes({0xff, ~flag.mask & 0xff, 0xff})))) << flag.index;
    EXPECT_FALSE(has(flag.index, packRecord(packBytes({0xff})))) << flag.index;
  }
}

TEST(FillAnnotation, FlagsOfByteTwoAreRead) {
  const struct {
    AnnotationIndex index;
    unsigned mask;
  } flags[] = {{kMarkAsCDATAIndex, 0x80}, {kSensitiveIndex, 0x40}};
  for (const auto& flag : flags) {
    EXPECT_TRUE(has(flag.index, packRecord(packBytes({0, 0, flag.mask})))) << flag.index;
    EXPECT_FALSE(has(flag.index, packRecord(packBytes({0xff, 0xe1, ~flag.mask & 0xff})))) << flag.index;
    EXPECT_FALSE(has(flag.index, packRecord(packBytes({0xff, 0xe1})))) << flag.index;
  }
}

TEST(FillAnnotation, IndexAttributeTakesItsValueFromByteTwo) {
  EXPECT_EQ(filled(kIndexAttrIndex, packRecord(packBytes({0, 1, 1}))), (SetFields{{"indexedMetadata", "1"}}));
  EXPECT_EQ(filled(kIndexAttrIndex, packRecord(packBytes({0, 1, 0xfe}))),
            (SetFields{{"indexedMetadata", "0"}}));
  EXPECT_EQ(filled(kIndexAttrIndex, packRecord(packBytes({0, 0xfe, 1}))), kAbsent);
}

TEST(FillAnnotation, IndexAttributeWithoutByteTwoIsAbsentWithoutAWord) {
  LogCapture capture(25);
  EXPECT_EQ(filled(kIndexAttrIndex, packRecord(packBytes({0, 1}))), kAbsent);
  EXPECT_TRUE(capture.empty());
}

TEST(FillAnnotation, NoRecordAndAShortOneHaveNone) {
  AnnotatedClass owner;
  owner.add("none", nullptr)
      .add("empty", packBytes({0, 0, 0xff, 0xff, 0xff}))
      .add("two", packBytes({0, 2, 0xff}));
  LogCapture capture(25);
  for (const char* field : {"none", "empty", "two"}) {
    AnnotationBase out = annotation(kZQTimeIndex);
    EXPECT_FALSE(XMLDecoder::FillAnnotation(owner.def(), out, field)) << field;
  }
  EXPECT_TRUE(capture.empty());
}

TEST(FillAnnotation, OtherAnnotationsAreNeverThere) {
  const std::string everything = packRecord(packBytes({0xff, 0xe1, 0xff}));
  EXPECT_FALSE(has(kSummaryHeaderIndex, everything));
  AnnotationBase foreign(1, 203);
  EXPECT_FALSE(XMLDecoder::FillAnnotation(AnnotatedClass().add("field", everything).def(), foreign, "field"));
}

TEST(FillAnnotation, RecordOfTheClassIsReadByTheClassName) {
  AnnotatedClass owner;
  owner.add("field", nullptr).annotate(packRecord(packBytes({0, 2, 0}) + packText("GetIt")));
  AnnotationBase out = annotation(kStoredProcedureIndex);
  EXPECT_TRUE(XMLDecoder::FillAnnotation(owner.def(), out, "MadeUp"));
  EXPECT_EQ(setFieldsOf(out), (SetFields{{"name", "GetIt"}}));
}

// --- Objects and ids

TEST(FillAnnotation, NullClassIsLogged) {
  AnnotationBase out = annotation(kZQTimeIndex);
  LogCapture capture;
  EXPECT_FALSE(XMLDecoder::FillAnnotation(static_cast<const _ClassDef*>(nullptr), out, "field"));
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{"XMLDecoder::FillAnnotation", 0, "Received NULL ClassDef"}));
}

TEST(FillAnnotation, ObjectWithoutClassIsLogged) {
  AnnotationBase out = annotation(kZQTimeIndex);
  const XNMessageBase classless;
  LogCapture capture;
  EXPECT_FALSE(XMLDecoder::FillAnnotation(&classless, out, "field"));
  EXPECT_FALSE(XMLDecoder::FillAnnotation(static_cast<const XNMessageBase*>(nullptr), out, "field"));
  EXPECT_EQ(capture.count("XMLDecoder::FillAnnotation", 0, "Unable to obtain metadata of received object"),
            2u);
  EXPECT_EQ(capture.lines().size(), 2u);
}

TEST(FillAnnotationIds, AllAnnotationsAreListedInTheirOrder) {
  EXPECT_THAT(
      idsOf(packRecord(packBytes({0xff, 0xff, 0xff}))),
      ElementsAre(Annotation::Password::kTagId, Annotation::ZQTime::kTagId, Annotation::Suppress::kTagId,
                  Annotation::XDate::kTagId, Annotation::GenPath::kTagId, Annotation::HideInReports::kTagId,
                  Annotation::SingleInstanced::kTagId, Annotation::CommandParam::kTagId,
                  Annotation::Text::kTagId, Annotation::SearchCriteriaDef::kTagId,
                  Annotation::StoredProcedure::kTagId, Annotation::IndexAttr::kTagId,
                  Annotation::MarkAsCDATA::kTagId, Annotation::Sensitive::kTagId));
}

TEST(FillAnnotationIds, EachFlagHasItsId) {
  EXPECT_THAT(idsOf(packRecord(packBytes({0x10}))), ElementsAre(Annotation::Password::kTagId));
  EXPECT_THAT(idsOf(packRecord(packBytes({0x08}))), ElementsAre(Annotation::ZQTime::kTagId));
  EXPECT_THAT(idsOf(packRecord(packBytes({0x04}))), ElementsAre(Annotation::Suppress::kTagId));
  EXPECT_THAT(idsOf(packRecord(packBytes({0x02}))), ElementsAre(Annotation::XDate::kTagId));
  EXPECT_THAT(idsOf(packRecord(packBytes({0, 0x80}))), ElementsAre(Annotation::GenPath::kTagId));
  EXPECT_THAT(idsOf(packRecord(packBytes({0, 0x40}))), ElementsAre(Annotation::HideInReports::kTagId));
  EXPECT_THAT(idsOf(packRecord(packBytes({0, 0x20}))), ElementsAre(Annotation::SingleInstanced::kTagId));
  EXPECT_THAT(idsOf(packRecord(packBytes({0, 0x10}))), ElementsAre(Annotation::CommandParam::kTagId));
  EXPECT_THAT(idsOf(packRecord(packBytes({0, 0x08}))), ElementsAre(Annotation::Text::kTagId));
  EXPECT_THAT(idsOf(packRecord(packBytes({0, 0x04}))), ElementsAre(Annotation::SearchCriteriaDef::kTagId));
  EXPECT_THAT(idsOf(packRecord(packBytes({0, 0x02}))), ElementsAre(Annotation::StoredProcedure::kTagId));
  EXPECT_THAT(idsOf(packRecord(packBytes({0, 0x01}))), ElementsAre(Annotation::IndexAttr::kTagId));
  EXPECT_THAT(idsOf(packRecord(packBytes({0, 0, 0x80}))), ElementsAre(Annotation::MarkAsCDATA::kTagId));
  EXPECT_THAT(idsOf(packRecord(packBytes({0, 0, 0x40}))), ElementsAre(Annotation::Sensitive::kTagId));
  EXPECT_THAT(idsOf(packRecord(packBytes({0, 0, 0x3f}))), ElementsAre());
}

TEST(FillAnnotationIds, FlagBytesCountAsFarAsTheLengthReaches) {
  EXPECT_THAT(idsOf(packBytes({0, 3, 0x08, 0xff, 0xff})), ElementsAre(Annotation::ZQTime::kTagId));
  EXPECT_THAT(idsOf(packBytes({0, 4, 0x08, 0x01, 0xff})),
              ElementsAre(Annotation::ZQTime::kTagId, Annotation::IndexAttr::kTagId));
}

TEST(FillAnnotationIds, FieldWithoutRecordAddsNothing) {
  std::vector<std::uint32_t> ids{7};
  AnnotatedClass owner;
  owner.add("none", nullptr).add("two", packBytes({0, 2, 0xff}));
  EXPECT_FALSE(XMLDecoder::FillAnnotationIds(owner.field(0), ids));
  EXPECT_FALSE(XMLDecoder::FillAnnotationIds(owner.field(1), ids));
  EXPECT_THAT(ids, ElementsAre(7u));
}

TEST(AnnotationClasses, HaveTheirPlacesAndTags) {
  const struct {
    AnnotationIndex index;
    std::uint32_t tag;
    std::uint32_t generated;
  } classes[] = {{kXDateIndex, 0x1bf87826, Annotation::XDate::kTagId},
                 {kSuppressIndex, 0x1bb90ad5, Annotation::Suppress::kTagId},
                 {kPasswordIndex, 0x1b641ebb, Annotation::Password::kTagId},
                 {kSummaryHeaderIndex, 0x1bf0d1b3, Annotation::SummaryHeader::kTagId},
                 {kZQTimeIndex, 0x1b385de0, Annotation::ZQTime::kTagId},
                 {kGenPathIndex, 0x1b67d775, Annotation::GenPath::kTagId},
                 {kIndexAttrIndex, 0x1b47ddc3, Annotation::IndexAttr::kTagId},
                 {kCommandParamIndex, 0x1b897422, Annotation::CommandParam::kTagId},
                 {kHideInReportsIndex, 0x1bc1f598, Annotation::HideInReports::kTagId},
                 {kSearchCriteriaDefIndex, 0x1b58e53e, Annotation::SearchCriteriaDef::kTagId},
                 {kTextIndex, 0x1b27b94d, Annotation::Text::kTagId},
                 {kStoredProcedureIndex, 0x1ba39e50, Annotation::StoredProcedure::kTagId},
                 {kSingleInstancedIndex, 0x1b84a2e7, Annotation::SingleInstanced::kTagId},
                 {kMarkAsCDATAIndex, 0x1bb739ce, Annotation::MarkAsCDATA::kTagId},
                 {kSensitiveIndex, 0x1b2f6e76, Annotation::Sensitive::kTagId}};
  for (const auto& each : classes) {
    EXPECT_EQ(annotation(each.index).getTagID(), each.tag) << each.index;
    EXPECT_EQ(each.generated, each.tag) << each.index;
  }
}

TEST(AnnotationClasses, EnumerationsHaveTheirValues) {
  using Annotation::DateType;
  using Annotation::HideType;
  using Annotation::PasswordEncryptType;
  EXPECT_EQ(static_cast<int>(DateType::DATE_TIME), 1);
  EXPECT_EQ(static_cast<int>(DateType::DATE), 2);
  EXPECT_EQ(static_cast<int>(HideType::HIDE_ALL), 0);
  EXPECT_EQ(static_cast<int>(HideType::DO_NOT_HIDE), 1);
  EXPECT_EQ(static_cast<int>(HideType::HIDE_EXCEPT), 2);
  EXPECT_EQ(static_cast<int>(PasswordEncryptType::UNKNOWN), 0);
  EXPECT_EQ(static_cast<int>(PasswordEncryptType::PLAIN_TEXT), 1);
  EXPECT_EQ(static_cast<int>(PasswordEncryptType::SESSION_ENCRYPTION), 2);
  EXPECT_EQ(static_cast<int>(PasswordEncryptType::ZQPASSWORD_ENCRYPTION_VER1), 3);
  EXPECT_EQ(static_cast<int>(PasswordEncryptType::ZQPASSWORD_ENCRYPTION_VER2), 4);
  EXPECT_EQ(static_cast<int>(PasswordEncryptType::ZQPASSWORD_ENCRYPTION_VER3), 5);
  EXPECT_EQ(static_cast<int>(PasswordEncryptType::PASS_THROUGH), 6);
  EXPECT_EQ(static_cast<int>(PasswordEncryptType::SESSION_PLUS_ZQPASSWORD_VER2), 7);
  EXPECT_EQ(static_cast<int>(PasswordEncryptType::SESSION_PLUS_ZQPASSWORD_VER3), 8);
  EXPECT_EQ(static_cast<int>(PasswordEncryptType::BASE64), 9);
  EXPECT_EQ(static_cast<int>(PasswordEncryptType::ZQPASSWORD_ENCRYPTION_VER5), 10);
  EXPECT_EQ(static_cast<int>(PasswordEncryptType::ZQPASSWORD_ENCRYPTION_VER8), 11);
}

}  // namespace
}  // namespace zqxml
