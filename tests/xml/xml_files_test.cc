// Messages as XML in files.
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <zqxml/catalogue/generated/XmlRead.h>
#include <zqxml/platform/file.h>
#include <zqxml/xml/xml_serializer.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "tests/support/failing_file_calls.h"
#include "tests/support/log_capture.h"
#include "tests/support/scratch_folder.h"

namespace zqxml {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::StartsWith;
using XmlRead::Node;

constexpr char kRead[] = "XMLSerializer::readXmlFromFile";
constexpr char kDump[] = "XMLSerializer::dumpXmlToFile";

class XmlFiles : public testing::Test {
 protected:
  /// Reads a file of these bytes into node_.
  int read(std::string_view bytes) {
    CUlFile file(folder_.write("in.xml", bytes));
    return XMLSerializer::readXmlFromFile(&node_, &file);
  }

  ScratchFolder folder_;
  Node node_;
};

/// Says other sizes than files have.
class FileSizes : public FailingFileCalls {
 public:
  /// The size of the first question and that of all later ones.
  FileSizes(off_t first, off_t later) : first_(first), later_(later) {}
  int fstat(int descriptor, struct stat* result) override {
    const int status = FailingFileCalls::fstat(descriptor, result);
    if (status == 0) result->st_size = asked_++ == 0 ? first_ : later_;
    return status;
  }

 private:
  off_t first_;
  off_t later_;
  int asked_ = 0;
};

TEST_F(XmlFiles, GoThereAndBack) {
  Node written;
  written.setId(5);
  written.setName("\xc3\xa9");
  {
    CUlFile file(folder_.path("node.xml"), CUlFile::Mode::kWrite);
    EXPECT_EQ(written.dumpXmlToFile(&file), 0);
  }
  EXPECT_THAT(folder_.read("node.xml"), StartsWith("<?xml "));
  CUlFile file(folder_.path("node.xml"));
  EXPECT_EQ(node_.readXmlFromFile(&file), 0);
  EXPECT_EQ(node_.getId(), 5);
  EXPECT_EQ(node_.getName(), "\xc3\xa9");
}

TEST_F(XmlFiles, ReadingStartsFromNothing) {
  node_.setName("old");
  EXPECT_EQ(read("<a id='3'/>"), 0);
  EXPECT_FALSE(node_.isNameSet());
  EXPECT_EQ(node_.getId(), 3);
}

TEST_F(XmlFiles, BadArgumentsAreThree) {
  LogCapture log;
  CUlFile closed;
  CUlFile open(folder_.write("in.xml", "<a/>"));
  EXPECT_EQ(XMLSerializer::readXmlFromFile(nullptr, &open), 3);
  EXPECT_EQ(XMLSerializer::readXmlFromFile(&node_, nullptr), 3);
  EXPECT_EQ(XMLSerializer::readXmlFromFile(&node_, &closed), 3);
  EXPECT_EQ(XMLSerializer::dumpXmlToFile(nullptr, &open), 3);
  EXPECT_EQ(XMLSerializer::dumpXmlToFile(&node_, nullptr), 3);
  EXPECT_EQ(XMLSerializer::dumpXmlToFile(&node_, &closed), 3);
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{kRead, 0, "Received null message"},
                                       CapturedLine{kRead, 0, "Invalid input file"},
                                       CapturedLine{kRead, 0, "Invalid input file"},
                                       CapturedLine{kDump, 0, "Received null object"},
                                       CapturedLine{kDump, 0, "Invalid input file"},
                                       CapturedLine{kDump, 0, "Invalid input file"}));
}

TEST_F(XmlFiles, FileWithoutASizeIsTwo) {
  LogCapture log;
  CUlFile file(folder_.write("in.xml", "<a/>"));
  FailingFileCalls calls;
  calls.statError = EIO;
  EXPECT_EQ(XMLSerializer::readXmlFromFile(&node_, &file), 2);
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{kRead, 0, std::strerror(EIO)}));
}

TEST_F(XmlFiles, EmptyFileIsFour) {
  LogCapture log;
  EXPECT_EQ(read(""), 4);
  EXPECT_THAT(log.lines(),
              ElementsAre(CapturedLine{kRead, 0, "File : [" + folder_.path("in.xml") + "] is empty."}));
}

