// CUlFile reads ahead, and nobody notices.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <tests/support/failing_file_calls.h>
#include <tests/support/scratch_folder.h>
#include <unistd.h>
#include <zqxml/platform/file.h>

#include <algorithm>
#include <limits>
#include <random>
#include <string>

namespace zqxml {
namespace {

std::string counting(std::size_t size) {
  std::string bytes(size, '\0');
  for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(i * 7 + i / 251);
  return bytes;
}

std::string read(CUlFile& file, unsigned size) {
  std::string bytes(size, '\0');
  unsigned count = 0;
  EXPECT_FALSE(file.Read(bytes.data(), size, &count).IsError());
  bytes.resize(count);
  return bytes;
}

std::int64_t positionOf(CUlFile& file) {
  std::int64_t position = -1;
  EXPECT_FALSE(file.Tell(position).IsError());
  return position;
}

class ReadingAhead : public testing::Test {
 protected:
  static constexpr std::size_t kSize = 300000;

  /// Reads so far that the system's position is ahead.
  void readOn() {
    for (int i = 0; i < 20; ++i, at_ += 100) EXPECT_EQ(read(file_, 100), bytes_.substr(at_, 100));
    const int before = calls_.reads;
    EXPECT_EQ(read(file_, 1), bytes_.substr(at_, 1));
    ++at_;
    ASSERT_EQ(calls_.reads, before) << "nothing is ahead";
  }

