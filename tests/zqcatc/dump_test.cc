// Dumps: what is read, what is refused, and that a dump says the same as the schema it came from.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "catalogue_diff.h"
#include "dump_reader.h"

namespace zqxml::zqcatc {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

std::string field(const std::string& numbers = R"("type":1,"hash":99,"memNum":0,"index":0,"locz":0)",
                  const std::string& rest = R"("refs":[],"annotation":null)") {
  return R"({"name":"f",)" + numbers + "," + rest + "}";
}
std::string document(const std::string& fields, const std::string& defaults = "",
                     const std::string& record = R"("index":0,"name":"C","id":7,"elements":1,"enum":false)") {
  return R"({"subsystems":[{"slot":202,"name":"T","old":false,"records":20,"classes":[{)" + record +
         R"(,"fields":[)" + fields + R"(],"defaults":[)" + defaults + "]}]}]}";
}

struct Read {
  std::optional<Snapshot> snapshot;
  std::string error;
};
Read read(std::string text) {
  const SchemaSource source{"d.json", std::move(text)};
  Diagnostics diagnostics;
  Read result;
  result.snapshot = readDump(source, diagnostics);
  std::ostringstream lines;
  diagnostics.print(lines);
  result.error = lines.str();
  EXPECT_NE(result.snapshot.has_value(), diagnostics.hasErrors());
  return result;
}

TEST(DumpTest, EveryKeyIsRead) {
  const Read result = read(document(field(R"("type":10,"hash":16777215,"memNum":0,"index":0,"locz":-5)",
                                          R"("refs":[[202,3]],"annotation":"000340")"),
                                    R"([0,"2"])"));
  ASSERT_TRUE(result.snapshot.has_value()) << result.error;
  const SubsystemShot& subsystem = result.snapshot->subsystems.at(0);
  EXPECT_EQ(subsystem.name, "T");
  EXPECT_EQ(subsystem.records, 20);
  const ClassShot& record = subsystem.classes.at(0);
  EXPECT_EQ(record.fullName, "T_C");
  EXPECT_EQ(record.id, 7u);
  EXPECT_EQ(result.snapshot->find({202, 0}), &record);
  EXPECT_EQ(result.snapshot->find({202, 1}), nullptr);
  const FieldShot& only = record.fields.at(0);
  EXPECT_EQ(only.type, 10u);
  EXPECT_EQ(only.hash, 16777215u);
  EXPECT_EQ(only.label, -5);
  EXPECT_EQ(only.references.at(0).index, 3);
  EXPECT_EQ(only.annotation, std::string("\0\3\x40", 3));
  EXPECT_EQ(only.defaultText, "2");
}

TEST(DumpTest, UnknownTypeAndDanglingReferenceAreCompared) {
  const auto typed = [](int type, int index) {
    return *read(document(
                     field("\"type\":" + std::to_string(type) + R"(,"hash":9,"memNum":0,"index":0,"locz":0)",
                           "\"refs\":[[9," + std::to_string(index) + R"(]],"annotation":null)")))
                .snapshot;
  };
  EXPECT_THAT(compareCatalogues(typed(77, 1), typed(77, 1)), IsEmpty());
  EXPECT_EQ(compareCatalogues(typed(77, 1), typed(78, 1)).at(0).severity, "breaks xml, binary, callers");
  EXPECT_EQ(compareCatalogues(typed(23, 1), typed(23, 2)).at(0).code, "field-class");
}

TEST(DumpTest, BrokenJsonIsRefusedAtItsPlace) {
  EXPECT_THAT(read("").error, StartsWith("d.json:1:1: error: this is no JSON from here on; "));
  EXPECT_THAT(read("{\"subsystems\":\n [,]}").error, StartsWith("d.json:2:3: error: "));
  EXPECT_THAT(read("{\"subsystems\":[]} x").error, StartsWith("d.json:1:19: error: "));
  EXPECT_THAT(read("{\"subsystems\":[\"\xff\"]}").error, HasSubstr("this is no JSON"));
}

TEST(DumpTest, OtherDocumentsAreRefused) {
  EXPECT_THAT(read("[]").error, StartsWith("d.json: error: the document is no object; "));
  EXPECT_THAT(read("{}").error, StartsWith("d.json: error: subsystems is missing; "));
  EXPECT_THAT(read("{\"subsystems\":7}").error, HasSubstr("subsystems is no list"));
  EXPECT_THAT(read("{\"subsystems\":[7]}").error, HasSubstr("subsystems[0] is no object"));
  EXPECT_THAT(read(document("7")).error, HasSubstr("subsystems[0].classes[0].fields[0] is no object"));
}

TEST(DumpTest, NumbersHaveTheirRanges) {
  const auto refused = [](const std::string& numbers, const std::string& why) {
    EXPECT_THAT(read(document(field(numbers))).error, HasSubstr(why)) << numbers;
  };
  refused(R"("type":256,"hash":0,"memNum":0,"index":0,"locz":0)",
          "fields[0].type is no number from 0 to 255");
  refused(R"("type":-1,"hash":0,"memNum":0,"index":0,"locz":0)", "type is no number");
  refused(R"("type":1.5,"hash":0,"memNum":0,"index":0,"locz":0)", "type is no number");
  refused(R"("type":"1","hash":0,"memNum":0,"index":0,"locz":0)", "type is no number");
  refused(R"("type":1,"hash":4294967296,"memNum":0,"index":0,"locz":0)",
          "hash is no number from 0 to 4294967295");
  refused(R"("type":1,"hash":18446744073709551615,"memNum":0,"index":0,"locz":0)", "hash is no number");
  refused(R"("type":1,"hash":99999999999999999999999,"memNum":0,"index":0,"locz":0)", "hash is no number");
  refused(R"("type":1,"hash":0,"memNum":32768,"index":0,"locz":0)", "memNum is no number from 0 to 32767");
  refused(R"("type":1,"hash":0,"memNum":0,"index":-9223372036854775808,"locz":0)", "index is no number");
  refused(R"("type":1,"hash":0,"memNum":0,"index":0,"locz":2147483648)",
          "locz is no number from -2147483648");
  refused(R"("type":1e999,"hash":0,"memNum":0,"index":0,"locz":0)", "a number that no catalogue has");
  EXPECT_THAT(read(document("", "", R"("index":32767,"name":"C","id":7,"elements":1,"enum":false)")).error,
              HasSubstr("classes[0].index is no number from 0 to 32766"));
}

TEST(DumpTest, OddRecordsReferencesAndDefaultsAreRefused) {
  const auto rest = [](const std::string& text) {
    return read(document(field(R"("type":1,"hash":1,"memNum":0,"index":0,"locz":0)", text))).error;
  };
  EXPECT_THAT(rest(R"("refs":[],"annotation":"00")"), HasSubstr("annotation is no record"));
  EXPECT_THAT(rest(R"("refs":[],"annotation":"00034")"), HasSubstr("annotation is no record"));
  EXPECT_THAT(rest(R"("refs":[],"annotation":"00zz")"), HasSubstr("annotation is no record"));
  EXPECT_THAT(rest(R"("refs":[[1]],"annotation":null)"), HasSubstr("refs[0] is no list of two"));
  EXPECT_THAT(rest(R"("refs":[[1,1],[1,1],[1,1]],"annotation":null)"), HasSubstr("a field has two at most"));
  EXPECT_THAT(read(document(field(), R"([1,"x"])")).error, HasSubstr("no member number of the class"));
}

TEST(DumpTest, WhatOccursTwiceIsRefused) {
  EXPECT_THAT(read(document(field() + "," + field())).error,
              HasSubstr("fields[1] has the name or the number of"));
}

TEST(DumpTest, DeepAndLargeDocumentsAreRefused) {
  EXPECT_THAT(read(std::string(1'000'000, '[')).error, HasSubstr("nests deeper"));
  EXPECT_THAT(read(std::string(kMaxDumpBytes + 1, ' ')).error, HasSubstr("larger than 32 MiB"));
}

TEST(DumpTest, RecordCutShortIsNoMatter) {
  const auto annotated = [](const std::string& hex) {
    return *read(document(field(R"("type":1,"hash":1,"memNum":0,"index":0,"locz":0)",
                                R"("refs":[],"annotation":")" + hex + "\"")))
                .snapshot;
  };
  EXPECT_EQ(compareCatalogues(annotated("ffff"), annotated("ffff01")).at(0).code, "annotation");
}

}  // namespace
}  // namespace zqxml::zqcatc