TEST_F(XmlFiles, ReadErrorIsFive) {
  LogCapture log;
  CUlFile file(folder_.write("in.xml", "<a/>"));
  FailingFileCalls calls;
  calls.readError = EIO;
  EXPECT_EQ(XMLSerializer::readXmlFromFile(&node_, &file), 5);
  EXPECT_THAT(log.lines(),
              ElementsAre(CapturedLine{
                  kRead, 0, "Failed to Read from UlFile, error:[" + std::string(std::strerror(EIO)) + "]"}));
}

TEST_F(XmlFiles, WriteErrorIsSix) {
  LogCapture log;
  CUlFile file(folder_.path("out.xml"), CUlFile::Mode::kWrite);
  FailingFileCalls calls;
  calls.writeError = ENOSPC;
  EXPECT_EQ(node_.dumpXmlToFile(&file), 6);
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{kDump, 0,
                                                    "Failed to Dump Xml String Into File, error=" +
                                                        std::string(std::strerror(ENOSPC))}));
}

TEST_F(XmlFiles, TextThatCannotBeReadIsEight) {
  LogCapture log;
  EXPECT_EQ(read("<a id='3'>"), 8);
  EXPECT_EQ(node_.getId(), 3);
  ASSERT_EQ(log.lines().size(), 2u);
  EXPECT_EQ(log.lines()[1], (CapturedLine{kRead, 0, "Failed to Unserialize xml string."}));
}

TEST_F(XmlFiles, FileOfZeroBytesIsEight) {
  LogCapture log;
  EXPECT_EQ(read(std::string_view("\0<a/>", 5)), 8);
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{kRead, 0, "No data. Input is empty."}));
}

TEST_F(XmlFiles, KeepsCuttingAChunkAtAZeroByte) {
  EXPECT_EQ(read(std::string_view("<a id='3'/>\0<b/>", 16)), 0);
  EXPECT_EQ(node_.getId(), 3);
}

TEST_F(XmlFiles, ObjectWithoutAClassIsNine) {
  LogCapture log;
  XNMessageBase bare;
  CUlFile file(folder_.path("out.xml"), CUlFile::Mode::kWrite);
  EXPECT_EQ(XMLSerializer::dumpXmlToFile(&bare, &file), 9);
  EXPECT_TRUE(log.has(kDump, 0, "serialize xml failed with ret code :[1]"));
}

TEST_F(XmlFiles, ReadsInSmallTransfersToo) {
  FailingFileCalls calls;
  calls.largestTransfer = 3;
  EXPECT_EQ(read("<a id='3'><name>some text</name></a>"), 0);
  EXPECT_EQ(node_.getName(), "some text");
}

TEST_F(XmlFiles, FileThatHasShrunkEndsWhereItEnds) {
  const std::string text = "<a id='3'/>";
  CUlFile file(folder_.write("in.xml", text));
  LogCapture log(10);
  FileSizes sizes(100, static_cast<off_t>(text.size()));
  EXPECT_EQ(XMLSerializer::readXmlFromFile(&node_, &file), 0);
  EXPECT_EQ(node_.getId(), 3);
  EXPECT_TRUE(log.has(kRead, 10, "Encountered EOF after reading [11] bytes out of an estimated [100]."));
}

TEST_F(XmlFiles, FileWhoseEndCannotBeAskedForEndsThere) {
  CUlFile file(folder_.write("in.xml", "<a id='3'/>"));
  LogCapture log;
  FileSizes sizes(100, 100);
  sizes.statError = EIO;
  sizes.statsBeforeError = 1;
  EXPECT_EQ(XMLSerializer::readXmlFromFile(&node_, &file), 0);
  EXPECT_THAT(log.lines(),
              ElementsAre(CapturedLine{
                  kRead, 0,
                  "Assuming EOF after reading [11] bytes out of an estimated [100]. Return string "
                  "from EOF check [" +
                      std::string(std::strerror(EIO)) + "]."}));
}

TEST_F(XmlFiles, FileThatGivesNothingMoreEndsThere) {
  CUlFile file(folder_.write("in.xml", "<a id='3'/>"));
  LogCapture log;
  FileSizes sizes(100, 100);
  EXPECT_EQ(XMLSerializer::readXmlFromFile(&node_, &file), 0);
  EXPECT_EQ(node_.getId(), 3);
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{
                               kRead, 0,
                               "Assuming EOF due to 0 bytes read. Successfully read [11] bytes out of an "
                               "estimated [100]."}));
}

}  // namespace
}  // namespace zqxml
