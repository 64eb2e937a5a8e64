// What holds for object files whatever the messages, and wherever writing fails.
#include <rapidcheck/gtest.h>
#include <tests/binary/object_files.h>
#include <tests/support/message_dump.h>
#include <tests/support/random_message.h>

#include <cerrno>
#include <string>
#include <vector>

namespace zqxml {
namespace {

constexpr char kAdd[] = "XNMessageBaseFileHandler::AddObjectToFile";

std::vector<OpenMessage> anyMessages() {
  std::vector<OpenMessage> messages;
  const int count = *rc::gen::inRange(0, 5);
  for (int i = 0; i < count; ++i) messages.push_back(*randomMessages(kBinaryLosses));
  return messages;
}

/// Expects the objects to equal the messages, and frees them.
void requireEqual(const std::vector<XNMessageBase*>& objects, const std::vector<OpenMessage>& messages) {
  std::vector<MessagePtr> owners(objects.begin(), objects.end());
  RC_ASSERT(owners.size() == messages.size());
  for (std::size_t i = 0; i < owners.size(); ++i) {
    RC_ASSERT(dump(*owners[i]) == dump(messages[i]));
    RC_ASSERT(*owners[i] == messages[i]);
  }
}

RC_GTEST_PROP(ObjectFileLaws, WhatIsAddedComesBackEqual, ()) {
  std::vector<OpenMessage> messages = anyMessages();
  const ScratchFolder folder;
  CUlFile file(folder.path("objects"), CUlFile::Mode::kReadWrite);
  XNMessageBaseFileHandler handler(&file);
  std::uint64_t total = 0;
  for (OpenMessage& message : messages) {
    unsigned written = 0;
    RC_ASSERT(handler.AddObjectToFile(message, written) == FileHandlerSuccess);
    total += written;
  }
  RC_ASSERT(folder.read("objects").size() == total);
  RC_ASSERT(!file.Seek(0, 0, nullptr).IsError());
  std::vector<XNMessageBase*> objects;
  XNMessageBase* object = nullptr;
  while (handler.GetObjectFromFile(object) == FileHandlerSuccess) objects.push_back(object);
  requireEqual(objects, messages);
}

RC_GTEST_PROP(ObjectFileLaws, WhatIsAppendedComesBackEqual, ()) {
  std::vector<OpenMessage> messages = anyMessages();
  std::vector<XNMessageBase*> pointers;
  for (OpenMessage& message : messages) {
    RC_PRE(serialized(message).size() < 10000);
    pointers.push_back(&message);
  }
  const ScratchFolder folder;
  CUlFile file(folder.path("objects"), CUlFile::Mode::kReadWrite);
  XNMessageBaseFileHandler handler(&file);
  RC_ASSERT(handler.appendBinaryBufferToFile(pointers) == FileHandlerSuccess);
  RC_ASSERT(!file.Seek(0, 0, nullptr).IsError());
  std::vector<XNMessageBase*> objects;
  RC_ASSERT(handler.readBinaryBufferFromFile(objects, static_cast<int>(messages.size())) ==
            FileHandlerSuccess);
  requireEqual(objects, messages);
}

/// How writing goes wrong.
struct Fault {
  const char* name;
  int error;
  std::size_t largestTransfer;
  int interruptions;
  int appendError = 0;  // of a file system that cannot append in one step
  friend std::ostream& operator<<(std::ostream& out, const Fault& fault) { return out << fault.name; }
};

class ObjectFileFaults : public ObjectFiles, public testing::WithParamInterface<Fault> {
 protected:
  static constexpr int kRecords = 3;

