// The page of measurements and the record of instruction counts, made of results as the programs write them.
#include <gmock/gmock.h>

#include <string>

#include "tests/support/run_program.h"
#include "tests/support/scratch_folder.h"

namespace zqxml {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char* kMachine = R"({"Measured": "2026-01-02 03:04 UTC", "Processor": "Sample, 2 of them"})";
constexpr const char* kCodecs = R"({
  "facts": {"Xerces-C": "3.2.4"},
  "tables": [{
    "title": "XML out", "unit": "ns", "ours": "ours", "peer": "peer", "note": "How it came about.",
    "rows": [
      {"what": "pugixml, small", "ours": {"low": 95.4, "median": 100, "spread": 0.051},
       "peer": {"low": 412, "median": 1420, "spread": 0.02}, "ratio": 4.318, "reach": ">= 2.8", "met": true},
      {"what": "pugixml, large", "ours": {"low": 1234567, "median": 1300000, "spread": 0.1},
       "peer": {"low": 2469134, "median": 2500000000, "spread": 0}, "ratio": 2, "reach": ">= 2.3", "met": false},
      {"what": "pugixml, other", "ours": {"low": 1, "median": 1, "spread": 0},
       "peer": {"low": 2, "median": 2, "spread": 0}, "ratio": 2}]}]})";
constexpr const char* kHeap = R"({
  "facts": {},
  "tables": [{
    "title": "Allocations", "unit": "blocks", "ours": "ours", "peer": "peer", "note": "",
    "rows": [{"what": "XML in", "ours": {"low": 1.5, "median": 1.5, "spread": 0}, "reach": "<= 0.01", "met": false},
             {"what": "XML out", "ours": {"low": 12345, "median": 12345, "spread": 0}}]}]})";
constexpr const char* kRecord =
    "# Counted with: g++ 12\n        2000  XML out\n         400  binary in, or so\n         300  gone by\n";
constexpr const char* kCounts =
    "# Counted with: g++ 12\n        2010  XML out\n         400  binary in, or so\n          50  newcomer\n";

class BenchPage : public testing::Test {
 protected:
  BenchPage() {
    results_.write("machine.json", kMachine);
    results_.write("codec_bench.json", kCodecs);
    results_.write("heap_bench.json", kHeap);
  }

  static ProgramRun python(const std::string& program, const std::vector<std::string>& arguments) {
    std::vector<std::string> command{"/usr/bin/env", "python3",
                                     std::string(ZQXML_SOURCE_DIR) + "/bench/" + program};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return runProgram(command);
  }

  std::string page() const {
    const ProgramRun run = python("performance_page.py", {results_.path()});
    EXPECT_EQ(run.status, 0) << run;
    return run.out;
  }

  ScratchFolder results_;
};

TEST_F(BenchPage, TellsMachineAndVersions) {
  EXPECT_THAT(page(), HasSubstr("| Measured | 2026-01-02 03:04 UTC |\n"
                                "| Processor | Sample, 2 of them |\n"
                                "| Xerces-C | 3.2.4 |\n"));
}

TEST_F(BenchPage, TableHasLowMedianSpreadRatioAndReach) {
  EXPECT_THAT(
      page(),
      HasSubstr(
          "## XML out\n\nHow it came about.\n\n"
          "|  | ours | median | spread | peer | median | spread | ratio | reach | met |\n"
          "|---|--:|--:|--:|--:|--:|--:|--:|--:|--:|\n"
          "| pugixml, small | 95.4 ns | 100 ns | 5 % | 412 ns | 1.42 µs | 2 % | 4.32 | ≥ 2.8 | yes |\n"
          "| pugixml, large | 1.23 ms | 1.30 ms | 10 % | 2.47 ms | 2.50 s | 0 % | 2.00 | ≥ 2.3 | **no** |\n"
          "| pugixml, other | 1.00 ns | 1.00 ns | 0 % | 2.00 ns | 2.00 ns | 0 % | 2.00 |  |  |\n"));
}

TEST_F(BenchPage, CountsHaveNeitherSpreadNorPeer) {
  EXPECT_THAT(page(), HasSubstr("## Allocations\n\n"
                                "|  | ours | reach | met |\n"
                                "|---|--:|--:|--:|\n"
                                "| XML in | 1.50 blocks | ≤ 0.01 | **no** |\n"
                                "| XML out | 12,345 blocks |  |  |\n"));
}

TEST_F(BenchPage, BeginsWithWhatIsNotReached) {
  EXPECT_THAT(page(), HasSubstr("1 of 3 reaches are met.\nThese are not:\n\n"
                                "- XML out, pugixml, large: 2.00, of ≥ 2.3\n"
                                "- Allocations, XML in: 1.50 blocks, of ≤ 0.01\n"));
}

TEST_F(BenchPage, HasTheRecordOfInstructionsWhenThereIsOne) {
  EXPECT_THAT(page(), Not(HasSubstr("Instructions")));
  results_.write("instructions.txt", kRecord);
  EXPECT_THAT(page(), HasSubstr("| XML out | 2,000 |\n| binary in, or so | 400 |\n| gone by | 300 |\n"));
}

TEST_F(BenchPage, NeedsAFolder) {
  EXPECT_EQ(python("performance_page.py", {}).status, 2);
}

TEST_F(BenchPage, RecordTellsWhatChanged) {
  results_.write("counted", kCounts);
  results_.write("recorded", kRecord);
  const ProgramRun run =
      python("instruction_record.py", {results_.path("counted"), results_.path("recorded")});
  EXPECT_EQ(run.status, 0) << run;
  EXPECT_EQ(run.out,
            "        2010    +0.50 %  XML out\n"
            "         400    +0.00 %  binary in, or so\n"
            "          50        new  newcomer\n"
            "                   gone  gone by\n");
}

TEST_F(BenchPage, RecordOfOtherVersionsIsTold) {
  results_.write("counted", kCounts);
  results_.write("recorded", "# Counted with: g++ 11\n        2000  XML out\n");
  const ProgramRun run =
      python("instruction_record.py", {results_.path("counted"), results_.path("recorded")});
  EXPECT_THAT(run.out, HasSubstr("The record was made with g++ 11: not every change is the code's.\n"));
}

TEST_F(BenchPage, CountsOfCallgrindAreThoseOfOneRun) {
  results_.write("callgrind.out.1", "desc: Trigger: Client Request: XML out\nevents: Ir\nsummary: 4010\n");
  results_.write("callgrind.out.2", "desc: Trigger: Client Request: XML in\nevents: Ir\nsummary: 199\n");
  results_.write("callgrind.out", "desc: Trigger: Program termination\nevents: Ir\nsummary: 7\n");
  const ProgramRun run =
      runProgram({"/usr/bin/env", "python3", "-c",
                  "import sys; sys.dont_write_bytecode = True; sys.path.insert(0, sys.argv[1] + '/bench')\n"
                  "import instruction_record; print(instruction_record.of_dumps(sys.argv[2], 2))",
                  ZQXML_SOURCE_DIR, results_.path()});
  EXPECT_EQ(run.out, "{'XML out': 2005, 'XML in': 100}\n") << run;
}

TEST(BenchScript, TellsItsOptionsAndRefusesOthers) {
  const std::string script = std::string(ZQXML_SOURCE_DIR) + "/script/bench";
  EXPECT_THAT(runProgram({script, "--help"}).out, HasSubstr("script/bench --quick"));
  EXPECT_EQ(runProgram({script, "--quik"}).status, 2);
  EXPECT_EQ(runProgram({script, "--instructions", "codec_bench"}).status, 2);
}

}  // namespace
}  // namespace zqxml
