// Types of fields, and the classes that they refer to.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "compile_text.h"
#include "values.h"

namespace zqxml::zqcatc {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

TEST(TypesTest, UnknownTypeIsReportedWithAllThatThereAre) {
  EXPECT_THAT(compileClass("<field name=\"a\" type=\"integer\"/>").errors,
              ElementsAre(cat(
                  "T.xml:3:17: error: type 'integer' does not exist (field 'a' of class 'C'); write one of ",
                  fieldTypeNames())));
  EXPECT_THAT(fieldTypeNames(), HasSubstr("int, uint, long, "));
}

TEST(TypesTest, TypeWithoutASlotIsNoField) {
  for (const char* type : {"none", "reserved_24", "enum_value", "int64"}) {
    EXPECT_THAT(compileClass(cat("<field name=\"a\" type=\"", type, "\"/>")).errors,
                ElementsAre(HasSubstr(cat("type '", type, "' stores nothing and cannot be a field"))));
  }
}

TEST(TypesTest, EveryTypeWithASlotCanBeAField) {
  std::string fields;
  for (unsigned i = 0; i < kFieldTypeCount; ++i) {
    const auto type = static_cast<FieldDataType>(i);
    if (!isFieldType(type)) continue;
    const std::string_view target = kEnumTypes.contains(type) ? "E" : "D";
    const std::string references = kOneClassRefTypes.contains(type)   ? cat(" class=\"", target, "\"")
                                   : kTwoClassRefTypes.contains(type) ? " key=\"D\" value=\"D\""
                                                                      : "";
    fields += cat("<field name=\"f", i, "\" type=\"", typeName(type), "\"", references, "/>");
  }
  const Compiled compiled = compile(cat("<class name=\"C\" index=\"0\">", fields,
                                        "</class><class name=\"D\" index=\"1\"/><enum name=\"E\" index=\"2\">"
                                        "<value name=\"A\" value=\"1\"/></enum>"));
  EXPECT_THAT(compiled.errors, IsEmpty());
  EXPECT_THAT(compiled.classNamed("T", "C").fields, SizeIs(39));
}

TEST(ReferencesTest, UnknownClassIsReported) {
  EXPECT_THAT(
      compileClass("<field name=\"a\" type=\"object\" class=\"D\"/>\n<field name=\"b\" type=\"object\" "
                   "class=\"U.D\"/>")
          .errors,
      ElementsAre(
          "T.xml:3:31: error: there is no class 'D' (field 'a' of class 'C'); describe it, or write "
          "Subsystem.Class",
          "T.xml:4:31: error: there is no class 'U.D' (field 'b' of class 'C'); describe it, or write "
          "Subsystem.Class"));
}

TEST(ReferencesTest, UndescribedRecordCannotBeReferredTo) {
  EXPECT_THAT(compileClass("<field name=\"a\" type=\"object\" class=\"T.5\"/>").errors,
              ElementsAre(HasSubstr("there is no class 'T.5'")));
}

TEST(ReferencesTest, EnumerationAndClassAreNotInterchangeable) {
  const std::string rest =
      "</class>\n<class name=\"D\" index=\"1\"/><enum name=\"E\" index=\"2\"><value name=\"A\" "
      "value=\"1\"/></enum>";
  EXPECT_THAT(
      compile("<class name=\"C\" index=\"0\">\n<field name=\"a\" type=\"enum\" class=\"D\"/>" + rest).errors,
      ElementsAre("T.xml:3:29: error: 'D' is a class, and field 'a' of class 'C' of type 'enum' needs an "
                  "enumeration; change the type or the name"));
  EXPECT_THAT(
      compile("<class name=\"C\" index=\"0\">\n<field name=\"a\" type=\"list_object\" class=\"E\"/>" + rest)
          .errors,
      ElementsAre(
          "T.xml:3:36: error: 'E' is an enumeration, and field 'a' of class 'C' of type 'list_object' "
          "needs a class; change the type or the name"));
}

TEST(ReferencesTest, TypeThatHasAClassNeedsIt) {
  EXPECT_THAT(
      compileClass("<field name=\"a\" type=\"list_enum\"/>").errors,
      ElementsAre(
          "T.xml:3:1: error: field 'a' of class 'C' is of type 'list_enum' and needs class=\"...\" with "
          "the name of its class; add it"));
  EXPECT_THAT(compileClass("<field name=\"a\" type=\"map_object_object\" key=\"C\"/>").errors,
              ElementsAre("T.xml:3:1: error: field 'a' of class 'C' is of type 'map_object_object' and needs "
                          "value=\"...\" with the name of its class; add it"));
}

TEST(ReferencesTest, TypeWithoutAClassTakesNone) {
  EXPECT_THAT(
      compileClass("<field name=\"a\" type=\"int\" class=\"C\"/>").errors,
      ElementsAre("T.xml:3:28: error: field 'a' of class 'C' is of type 'int', which takes no class=\"...\"; "
                  "remove it"));
  EXPECT_THAT(
      compileClass("<field name=\"a\" type=\"map_object_object\" key=\"C\" value=\"C\" class=\"C\"/>").errors,
      ElementsAre(HasSubstr("of type 'map_object_object', which takes no class=\"...\"")));
}

TEST(ReferencesTest, NameOfAnotherSubsystemIsQualified) {
  const Compiled compiled = compileFiles(
      {{"T.xml",
        "<subsystem name=\"T\" slot=\"202\" records=\"1\"><class name=\"C\" index=\"0\">"
        "<field name=\"a\" type=\"map_object_object\" key=\"U.D\" value=\"T.C\"/></class></subsystem>"},
       {"U.xml",
        "<subsystem name=\"U\" slot=\"203\" records=\"90\"><class name=\"D\" index=\"74\"/></subsystem>"}});
  EXPECT_THAT(compiled.errors, IsEmpty());
  EXPECT_THAT(compiled.output("T.cc"), HasSubstr("{\"\\313\\000\\000J\\312\\000\\000\\000\" \"a\","));
}

}  // namespace
}  // namespace zqxml::zqcatc
