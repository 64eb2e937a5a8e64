// Object files of format B: a version field, and lengths as decimal digits.
#include <tests/binary/object_files.h>
#include <tests/binary/oversized_message.h>
#include <zqxml/platform/crc64.h>

#include <cerrno>
#include <string>
#include <vector>

namespace zqxml {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kAppend[] = "XNMessageBaseFileHandler::appendBinaryBufferToFile";
constexpr char kRead[] = "XNMessageBaseFileHandler::readBinaryBufferFromFile";

class ObjectFileB : public ObjectFiles {
 protected:
  XNMessageBaseFileHandlerError append(std::vector<XNMessageBase*> objects) {
    return handler_.appendBinaryBufferToFile(objects);
  }
  /// A message whose binary form has this many bytes.
  static App::TestMessage2 ofSize(std::size_t size) {
    App::TestMessage2 message;
    message.setStrField(std::string(size - 8 - 4 - 2, 'x'));  // header, key, length of the text
    EXPECT_EQ(serialized(message).size(), size);
    return message;
  }
  void start() { ASSERT_FALSE(file_.Seek(0, 0, nullptr).IsError()); }

  App::TestMessage2 one_ = numbered(1), two_ = numbered(2);
};

TEST_F(ObjectFileB, FileOfAnotherVersionTakesNothing) {
  LogCapture log;
  open("2\0\0\0");
  EXPECT_EQ(append({&one_}), FileHandlerUnknownVersion);
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{kAppend, 0, "Unknown Binary Buffer Version :[2]"}));
  EXPECT_EQ(bytes(), "2");
}

TEST_F(ObjectFileB, NoObjectInAnEmptyFileIsTheVersionFieldAlone) {
  open();
  EXPECT_EQ(append({}), FileHandlerSuccess);
  EXPECT_EQ(toHex(bytes()), "31 00 00 00");
}

TEST_F(ObjectFileB, CountZeroChecksTheVersionAlone) {
  open(kVersionField + recordB(form(1)));
  EXPECT_EQ(readB(0), FileHandlerSuccess);
  EXPECT_EQ(readB(-1), FileHandlerSuccess);
  EXPECT_THAT(numbers_, IsEmpty());
  LogCapture log;
  open(std::string("3\0\0\0", 4) + recordB(form(1)));
  EXPECT_EQ(readB(0), FileHandlerUnknownVersion);
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{kRead, 0, "Unknown Binary Buffer Version :[3]"}));
}

TEST_F(ObjectFileB, MoreRecordsThanThereAreLeaveThoseThatWereRead) {
  LogCapture log;
  open(kVersionField + recordB(form(1)) + recordB(form(2)));
  EXPECT_EQ(readB(3), FileHandlerNoData);
  EXPECT_THAT(numbers_, ElementsAre(1, 2));
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{kRead, 0, "No more data available to read"}));
}

TEST_F(ObjectFileB, LengthOfTwoDigitsIsRead) {
  App::TestMessage2 message;
  message.setIntField(1);  // 8 + 4 + 1 bytes
  const std::string data = serialized(message).substr(0, 12);
  open(kVersionField + std::string("12\0\0", 4) + data + recordB(form(2)));
  LogCapture log;
  EXPECT_EQ(readB(2), FileHandlerSuccess);
  // One key without its value: what does not decode is left out, and the next record is found.
  EXPECT_THAT(numbers_, ElementsAre(2));
}

// Beyond the edges: every result and line.

TEST_F(ObjectFileB, FileIsAVersionFieldAndRecords) {
  open();
  EXPECT_EQ(append({&one_, &two_}), FileHandlerSuccess);
  EXPECT_EQ(toHex(bytes()),
            "31 00 00 00 "
            "32 30 00 00 02 00 00 00 dd 4b d4 1e 5e b2 35 02 02 4a 4a 71 00 02 68 69 "
            "32 30 00 00 02 00 00 00 dd 4b d4 1e 5e b2 35 02 04 4a 4a 71 00 02 68 69");
}

TEST_F(ObjectFileB, RecordsComeBackInOrderAsManyAsAskedFor) {
  LogCapture log;
  open();
  EXPECT_EQ(append({&one_, &two_, &one_}), FileHandlerSuccess);
  start();
  EXPECT_EQ(readB(2), FileHandlerSuccess);
  EXPECT_THAT(numbers_, ElementsAre(1, 2));
  EXPECT_EQ(readB(1), FileHandlerSuccess) << "in the middle of the file there is no version field";
  EXPECT_THAT(numbers_, ElementsAre(1, 2, 1));
  EXPECT_TRUE(log.empty());
}

