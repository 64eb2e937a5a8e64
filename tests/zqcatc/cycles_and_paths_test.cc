// Classes that contain themselves, and paths that meet.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "compile_text.h"
#include "paths.h"

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

TEST(PathsTest, IdIsTheAbsoluteHashOfTheText) {
  EXPECT_EQ(pathId("options[1]/@originalJobId"), 0x6557686d);
  EXPECT_EQ(pathId("options[1]/@externalDataProcessor"), 0x38d09dfd);
  EXPECT_EQ(pathId(""), 0);
}

TEST(PathsTest, CollidingIdsAreRefused) {
  EXPECT_THAT(
      compileFiles(
          {{"T.xml",
            "<subsystem name=\"T\" slot=\"202\" records=\"20\">\n"
            "<class name=\"R\" index=\"0\" paths=\"true\"><field name=\"Aax\" type=\"int\"/></class>\n"
            "<class name=\"S\" index=\"1\" paths=\"true\"><field name=\"BBx\" type=\"int\"/></class>"
            "</subsystem>"}})
          .errors,
      ElementsAre(
          "T.xml:1:12: error: paths '@Aax' and '@BBx' of subsystem 'T' have the same id 1972216; rename a "
          "field of one of them"));
}

TEST(PathsTest, OnePathLeadsToOneField) {
  EXPECT_THAT(
      compile("<class name=\"R\" index=\"0\" paths=\"true\"><field name=\"a\" type=\"int\"/></class>\n"
              "<class name=\"S\" index=\"1\" paths=\"true\"><field name=\"b\" type=\"int\"/><field "
              "name=\"a\" type=\"int\"/></class>")
          .errors,
      ElementsAre(
          "T.xml:1:12: error: path '@a' of subsystem 'T' leads to different fields from different roots; "
          "rename a field, or remove paths=\"true\" from one root"));
}

TEST(PathsTest, ClassInItselfEndsItsPaths) {
  EXPECT_THAT(
      compile("<class name=\"R\" index=\"0\" paths=\"true\"><field name=\"o\" type=\"object\" class=\"R\"/>"
              "<field name=\"a\" type=\"int\"/></class>")
          .errors,
      IsEmpty());
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
