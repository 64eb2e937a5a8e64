// script/coverage judges what LLVM's programs say; here programs that say what a test wants stand in for
// them.
#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/run_program.h"
#include "tests/support/scratch_folder.h"

namespace zqxml {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;
using testing::UnorderedElementsAre;

constexpr char kBinary[] = "zqxml/binary/form.cc";
constexpr char kHandler[] = "zqxml/xml/my_sax2_handler.cc";
constexpr char kReader[] = "zqxml/xml/internal/message_reader.cc";
constexpr char kOther[] = "zqxml/message/model.cc";

/// One condition, in a line of its own, and how often each of its ways was taken.
struct Condition {
  int line, whenTrue, whenFalse;
};

/// A source as the export has it: `reached` lines, then `missed` ones.
struct Source {
  std::string path;
  int reached = 20, missed = 0;
  std::vector<Condition> conditions;
  std::string missedAs{};  ///< the segments of the missed lines, where they are no usual ones

  std::string exported() const {
    std::string segments = segment(1, 1, 5, true) + "," + segment(reached, 90, 0, false);
    if (!missedAs.empty())
      segments += "," + missedAs;
    else if (missed != 0)
      segments += "," + segment(reached + 1, 1, 0, true) + "," + segment(reached + missed, 90, 0, false);
    std::string branches;
    for (const Condition& one : conditions) {
      if (!branches.empty()) branches += ',';
      const std::string line = std::to_string(one.line);
      branches += "[" + line + ",17," + line + ",18," + std::to_string(one.whenTrue) + "," +
                  std::to_string(one.whenFalse) + ",0,0,4]";
    }
    return R"({"filename":")" + path + R"(","segments":[)" + segments + R"(],"branches":[)" + branches + "]}";
  }
  static std::string segment(int line, int column, int count, bool begins) {
    const std::string flag = begins ? "true" : "false";
    return "[" + std::to_string(line) + "," + std::to_string(column) + "," + std::to_string(count) + "," +
           flag + "," + flag + ",false]";
  }
};

/// A tree with the script, built and measured, and sources that reach the limits and no more.
class CoverageTest : public testing::Test {
 protected:
  CoverageTest() {
    fs::create_directories(tree_.path("script"));
    fs::copy(kScript, tree_.path("script/coverage"));
    program("script/bootstrap", "");
    program("bin/cmake", "");
    program("bin/ctest", kMeasure);
    program("bin/llvm-profdata-14", R"(merged=$4; shift 4; cat "$@" > "$merged")");
    program("bin/llvm-cov-14", "[ \"$1\" != export ] || cat export.json");
    program("build-coverage/bin/form_test", "");
    plant("build-coverage/coverage.profdata", "");
    for (Source* source : {&binary_, &handler_, &reader_, &other_})
      plant(source->path, lines(source->reached + source->missed));
  }

  static std::string lines(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += "  if (a) b();\n";
    return text;
  }
  void plant(const std::string& name, const std::string& content) {
    fs::create_directories(fs::path(tree_.path(name)).parent_path());
    tree_.write(name, content);
  }
  void program(const std::string& name, const std::string& commands) {
    plant(name, "#!/bin/sh\n" + commands + "\n");
    fs::permissions(tree_.path(name), fs::perms::owner_all);
  }
  /// Another text for a line of a source.
  void replaceLine(const Source& source, int number, const std::string& line) {
    plant(source.path, lines(number - 1) + line + "\n" + lines(source.reached + source.missed - number));
  }

  ProgramRun coverage(const std::vector<std::string>& options = {"--report"}) {
    std::string files;
    for (const Source* source : {&binary_, &handler_, &reader_, &other_}) {
      if (source->path.empty()) continue;
      files += (files.empty() ? "" : ",") + source->exported();
    }
    plant("export.json", R"({"data":[{"files":[)" + files + "]}]}");
    std::vector<std::string> command{tree_.path("script/coverage")};
    command.insert(command.end(), options.begin(), options.end());
    ProgramSetup setup;
    setup.environment = {"PATH=" + tree_.path("bin") + ":/usr/bin:/bin"};
    return runProgram(command, setup);
  }
  void expectJudgement(const std::string& told) {
    const ProgramRun run = coverage();
    EXPECT_EQ(run.status, 1) << run;
    EXPECT_THAT(run.out, HasSubstr("\n" + told + "\n"));
  }

