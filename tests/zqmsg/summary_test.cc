// Messages for people: summary, and the forms of convert that are only written.
#include <filesystem>
#include <string>
#include <vector>

#include "tests/zqmsg/zqmsg_runner.h"

namespace zqxml {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

const std::string kAlertText =
    "impersonateUser:[7],loginName:[operator],useNetworkShare:[1],alertLocation:[/srv/alerts],zqpassword:[]";

std::string item(const std::string& name, const std::string& value) {
  return "<br>&nbsp;" + name + "&nbsp;:&nbsp;" + value;
}
const std::string kAlertOutline = "SaveAlert:" + item("impersonateUser", "7") +
                                  item("loginName", "operator") + item("useNetworkShare", "1") +
                                  item("alertLocation", "/srv/alerts") + "</div>";

/// Runs in an environment that has no language, or that of the test.
class Summary : public ZqmsgTest {
 protected:
  ProgramRun inLanguage(std::vector<std::string> environment, std::vector<std::string> arguments,
                        const std::string& input = kSaveAlertXml) const {
    ProgramSetup setup;
    setup.input = input;
    setup.environment = {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG", "ZQXML_LOCALE_DIR"};
    setup.environment.insert(setup.environment.end(), environment.begin(), environment.end());
    return zqmsg(std::move(arguments), std::move(setup));
  }
  ProgramRun summary(std::vector<std::string> options, const std::string& input = kSaveAlertXml) const {
    options.insert(options.begin(), "summary");
    return inLanguage({}, options, input);
  }
};

TEST_F(Summary, IsALineOfText) {
  folder_.write("alert.xml", kSaveAlertXml);
  for (const ProgramRun& run : {summary({}), summary({"-"}), summary({"alert.xml"}, "")}) {
    EXPECT_THAT(run, Exits(0));
    EXPECT_EQ(run.out, kAlertText + "\n");
    EXPECT_THAT(run.err, IsEmpty());
  }
}

TEST_F(Summary, EnumerationsAreThereByTheirText) {
  EXPECT_EQ(
      summary({}, R"(<JobManager_JobProgress jobId="5" status="1" throughput="0.1" isStalled="1"/>)").out,
      "jobId:[5],status:[Running],throughput:[0.1],isStalled:[true]\n");
}

TEST_F(Summary, HtmlIsAnOutline) {
  const ProgramRun run = summary({"--html"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(run.out, kAlertOutline + "\n");
}

TEST_F(Summary, CollapsibleOutlineOpensWithAClick) {
  const ProgramRun run = summary({"--html", "--collapsible"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.out, StartsWith("<a title=\"Click to view  \""));
  EXPECT_THAT(run.out, HasSubstr("onclick=\"showdiv('SaveAlert0');\">SaveAlert::</a><div id=\"SaveAlert0\""));
}

TEST_F(Summary, GuiIsAParagraph) {
  EXPECT_EQ(summary({"--gui"}, R"(<JobManager_JobProgress jobId="5" status="1"/>)").out,
            "<p> Summary<BR>&nbsp;jobId&nbsp;:&nbsp;5<BR>&nbsp;status&nbsp;:&nbsp;RUNNING</p></div>\n");
}

TEST_F(Summary, OrderPutsTheValuesOfAnObjectFirst) {
  const std::string xml =
      R"(<JobManager_JobListResp generated="1"><page offset="2"/><jobs jobId="3"/></JobManager_JobListResp>)";
  const auto orderOf = [this, &xml](std::vector<std::string> options) {
    std::string out = summary(options, xml).out;
    return out.find("generated") < out.find("offset");
  };
  EXPECT_FALSE(orderOf({}));
  EXPECT_TRUE(orderOf({"--order"}));
  EXPECT_TRUE(orderOf({"--order", "--html"}));
  EXPECT_TRUE(orderOf({"--order", "--gui"}));
}

TEST_F(Summary, LocaleIsTheLanguageOfLabels) {
  EXPECT_THAT(summary({"--html", "--locale", "1031"}).out, HasSubstr(item("Anmeldename", "operator")));
  EXPECT_THAT(summary({"--html", "--locale", "0x407"}).out, HasSubstr(item("Anmeldename", "operator")));
  EXPECT_THAT(summary({"--gui", "--locale", "1033"}).out, HasSubstr("Login name"));
  EXPECT_THAT(summary({"--html", "--locale", "1036"}).out, HasSubstr(item("loginName", "operator")));
  EXPECT_THAT(summary({"--html", "--locale", "German"}), Exits(2));
}

TEST_F(Summary, WithoutALocaleTheEnvironmentTellsTheLanguage) {
  const auto label = [this](std::vector<std::string> environment) {
    const std::string out = inLanguage(environment, {"summary", "--html"}).out;
    return out.find("Anmeldename") != std::string::npos  ? "German"
           : out.find("Login name") != std::string::npos ? "English"
           : out.find("loginName") != std::string::npos  ? "none"
                                                         : "nothing";
  };
  EXPECT_STREQ(label({}), "none");
  EXPECT_STREQ(label({"LANG=de_DE.UTF-8"}), "German");
  EXPECT_STREQ(label({"LANG=de_DE.UTF-8", "LC_MESSAGES=en_US.UTF-8"}), "English");
  EXPECT_STREQ(label({"LC_MESSAGES=en_US", "LC_ALL=de_AT.UTF-8@euro"}), "German");
  EXPECT_STREQ(label({"LANG=en_US.UTF-8", "LANGUAGE=fr:de"}), "German");
  EXPECT_STREQ(label({"LANG=C.UTF-8", "LANGUAGE=de"}), "none");
  EXPECT_STREQ(label({"LANG=de_DE.UTF-8", "LC_ALL=C"}), "none");
  EXPECT_STREQ(label({"LANG=fr_FR.UTF-8"}), "none");
}

TEST_F(Summary, TextsCanComeFromAFolderOfTheEnvironment) {
  std::filesystem::create_directories(folder_.path("empty"));
  EXPECT_THAT(inLanguage({"LANG=de_DE.UTF-8", "ZQXML_LOCALE_DIR=empty"}, {"summary", "--html"}).out,
              HasSubstr("loginName"));
  const std::string built = std::string("ZQXML_LOCALE_DIR=") + ZQXML_BINARY_DIR + "/share/locale";
  EXPECT_THAT(inLanguage({"LANG=de_DE.UTF-8", built}, {"summary", "--html"}).out, HasSubstr("Anmeldename"));
}

TEST_F(Summary, EveryMessageOfEveryFileIsALine) {
  const std::string objects =
      zqmsg({"convert", "--to", "objects"}, R"(<JobManager_JobPage offset="1" limit="2"/>)").out;
  folder_.write("a.objects", objects + objects);
  folder_.write("b.xml", R"(<JobManager_JobPage offset="3" limit="4"/>)");
  EXPECT_EQ(summary({"a.objects", "b.xml"}).out,
            "offset:[1],limit:[2]\noffset:[1],limit:[2]\noffset:[3],limit:[4]\n");
}

TEST_F(Summary, FormsExcludeEachOther) {
  for (const std::vector<std::string>& options : std::vector<std::vector<std::string>>{
           {"--html", "--gui"}, {"--collapsible"}, {"--gui", "--collapsible"}}) {
    const ProgramRun run = summary(options);
    EXPECT_THAT(run, Exits(2));
    EXPECT_THAT(run.err, StartsWith("zqmsg: summary: "));
    EXPECT_THAT(run.out, IsEmpty());
  }
}

TEST_F(Summary, PasswordsAreInNoForm) {
  for (const std::vector<std::string>& command :
       std::vector<std::vector<std::string>>{{"summary"},
                                             {"summary", "--html"},
                                             {"summary", "--gui"},
                                             {"convert", "--to", "text"},
                                             {"convert", "--to", "html"}}) {
    const ProgramRun run = inLanguage({}, command);
    EXPECT_THAT(run, Exits(0));
    EXPECT_THAT(run.out, Not(HasSubstr("hush")));
  }
}

TEST_F(Summary, InputThatCannotBeReadIsAFailure) {
  EXPECT_THAT(summary({}, "<ZQGui_SaveAlert"), Exits(4));
  EXPECT_THAT(summary({}, "<No_Class/>"), Exits(5));
  EXPECT_THAT(summary({}, ""), Exits(1));
  EXPECT_THAT(summary({"missing.xml"}), Exits(1));
}

TEST_F(Summary, ValueWithoutANameIsWarnedOf) {
  const ProgramRun run = summary({}, R"(<JobManager_JobProgress jobId="5" status="99"/>)");
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(run.out, "jobId:[5],status:[]\n");
  EXPECT_THAT(run.err, HasSubstr("does not contain enum with value : [99]"));
}

TEST_F(Summary, ControlCharactersAreShownAndConvertWritesThem) {
  const std::string xml = "<JobManager_JobProgress currentItem=\"a&#10;b&#9;&#x9b;\"/>";
  EXPECT_EQ(summary({}, xml).out, "currentItem:[a\\nb\\t\\xc2\\x9b]\n");
  EXPECT_THAT(summary({"--html"}, xml).out, HasSubstr("a\\nb\\t\\xc2\\x9b"));
  EXPECT_EQ(inLanguage({}, {"convert", "--to", "text"}, xml).out, "currentItem:[a\nb\t\xc2\x9b]");
}

// --- convert

TEST_F(Summary, ConvertWritesTheSameTextAndOutline) {
  EXPECT_EQ(inLanguage({}, {"convert", "--to", "text"}).out, kAlertText);
  EXPECT_EQ(inLanguage({}, {"convert", "--to", "html"}).out, kAlertOutline);
}

TEST_F(Summary, ConvertedTextsStandOnLinesOfTheirOwn) {
  folder_.write("a.xml", R"(<JobManager_JobPage offset="1" limit="2"/>)");
  folder_.write("b.xml", R"(<JobManager_JobPage offset="3" limit="4"/>)");
  EXPECT_EQ(zqmsg({"convert", "a.xml", "b.xml", "--to", "text"}).out,
            "offset:[1],limit:[2]\noffset:[3],limit:[4]\n");
  EXPECT_THAT(zqmsg({"convert", "a.xml", "b.xml", "--to", "html"}), Exits(1));
}

TEST_F(Summary, ConvertedFilesAreNamedAfterTheirForm) {
  folder_.write("a.xml", kSaveAlertXml);
  EXPECT_THAT(inLanguage({}, {"convert", "a.xml", "--to", "text", "-o", "out/"}), Exits(0));
  EXPECT_THAT(inLanguage({}, {"convert", "a.xml", "--to", "html", "-o", "out/"}), Exits(0));
  EXPECT_EQ(folder_.read("out/a.txt"), kAlertText);
  EXPECT_EQ(folder_.read("out/a.html"), kAlertOutline);
}

TEST_F(Summary, MessageWithoutFieldsIsAnEmptyText) {
  const ProgramRun run = zqmsg({"convert", "--to", "text", "-o", "empty.txt"}, "<JobManager_JobAttempt/>");
  EXPECT_THAT(run, Exits(0));
  EXPECT_TRUE(std::filesystem::exists(folder_.path("empty.txt")));
  EXPECT_EQ(folder_.read("empty.txt"), "");
}

}  // namespace
}  // namespace zqxml
