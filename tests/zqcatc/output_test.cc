// What is written, and when.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "compile_text.h"
#include "output_files.h"
#include "tests/support/scratch_folder.h"

namespace zqxml::zqcatc {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

class OutputTest : public ::testing::Test {
 protected:
  std::string content(const std::string& name) const {
    std::ifstream file(folder_ / name);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }
  const ScratchFolder scratch_;
  const fs::path folder_ = scratch_.path();
};

TEST_F(OutputTest, FoldersAreMadeAndFilesWritten) {
  std::string error;
  ASSERT_TRUE(writeFiles(folder_, std::vector<OutputFile>{{"a/b/x.cc", "one"}, {"y.h", ""}}, error)) << error;
  EXPECT_EQ(content("a/b/x.cc"), "one");
  EXPECT_TRUE(fs::exists(folder_ / "y.h"));
}

TEST_F(OutputTest, UnchangedFileIsNotTouched) {
  std::string error;
  ASSERT_TRUE(writeFiles(folder_, std::vector<OutputFile>{{"same", "one"}, {"other", "two"}}, error));
  const fs::file_time_type old = fs::file_time_type::clock::now() - std::chrono::hours(1);
  fs::last_write_time(folder_ / "same", old);
  fs::last_write_time(folder_ / "other", old);
  ASSERT_TRUE(writeFiles(folder_, std::vector<OutputFile>{{"same", "one"}, {"other", "TWO"}}, error));
  EXPECT_EQ(fs::last_write_time(folder_ / "same"), old);
  EXPECT_NE(fs::last_write_time(folder_ / "other"), old);
  EXPECT_EQ(content("other"), "TWO");
}

TEST_F(OutputTest, FailedRunLeavesTheOldFilesAndNothingBeside) {
  std::string error;
  ASSERT_TRUE(writeFiles(folder_, std::vector<OutputFile>{{"a", "old"}}, error));
  std::ofstream(folder_ / "blocked") << "a file where a folder is wanted";
  EXPECT_FALSE(writeFiles(folder_, std::vector<OutputFile>{{"a", "new"}, {"blocked/b", "new"}}, error));
  EXPECT_THAT(error, HasSubstr("blocked"));
  EXPECT_EQ(content("a"), "old");
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder_)) names.push_back(entry.path().filename());
  std::sort(names.begin(), names.end());
  EXPECT_THAT(names, ElementsAre("a", "blocked"));
}

TEST(OutputTextTest, FirstLineNamesToolAndCommand) {
  const Compiled compiled = compile("<class name=\"C\" index=\"0\"/>");
  for (const OutputFile& file : writeCatalogue(compiled.catalogue, "zqcatc --out FOLDER schema"))
    EXPECT_THAT(file.text,
                AllOf(StartsWith("// Written by zqcatc from "), HasSubstr("(zqcatc --out FOLDER schema)")))
        << file.path;
}

TEST(OutputTextTest, FilesAreNamedAfterSubsystems) {
  const Compiled compiled = compile("");
  std::vector<std::string> paths;
  for (const OutputFile& file : writeCatalogue(compiled.catalogue, "")) paths.push_back(file.path);
  EXPECT_THAT(paths,
              ElementsAre("zqxml/catalogue/generated/T.cc", "zqxml/catalogue/generated/T_enums.h",
                          "zqxml/catalogue/generated/T.h", "zqxml/catalogue/generated/subsystem_table.cc",
                          "zqxml/catalogue/generated/catalogue.h"));
}

TEST(OutputTextTest, SubsystemWithoutRecordsHasNoTables) {
  const Compiled compiled = compileFiles({{"T.xml", "<subsystem name=\"T\" slot=\"202\" records=\"0\"/>"}});
  EXPECT_THAT(compiled.output("T.cc"), Not(HasSubstr("kClasses")));
  EXPECT_THAT(compiled.output("subsystem_table.cc"),
              HasSubstr("/* 202 */ {\"T\", nullptr, nullptr, nullptr, 0, false, 0, nullptr},"));
}

TEST(OutputTextTest, BytesOfLiteralsNeverRunTogether) {
  // A control character before a digit, a quote, a backslash, a question mark.
  const Compiled compiled =
      compileClass("<field name=\"a\" type=\"string\" default=\"&#9;1 &quot;\\ ?\?/ \xc3\xa9\"/>");
  EXPECT_THAT(compiled.output("T.cc"), HasSubstr("{0, \"\\0111 \\\"\\\\ \\?\\?/ \\303\\251\"},"));
}

TEST(OutputTextTest, SameInputGivesTheSameOutput) {
  const std::string body =
      "<class name=\"D\" index=\"7\"/><class name=\"C\" index=\"0\"><field name=\"d\" type=\"object\" "
      "class=\"D\"/></class>";
  EXPECT_EQ(compile(body).output("T.cc"), compile(body).output("T.cc"));
}

}  // namespace
}  // namespace zqxml::zqcatc
