#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/annotation/annotation_samples.h>
#include <tests/support/log_capture.h>
#include <zqxml/catalogue/generated/App.h>
#include <zqxml/catalogue/generated/ZQGui.h>
#include <zqxml/catalogue/lookup.h>
#include <zqxml/xml/xml_decoder.h>

#include <string>

namespace zqxml {
namespace {

using testing::ElementsAre;

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
