// JSON on the command line: forms, detection, lines, masks, failures.
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/zqmsg/zqmsg_runner.h"

namespace zqxml {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class ConvertJson : public ZqmsgTest {};

const std::string kAlertJson =
    R"({"ZQGui_SaveAlert":{"impersonateUser":7,"loginName":"operator","password":"hush","useNetworkShare":1,)"
    R"("alertLocation":"/srv/alerts","zqpassword":""}})"
    "\n";

TEST_F(ConvertJson, DocumentNamesTheClassAndEndsItsLine) {
  EXPECT_EQ(to("json", kSaveAlertXml), kAlertJson);
  EXPECT_EQ(to("jsonl", kSaveAlertXml), kAlertJson);
}

TEST_F(ConvertJson, EveryFormLeadsToJsonAndBack) {
  for (const char* form : {"xml", "xml16", "binary", "objects", "json", "jsonl"}) {
    const std::string input = to(form, kSaveAlertXml);
    EXPECT_EQ(to("json", input), kAlertJson) << form;
    EXPECT_EQ(to(form, kAlertJson), input) << form;
    EXPECT_EQ(to(form, kAlertJson, {"--from", "json"}), input) << form;
    EXPECT_EQ(to(form, kAlertJson, {"--from", "jsonl"}), input) << form;
  }
}

TEST_F(ConvertJson, DocumentOfManyLinesIsDetected) {
  const std::string readable = to("json", kSaveAlertXml, {"--readable"});
  EXPECT_THAT(readable, StartsWith("{\n  \"ZQGui_SaveAlert\": {\n"));
  EXPECT_EQ(to("json", readable), kAlertJson);
  EXPECT_EQ(to("json", "\xef\xbb\xbf \n" + readable), kAlertJson);
  EXPECT_EQ(to("json", R"({"ZQGui_SaveAlert": {"loginName": "}}\"{",)"
                       "\n\"alertLocation\": \"x\"}}"),
            "{\"ZQGui_SaveAlert\":{\"loginName\":\"}}\\\"{\",\"alertLocation\":\"x\"}}\n");
}

TEST_F(ConvertJson, LinesAreAMessageEach) {
  const std::string lines = kAlertJson + "\n  \r\n" + kAlertJson;
  EXPECT_EQ(to("jsonl", lines), kAlertJson + kAlertJson);
  EXPECT_EQ(to("jsonl", to("objects", lines)), kAlertJson + kAlertJson);
  EXPECT_EQ(to("jsonl", kAlertJson.substr(0, kAlertJson.size() - 1)), kAlertJson);
  EXPECT_EQ(to("jsonl", "", {"--from", "jsonl"}), "");
}

TEST_F(ConvertJson, ManyMessagesGoIntoAFileOfLinesOrAFolder) {
  folder_.write("two", to("objects", kAlertJson + kAlertJson));
  EXPECT_THAT(zqmsg({"convert", "two", "--to", "jsonl", "-o", "two.jsonl"}), Exits(0));
  EXPECT_EQ(folder_.read("two.jsonl"), kAlertJson + kAlertJson);
  const ProgramRun refused = zqmsg({"convert", "two", "--to", "json", "-o", "two.json"});
  EXPECT_THAT(refused, Exits(1));
  EXPECT_THAT(refused.err, HasSubstr("brings a second message"));
  EXPECT_THAT(zqmsg({"convert", "two.jsonl", "--to", "json", "-o", "out/"}), Exits(0));
  EXPECT_EQ(folder_.read("out/two-000001.json"), kAlertJson);
  EXPECT_EQ(folder_.read("out/two-000002.json"), kAlertJson);
  folder_.write("one.json", kAlertJson);
  EXPECT_THAT(zqmsg({"convert", "one.json", "--to", "xml", "-o", "out/"}), Exits(0));
  EXPECT_EQ(folder_.read("out/one.xml"), kSaveAlertXml) << "a line that is alone has no number";
}

