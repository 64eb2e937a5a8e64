// Subsystems, extensions, records.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "compile_text.h"

namespace zqxml::zqcatc {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::vector<std::string> errorsOf(const std::string& name, const std::string& attributes,
                                  const std::string& body = "") {
  return compileFiles(
             {{name + ".xml", cat("<subsystem name=\"", name, "\" ", attributes, ">", body, "</subsystem>")}})
      .errors;
}

TEST(SubsystemTest, SlotMustLieInTheTable) {
  EXPECT_THAT(
      errorsOf("T", "slot=\"0\" records=\"1\""),
      ElementsAre(
          "T.xml:1:21: error: slot of subsystem 'T' is '0'; write a number from 1 to 206, decimal or 0x..."));
  EXPECT_THAT(errorsOf("T", "slot=\"207\" records=\"1\""),
              ElementsAre("T.xml:1:21: error: slot of subsystem 'T' is '207'; write a number from 1 to 206, "
                          "decimal or 0x..."));
  EXPECT_THAT(errorsOf("T", "slot=\"206\" records=\"1\""), IsEmpty());
}

TEST(SubsystemTest, RecordCountMustFitSixteenBits) {
  EXPECT_THAT(
      errorsOf("T", "slot=\"202\" records=\"32768\""),
      ElementsAre(
          "T.xml:1:32: error: record count of subsystem 'T' is '32768'; write a number from 0 to 32767, "
          "decimal or 0x..."));
  EXPECT_THAT(errorsOf("T", "slot=\"202\" records=\"-1\""),
              ElementsAre(HasSubstr("is '-1'; write a number from 0")));
}

TEST(SubsystemTest, NumbersAreDecimalOrHexadecimal) {
  EXPECT_EQ(compileFiles({{"T.xml", "<subsystem name=\"T\" slot=\"0xca\" records=\"0X10\"/>"}})
                .catalogue.find("T")
                ->slot,
            202);
  EXPECT_THAT(errorsOf("T", "slot=\"202\" records=\"1x\""),
              ElementsAre(HasSubstr("record count of subsystem 'T' is '1x'")));
  EXPECT_THAT(errorsOf("T", "slot=\"202\" records=\"\""),
              ElementsAre(HasSubstr("record count of subsystem 'T' is ''")));
  EXPECT_THAT(errorsOf("T", "slot=\"202\" records=\"99999999999999999999\""),
              ElementsAre(HasSubstr("is '99999999999999999999'; write a number")));
}

TEST(SubsystemTest, NameMustStandInARootElementAndInCpp) {
  EXPECT_THAT(
      errorsOf("My_Own", "slot=\"202\" records=\"1\""),
      ElementsAre(
          "My_Own.xml:1:12: error: subsystem name 'My_Own' must be a C++ name without '_': a message's "
          "root element is the subsystem's name, '_' and the class's name; choose another name"));
  EXPECT_THAT(errorsOf("operator", "slot=\"202\" records=\"1\""),
              ElementsAre(HasSubstr("must be a C++ name")));
  EXPECT_THAT(errorsOf("My-Own", "slot=\"202\" records=\"1\""), ElementsAre(HasSubstr("must be a C++ name")));
}

TEST(SubsystemTest, OldWayFollowsFromTheSlot) {
  EXPECT_THAT(
      errorsOf("T", "slot=\"202\" records=\"1\" old=\"true\""),
      ElementsAre(
          "T.xml:1:44: error: slot 202 of subsystem 'T' is not one of the old-way slots that the runtime "
          "knows; write old=\"false\" or another slot"));
  EXPECT_THAT(
      errorsOf("T", "slot=\"201\" records=\"1\""),
      ElementsAre("T.xml:1:1: error: slot 201 of subsystem 'T' is one of the old-way slots that the runtime "
                  "knows; write old=\"true\" or another slot"));
}

TEST(SubsystemTest, FileIsNamedAfterItsSubsystem) {
  EXPECT_THAT(
      compileFiles({{"dir/U.xml", "<subsystem name=\"T\" slot=\"202\" records=\"0\"/>"}}).errors,
      ElementsAre(
          "dir/U.xml:1:12: error: the file of subsystem 'T' must be named T.xml; rename the file or the "
          "subsystem"));
}

TEST(SubsystemTest, NamesAndSlotsOccurOnce) {
  const Compiled compiled = compileFiles({{"a/T.xml", "<subsystem name=\"T\" slot=\"202\" records=\"0\"/>"},
                                          {"b/T.xml", "<subsystem name=\"T\" slot=\"203\" records=\"0\"/>"},
                                          {"U.xml", "<subsystem name=\"U\" slot=\"202\" records=\"0\"/>"}});
  EXPECT_THAT(
      compiled.errors,
      ElementsAre(
          "U.xml:1:21: error: slot 202 is already that of subsystem 'T' in a/T.xml; choose a free slot",
          "b/T.xml:1:12: error: subsystem 'T' is already described in a/T.xml; give it another name, or "
          "make this file an <extension>"));
}

TEST(SubsystemTest, FileIsGivenOnce) {
  const std::string text = "<subsystem name=\"T\" slot=\"202\" records=\"0\"/>";
  EXPECT_THAT(compileFiles({{"T.xml", text}, {"T.xml", text}}).errors,
              ElementsAre("T.xml: error: the file is given twice; give it once"));
}

TEST(SubsystemTest, OneSubsystemHoldsTheAnnotations) {
  const Compiled compiled =
      compileFiles({{"T.xml", "<subsystem name=\"T\" slot=\"202\" records=\"0\" annotations=\"true\"/>"},
                    {"U.xml", "<subsystem name=\"U\" slot=\"203\" records=\"0\" annotations=\"1\"/>"}});
  EXPECT_THAT(compiled.errors,
              ElementsAre("U.xml:1:44: error: subsystem 'T' is already that of the annotations; remove "
                          "annotations=\"true\" here"));
}

TEST(SubsystemTest, IndexMustLieInTheRecords) {
  EXPECT_THAT(
      compile("<class name=\"C\" index=\"20\"/>").errors,
      ElementsAre(
          "T.xml:2:8: error: index 20 of class 'C' of subsystem 'T' is beyond its 20 records; choose a "
          "smaller one or raise records"));
  EXPECT_THAT(
      compile("<class name=\"C\" index=\"-1\"/>").errors,
      ElementsAre(
          "T.xml:2:17: error: index of class 'C' is '-1'; write a number from 0 to 32766, decimal or 0x..."));
}

TEST(SubsystemTest, ExtensionAddsClassesWhateverTheOrderOfFiles) {
  const Compiled compiled = compileFiles(
      {{"A.extension.xml",
        "<extension subsystem=\"T\"><class name=\"D\" index=\"1\">"
        "<field name=\"c\" type=\"object\" class=\"C\"/></class></extension>"},
       {"T.xml",
        "<subsystem name=\"T\" slot=\"202\" records=\"5\"><class name=\"C\" index=\"3\"/></subsystem>"}});
  EXPECT_THAT(compiled.errors, IsEmpty());
  EXPECT_EQ(compiled.classNamed("T", "D").index, 1);
  EXPECT_EQ(compiled.field("T", "D", "c").references[0].target, &compiled.classNamed("T", "C"));
}

TEST(SubsystemTest, ExtensionMayRaiseTheRecordCount) {
  const std::string base = "<subsystem name=\"T\" slot=\"202\" records=\"5\"/>";
  const Compiled raised = compileFiles(
      {{"T.xml", base},
       {"T.extension.xml",
        "<extension subsystem=\"T\" records=\"7\"><class name=\"D\" index=\"6\"/></extension>"}});
  EXPECT_THAT(raised.errors, IsEmpty());
  EXPECT_EQ(raised.catalogue.find("T")->records, 7);
  EXPECT_THAT(
      compileFiles({{"T.xml", base}, {"T.extension.xml", "<extension subsystem=\"T\" records=\"4\"/>"}})
          .errors,
      ElementsAre(HasSubstr("record count of the extension of 'T' is '4'; write a number from 5 to 32767")));
}

TEST(SubsystemTest, ExtensionNeedsItsSubsystemAndItsFileName) {
  EXPECT_THAT(
      compileFiles({{"T.extension.xml", "<extension subsystem=\"T\"/>"}}).errors,
      ElementsAre(
          "T.extension.xml:1:12: error: there is no subsystem 'T' to extend; add its file, or correct "
          "the name"));
  EXPECT_THAT(
      compileFiles({{"T.xml", "<extension subsystem=\"T\"/>"}}).errors,
      ElementsAre("T.xml:1:1: error: the file of an extension must have a name that ends in .extension.xml; "
                  "rename it to T.extension.xml"));
}

}  // namespace
}  // namespace zqxml::zqcatc
