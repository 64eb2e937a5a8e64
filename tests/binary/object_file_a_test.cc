// Object files of format A: lengths of four bytes.
#include <tests/binary/object_files.h>
#include <tests/binary/oversized_message.h>
#include <tests/support/pipe_of.h>
#include <zqxml/platform/crc64.h>

#include <cerrno>
#include <string>

namespace zqxml {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kAdd[] = "XNMessageBaseFileHandler::AddObjectToFile";
constexpr char kGet[] = "XNMessageBaseFileHandler::GetObjectFromFile";

using ObjectFileA = ObjectFiles;

TEST_F(ObjectFileA, EmptyFileHasNoDataAndNoLine) {
  LogCapture log;
  open();
  EXPECT_EQ(readA(), FileHandlerNoData);
  EXPECT_TRUE(log.empty());
}

TEST_F(ObjectFileA, FileThatEndsInsideALengthHasNoData) {
  for (const auto& [head, line] :
       {std::pair(
            std::string("\x05"),
            "Could not read data size from file. Bytes read [1], normalized size [0x00000005], eof[true]"),
        std::pair(
            std::string("\0\0\x01", 3),
            "Could not read data size from file. Bytes read [3], normalized size [0x00010000], eof[true]")}) {
    LogCapture log;
    open(recordA(form(1)) + head);
    EXPECT_EQ(readA(), FileHandlerSuccess);
    EXPECT_EQ(readA(), FileHandlerNoData);
    EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{kGet, 0, line}));
  }
}

TEST_F(ObjectFileA, FileThatEndsInsideARecordIsInvalid) {
  LogCapture log;
  const std::string record = recordA(form(1));
  open(record.substr(0, record.size() - 1));
  EXPECT_EQ(readA(), FileHandlerInvalidFile);
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{
                               kGet, 0, "Could not read data from file. Data read [19] expected [20]"}));
}

TEST_F(ObjectFileA, LengthZeroHasNoData) {
  LogCapture log;
  open(std::string(4, '\0') + recordA(form(1)));
  EXPECT_EQ(readA(), FileHandlerNoData);
  EXPECT_THAT(
      log.lines(),
      ElementsAre(CapturedLine{
          kGet, 0,
          "Could not read data size from file. Bytes read [4], normalized size [0x00000000], eof[false]"}));
}

TEST_F(ObjectFileA, RecordThatDoesNotDecodeIsNullAndSuccess) {
  LogCapture log;
  open(recordA("what is this") + recordA(form(2)));
  XNMessageBase* object = nullptr;
  App::TestMessage2 before;
  object = &before;
  EXPECT_EQ(handler_.GetObjectFromFile(object), FileHandlerSuccess);
  EXPECT_EQ(object, nullptr);
  EXPECT_TRUE(log.hasPart("BinarySerializer::unserialize", 0, "Error identifying the object received."));
  EXPECT_EQ(readA(), FileHandlerSuccess);
  EXPECT_THAT(numbers_, ElementsAre(2));
}

TEST_F(ObjectFileA, ObjectWithNoFieldSetIsARecordOfTwelveBytes) {
  open();
  App::TestMessage2 empty;
  unsigned written = 0;
  EXPECT_EQ(handler_.AddObjectToFile(empty, written), FileHandlerSuccess);
  EXPECT_EQ(written, 12u);
  EXPECT_EQ(toHex(bytes()), "00 00 00 08 02 00 00 00 dd 4b d4 1e");
}

// Beyond the edges: every result and line.

TEST_F(ObjectFileA, ResultsHaveTheirNumbers) {
  EXPECT_EQ(FileHandlerSuccess, 0);
  EXPECT_EQ(FileHandlerUnknownVersion, 1);
  EXPECT_EQ(FileHandlerNoData, 2);
  EXPECT_EQ(FileHandlerInvalidFile, 3);
  EXPECT_EQ(FileHandlerNoMemory, 4);
  EXPECT_EQ(FileHandlerReadFailed, 5);
  EXPECT_EQ(FileHandlerWriteFailed, 6);
}

