// Text of the typed classes; what they do is tested with the message classes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "compile_text.h"

namespace zqxml::zqcatc {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

TEST(TypedClassesTest, DocumentationIsCarriedOver) {
  const std::string header = compile(
                                 "<class name=\"C\" index=\"0\"><doc>\n  First line.\n\n  Second \\\n</doc>"
                                 "<field name=\"a\" type=\"int\"><doc>Of a field.</doc></field></class>")
                                 .output("T.h");
  EXPECT_THAT(header, HasSubstr("/// First line.\n///\n/// Second\nclass C : public XNMessageBase {"));
  EXPECT_THAT(header, HasSubstr("  /// @{\n  /// a: int.\n  /// Of a field.\n  std::int32_t getA() const"));
}

TEST(TypedClassesTest, FieldsTellTheirDefaultLabelAndWhatHidesThem) {
  const std::string header =
      compile(
          "<enum name=\"E\" index=\"0\"><value name=\"A\" value=\"-1\"/></enum><class name=\"C\" index=\"1\">"
          "<field name=\"a\" type=\"enum\" class=\"E\" default=\"-1\" label=\"0x75\"><Sensitive/></field>"
          "<field name=\"b\" type=\"string\" default=\"x&#10;#error\"/>"
          "<field name=\"c\" type=\"int\" default=\"5\"><Text text=\"See\"/></field></class>")
          .output("T.h");
  EXPECT_THAT(header,
              HasSubstr("  /// a: enum E.\n  /// Default A (-1). Label 0x75. Sensitive: logs hide it.\n"));
  EXPECT_THAT(header, HasSubstr("  /// b: string.\n  /// Default \"x #error\".\n"));
  EXPECT_THAT(header, HasSubstr("  /// c: int.\n  /// Default 5. Shown as \"See\".\n"));
}

TEST(TypedClassesTest, WhatHasNoDocumentationTellsItsName) {
  const Compiled compiled = compile(
      "<enum name=\"E\" index=\"0\"><value name=\"A\" value=\"1\"><Text text=\"First\"/></value>"
      "<value name=\"B\" value=\"2\"/></enum><class name=\"C\" index=\"1\"/>");
  EXPECT_THAT(compiled.output("T_enums.h"),
              HasSubstr("/// Enumeration T.E.\nenum class E : std::int32_t {\n  /// Shown as \"First\".\n"
                        "  A = 0x1,\n  B = 0x2,\n};"));
  EXPECT_THAT(compiled.output("T.h"), HasSubstr("/// Message T_C.\nclass C : public XNMessageBase {"));
}

TEST(TypedClassesTest, EnumerationsAreScopedAndWideWhereNeeded) {
  const std::string header =
      compile(
          "<enum name=\"E\" index=\"0\"><doc>Kinds.</doc><value name=\"A\" "
          "value=\"-1\"><doc>Below.</doc></value></enum>"
          "<enum name=\"F\" index=\"1\"><value name=\"default\" value=\"0x80000000\"/></enum>")
          .output("T_enums.h");
  EXPECT_THAT(header, HasSubstr("/// Kinds.\nenum class E : std::int32_t {\n  /// Below.\n  A = -1,\n};"));
  EXPECT_THAT(header, HasSubstr("enum class F : std::uint32_t {\n  default_ = 0x80000000,\n};"));
  EXPECT_THAT(header, AllOf(HasSubstr("#include <cstdint>"), Not(HasSubstr("#include <zqxml"))));
}

TEST(TypedClassesTest, NamesThatEachHeaderUsesAreChanged) {
  const std::string header =
      compile(
          "<class name=\"RegisterSubsystem\" index=\"0\"/><class name=\"from\" index=\"1\"/>"
          "<class name=\"kSubsystem\" index=\"2\"/><class name=\"kClassIndex\" index=\"3\"/>"
          "<class name=\"kTagId\" index=\"4\"/>")
          .output("T.h");
  for (const char* name : {"RegisterSubsystem_", "from_", "kSubsystem_", "kClassIndex_", "kTagId_"})
    EXPECT_THAT(header, HasSubstr(std::string("\nclass ") + name + " : public XNMessageBase {"));
}

TEST(TypedClassesTest, NamesThatCompilersDefineAreChanged) {
  const Compiled compiled = compile(
      "<enum name=\"E\" index=\"0\"><value name=\"linux\" value=\"1\"/><value name=\"unix\" "
      "value=\"2\"/></enum>");
  EXPECT_THAT(compiled.output("T_enums.h"), HasSubstr("{\n  linux_ = 0x1,\n  unix_ = 0x2,\n};"));
}

// A field of the name MapStringAndObject, say, hides the base's accessor of that name.
TEST(TypedClassesTest, MapAccessorsOfTheBaseAreCalledByTheirFullNames) {
  const std::string header = compileClass(
                                 "<field name=\"a\" type=\"map_string_object\" class=\"C\"/>"
                                 "<field name=\"b\" type=\"map_int64_object\" class=\"C\"/>"
                                 "<field name=\"c\" type=\"map_object_object\" key=\"C\" value=\"C\"/>"
                                 "<field name=\"d\" type=\"map_string_string\"/>")
                                 .output("T.h");
  EXPECT_THAT(header,
              AllOf(HasSubstr("(XNMessageBase::getMapStringAndObject("),
                    HasSubstr("(XNMessageBase::getMapInt64AndObject_const("), Not(HasSubstr("(getMap"))));
}

TEST(TypedClassesTest, EveryFieldNameHasACppName) {
  const std::string header =
      compileClass(
          "<field name=\"class\" type=\"int\"/><field name=\"_type_\" type=\"int\"/>"
          "<field name=\"with-dash\" type=\"int\"/><field name=\"x\" type=\"int\" cpp=\"other\"/>")
          .output("T.h");
  EXPECT_THAT(header,
              AllOf(HasSubstr(" getClass() "), HasSubstr(" get_type_() "), HasSubstr(" getWith_dash() "),
                    HasSubstr(" getOther() "), HasSubstr("kOther = 3;")));
}

TEST(TypedClassesTest, FirstFieldOfTheBaseIsLeftToIt) {
  const std::string instructions =
      "<field name=\"processinginstructioninfo\" type=\"object\" class=\"Z.P\"/>";
  const Compiled compiled = compileFiles(
      {{"Z.xml",
        "<subsystem name=\"Z\" slot=\"18\" records=\"75\"><class name=\"P\" index=\"74\"/></subsystem>"},
       {"T.xml", cat("<subsystem name=\"T\" slot=\"202\" records=\"2\"><class name=\"C\" index=\"0\">",
                     instructions, "</class><class name=\"D\" index=\"1\"><field name=\"a\" type=\"int\"/>",
                     instructions, "</class></subsystem>")}});
  const std::string header = compiled.output("T.h");
  const std::size_t second = header.find("class D :");
  EXPECT_THAT(header.substr(0, second), AllOf(HasSubstr("kProcessinginstructioninfo = 0;"),
                                              Not(HasSubstr("getProcessinginstructioninfo"))));
  EXPECT_THAT(header.substr(second), HasSubstr("getProcessinginstructioninfo"));
}

TEST(TypedClassesTest, OtherSubsystemsAreOnlyDeclared) {
  const Compiled compiled =
      compileFiles({{"T.xml",
                     "<subsystem name=\"T\" slot=\"202\" records=\"1\"><class name=\"C\" index=\"0\">"
                     "<field name=\"o\" type=\"object\" class=\"U.D\"/><field name=\"e\" type=\"enum\" "
                     "class=\"U.E\"/></class></subsystem>"},
                    {"U.xml",
                     "<subsystem name=\"U\" slot=\"203\" records=\"2\"><class name=\"D\" index=\"0\">"
                     "<field name=\"o\" type=\"object\" class=\"T.C\"/></class>"
                     "<enum name=\"E\" index=\"1\"><value name=\"A\" value=\"1\"/></enum></subsystem>"}});
  EXPECT_THAT(
      compiled.output("T.h"),
      AllOf(HasSubstr("namespace zqxml::U {\nclass D;\n}"),
            HasSubstr("#include <zqxml/catalogue/generated/U_enums.h>"), Not(HasSubstr("generated/U.h")),
            HasSubstr("const ::zqxml::U::D* getO() const"), HasSubstr("::zqxml::U::E getE() const")));
}

TEST(TypedClassesTest, AnnotationClassesHaveTheirOwnBase) {
  const std::string header =
      compileFiles({{"T.xml",
                     "<subsystem name=\"T\" slot=\"202\" records=\"1\" annotations=\"true\">"
                     "<class name=\"C\" index=\"0\"/></subsystem>"}})
          .output("T.h");
  EXPECT_THAT(header, AllOf(HasSubstr("#include <zqxml/annotation/annotation_base.h>"),
                            HasSubstr("class C : public AnnotationBase {"),
                            HasSubstr("C() : AnnotationBase(kSubsystem, kClassIndex) {}")));
}

TEST(TypedClassesTest, PasswordTypeIsTheEnumerationWhereThereIsOne) {
  EXPECT_THAT(compileClass("<field name=\"p\" type=\"pstring\"/>").output("T.h"),
              HasSubstr("void setP(const typed::BytesArg& value, int type) {"));
  const Compiled compiled =
      compileFiles({{"A.xml",
                     "<subsystem name=\"A\" slot=\"27\" records=\"1\" annotations=\"true\"><enum "
                     "name=\"PasswordEncryptType\" "
                     "index=\"0\"><value name=\"PLAIN_TEXT\" value=\"1\"/></enum></subsystem>"},
                    {"T.xml",
                     "<subsystem name=\"T\" slot=\"202\" records=\"1\"><class name=\"C\" index=\"0\">"
                     "<field name=\"p\" type=\"pstring\"/></class></subsystem>"}});
  EXPECT_THAT(
      compiled.output("T.h"),
      AllOf(HasSubstr("#include <zqxml/catalogue/generated/A_enums.h>"),
            HasSubstr("void setP(const typed::PasswordArg& value) {"),
            HasSubstr("void setP(const typed::BytesArg& value, ::zqxml::A::PasswordEncryptType type) {")));
}

}  // namespace
}  // namespace zqxml::zqcatc
