// zqcatc diff and zqcatc lint as programs: inputs, exit status, forms of output.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/run_program.h"
#include "tests/support/scratch_folder.h"

namespace zqxml {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

class EvolveCommandTest : public ::testing::Test {
 protected:
  EvolveCommandTest() {
    for (const char* name : {"old", "new", "bad"}) std::filesystem::create_directory(folder_.path(name));
    folder_.write("old/T.xml", schema("<field name=\"alpha\" type=\"int\"/>"));
    folder_.write("new/T.xml",
                  schema("<field name=\"alpha\" type=\"uint\"/>\n<field name=\"beta\" type=\"int\"/>"));
    folder_.write("bad/T.xml", "<subsystem name=\"T\" slot=\"0\" records=\"1\"/>");
  }
  static std::string schema(const std::string& fields) {
    return "<subsystem name=\"T\" slot=\"202\" records=\"1\">\n<class name=\"C\" index=\"0\">\n" + fields +
           "\n</class></subsystem>";
  }
  /// Arguments are parted by blanks.
  ProgramRun run(const std::string& arguments, const std::string& input = "") const {
    std::vector<std::string> command{ZQCATC};
    std::istringstream words(arguments);
    for (std::string word; words >> word;) command.push_back(word);
    return runProgram(command, {.input = input, .folder = folder_.path(), .environment = {}});
  }

  ScratchFolder folder_;
};

TEST_F(EvolveCommandTest, HelpHasExamplesAndExitStatus) {
  for (const char* name : {"diff", "lint"}) {
    const ProgramRun outcome = run(std::string(name) + " --help");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.out,
                AllOf(StartsWith(std::string("zqcatc ") + name + " - "),
                      HasSubstr(std::string("Usage: zqcatc ") + name + ' '), HasSubstr("Examples:\n"),
                      HasSubstr("Exit status: 0 no"), HasSubstr("10 ")));
  }
}

TEST_F(EvolveCommandTest, ChangesHavePlaceClassReasonAndCode) {
  const ProgramRun outcome = run("diff old new");
  EXPECT_EQ(outcome.status, 10);
  EXPECT_EQ(outcome.err, "");
  EXPECT_THAT(outcome.out,
              StartsWith("new/T.xml:3:8: breaks binary, callers: field 'alpha' of T_C is now of type "
                         "'uint', was 'int': binary: "));
  EXPECT_THAT(outcome.out,
              HasSubstr("\nnew/T.xml:4:8: safe: field 'beta' of T_C is new: a reader that does not "
                        "know it passes over it [field-added]\n"));
}

TEST_F(EvolveCommandTest, ExitStatusGoesByWhatCounts) {
  EXPECT_EQ(run("diff old old").status, 0);
  EXPECT_EQ(run("diff --fail-on xml old new").status, 0);
  EXPECT_EQ(run("diff --fail-on xml,binary old new").status, 10);
  EXPECT_EQ(run("diff --fail-on callers old new").status, 10);
  EXPECT_EQ(run("diff --fail-on xml,safe old new").status, 10);
  EXPECT_EQ(run("diff --fail-on safe old old").status, 0);
}

TEST_F(EvolveCommandTest, WrongUsageIsTwo) {
  const auto refused = [this](const std::string& arguments, const std::string& why) {
    const ProgramRun outcome = run(arguments);
    const std::string command = arguments.substr(0, arguments.find(' ')) + ' ';
    EXPECT_EQ(outcome.status, 2) << arguments;
    EXPECT_EQ(outcome.err, "zqcatc: " + why + "; 'zqcatc " + (command == "--check " ? "" : command) +
                               "--help' shows the usage\n");
  };
  refused("diff old", "diff takes OLD and NEW");
  refused("diff old new old", "diff takes OLD and NEW");
  refused("diff - -", "standard input is one file only");
  refused("diff --fail-on speed old new", "--fail-on does not know 'speed'");
  refused("diff old new --fail-on", "--fail-on needs a value");
  refused("diff --allow x old new", "unknown option '--allow' of diff");
  refused("lint", "lint takes a schema");
  refused("lint --allow typos new", "--allow does not know 'typos'");
  refused("lint --with old new", "unknown option '--with' of lint");
  refused("lint --error-format xml new", "--error-format is text or json");
  refused("--check --error-format xml new", "--error-format is text or json");
}

TEST_F(EvolveCommandTest, SchemaErrorIsOne) {
  for (const char* arguments : {"diff bad new", "diff old bad", "lint bad"}) {
    const ProgramRun outcome = run(arguments);
    EXPECT_EQ(outcome.status, 1) << arguments;
    EXPECT_THAT(outcome.err, StartsWith("bad/T.xml:1:21: error: slot of subsystem 'T' is '0'"));
    EXPECT_EQ(outcome.out, "");
  }
}

TEST_F(EvolveCommandTest, FileThatCannotBeReadIsThree) {
  EXPECT_EQ(run("diff old missing").err, "zqcatc: cannot read missing: No such file or directory\n");
  EXPECT_EQ(run("diff old missing").status, 3);
  EXPECT_EQ(run("lint .").err, "zqcatc: there is no *.xml file in folder .\n");
  EXPECT_EQ(run("lint .").status, 3);
  const ProgramRun unnamed = run("lint -", schema(""));
  EXPECT_EQ(unnamed.status, 3);
  EXPECT_THAT(unnamed.err, StartsWith("zqcatc: standard input holds a schema, "));
}