TEST_F(ObjectFileA, RecordIsALengthAndTheBinaryForm) {
  open();
  App::TestMessage2 message = numbered(-3);
  unsigned written = 0;
  EXPECT_EQ(handler_.AddObjectToFile(message, written), FileHandlerSuccess);
  EXPECT_EQ(written, 24u);
  EXPECT_EQ(toHex(bytes()), "00 00 00 14 02 00 00 00 dd 4b d4 1e 5e b2 35 02 05 4a 4a 71 00 02 68 69");
}

TEST_F(ObjectFileA, RecordsComeBackInOrderAndThenNothing) {
  LogCapture log;
  CUlFile& file = open();
  for (int i = 1; i <= 3; ++i) {
    App::TestMessage2 message = numbered(i);
    EXPECT_EQ(handler_.AddObjectToFile(message), FileHandlerSuccess);
  }
  EXPECT_EQ(readA(), FileHandlerNoData) << "the position is the end";
  ASSERT_FALSE(file.Seek(0, 0, nullptr).IsError());
  for (int i = 1; i <= 3; ++i) EXPECT_EQ(readA(), FileHandlerSuccess);
  EXPECT_EQ(readA(), FileHandlerNoData);
  EXPECT_THAT(numbers_, ElementsAre(1, 2, 3));
  EXPECT_TRUE(log.empty());
}

TEST_F(ObjectFileA, RecordGoesToTheEndWhereverTheFileStands) {
  CUlFile& file = open(recordA(form(1)));
  App::TestMessage2 message = numbered(2);
  EXPECT_EQ(handler_.AddObjectToFile(message), FileHandlerSuccess);
  EXPECT_EQ(bytes(), recordA(form(1)) + recordA(form(2)));
  std::int64_t position = 0;
  ASSERT_FALSE(file.Tell(position).IsError());
  EXPECT_EQ(static_cast<std::size_t>(position), bytes().size());
}

TEST_F(ObjectFileA, NoFileIsInvalid) {
  LogCapture log;
  App::TestMessage2 message;
  CUlFile closed;
  XNMessageBaseFileHandler none, other(&closed), early(&closed);
  early.setSrcFile(nullptr);
  for (XNMessageBaseFileHandler* handler : {&none, &other, &early}) {
    unsigned written = 7;
    EXPECT_EQ(handler->AddObjectToFile(message, written), FileHandlerInvalidFile);
    EXPECT_EQ(written, 0u);
    EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{kAdd, 0, "Invalid File."}));
    log.clear();
    XNMessageBase* object = &message;
    EXPECT_EQ(handler->GetObjectFromFile(object), FileHandlerInvalidFile);
    EXPECT_EQ(object, &message) << "stays without success";
    EXPECT_TRUE(log.empty());
  }
}

TEST_F(ObjectFileA, ObjectWithoutABinaryFormIsNoData) {
  open(recordA(form(1)));
  OversizedMessage oversized;
  App::TestMessage2 first = numbered(1);
  EXPECT_EQ(handler_.AddObjectToFile(first), FileHandlerSuccess);
  LogCapture log;
  unsigned written = 7;
  EXPECT_EQ(handler_.AddObjectToFile(oversized.message(), written), FileHandlerNoData);
  EXPECT_EQ(written, 0u);
  EXPECT_TRUE(log.has(kAdd, 0, "Data Serialized is 0.Nothing to write."));
  EXPECT_EQ(bytes(), recordA(form(1)) + recordA(form(1))) << "not even the record before it once more";
}

TEST_F(ObjectFileA, ObjectWithoutDataInAFileWhoseEndIsNotFoundIsAFailedWrite) {
  open();
  OversizedMessage oversized;
  LogCapture log;
  FailingFileCalls calls;
  calls.seekError = EIO;
  EXPECT_EQ(handler_.AddObjectToFile(oversized.message()), FileHandlerWriteFailed);
  EXPECT_TRUE(log.has(kAdd, 0, "Failed to Dump Binary Into File, error=" + textOf(EIO)));
  EXPECT_FALSE(log.hasPart(kAdd, 0, "Nothing to write"));
}