  ScratchFolder folder_;
  std::string bytes_ = counting(kSize);
  std::string path_ = folder_.write("f", bytes_);
  FailingFileCalls calls_;
  CUlFile file_{path_, CUlFile::Mode::kReadWrite};
  std::size_t at_ = 0;
};

TEST_F(ReadingAhead, SmallReadsInSequenceTakeFewCalls) {
  for (; at_ < kSize; at_ += 10) ASSERT_EQ(read(file_, 10), bytes_.substr(at_, 10));
  EXPECT_EQ(read(file_, 10), "");
  EXPECT_LT(calls_.reads, 25);
}

TEST_F(ReadingAhead, FirstReadBehindASeekFetchesNoMoreThanIsAskedFor) {
  for (std::int64_t place : {200000, 5, 77777}) {
    readOn();
    ASSERT_FALSE(file_.Seek(place, 0, nullptr).IsError());
    EXPECT_EQ(read(file_, 8), bytes_.substr(static_cast<std::size_t>(place), 8));
    folder_.write("f", std::string(kSize, '!'));  // by another
    EXPECT_EQ(read(file_, 8), "!!!!!!!!");
    folder_.write("f", bytes_);
    at_ = static_cast<std::size_t>(place) + 16;
  }
}

TEST_F(ReadingAhead, TellsTheCallersPositionNotTheSystems) {
  readOn();
  EXPECT_EQ(positionOf(file_), static_cast<std::int64_t>(at_));
  EXPECT_EQ(read(file_, 5), bytes_.substr(at_, 5)) << "telling changes nothing";
}

TEST_F(ReadingAhead, SeeksFromTheCallersPosition) {
  readOn();
  std::int64_t position = 0;
  ASSERT_FALSE(file_.Seek(-7, 1, &position).IsError());
  EXPECT_EQ(position, static_cast<std::int64_t>(at_ - 7));
  EXPECT_EQ(read(file_, 5), bytes_.substr(at_ - 7, 5));
  ASSERT_FALSE(file_.Seek(0, 0, nullptr).IsError());
  at_ = 0;
  readOn();
  ASSERT_FALSE(file_.Seek(-3, 2, nullptr).IsError());
  EXPECT_EQ(read(file_, 9), bytes_.substr(kSize - 3));
}

TEST_F(ReadingAhead, FailedSeekLeavesThePosition) {
  readOn();
  EXPECT_EQ(file_.Seek(-1, 0, nullptr).GetCode(), EINVAL);
  EXPECT_EQ(file_.Seek(std::numeric_limits<std::int64_t>::min(), 1, nullptr).GetCode(), EINVAL);
  calls_.seekError = EIO;
  EXPECT_EQ(file_.Seek(0, 0, nullptr).GetCode(), EIO);
  calls_.seekError = 0;
  EXPECT_EQ(read(file_, 5), bytes_.substr(at_, 5));
}

TEST_F(ReadingAhead, WritesAtTheCallersPosition) {
  readOn();
  ASSERT_FALSE(file_.Write("here", 4, nullptr).IsError());
  EXPECT_EQ(read(file_, 5), bytes_.substr(at_ + 4, 5));
  EXPECT_EQ(folder_.read("f").substr(at_, 4), "here");
  EXPECT_EQ(folder_.read("f").size(), kSize);
}

TEST_F(ReadingAhead, WritesNothingWhereThePositionCannotBeSet) {
  readOn();
  calls_.seekError = EIO;
  unsigned count = 7;
  EXPECT_EQ(file_.Write("here", 4, &count).GetCode(), EIO);
  EXPECT_EQ(count, 0U);
  EXPECT_EQ(file_.Truncate(0).GetCode(), EIO);
  EXPECT_EQ(folder_.read("f"), bytes_);
}

TEST_F(ReadingAhead, CutOffBytesAreReadNoMore) {
  readOn();
  ASSERT_FALSE(file_.Truncate(at_ + 3).IsError());
  EXPECT_EQ(read(file_, 50), bytes_.substr(at_, 3));
  EXPECT_EQ(positionOf(file_), static_cast<std::int64_t>(at_ + 3));
}

TEST_F(ReadingAhead, EndIsTheCallersEnd) {
  ASSERT_FALSE(file_.Close().IsError());
  path_ = folder_.write("f", bytes_.substr(0, 4000));
  ASSERT_FALSE(file_.Open(path_, CUlFile::Mode::kRead).IsError());
  for (int i = 0; i < 39; ++i) (void)read(file_, 100);
  const int before = calls_.reads;
  bool atEnd = true;
  EXPECT_FALSE(file_.IsEOF(atEnd).IsError());
  EXPECT_FALSE(atEnd);
  EXPECT_EQ(read(file_, 100), bytes_.substr(3900, 100));
  EXPECT_EQ(calls_.reads, before) << "the system was at the end already";
  EXPECT_FALSE(file_.IsEOF(atEnd).IsError());
  EXPECT_TRUE(atEnd);
}

TEST_F(ReadingAhead, FileThatGrowsIsReadOn) {
  ASSERT_FALSE(file_.Close().IsError());
  path_ = folder_.write("f", bytes_.substr(0, 4000));
  ASSERT_FALSE(file_.Open(path_, CUlFile::Mode::kRead).IsError());
  CUlFile other(path_, CUlFile::Mode::kReadWrite);
  for (int i = 0; i < 41; ++i) (void)read(file_, 100);
  EXPECT_EQ(read(file_, 10), "");
  for (std::size_t size = 4000; size < 90000; size += 1000) {
    ASSERT_FALSE(other.Append(bytes_.substr(size, 1000), {}, nullptr).IsError());
    ASSERT_EQ(read(file_, 600), bytes_.substr(size, 600));
    ASSERT_EQ(read(file_, 600), bytes_.substr(size + 600, 400));
  }
}

TEST_F(ReadingAhead, ErrorComesWhereItsBytesAreAskedFor) {
  readOn();
  calls_.readError = EIO;
  std::string rest(kSize, '\0');
  unsigned count = 0;
  EXPECT_EQ(file_.Read(rest.data(), static_cast<unsigned>(kSize - at_), &count).GetCode(), EIO);
  EXPECT_GT(count, 0U) << "what is ahead is there";
  EXPECT_EQ(rest.substr(0, count), bytes_.substr(at_, count));
  EXPECT_EQ(positionOf(file_), static_cast<std::int64_t>(at_ + count));
}

TEST_F(ReadingAhead, SurvivesAMove) {
  readOn();
  CUlFile other = std::move(file_);
  EXPECT_EQ(read(other, 5), bytes_.substr(at_, 5));
  ASSERT_FALSE(file_.Open(path_, CUlFile::Mode::kRead)
                   .IsError());  // NOLINT(bugprone-use-after-move): what is left behind is defined
  EXPECT_EQ(read(file_, 5), bytes_.substr(0, 5));
}

TEST_F(ReadingAhead, ReopenedFileStartsAfresh) {
  readOn();
  EXPECT_FALSE(file_.Close().IsError());
  char byte = 0;
  EXPECT_EQ(file_.Read(&byte, 1, nullptr).GetCode(), EBADF);
  ASSERT_FALSE(file_.Open(folder_.write("g", "other"), CUlFile::Mode::kRead).IsError());
  EXPECT_EQ(read(file_, 10), "other");
}

TEST_F(ReadingAhead, WorksWithSignalsAndShortTransfers) {
  calls_.interruptions = 1;
  calls_.largestTransfer = 37;
  for (; at_ < 20000; at_ += 100) ASSERT_EQ(read(file_, 100), bytes_.substr(at_, 100));
}

TEST_F(ReadingAhead, FileWhoseKindIsUnknownIsNotReadAhead) {
  calls_.statError = EIO;
  for (int i = 1; i <= 50; ++i) {
    EXPECT_EQ(read(file_, 100), bytes_.substr(at_, 100));
    at_ += 100;
    EXPECT_EQ(calls_.reads, i);
  }
}

// Others may share the position of a descriptor that was opened elsewhere.
TEST_F(ReadingAhead, AttachedFilesAreReadAsAsked) {
  const int descriptor = open(path_.c_str(), O_RDONLY);
  const int shared = dup(descriptor);
  CUlFile attached;
  attached.Attach(descriptor, "attached");
  for (at_ = 0; at_ < 5000; at_ += 50) {
    EXPECT_EQ(read(attached, 50), bytes_.substr(at_, 50));
    EXPECT_EQ(lseek(shared, 0, SEEK_CUR), static_cast<off_t>(at_ + 50));
  }
  close(shared);
}

TEST_F(ReadingAhead, NamedPipesNeverWaitForMoreThanIsAskedFor) {
  const std::string name = folder_.path("pipe");
  ASSERT_EQ(mkfifo(name.c_str(), 0600), 0);
  const int writing = open(name.c_str(), O_RDWR);  // so that neither end waits for the other
  CUlFile pipe(name);
  ASSERT_TRUE(pipe.IsValid());
  for (std::size_t i = 0; i < 3000; i += 30) {
    ASSERT_EQ(write(writing, bytes_.data() + i, 30), 30);
    EXPECT_EQ(read(pipe, 20), bytes_.substr(i, 20));
    EXPECT_EQ(read(pipe, 10), bytes_.substr(i + 20, 10));
  }
  ASSERT_EQ(write(writing, "left", 4), 4);
  char rest[10];
  EXPECT_EQ(::read(writing, rest, sizeof rest), 4) << "nor is more taken";
  close(writing);
}

// Whatever is done in whatever order: the file is as one that nobody reads ahead.
TEST_F(ReadingAhead, AgreesWithASimpleFileWhateverHappens) {
  std::mt19937 random(20261121);
  const auto below = [&](std::size_t end) { return static_cast<std::size_t>(random() % end); };
  std::string content = bytes_;
  std::size_t at = 0;
  for (int step = 0; step < 20000; ++step) {
    SCOPED_TRACE(step);
    switch (below(40)) {
      case 0:
        at = below(content.size() + 100);
        ASSERT_FALSE(file_.Seek(static_cast<std::int64_t>(at), 0, nullptr).IsError());
        break;
      case 1: {
        const std::int64_t by =
            std::max(static_cast<std::int64_t>(below(400)) - 200, -static_cast<std::int64_t>(at));
        ASSERT_FALSE(file_.Seek(by, 1, nullptr).IsError());
        at = static_cast<std::size_t>(static_cast<std::int64_t>(at) + by);
        break;
      }
      case 2: {
        const std::string text = counting(below(300));
        ASSERT_FALSE(file_.Write(text.data(), static_cast<unsigned>(text.size()), nullptr).IsError());
        if (text.empty()) break;
        if (content.size() < at + text.size()) content.resize(at + text.size());
        content.replace(at, text.size(), text);
        at += text.size();
        break;
      }
      case 3: {
        const std::string head = counting(below(9) + 1), body = counting(below(300));
        ASSERT_FALSE(file_.Append(head, body, nullptr).IsError());
        content += head + body;
        at = content.size();
        break;
      }
      case 4:
        content.resize(content.size() - below(50) % content.size());
        ASSERT_FALSE(file_.Truncate(content.size()).IsError());
        break;
      case 5: {
        bool atEnd = false;
        ASSERT_FALSE(file_.IsEOF(atEnd).IsError());
        ASSERT_EQ(atEnd, at >= content.size());
        break;
      }
      case 6:
        ASSERT_FALSE(file_.SetAppendBuffer(static_cast<unsigned>(below(2) * below(2000))).IsError());
        break;
      default: {
        const std::size_t size = below(below(10) == 0 ? 9000 : 200);
        const std::string expected = at < content.size() ? content.substr(at, size) : std::string();
        ASSERT_EQ(read(file_, static_cast<unsigned>(size)), expected);
        at += expected.size();
        break;
      }
    }
    ASSERT_EQ(positionOf(file_), static_cast<std::int64_t>(at));
  }
  ASSERT_FALSE(file_.Close().IsError());
  EXPECT_EQ(folder_.read("f"), content);
}

}  // namespace
}  // namespace zqxml
