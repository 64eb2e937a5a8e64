// Memory and object files: how much the handler takes, and what it answers when there is none.
#include <sys/mman.h>
#include <tests/binary/object_files.h>
#include <tests/logging/counted_allocations.h>
#include <zqxml/binary/internal/record_format.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string>
#include <utility>

namespace zqxml {
namespace {

/// What the heap may give more for one and the same request.
constexpr std::size_t kNoise = 2000;

class ObjectFileMemory : public ObjectFiles {
 protected:
  /// What appending `count` records of 2 KB takes, and what reading them takes.
  std::pair<std::size_t, std::size_t> heapOfFile(int count, unsigned heldBack) {
    open();
    App::TestMessage2 message = numbered(1);
    message.setStrField(std::string(2000, 'x'));
    handler_.setSrcFile(nullptr);
    const std::size_t appending = peakHeapOf([&] {
      CUlFile file(path_, CUlFile::Mode::kReadWrite);
      EXPECT_FALSE(file.SetAppendBuffer(heldBack).IsError());
      XNMessageBaseFileHandler handler(&file);
      for (int i = 0; i < count; ++i) ASSERT_EQ(handler.AddObjectToFile(message), FileHandlerSuccess);
      EXPECT_FALSE(file.Close().IsError());
    });
    const std::size_t reading = peakHeapOf([&] {
      CUlFile file(path_);
      XNMessageBaseFileHandler handler(&file);
      XNMessageBase* object = nullptr;
      for (int i = 0; i < count; ++i) {
        ASSERT_EQ(handler.GetObjectFromFile(object), FileHandlerSuccess);
        const MessagePtr owner(object);
        ASSERT_EQ(*object, message);
      }
      EXPECT_EQ(handler.GetObjectFromFile(object), FileHandlerNoData);
    });
    return {appending, reading};
  }
};

TEST_F(ObjectFileMemory, StaysTheSameHoweverLongTheFile) {
  for (unsigned heldBack : {0U, 65536U}) {
    const auto [appendingShort, readingShort] = heapOfFile(1000, heldBack);
    EXPECT_GT(std::filesystem::file_size(path_), 2000000U);
    const auto [appendingLong, readingLong] = heapOfFile(10000, heldBack);
    EXPECT_GT(std::filesystem::file_size(path_), 20000000U);
    EXPECT_LT(appendingLong, appendingShort + kNoise);
    EXPECT_LT(readingLong, readingShort + kNoise);
    EXPECT_LT(appendingLong, heldBack + 20000U);
    EXPECT_LT(readingLong, 100000U) << "64 KiB ahead, a record and an object";
  }
}

TEST_F(ObjectFileMemory, LengthTakesNoneBeforeItsBytesArrive) {
  open("\xff\xff\xff\xff" + form(1));
  LogCapture log;
  EXPECT_LT(peakHeapOf([&] { EXPECT_EQ(readA(), FileHandlerInvalidFile); }), std::size_t{2} << 20);
}

/// A file that takes everything without looking at it.
class AnyWrite : public FailingFileCalls {
 public:
  std::uint64_t written = 0;
  ssize_t append(int, const struct iovec* pieces, int count) override {
    std::uint64_t size = 0;
    for (int i = 0; i < count; ++i) size += pieces[i].iov_len;
    size = std::min(size, std::uint64_t{0x7ffff000});  // as the system
    written += size;
    return static_cast<ssize_t>(size);
  }
};

TEST_F(ObjectFileMemory, RecordOf4GibIsRefusedAndOneByteLessIsNot) {
  CUlFile& file = open();
  AnyWrite calls;
  constexpr std::uint64_t kGib4 = std::uint64_t{4} << 30;
  // Addresses without memory: nothing reads there.
  void* place = mmap(nullptr, kGib4, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  ASSERT_NE(place, MAP_FAILED);
  const char* bytes = static_cast<const char*>(place);
  for (std::uint64_t data : {kGib4, kGib4 - 1, kGib4 - 4}) {
    std::uint64_t written = 9;
    EXPECT_EQ(record::appendA(file, {bytes, data}, written).GetCode(), EMSGSIZE);
    EXPECT_EQ(written, 0U);
    EXPECT_EQ(calls.written, 0U);
  }
  std::uint64_t written = 0;
  EXPECT_FALSE(record::appendA(file, {bytes, kGib4 - 5}, written).IsError());
  EXPECT_EQ(written, kGib4 - 1) << "with its length";
  EXPECT_EQ(calls.written, written);
  munmap(place, kGib4);
}

#ifndef ZQXML_ALLOCATOR_IS_TAKEN

TEST_F(ObjectFileMemory, RecordWithoutMemoryIsFourAndTheNextOneIsRead) {
  LogCapture log;
  App::TestMessage2 large = numbered(1);
  large.setStrField(std::string(3 << 20, 'x'));
  open(recordA(form(7)) + recordA(serialized(large)) + recordA(form(8)));
  XNMessageBase* object = nullptr;
  App::TestMessage2 before;
  object = &before;
  failAllocationAfter(0);
  EXPECT_EQ(handler_.GetObjectFromFile(object), FileHandlerNoMemory);
  EXPECT_FALSE(cancelFailure());
  EXPECT_EQ(object, &before) << "stays without success";

  // A large record's memory grows as it arrives, and can fail each time.
  const auto start = static_cast<std::int64_t>(recordA(form(7)).size());
  for (std::size_t allocation : {0U, 1U, 2U}) {
    XNMessageBaseFileHandler fresh(&file_);
    ASSERT_FALSE(file_.Seek(start, 0, nullptr).IsError());
    failAllocationAfter(allocation);
    EXPECT_EQ(fresh.GetObjectFromFile(object), FileHandlerNoMemory) << allocation;
    EXPECT_FALSE(cancelFailure());
  }
  EXPECT_TRUE(log.empty());

  ASSERT_FALSE(file_.Seek(0, 0, nullptr).IsError());
  EXPECT_EQ(readA(), FileHandlerSuccess);
  EXPECT_EQ(readA(), FileHandlerSuccess);
  EXPECT_EQ(readA(), FileHandlerSuccess) << "the handler is as good as before";
  EXPECT_THAT(numbers_, testing::ElementsAre(7, 1, 8));
}

TEST_F(ObjectFileMemory, ObjectWithoutMemoryForItsFormIsNoData) {
  open();
  App::TestMessage2 message = numbered(1);
  LogCapture log;
  unsigned written = 7;
  failAllocationAfter(0);
  EXPECT_EQ(handler_.AddObjectToFile(message, written), FileHandlerNoData);
  EXPECT_EQ(written, 0U);
  EXPECT_TRUE(
      log.has("XNMessageBaseFileHandler::AddObjectToFile", 0, "Data Serialized is 0.Nothing to write."));
  EXPECT_EQ(bytes(), "");
  EXPECT_EQ(handler_.AddObjectToFile(message, written), FileHandlerSuccess);
}

TEST_F(ObjectFileMemory, FileIsReadWithoutMemoryToReadAhead) {
  std::string whole;
  for (int i = 0; i < 50; ++i) whole += recordA(form(i));
  CUlFile& file = open(whole);
  for (std::size_t at = 0; at < whole.size(); at += 10) {
    char part[10];
    unsigned count = 0;
    failAllocationAfter(0);
    ASSERT_FALSE(file.Read(part, sizeof part, &count).IsError());
    cancelFailure();
    ASSERT_EQ(std::string_view(part, count), std::string_view(whole).substr(at, 10));
  }
  failAllocationAfter(0);
  EXPECT_EQ(file.SetAppendBuffer(1000).GetCode(), ENOMEM);
  cancelFailure();
}

#endif

}  // namespace
}  // namespace zqxml