TEST_F(ObjectFileA, FailedWriteOfTheLengthCountsNothing) {
  open();
  CUlCRC64 checksum;
  handler_.setCrC64(&checksum);
  App::TestMessage2 message = numbered(1);
  LogCapture log;
  FailingFileCalls calls;
  calls.writeError = ENOSPC;
  unsigned written = 7;
  EXPECT_EQ(handler_.AddObjectToFile(message, written), FileHandlerWriteFailed);
  EXPECT_EQ(written, 0u);
  EXPECT_THAT(log.lines(),
              ElementsAre(CapturedLine{kAdd, 0, "Failed to Dump Binary Into File, error=" + textOf(ENOSPC)}));
  EXPECT_EQ(checksum.GetCRC64(), CUlCRC64().GetCRC64());
}

TEST_F(ObjectFileA, FailedWriteOfTheDataLeavesTheLength) {
  open();
  CUlCRC64 checksum, expected;
  handler_.setCrC64(&checksum);
  App::TestMessage2 message = numbered(1);
  LogCapture log;
  FailingFileCalls calls;
  calls.writeError = EIO;
  calls.bytesBeforeError = 4;
  unsigned written = 7;
  EXPECT_EQ(handler_.AddObjectToFile(message, written), FileHandlerWriteFailed);
  EXPECT_EQ(written, 4u);
  EXPECT_THAT(log.lines(),
              ElementsAre(CapturedLine{kAdd, 0, "Failed to Dump Binary Into File, error=" + textOf(EIO)}));
  EXPECT_EQ(toHex(bytes()), "00 00 00 14");
  expected.UpdateCRC64(reinterpret_cast<const unsigned char*>("\0\0\0\x14"), 4);
  EXPECT_EQ(checksum.GetCRC64(), expected.GetCRC64());
}

TEST_F(ObjectFileA, FileWhoseEndIsNotFoundTakesNoRecord) {
  open(recordA(form(1)));
  App::TestMessage2 message = numbered(2);
  LogCapture log;
  FailingFileCalls calls;
  calls.appendError = EOPNOTSUPP;
  calls.seekError = EIO;
  EXPECT_EQ(handler_.AddObjectToFile(message), FileHandlerWriteFailed);
  EXPECT_THAT(log.lines(),
              ElementsAre(CapturedLine{kAdd, 0, "Failed to Dump Binary Into File, error=" + textOf(EIO)}));
  EXPECT_EQ(bytes(), recordA(form(1))) << "else the record could stand in the middle of another";
}

TEST_F(ObjectFileA, ReadErrorsAreFiveWithoutALine) {
  for (int before : {0, 1}) {
    LogCapture log;
    open(recordA(form(1)));
    FailingFileCalls calls;
    calls.readError = EIO;
    calls.readsBeforeError = before;
    EXPECT_EQ(readA(), FileHandlerReadFailed);
    EXPECT_TRUE(log.empty());
  }
}

TEST_F(ObjectFileA, EndThatCannotBeToldIsNone) {
  LogCapture log;
  open(recordA(form(1)) + "\1");
  FailingFileCalls calls;
  calls.statError = EIO;
  EXPECT_EQ(readA(), FileHandlerSuccess);
  EXPECT_EQ(readA(), FileHandlerNoData);
  EXPECT_THAT(
      log.lines(),
      ElementsAre(CapturedLine{
          kGet, 0,
          "Could not read data size from file. Bytes read [1], normalized size [0x00000001], eof[false]"}));
}

