// zqmsg xpath.
#include <algorithm>
#include <string>

#include "tests/zqmsg/zqmsg_runner.h"

namespace zqxml {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

const std::string kTaskXml =
    R"(<TMMsg_TaskOptions taskId="3"><options originalJobId="42" externalDataProcessor="tab&#9;, line&#10;end, \ and 😀" comment="€">)"
    R"(<adComparisonOption adCompareType="1"/><alertIds val="1"/><alertIds val="-2"/></options>)"
    R"(<defaults priority="5"/></TMMsg_TaskOptions>)";
const std::string kTaskLines =
    "options[1]/@originalJobId=42\n"
    "options[1]/@externalDataProcessor=tab\\t, line\\nend, \\\\ and 😀\n"
    "options[1]/@comment=€\n"
    "options[1]/adComparisonOption[1]/@adCompareType=1\n"
    "options[1]/alertIds=1\n"
    "options[1]/alertIds=-2\n";

class Xpath : public ZqmsgTest {
 protected:
  ProgramRun set(const std::string& lines, std::vector<std::string> options = {}) const {
    std::vector<std::string> arguments{"xpath", "set", "TMMsg_TaskOptions"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return zqmsg(arguments, lines);
  }
  void refused(const std::string& lines, const std::string& error) const {
    folder_.write("old.xml", "old");
    const ProgramRun run = set(lines, {"-o", "old.xml"});
    EXPECT_THAT(run, Exits(1)) << lines;
    EXPECT_THAT(run.out, IsEmpty());
    EXPECT_THAT(run.err, StartsWith(error));
    EXPECT_EQ(folder_.read("old.xml"), "old");
  }
};

TEST_F(Xpath, ListPrintsThePathsOfASubsystem) {
  const ProgramRun run = zqmsg({"xpath", "list", "TMMsg"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.err, IsEmpty());
  EXPECT_THAT(run.out, HasSubstr("0x6557686d  options[1]/@originalJobId\n"));
  EXPECT_THAT(run.out, HasSubstr("0x38d09dfd  options[1]/@externalDataProcessor\n"));
  EXPECT_GE(std::count(run.out.begin(), run.out.end(), '\n'), 100);
  EXPECT_EQ(zqmsg({"xpath", "list", "12"}).out, run.out);
}

TEST_F(Xpath, ListRefusesSubsystemsWithoutPaths) {
  const ProgramRun run = zqmsg({"xpath", "list", "App"});
  EXPECT_THAT(run, Exits(1));
  EXPECT_EQ(run.err, "zqmsg: App: has no paths\n  those that have: TMMsg, ZqEntities, Ida, databrowse\n");
  EXPECT_THAT(zqmsg({"xpath", "list", "Nothing"}), Exits(1));
}

TEST_F(Xpath, GetPrintsOneLinePerValue) {
  folder_.write("task.xml", kTaskXml);
  const ProgramRun run = zqmsg({"xpath", "get", "task.xml"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.err, IsEmpty());
  EXPECT_EQ(run.out, kTaskLines);
}

TEST_F(Xpath, GetTellsFieldsWithoutGenPathWhenAskedTo) {
  const ProgramRun run = zqmsg({"xpath", "get", "-", "--all"}, kTaskXml);
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(run.out, kTaskLines + "defaults[1]/@priority=5\n");
}

TEST_F(Xpath, GetTakesAnyForm) {
  const std::string binary = zqmsg({"convert", "--to", "binary"}, kTaskXml).out;
  EXPECT_EQ(zqmsg({"xpath", "get", "-"}, binary).out, kTaskLines);
}

TEST_F(Xpath, GetOfASubsystemWithoutPathsIsAFailure) {
  const ProgramRun run = zqmsg({"xpath", "get", "-"}, kSaveAlertXml);
  EXPECT_THAT(run, Exits(1));
  EXPECT_THAT(run.err, StartsWith("zqmsg: ZQGui: has no paths\n"));
  EXPECT_THAT(zqmsg({"xpath", "get", "-"}, "<No_Class/>"), Exits(5));
  EXPECT_THAT(zqmsg({"xpath", "get", "missing"}), Exits(1));
}

TEST_F(Xpath, SetMakesTheMessageAgain) {
  folder_.write("task.xml", R"(<TMMsg_TaskOptions><options )" +
                                kTaskXml.substr(kTaskXml.find("originalJobId"),
                                                kTaskXml.find("<defaults") - kTaskXml.find("originalJobId")) +
                                "</TMMsg_TaskOptions>");
  const ProgramRun run = set(kTaskLines, {"-o", "again.xml"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.out, IsEmpty());
  EXPECT_THAT(run.err, IsEmpty());
  EXPECT_THAT(zqmsg({"diff", "task.xml", "again.xml"}), Exits(0));
}

TEST_F(Xpath, GetGivesBackWhatSetTook) {
  const std::string lines =
      "options[1]/@externalDataProcessor=\\x01\\x7f \\x5c= =\n"
      "options[1]/restoreOption[1]/fileOption[1]/sourceItem=\n"
      "options[1]/restoreOption[1]/fileOption[1]/sourceItem=# x\n"
      "options[1]/@ratio=0.25\n"
      "options[1]/mediaOption[1]/@startNewMedia=1\n";
  const ProgramRun run = set(lines);
  ASSERT_THAT(run, Exits(0));
  const std::string binary = zqmsg({"convert", "--to", "binary"}, run.out).out;
  EXPECT_EQ(zqmsg({"xpath", "get", "-"}, binary).out,
            "options[1]/@externalDataProcessor=\\x01\\x7f \\\\= =\n" + lines.substr(lines.find('\n') + 1));
}

TEST_F(Xpath, SetPassesOverEmptyLinesAndComments) {
  const ProgramRun run = set("# priorities\n\noptions[1]/@priority=7\r\n\r\noptions[1]/alertIds=4");
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.out, HasSubstr(R"(<options priority="7"><alertIds val="4"/></options>)"));
  EXPECT_THAT(set("").out, HasSubstr("<TMMsg_TaskOptions/>"));
}

TEST_F(Xpath, SetMakesAnElementOfAListForEachLine) {
  const ProgramRun run =
      zqmsg({"xpath", "set", "Ida_ScanRequest"}, "filters[1]/@minimumAge=1\nfilters[1]/@minimumAge=2\n");
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.out, HasSubstr(R"(<filters minimumAge="1"/><filters minimumAge="2"/>)"));
}

TEST_F(Xpath, SetReadsByteStringsInBase64) {
  const std::string lines = "contentOption[1]/@signature=aGk=\n";
  const ProgramRun run = zqmsg({"xpath", "set", "Ida_ScanRequest"}, lines);
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(zqmsg({"xpath", "get", "-"}, run.out).out, lines);
  const ProgramRun bad = zqmsg({"xpath", "set", "Ida_ScanRequest"}, "contentOption[1]/@signature=hi\n");
  EXPECT_THAT(bad, Exits(1));
  EXPECT_EQ(bad.err, "zqmsg: line 1: \"hi\" is no Base64, as contentOption[1]/@signature needs it\n");
}

TEST_F(Xpath, SetWarnsOfTypesThatAreNotSet) {
  const ProgramRun run = zqmsg({"xpath", "set", "Ida_ScanRequest"}, "contentOption[1]/@maximumFileSize=5\n");
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(
      run.err,
      "zqmsg: line 1: warning: contentOption[1]/@maximumFileSize is not set: a path sets no ulonglong\n");
  EXPECT_THAT(run.out, Not(HasSubstr("contentOption")));
}

TEST_F(Xpath, BadLinesAreRefusedByNumberAndTheOutputStays) {
  refused("options[1]/@priority=1\nno value\n", "zqmsg: line 2: is not of the form PATH=VALUE\n");
  refused("options[1]/@priority=\\q\n", "zqmsg: line 1: is not of the form PATH=VALUE\n");
  refused("\noptions[1]/@prio=1\n", "zqmsg: line 2: TMMsg_TaskOptions has no path options[1]/@prio\n");
  refused("@taskId=1\n", "zqmsg: line 1: TMMsg_TaskOptions has no path @taskId\n");
  refused("options[1]/@priority=high\n",
          "zqmsg: line 1: \"high\" is no value of options[1]/@priority (int)\n");
  refused("options[1]/@priority=\n", "zqmsg: line 1: \"\" is no value of options[1]/@priority (int)\n");
  refused("options[1]/@priority=99999999999\n", "zqmsg: line 1: \"99999999999\" is no value of ");
}

TEST_F(Xpath, UnknownPathsCanBePassedOver) {
  const ProgramRun run = set("options[1]/@prio=1\noptions[1]/@priority=2\n", {"--skip-unknown"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(run.err, "zqmsg: line 1: warning: TMMsg_TaskOptions has no path options[1]/@prio\n");
  EXPECT_THAT(run.out, HasSubstr(R"(<options priority="2"/>)"));
}

TEST_F(Xpath, SetTakesOnlyPathsThatBeginInTheClass) {
  // The member numbers alone would fit.
  const ProgramRun run = zqmsg({"xpath", "set", "TMMsg_RestoreOption"}, "options[1]/@priority=1\n");
  EXPECT_THAT(run, Exits(1));
  EXPECT_THAT(run.err, StartsWith("zqmsg: line 1: TMMsg_RestoreOption has no path options[1]/@priority\n"));
}

TEST_F(Xpath, ClassesWithoutMessagesOrPathsAreRefused) {
  EXPECT_THAT(zqmsg({"xpath", "set", "TMMsg_BackupLevel"}).err, HasSubstr("is an enumeration"));
  EXPECT_THAT(zqmsg({"xpath", "set", "ZQGui_SaveAlert"}).err, HasSubstr("ZQGui: has no paths"));
  EXPECT_THAT(zqmsg({"xpath", "set", "TMMsg_Nothing"}), Exits(1));
}

TEST_F(Xpath, EachCommandHasHelpWithAnExample) {
  for (const std::string command : {"list", "get", "set"}) {
    const ProgramRun run = zqmsg({"xpath", command, "--help"});
    EXPECT_THAT(run, Exits(0));
    EXPECT_THAT(run.out, HasSubstr("Usage: zqmsg xpath " + command));
    EXPECT_THAT(run.out, HasSubstr("\n  zqmsg xpath " + command));
    const ProgramRun wrong = zqmsg({"xpath", command, "--frobnicate", "x", "y"});
    EXPECT_THAT(wrong, Exits(2));
    EXPECT_THAT(wrong.err, HasSubstr("'zqmsg xpath " + command + " --help' tells more"));
    EXPECT_THAT(zqmsg({"xpath", command}), Exits(2));
  }
  EXPECT_THAT(zqmsg({"xpath"}), Exits(2));
  EXPECT_THAT(zqmsg({"xpath", "frobnicate"}), Exits(2));
}

}  // namespace
}  // namespace zqxml
