// Classes of the library's catalogue that others rely on, to the field.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "catalogue_walk.h"

namespace zqxml {
namespace {

using ::testing::ElementsAre;
using ::testing::IsSupersetOf;

struct ExpectedField {
  const char* name;
  std::uint32_t hash;
  int label;
  int index;
  FieldDataType type;
};

TEST(SaveAlertTest, EveryNumberOfTheClass) {
  const _ClassDef& classDef = record(1, 203);
  EXPECT_STREQ(classDef.getName(), "SaveAlert");
  EXPECT_EQ(classDef.getClassId(), 0x20u);
  EXPECT_EQ(classDef.defaultsStart(), -1);
  EXPECT_EQ(classDef.getNumberOfFields(), 7);
  EXPECT_EQ(classDef.getNumberOfElements(), 16);
  constexpr ExpectedField kFields[] = {
      {"processinginstructioninfo", 0xcac2c9, 0, 0, FDT_OBJECT},
      {"impersonateUser", 0xff99e4, 0x750000b5, 1, FDT_UINT},
      {"loginName", 0x830194, 0x750000b6, 2, FDT_STRING},
      {"password", 0x89ba9b, 0x750000b7, 6, FDT_PSTRING},
      {"useNetworkShare", 0x8e3978, 0x750000b8, 7, FDT_UINT},
      {"alertLocation", 0xb27131, 0x750000b9, 8, FDT_STRING},
      {"zqpassword", 0xbea2d2, 0x750000ba, 12, FDT_STRING},
  };
  for (int i = 0; i < 7; ++i) {
    const FieldDef& field = classDef.getFields()[i];
    EXPECT_STREQ(field.getName(), kFields[i].name);
    EXPECT_EQ(field.getFieldHashId(), kFields[i].hash) << kFields[i].name;
    EXPECT_EQ(field.getLoczId(), kFields[i].label) << kFields[i].name;
    EXPECT_EQ(field.getMemNum(), i) << kFields[i].name;
    EXPECT_EQ(field.getIndex(), kFields[i].index) << kFields[i].name;
    EXPECT_EQ(field.getType(), kFields[i].type) << kFields[i].name;
  }
  EXPECT_EQ(bytes(classDef.getFields()[0].namePointer(), 4), bytes("\x12\x00\x00\x4a", 4));
}

TEST(ReportingOptionsTest, EveryEnumerator) {
  const _ClassDef& classDef = record(1, 210);
  EXPECT_STREQ(classDef.getName(), "ReportingOptions");
  EXPECT_EQ(classDef.getClassId(), 0xbdecb0u);
  EXPECT_EQ(classDef.getNumberOfElements(), 0);
  std::vector<std::pair<std::string, std::uint32_t>> values;
  for (const FieldDef& field : classDef) values.emplace_back(field.getName(), field.getFieldHashId());
  EXPECT_THAT(values, ElementsAre(std::pair("IMMEDIATE", 0x1u), std::pair("REPEATED", 0x2u),
                                  std::pair("CONDITION_CLEAR", 0x4u), std::pair("DELAYED", 0x8u),
                                  std::pair("EXTENDED_RETENTION_JOB", 0x10u),
                                  std::pair("CONTAINS_FAILED_JOBS", 0x20u), std::pair("DDB_JOB", 0x80u)));
}

std::vector<std::pair<int, std::string>> defaultsOf(int slot, const char* name) {
  std::vector<std::pair<int, std::string>> run;
  int index = -1;
  EXPECT_TRUE(catalogue::classIndexFromName(name, static_cast<short>(slot), index));
  const FieldDefaultEntry* entry = row(slot).defaults + record(slot, index).defaultsStart();
  for (; entry->memNum != -1; ++entry) run.emplace_back(entry->memNum, entry->text);
  return run;
}

TEST(DefaultRunsTest, UploadRequestStartsAtEight) {
  int index = -1;
  ASSERT_TRUE(catalogue::classIndexFromName("UploadRequest", 1, index));
  EXPECT_EQ(record(1, index).defaultsStart(), 8);
  EXPECT_THAT(defaultsOf(1, "UploadRequest"),
              ElementsAre(std::pair(6, "0"), std::pair(7, "0"), std::pair(9, "0")));
}

TEST(DefaultRunsTest, TapeLibrariesHaveOne) {
  EXPECT_THAT(defaultsOf(1, "EZGetTapeLibrariesReq"), ElementsAre(std::pair(4, "false")));
}

struct Tagged {
  int index;
  const char* name;
  std::uint32_t tag;
};

TEST(AnnotationClassesTest, EveryClassHasItsIndexAndTag) {
  constexpr Tagged kClasses[] = {
      {4, "XDate", 0x1BF87826},
      {8, "Suppress", 0x1BB90AD5},
      {11, "Password", 0x1B641EBB},
      {17, "SummaryHeader", 0x1BF0D1B3},
      {18, "ZQTime", 0x1B385DE0},
      {19, "GenPath", 0x1B67D775},
      {23, "IndexAttr", 0x1B47DDC3},
      {25, "CommandParam", 0x1B897422},
      {26, "HideInReports", 0x1BC1F598},
      {28, "SearchCriteriaDef", 0x1B58E53E},
      {33, "Text", 0x1B27B94D},
      {40, "StoredProcedure", 0x1BA39E50},
      {12, "SingleInstanced", 0x1B84A2E7},
      {60, "MarkAsCDATA", 0x1BB739CE},
      {64, "Sensitive", 0x1B2F6E76},
  };
  for (const Tagged& expected : kClasses) {
    EXPECT_STREQ(record(27, expected.index).getName(), expected.name);
    EXPECT_EQ(makeTagId(27, record(27, expected.index).getClassId()), expected.tag) << expected.name;
    EXPECT_FALSE(record(27, expected.index).isEnumeration());
  }
}

std::vector<std::string> fieldNames(const _ClassDef& classDef) {
  std::vector<std::string> names;
  for (const FieldDef& field : classDef) names.emplace_back(field.getName());
  return names;
}

TEST(AnnotationClassesTest, FieldsAreThoseOfTheRecords) {
  EXPECT_THAT(fieldNames(record(27, 4)), ElementsAre("type"));
  EXPECT_THAT(fieldNames(record(27, 11)), ElementsAre("encType"));
  EXPECT_THAT(fieldNames(record(27, 23)), ElementsAre("indexedMetadata"));
  EXPECT_THAT(fieldNames(record(27, 25)), ElementsAre("name", "useDefault", "ignoreReplace"));
  EXPECT_THAT(fieldNames(record(27, 33)),
              ElementsAre("text", "comment", "falseText", "commentID", "localise"));
  EXPECT_THAT(fieldNames(record(27, 40)), ElementsAre("name"));
  EXPECT_THAT(fieldNames(record(27, 28)),
              ElementsAre("type", "Or", "And", "Nor", "Between", "In", "Nin", "Lt", "Gt", "Equals1", "Lte",
                          "Gte", "metadata", "DefaultVisibility", "searchGroupType", "filteredSearchGroup",
                          "searchType", "filterSupportedVersion", "text"));
  for (int index : {8, 12, 17, 18, 19, 26, 60, 64})
    EXPECT_EQ(record(27, index).getNumberOfFields(), 0) << index;
}

std::vector<std::pair<std::string, int>> valuesOf(int slot, const char* name) {
  std::vector<std::pair<std::string, int>> values;
  int index = -1;
  EXPECT_TRUE(catalogue::classIndexFromName(name, static_cast<short>(slot), index)) << name;
  if (index < 0) return values;
  for (const FieldDef& field : record(slot, index))
    values.emplace_back(field.getName(), static_cast<int>(field.getFieldHashId()));
  return values;
}

TEST(EnumerationsTest, ValuesThatTheRuntimeKnows) {
  using Value = std::pair<std::string, int>;
  EXPECT_THAT(valuesOf(27, "DateType"), ElementsAre(Value("DATE_TIME", 1), Value("DATE", 2)));
  EXPECT_THAT(valuesOf(27, "HideType"),
              ElementsAre(Value("HIDE_ALL", 0), Value("DO_NOT_HIDE", 1), Value("HIDE_EXCEPT", 2)));
  EXPECT_THAT(valuesOf(27, "PasswordEncryptType"),
              ElementsAre(Value("UNKNOWN", 0), Value("PLAIN_TEXT", 1), Value("SESSION_ENCRYPTION", 2),
                          Value("ZQPASSWORD_ENCRYPTION_VER1", 3), Value("ZQPASSWORD_ENCRYPTION_VER2", 4),
                          Value("ZQPASSWORD_ENCRYPTION_VER3", 5), Value("PASS_THROUGH", 6),
                          Value("SESSION_PLUS_ZQPASSWORD_VER2", 7), Value("SESSION_PLUS_ZQPASSWORD_VER3", 8),
                          Value("BASE64", 9), Value("ZQPASSWORD_ENCRYPTION_VER5", 10),
                          Value("ZQPASSWORD_ENCRYPTION_VER8", 11)));
  EXPECT_THAT(valuesOf(20, "EventArgumentType"),
              ElementsAre(Value("INT", 0), Value("LONG", 1), Value("LONGLONG", 2), Value("STRING", 3),
                          Value("UINT", 4), Value("ULONG", 5), Value("ULONGLONG", 6)));
}

TEST(EntitiesTest, ProcessingInstructionInfoStandsAtSeventyFour) {
  EXPECT_STREQ(record(18, 74).getName(), "ProcessingInstructionInfo");
  EXPECT_EQ(makeTagId(18, record(18, 74).getClassId()), 0x12454ea9u);
}

TEST(EntitiesTest, GenericEntityHasATypeAndIds) {
  const _ClassDef* entity = catalogue::classDef(0x128C0C7Au);
  ASSERT_NE(entity, nullptr);
  EXPECT_STREQ(entity->getName(), "GenericEntity");
  EXPECT_STREQ(entity->getFields()[0].getName(), "_type_");
  EXPECT_THAT(fieldNames(*entity), IsSupersetOf({"hubCellId", "clientId"}));
  EXPECT_EQ(entity->getFields()[catalogue::fieldPosition(entity, "hubCellId")].getType(), FDT_INT);
}

TEST(TestMessagesTest, WorkedExampleHasItsNumbers) {
  const _ClassDef* message = catalogue::classDef(0x1ed44bddu);
  ASSERT_NE(message, nullptr);
  EXPECT_STREQ(message->getName(), "TestMessage2");
  constexpr ExpectedField kFirst[] = {{"intField", 0x46b64b, 0, 0, FDT_INT},
                                      {"strField", 0x0e2949, 0, 1, FDT_STRING},
                                      {"ListInt", 0x10da51, 0, 5, FDT_LIST_INT},
                                      {"M1", 0x000984, 0, 6, FDT_OBJECT},
                                      {"mapStr_LL", 0x6952ca, 0, 7, FDT_MAP_STRING_INT64}};
  for (int i = 0; i < 5; ++i) {
    EXPECT_STREQ(message->getFields()[i].getName(), kFirst[i].name);
    EXPECT_EQ(message->getFields()[i].getFieldHashId(), kFirst[i].hash);
    EXPECT_EQ(message->getFields()[i].getType(), kFirst[i].type);
    EXPECT_EQ(message->getFields()[i].getIndex(), kFirst[i].index);
  }
  const _ClassDef* part = catalogue::classOfField(message->getFields()[3]);
  EXPECT_STREQ(part->getName(), "TestMessage1");
  EXPECT_STREQ(part->getFields()[0].getName(), "intFieldM1");
  EXPECT_EQ(part->getFields()[0].getFieldHashId(), 0x72590fu);
}

TEST(TestMessagesTest, MapsAndTimesHaveTheirTypes) {
  const _ClassDef* message = catalogue::classDef(0x1ed44bddu);
  const auto typeOf = [&](const char* name) {
    return message->getFields()[catalogue::fieldPosition(message, name)].getType();
  };
  EXPECT_EQ(typeOf("mapLL_LL"), FDT_MAP_INT64_INT64);
  EXPECT_EQ(typeOf("mapLL_Str"), FDT_MAP_INT64_STRING);
  EXPECT_EQ(typeOf("mapLL_M1"), FDT_MAP_INT64_OBJECT);
  EXPECT_EQ(typeOf("mapStr_LL"), FDT_MAP_STRING_INT64);
  EXPECT_EQ(typeOf("mapStr_Str"), FDT_MAP_STRING_STRING);
  EXPECT_EQ(typeOf("mapStr_M1"), FDT_MAP_STRING_OBJECT);
  EXPECT_EQ(typeOf("mapM1_M1"), FDT_MAP_OBJECT_OBJECT);
  EXPECT_EQ(typeOf("time32"), FDT_TIME32);
  EXPECT_EQ(typeOf("time64"), FDT_TIME64);
}

TEST(TestMessagesTest, MapOfObjectsHasItsNameBehindTwoReferences) {
  const _ClassDef* message = catalogue::classDef(0x1ed44bddu);
  const FieldDef& field = message->getFields()[catalogue::fieldPosition(message, "mapM1_M1")];
  EXPECT_EQ(bytes(field.namePointer(), 17), bytes("\x1e\x00\x0d\xb1\x1e\x00\x0d\xb1mapM1_M1", 17));
}

TEST(MonitoringTest, TwelveClassesHaveTheirIds) {
  constexpr std::pair<std::uint32_t, const char*> kClasses[] = {
      {537016, "SysMonNASContent"},         {10565217, "GenericEventList"},
      {2005286, "GenericSysMonPlainEvent"}, {11355575, "FetchAllNASAuditContent"},
      {2983808, "SysMonPolicyAndTemplate"}, {11716675, "RemoveItemsToMonitor"},
      {4009446, "FetchResMonPoliciesResp"}, {11885347, "GenericEvent"},
      {5000136, "FetchResMonPoliciesReq"},  {13502116, "GenericSysMonEvent"},
      {8796514, "GenericSysMonEventList"},  {14900576, "AddItemsToMonitor"},
  };
  for (const auto& [id, name] : kClasses) {
    const _ClassDef* classDef = catalogue::classDef(makeTagId(119, id));
    ASSERT_NE(classDef, nullptr) << name;
    EXPECT_STREQ(classDef->getName(), name);
  }
}

TEST(AnnotationsTest, SampleRecordIsExact) {
  const _ClassDef* sample = catalogue::classDef(makeTagId(30, nameHash("AnnotationSample")));
  ASSERT_NE(sample, nullptr);
  const FieldDef& field = sample->getFields()[catalogue::fieldPosition(sample, "textAndCommand")];
  const std::string expected =
      bytes("\x00\x1a\x00\x18\x00\x80\x00\x0d", 8) + "Schedule Type" + bytes("\x80\x00\x02", 3) + "st";
  ASSERT_TRUE(field.hasAnnotation());
  EXPECT_EQ(bytes(field.getAnnotationFlags(), 26), expected);
}

TEST(AnnotationsTest, ClassCarriesItsOwnInATrailingRecord) {
  const _ClassDef* request =
      catalogue::classDef(makeTagId(1, nameHash("GetAlertCriteriaForServiceOfflineReq")));
  ASSERT_NE(request, nullptr);
  const FieldDef& self = *(request->end() - 1);
  EXPECT_EQ(self.getType(), FDT_NONE);
  const std::string procedure = "ZqGetAlertCriteriaForServiceOffline";
  EXPECT_EQ(bytes(self.getAnnotationFlags(), 7 + procedure.size()),
            bytes("\x00\x2a\x00\x02\x00\x00\x23", 7) + procedure);
}

TEST(AnnotationsTest, LengthsOfAllRecordsAreTheirOwn) {
  int records = 0;
  forEachClass([&](int slot, int, const _ClassDef& classDef) {
    for (const FieldDef& field : classDef) {
      if (!field.hasAnnotation()) continue;
      const auto* record = reinterpret_cast<const unsigned char*>(field.getAnnotationFlags());
      const int length = record[0] << 8 | record[1];
      EXPECT_TRUE(length >= 3 || (length == 0 && field.getType() == FDT_NONE)) << nameOf(slot, classDef);
      ++records;
    }
  });
  EXPECT_GT(records, 60);
}

}  // namespace
}  // namespace zqxml
