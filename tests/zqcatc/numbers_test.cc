// Numbers that the compiler works out.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zqxml/catalogue/name_hash.h>

#include "compile_text.h"

namespace zqxml::zqcatc {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

TEST(NumbersTest, StringsTakeFourSlotsAndAllOthersOne) {
  const Compiled compiled = compileClass(
      "<field name=\"a\" type=\"int\"/><field name=\"b\" type=\"string\"/><field name=\"c\" "
      "type=\"pstring\"/>"
      "<field name=\"d\" type=\"wstring\"/><field name=\"e\" type=\"reserved_29\"/><field name=\"f\" "
      "type=\"list_int\"/>");
  std::vector<int> indices, members;
  for (const Field& field : compiled.classNamed("T", "C").fields) {
    indices.push_back(field.index);
    members.push_back(field.memNum);
  }
  EXPECT_THAT(indices, ElementsAre(0, 1, 5, 6, 10, 11));
  EXPECT_THAT(members, ElementsAre(0, 1, 2, 3, 4, 5));
  EXPECT_EQ(compiled.classNamed("T", "C").elements, 12);
}

TEST(NumbersTest, SelfRecordHasNoPlaceOfItsOwn) {
  const Compiled compiled =
      compileClass("<field name=\"a\" type=\"int\"/><field name=\"b\" type=\"int\"/><self/>");
  const Class& record = compiled.classNamed("T", "C");
  ASSERT_EQ(record.fields.size(), 3u);
  EXPECT_EQ(record.elements, 2);
  const Field& self = record.fields[2];
  EXPECT_EQ(self.type, FDT_NONE);
  EXPECT_EQ(self.memNum, 0);
  EXPECT_EQ(self.index, 0);
  EXPECT_EQ(self.hash, nameHash("C"));
  EXPECT_EQ(self.annotation, std::string(2, '\0'));
}

TEST(NumbersTest, EnumerationHasValuesInPlaceOfHashes) {
  const Compiled compiled = compile(
      "<enum name=\"E\" index=\"0\"><value name=\"A\" value=\"0x80\"/><value name=\"B\" "
      "value=\"-1\"/></enum>");
  EXPECT_THAT(compiled.errors, IsEmpty());
  EXPECT_EQ(compiled.classNamed("T", "E").elements, 0);
  EXPECT_EQ(compiled.field("T", "E", "A").hash, 0x80u);
  EXPECT_EQ(compiled.field("T", "E", "B").hash, 0xffffffffu);
  EXPECT_EQ(compiled.field("T", "E", "B").memNum, 0);
}

TEST(NumbersTest, FieldWithoutAHashKeepsItsPlace) {
  const Compiled compiled =
      compileClass("<field name=\"a\" type=\"int\" hash=\"0\"/><field name=\"b\" type=\"int\"/>");
  EXPECT_EQ(compiled.field("T", "C", "a").hash, 0u);
  EXPECT_EQ(compiled.field("T", "C", "b").memNum, 1);
  EXPECT_EQ(compiled.field("T", "C", "b").index, 1);
}

TEST(NumbersTest, LabelIsThirtyTwoBits) {
  const Compiled compiled = compileClass("<field name=\"a\" type=\"int\" label=\"0xffffffff\"/>");
  EXPECT_EQ(compiled.field("T", "C", "a").label, -1);
  EXPECT_THAT(compileClass("<field name=\"a\" type=\"int\" label=\"0x100000000\"/>").errors,
              ElementsAre(HasSubstr(
                  "T.xml:3:28: error: label of field 'a' of class 'C' is '0x100000000'; write a number "
                  "from -2147483648 to 4294967295")));
  EXPECT_THAT(
      compileClass("<field name=\"a\" type=\"int\" hash=\"0\" label=\"7\"/>").errors,
      ElementsAre("T.xml:3:37: error: field 'a' of class 'C' has hash 0 and so no label; remove the label"));
}

TEST(NumbersTest, DefaultsStandInRunsByClassIndex) {
  const Compiled compiled = compile(
      "<class name=\"C\" index=\"9\"><field name=\"a\" type=\"int\" default=\"1\"/></class>"
      "<class name=\"D\" index=\"3\"><field name=\"a\" type=\"int\" default=\"2\"/><field name=\"b\" "
      "type=\"int\"/>"
      "<field name=\"c\" type=\"string\" default=\"\"/></class><class name=\"E\" index=\"5\"/>");
  EXPECT_EQ(compiled.classNamed("T", "D").defaultsStart, 0);
  EXPECT_EQ(compiled.classNamed("T", "E").defaultsStart, -1);
  EXPECT_EQ(compiled.classNamed("T", "C").defaultsStart, 3);
  EXPECT_THAT(compiled.output("T.cc"),
              HasSubstr("    /* 0: D */\n    {0, \"2\"},\n    {2, \"\"},\n    {-1, nullptr},\n"
                        "    /* 3: C */\n    {0, \"1\"},\n    {-1, nullptr},\n};"));
}

TEST(NumbersTest, TooManySlotsAreRefused) {
  std::string fields;
  for (int i = 0; i < 8192; ++i) fields += cat("<field name=\"f", i, "\" type=\"string\" hash=\"0\"/>");
  EXPECT_THAT(compileClass(fields).errors,
              ElementsAre("T.xml:2:8: error: 'C' has more than 32767 fields or slots; split it"));
}

TEST(NumbersTest, TooManyEnumeratorsAreRefused) {
  std::string values;
  for (int i = 0; i < 32768; ++i) values += cat("<value name=\"V", i, "\" value=\"", i, "\"/>");
  EXPECT_THAT(compile(cat("<enum name=\"E\" index=\"0\">", values, "</enum>")).errors,
              ElementsAre("T.xml:2:7: error: 'E' has more than 32767 values; split it"));
}

TEST(NumbersTest, IdIndexHasAnEntryForEveryRecord) {
  const Compiled compiled = compileFiles(
      {{"T.xml",
        "<subsystem name=\"T\" slot=\"202\" records=\"4\"><class name=\"C\" index=\"1\" id=\"9\"/>"
        "<class name=\"D\" index=\"3\" id=\"4\"/><class name=\"E\" index=\"2\" id=\"0\"/></subsystem>"}});
  EXPECT_THAT(compiled.output("T.cc"),
              HasSubstr("ClassIdIndexEntry kIds[4] = {\n    {}, {},\n    {0x4, 3},\n    {0x9, 1},\n};"));
}

}  // namespace
}  // namespace zqxml::zqcatc
