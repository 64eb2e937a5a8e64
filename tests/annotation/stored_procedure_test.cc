#include <gtest/gtest.h>
#include <tests/support/log_capture.h>
#include <zqxml/annotation/stored_procedure.h>

#include <string>

namespace zqxml {
namespace {

constexpr char kProcedure[] = "ZqGetAlertCriteriaForServiceOffline";
constexpr char kRequest[] = "<ZQGui_GetAlertCriteriaForServiceOfflineReq criteriaId=\"7\"/>";

bool verifies(std::string name, std::string xml) {
  const std::string nameBefore = name;
  const std::string xmlBefore = xml;
  const bool result = verifyStoredProcedureName(name, xml);
  EXPECT_EQ(name, nameBefore);
  EXPECT_EQ(xml, xmlBefore);
  return result;
}

TEST(StoredProcedure, ProcedureOfTheClassIsVerified) {
  EXPECT_TRUE(verifies(kProcedure, kRequest));
}

TEST(StoredProcedure, AnyOtherNameIsNot) {
  const std::string name = kProcedure;
  for (const std::string& other : {std::string(), name.substr(1), name + " ", name + '\0',
                                   std::string("zqgetalertcriteriaforserviceoffline")}) {
    EXPECT_FALSE(verifies(other, kRequest)) << other;
  }
}

TEST(StoredProcedure, EmptyTextIsRefusedWithoutAWord) {
  LogCapture capture(25);
  EXPECT_FALSE(verifies(kProcedure, ""));
  EXPECT_TRUE(capture.empty());
}

TEST(StoredProcedure, TextThatDoesNotParseIsRefused) {
  LogCapture capture;
  EXPECT_FALSE(verifies(kProcedure, "<ZQGui_GetAlertCriteriaForServiceOfflineReq"));
  EXPECT_FALSE(verifies(kProcedure, "<ZQGui_NoSuchClass/>"));
  EXPECT_FALSE(verifies(kProcedure, "no XML"));
}

TEST(StoredProcedure, ClassThatNamesNoneIsRefused) {
  EXPECT_FALSE(verifies(kProcedure, "<ZQGui_SaveAlert/>"));
  EXPECT_FALSE(verifies("", "<ZQGui_SaveAlert/>"));
}

TEST(StoredProcedure, AnnotationOfAFieldIsNotThatOfTheClass) {
  EXPECT_FALSE(verifies("ZqProcedure", "<App_AnnotationSample procedure=\"x\"/>"));
}

}  // namespace
}  // namespace zqxml
