// Manual page and completion: made of the commands, accepted by their readers, complete.
#include "tests/support/command_pages.h"

#include <string>
#include <vector>

#include "tests/zqmsg/zqmsg_runner.h"

namespace zqxml {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;

class CommandPages : public ZqmsgTest {
 protected:
  std::vector<std::string> completed(std::vector<std::string> line) const {
    line.insert(line.begin(), "zqmsg");
    return pages_.completed(line);
  }

  CommandPagesOf pages_{ZQMSG_PROGRAM};
};

TEST_F(CommandPages, ManualPageTellsEveryCommandAndOptionOfTheHelp) {
  const std::string shown = pages_.manualPage();
  EXPECT_THAT(shown, HasSubstr("zqmsg convert [OPTION]... [FILE]..."));
  EXPECT_THAT(shown, HasSubstr("zqmsg convert alert.bin --to json | jq .ZQGui_SaveAlert.loginName"));
  for (const char* command : {"", "convert", "objects", "objects cat", "xpath set", "describe"}) {
    std::vector<std::string> arguments = wordsOf(command);
    arguments.emplace_back("--help");
    for (const std::string& word : wordsOf(zqmsg(arguments).out)) {
      if (!word.starts_with("--")) continue;
      EXPECT_THAT(shown, HasSubstr(word.substr(0, word.find_first_of(",'=.")))) << command;
    }
  }
}

TEST_F(CommandPages, CommandsAreCompleted) {
  EXPECT_THAT(completed({""}), IsSupersetOf({"convert", "objects", "xpath", "describe"}));
  EXPECT_THAT(completed({"con"}), ElementsAre("convert"));
  EXPECT_THAT(completed({"objects", ""}), ElementsAre("ls", "cat", "check", "repair"));
  EXPECT_THAT(completed({"xpath", "s"}), ElementsAre("set"));
  EXPECT_THAT(completed({"--ver"}), ElementsAre("--version"));
}

TEST_F(CommandPages, OptionsAreCompleted) {
  EXPECT_THAT(completed({"convert", "--veri"}), ElementsAre("--verify"));
  EXPECT_THAT(completed({"convert", "x.xml", "--mask"}), ElementsAre("--mask-passwords", "--mask-sensitive"));
  EXPECT_THAT(completed({"objects", "cat", "--num"}), ElementsAre("--number"));
  EXPECT_THAT(completed({"objects", "--num"}), IsEmpty());
}

TEST_F(CommandPages, FormsAreCompleted) {
  EXPECT_THAT(completed({"convert", "x", "--to", ""}),
              ElementsAre("xml", "xml16", "binary", "objects", "json", "jsonl", "text", "html", "page"));
  EXPECT_THAT(completed({"convert", "--from", "j"}), ElementsAre("json", "jsonl"));
  EXPECT_THAT(completed({"convert", "--from", "=", "o"}), ElementsAre("objects"));
  EXPECT_THAT(completed({"convert", "--from", "="}), Contains("binary"));
}

TEST_F(CommandPages, ClassesAndSubsystemsAreCompleted) {
  EXPECT_THAT(completed({"describe", "ZQGui_SaveA"}), ElementsAre("ZQGui_SaveAlert"));
  EXPECT_THAT(completed({"xpath", "set", "JobManager_JobL"}), Contains("JobManager_JobListResp"));
  EXPECT_THAT(completed({"catalogue", "JobM"}), ElementsAre("JobManager"));
}

TEST_F(CommandPages, FilesAreCompleted) {
  pages_.folder().write("alert.xml", kSaveAlertXml);
  EXPECT_THAT(completed({"convert", "al"}), ElementsAre("alert.xml"));
  EXPECT_THAT(completed({"convert", "--to", "xml", "-o", "al"}), ElementsAre("alert.xml"));
}

// With everything that bash does on the way: a line, and the key that completes it.
TEST_F(CommandPages, BashCompletesALine) {
  const ProgramRun run = pages_.shell(
      "printf 'source ./completion\\nzqmsg conv\\t --to objec\\t --help\\nexit\\n' |\n"
      "INPUTRC=/dev/null script -qec 'bash --norc --noprofile -i' /dev/null");
  EXPECT_THAT(run.out, HasSubstr("Usage: zqmsg convert"));
}

TEST_F(CommandPages, OtherThingsAreNotGenerated) {
  const ProgramRun run = zqmsg({"--generate", "poems"});
  EXPECT_THAT(run, Exits(2));
  EXPECT_THAT(run.err, HasSubstr("makes man, bash-completion, classes or subsystems, not poems"));
}

}  // namespace
}  // namespace zqxml