TEST_F(ObjectFileB, RecordsAreAppendedToAFileOfTheFormat) {
  open(kVersionField + recordB(form(1)));
  EXPECT_EQ(append({&two_}), FileHandlerSuccess);
  EXPECT_EQ(bytes(), kVersionField + recordB(form(1)) + recordB(form(2)));
}

TEST_F(ObjectFileB, VersionFieldThatWasCutShortIsCompleted) {
  for (std::size_t held : {1u, 2u, 3u}) {
    open(kVersionField.substr(0, held));
    EXPECT_EQ(append({&one_}), FileHandlerSuccess);
    EXPECT_EQ(bytes(), kVersionField + recordB(form(1)));
    start();
    numbers_.clear();
    EXPECT_EQ(readB(1), FileHandlerSuccess);
    EXPECT_THAT(numbers_, ElementsAre(1));

    open(kVersionField.substr(0, held));
    LogCapture log;
    FailingFileCalls calls;
    calls.writeError = ENOSPC;
    EXPECT_EQ(append({&one_}), FileHandlerWriteFailed);
    EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{
                                 kAppend, 0, "Failed to Dump Binary Into File, error=" + textOf(ENOSPC)}));
  }
}

TEST_F(ObjectFileB, KeepsTakingEveryCallOnAPipeForItsStart) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  CUlFile to, from;
  from.Attach(ends[0], "from");
  to.Attach(ends[1], "to");
  handler_.setSrcFile(&to);
  for (int i = 0; i < 2; ++i) EXPECT_EQ(append({&one_, &two_}), FileHandlerSuccess);
  ASSERT_FALSE(to.Close().IsError());
  handler_.setSrcFile(&from);
  for (int i = 0; i < 2; ++i) EXPECT_EQ(readB(2), FileHandlerSuccess) << "each call has its version field";
  EXPECT_THAT(numbers_, ElementsAre(1, 2, 1, 2));
}

TEST_F(ObjectFileB, KeepsReadingTheVersionWhereTheFileStands) {
  open();
  EXPECT_EQ(append({&one_}), FileHandlerSuccess);
  LogCapture log;
  EXPECT_EQ(append({&two_}), FileHandlerUnknownVersion);
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{kAppend, 0, "Unknown Binary Buffer Version :[0]"}));
  start();
  EXPECT_EQ(append({&two_}), FileHandlerSuccess);
}

TEST_F(ObjectFileB, NoFileIsInvalid) {
  LogCapture log;
  CUlFile closed;
  XNMessageBaseFileHandler none, other(&closed);
  for (XNMessageBaseFileHandler* handler : {&none, &other}) {
    std::vector<XNMessageBase*> objects{&one_};
    EXPECT_EQ(handler->appendBinaryBufferToFile(objects), FileHandlerInvalidFile);
    EXPECT_EQ(handler->readBinaryBufferFromFile(objects, 1), FileHandlerInvalidFile);
    EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{kAppend, 0, "Invalid File."},
                                         CapturedLine{kRead, 0, "Invalid file ptr."}));
    EXPECT_EQ(objects.size(), 1u);
    log.clear();
  }
}

TEST_F(ObjectFileB, ObjectWithoutABinaryFormEndsTheAppending) {
  open();
  OversizedMessage oversized;
  for (XNMessageBase* bad :
       {static_cast<XNMessageBase*>(nullptr), static_cast<XNMessageBase*>(&oversized.message())}) {
    open();
    LogCapture log;
    EXPECT_EQ(append({&one_, bad, &two_}), FileHandlerNoData);
    EXPECT_TRUE(log.has(kAppend, 0, "Data Serialized is 0.Nothing to write."));
    EXPECT_EQ(bytes(), kVersionField + recordB(form(1)));
  }
}

TEST_F(ObjectFileB, LongestRecordHas9999Bytes) {
  open();
  App::TestMessage2 longest = ofSize(9999);
  EXPECT_EQ(append({&longest, &one_}), FileHandlerSuccess);
  EXPECT_EQ(bytes().substr(4, 4), "9999");
  start();
  EXPECT_EQ(readB(2), FileHandlerSuccess);
  EXPECT_THAT(numbers_, ElementsAre(0, 1));
}