TEST_F(ConvertJson, EnumerationsAreNamedWhereAskedFor) {
  const std::string xml = R"(<ZQGui_AlertCriteria severity="2"/>)";
  EXPECT_THAT(to("json", xml), HasSubstr("\"severity\":2"));
  EXPECT_THAT(to("json", xml, {"--enum-names"}), HasSubstr("\"severity\":\"MAJOR\""));
  EXPECT_THAT(to("jsonl", xml, {"--enum-names"}), HasSubstr("\"severity\":\"MAJOR\""));
  EXPECT_THAT(to("json", xml, {"--readable"}), HasSubstr("\"severity\": \"MAJOR\""));
}

TEST_F(ConvertJson, SecretsAreMaskedByTheSameOptions) {
  EXPECT_THAT(to("json", kSaveAlertXml, {"--mask-passwords"}), HasSubstr("\"password\":\"*******\""));
  const std::string sensitive = R"(<App_AnnotationSample sensitiveNumber="7" sensitiveText="s"/>)";
  const std::string masked = to("json", sensitive, {"--mask-sensitive"});
  EXPECT_THAT(masked, HasSubstr(R"("sensitiveText":"########","sensitiveNumber":"########")"));
  const ProgramRun back = zqmsg({"convert", "--to", "xml"}, masked);
  EXPECT_THAT(back, Exits(1));
  EXPECT_THAT(back.err, HasSubstr("sensitiveNumber is masked: its value is not in the document"));
}

TEST_F(ConvertJson, SwitchesWithoutEffectAreRefused) {
  for (const char* option : {"--elements", "--root-only", "--version=2", "--show-secrets"})
    EXPECT_THAT(zqmsg({"convert", "--to", "json", option}, kSaveAlertXml), Exits(2)) << option;
  const ProgramRun run = zqmsg({"convert", "--to", "jsonl", "--readable"}, kSaveAlertXml);
  EXPECT_THAT(run, Exits(2));
  EXPECT_THAT(run.err, HasSubstr("--readable is for the forms xml, xml16 and json, not for jsonl"));
}

TEST_F(ConvertJson, FailuresTellPlaceAndStatus) {
  const auto failure = [this](const std::string& input, int status) {
    const ProgramRun run = zqmsg({"convert", "--from", "json", "--to", "binary"}, input);
    EXPECT_THAT(run, Exits(status)) << input;
    EXPECT_THAT(run.out, IsEmpty());
    return run.err;
  };
  EXPECT_THAT(failure("{\"ZQGui_SaveAlert\":\n{]}", 4),
              StartsWith("zqmsg: standard input: is no JSON: syntax error"));
  EXPECT_THAT(failure("{\"ZQGui_SaveAlert\":\n{]}", 4), HasSubstr("at line 2, column 2"));
  EXPECT_THAT(failure("{\"ZQGui_SaveAlart\":{}}", 5), HasSubstr("did you mean 'ZQGui_SaveAlert'?"));
  EXPECT_EQ(
      failure(R"({"ZQGui_SaveAlert":{"impersonateUser":true}})", 1),
      "zqmsg: standard input: impersonateUser needs a whole number from 0 to 4294967295 and has true, at "
      "line 1, column 39\n");
}

TEST_F(ConvertJson, SecretsTravelEncryptedWithTheKey) {
  const ProgramRun without =
      zqmsg({"convert", "--to", "json"}, R"(<App_AnnotationSample ver8Password="hush"/>)");
  EXPECT_THAT(without, Exits(6));
  EXPECT_THAT(without.out, Not(HasSubstr("hush")));
}

TEST_F(ConvertJson, OtherCommandsReadJsonToo) {
  folder_.write("alert.json", kAlertJson);
  folder_.write("alert.xml", kSaveAlertXml);
  EXPECT_THAT(zqmsg({"diff", "alert.json", "alert.xml"}), Exits(0));
  EXPECT_THAT(zqmsg({"summary", "alert.json"}).out, HasSubstr("operator"));
  EXPECT_THAT(zqmsg({"mask", "alert.json"}).out, HasSubstr("ZQGui_SaveAlert"));
  EXPECT_THAT(zqmsg({"merge", "alert.json", "alert.xml"}), Exits(0));
}

}  // namespace
}  // namespace zqxml
