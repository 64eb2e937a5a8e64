// The program: options, exit status, files.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/run_program.h"
#include "tests/support/scratch_folder.h"

namespace zqxml {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class ZqcatcCommandTest : public ::testing::Test {
 protected:
  /// Runs zqcatc in the scratch folder; arguments are parted by blanks.
  ProgramRun run(const std::string& arguments) const {
    std::vector<std::string> command{ZQCATC};
    std::istringstream words(arguments);
    for (std::string word; words >> word;) command.push_back(word);
    return runProgram(command, {.input = {}, .folder = folder_.path(), .environment = {}});
  }
  void writeGood() const {
    folder_.write(
        "T.xml",
        "<subsystem name=\"T\" slot=\"202\" records=\"1\"><class name=\"C\" index=\"0\"/></subsystem>");
  }
  fs::path generated(const std::string& name = "") const {
    return folder_.path("out/zqxml/catalogue/generated/" + name);
  }

  ScratchFolder folder_;
};

TEST_F(ZqcatcCommandTest, HelpHasExamples) {
  for (const char* option : {"--help", "-h"}) {
    const ProgramRun outcome = run(option);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.out, AllOf(StartsWith("zqcatc - "), HasSubstr("Examples:\n  zqcatc --check schema"),
                                   HasSubstr("Exit status: 0 done, 1 ")));
  }
}

TEST_F(ZqcatcCommandTest, VersionIsPrinted) {
  EXPECT_THAT(run("--version").out, StartsWith("zqcatc 0."));
}

TEST_F(ZqcatcCommandTest, WrongUsageIsTwo) {
  writeGood();
  const auto refused = [this](const std::string& arguments, const std::string& why) {
    const ProgramRun outcome = run(arguments);
    EXPECT_EQ(outcome.status, 2) << arguments;
    EXPECT_EQ(outcome.err, "zqcatc: " + why + "; 'zqcatc --help' shows the usage\n");
  };
  refused("", "no schema given");
  refused("T.xml", "give one of --out, --check and --list");
  refused("--check --list T.xml", "give one of --out, --check and --list");
  refused("--chekc T.xml", "unknown option '--chekc'");
  refused("T.xml --out", "--out needs a folder");
}

TEST_F(ZqcatcCommandTest, FileThatCannotBeReadIsThree) {
  EXPECT_EQ(run("--check missing.xml").err, "zqcatc: cannot read missing.xml: No such file or directory\n");
  EXPECT_EQ(run("--check missing.xml").status, 3);
  EXPECT_EQ(run("--check .").err, "zqcatc: there is no *.xml file in folder .\n");
  EXPECT_EQ(run("--check .").status, 3);
}

TEST_F(ZqcatcCommandTest, FolderThatCannotBeWrittenIsThree) {
  writeGood();
  folder_.write("blocked", "");
  const ProgramRun outcome = run("--out blocked/x T.xml");
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.err, StartsWith("zqcatc: cannot make folder blocked/x/zqxml/catalogue/generated: "));
}

TEST_F(ZqcatcCommandTest, NamesReachTheTerminalHarmless) {
  folder_.write(
      "T.xml",
      "<subsystem name=\"T\" slot=\"202\" records=\"1\"><class name=\"C&#x9b;31m\" index=\"0\"/></subsystem>");
  EXPECT_THAT(run("--check T.xml").err, HasSubstr("value 'C?31m' is invalid NCName"));
  EXPECT_EQ(run("--check \033[2J.xml").err, "zqcatc: cannot read ?[2J.xml: No such file or directory\n");
  folder_.write("\033[2J.xml", "");
  EXPECT_THAT(run("--check \033[2J.xml").err, StartsWith("?[2J.xml:1:1: error: "));
  EXPECT_THAT(run("--\033[2J").err, StartsWith("zqcatc: unknown option '--?[2J'; "));
}

TEST_F(ZqcatcCommandTest, EndlessInputIsRefusedAtTheSizeLimit) {
  const ProgramRun outcome = run("--check /dev/zero");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, StartsWith("/dev/zero: error: the file is larger than 32 MiB"));
}

TEST_F(ZqcatcCommandTest, OutputThatCannotBeWrittenIsThree) {
  writeGood();
  for (const char* option : {"--list", "--help"}) {
    const ProgramRun outcome =
        runProgram({ZQCATC, option, "T.xml"},
                   {.input = {}, .folder = folder_.path(), .environment = {}, .fullOutput = true});
    EXPECT_EQ(outcome.status, 3) << option;
    EXPECT_EQ(outcome.err, "zqcatc: cannot write to standard output\n");
  }
}

TEST_F(ZqcatcCommandTest, ErrorIsOneAndNothingIsWritten) {
  writeGood();
  folder_.write("U.xml", "<subsystem name=\"U\" slot=\"0\" records=\"1\"/>");
  const ProgramRun outcome = run("--out out .");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, StartsWith("./U.xml:1:21: error: slot of subsystem 'U' is '0'"));
  EXPECT_FALSE(fs::exists(folder_.path("out")));
}

TEST_F(ZqcatcCommandTest, CheckWritesNothing) {
  writeGood();
  const ProgramRun outcome = run("--check .");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.out + outcome.err, "");
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_.path()), fs::directory_iterator()), 1);
}

TEST_F(ZqcatcCommandTest, ListNamesWhatOutWrites) {
  writeGood();
  std::string names;
  const ProgramRun list = run("--list T.xml");
  EXPECT_EQ(run("--out out T.xml").status, 0);
  for (const char* name : {"T.cc", "T_enums.h", "T.h", "subsystem_table.cc", "catalogue.h"}) {
    names += std::string("zqxml/catalogue/generated/") + name + "\n";
    EXPECT_TRUE(fs::exists(generated(name))) << name;
  }
  EXPECT_EQ(list.out, names);
}

TEST_F(ZqcatcCommandTest, SecondRunTouchesNothing) {
  writeGood();
  ASSERT_EQ(run("--out out T.xml").status, 0);
  const fs::file_time_type old = fs::file_time_type::clock::now() - std::chrono::hours(1);
  for (const auto& entry : fs::directory_iterator(generated())) fs::last_write_time(entry, old);
  ASSERT_EQ(run("--out out T.xml").status, 0);
  for (const auto& entry : fs::directory_iterator(generated()))
    EXPECT_EQ(fs::last_write_time(entry), old) << entry;
}

TEST_F(ZqcatcCommandTest, OutputDoesNotTellWhereItWasMade) {
  writeGood();
  ASSERT_EQ(run("--out out " + folder_.path()).status, 0);
  std::ifstream file(generated("T.cc"));
  std::string line;
  std::getline(file, line);
  EXPECT_EQ(line, "// Written by zqcatc from T.xml (zqcatc --out FOLDER " +
                      fs::path(folder_.path()).filename().string() + "); changes are lost.");
}

TEST_F(ZqcatcCommandTest, FolderOfAnOddNameStaysInItsComment) {
  writeGood();
  const std::string odd = folder_.path("odd\nint x;\r");
  fs::create_directory(odd);
  fs::rename(folder_.path("T.xml"), odd + "/T.xml");
  const ProgramRun outcome =
      runProgram({ZQCATC, "--out", "out", odd}, {.input = {}, .folder = folder_.path(), .environment = {}});
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  std::ifstream file(generated("T.cc"));
  std::string line;
  std::getline(file, line);
  EXPECT_EQ(line, "// Written by zqcatc from T.xml (zqcatc --out FOLDER odd?int x;?); changes are lost.");
}

}  // namespace
}  // namespace zqxml