TEST_F(ObjectFileB, RecordOf10000BytesIsRefusedAndNothingOfItWritten) {
  open();
  App::TestMessage2 tooLong = ofSize(10000);
  LogCapture log;
  EXPECT_EQ(append({&one_, &tooLong, &two_}), FileHandlerWriteFailed);
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{
                               kAppend, 0, "Failed to Dump Binary Into File, error=" + textOf(EMSGSIZE)}));
  EXPECT_EQ(bytes(), kVersionField + recordB(form(1)));
}

TEST_F(ObjectFileB, EveryFailedWriteIsSix) {
  // The version field, a record, and the second record.
  for (int before : {0, 1, 2}) {
    open();
    LogCapture log;
    FailingFileCalls calls;
    calls.writeError = ENOSPC;
    calls.writesBeforeError = before;
    EXPECT_EQ(append({&one_, &two_}), FileHandlerWriteFailed);
    EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{
                                 kAppend, 0, "Failed to Dump Binary Into File, error=" + textOf(ENOSPC)}));
  }
}

TEST_F(ObjectFileB, FileWithoutSizeOrEndTakesNothing) {
  for (bool size : {true, false}) {
    open(kVersionField);
    LogCapture log;
    FailingFileCalls calls;
    (size ? calls.statError : calls.seekError) = EIO;
    EXPECT_EQ(append({&one_}), FileHandlerWriteFailed);
    EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{
                                 kAppend, 0, "Failed to Dump Binary Into File, error=" + textOf(EIO)}));
    EXPECT_EQ(bytes(), kVersionField);
  }
}

TEST_F(ObjectFileB, VersionThatCannotBeReadCountsAsZero) {
  open(kVersionField + recordB(form(1)));
  LogCapture log;
  FailingFileCalls calls;
  calls.readError = EIO;
  EXPECT_EQ(append({&one_}), FileHandlerUnknownVersion);
  EXPECT_EQ(readB(1), FileHandlerUnknownVersion);
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{kAppend, 0, "Unknown Binary Buffer Version :[0]"},
                                       CapturedLine{kRead, 0, "Unknown Binary Buffer Version :[0]"}));
}

TEST_F(ObjectFileB, EmptyFileHasNoVersionToRead) {
  open();
  LogCapture log;
  EXPECT_EQ(readB(1), FileHandlerUnknownVersion);
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{kRead, 0, "Unknown Binary Buffer Version :[0]"}));
}

TEST_F(ObjectFileB, FieldsAreReadAsTheCLibraryReadsNumbers) {
  for (const char* version : {"1   ", " 1\0\0", "+1\0\0", "1xyz", "0001"}) {
    open(std::string(version, 4) + recordB(form(1)));
    EXPECT_EQ(readB(1), FileHandlerSuccess) << version;
  }
  for (const char* version : {"abcd", "\0\0\0\1", "-1\0\0", "10\0\0", "    "}) {
    LogCapture log;
    open(std::string(version, 4) + recordB(form(1)));
    EXPECT_EQ(readB(1), FileHandlerUnknownVersion) << version;
  }
  open(kVersionField + "0020" + form(1) + "20  " + form(2) + " 20x" + form(3));
  numbers_.clear();
  EXPECT_EQ(readB(3), FileHandlerSuccess);
  EXPECT_THAT(numbers_, ElementsAre(1, 2, 3));
}

TEST_F(ObjectFileB, LengthZeroOrUnreadableIsTheEnd) {
  for (const std::string& length : {std::string(4, '\0'), std::string("0\0\0\0", 4), std::string("zero")}) {
    open(kVersionField + length + recordB(form(1)));
    LogCapture log;
    EXPECT_EQ(readB(1), FileHandlerNoData);
    EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{kRead, 0, "No more data available to read"}));
  }
}

TEST_F(ObjectFileB, FileThatEndsBehindALengthIsAtItsEnd) {
  open(kVersionField + "20");
  LogCapture log;
  EXPECT_EQ(readB(1), FileHandlerNoData);
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{kRead, 0, "No more data available to read"}));
}

TEST_F(ObjectFileB, ShortRecordIsWhatWasRead) {
  // The text that ends the record is cut: it does not decode, and nothing but these bytes is looked at.
  open(kVersionField + recordB(form(1)).substr(0, 22));
  LogCapture log;
  EXPECT_EQ(readB(1), FileHandlerSuccess);
  EXPECT_THAT(numbers_, IsEmpty());
  EXPECT_TRUE(log.has("BinarySerializer::unserialize", 0,
                      "Error unserializing from buffer on object [App_TestMessage2]"));
  // Cut between two fields it decodes.
  open(kVersionField + recordB(form(1)).substr(0, 4 + 8 + 5));
  EXPECT_EQ(readB(1), FileHandlerSuccess);
  EXPECT_THAT(numbers_, ElementsAre(1));
}

