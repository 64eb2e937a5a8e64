// What convert makes of one message: forms, switches, detection.
#include <string>
#include <utility>
#include <vector>

#include "tests/zqmsg/zqmsg_runner.h"

namespace zqxml {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class Convert : public ZqmsgTest {};

std::string wide(const std::string& ascii, bool bigEndian) {
  std::string bytes;
  for (char c : ascii) bytes += bigEndian ? std::string{'\0', c} : std::string{c, '\0'};
  return bytes;
}

const std::string kAlerts =
    R"(<?xml version="1.0" encoding="UTF-8" standalone="no" ?><ZQGui_GetAlertsReq ascending="1" order="time" pageNumber="0" pageSize="5" severity="2"><criteria criteriaId="1" criteriaName="a" minutes="3" severity="3"/></ZQGui_GetAlertsReq>)";

TEST_F(Convert, WorkedExampleIsExactlyTheseBytes) {
  EXPECT_EQ(to("binary", kExampleXml), kExampleBytes);
}

TEST_F(Convert, RecordOfAnObjectIsItsLengthAndTheBinaryForm) {
  EXPECT_EQ(to("objects", kExampleXml), std::string("\0\0\0\x40", 4) + kExampleBytes);
}

TEST_F(Convert, XmlOfXmlIsItself) {
  EXPECT_EQ(to("xml", kSaveAlertXml), kSaveAlertXml);
}

TEST_F(Convert, EveryFormLeadsBackToTheSameXml) {
  for (const char* form : {"xml", "xml16", "binary", "objects"})
    EXPECT_EQ(to("xml", to(form, kSaveAlertXml)), kSaveAlertXml) << form;
}

TEST_F(Convert, EveryFormLeadsToEveryOther) {
  for (const char* from : {"xml", "xml16", "binary", "objects"}) {
    const std::string input = to(from, kSaveAlertXml);
    for (const char* form : {"xml", "xml16", "binary", "objects"}) {
      EXPECT_EQ(to(form, input), to(form, kSaveAlertXml)) << from << " to " << form;
      EXPECT_EQ(to(form, input, {"--from", from}), to(form, kSaveAlertXml)) << from << " to " << form;
    }
  }
}

TEST_F(Convert, StandardInputHasAName) {
  EXPECT_EQ(to("xml", kSaveAlertXml, {"-"}), kSaveAlertXml);
}

TEST_F(Convert, Xml16HasAByteOrderMarkAndItsDeclaration) {
  const std::string bytes = to("xml16", kSaveAlertXml);
  EXPECT_THAT(bytes, StartsWith("\xff\xfe" + wide("<?xml version=\"1.0\" encoding=\"UTF-16", false)));
  EXPECT_THAT(to("xml16", kSaveAlertXml, {"--root-only"}),
              StartsWith("\xff\xfe" + wide("<ZQGui_SaveAlert ", false)));
}

TEST_F(Convert, Xml16IsReadInEveryByteOrderWithAndWithoutMarkAndDeclaration) {
  const std::string root = kSaveAlertXml.substr(kSaveAlertXml.find("?>") + 2);
  for (const std::string& declaration :
       {std::string(), std::string("<?xml version=\"1.0\" encoding=\"UTF-16\"?>")}) {
    EXPECT_EQ(to("xml", wide(declaration + root, false)), kSaveAlertXml);
    EXPECT_EQ(to("xml", wide(declaration + root, true)), kSaveAlertXml);
    EXPECT_EQ(to("xml", "\xff\xfe" + wide(declaration + root, false)), kSaveAlertXml);
    EXPECT_EQ(to("xml", "\xfe\xff" + wide(declaration + root, true)), kSaveAlertXml);
  }
}

TEST_F(Convert, XmlWithAByteOrderMarkIsRead) {
  EXPECT_EQ(to("xml", "\xef\xbb\xbf" + kSaveAlertXml), kSaveAlertXml);
}

TEST_F(Convert, XmlInAnotherEncodingIsReadByItsDeclaration) {
  const std::string latin =
      "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><ZQGui_AlertCriteria criteriaName=\"\xfc\"/>";
  EXPECT_THAT(to("xml", latin), HasSubstr("criteriaName=\"\xc3\xbc\""));
}

TEST_F(Convert, RootOnlyLeavesTheDeclarationOut) {
  EXPECT_EQ(to("xml", kSaveAlertXml, {"--root-only"}), kSaveAlertXml.substr(kSaveAlertXml.find("?>") + 2));
}

TEST_F(Convert, ElementsTakeThePlaceOfAttributes) {
  const std::string xml = to("xml", kAlerts, {"--elements"});
  EXPECT_THAT(xml, HasSubstr("<pageSize>5</pageSize>"));
  EXPECT_THAT(xml, HasSubstr("<criteria><criteriaId>1</criteriaId>"));
  EXPECT_EQ(to("xml", xml), kAlerts);
}

TEST_F(Convert, ReadableHasNamesAndLinesAndReadsBack) {
  const std::string xml = to("xml", kAlerts, {"--readable"});
  EXPECT_THAT(xml, HasSubstr("ascending=\"true\""));
  EXPECT_THAT(xml, HasSubstr("severity=\"MAJOR\""));
  EXPECT_THAT(xml, HasSubstr("\n  <criteria "));
  EXPECT_EQ(to("xml", xml), kAlerts);
}

TEST_F(Convert, EnumNamesAreNamesAlone) {
  const std::string xml = to("xml", kAlerts, {"--enum-names"});
  EXPECT_THAT(xml, HasSubstr("severity=\"CRITICAL\""));
  EXPECT_THAT(xml, HasSubstr("ascending=\"1\""));
  EXPECT_EQ(to("xml", xml), kAlerts);
}

TEST_F(Convert, PasswordsAreMasked) {
  const std::string xml = to("xml", kSaveAlertXml, {"--mask-passwords"});
  EXPECT_THAT(xml, HasSubstr("password=\"*******\""));
  EXPECT_THAT(xml, HasSubstr("loginName=\"operator\""));
}

TEST_F(Convert, SensitiveValuesAreMasked) {
  const std::string xml =
      to("xml", "<ZqEntities_UserEntity userName=\"u\" email=\"u@example.org\"/>", {"--mask-sensitive"});
  EXPECT_THAT(xml, HasSubstr("email=\"########\""));
  EXPECT_THAT(xml, HasSubstr("userName=\"u\""));
}

TEST_F(Convert, VersionOfTheBinaryFormIsTheOneAskedFor) {
  const std::string xml = "<ZQGui_UploadRequest content=\"YWJj\"/>";
  const std::string one = to("binary", xml, {"--version", "1"});
  EXPECT_EQ(one.substr(0, 4), std::string("\x01\0\0\0", 4));
  EXPECT_THAT(one, HasSubstr("abc"));
  const std::string two = to("binary", xml, {"--version", "2"});
  EXPECT_EQ(two, to("binary", xml));
  EXPECT_THAT(two, HasSubstr("YWJj"));
}

TEST_F(Convert, VersionOneOfXmlHasPasswordsInBase64) {
  EXPECT_THAT(to("xml", kSaveAlertXml, {"--version", "1"}), HasSubstr("password=\"aHVzaA==\""));
}

TEST_F(Convert, ValuesThatAreLostAreWarnedOf) {
  const ProgramRun run =
      zqmsg({"convert", "--to", "xml"}, "<ZQGui_AlertCriteria severity=\"NOT_ONE\" criteriaId=\"1\"/>");
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.err, StartsWith("zqmsg: standard input: warning: "));
  EXPECT_THAT(run.err, HasSubstr("does not have enum value [NOT_ONE]"));
}

