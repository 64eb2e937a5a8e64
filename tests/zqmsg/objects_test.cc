// Files of objects on the command line: listing, printing, checking and repairing them.
#include <string>
#include <vector>

#include "tests/zqmsg/zqmsg_runner.h"

namespace zqxml {
namespace {

using namespace std::string_literals;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class Objects : public ZqmsgTest {
 protected:
  void SetUp() override {
    for (const std::string number : {"1", "2", "3"}) records_.push_back(record(number));
    folder_.write("a", records_[0] + records_[1] + records_[2]);
    folder_.write("b", formatB());
  }
  static std::string xmlOf(const std::string& number) {
    return "<App_TestMessage2 intField=\"" + number + "\"/>";
  }
  /// The record of format A of a numbered message: 17 bytes.
  std::string record(const std::string& number) const {
    return zqmsg({"convert", "--to", "objects"}, xmlOf(number)).out;
  }
  /// The three of them in format B.
  std::string formatB() const {
    std::string bytes("1\0\0\0", 4);
    for (const std::string& one : records_) bytes += "13\0\0"s + one.substr(4);
    return bytes;
  }
  /// A file whose second record is cut in the middle.
  std::string torn() const { return records_[0] + records_[1].substr(0, 9) + records_[2]; }

  std::vector<std::string> records_;
};

TEST_F(Objects, LsTellsOffsetsSizesAndClasses) {
  const ProgramRun a = zqmsg({"objects", "ls", "a"});
  EXPECT_THAT(a, Exits(0));
  EXPECT_EQ(a.out,
            "object      offset       bytes  tag id      class\n"
            "     1           0          13  0x1ed44bdd  App_TestMessage2\n"
            "     2          17          13  0x1ed44bdd  App_TestMessage2\n"
            "     3          34          13  0x1ed44bdd  App_TestMessage2\n");
  const ProgramRun b = zqmsg({"objects", "ls", "b"});
  EXPECT_THAT(b, Exits(0));
  EXPECT_THAT(b.out, HasSubstr("     1           4          13  0x1ed44bdd  App_TestMessage2\n"));
  EXPECT_THAT(b.out, HasSubstr("     3          38          13  0x1ed44bdd  App_TestMessage2\n"));
}

TEST_F(Objects, LsNamesClassesThatAreNotInTheCatalogue) {
  std::string unknown = records_[0];
  unknown[8] = '\1';
  EXPECT_THAT(zqmsg({"objects", "ls"}, records_[1] + unknown).out,
              HasSubstr("0x1ed44b01  (not in the catalogue)\n"));
}

TEST_F(Objects, LsOfAnEmptyFileIsTheHeadAlone) {
  const ProgramRun run = zqmsg({"objects", "ls", "-"}, "");
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(run.out, "object      offset       bytes  tag id      class\n");
}

TEST_F(Objects, LsShowsWhatStandsBeforeDamage) {
  const ProgramRun run = zqmsg({"objects", "ls"}, records_[0] + "\0\0"s);
  EXPECT_THAT(run, Exits(1));
  EXPECT_THAT(run.out, HasSubstr("     1           0          13"));
  EXPECT_EQ(run.err,
            "zqmsg: standard input: object 2, at byte 17, ends inside its length\n"
            "  'zqmsg objects check' finds all damage, and 'objects repair' what is whole\n");
}

TEST_F(Objects, CatPrintsEveryObjectAsXml) {
  for (const char* file : {"a", "b"}) {
    const ProgramRun run = zqmsg({"objects", "cat", file, "--root-only"});
    EXPECT_THAT(run, Exits(0));
    EXPECT_EQ(run.out, xmlOf("1") + '\n' + xmlOf("2") + '\n' + xmlOf("3") + '\n');
    EXPECT_THAT(run.err, IsEmpty());
  }
}

TEST_F(Objects, CatWritesOneObjectInAnyForm) {
  folder_.write("2.xml", xmlOf("2"));
  for (const char* form : {"xml", "xml16", "binary", "objects", "text", "html", "page"}) {
    const ProgramRun run = zqmsg({"objects", "cat", "b", "--number", "2", "--to", form});
    EXPECT_THAT(run, Exits(0)) << form;
    EXPECT_EQ(run.out, zqmsg({"convert", "2.xml", "--to", form}).out) << form;
  }
}

TEST_F(Objects, CatWritesAllObjectsInFormatA) {
  EXPECT_THAT(zqmsg({"objects", "cat", "b", "--to", "objects", "-o", "out"}), Exits(0));
  EXPECT_EQ(folder_.read("out"), folder_.read("a"));
}

TEST_F(Objects, CatPassesOverWhatIsNotAskedFor) {
  std::string foreign = records_[1];
  foreign[8] = '\1';
  folder_.write("mixed", records_[0] + foreign + records_[2]);
  EXPECT_EQ(zqmsg({"objects", "cat", "mixed", "--number", "3", "--root-only"}).out, xmlOf("3"));
}

TEST_F(Objects, CatOfANumberThatThereIsNotFails) {
  folder_.write("out", "old");
  const ProgramRun run = zqmsg({"objects", "cat", "a", "--number", "4", "-o", "out"});
  EXPECT_THAT(run, Exits(1));
  EXPECT_EQ(run.err, "zqmsg: a: has 3 objects, and none of number 4\n");
  EXPECT_EQ(folder_.read("out"), "old");
}

TEST_F(Objects, CheckOfAWholeFileSaysSo) {
  const ProgramRun a = zqmsg({"objects", "check", "a"});
  EXPECT_THAT(a, Exits(0));
  EXPECT_EQ(a.out, "3 objects in 51 bytes, no damage\n");
  EXPECT_EQ(zqmsg({"objects", "check", "b"}).out, "3 objects in 55 bytes, no damage\n");
  EXPECT_EQ(zqmsg({"objects", "check"}, folder_.read("a")).out, a.out);
  EXPECT_EQ(zqmsg({"objects", "check"}, "").out, "0 objects in 0 bytes, no damage\n");
}

TEST_F(Objects, CheckNamesAllDamageWithItsPlace) {
  folder_.write("bad", torn() + "\0\0"s);
  const ProgramRun run = zqmsg({"objects", "check", "bad"});
  EXPECT_THAT(run, Exits(1));
  EXPECT_THAT(run.out, StartsWith("object 2, at byte 17, "));
  EXPECT_THAT(run.out, HasSubstr("; bytes 17 to 26 are lost\n"
                                 "object 4, at byte 43, ends inside its length; bytes 43 to 45 are lost\n"));
  EXPECT_EQ(run.err,
            "zqmsg: bad: damaged: 2 of 4 objects\n"
            "  'zqmsg objects repair FILE -o COPY' keeps the others\n");
}

TEST_F(Objects, RepairKeepsEveryWholeObject) {
  folder_.write("bad", torn());
  const ProgramRun run = zqmsg({"objects", "repair", "bad", "-o", "good"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.out, IsEmpty());
  EXPECT_THAT(run.err, HasSubstr("zqmsg: bad: warning: object 2, at byte 17, "));
  EXPECT_THAT(run.err, HasSubstr("zqmsg: bad: warning: 1 of 3 objects left out, 9 of 43 bytes\n"));
  EXPECT_EQ(folder_.read("good"), records_[0] + records_[2]);
  EXPECT_EQ(folder_.read("bad"), torn());
}

TEST_F(Objects, RepairKeepsTheFormat) {
  const std::string whole = formatB();
  folder_.write("bad", whole.substr(0, 30) + whole.substr(38));
  EXPECT_THAT(zqmsg({"objects", "repair", "bad", "-o", "good"}), Exits(0));
  EXPECT_EQ(folder_.read("good"), whole.substr(0, 21) + whole.substr(38));
}

TEST_F(Objects, RepairGivesBackAVersionField) {
  folder_.write("bad", "????"s + formatB().substr(4));
  const ProgramRun unknown = zqmsg({"objects", "repair", "bad", "-o", "good"});
  EXPECT_THAT(unknown, Exits(1));
  EXPECT_THAT(unknown.err, HasSubstr("say with --format which of the formats a and b it has"));
  EXPECT_THAT(zqmsg({"objects", "repair", "bad", "--format", "b", "-o", "good"}), Exits(0));
  EXPECT_EQ(folder_.read("good"), formatB());
}

TEST_F(Objects, RepairInPlaceAndToStandardOutput) {
  folder_.write("bad", torn());
  EXPECT_EQ(zqmsg({"objects", "repair", "bad", "-o", "-"}).out, records_[0] + records_[2]);
  EXPECT_THAT(zqmsg({"objects", "repair", "bad", "-o", "bad"}), Exits(0));
  EXPECT_EQ(folder_.read("bad"), records_[0] + records_[2]);
  EXPECT_THAT(zqmsg({"objects", "check", "bad"}), Exits(0));
}

TEST_F(Objects, RepairOfAForeignFileWritesNothing) {
  folder_.write("out", "old");
  for (const char* format : {"a", "b"}) {
    const ProgramRun run =
        zqmsg({"objects", "repair", "--format", format, "-o", "out"}, "no objects in here");
    EXPECT_THAT(run, Exits(1));
    EXPECT_THAT(run.err, HasSubstr("zqmsg: standard input: holds no whole object; nothing was written\n"));
  }
  EXPECT_EQ(folder_.read("out"), "old");
  EXPECT_EQ(folder_.size(), 3u) << "something is left beside the output";
}

TEST_F(Objects, DamageLeavesTheOldOutputOfAConversion) {
  folder_.write("bad", torn());
  folder_.write("out", "old");
  EXPECT_THAT(zqmsg({"convert", "bad", "--to", "objects", "-o", "out"}), Exits(1));
  EXPECT_THAT(zqmsg({"objects", "cat", "bad", "-o", "out"}), Exits(1));
  EXPECT_EQ(folder_.read("out"), "old");
}

TEST_F(Objects, FilesThatCannotBeReadAreFailures) {
  for (const char* step : {"ls", "cat", "check"}) {
    EXPECT_THAT(zqmsg({"objects", step, "missing"}).err,
                HasSubstr("zqmsg: missing: cannot be read: No such file or directory"))
        << step;
    EXPECT_THAT(zqmsg({"objects", step, "."}), Exits(1)) << step;
  }
}

TEST_F(Objects, XmlIsNoFileOfObjects) {
  folder_.write("x.xml", kSaveAlertXml);
  for (const char* step : {"ls", "cat"})
    EXPECT_EQ(zqmsg({"objects", step, "x.xml"}).err,
              "zqmsg: x.xml: is not in the form objects but in xml\n  'zqmsg convert --from xml' reads it\n");
  EXPECT_THAT(zqmsg({"objects", "check", "x.xml"}).err,
              HasSubstr("does not begin with an object of a known class"));
}

TEST_F(Objects, WrongUsageIsTold) {
  EXPECT_THAT(zqmsg({"objects"}), Exits(2));
  EXPECT_THAT(zqmsg({"objects", "frobnicate"}), Exits(2));
  EXPECT_THAT(zqmsg({"objects", "repair", "a"}), Exits(2));
  EXPECT_THAT(zqmsg({"objects", "ls", "a", "--format", "c"}), Exits(2));
  for (const char* number : {"0", "-1", "one"}) {
    const ProgramRun cat = zqmsg({"objects", "cat", "a", "--number", number});
    EXPECT_THAT(cat, Exits(2));
    EXPECT_THAT(cat.err, StartsWith("zqmsg: objects cat: --number: objects are numbered from 1\n"));
  }
  const ProgramRun run = zqmsg({"objects", "cat", "a", "--to", "binary", "--readable"});
  EXPECT_THAT(run, Exits(2));
  EXPECT_THAT(run.err, StartsWith("zqmsg: objects cat: --readable is for the forms xml, xml16 and json"));
}

TEST_F(Objects, EveryStepHasHelpWithAnExample) {
  for (const std::string step : {"ls", "cat", "check", "repair"}) {
    const ProgramRun run = zqmsg({"objects", step, "--help"});
    EXPECT_THAT(run, Exits(0));
    EXPECT_THAT(run.out, HasSubstr("\n  zqmsg objects " + step + " "));
  }
}

TEST_F(Objects, InspectExplainsFormatB) {
  const ProgramRun run = zqmsg({"inspect", "b"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.out, HasSubstr("00000000  31 00 00 00              version     1\n"
                                 "object 1\n"
                                 "00000004  31 33 00 00              length      13\n"));
}

TEST_F(Objects, ConvertReadsBothFormats) {
  for (const char* file : {"a", "b"})
    EXPECT_EQ(zqmsg({"convert", file, "--to", "objects"}).out, folder_.read("a")) << file;
  EXPECT_THAT(zqmsg({"diff", "a", "b"}), Exits(0));
}

TEST_F(Objects, ProgressIsABarOnATerminal) {
  ProgramSetup setup;
  setup.errorTerminal = true;
  const std::vector<std::vector<std::string>> runs{{"objects", "check", "a"},
                                                   {"objects", "repair", "a", "-o", "out"},
                                                   {"objects", "ls", "a"},
                                                   {"convert", "a", "--to", "objects", "-o", "out"}};
  for (const std::vector<std::string>& arguments : runs) {
    setup.environment = {};
    const ProgramRun coloured = zqmsg(arguments, setup);
    EXPECT_THAT(coloured, Exits(0));
    EXPECT_THAT(coloured.err, HasSubstr("[\033[32m##########\033[0m--------------------] 33% "));
    EXPECT_THAT(coloured.err, testing::EndsWith("\r\033[K")) << "the bar stays";
    setup.environment = {"NO_COLOR=1"};
    EXPECT_THAT(zqmsg(arguments, setup).err, HasSubstr("[##########--------------------] 33%"));
    EXPECT_THAT(zqmsg(arguments).err, IsEmpty());
  }
}

TEST_F(Objects, MemoryStaysFlatWhileTheFileGrowsTenfold) {
  // Records of some 1,000 bytes; the larger file has 20 MB.
  const std::string xml = "<App_TestMessage2 strField=\"" + std::string(1000, 'x') + "\"/>";
  const std::string one = zqmsg({"convert", "--to", "objects"}, xml).out;
  const auto writeFile = [&](const std::string& name, int count) {
    std::string bytes;
    for (int i = 0; i < count; ++i) bytes += one;
    folder_.write(name, bytes);
  };
  writeFile("small", 2000);
  writeFile("large", 20000);
  const auto peak = [&](std::vector<std::string> arguments, const std::string& file) {
    arguments.push_back(file);
    ProgramSetup setup;
    // AddressSanitizer would keep what was freed, and so the peak would tell of all that ever was in memory.
    setup.environment = {"ASAN_OPTIONS=quarantine_size_mb=0:thread_local_quarantine_size_kb=0"};
    const ProgramRun run = zqmsg(arguments, setup);
    EXPECT_THAT(run, Exits(0));
    return run.peakMemory;
  };
  for (const std::vector<std::string>& arguments :
       std::vector<std::vector<std::string>>{{"convert", "--to", "objects", "-o", "out"},
                                             {"objects", "check"},
                                             {"objects", "repair", "-o", "out"},
                                             {"objects", "cat", "-o", "out", "--to", "objects"}}) {
    const long small = peak(arguments, "small"), large = peak(arguments, "large");
    EXPECT_LT(large, small + 2000) << arguments[1] << ": KiB";
  }
}

}  // namespace
}  // namespace zqxml
