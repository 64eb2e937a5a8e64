#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/annotation/annotation_samples.h>
#include <tests/support/log_capture.h>
#include <zqxml/annotation/stored_procedure.h>
#include <zqxml/catalogue/generated/Annotation.h>
#include <zqxml/catalogue/generated/App.h>
#include <zqxml/catalogue/generated/ZQGui.h>
#include <zqxml/catalogue/lookup.h>
#include <zqxml/xml/xml_decoder.h>

#include <string>

namespace zqxml {
namespace {

using testing::ElementsAre;

AnnotationBase annotation(AnnotationIndex index) {
  return AnnotationBase(kAnnotationSlot, index);
}

/// Whether a field with this record has the annotation.
bool has(AnnotationIndex index, const std::string& record) {
  AnnotationBase out = annotation(index);
  return XMLDecoder::FillAnnotation(AnnotatedClass().add("field", record).def(), out, "field");
}

/// What the annotation takes from a field with this record; one entry "absent" when it is not there.
SetFields filled(AnnotationIndex index, const std::string& record) {
  AnnotationBase out = annotation(index);
  if (!XMLDecoder::FillAnnotation(AnnotatedClass().add("field", record).def(), out, "field"))
    return {{"absent", setFieldsOf(out).empty() ? "" : "but not empty"}};
  return setFieldsOf(out);
}
const SetFields kAbsent{{"absent", ""}};

std::vector<std::uint32_t> idsOf(const std::string& record) {
  std::vector<std::uint32_t> ids;
  AnnotatedClass owner;
  owner.add("field", record);
  EXPECT_EQ(XMLDecoder::FillAnnotationIds(owner.field(0), ids), record.size() >= 3);
  return ids;
}

/// 26 bytes: `text` "Schedule Type" and `name` "st".
std::string sampleRecord() {
  return packBytes({0x00, 0x1a, 0x00, 0x18, 0x00, 0x80, 0x00, 0x0d}) + "Schedule Type" +
         packBytes({0x80, 0x00, 0x02}) + "st";
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

// --- Sections

std::string textRecord(unsigned flags, const std::string& values) {
  return packRecord(packBytes({0, 0x08, 0, flags}) + values);
}

TEST(FillAnnotation, TextTakesEachOfItsFields) {
  EXPECT_EQ(filled(kTextIndex, textRecord(0x80, packText("a"))), (SetFields{{"text", "a"}}));
  EXPECT_EQ(filled(kTextIndex, textRecord(0x40, packText("b"))), (SetFields{{"comment", "b"}}));
  EXPECT_EQ(filled(kTextIndex, textRecord(0x20, packText("c"))), (SetFields{{"falseText", "c"}}));
  EXPECT_EQ(filled(kTextIndex, textRecord(0x10, packBytes({0x80, 0, 0, 1}))),
            (SetFields{{"commentID", "2147483649"}}));
  EXPECT_EQ(filled(kTextIndex, textRecord(0x08, "")), (SetFields{{"localise", "0"}}));
  EXPECT_EQ(filled(kTextIndex, textRecord(0x0c, "")), (SetFields{{"localise", "1"}}));
  EXPECT_EQ(filled(kTextIndex, textRecord(0x04, "")), SetFields{});
  EXPECT_EQ(
      filled(kTextIndex,
             textRecord(0xff, packText("a") + packText("") + packText("c") + packBytes({0, 0, 1, 2}))),
      (SetFields{
          {"text", "a"}, {"comment", ""}, {"falseText", "c"}, {"commentID", "258"}, {"localise", "1"}}));
}

std::string commandRecord(unsigned flags, const std::string& values) {
  return packRecord(packBytes({0, 0x10, 0, flags}) + values);
}

TEST(FillAnnotation, CommandParamTakesEachOfItsFields) {
  EXPECT_EQ(filled(kCommandParamIndex, commandRecord(0x80, packText("n"))), (SetFields{{"name", "n"}}));
  EXPECT_EQ(filled(kCommandParamIndex, commandRecord(0x40, "")), (SetFields{{"useDefault", "0"}}));
  EXPECT_EQ(filled(kCommandParamIndex, commandRecord(0x50, "")), (SetFields{{"useDefault", "1"}}));
  EXPECT_EQ(filled(kCommandParamIndex, commandRecord(0x04, "")), (SetFields{{"ignoreReplace", "0"}}));
  EXPECT_EQ(filled(kCommandParamIndex, commandRecord(0x01, "")), (SetFields{{"ignoreReplace", "0"}}));
  EXPECT_EQ(filled(kCommandParamIndex, commandRecord(0x0d, "")), (SetFields{{"ignoreReplace", "1"}}));
  EXPECT_EQ(filled(kCommandParamIndex, commandRecord(0x1a, "")), SetFields{});
  EXPECT_EQ(filled(kCommandParamIndex, commandRecord(0xdd, packText("n"))),
            (SetFields{{"name", "n"}, {"useDefault", "1"}, {"ignoreReplace", "1"}}));
}

TEST(FillAnnotation, KeepsTheByteBehindCommandParam) {
  // The last section would begin one byte behind the end of the name.
  const std::string command = packBytes({0x80}) + packText("n");
  const std::string head = packBytes({0, 0x12, 0});
  EXPECT_EQ(filled(kStoredProcedureIndex, packRecord(head + command + "?" + packText("p"))),
            (SetFields{{"name", "p"}}));
  LogCapture capture;
  EXPECT_EQ(filled(kStoredProcedureIndex, packRecord(head + command + packText(""))), kAbsent);
}

/// A record with SearchCriteriaDef: presence bytes, value byte, text, value bytes.
std::string searchRecord(unsigned presence, unsigned types, const std::string& text, unsigned rest) {
  return packRecord(packBytes({0, 0x04, 0, presence >> 16, presence >> 8, presence, types}) + text +
                    packBytes({rest >> 16, rest >> 8, rest}));
}

TEST(FillAnnotation, SearchCriteriaTakeEachBoolean) {
  const struct {
    const char* field;
    unsigned presence;
    unsigned value;
  } criteria[] = {
      {"Or", 0x100000, 0x040000},
      {"And", 0x080000, 0x020000},
      {"Nor", 0x040000, 0x010000},
      {"Between", 0x020000, 0x000400},
      {"In", 0x010000, 0x000200},
      {"Nin", 0x008000, 0x000100},
      {"Lt", 0x004000, 0x000080},
      {"Gt", 0x002000, 0x000040},
      {"Equals1", 0x001000, 0x000020},
      {"Lte", 0x000800, 0x000010},
      {"Gte", 0x000400, 0x000008},
      {"metadata", 0x000200, 0x000004},
      {"DefaultVisibility", 0x000100, 0x000002},
  };
  for (const auto& criterion : criteria) {
    EXPECT_EQ(filled(kSearchCriteriaDefIndex, searchRecord(criterion.presence, 0xff, "", criterion.value)),
              (SetFields{{criterion.field, "1"}}));
    EXPECT_EQ(
        filled(kSearchCriteriaDefIndex, searchRecord(criterion.presence, 0, "", ~criterion.value & 0xffffff)),
        (SetFields{{criterion.field, "0"}}));
  }
}

TEST(FillAnnotation, SearchCriteriaTakeEachNumberAndTheText) {
  EXPECT_EQ(filled(kSearchCriteriaDefIndex, searchRecord(0x200000, 0xa5, "", 0)),
            (SetFields{{"type", "10"}}));
  EXPECT_EQ(filled(kSearchCriteriaDefIndex, searchRecord(0x80, 0xa5, "", 0)),
            (SetFields{{"searchGroupType", "5"}}));
  EXPECT_EQ(filled(kSearchCriteriaDefIndex, searchRecord(0x40, 0, "", 0xb8ffff)),
            (SetFields{{"filteredSearchGroup", "23"}}));
  EXPECT_EQ(filled(kSearchCriteriaDefIndex, searchRecord(0x25, 0, "", 0)), (SetFields{{"searchType", "5"}}));
  EXPECT_EQ(filled(kSearchCriteriaDefIndex, searchRecord(0x10, 0, "", 0xffb8ff)),
            (SetFields{{"filterSupportedVersion", "23"}}));
  EXPECT_EQ(filled(kSearchCriteriaDefIndex, searchRecord(0x08, 0, packText("find"), 0)),
            (SetFields{{"text", "find"}}));
}

TEST(FillAnnotation, SearchCriteriaWithoutPresenceAreNotSet) {
  EXPECT_EQ(filled(kSearchCriteriaDefIndex, searchRecord(0x000007, 0xff, "", 0xffffff)), SetFields{});
}

TEST(FillAnnotation, SearchCriteriaTakeEverythingAtOnce) {
  EXPECT_EQ(filled(kSearchCriteriaDefIndex, searchRecord(0xffffff, 0x12, packText("t"), 0xffffff)).size(),
            19u);
}

TEST(FillAnnotation, EachSectionLiesBehindThoseBeforeIt) {
  const std::string head = packBytes({0, 0x1e, 0});
  const std::string text = packBytes({0x88}) + packText("label");
  const std::string command = packBytes({0x80}) + packText("n") + "?";
  const std::string search = packBytes({0x20, 0, 0x08, 0x70}) + packText("find") + packBytes({0, 0, 0});
  const std::string record = packRecord(head + text + command + search + packText("proc"));
  EXPECT_EQ(filled(kTextIndex, record), (SetFields{{"text", "label"}, {"localise", "0"}}));
  EXPECT_EQ(filled(kCommandParamIndex, record), (SetFields{{"name", "n"}}));
  EXPECT_EQ(filled(kSearchCriteriaDefIndex, record), (SetFields{{"type", "7"}, {"text", "find"}}));
  EXPECT_EQ(filled(kStoredProcedureIndex, record), (SetFields{{"name", "proc"}}));
  EXPECT_EQ(filled(kStoredProcedureIndex, packRecord(packBytes({0, 0x0a, 0}) + text + packText("p"))),
            (SetFields{{"name", "p"}}));
  EXPECT_EQ(filled(kStoredProcedureIndex, packRecord(packBytes({0, 0x06, 0}) + search + packText("p"))),
            (SetFields{{"name", "p"}}));
}

TEST(FillAnnotation, SectionThatTheRecordDoesNotReachIsLogged) {
  const struct {
    AnnotationIndex index;
    unsigned flag;
    const char* name;
  } sections[] = {{kTextIndex, 0x08, "Text"},
                  {kCommandParamIndex, 0x10, "CommandParam"},
                  {kSearchCriteriaDefIndex, 0x04, "SearchCriteriaDef"},
                  {kStoredProcedureIndex, 0x02, "StoredProcedure"}};
  for (const auto& section : sections) {
    for (const std::string& record :
         {packRecord(packBytes({0, section.flag})), packRecord(packBytes({0, section.flag, 0}))}) {
      LogCapture capture;
      EXPECT_EQ(filled(section.index, record), kAbsent);
      EXPECT_THAT(capture.lines(),
                  ElementsAre(CapturedLine{"XMLDecoder::FillAnnotation", 0,
                                           "Failed to parse the annotation [" + std::string(section.name) +
                                               "] to fill the field [field]"}));
    }
  }
}

TEST(FillAnnotation, SectionCutAnywhereIsLoggedAndSetsNothing) {
  const struct {
    AnnotationIndex index;
    std::string record;
  } wholes[] = {
      {kTextIndex,
       textRecord(0xf8, packText("ab") + packText("c") + packText("d") + packBytes({1, 2, 3, 4}))},
      {kCommandParamIndex, commandRecord(0x80, packText("name"))},
      {kSearchCriteriaDefIndex, searchRecord(0xfffff8, 0xff, packText("find"), 0xffffff)},
      {kStoredProcedureIndex, packRecord(packBytes({0, 0x02, 0}) + packText("proc"))},
  };
  for (const auto& whole : wholes) {
    EXPECT_NE(filled(whole.index, whole.record), kAbsent);
    for (std::size_t size = 4; size < whole.record.size(); ++size) {
      LogCapture capture;
      // A block of just so many bytes, for a sanitizer to watch.
      const std::string cut = packRecord(whole.record.substr(2, size - 2));
      EXPECT_EQ(filled(whole.index, std::string(cut.begin(), cut.end())), kAbsent)
          << whole.index << " at " << size;
      EXPECT_TRUE(capture.hasPart("XMLDecoder::FillAnnotation", 0, "Failed to parse the annotation ["));
    }
  }
}

TEST(FillAnnotation, SectionBehindOneThatIsCutIsLogged) {
  LogCapture capture;
  EXPECT_EQ(
      filled(kStoredProcedureIndex, packRecord(packBytes({0, 0x0a, 0, 0x80}) + packLength(9) + "short")),
      kAbsent);
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{
                  "XMLDecoder::FillAnnotation", 0,
                  "Failed to parse the annotation [StoredProcedure] to fill the field [field]"}));
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

// --- Records that the schema compiler packed

/// What the annotation takes from a field of the sample class.
SetFields compiled(AnnotationIndex index, const char* field) {
  AnnotationBase out = annotation(index);
  if (!XMLDecoder::FillAnnotation(catalogue::classDef(App::AnnotationSample::kTagId), out, field))
    return kAbsent;
  return setFieldsOf(out);
}

TEST(CompiledAnnotations, SectionsHoldWhatTheSchemaSays) {
  EXPECT_EQ(compiled(kTextIndex, "allTexts"), (SetFields{{"text", "Yes"},
                                                         {"comment", "a comment"},
                                                         {"falseText", "No"},
                                                         {"commentID", "1023411538"},
                                                         {"localise", "1"}}));
  EXPECT_EQ(compiled(kCommandParamIndex, "command"),
            (SetFields{{"name", "cmd"}, {"useDefault", "1"}, {"ignoreReplace", "1"}}));
  EXPECT_EQ(compiled(kTextIndex, "textAndCommand"), (SetFields{{"text", "Schedule Type"}}));
  EXPECT_EQ(compiled(kCommandParamIndex, "textAndCommand"), (SetFields{{"name", "st"}}));
  EXPECT_EQ(compiled(kSearchCriteriaDefIndex, "searchable"), (SetFields{{"type", "2"},
                                                                        {"Or", "1"},
                                                                        {"And", "0"},
                                                                        {"Between", "1"},
                                                                        {"Lt", "1"},
                                                                        {"Gte", "0"},
                                                                        {"DefaultVisibility", "1"},
                                                                        {"searchGroupType", "2"},
                                                                        {"filteredSearchGroup", "2"},
                                                                        {"searchType", "2"},
                                                                        {"filterSupportedVersion", "2"},
                                                                        {"text", "mail"}}));
  EXPECT_EQ(compiled(kSearchCriteriaDefIndex, "textAndSearch"), (SetFields{{"In", "1"}, {"metadata", "1"}}));
  EXPECT_EQ(compiled(kStoredProcedureIndex, "procedure"), (SetFields{{"name", "ZqProcedure"}}));
}

TEST(CompiledAnnotations, FlagsHoldWhatTheSchemaSays) {
  EXPECT_EQ(compiled(kXDateIndex, "everyFlag"), (SetFields{{"type", "2"}}));
  EXPECT_EQ(compiled(kIndexAttrIndex, "everyFlag"), (SetFields{{"indexedMetadata", "1"}}));
  EXPECT_EQ(compiled(kIndexAttrIndex, "notIndexed"), (SetFields{{"indexedMetadata", "0"}}));
  for (const AnnotationIndex index : {kZQTimeIndex, kSuppressIndex, kGenPathIndex, kHideInReportsIndex,
                                      kSingleInstancedIndex, kMarkAsCDATAIndex, kSensitiveIndex}) {
    EXPECT_EQ(compiled(index, "everyFlag"), SetFields{}) << index;
  }
  EXPECT_EQ(compiled(kPasswordIndex, "ver3Password"), (SetFields{{"encType", "5"}}));
  EXPECT_EQ(compiled(kPasswordIndex, "barePassword"), kAbsent);
}

TEST(CompiledAnnotations, ClassNamesItsStoredProcedure) {
  AnnotationBase out = annotation(kStoredProcedureIndex);
  const ZQGui::GetAlertCriteriaForServiceOfflineReq message;
  EXPECT_TRUE(XMLDecoder::FillAnnotation(&message, out, "GetAlertCriteriaForServiceOfflineReq"));
  EXPECT_EQ(setFieldsOf(out), (SetFields{{"name", "ZqGetAlertCriteriaForServiceOffline"}}));
}

}  // namespace
}  // namespace zqxml