  /// What two processes under test leave.
  static constexpr char kMeasure[] =
      R"sh(for p in 71 72; do echo "counts of $p" > "$(echo "$LLVM_PROFILE_FILE" | sed s/%p/$p/)"; done)sh";
  static constexpr char kScript[] = ZQXML_SOURCE_DIR "/script/coverage";
  // 95 of 100 lines, 18 of 20 ways.
  Source binary_{kBinary, 20, 0, {{3, 1, 1}}};
  Source handler_{kHandler, 20, 0, {{3, 1, 1}}};
  Source reader_{kReader, 20, 0, {{3, 1, 1}}};
  Source other_{kOther, 35, 5, {{1, 1, 1}, {2, 1, 1}, {3, 1, 1}, {4, 1, 1}, {5, 1, 1}, {6, 1, 0}, {7, 0, 1}}};
  ScratchFolder tree_;
};

TEST_F(CoverageTest, PassesAtItsLimits) {
  const ProgramRun run = coverage();
  EXPECT_EQ(run.status, 0) << run;
  EXPECT_THAT(run.out, HasSubstr("      95/100     95.0 %      18/20      90.0 %\n"));
  EXPECT_THAT(run.out, Not(HasSubstr("coverage:")));
}

TEST_F(CoverageTest, ALineLessIsTooFew) {
  --other_.reached;
  ++other_.missed;
  expectJudgement("coverage: zqxml/*: 94.0 % of the lines, and not 95 %");
}

TEST_F(CoverageTest, AWayLessIsTooFew) {
  other_.conditions[0].whenTrue = 0;
  expectJudgement("coverage: zqxml/*: 85.0 % of the branches, and not 90 %");
}

TEST_F(CoverageTest, EveryWayOfTheBinaryFormAndOfTheReaderIsAskedFor) {
  for (Source* source : {&binary_, &handler_, &reader_}) {
    source->conditions[0].whenFalse = 0;
    EXPECT_EQ(coverage().status, 1) << source->path;
    EXPECT_THAT(coverage().out, HasSubstr(": 50.0 % of the branches, and not 100 %")) << source->path;
    source->conditions[0].whenFalse = 1;
  }
}

TEST_F(CoverageTest, ALimitWithoutItsSourcesFails) {
  handler_.path.clear();
  EXPECT_EQ(coverage().status, 1);
  EXPECT_THAT(coverage().out, HasSubstr("\ncoverage: zqxml/xml/*sax*: "));
}

TEST_F(CoverageTest, MissingNamesWhatIsNotReached) {
  const ProgramRun all = coverage({"--report", "--missing"});
  for (const char* place :
       {":36: not reached\n", ":40: not reached\n", ":6:17: never false\n", ":7:17: never true\n"})
    EXPECT_THAT(all.out, HasSubstr(std::string(kOther) + place));
  const ProgramRun within = coverage({"--report", "--missing", "zqxml/xml"});
  EXPECT_EQ(within.out, coverage().out);
}

TEST_F(CoverageTest, MissingDoesNotNameTheWaysOfWhatIsNotReached) {
  other_.conditions.push_back({36, 0, 0});
  EXPECT_THAT(coverage({"--report", "--missing"}).out, Not(HasSubstr(":36:17: never")));
}

TEST_F(CoverageTest, InstancesOfATemplateCountTogether) {
  binary_.conditions = {{3, 1, 0}, {3, 0, 1}};
  EXPECT_EQ(coverage().status, 0);
}

TEST_F(CoverageTest, WhatTheCompilerDecidesIsNoWay) {
  binary_.conditions.push_back({4, 1, 0});  // by the words
  binary_.conditions.push_back({5, 0, 0});  // by the counts: none, in code that ran
  replaceLine(binary_, 4, "  if constexpr (a) b();");
  EXPECT_EQ(coverage().status, 0);
}

TEST_F(CoverageTest, BranchThatTheCompilerTakesCountsAsTheGapBeforeIt) {
  const std::string branch = "[36,5,0,true,true,false],[36,90,0,false,false,false]";
  const std::string others = ",[37,1,0,true,true,false],[40,90,0,false,false,false]";
  other_.missedAs = "[36,1,7,true,false,true]," + branch + others;
  EXPECT_THAT(coverage().out, HasSubstr("      96/100 "));
  other_.missedAs = "[36,1,0,true,false,true]," + branch + others;
  EXPECT_THAT(coverage().out, HasSubstr("      95/100 "));
}

TEST_F(CoverageTest, WhatIsOutOfReachWithAReasonIsLeftOut) {
  --other_.missed;  // for the line that is no longer counted
  binary_.conditions.push_back({4, 1, 0});
  EXPECT_EQ(coverage().status, 1);
  replaceLine(binary_, 4, "  if (a) b();  // NOCOVER: the caller has looked");
  EXPECT_EQ(coverage().status, 0);
}

TEST_F(CoverageTest, LinesOfBracketsAloneDoNotCount) {
  for (const char* line : {"  }", "});", ""}) {
    replaceLine(other_, 36, line);
    EXPECT_THAT(coverage().out, HasSubstr("      95/99 ")) << line;
  }
  replaceLine(other_, 36, "  } else {");
  EXPECT_THAT(coverage().out, HasSubstr("      95/100 "));
}

TEST_F(CoverageTest, NocoverNeedsAReason) {
  binary_.conditions.push_back({4, 1, 0});
  for (const char* mark : {"// NOCOVER", "// NOCOVER:", "// NOCOVER: "}) {
    replaceLine(binary_, 4, std::string("  if (a) b();  ") + mark);
    expectJudgement(std::string(kBinary) + ":4: NOCOVER without a reason, or reached");
  }
}

TEST_F(CoverageTest, NocoverOfWhatIsReachedFails) {
  replaceLine(binary_, 3, "  if (a) b();  // NOCOVER: it was once");
  expectJudgement(std::string(kBinary) + ":3: NOCOVER without a reason, or reached");
}

TEST_F(CoverageTest, BuildsAndRunsTheTestsBeforeItJudges) {
  fs::remove(tree_.path("build-coverage/coverage.profdata"));
  const ProgramRun run = coverage({});
  EXPECT_EQ(run.status, 0) << run;
  const std::string merged = tree_.read("build-coverage/coverage.profdata");
  EXPECT_THAT(merged, HasSubstr("counts of 71\n"));
  EXPECT_THAT(merged, HasSubstr("counts of 72\n"));
}

TEST_F(CoverageTest, CountsOfProcessesAreRemovedOnceTheyAreMerged) {
  coverage({});
  std::vector<std::string> left;
  for (const auto& entry : fs::directory_iterator(tree_.path("build-coverage")))
    left.push_back(entry.path().filename());
  EXPECT_THAT(left, UnorderedElementsAre("bin", "coverage.profdata"));
}

TEST_F(CoverageTest, FailsWhenATestFails) {
  program("bin/ctest", std::string(kMeasure) + "; exit 8");
  const ProgramRun run = coverage({});
  EXPECT_EQ(run.status, 1) << run;
  EXPECT_THAT(run.out, HasSubstr("\ncoverage: a test failed\n"));
}

TEST_F(CoverageTest, FailsWithoutAMeasurement) {
  for (const char* place : {"build-coverage/coverage.profdata", "build-coverage"}) {
    fs::remove_all(tree_.path(place));
    const ProgramRun run = coverage();
    EXPECT_EQ(run.status, 1) << run;
    EXPECT_EQ(run.err, "coverage: nothing was measured; run it without --report\n") << place;
  }
}

TEST_F(CoverageTest, TellsWhatLlvmReports) {
  program("bin/llvm-cov-14", "echo 'error: malformed' >&2; exit 1");
  const ProgramRun run = coverage();
  EXPECT_EQ(run.status, 1) << run;
  EXPECT_EQ(run.err, "coverage: error: malformed\n\n");
}

TEST_F(CoverageTest, UnknownOptionsAndArgumentsAreRefused) {
  for (const char* word : {"--mising", "zqxml/xml"}) {
    const ProgramRun run = coverage({"--report", word});
    EXPECT_EQ(run.status, 2) << run;
    EXPECT_THAT(run.err, HasSubstr("usage: script/coverage [--missing [PLACE]] [--report]"));
  }
}

}  // namespace
}  // namespace zqxml