TEST_F(ObjectFileB, KeepsTakingAReadErrorForTheEnd) {
  for (int before : {1, 2}) {
    open(kVersionField + recordB(form(1)));
    LogCapture log;
    FailingFileCalls calls;
    calls.readError = EIO;
    calls.readsBeforeError = before;
    EXPECT_EQ(readB(1), FileHandlerNoData);
    EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{kRead, 0, "No more data available to read"}));
  }
}

TEST_F(ObjectFileB, NegativeLengthIsHugeAndPassedOver) {
  const std::string rest(200000, 'x');
  open(kVersionField + std::string("-1\0\0", 4) + rest);
  LogCapture log;
  EXPECT_EQ(readB(2), FileHandlerNoData);
  EXPECT_THAT(numbers_, IsEmpty());
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{"BinarySerializer::unserialize", 0,
                                                    "[Buffer received for unserialization is not set]"},
                                       CapturedLine{kRead, 0, "No more data available to read"}));
  std::int64_t position = 0;
  ASSERT_FALSE(file_.Tell(position).IsError());
  EXPECT_EQ(static_cast<std::size_t>(position), bytes().size());
}

/// A file that goes on and on behind its first bytes.
class EndlessFile : public FailingFileCalls {
 public:
  explicit EndlessFile(int realReads) : realReads_(realReads) {}
  ssize_t read(int descriptor, void* data, std::size_t size) override {
    return realReads_-- > 0 ? FailingFileCalls::read(descriptor, data, size) : static_cast<ssize_t>(size);
  }

 private:
  int realReads_;
};

TEST_F(ObjectFileB, RecordOfAHugeLengthThatIsAllThereIsPassedOverAndCounts) {
  open(kVersionField + std::string("-1\0\0", 4));
  LogCapture log;
  EndlessFile calls(2);  // the version and the length
  EXPECT_EQ(readB(1), FileHandlerSuccess);
  EXPECT_THAT(numbers_, IsEmpty());
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{"BinarySerializer::unserialize", 0,
                                                    "[Buffer received for unserialization is not set]"}));
}

TEST_F(ObjectFileB, NegativeLengthAtTheEndIsTheEnd) {
  open(kVersionField + std::string("-1\0\0", 4));
  LogCapture log;
  EXPECT_EQ(readB(1), FileHandlerNoData);
  EXPECT_THAT(log.lines(), ElementsAre(CapturedLine{kRead, 0, "No more data available to read"}));
}

TEST_F(ObjectFileB, ReadErrorBehindAHugeLengthIsFive) {
  open(kVersionField + std::string("-1\0\0", 4) + std::string(200000, 'x'));
  LogCapture log;
  FailingFileCalls calls;
  calls.readError = EIO;
  calls.readsBeforeError = 3;  // the version, the length, one chunk
  EXPECT_EQ(readB(1), FileHandlerReadFailed);
  EXPECT_THAT(log.lines(),
              ElementsAre(CapturedLine{kRead, 0, "Failed to Read from UlFile, error=" + textOf(EIO)}));
}

TEST_F(ObjectFileB, ObjectThatDoesNotDecodeIsLeftOutAndCounts) {
  open(kVersionField + recordB("what is this") + recordB(form(1)) + recordB(form(2)));
  LogCapture log;
  EXPECT_EQ(readB(2), FileHandlerSuccess);
  EXPECT_THAT(numbers_, ElementsAre(1));
}

TEST_F(ObjectFileB, ChecksumIsNotUsed) {
  open();
  CUlCRC64 checksum;
  handler_.setCrC64(&checksum);
  EXPECT_EQ(append({&one_}), FileHandlerSuccess);
  EXPECT_EQ(checksum.GetCRC64(), 0u);
}

TEST_F(ObjectFileB, FilesOfTheOtherFormatAreNotRead) {
  open(recordA(form(1)));
  LogCapture log;
  EXPECT_EQ(readB(1), FileHandlerUnknownVersion);
  start();
  EXPECT_EQ(append({&one_}), FileHandlerUnknownVersion);
  EXPECT_EQ(bytes(), recordA(form(1)));
}

}  // namespace
}  // namespace zqxml
