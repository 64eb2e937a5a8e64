#include <cstdio>
#include <sstream>
#include <string>

#include "tests/zqmsg/zqmsg_runner.h"

namespace zqxml {
namespace {

using namespace std::string_literals;
using testing::HasSubstr;
using testing::StartsWith;

using Inspect = ZqmsgTest;

// The bytes that the table shows, in their order, and whether each line starts where the one before ended.
std::string bytesShown(const std::string& table) {
  std::string bytes;
  std::istringstream lines(table);
  std::string line;
  std::getline(lines, line);
  while (std::getline(lines, line)) {
    if (line.starts_with("object ")) continue;
    EXPECT_EQ(std::stoul(line.substr(0, 8), nullptr, 16), bytes.size()) << line;
    std::istringstream hex(line.substr(10, 23));
    for (std::string byte; hex >> byte;) bytes += static_cast<char>(std::stoi(byte, nullptr, 16));
  }
  return bytes;
}

TEST_F(Inspect, EveryByteOfTheWorkedExampleIsExplained) {
  const ProgramRun run = zqmsg({"inspect"}, kExampleBytes);
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(bytesShown(run.out), kExampleBytes);
  EXPECT_THAT(run.out,
              HasSubstr("00000004  dd 4b d4 1e              tag id      0x1ed44bdd App_TestMessage2\n"));
  EXPECT_THAT(run.out, HasSubstr("0000000c  05                       value       intField = -3\n"));
  EXPECT_THAT(run.out, HasSubstr("strField = \"hi\"\n"));
  EXPECT_THAT(run.out, HasSubstr("M1.intFieldM1 = 5\n"));
}

TEST_F(Inspect, LongRunsAreWrappedAndTheirRestCounted) {
  const std::string xml = "<ZQGui_SaveAlert loginName=\"" + std::string(100, 'x') + "\"/>";
  const std::string binary = zqmsg({"convert", "--to", "binary"}, xml).out;
  const ProgramRun run = zqmsg({"inspect", "-"}, binary);
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.out, HasSubstr("\n00000015  78 78 78 78 78 78 78 78\n"));
  EXPECT_THAT(run.out, HasSubstr("          ... 36 more bytes\n"));
}

TEST_F(Inspect, ObjectsAreExplainedOneByOneWithTheirPlacesInTheFile) {
  const std::string object = zqmsg({"convert", "--to", "objects"}, kExampleXml).out;
  folder_.write("objects", object + object);
  const ProgramRun run = zqmsg({"inspect", "objects"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(bytesShown(run.out), object + object);
  EXPECT_THAT(run.out, HasSubstr("object 2\n00000044  00 00 00 40              length      64\n"));
}

TEST_F(Inspect, DamagedMessageIsExplainedAsFarAsItGoes) {
  for (std::size_t size = 1; size < kExampleBytes.size(); ++size) {
    folder_.write("cut", kExampleBytes.substr(0, size));
    const ProgramRun run = zqmsg({"inspect", "cut"});
    EXPECT_TRUE(run.status == 0 || run.status == 1) << size << run.err;
    EXPECT_EQ(bytesShown(run.out), kExampleBytes.substr(0, size)) << size << run.out;
  }
  folder_.write("cut", kExampleBytes.substr(0, 53));
  const ProgramRun run = zqmsg({"inspect", "cut"});
  EXPECT_THAT(run, Exits(1));
  EXPECT_THAT(run.out, HasSubstr("!! "));
  EXPECT_EQ(run.err, "zqmsg: cut: cannot be read as a binary message\n  the lines with !! tell why\n");
}

TEST_F(Inspect, UnknownFieldsAndClassesAreExplained) {
  std::string bytes = kExampleBytes;
  bytes[8] = '\x56';  // another hash
  ProgramRun run = zqmsg({"inspect"}, bytes);
  EXPECT_THAT(run.out, HasSubstr("?0x"));
  EXPECT_EQ(bytesShown(run.out), bytes);
  bytes[7] = '\x1f';  // another subsystem
  run = zqmsg({"inspect"}, bytes);
  EXPECT_EQ(bytesShown(run.out), bytes);
}

TEST_F(Inspect, ObjectsThatAreCutOffAreExplainedAsFarAsTheyGo) {
  const std::string object = zqmsg({"convert", "--to", "objects"}, kExampleXml).out;
  const std::string file = object + object.substr(0, 30);
  const ProgramRun run = zqmsg({"inspect"}, file);
  EXPECT_THAT(run, Exits(1));
  EXPECT_EQ(bytesShown(run.out), file);
  EXPECT_EQ(run.err,
            "zqmsg: standard input: object 2, at byte 68, ends after 26 of 64 bytes\n"
            "  'zqmsg objects check' finds all damage, and 'objects repair' what is whole\n");
}

TEST_F(Inspect, DamagedObjectDoesNotEndTheOthers) {
  const std::string good = zqmsg({"convert", "--to", "objects"}, kExampleXml).out;
  const std::string bad = "\0\0\0\x28"s + kExampleBytes.substr(0, 40);
  const ProgramRun run = zqmsg({"inspect"}, good + bad + good);
  EXPECT_THAT(run, Exits(1));
  EXPECT_EQ(bytesShown(run.out), good + bad + good);
  EXPECT_EQ(run.err, "zqmsg: standard input: 1 of 3 objects cannot be read\n  the lines with !! tell why\n");
}

TEST_F(Inspect, XmlIsRefusedWithTheWayToItsBinaryForm) {
  const ProgramRun run = zqmsg({"inspect"}, kSaveAlertXml);
  EXPECT_THAT(run, Exits(1));
  EXPECT_THAT(run.err, StartsWith("zqmsg: standard input: is XML, and only binary messages are inspected\n"));
  EXPECT_THAT(run.err, HasSubstr("zqmsg convert"));
}

TEST_F(Inspect, FormCanBeSaid) {
  EXPECT_THAT(zqmsg({"inspect", "--from", "binary"}, kExampleBytes), Exits(0));
  EXPECT_THAT(zqmsg({"inspect", "--from", "objects"}, kExampleBytes), Exits(1));
  EXPECT_THAT(zqmsg({"inspect", "--from", "xml"}, kExampleBytes), Exits(2));
}

TEST_F(Inspect, EmptyInputIsAFailure) {
  const ProgramRun run = zqmsg({"inspect"}, "");
  EXPECT_THAT(run, Exits(1));
  EXPECT_EQ(run.err, "zqmsg: standard input: is empty\n");
}

}  // namespace
}  // namespace zqxml
