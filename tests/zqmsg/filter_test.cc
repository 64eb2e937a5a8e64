// convert as a filter: many inputs and records, bad ones among them, pipes that wait for answers, and parts
// of a stream that are converted at the same time.
#include <algorithm>
#include <string>
#include <vector>

#include "tests/zqmsg/zqmsg_runner.h"

namespace zqxml {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class Filter : public ZqmsgTest {
 protected:
  static std::string line(int id) {
    return "{\"JobManager_JobProgress\":{\"jobId\":\"" + std::to_string(id) + "\"}}\n";
  }
  static std::string lines(int from, int to) {
    std::string text;
    for (int id = from; id < to; ++id) text += line(id);
    return text;
  }
  std::string objects(const std::string& jsonLines) const {
    const ProgramRun run = zqmsg({"convert", "--from", "jsonl", "--to", "objects"}, jsonLines);
    EXPECT_THAT(run, Exits(0));
    return run.out;
  }
};

TEST_F(Filter, BadObjectIsNamedAndTheOthersGoOn) {
  std::string bytes = objects(lines(0, 5));
  bytes[bytes.size() / 5 * 2 + 11] = '\x7f';  // top byte of the third tag id
  const ProgramRun run = zqmsg({"convert", "--from", "objects", "--to", "jsonl"}, bytes);
  EXPECT_THAT(run, Exits(1));
  EXPECT_THAT(run.err, StartsWith("zqmsg: standard input: object 3: cannot be read as a binary message\n"));
  EXPECT_EQ(run.out, line(0) + line(1) + line(3) + line(4));
}

TEST_F(Filter, BadLineIsNamedAndTheOthersGoOn) {
  const ProgramRun run = zqmsg({"convert", "--from", "jsonl", "--to", "objects"},
                               "nonsense\n" + line(1) + "{\"Nope_Nope\":{}}\n" + line(2) + "{\"cut");
  EXPECT_THAT(run, Exits(4)) << "the status of the first failure";
  EXPECT_THAT(run.err, AllOf(HasSubstr("standard input: line 1: is no JSON"),
                             HasSubstr("standard input: line 3: \"Nope_Nope\""),
                             HasSubstr("standard input: line 5: is no JSON")));
  EXPECT_EQ(run.out, objects(line(1) + line(2)));
}

TEST_F(Filter, ObjectThatIsCutEndsItsInputAlone) {
  const std::string bytes = objects(lines(0, 3));
  folder_.write("cut", bytes.substr(0, bytes.size() - 1));
  folder_.write("whole", bytes);
  const ProgramRun run = zqmsg({"convert", "cut", "whole", "--to", "jsonl"});
  EXPECT_THAT(run, Exits(1));
  EXPECT_THAT(run.err, StartsWith("zqmsg: cut: object 3, at byte "));
  EXPECT_EQ(run.out, lines(0, 2) + lines(0, 3));
}

TEST_F(Filter, FailingFilesDoNotStopTheOthers) {
  folder_.write("a.json", line(1));
  folder_.write("bad.xml", "<bad");
  folder_.write("c.json", line(3));
  const std::vector<std::string> inputs{"convert", "a.json", "missing", "bad.xml", "c.json"};
  const auto with = [&inputs](std::vector<std::string> options) {
    options.insert(options.begin(), inputs.begin(), inputs.end());
    return options;
  };
  const ProgramRun run = zqmsg(with({"--to", "jsonl"}));
  EXPECT_THAT(run, Exits(1)) << "the status of the first failure";
  EXPECT_THAT(run.err, AllOf(HasSubstr("zqmsg: missing: cannot be read: No such file or directory\n"),
                             HasSubstr("zqmsg: bad.xml: is not well-formed XML")));
  EXPECT_EQ(run.out, line(1) + line(3));
  EXPECT_THAT(zqmsg(with({"--to", "objects", "-o", "all.objects"})), Exits(1));
  EXPECT_EQ(folder_.read("all.objects"), objects(line(1) + line(3)));
}

TEST_F(Filter, NoInputIsInAFileInPart) {
  const std::string bytes = objects(lines(0, 3));
  folder_.write("cut", objects(lines(0, 9000)) + "cut");
  folder_.write("whole", bytes);
  const ProgramRun run = zqmsg({"convert", "whole", "cut", "whole", "--to", "objects", "-o", "out"});
  EXPECT_THAT(run, Exits(1));
  EXPECT_EQ(folder_.read("out"), bytes + bytes);
  EXPECT_THAT(zqmsg({"convert", "whole", "cut", "--to", "jsonl", "-o", "folder/"}), Exits(1));
  EXPECT_EQ(folder_.read("folder/whole.jsonl"), lines(0, 3));
  EXPECT_EQ(folder_.read("folder/cut.jsonl"), "");
}

TEST_F(Filter, FileStaysWhenNothingCouldBeConverted) {
  folder_.write("bad.xml", "<bad");
  folder_.write("out", "old");
  EXPECT_THAT(zqmsg({"convert", "bad.xml", "bad.xml", "--to", "objects", "-o", "out"}), Exits(4));
  EXPECT_EQ(folder_.read("out"), "old");
}

TEST_F(Filter, FullOutputEndsTheRunAtOnce) {
  ProgramSetup setup;
  setup.fullOutput = true;
  setup.input = lines(0, 20000);
  const ProgramRun run = zqmsg({"convert", "--from", "jsonl", "--to", "jsonl"}, setup);
  EXPECT_THAT(run, Exits(1));
  EXPECT_EQ(run.err, "zqmsg: standard output: cannot be written: No space left on device\n");
}

// The program at the other end sends a record, and the next one when it has the answer.
TEST_F(Filter, EveryRecordIsAnsweredBeforeTheNextIsWaitedFor) {
  folder_.write("one.objects", objects(line(1)));
  folder_.write("one.jsonl", line(1));
  for (const char* from : {"--from objects", "--from jsonl", ""}) {
    for (const char* name : {"objects", "jsonl"}) {
      if (std::string(from).find("--from") == 0 && std::string(from).find(name) == std::string::npos)
        continue;
      const ProgramRun run = shell("coproc zqmsg convert " + std::string(from) +
                                   " --to jsonl\n"
                                   "for i in 1 2 3; do\n  cat one." +
                                   name +
                                   " >&${COPROC[1]}\n"
                                   "  read -r -t 60 answer <&${COPROC[0]} || echo starved\n"
                                   "  echo \"$answer\"\n"
                                   "done");
      EXPECT_EQ(run.out, line(1) + line(1) + line(1)) << from << ' ' << name << '\n' << run.err;
    }
  }
}

TEST_F(Filter, PipesAndFilesWithoutEndsAreRead) {
  folder_.write("all.objects", objects(lines(0, 3)));
  const ProgramRun run = shell(
      "mkfifo fifo; cat all.objects > fifo &\n"
      "zqmsg convert fifo <(cat all.objects) --to objects -o >(cat > copy); wait\n"
      "cat all.objects | zqmsg convert - --to objects > copy\n"
      "cmp copy all.objects && zqmsg convert <(zqmsg convert all.objects --to jsonl) --to objects | cmp - all.objects "
      "&& echo same");
  EXPECT_THAT(run.out, HasSubstr("same")) << run.err;
}

TEST_F(Filter, EveryCommandReadsPipes) {
  folder_.write("all.objects", objects(lines(0, 2)));
  folder_.write("one.json", line(1));
  for (const char* command :
       {"diff <(cat one.json) <(cat one.json)", "diff - <(cat one.json) < one.json",
        "merge <(cat one.json) <(cat one.json)", "inspect <(cat all.objects)", "inspect - < all.objects",
        "objects ls <(cat all.objects)", "objects check <(cat all.objects)",
        "objects repair <(cat all.objects) -o >(cat)", "summary <(cat all.objects) - < one.json",
        "mask <(cat one.json)", "mask - < one.json -o >(cat)"}) {
    const ProgramRun run = shell("zqmsg " + std::string(command));
    EXPECT_THAT(run, Exits(0)) << command;
    EXPECT_THAT(run.err, IsEmpty()) << command;
  }
}

TEST_F(Filter, SummaryGoesOnBehindAFailingFileToo) {
  folder_.write("a.json", line(1));
  folder_.write("bad.xml", "<bad");
  const ProgramRun run = zqmsg({"summary", "a.json", "missing", "bad.xml", "a.json"});
  EXPECT_THAT(run, Exits(1));
  EXPECT_THAT(run.err,
              AllOf(HasSubstr("zqmsg: missing: cannot be read"), HasSubstr("zqmsg: bad.xml: is not")));
  EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 2);
}

