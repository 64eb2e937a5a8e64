#include "tools/zqmsg/catalogue_json.h"

#include <gtest/gtest.h>
#include <zqxml/catalogue/records.h>

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>

#include "tools/zqmsg/json/json_text.h"

namespace zqxml::tool {
namespace {

using nlohmann::json;

const json& dumped() {
  static const json document = [] {
    std::string text;
    writeCatalogueJson([&text](std::string_view piece) { text += piece; });
    return json::parse(text);
  }();
  return document;
}

json classNamed(const std::string& subsystem, const std::string& name) {
  for (const json& row : dumped()["subsystems"])
    if (row["name"] == subsystem)
      for (const json& record : row["classes"])
        if (record["name"] == name) return record;
  ADD_FAILURE() << "no class " << subsystem << '.' << name;
  return {};
}

TEST(CatalogueJson, ObjectsHaveTheirFixedKeys) {
  EXPECT_EQ(dumped().size(), 1u);
  const json& row = dumped()["subsystems"].at(0);
  EXPECT_EQ(
      json({{"slot", 1}, {"name", "ZQGui"}, {"old", true}, {"records", 285}, {"classes", row["classes"]}}),
      row);
}

TEST(CatalogueJson, AFieldHasEverythingThatItsRecordHas) {
  const json record = classNamed("ZQGui", "SaveAlert");
  EXPECT_EQ(record["fields"].at(2), json({{"name", "loginName"},
                                          {"type", 8},
                                          {"hash", 8585620},
                                          {"memNum", 2},
                                          {"index", 2},
                                          {"locz", 1962934454},
                                          {"refs", json::array()},
                                          {"annotation", nullptr}}));
  EXPECT_EQ(record["index"], 203);
  EXPECT_EQ(record["id"], 32);
  EXPECT_EQ(record["elements"], 16);
  EXPECT_EQ(record["enum"], false);
  EXPECT_EQ(record["defaults"], json::array());
  EXPECT_EQ(record.size(), 7u);
}

TEST(CatalogueJson, ReferencesAreSlotAndClassIndex) {
  EXPECT_EQ(classNamed("ZQGui", "SaveAlert")["fields"].at(0)["refs"], json::parse("[[18,74]]"));
  const json fields = classNamed("App", "TestMessage2")["fields"];
  bool found = false;
  for (const json& field : fields) {
    if (field["type"] != 39) continue;
    found = true;
    EXPECT_EQ(field["refs"], json::parse("[[30,3505],[30,3505]]"));
  }
  EXPECT_TRUE(found);
}

TEST(CatalogueJson, AnnotationsAreInHexadecimal) {
  EXPECT_EQ(classNamed("ZQGui", "SaveAlert")["fields"].at(3)["annotation"], "000310");
}

TEST(CatalogueJson, DefaultsAreMemberNumberAndText) {
  EXPECT_EQ(classNamed("ZQGui", "UploadRequest")["defaults"], json::parse(R"([[6,"0"],[7,"0"],[9,"0"]])"));
}

TEST(CatalogueJson, EnumeratorsHaveTheirValueAsHash) {
  const json record = classNamed("Demo", "SignedMode");
  EXPECT_EQ(record["enum"], true);
  EXPECT_EQ(record["elements"], 0);
  EXPECT_EQ(record["fields"].at(0)["hash"], 4294967295u);
  EXPECT_EQ(record["fields"].at(0)["type"], 32);
}

// The document says as much as the tables, record by record.
TEST(CatalogueJson, EveryNamedRecordIsThere) {
  std::size_t at = 0;
  for (int slot = 0; slot < kSubsystemCount; ++slot) {
    const SubsystemDef& row = gSubsystemTable[slot];
    if (row.name == nullptr) continue;
    const json& told = dumped()["subsystems"].at(at++);
    EXPECT_EQ(told["slot"], slot);
    EXPECT_EQ(told["old"], row.oldWay);
    EXPECT_EQ(told["records"], row.recordCount);
    std::size_t classAt = 0;
    for (int index = 0; index < row.recordCount; ++index) {
      const _ClassDef& record = row.classDefs[index];
      if (record.getName() == nullptr) continue;
      const json& toldClass = told["classes"].at(classAt++);
      EXPECT_EQ(toldClass["index"], index);
      EXPECT_EQ(toldClass["name"], record.getName());
      EXPECT_EQ(toldClass["id"], record.getClassId());
      ASSERT_EQ(toldClass["fields"].size(), static_cast<std::size_t>(record.getNumberOfFields()));
      std::size_t fieldAt = 0;
      for (const FieldDef& field : record) {
        const json& toldField = toldClass["fields"].at(fieldAt++);
        EXPECT_EQ(toldField["name"], field.getName());
        EXPECT_EQ(toldField["hash"], field.getFieldHashId());
        EXPECT_EQ(toldField["memNum"], field.getMemNum());
        EXPECT_EQ(toldField["index"], field.getIndex());
        EXPECT_EQ(toldField["type"], static_cast<int>(field.getType()));
        EXPECT_EQ(toldField["refs"].size() * ClassRef::kSize, field.classRefBytes());
        EXPECT_EQ(toldField["annotation"].is_null(), !field.hasAnnotation());
      }
    }
    EXPECT_EQ(told["classes"].size(), classAt);
  }
  EXPECT_EQ(dumped()["subsystems"].size(), at);
}

TEST(CatalogueJson, TextsAreEscaped) {
  std::string out;
  appendJsonString(out, std::string_view("a\"\\\n\0ü\xff", 8));
  EXPECT_EQ(out, "\"a\\\"\\\\\\u000a\\u0000ü\xef\xbf\xbd\"");
  EXPECT_EQ(json::parse(out).get<std::string>(), std::string("a\"\\\n\0ü\xef\xbf\xbd", 10));
}

}  // namespace
}  // namespace zqxml::tool