TEST_F(ObjectFileA, PipesCarryRecords) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  CUlFile to, from;
  from.Attach(ends[0], "from");
  to.Attach(ends[1], "to");
  handler_.setSrcFile(&to);
  for (int i = 1; i <= 2; ++i) {
    App::TestMessage2 message = numbered(i);
    EXPECT_EQ(handler_.AddObjectToFile(message), FileHandlerSuccess);
  }
  ASSERT_FALSE(to.Close().IsError());
  handler_.setSrcFile(&from);
  LogCapture log;
  EXPECT_EQ(readA(), FileHandlerSuccess);
  EXPECT_EQ(readA(), FileHandlerSuccess);
  EXPECT_EQ(readA(), FileHandlerNoData);
  EXPECT_THAT(numbers_, ElementsAre(1, 2));
  EXPECT_TRUE(log.empty()) << "its end is no error";
}

TEST_F(ObjectFileA, PipeThatEndsInsideALengthIsToldOf) {
  CUlFile from;
  attachPipeOf(from, std::string_view("\0\1", 2));
  handler_.setSrcFile(&from);
  LogCapture log;
  EXPECT_EQ(readA(), FileHandlerNoData);
  EXPECT_THAT(
      log.lines(),
      ElementsAre(CapturedLine{
          kGet, 0,
          "Could not read data size from file. Bytes read [2], normalized size [0x00000100], eof[true]"}));
}

TEST_F(ObjectFileA, ChecksumIsThatOfTheFile) {
  open();
  CUlCRC64 checksum, expected;
  handler_.setCrC64(&checksum);
  for (int i = 1; i <= 3; ++i) {
    App::TestMessage2 message = numbered(i);
    EXPECT_EQ(handler_.AddObjectToFile(message), FileHandlerSuccess);
  }
  const std::string written = bytes();
  expected.UpdateCRC64(reinterpret_cast<const unsigned char*>(written.data()),
                       static_cast<unsigned>(written.size()));
  EXPECT_EQ(checksum.GetCRC64(), expected.GetCRC64());
  ASSERT_FALSE(file_.Seek(0, 0, nullptr).IsError());
  EXPECT_EQ(readA(), FileHandlerSuccess);
  EXPECT_EQ(checksum.GetCRC64(), expected.GetCRC64()) << "reading adds nothing";
}

TEST_F(ObjectFileA, LengthThatTheFileCannotHoldIsInvalid) {
  for (const char* length : {"\xff\xff\xff\xff", "\x7f\xff\xff\xff", "\x80\x00\x00\x00"}) {
    LogCapture log;
    open(std::string(length, 4) + form(1));
    EXPECT_EQ(readA(), FileHandlerInvalidFile);
    EXPECT_TRUE(log.hasPart(kGet, 0, "Data read [20] expected ["));
  }
}

TEST_F(ObjectFileA, LargeRecordsComeWhole) {
  open();
  App::TestMessage2 large;
  large.setStrField(std::string(9 << 20, 'x'));
  EXPECT_EQ(handler_.AddObjectToFile(large), FileHandlerSuccess);
  App::TestMessage2 small = numbered(1);
  EXPECT_EQ(handler_.AddObjectToFile(small), FileHandlerSuccess);
  ASSERT_FALSE(file_.Seek(0, 0, nullptr).IsError());
  XNMessageBaseFileHandler fresh(&file_);  // whose buffer has to grow from nothing
  XNMessageBase* object = nullptr;
  ASSERT_EQ(fresh.GetObjectFromFile(object), FileHandlerSuccess);
  const MessagePtr owner(object);
  ASSERT_NE(object, nullptr);
  EXPECT_EQ(*object, large);
  EXPECT_EQ(readA(), FileHandlerSuccess);
  EXPECT_THAT(numbers_, ElementsAre(1));
}

TEST_F(ObjectFileA, FilesOfTheOtherFormatAreNotRead) {
  LogCapture log;
  open(kVersionField + recordB(form(1)));
  EXPECT_EQ(readA(), FileHandlerInvalidFile);
  EXPECT_THAT(numbers_, IsEmpty());
}

}  // namespace
}  // namespace zqxml