  /// Lets the disk hold `room` bytes more.
  static void limit(FailingFileCalls& calls, std::size_t room) {
    calls.writeError = GetParam().error;
    calls.bytesBeforeError = room;
    calls.largestTransfer = GetParam().largestTransfer;
    calls.interruptions = GetParam().interruptions;
    calls.appendError = GetParam().appendError;
  }
};

TEST_P(ObjectFileFaults, EveryAcknowledgedRecordOfFormatAStaysReadable) {
  const std::size_t record = recordA(form(1)).size();
  for (std::size_t room = 0; room <= kRecords * record; ++room) {
    SCOPED_TRACE(room);
    open();
    int acknowledged = 0;
    {
      FailingFileCalls calls;
      limit(calls, room);
      LogCapture log;
      unsigned written = 0;
      for (int i = 0; i < kRecords; ++i) {
        App::TestMessage2 message = numbered(i);
        const XNMessageBaseFileHandlerError result = handler_.AddObjectToFile(message, written);
        if (result == FileHandlerSuccess) {
          EXPECT_EQ(written, record);
          ++acknowledged;
          continue;
        }
        EXPECT_EQ(result, FileHandlerWriteFailed);
        EXPECT_EQ(written, room % record < 4 ? 0u : 4u);
        EXPECT_TRUE(log.has(kAdd, 0, "Failed to Dump Binary Into File, error=" + textOf(GetParam().error)));
        break;
      }
    }
    ASSERT_EQ(static_cast<std::size_t>(acknowledged), room / record);
    EXPECT_EQ(bytes().size(), room) << "what was written stays";

    ASSERT_FALSE(file_.Seek(0, 0, nullptr).IsError());
    LogCapture log;
    numbers_.clear();
    for (int i = 0; i < acknowledged; ++i) ASSERT_EQ(readA(), FileHandlerSuccess);
    for (int i = 0; i < acknowledged; ++i) EXPECT_EQ(numbers_[static_cast<std::size_t>(i)], i);
    EXPECT_EQ(readA(), room % record >= 4 ? FileHandlerInvalidFile : FileHandlerNoData);

    // What a program does that knows where its last whole record ends.
    ASSERT_FALSE(file_.Truncate(static_cast<std::uint64_t>(acknowledged) * record).IsError());
    App::TestMessage2 next = numbered(9);
    EXPECT_EQ(handler_.AddObjectToFile(next), FileHandlerSuccess);
    ASSERT_FALSE(file_.Seek(static_cast<std::int64_t>(bytes().size() - record), 0, nullptr).IsError());
    EXPECT_EQ(readA(), FileHandlerSuccess);
    EXPECT_EQ(numbers_.back(), 9);
  }
}

TEST_P(ObjectFileFaults, RecordsHeldBackAreAcknowledgedByTheClosedFile) {
  const std::size_t record = recordA(form(1)).size();
  for (std::size_t room = 0; room <= kRecords * record; ++room) {
    SCOPED_TRACE(room);
    open();
    ASSERT_FALSE(file_.SetAppendBuffer(static_cast<unsigned>(record) + 5).IsError());
    {
      FailingFileCalls calls;
      limit(calls, room);
      LogCapture log;
      bool taken = true;
      for (int i = 0; i < kRecords && taken; ++i) {
        App::TestMessage2 message = numbered(i);
        taken = handler_.AddObjectToFile(message) == FileHandlerSuccess;
        EXPECT_TRUE(taken ||
                    log.has(kAdd, 0, "Failed to Dump Binary Into File, error=" + textOf(GetParam().error)));
      }
      const bool closed = !file_.Close().IsError();
      EXPECT_EQ(taken && closed, room == kRecords * record);
    }
    open(bytes());
    EXPECT_LE(bytes().size(), room);
    LogCapture log;
    numbers_.clear();
    const std::size_t whole = bytes().size() / record;
    for (std::size_t i = 0; i < whole; ++i) ASSERT_EQ(readA(), FileHandlerSuccess);
    for (std::size_t i = 0; i < whole; ++i) EXPECT_EQ(numbers_[i], static_cast<int>(i));
    EXPECT_GE(whole, room / record) << "what the disk can hold is there";
  }
}

TEST_P(ObjectFileFaults, EveryWholeRecordOfFormatBStaysReadable) {
  const std::size_t record = recordB(form(1)).size();
  const std::size_t whole = kVersionField.size() + kRecords * record;
  for (std::size_t room = 0; room <= whole; ++room) {
    SCOPED_TRACE(room);
    open();
    LogCapture log;
    {
      FailingFileCalls calls;
      limit(calls, room);
      App::TestMessage2 first = numbered(0), second = numbered(1), third = numbered(2);
      std::vector<XNMessageBase*> objects{&first, &second, &third};
      EXPECT_EQ(handler_.appendBinaryBufferToFile(objects),
                room < whole ? FileHandlerWriteFailed : FileHandlerSuccess);
    }
    EXPECT_EQ(bytes().size(), room);
    if (room < kVersionField.size()) continue;
    ASSERT_FALSE(file_.Seek(0, 0, nullptr).IsError());
    numbers_.clear();
    const int held = static_cast<int>((room - kVersionField.size()) / record);
    EXPECT_EQ(readB(held), FileHandlerSuccess);
    ASSERT_EQ(numbers_.size(), static_cast<std::size_t>(held));
    for (int i = 0; i < held; ++i) EXPECT_EQ(numbers_[static_cast<std::size_t>(i)], i);
  }
}

INSTANTIATE_TEST_SUITE_P(, ObjectFileFaults,
                         testing::Values(Fault{"FullDisk", ENOSPC, 1000, 0}, Fault{"BadDisk", EIO, 1000, 0},
                                         Fault{"ShortWrites", ENOSPC, 3, 0}, Fault{"SingleBytes", EIO, 1, 0},
                                         Fault{"Signals", ENOSPC, 1000, 2},
                                         Fault{"ShortWritesAndSignals", EIO, 2, 1},
                                         Fault{"NoAppending", ENOSPC, 1000, 1, EOPNOTSUPP}),
                         [](const auto& fault) { return std::string(fault.param.name); });

}  // namespace
}  // namespace zqxml