TEST_F(Convert, ManyWarningsAreCounted) {
  std::string xml = "<ZQGui_GetAlertsReq>";
  for (int i = 0; i < 1000; ++i) xml += "<criteria severity=\"NOT_ONE\"/>";
  const ProgramRun run = zqmsg({"convert", "--to", "xml"}, xml + "</ZQGui_GetAlertsReq>");
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.err, HasSubstr("and 990 more like these"));
  EXPECT_LT(run.err.size(), 5000u);
}

TEST_F(Convert, NoFormatInAMessageIsInterpreted) {
  const std::string xml = "<ZQGui_AlertCriteria criteriaName=\"%s%n%d%99999d\" severity=\"%n%s\"/>";
  const ProgramRun run = zqmsg({"convert", "--to", "xml", "-v"}, xml);
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.out, HasSubstr("criteriaName=\"%s%n%d%99999d\""));
}

TEST_F(Convert, MessageOfAnotherSubsystemsNameIsRead) {
  const std::string xml = to("xml", "<SystemMonitoring_GenericEvent/>");
  EXPECT_THAT(xml, HasSubstr("<SystemMonitoring_GenericEvent"));
  EXPECT_THAT(to("xml", to("binary", xml)), HasSubstr("<SystemMonitoring_GenericEvent"));
}

TEST_F(Convert, PageMasksSecretsUnlessToldOtherwise) {
  const std::string masked = to("page", kSaveAlertXml);
  EXPECT_THAT(masked, StartsWith("<!DOCTYPE html>"));
  EXPECT_THAT(masked, HasSubstr("operator"));
  EXPECT_THAT(masked, Not(HasSubstr("hush")));
  EXPECT_THAT(to("page", kSaveAlertXml, {"--show-secrets"}), HasSubstr("hush"));
}

TEST_F(Convert, SwitchesWithoutEffectOnAPageAreRefused) {
  for (const char* option : {"--elements", "--readable", "--mask-passwords", "--version=2"}) {
    const ProgramRun run = zqmsg({"convert", "--to", "page", option}, kSaveAlertXml);
    EXPECT_THAT(run, Exits(2)) << option;
    EXPECT_THAT(run.out, IsEmpty());
  }
  const ProgramRun run = zqmsg({"convert", "--to", "xml", "--show-secrets"}, kSaveAlertXml);
  EXPECT_THAT(run, Exits(2));
  EXPECT_THAT(run.err, HasSubstr("--show-secrets is for the form page"));
}

TEST_F(Convert, PageCannotBeRead) {
  const ProgramRun run = zqmsg({"convert", "--from", "page", "--to", "xml"}, kSaveAlertXml);
  EXPECT_THAT(run, Exits(2));
}

}  // namespace
}  // namespace zqxml
