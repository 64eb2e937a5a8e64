// The program: options, exit status, files.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

namespace zqxml {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::StartsWith;

struct Outcome {
  int status;
  std::string output;  ///< standard output and error
};

class ZqcatcCommandTest : public ::testing::Test {
 protected:
  ZqcatcCommandTest()
      : folder_(fs::path(::testing::TempDir()) /
                ("zqcatc-" + std::to_string(getpid()) + "-" +
                 ::testing::UnitTest::GetInstance()->current_test_info()->name())) {
    fs::remove_all(folder_);
    fs::create_directories(folder_);
  }
  ~ZqcatcCommandTest() override { fs::remove_all(folder_); }

  Outcome run(const std::string& arguments) const {
    const std::string command = "cd '" + folder_.string() + "' && '" ZQCATC "' " + arguments + " 2>&1";
    Outcome outcome{-1, {}};
    FILE* pipe = popen(command.c_str(), "r");
    std::array<char, 4096> buffer{};
    while (const std::size_t n = std::fread(buffer.data(), 1, buffer.size(), pipe))
      outcome.output.append(buffer.data(), n);
    outcome.status = WEXITSTATUS(pclose(pipe));
    return outcome;
  }
  void write(const std::string& name, const std::string& text) const {
    std::ofstream(folder_ / name) << text;
  }
  void writeGood() const {
    write("T.xml",
          "<subsystem name=\"T\" slot=\"202\" records=\"1\"><class name=\"C\" index=\"0\"/></subsystem>");
  }

  fs::path folder_;
};

TEST_F(ZqcatcCommandTest, HelpHasExamples) {
  for (const char* option : {"--help", "-h"}) {
    const Outcome outcome = run(option);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output,
                AllOf(StartsWith("zqcatc - "), HasSubstr("Examples:\n  zqcatc --check schema"),
                      HasSubstr("Exit status: 0 done, 1 ")));
  }
}

TEST_F(ZqcatcCommandTest, VersionIsPrinted) {
  EXPECT_THAT(run("--version").output, StartsWith("zqcatc 0."));
}

TEST_F(ZqcatcCommandTest, WrongUsageIsTwo) {
  writeGood();
  const auto refused = [this](const std::string& arguments, const std::string& why) {
    const Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.status, 2) << arguments;
    EXPECT_EQ(outcome.output, "zqcatc: " + why + "; 'zqcatc --help' shows the usage\n");
  };
  refused("", "no schema given");
  refused("T.xml", "give one of --out, --check and --list");
  refused("--check --list T.xml", "give one of --out, --check and --list");
  refused("--chekc T.xml", "unknown option '--chekc'");
  refused("T.xml --out", "--out needs a folder");
}

TEST_F(ZqcatcCommandTest, FileThatCannotBeReadIsThree) {
  EXPECT_EQ(run("--check missing.xml").output, "zqcatc: cannot read missing.xml\n");
  EXPECT_EQ(run("--check missing.xml").status, 3);
  EXPECT_EQ(run("--check .").output, "zqcatc: there is no *.xml file in folder .\n");
  EXPECT_EQ(run("--check .").status, 3);
}

TEST_F(ZqcatcCommandTest, FolderThatCannotBeWrittenIsThree) {
  writeGood();
  write("blocked", "");
  const Outcome outcome = run("--out blocked/x T.xml");
  EXPECT_EQ(outcome.status, 3);
  EXPECT_THAT(outcome.output, StartsWith("zqcatc: cannot make folder blocked/x/zqxml/catalogue/generated: "));
}

TEST_F(ZqcatcCommandTest, ErrorIsOneAndNothingIsWritten) {
  writeGood();
  write("U.xml", "<subsystem name=\"U\" slot=\"0\" records=\"1\"/>");
  const Outcome outcome = run("--out out .");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.output, StartsWith("./U.xml:1:21: error: slot of subsystem 'U' is '0'"));
  EXPECT_FALSE(fs::exists(folder_ / "out"));
}

TEST_F(ZqcatcCommandTest, CheckWritesNothing) {
  writeGood();
  const Outcome outcome = run("--check .");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_), fs::directory_iterator()), 1);
}

TEST_F(ZqcatcCommandTest, ListNamesWhatOutWrites) {
  writeGood();
  std::string names;
  const Outcome list = run("--list T.xml");
  EXPECT_EQ(run("--out out T.xml").status, 0);
  for (const char* name : {"T.cc", "T_enums.h", "T.h", "subsystem_table.cc", "catalogue.h"}) {
    names += std::string("zqxml/catalogue/generated/") + name + "\n";
    EXPECT_TRUE(fs::exists(folder_ / "out/zqxml/catalogue/generated" / name)) << name;
  }
  EXPECT_EQ(list.output, names);
}

TEST_F(ZqcatcCommandTest, SecondRunTouchesNothing) {
  writeGood();
  ASSERT_EQ(run("--out out T.xml").status, 0);
  const fs::file_time_type old = fs::file_time_type::clock::now() - std::chrono::hours(1);
  for (const auto& entry : fs::directory_iterator(folder_ / "out/zqxml/catalogue/generated"))
    fs::last_write_time(entry, old);
  ASSERT_EQ(run("--out out T.xml").status, 0);
  for (const auto& entry : fs::directory_iterator(folder_ / "out/zqxml/catalogue/generated"))
    EXPECT_EQ(fs::last_write_time(entry), old) << entry;
}

TEST_F(ZqcatcCommandTest, OutputDoesNotTellWhereItWasMade) {
  writeGood();
  ASSERT_EQ(run("--out out \"$PWD\"").status, 0);
  std::ifstream file(folder_ / "out/zqxml/catalogue/generated/T.cc");
  std::string line;
  std::getline(file, line);
  EXPECT_EQ(line, "// Written by zqcatc from T.xml (zqcatc --out FOLDER " + folder_.filename().string() +
                      "); changes are lost.");
}

}  // namespace
}  // namespace zqxml