// As a cluster does it: the stream is split, each part has a filter of its own, the results are joined.
TEST_F(Filter, PartsOfAStreamConvertToThePartsOfItsResult) {
  folder_.write("all.jsonl", lines(0, 2000));
  const ProgramRun run = shell(
      "set -e\n"
      "zqmsg convert --from jsonl --to objects < all.jsonl > all.objects\n"
      "split -l 300 -d all.jsonl part.\n"
      "ls part.?? | xargs -P 4 -I{} sh -c 'zqmsg convert --from jsonl --to objects < {} > {}.objects'\n"
      "cat part.??.objects | cmp - all.objects\n"
      "ls part.??.objects | xargs -P 4 -I{} sh -c 'zqmsg convert --from objects --to jsonl < {} > {}.jsonl'\n"
      "cat part.??.objects.jsonl | cmp - all.jsonl\n"
      "split -l 300 --filter='zqmsg convert --from jsonl --to objects' all.jsonl | cmp - all.objects\n"
      "ls part.??.objects | wc -l");
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(run.out, "7\n");
}

// Sanitizers keep what is freed for a while; told to keep little, they leave the measure meaningful.
TEST_F(Filter, MemoryIsThatOfTheLargestMessage) {
  const std::string message =
      R"({"ZQGui_AlertCriteria":{"criteriaName":")" + std::string(2000, 'x') + "\"}}\n";
  std::string many;
  for (int i = 0; i < 16000; ++i) many += message;
  ProgramSetup setup;
  setup.environment = {"ASAN_OPTIONS=quarantine_size_mb=1"};
  const auto peak = [&](const std::string& input, const char* from, const char* to) {
    setup.input = input;
    const ProgramRun run = zqmsg({"convert", "--verify", "--from", from, "--to", to}, setup);
    EXPECT_THAT(run, Exits(0));
    return run;
  };
  const ProgramRun toObjects = peak(many, "jsonl", "objects");
  EXPECT_LT(toObjects.peakMemory - peak(message, "jsonl", "objects").peakMemory, 10 * 1024);
  const ProgramRun back = peak(toObjects.out, "objects", "jsonl");
  EXPECT_EQ(back.out, many);
  EXPECT_LT(back.peakMemory - peak(objects(message), "objects", "jsonl").peakMemory, 10 * 1024)
      << "KiB more for " << many.size() / 1024 << " KiB";
}

}  // namespace
}  // namespace zqxml
