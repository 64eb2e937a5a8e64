// Input that is no message: every command that reads answers with a clear error and the right status.
#include <filesystem>
#include <fstream>
#include <random>
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

class BadInput : public ZqmsgTest {
 protected:
  // The three ways to read a file; each must answer with the status, and name the file.
  void everyReaderFails(const std::string& file, int status, const std::string& text) const {
    folder_.write("good.xml", kSaveAlertXml);
    const std::vector<std::vector<std::string>> runs{{"convert", file, "--to", "xml"},
                                                     {"convert", file, "--to", "objects", "-o", "out"},
                                                     {"diff", "good.xml", file}};
    for (const std::vector<std::string>& arguments : runs) {
      const ProgramRun run = zqmsg(arguments);
      EXPECT_THAT(run, Exits(status)) << arguments[0];
      EXPECT_THAT(run.out, IsEmpty());
      EXPECT_THAT(run.err, StartsWith("zqmsg: " + file + ": "));
      EXPECT_THAT(run.err, HasSubstr(text));
    }
    EXPECT_EQ(folder_.read("out"), "");
  }
  // Whatever the bytes are, the program ends by itself, and explains a failure.
  void nothingBreaks(const std::string& bytes) const {
    folder_.write("input", bytes);
    for (const char* form : {"", "xml", "xml16", "binary", "objects"}) {
      std::vector<std::string> arguments{"convert", "input", "--to", "xml"};
      if (*form != '\0') arguments.insert(arguments.end(), {"--from", form});
      wellBehaved(zqmsg(arguments));
    }
    wellBehaved(zqmsg({"inspect", "input"}));
    wellBehaved(zqmsg({"inspect", "input", "--from", "objects"}));
  }
  static void wellBehaved(const ProgramRun& run) {
    EXPECT_THAT((std::vector<int>{0, 1, 4, 5, 6}), testing::Contains(run.status)) << run;
    EXPECT_TRUE(run.status == 0 || run.err.starts_with("zqmsg: ")) << run;
  }
  // A file of this size that starts with `head`; `junk` fills the rest.
  void writeLarge(const std::string& name, const std::string& head, std::size_t size,
                  const std::string& junk) const {
    std::ofstream file(folder_.path(name), std::ios::binary);
    file << head;
    for (std::size_t written = head.size(); written < size; written += junk.size()) file << junk;
  }
  static std::string randomBytes(unsigned seed, std::size_t size) {
    std::mt19937 random(seed);
    std::string bytes(size, '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    return bytes;
  }
};

constexpr std::size_t kHundredMegabytes = 100'000'000;

TEST_F(BadInput, MissingFile) {
  everyReaderFails("missing", 1, "cannot be read: No such file or directory");
  EXPECT_THAT(zqmsg({"inspect", "missing"}), Exits(1));
}

TEST_F(BadInput, Folder) {
  everyReaderFails(".", 1, "cannot be read: Is a directory");
  EXPECT_THAT(zqmsg({"inspect", "."}), Exits(1));
}

TEST_F(BadInput, UnreadableFile) {
  // Reading a process's memory at address 0 fails for everybody.
  everyReaderFails("/proc/self/mem", 1, "cannot be read: Input/output error");
  EXPECT_THAT(zqmsg({"inspect", "/proc/self/mem"}), Exits(1));
}

TEST_F(BadInput, EmptyFile) {
  folder_.write("empty", "");
  everyReaderFails("empty", 1, "is empty");
  for (const char* form : {"xml", "xml16", "binary"}) {
    const ProgramRun run = zqmsg({"convert", "empty", "--to", "xml", "--from", form});
    EXPECT_THAT(run, Exits(1));
    EXPECT_EQ(run.err, "zqmsg: empty: is empty\n");
  }
}

TEST_F(BadInput, WhatIsNoMessageAtAll) {
  folder_.write("text", "Dear reader, this is no message.\n");
  everyReaderFails("text", 1, "is neither XML, nor JSON, nor a binary message of a known class");
}

TEST_F(BadInput, XmlThatIsCutOff) {
  folder_.write("cut.xml", "<?xml version=\"1.0\"?>\n<ZQGui_SaveAlert loginName=\"x\">\n");
  everyReaderFails("cut.xml", 4, "is not well-formed XML at line 3, column 1");
}

TEST_F(BadInput, XmlThatIsBroken) {
  folder_.write("broken.xml", "<ZQGui_SaveAlert>\n  <a></b>\n</ZQGui_SaveAlert>");
  everyReaderFails("broken.xml", 4, "is not well-formed XML at line 2, column 8");
}

TEST_F(BadInput, DeclarationAlone) {
  folder_.write("declaration.xml", "<?xml version=\"1.0\"?>");
  everyReaderFails("declaration.xml", 4, "is not well-formed XML");
}

TEST_F(BadInput, XmlOfAnUnknownClass) {
  for (const char* root :
       {"<No_Class/>", "<NoUnderscore/>", "<ZQGui_NoClass/>", "<x:ZQGui_SaveAlertx xmlns:x=\"y\"/>"}) {
    folder_.write("unknown.xml", root);
    everyReaderFails("unknown.xml", 5, "its root element names no class of the catalogue");
  }
}

TEST_F(BadInput, XmlWithAnEntity) {
  folder_.write("entity.xml", "<!DOCTYPE r [<!ENTITY e \"x\">]>\n<ZQGui_SaveAlert loginName=\"&e;\"/>");
  everyReaderFails("entity.xml", 4, "entity expansions");
}

TEST_F(BadInput, XmlReachesForNoOtherFile) {
  const std::string secret = folder_.write("secret", "do not tell");
  folder_.write("reach.xml", "<!DOCTYPE r [<!ENTITY e SYSTEM \"file://" + secret +
                                 "\">]><ZQGui_SaveAlert><loginName>&e;</loginName></ZQGui_SaveAlert>");
  const ProgramRun run = zqmsg({"convert", "reach.xml", "--to", "xml"});
  EXPECT_THAT(run.out + run.err, Not(HasSubstr("do not tell")));
}

TEST_F(BadInput, FormThatTheFileDoesNotHave) {
  folder_.write("alert.xml", kSaveAlertXml);
  folder_.write("example.bin", kExampleBytes);
  for (const char* form : {"xml16", "binary"}) {
    const ProgramRun run = zqmsg({"convert", "alert.xml", "--from", form, "--to", "xml"});
    EXPECT_THAT(run, Exits(1));
    EXPECT_EQ(run.err, "zqmsg: alert.xml: is not in the form "s + form +
                           " but in xml\n  leave --from out, or say --from xml\n");
  }
  EXPECT_THAT(zqmsg({"convert", "alert.xml", "--from", "objects", "--to", "xml"}), Exits(1));
  for (const char* form : {"xml", "xml16", "objects"})
    EXPECT_THAT(zqmsg({"convert", "example.bin", "--from", form, "--to", "xml"}), Exits(1));
}

TEST_F(BadInput, BinaryThatIsCutOffAnywhere) {
  for (std::size_t size = 0; size < kExampleBytes.size(); ++size) {
    folder_.write("input", kExampleBytes.substr(0, size));
    wellBehaved(zqmsg({"convert", "input", "--to", "xml"}));
  }
  for (std::size_t size = 0; size < kExampleBytes.size(); size += 9)
    nothingBreaks(kExampleBytes.substr(0, size));
  folder_.write("cut.bin", kExampleBytes.substr(0, 60));
  everyReaderFails("cut.bin", 1, "cannot be read as a binary message");
}

TEST_F(BadInput, XmlThatIsCutOffAnywhere) {
  for (std::size_t size = 0; size < kExampleXml.size(); size += 3) {
    const ProgramRun run = zqmsg({"convert", "--to", "binary"}, kExampleXml.substr(0, size));
    EXPECT_THAT(run, Exits(size == 0 ? 1 : 4)) << size;
    EXPECT_THAT(run.out, IsEmpty());
  }
}

TEST_F(BadInput, ObjectsThatAreCutOffAnywhere) {
  const std::string record = "\0\0\0\x40"s + kExampleBytes;
  for (std::size_t size = 1; size < record.size(); size += 5) {
    const ProgramRun run = zqmsg({"convert", "--to", "objects"}, record + record.substr(0, size));
    EXPECT_THAT(run, Exits(1)) << size;
    EXPECT_THAT(run.err, StartsWith("zqmsg: standard input: object 2, at byte 68, ends "));
  }
}

TEST_F(BadInput, RandomBytes) {
  for (unsigned seed = 0; seed < 8; ++seed) nothingBreaks(randomBytes(seed, 1 + 97 * seed));
}

TEST_F(BadInput, RandomBytesBehindAGoodHeader) {
  for (unsigned seed = 0; seed < 8; ++seed) {
    nothingBreaks(kExampleBytes.substr(0, 8) + randomBytes(seed, 200));
    nothingBreaks("\0\0\0\xd0"s + kExampleBytes.substr(0, 8) + randomBytes(seed, 200));
  }
}

TEST_F(BadInput, ChangedBytes) {
  for (std::size_t at = 0; at < kExampleBytes.size(); ++at) {
    std::string bytes = kExampleBytes;
    bytes[at] = static_cast<char>(bytes[at] ^ 0xff);
    folder_.write("input", bytes);
    wellBehaved(zqmsg({"convert", "input", "--to", "xml"}));
    wellBehaved(zqmsg({"inspect", "input"}));
  }
}

TEST_F(BadInput, ContentCannotPassForAFailure) {
  for (const char* text : {"Password Handler Not Found", "SAXParseException: x", "ZQPassword::decrypt",
                           "No Password annotation found on member : x"}) {
    const std::string xml = "<ZQGui_AlertCriteria severity=\""s + text + "\"/>";
    for (const char* form : {"xml", "binary"})
      EXPECT_THAT(zqmsg({"convert", "--to", form}, xml), Exits(0)) << text;
  }
}

TEST_F(BadInput, DeeplyNestedXml) {
  std::string xml = "<ZQGui_SaveAlert>";
  for (int i = 0; i < 100000; ++i) xml += "<processinginstructioninfo>";
  const ProgramRun run = zqmsg({"convert", "--to", "xml"}, xml);
  EXPECT_THAT(run, Exits(5));
  EXPECT_THAT(run.err, HasSubstr("nested in more than"));
}

TEST_F(BadInput, FileLargerThanAMessageCanBeIsNotRead) {
  const std::string large = folder_.write("large", kSaveAlertXml);
  std::filesystem::resize_file(large, std::uintmax_t{1} << 33);  // takes no room on the disk
  const ProgramRun run = zqmsg({"convert", "large", "--to", "xml"});
  EXPECT_THAT(run, Exits(1));
  EXPECT_EQ(run.err, "zqmsg: large: is larger than a message can be\n");
  EXPECT_LT(run.peakMemory, 1 << 20);

  std::ofstream(large, std::ios::app) << kSaveAlertXml;
  const ProgramRun rest =
      shell("{ dd bs=1M skip=8192 count=0 status=none; zqmsg convert --to xml; } < large");
  EXPECT_EQ(rest.out, kSaveAlertXml) << "only what is left of standard input counts";
}

TEST_F(BadInput, HundredMegabytesOfZeros) {
  writeLarge("zeros", "", kHundredMegabytes, std::string(1 << 20, '\0'));
  everyReaderFails("zeros", 1, "is neither XML, nor JSON, nor a binary message of a known class");
  for (const char* form : {"xml", "xml16", "binary", "objects"})
    wellBehaved(zqmsg({"convert", "zeros", "--from", form, "--to", "xml"}));
}

TEST_F(BadInput, HundredMegabytesOfRandomBytes) {
  writeLarge("random", "", kHundredMegabytes, randomBytes(1, 1 << 20));
  everyReaderFails("random", 1, "is neither XML, nor JSON, nor a binary message of a known class");
}

TEST_F(BadInput, HundredMegabytesBehindAGoodStart) {
  writeLarge("large", kExampleBytes.substr(0, 8), kHundredMegabytes, randomBytes(2, 1 << 20));
  wellBehaved(zqmsg({"convert", "large", "--to", "xml"}));
  writeLarge("large", "<ZQGui_SaveAlert loginName=\"", kHundredMegabytes, std::string(1 << 20, 'x'));
  EXPECT_THAT(zqmsg({"convert", "large", "--to", "binary"}), Exits(4));
  writeLarge("large", "\x7f\xff\xff\xff"s + kExampleBytes.substr(0, 8), kHundredMegabytes,
             std::string(1 << 20, 'x'));
  EXPECT_THAT(zqmsg({"convert", "large", "--to", "objects"}), Exits(1));
}

}  // namespace
}  // namespace zqxml