TEST_F(EvolveCommandTest, OutputThatCannotBeWrittenIsThree) {
  const ProgramRun outcome =
      runProgram({ZQCATC, "diff", "old", "new"},
                 {.input = {}, .folder = folder_.path(), .environment = {}, .fullOutput = true});
  EXPECT_EQ(outcome.status, 3);
  EXPECT_EQ(outcome.err, "zqcatc: cannot write to standard output\n");
}

TEST_F(EvolveCommandTest, EndlessInputIsRefusedAtTheSizeLimit) {
  const ProgramRun outcome = run("diff old /dev/zero");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.err, StartsWith("/dev/zero: error: the file is larger than 32 MiB"));
}

TEST_F(EvolveCommandTest, JsonIsAnObjectPerLine) {
  EXPECT_THAT(
      run("diff --error-format json old new").out,
      AllOf(StartsWith("{\"file\":\"new/T.xml\",\"line\":3,\"column\":8,\"severity\":\"error\",\"code\":"
                       "\"field-type\",\"message\":\"field 'alpha' of T_C"),
            HasSubstr("\"breaks\":[\"binary\",\"callers\"]}\n{\"file\":"),
            HasSubstr("\"severity\":\"note\",\"code\":\"field-added\""), HasSubstr("\"breaks\":[]}\n")));
  const std::string place =
      "{\"file\":\"bad/T.xml\",\"line\":1,\"column\":21,\"severity\":\"error\",\"code\":"
      "\"numbers\",\"message\":\"slot of subsystem 'T' is '0'";
  for (const char* arguments : {"--check --error-format json bad", "lint --error-format json bad",
                                "diff --error-format json old bad"}) {
    EXPECT_THAT(run(arguments).err, StartsWith(place)) << arguments;
    EXPECT_EQ(run(arguments).status, 1);
  }
  EXPECT_EQ(
      run("--check --error-format json missing").err,
      "{\"file\":\"\",\"line\":0,\"column\":0,\"severity\":\"error\",\"code\":\"file\",\"message\":\"cannot "
      "read missing: No such file or directory\"}\n");
}

TEST_F(EvolveCommandTest, LintTellsAndAllows) {
  folder_.write("new/T.xml",
                schema("<field name=\"big\" type=\"ulonglong\"/>\n<field name=\"bag\" type=\"int\"/>"));
  const ProgramRun outcome = run("lint new");
  EXPECT_EQ(outcome.status, 10);
  EXPECT_THAT(outcome.out, StartsWith("new/T.xml:3:8: warning: field 'big' of T_C is of type 'ulonglong'"));
  EXPECT_THAT(outcome.out, HasSubstr("\nnew/T.xml:4:8: warning: field 'bag' of T_C is one typing error"));
  EXPECT_THAT(run("lint --error-format json --allow names-one-typo-apart new").out,
              StartsWith("{\"file\":\"new/T.xml\",\"line\":3,\"column\":8,\"severity\":\"warning\",\"code\":"
                         "\"lost-in-binary\",\"message\":"));
  EXPECT_EQ(run("lint --allow names-one-typo-apart,lost-in-binary new").status, 0);
  EXPECT_EQ(run("lint old").status, 0);
}

TEST_F(EvolveCommandTest, DumpOfTheLibrarysCatalogueIsItsSchema) {
  const ProgramRun dump = runProgram({ZQMSG, "dump-catalogue"});
  ASSERT_EQ(dump.status, 0);
  const std::string schema = ZQXML_SOURCE_DIR "/schema";
  folder_.write("dump.json", dump.out);
  for (const std::string& arguments :
       {std::string("dump.json dump.json"), "dump.json " + schema, schema + " -"}) {
    const ProgramRun outcome = run("diff --fail-on safe " + arguments, dump.out);
    EXPECT_EQ(outcome.status, 0) << outcome;
    EXPECT_EQ(outcome.out, "");
  }
  EXPECT_EQ(run("lint dump.json").status, 10);
}

TEST_F(EvolveCommandTest, SchemaOfItsOwnIsComparedWithWhatItRefersTo) {
  for (const char* name : {"old/T.xml", "new/T.xml"})
    folder_.write(name, schema("<field name=\"o\" type=\"object\" class=\"App.TestMessage2\"/>"));
  EXPECT_EQ(run("diff old new").status, 1);
  EXPECT_EQ(run("diff --with " ZQXML_SOURCE_DIR "/schema old new").status, 0);
}

TEST_F(EvolveCommandTest, HostileNamesStayInTheirLine) {
  const std::string head = R"({"subsystems":[{"slot":202,"old":false,"records":1,"classes":[],"name":")";
  folder_.write("a.json", R"({"subsystems":[]})");
  folder_.write("b.json", head + R"(T\n\u001b[31m\u009b\u007f"}]})");
  EXPECT_EQ(run("diff a.json b.json").out,
            "b.json: safe: subsystem T??[31m?? is new: nothing knew its messages before [subsystem-added]\n");
}

TEST_F(EvolveCommandTest, BrokenDumpIsOne) {
  folder_.write("broken.json", "{\"subsystems\":[{\"slot\":1e999}]}");
  EXPECT_EQ(run("diff old broken.json").status, 1);
  EXPECT_THAT(run("diff --error-format json old broken.json").err,
              HasSubstr("\"severity\":\"error\",\"code\":\"dump\""));
}

}  // namespace
}  // namespace zqxml
