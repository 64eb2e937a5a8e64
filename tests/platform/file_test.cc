#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <tests/support/failing_file_calls.h>
#include <tests/support/pipe_of.h>
#include <tests/support/scratch_folder.h>
#include <unistd.h>
#include <zqxml/platform/file.h>

#include <string>
#include <utility>

namespace zqxml {
namespace {

std::string readAll(CUlFile& file, unsigned most = 1000) {
  std::string bytes(most, '\0');
  unsigned count = 0;
  EXPECT_FALSE(file.Read(bytes.data(), most, &count).IsError());
  bytes.resize(count);
  return bytes;
}

TEST(CUlError, SuccessHasNoText) {
  const CUlError none;
  EXPECT_FALSE(none.IsError());
  EXPECT_EQ(none.GetCode(), 0);
  EXPECT_EQ(none.GetText(), "");
}

TEST(CUlError, TextIsTheSystems) {
  const CUlError full(ENOSPC);
  EXPECT_TRUE(full.IsError());
  EXPECT_EQ(full.GetCode(), ENOSPC);
  EXPECT_EQ(full.GetText(), "No space left on device");
  EXPECT_EQ(CUlError(123456).GetText(), "Unknown error 123456");
}

TEST(CUlFile, AnUnopenedFileIsNotValidAndFailsEverything) {
  CUlFile file;
  EXPECT_FALSE(file.IsValid());
  EXPECT_EQ(file.GetName(), "");
  char byte = 'x';
  unsigned count = 7;
  std::int64_t position = 0;
  std::uint64_t size = 0;
  bool atEnd = false;
  EXPECT_EQ(file.Read(&byte, 1, &count).GetCode(), EBADF);
  EXPECT_EQ(count, 0U);
  EXPECT_EQ(file.Read(&byte, 0, nullptr).GetCode(), EBADF);
  EXPECT_EQ(file.Write(&byte, 1, &count).GetCode(), EBADF);
  EXPECT_EQ(file.Seek(0, 0, nullptr).GetCode(), EBADF);
  EXPECT_EQ(file.Tell(position).GetCode(), EBADF);
  EXPECT_EQ(file.Size(size).GetCode(), EBADF);
  EXPECT_EQ(file.IsEOF(atEnd).GetCode(), EBADF);
  EXPECT_EQ(file.Truncate(0).GetCode(), EBADF);
  EXPECT_EQ(file.Flush().GetCode(), EBADF);
  EXPECT_FALSE(file.Close().IsError());
}

TEST(CUlFile, MissingFileCannotBeRead) {
  const ScratchFolder folder;
  CUlFile file;
  EXPECT_EQ(file.Open(folder.path("none"), CUlFile::Mode::kRead).GetCode(), ENOENT);
  EXPECT_FALSE(file.IsValid());
  EXPECT_EQ(file.GetName(), folder.path("none"));
}

TEST(CUlFile, NameWithNulIsRefused) {
  const ScratchFolder folder;
  folder.write("a", "secret");
  CUlFile file(folder.path("a") + std::string("\0.txt", 5));
  EXPECT_FALSE(file.IsValid());
}

TEST(CUlFile, WritesAndReadsBack) {
  const ScratchFolder folder;
  CUlFile file(folder.path("f"), CUlFile::Mode::kReadWrite);
  ASSERT_TRUE(file.IsValid());
  unsigned count = 0;
  EXPECT_FALSE(file.Write("hello", 5, &count).IsError());
  EXPECT_EQ(count, 5U);
  EXPECT_FALSE(file.Seek(0, 0, nullptr).IsError());
  EXPECT_EQ(readAll(file), "hello");
  EXPECT_EQ(readAll(file), "") << "at the end";
}

TEST(CUlFile, WriteModeEmptiesAnOldFile) {
  const ScratchFolder folder;
  folder.write("f", "a long old text");
  CUlFile file(folder.path("f"), CUlFile::Mode::kWrite);
  EXPECT_FALSE(file.Write("new", 3, nullptr).IsError());
  EXPECT_FALSE(file.Close().IsError());
  EXPECT_EQ(folder.read("f"), "new");
  EXPECT_EQ(file.GetName(), folder.path("f"));
}

TEST(CUlFile, ReadWriteModeKeepsAnOldFile) {
  const ScratchFolder folder;
  folder.write("f", "old text");
  CUlFile file(folder.path("f"), CUlFile::Mode::kReadWrite);
  EXPECT_FALSE(file.Seek(0, 2, nullptr).IsError());
  EXPECT_FALSE(file.Write("!", 1, nullptr).IsError());
  EXPECT_EQ(folder.read("f"), "old text!");
}

TEST(CUlFile, ReadModeDoesNotWrite) {
  const ScratchFolder folder;
  CUlFile file(folder.write("f", "text"));
  unsigned count = 9;
  EXPECT_EQ(file.Write("x", 1, &count).GetCode(), EBADF);
  EXPECT_EQ(count, 0U);
}

TEST(CUlFile, SeeksFromAllThreeOrigins) {
  const ScratchFolder folder;
  CUlFile file(folder.write("f", "0123456789"));
  std::int64_t position = -1;
  EXPECT_FALSE(file.Seek(3, 0, &position).IsError());
  EXPECT_EQ(position, 3);
  EXPECT_FALSE(file.Seek(2, 1, &position).IsError());
  EXPECT_EQ(position, 5);
  EXPECT_FALSE(file.Seek(-1, 2, &position).IsError());
  EXPECT_EQ(position, 9);
  EXPECT_EQ(readAll(file), "9");
  EXPECT_FALSE(file.Tell(position).IsError());
  EXPECT_EQ(position, 10);
  EXPECT_EQ(file.Seek(0, 3, &position).GetCode(), EINVAL);
  EXPECT_EQ(file.Seek(-1, 0, &position).GetCode(), EINVAL);
}

TEST(CUlFile, KnowsItsSizeAndItsEnd) {
  const ScratchFolder folder;
  CUlFile file(folder.write("f", "ab"));
  std::uint64_t size = 0;
  EXPECT_FALSE(file.Size(size).IsError());
  EXPECT_EQ(size, 2U);
  bool atEnd = true;
  EXPECT_FALSE(file.IsEOF(atEnd).IsError());
  EXPECT_FALSE(atEnd);
  EXPECT_EQ(readAll(file, 2), "ab");
  EXPECT_FALSE(file.IsEOF(atEnd).IsError());
  EXPECT_TRUE(atEnd);
  EXPECT_FALSE(file.Seek(50, 0, nullptr).IsError());
  atEnd = false;
  EXPECT_FALSE(file.IsEOF(atEnd).IsError());
  EXPECT_TRUE(atEnd) << "behind the end";
}

TEST(CUlFile, TruncatesAndFlushes) {
  const ScratchFolder folder;
  folder.write("f", "0123456789");
  CUlFile file(folder.path("f"), CUlFile::Mode::kReadWrite);
  EXPECT_FALSE(file.Truncate(4).IsError());
  EXPECT_FALSE(file.Flush().IsError());
  EXPECT_EQ(folder.read("f"), "0123");
  EXPECT_EQ(file.Truncate(std::uint64_t{1} << 63).GetCode(), EFBIG);
}

TEST(CUlFile, MovesTheOpenFile) {
  const ScratchFolder folder;
  CUlFile first(folder.write("f", "text"));
  CUlFile second(std::move(first));
  EXPECT_FALSE(first.IsValid());  // NOLINT(bugprone-use-after-move): what is left behind is defined
  EXPECT_EQ(readAll(second), "text");
  CUlFile third(folder.write("g", "other"));
  third = std::move(second);
  EXPECT_EQ(third.GetName(), folder.path("f"));
}

TEST(CUlFile, TakesADescriptorOver) {
  const ScratchFolder folder;
  const int descriptor = open(folder.write("f", "text").c_str(), O_RDONLY);
  {
    CUlFile file;
    file.Attach(descriptor, "named");
    EXPECT_EQ(file.GetName(), "named");
    EXPECT_EQ(readAll(file), "text");
  }
  EXPECT_EQ(fcntl(descriptor, F_GETFD), -1) << "closed with the object";
}

TEST(CUlFile, IsNotInheritedByOtherPrograms) {
  const ScratchFolder folder;
  folder.write("f", "text");
  const int lowest = dup(0);
  close(lowest);
  CUlFile file(folder.path("f"));
  EXPECT_NE(fcntl(lowest, F_GETFD) & FD_CLOEXEC, 0);
}

TEST(CUlFile, EndOfAPipeIsKnownWhenItIsMet) {
  CUlFile file;
  attachPipeOf(file, "abc");
  const auto atEnd = [&file] {
    bool is = false;
    const CUlError error = file.IsEOF(is);
    EXPECT_EQ(error.GetCode(), is ? 0 : ESPIPE);
    return is;
  };
  char byte = 0;
  unsigned count = 0;
  EXPECT_FALSE(atEnd());
  EXPECT_FALSE(file.Read(&byte, 1, &count).IsError());
  EXPECT_FALSE(atEnd());
  char rest[5];
  EXPECT_FALSE(file.Read(rest, 5, &count).IsError());
  EXPECT_EQ(count, 2u);
  EXPECT_TRUE(atEnd());
  file = CUlFile(std::move(file));
  EXPECT_TRUE(atEnd()) << "goes over with the file";
}

TEST(CUlFile, EndOfAPipeIsForgottenWhereTheFileWentOver) {
  int open[2];
  ASSERT_EQ(pipe(open), 0);
  CUlFile file;
  attachPipeOf(file, "");
  char byte = 0;
  EXPECT_FALSE(file.Read(&byte, 1, nullptr).IsError());
  const CUlFile other = std::move(file);
  file.Attach(open[0], "open");
  bool atEnd = false;
  EXPECT_EQ(file.IsEOF(atEnd).GetCode(), ESPIPE);
  close(open[1]);
}

TEST(CUlFile, ReadErrorIsNoEndOfAPipe) {
  CUlFile file;
  attachPipeOf(file, "");
  char byte = 0;
  bool atEnd = false;
  EXPECT_FALSE(file.Read(&byte, 1, nullptr).IsError());
  FailingFileCalls calls;
  calls.readError = EIO;
  EXPECT_EQ(file.Read(&byte, 1, nullptr).GetCode(), EIO);
  EXPECT_EQ(file.IsEOF(atEnd).GetCode(), ESPIPE);
}

TEST(CUlFile, GoesOnAfterSignalsAndShortTransfers) {
  const ScratchFolder folder;
  FailingFileCalls calls;
  calls.interruptions = 2;
  calls.largestTransfer = 3;
  CUlFile file(folder.path("f"), CUlFile::Mode::kReadWrite);
  ASSERT_TRUE(file.IsValid());
  unsigned count = 0;
  EXPECT_FALSE(file.Write("0123456789", 10, &count).IsError());
  EXPECT_EQ(count, 10U);
  EXPECT_EQ(calls.writes, 12);
  EXPECT_FALSE(file.Seek(0, 0, nullptr).IsError());
  EXPECT_EQ(readAll(file), "0123456789");
}

TEST(CUlFile, ReportsHowMuchWasWrittenBeforeAnError) {
  const ScratchFolder folder;
  FailingFileCalls calls;
  calls.largestTransfer = 4;
  calls.writeError = ENOSPC;
  calls.writesBeforeError = 2;
  CUlFile file(folder.path("f"), CUlFile::Mode::kWrite);
  unsigned count = 0;
  EXPECT_EQ(file.Write("0123456789", 10, &count).GetCode(), ENOSPC);
  EXPECT_EQ(count, 8U);
}

TEST(CUlFile, ReportsHowMuchWasReadBeforeAnError) {
  const ScratchFolder folder;
  CUlFile file(folder.write("f", "0123456789"));
  FailingFileCalls calls;
  calls.largestTransfer = 4;
  calls.readError = EIO;
  calls.readsBeforeError = 1;
  char area[10];
  unsigned count = 0;
  EXPECT_EQ(file.Read(area, 10, &count).GetCode(), EIO);
  EXPECT_EQ(count, 4U);
}

TEST(CUlFile, ADeviceThatTakesNothingIsAnError) {
  const ScratchFolder folder;
  FailingFileCalls calls;
  calls.largestTransfer = 0;
  CUlFile file(folder.path("f"), CUlFile::Mode::kWrite);
  EXPECT_EQ(file.Write("x", 1, nullptr).GetCode(), EIO);
}

TEST(CUlFile, PassesErrorsOfAllCallsOn) {
  const ScratchFolder folder;
  CUlFile file(folder.path("f"), CUlFile::Mode::kReadWrite);
  FailingFileCalls calls;
  calls.seekError = calls.statError = calls.truncateError = calls.syncError = EIO;
  std::int64_t position = 0;
  std::uint64_t size = 0;
  bool atEnd = false;
  EXPECT_EQ(file.Tell(position).GetCode(), EIO);
  EXPECT_EQ(file.Size(size).GetCode(), EIO);
  EXPECT_EQ(file.IsEOF(atEnd).GetCode(), EIO);
  calls.seekError = 0;
  EXPECT_EQ(file.IsEOF(atEnd).GetCode(), EIO);
  EXPECT_EQ(file.Truncate(0).GetCode(), EIO);
  EXPECT_EQ(file.Flush().GetCode(), EIO);
  calls.closeError = ENOSPC;
  EXPECT_EQ(file.Close().GetCode(), ENOSPC);
  EXPECT_FALSE(file.IsValid());
  calls.openError = EMFILE;
  EXPECT_EQ(file.Open(folder.path("f"), CUlFile::Mode::kRead).GetCode(), EMFILE);
}

}  // namespace
}  // namespace zqxml
