// Where convert reads from and writes to: many files, folders, objects, and what becomes of the old file.
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/zqmsg/zqmsg_runner.h"

namespace zqxml {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class ConvertFiles : public ZqmsgTest {
 protected:
  static std::string alert(const std::string& name) {
    return "<ZQGui_AlertCriteria criteriaName=\"" + name + "\"/>";
  }
  // The form of a small message that names itself.
  std::string objectsOf(const std::vector<std::string>& names) const {
    std::string bytes;
    for (const std::string& name : names) bytes += zqmsg({"convert", "--to", "objects"}, alert(name)).out;
    return bytes;
  }
  bool exists(const std::string& name) const { return std::filesystem::exists(folder_.path(name)); }
};

TEST_F(ConvertFiles, OutputGoesIntoTheFile) {
  folder_.write("in.xml", kSaveAlertXml);
  const ProgramRun run = zqmsg({"convert", "in.xml", "--to", "xml", "-o", "out.xml"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_THAT(run.out, IsEmpty());
  EXPECT_THAT(run.err, IsEmpty());
  EXPECT_EQ(folder_.read("out.xml"), kSaveAlertXml);
  EXPECT_EQ(folder_.size(), 2u) << "something is left beside the output";
}

TEST_F(ConvertFiles, FailedRunLeavesTheOldFileAndNothingElse) {
  folder_.write("in.xml", kSaveAlertXml.substr(0, 100));
  folder_.write("out.bin", "old");
  EXPECT_THAT(zqmsg({"convert", "in.xml", "--to", "binary", "-o", "out.bin"}), Exits(4));
  EXPECT_EQ(folder_.read("out.bin"), "old");
  EXPECT_EQ(folder_.size(), 2u);
}

TEST_F(ConvertFiles, FailureInTheLastOfManyLeavesTheOldFile) {
  folder_.write("in.objects", objectsOf({"a", "b"}) + "junk");
  folder_.write("out.objects", "old");
  EXPECT_THAT(zqmsg({"convert", "in.objects", "--to", "objects", "-o", "out.objects"}), Exits(1));
  EXPECT_EQ(folder_.read("out.objects"), "old");
  EXPECT_EQ(folder_.size(), 2u);
}

TEST_F(ConvertFiles, FileCanBeConvertedInPlace) {
  folder_.write("file", kSaveAlertXml);
  EXPECT_THAT(zqmsg({"convert", "file", "--to", "binary", "-o", "file"}), Exits(0));
  EXPECT_THAT(zqmsg({"convert", "file", "--to", "xml", "-o", "file"}), Exits(0));
  EXPECT_EQ(folder_.read("file"), kSaveAlertXml);
}

TEST_F(ConvertFiles, OldFileKeepsItsPermissions) {
  folder_.write("in.xml", kSaveAlertXml);
  chmod(folder_.write("out.xml", "old").c_str(), 0600);
  EXPECT_THAT(zqmsg({"convert", "in.xml", "--to", "xml", "-o", "out.xml"}), Exits(0));
  struct stat state = {};
  ASSERT_EQ(stat(folder_.path("out.xml").c_str(), &state), 0);
  EXPECT_EQ(state.st_mode & 0777, 0600u);
}

TEST_F(ConvertFiles, OutputThatCannotBeMadeIsAFailure) {
  const ProgramRun run = zqmsg({"convert", "--to", "xml", "-o", "no/such/folder.xml"}, kSaveAlertXml);
  EXPECT_THAT(run, Exits(1));
  EXPECT_EQ(run.err, "zqmsg: no/such/folder.xml: cannot be written: No such file or directory\n");
}

TEST_F(ConvertFiles, ManyFilesBecomeOneFileOfObjects) {
  for (const char* name : {"a", "b", "c"}) folder_.write(std::string(name) + ".xml", alert(name));
  folder_.write("more.objects", objectsOf({"d", "e"}));
  EXPECT_THAT(
      zqmsg({"convert", "a.xml", "b.xml", "more.objects", "c.xml", "--to", "objects", "-o", "all.objects"}),
      Exits(0));
  EXPECT_EQ(folder_.read("all.objects"), objectsOf({"a", "b", "d", "e", "c"}));
}

TEST_F(ConvertFiles, ObjectsGoIntoAFolderAFileEach) {
  folder_.write("all.objects", objectsOf({"a", "b", "c"}));
  EXPECT_THAT(zqmsg({"convert", "all.objects", "--to", "xml", "-o", "out/"}), Exits(0));
  EXPECT_THAT(folder_.read("out/all-000001.xml"), HasSubstr("criteriaName=\"a\""));
  EXPECT_THAT(folder_.read("out/all-000003.xml"), HasSubstr("criteriaName=\"c\""));
  EXPECT_FALSE(exists("out/all-000004.xml"));
}

TEST_F(ConvertFiles, FilesInAFolderAreNamedAfterTheirInputAndForm) {
  std::filesystem::create_directory(folder_.path("out"));
  folder_.write("a.b.xml", alert("a"));
  for (const char* form : {"xml", "xml16", "binary", "objects"})
    EXPECT_THAT(zqmsg({"convert", "a.b.xml", "--to", form, "-o", "out"}), Exits(0));
  for (const char* name : {"out/a.b.xml", "out/a.b.utf16.xml", "out/a.b.bin", "out/a.b.objects"})
    EXPECT_TRUE(exists(name)) << name;
}

TEST_F(ConvertFiles, OneBadFileDoesNotKeepTheOthersFromTheFolder) {
  folder_.write("a.xml", alert("a"));
  folder_.write("bad.xml", "<bad");
  folder_.write("c.xml", alert("c"));
  const ProgramRun run =
      zqmsg({"convert", "a.xml", "bad.xml", "missing.xml", "c.xml", "--to", "binary", "-o", "out/"});
  EXPECT_THAT(run, Exits(4)) << "the status of the first failure";
  EXPECT_THAT(run.err, StartsWith("zqmsg: bad.xml: is not well-formed XML"));
  EXPECT_THAT(run.err, HasSubstr("zqmsg: missing.xml: cannot be read"));
  EXPECT_TRUE(exists("out/a.bin"));
  EXPECT_FALSE(exists("out/bad.bin"));
  EXPECT_TRUE(exists("out/c.bin"));
}

TEST_F(ConvertFiles, NoInputIsWrittenOverAnotherInAFolder) {
  std::filesystem::create_directory(folder_.path("sub"));
  folder_.write("a.xml", alert("first"));
  folder_.write("sub/a.xml", alert("second"));
  const ProgramRun run = zqmsg({"convert", "a.xml", "sub/a.xml", "--to", "xml", "-o", "out/"});
  EXPECT_THAT(run, Exits(1));
  EXPECT_THAT(run.err, HasSubstr("zqmsg: sub/a.xml: would be written over out/a.xml"));
  EXPECT_THAT(folder_.read("out/a.xml"), HasSubstr("first"));
}

TEST_F(ConvertFiles, ManyMessagesOnStandardOutputAreXmlLineByLine) {
  const std::string one = zqmsg({"convert", "--to", "xml", "--root-only"}, alert("a")).out;
  const ProgramRun run = zqmsg({"convert", "--to", "xml", "--root-only"}, objectsOf({"a", "a"}));
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(run.out, one + "\n" + one + "\n");
}

TEST_F(ConvertFiles, ManyFilesOnStandardOutputAreXmlLineByLineToo) {
  folder_.write("a.xml", alert("a"));
  const std::string one = zqmsg({"convert", "a.xml", "--to", "xml"}).out;
  const ProgramRun run = zqmsg({"convert", "a.xml", "a.xml", "a.xml", "--to", "xml"});
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(run.out, one + "\n" + one + "\n" + one + "\n");
}

TEST_F(ConvertFiles, ManyMessagesDoNotFitAFileOfOne) {
  folder_.write("two.objects", objectsOf({"a", "b"}));
  folder_.write("a.xml", alert("a"));
  folder_.write("out", "old");
  for (const char* form : {"xml", "xml16", "binary"}) {
    const ProgramRun run = zqmsg({"convert", "two.objects", "--to", form, "-o", "out"});
    EXPECT_THAT(run, Exits(1));
    EXPECT_THAT(run.err, HasSubstr("zqmsg: two.objects: brings a second message"));
    EXPECT_THAT(run.err, HasSubstr("-o FOLDER/"));
    EXPECT_THAT(zqmsg({"convert", "a.xml", "a.xml", "--to", form, "-o", "out"}), Exits(1));
  }
  EXPECT_EQ(folder_.read("out"), "old");
  EXPECT_THAT(zqmsg({"convert", "two.objects", "--to", "binary"}), Exits(1));
  EXPECT_THAT(zqmsg({"convert", "two.objects", "--to", "binary"}).out, IsEmpty());
  folder_.write("large.xml", alert(std::string(300000, 'x')));
  EXPECT_THAT(zqmsg({"convert", "large.xml", "a.xml", "--to", "binary"}).out, IsEmpty());
}

TEST_F(ConvertFiles, FileOfNoObjectsIsEmpty) {
  folder_.write("none", "");
  EXPECT_THAT(zqmsg({"convert", "none", "--from", "objects", "--to", "objects", "-o", "out"}), Exits(0));
  EXPECT_TRUE(exists("out"));
  EXPECT_EQ(folder_.read("out"), "");
  const ProgramRun run = zqmsg({"convert", "none", "--from", "objects", "--to", "xml"});
  EXPECT_THAT(run, Exits(1));
  EXPECT_EQ(run.err, "zqmsg: none: holds no message\n");
}

TEST_F(ConvertFiles, ObjectThatCannotBeReadIsNamedByItsNumber) {
  std::string bytes = objectsOf({"a", "b"});
  bytes[bytes.size() / 2 + 11] = '\x7f';  // top byte of the second tag id
  const ProgramRun run = zqmsg({"convert", "--to", "objects"}, bytes);
  EXPECT_THAT(run, Exits(1));
  EXPECT_THAT(run.err, StartsWith("zqmsg: standard input: object 2: cannot be read as a binary message\n"));
}

// Sanitizers keep what is freed for a while; told to keep little, they leave the measure meaningful.
TEST_F(ConvertFiles, ObjectsAreStreamedInConstantMemory) {
  const std::string object = objectsOf({std::string(2000, 'x')});
  std::string many;
  for (int i = 0; i < 16000; ++i) many += object;
  folder_.write("one", object);
  folder_.write("many", many);
  ProgramSetup setup;
  setup.environment = {"ASAN_OPTIONS=quarantine_size_mb=1"};
  const ProgramRun one = zqmsg({"convert", "one", "--to", "objects", "-o", "one.out"}, setup);
  const ProgramRun run = zqmsg({"convert", "many", "--to", "objects", "-o", "many.out"}, setup);
  EXPECT_THAT(run, Exits(0));
  EXPECT_EQ(folder_.read("many.out"), many);
  EXPECT_LT(run.peakMemory - one.peakMemory, 10 * 1024) << "KiB more for " << many.size() / 1024 << " KiB";
}

}  // namespace
}  // namespace zqxml
