// Classes that contain themselves, and paths that meet.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zqxml/catalogue/xpath_data.h>

#include "compile_text.h"

namespace zqxml::zqcatc {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::string objectClass(std::string_view name, int index, std::string_view target,
                        std::string_view more = "") {
  return cat("<class name=\"", name, "\" index=\"", index, "\"><field name=\"o\" type=\"object\" class=\"",
             target, "\"", more, "/></class>\n");
}

Compiled compileOld(std::string_view body) {
  return compileFiles({{"O.xml", cat("<subsystem name=\"O\" slot=\"201\" records=\"20\" old=\"true\">\n",
                                     body, "</subsystem>")},
                       {"P.xml", "<subsystem name=\"P\" slot=\"116\" records=\"20\" old=\"true\">\n" +
                                     objectClass("Back", 0, "O.A") + "</subsystem>"},
                       {"N.xml", "<subsystem name=\"N\" slot=\"202\" records=\"20\">\n" +
                                     objectClass("Back", 0, "O.A") + "</subsystem>"}});
}

TEST(CyclesTest, OldWayClassInItselfIsRefused) {
  EXPECT_THAT(
      compileOld(objectClass("A", 0, "A")).errors,
      ElementsAre(
          "O.xml:2:34: error: object fields of old-way classes form a cycle, A.o -> A: an object of such a "
          "class would be built without end; make one of them a list_object"));
}

TEST(CyclesTest, CycleThroughOldWaySubsystemsIsRefused) {
  EXPECT_THAT(compileOld(objectClass("A", 0, "B") + objectClass("B", 1, "P.Back")).errors,
              ElementsAre(HasSubstr(
                  "P.xml:2:37: error: object fields of old-way classes form a cycle, Back.o -> A.o -> "
                  "B.o -> Back:")));
}

TEST(CyclesTest, WayIntoACycleIsNotReportedAgain) {
  EXPECT_THAT(
      compileOld(objectClass("In", 0, "A") + objectClass("A", 1, "A") + objectClass("In2", 2, "In")).errors,
      ElementsAre(HasSubstr("O.xml:3:34: error: object fields of old-way classes form a cycle, A.o -> A:")));
}

TEST(CyclesTest, CycleThroughAnotherSubsystemEndsThere) {
  EXPECT_THAT(compileOld(objectClass("A", 0, "N.Back")).errors, IsEmpty());
}

TEST(CyclesTest, FieldOfHashZeroIsNotBuilt) {
  EXPECT_THAT(compileOld(objectClass("A", 0, "A", " hash=\"0\"")).errors, IsEmpty());
}

TEST(CyclesTest, ListsAndMapsAreNotBuilt) {
  EXPECT_THAT(compileOld("<class name=\"A\" index=\"0\"><field name=\"l\" type=\"list_object\" class=\"A\"/>"
                         "<field name=\"m\" type=\"map_string_object\" class=\"A\"/></class>")
                  .errors,
              IsEmpty());
}

TEST(CyclesTest, LongChainIsWalkedWithoutRecursion) {
  std::string body;
  for (int i = 0; i < 19; ++i) body += objectClass(cat("K", i), i, cat("K", (i + 1) % 19));
  EXPECT_THAT(
      compileOld(body + objectClass("A", 19, "K3")).errors,
      ElementsAre(HasSubstr("K3.o -> K4.o -> K5.o -> K6.o -> K7.o -> K8.o -> K9.o -> K10.o -> K11 ...:")));
}

/// A root class with one object field `o` of a class with these fields.
std::string rootOf(std::string_view name, int index, std::string_view fields) {
  return cat("<class name=\"", name, "\" index=\"", index, "\" paths=\"true\">",
             "<field name=\"o\" type=\"object\" class=\"", name, "Leaf\"/></class><class name=\"", name,
             "Leaf\" index=\"", index + 1, "\">", fields, "</class>\n");
}

std::vector<std::string> pathsOf(const Compiled& compiled) {
  std::vector<std::string> texts;
  for (const FieldPath& path : compiled.catalogue.find("T")->paths) texts.push_back(path.text);
  return texts;
}

TEST(PathsTest, IdIsTheAbsoluteHashOfTheText) {
  EXPECT_EQ(xpathId("options[1]/@originalJobId"), 0x6557686d);
  EXPECT_EQ(xpathId("options[1]/@externalDataProcessor"), 0x38d09dfd);
  EXPECT_EQ(xpathId(""), 0);
  EXPECT_EQ(xpathId("@"), 0x40);
  // A byte above 0x7f counts as a negative number.
  EXPECT_EQ(xpathId("\xff"), 1);
}

TEST(PathsTest, StepsAndLeavesHaveTheirForms) {
  const Compiled compiled =
      compile(rootOf("R", 0,
                     "<field name=\"n\" type=\"int\"/><field name=\"l\" type=\"list_int\"/>"
                     "<field name=\"c\" type=\"object\" class=\"C\"/>"
                     "<field name=\"many\" type=\"list_object\" class=\"C\"/>") +
              "<class name=\"C\" index=\"5\"><field name=\"s\" type=\"string\"/></class>");
  EXPECT_THAT(compiled.errors, IsEmpty());
  EXPECT_THAT(pathsOf(compiled), ElementsAre("o[1]/@n", "o[1]/c[1]/@s", "o[1]/l", "o[1]/many[1]/@s"));
  const std::vector<FieldPath>& paths = compiled.catalogue.find("T")->paths;
  EXPECT_THAT(paths[3].members, ElementsAre(0, 3, 0));
  EXPECT_EQ(paths[3].id, xpathId("o[1]/many[1]/@s"));
}

TEST(PathsTest, PathsBeginWithAnObjectOfTheRoot) {
  const Compiled compiled = compile(
      "<class name=\"R\" index=\"0\" paths=\"true\"><field name=\"n\" type=\"int\"/>"
      "<field name=\"l\" type=\"list_int\"/></class>");
  EXPECT_THAT(compiled.errors, IsEmpty());
  EXPECT_THAT(pathsOf(compiled), IsEmpty());
}

TEST(PathsTest, TypesWithoutAPathHaveNone) {
  EXPECT_THAT(pathsOf(compile(rootOf(
                  "R", 0,
                  "<field name=\"u\" type=\"ulonglong\"/><field name=\"lu\" type=\"list_ulonglong\"/>"
                  "<field name=\"lb\" type=\"list_bstring\"/><field name=\"m\" type=\"map_int64_int64\"/>"
                  "<field name=\"h\" type=\"int\" hash=\"0\"/>"))),
              ElementsAre("o[1]/@u"));
}

TEST(PathsTest, OnlyRootsHavePaths) {
  EXPECT_THAT(
      pathsOf(compile("<class name=\"R\" index=\"0\"><field name=\"o\" type=\"object\" class=\"L\"/></class>"
                      "<class name=\"L\" index=\"1\"><field name=\"n\" type=\"int\"/></class>")),
      IsEmpty());
}

TEST(PathsTest, OnePathOfTwoRootsIsTakenOnce) {
  const std::string root = "\" paths=\"true\"><field name=\"o\" type=\"object\" class=\"L\"/></class>";
  const Compiled compiled =
      compile("<class name=\"R\" index=\"0" + root + "<class name=\"S\" index=\"1" + root +
              "<class name=\"L\" index=\"2\"><field name=\"n\" type=\"int\"/></class>");
  EXPECT_THAT(compiled.errors, IsEmpty());
  EXPECT_THAT(pathsOf(compiled), ElementsAre("o[1]/@n"));
}

TEST(PathsTest, CollidingIdsAreRefused) {
  EXPECT_THAT(
      compile(rootOf("R", 0, "<field name=\"Aax\" type=\"int\"/>") +
              rootOf("S", 2, "<field name=\"BBx\" type=\"int\"/>"))
          .errors,
      ElementsAre("T.xml:1:12: error: paths 'o[1]/@Aax' and 'o[1]/@BBx' of subsystem 'T' have the same "
                  "id 131103089; rename a field of one of them"));
}

TEST(PathsTest, OnePathLeadsToOneField) {
  EXPECT_THAT(
      compile(rootOf("R", 0, "<field name=\"a\" type=\"int\"/>") +
              rootOf("S", 2, "<field name=\"b\" type=\"int\"/><field name=\"a\" type=\"int\"/>"))
          .errors,
      ElementsAre(
          "T.xml:1:12: error: path 'o[1]/@a' of subsystem 'T' leads to different fields from different roots; "
          "rename a field, or remove paths=\"true\" from one root"));
}

TEST(PathsTest, ClassInItselfEndsItsPaths) {
  const Compiled compiled = compile(
      "<class name=\"R\" index=\"0\" paths=\"true\"><field name=\"o\" type=\"object\" class=\"L\"/></class>"
      "<class name=\"L\" index=\"1\"><field name=\"a\" type=\"int\"/><field name=\"l\" type=\"object\" "
      "class=\"L\"/><field name=\"r\" type=\"list_object\" class=\"R\"/></class>");
  EXPECT_THAT(compiled.errors, IsEmpty());
  EXPECT_THAT(pathsOf(compiled), ElementsAre("o[1]/@a"));
}

TEST(PathsTest, TablesAreWrittenInTheirOrders) {
  const Compiled compiled =
      compile(rootOf("R", 0, "<field name=\"b\" type=\"int\"/><field name=\"a\" type=\"list_int\"/>"));
  ASSERT_THAT(compiled.errors, IsEmpty());
  const std::string b = std::to_string(xpathId("o[1]/@b"));
  const std::string a = std::to_string(xpathId("o[1]/a"));
  const bool aFirst = xpathId("o[1]/a") < xpathId("o[1]/@b");
  const std::string text = compiled.output("/T.cc");
  EXPECT_THAT(text, HasSubstr("kPathMembers[] = {\n    0, 0,\n    0, 1,\n};\n"));
  EXPECT_THAT(text, HasSubstr("XPathFieldsInfo kPathFields[3] = {\n    {kPathMembers + 0, 2},\n"
                              "    {kPathMembers + 2, 2},\n    {},\n};\n"));
  EXPECT_THAT(text, HasSubstr(cat("XPathEntry kPaths[3] = {\n    {", b, ", \"o[1]/@b\"},\n    {", a,
                                  ", \"o[1]/a\"},\n    {},\n};\n")));
  EXPECT_THAT(text, HasSubstr(cat("XPathIDHelper kPathIds[3] = {\n    {", aFirst ? a + ", 1" : b + ", 0",
                                  "},\n    {", aFirst ? b + ", 0" : a + ", 1", "},\n    {-1, -1},\n};\n")));
  EXPECT_THAT(compiled.output("/subsystem_table.cc"),
              HasSubstr("XPathData gXPathTable[2] = {\n    {202, catalogue::tables::T::kPathFields, "
                        "catalogue::tables::T::kPathIds, catalogue::tables::T::kPaths, 2},\n    {},\n};\n"));
}

TEST(PathsTest, CatalogueWithoutPathsHasAnEmptyTable) {
  const Compiled compiled = compileClass("");
  EXPECT_THAT(compiled.output("/T.cc"), testing::Not(HasSubstr("kPath")));
  EXPECT_THAT(compiled.output("/subsystem_table.cc"),
              HasSubstr("XPathData gXPathTable[1] = {\n    {},\n};\n"));
}

TEST(PathsTest, EndlesslyBranchingClassesAreRefused) {
  std::string body;
  for (int i = 0; i < 19; ++i) {
    body += cat("<class name=\"K", i, "\" index=\"", i, "\"", i == 0 ? " paths=\"true\"" : "", ">");
    for (const char* name : {"a", "b", "c"})
      body += cat("<field name=\"", name, "\" type=\"object\" class=\"K", i + 1, "\"/>");
    body += "</class>";
  }
  EXPECT_THAT(
      compile(body + "<class name=\"K19\" index=\"19\"/>").errors,
      ElementsAre(
          "T.xml:1:12: error: subsystem 'T' has more than 200000 paths; remove paths=\"true\" from some of "
          "its classes"));
}

}  // namespace
}  // namespace zqxml::zqcatc
