// Names, ids and hashes that must not meet.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <zqxml/catalogue/name_hash.h>

#include "compile_text.h"

namespace zqxml::zqcatc {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

// Two names of one hash: 'A' * 31 + 'a' == 'B' * 31 + 'B'.
static_assert(nameHash("Aa") == nameHash("BB"));

TEST(NamesTest, ClassNamesOccurOnce) {
  EXPECT_THAT(
      compile("<class name=\"C\" index=\"0\"/>\n<enum name=\"C\" index=\"1\" id=\"7\"><value name=\"A\" "
              "value=\"1\"/></enum>")
          .errors,
      ElementsAre(
          "T.xml:3:7: error: enumeration 'C' of subsystem 'T' has the name of one at T.xml:2; rename one"));
}

TEST(NamesTest, IndicesOccurOnce) {
  EXPECT_THAT(
      compile("<class name=\"C\" index=\"4\"/>\n<class name=\"D\" index=\"4\"/>").errors,
      ElementsAre(
          "T.xml:3:8: error: index 4 of class 'D' of subsystem 'T' is already that of 'C' at T.xml:2; "
          "choose a free one"));
}

TEST(NamesTest, TwoClassesOfOneHashAreRefused) {
  EXPECT_THAT(
      compile("<class name=\"Aa\" index=\"0\"/>\n<class name=\"BB\" index=\"1\"/>").errors,
      ElementsAre(
          "T.xml:3:8: error: id 2112 of class 'BB' of subsystem 'T' is already that of 'Aa' at T.xml:2; "
          "give one of them another id"));
}

TEST(NamesTest, AssignedIdsAndHashesShareOneNumberSpace) {
  EXPECT_THAT(compile("<class name=\"Aa\" index=\"0\"/>\n<class name=\"D\" index=\"1\" id=\"2112\"/>").errors,
              ElementsAre(HasSubstr("T.xml:3:8: error: id 2112 of class 'D'")));
}

TEST(NamesTest, ManyClassesMayHaveTheIdZero) {
  EXPECT_THAT(
      compile("<class name=\"C\" index=\"0\" id=\"0\"/><class name=\"D\" index=\"1\" id=\"0\"/>").errors,
      IsEmpty());
}

TEST(NamesTest, IdMustFitTwentyFourBits) {
  EXPECT_THAT(
      compile("<class name=\"C\" index=\"0\" id=\"0x1000000\"/>").errors,
      ElementsAre(
          "T.xml:2:27: error: id of class 'C' is '0x1000000'; write a number from 0 to 16777215, decimal "
          "or 0x..."));
}

TEST(NamesTest, FieldNamesOccurOnce) {
  EXPECT_THAT(
      compileClass("<field name=\"a\" type=\"int\"/>\n<field name=\"a\" type=\"int\" cpp=\"B\"/>").errors,
      ElementsAre("T.xml:4:8: error: field 'a' of 'C' has the name of one at T.xml:3; rename one"));
}

TEST(NamesTest, TwoFieldsOfOneHashAreRefused) {
  EXPECT_THAT(
      compileClass("<field name=\"Aa\" type=\"int\"/>\n<field name=\"BB\" type=\"int\"/>").errors,
      ElementsAre(
          "T.xml:4:8: error: field 'BB' of 'C' has the hash of 'Aa' at T.xml:3; rename one, since fields "
          "are found by hash"));
}

TEST(NamesTest, FieldOfHashZeroMayShareItsName) {
  EXPECT_THAT(
      compileClass("<field name=\"Aa\" type=\"int\"/>\n<field name=\"BB\" type=\"int\" hash=\"0\"/>").errors,
      IsEmpty());
}

TEST(NamesTest, HashCanOnlyBeGivenAsZero) {
  EXPECT_THAT(
      compileClass("<field name=\"a\" type=\"int\" hash=\"5\"/>").errors,
      ElementsAre(
          "T.xml:3:28: error: hash of field 'a' of class 'C' is '5'; write a number from 0 to 0, decimal "
          "or 0x..."));
}

TEST(NamesTest, FieldThatHashesToZeroIsRefused) {
  // Found by search: its 31-based sum is a multiple of 2 to the 24th.
  constexpr std::string_view kName = "whsawx";
  static_assert(nameHash(kName) == 0);
  EXPECT_THAT(compileClass(cat("<field name=\"", kName, "\" type=\"int\"/>")).errors,
              ElementsAre(cat("T.xml:3:8: error: the name of field '", kName,
                              "' of 'C' has the hash 0; rename it, or "
                              "write hash=\"0\" for a field that is never found by name")));
  EXPECT_THAT(
      compile(cat("<class name=\"", kName, "\" index=\"0\"/>")).errors,
      ElementsAre(cat("T.xml:2:8: error: the name of class '", kName, "' has the hash 0; give it an id")));
}

TEST(NamesTest, FieldThatHashesLikeAMapSideIsRefused) {
  EXPECT_THAT(
      compileClass("<field name=\"__mapKey__\" type=\"int\"/>\n<field name=\"__mapValue__\" type=\"int\"/>")
          .errors,
      ElementsAre(
          "T.xml:3:8: error: the name of field '__mapKey__' of 'C' has the hash of __mapKey__, the side "
          "of a map; rename it",
          "T.xml:4:8: error: the name of field '__mapValue__' of 'C' has the hash of __mapValue__, the "
          "side of a map; rename it"));
}

TEST(NamesTest, SelfRecordMeetsAFieldOfTheClassName) {
  EXPECT_THAT(compileClass("<field name=\"C\" type=\"int\"/>\n<self/>").errors,
              ElementsAre(HasSubstr("T.xml:4:1: error: field 'C' of 'C' has the name of one at T.xml:3")));
}

TEST(NamesTest, EnumeratorNamesOccurOnceAndValuesMayRepeat) {
  EXPECT_THAT(
      compile(
          "<enum name=\"E\" index=\"0\">\n<value name=\"A\" value=\"1\"/>\n<value name=\"B\" value=\"1\"/>\n"
          "<value name=\"A\" value=\"2\"/></enum>")
          .errors,
      ElementsAre("T.xml:5:8: error: enumerator 'A' of 'E' has the name of one at T.xml:3; rename one"));
}

TEST(NamesTest, EnumeratorMustFitThirtyTwoBits) {
  EXPECT_THAT(
      compile("<enum name=\"E\" index=\"0\">\n<value name=\"A\" value=\"0x100000000\"/>\n"
              "<value name=\"B\" value=\"-2147483649\"/></enum>")
          .errors,
      ElementsAre(
          HasSubstr("T.xml:3:17: error: value of enumerator 'A' of 'E' is '0x100000000'; write a number "
                    "from -2147483648 to 4294967295"),
          HasSubstr("T.xml:4:17: error: value of enumerator 'B' of 'E' is '-2147483649'")));
}

TEST(NamesTest, EnumerationIsEitherSignedOrUnsigned) {
  EXPECT_THAT(
      compile("<enum name=\"E\" index=\"0\">\n<value name=\"A\" value=\"-1\"/>\n"
              "<value name=\"B\" value=\"0x80000000\"/></enum>")
          .errors,
      ElementsAre(
          "T.xml:4:8: error: enumerator 'B' of 'E' is above 0x7fffffff and 'A' is negative; keep to one "
          "of the two"));
}

TEST(NamesTest, FieldsOfOneCppNameNeedAnother) {
  EXPECT_THAT(
      compileClass("<field name=\"text\" type=\"int\"/>\n<field name=\"Text\" type=\"int\"/>").errors,
      ElementsAre(
          "T.xml:4:8: error: field 'Text' would have the C++ name 'Text', like 'text' at T.xml:3; give "
          "one a name with cpp=\"...\""));
  EXPECT_THAT(
      compileClass("<field name=\"text\" type=\"int\"/>\n<field name=\"Text\" type=\"int\" cpp=\"Other\"/>")
          .errors,
      IsEmpty());
}

TEST(NamesTest, FieldsThatMeetInAnAccessorNeedAnotherName) {
  EXPECT_THAT(
      compileClass("<field name=\"x\" type=\"list_object\" class=\"C\"/>\n"
                   "<field name=\"xVector\" type=\"string\"/>")
          .errors,
      ElementsAre("T.xml:4:8: error: field 'xVector' would have the C++ name 'mutableXVector', like 'x' at "
                  "T.xml:3; give one a name with cpp=\"...\""));
  // A number has no such accessor.
  EXPECT_THAT(compileClass("<field name=\"x\" type=\"list_object\" class=\"C\"/>\n"
                           "<field name=\"xVector\" type=\"int\"/>")
                  .errors,
              IsEmpty());
}

TEST(NamesTest, AccessorOfTheNameOfItsClassIsRefused) {
  EXPECT_THAT(
      compile("<class name=\"getX\" index=\"0\">\n<field name=\"x\" type=\"int\"/></class>").errors,
      ElementsAre(
          "T.xml:3:8: error: field 'x' would have the C++ name 'getX', like 'getX' at T.xml:2; give one "
          "a name with cpp=\"...\""));
}

TEST(NamesTest, ClassesOfOneCppNameAreRefused) {
  EXPECT_THAT(
      compile("<class name=\"a-b\" index=\"0\"/>\n<class name=\"a.b\" index=\"1\"/>").errors,
      ElementsAre(
          "T.xml:3:8: error: class 'a.b' would have the C++ name 'a_b', like 'a-b' at T.xml:2; rename one"));
}

}  // namespace
}  // namespace zqxml::zqcatc
