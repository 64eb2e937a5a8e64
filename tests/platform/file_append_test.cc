// CUlFile::Append, at once and held back.
#include <gtest/gtest.h>
#include <tests/support/failing_file_calls.h>
#include <tests/support/scratch_folder.h>
#include <unistd.h>
#include <zqxml/platform/file.h>

#include <string>
#include <utility>

namespace zqxml {
namespace {

class Appending : public testing::Test {
 protected:
  std::string bytes() const { return folder_.read("f"); }
  /// Appends the parts; gives the error number and keeps the count.
  int append(std::string_view head, std::string_view body) {
    written_ = 99;
    return file_.Append(head, body, &written_).GetCode();
  }

  ScratchFolder folder_;
  std::string path_ = folder_.write("f", "old");
  FailingFileCalls calls_;
  CUlFile file_{path_, CUlFile::Mode::kReadWrite};
  std::uint64_t written_ = 0;
};

TEST_F(Appending, PutsBothPartsAtTheEndInOneCall) {
  EXPECT_EQ(append("<", "body>"), 0);
  EXPECT_EQ(written_, 6U);
  EXPECT_EQ(bytes(), "old<body>");
  EXPECT_EQ(calls_.writes, 1);
  std::int64_t position = 0;
  EXPECT_FALSE(file_.Tell(position).IsError());
  EXPECT_EQ(position, 9);
}

TEST_F(Appending, EndIsWhereOthersHaveMovedIt) {
  CUlFile other(path_, CUlFile::Mode::kReadWrite);
  for (const char* text : {"1", "3"}) {
    EXPECT_EQ(append(text, {}), 0);
    EXPECT_FALSE(other.Append("2", "", nullptr).IsError());
  }
  EXPECT_EQ(bytes(), "old1232");
}

TEST_F(Appending, NothingIsNoCall) {
  EXPECT_EQ(append("", ""), 0);
  EXPECT_EQ(written_, 0U);
  EXPECT_EQ(calls_.writes, 0);
}

TEST_F(Appending, GoesOnAfterSignalsAndShortTransfers) {
  calls_.interruptions = 2;
  for (std::size_t transfer = 1; transfer < 9; ++transfer) {
    calls_.largestTransfer = transfer;
    EXPECT_EQ(append("head", "body"), 0);
    EXPECT_EQ(written_, 8U);
  }
  EXPECT_EQ(bytes(), "oldheadbodyheadbodyheadbodyheadbodyheadbodyheadbodyheadbodyheadbody");
}

TEST_F(Appending, ReportsWhatIsWrittenBeforeAnError) {
  calls_.writeError = ENOSPC;
  for (std::size_t room = 0; room < 8; ++room) {
    calls_.bytesBeforeError = room;
    ASSERT_FALSE(file_.Truncate(3).IsError());
    ASSERT_FALSE(file_.Seek(1, 0, nullptr).IsError());
    EXPECT_EQ(append("head", "body"), ENOSPC);
    EXPECT_EQ(written_, room);
    EXPECT_EQ(bytes(), "old" + std::string("headbody").substr(0, room));
    std::int64_t position = 0;
    EXPECT_FALSE(file_.Tell(position).IsError());
    EXPECT_EQ(position, 3 + static_cast<std::int64_t>(room)) << "the end, also after an error";
  }
}

TEST_F(Appending, DeviceThatTakesNothingIsAnError) {
  calls_.largestTransfer = 0;
  EXPECT_EQ(append("x", "y"), EIO);
}

TEST_F(Appending, FileSystemsThatCannotAppendGetTwoSteps) {
  for (int error : {EOPNOTSUPP, ENOSYS}) {
    calls_.appendError = error;
    calls_.largestTransfer = 3;
    ASSERT_FALSE(file_.Truncate(3).IsError());
    ASSERT_FALSE(file_.Seek(0, 0, nullptr).IsError());
    EXPECT_EQ(append("head", "body"), 0);
    EXPECT_EQ(written_, 8U);
    EXPECT_EQ(bytes(), "oldheadbody");
  }
  calls_.seekError = EIO;
  EXPECT_EQ(append("head", "body"), EIO);
  EXPECT_EQ(bytes(), "oldheadbody");
}

TEST_F(Appending, WorksWithPipes) {
  for (int error : {0, EOPNOTSUPP}) {
    calls_.appendError = error;
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    CUlFile to;
    to.Attach(ends[1], "pipe");
    EXPECT_FALSE(to.Append("head", "body", nullptr).IsError());
    char arrived[20];
    EXPECT_EQ(read(ends[0], arrived, sizeof arrived), 8);
    close(ends[0]);
  }
}

TEST_F(Appending, NeedsAnOpenFileForWriting) {
  CUlFile reading(path_);
  std::uint64_t count = 9;
  EXPECT_EQ(reading.Append("a", "b", &count).GetCode(), EBADF);
  EXPECT_EQ(count, 0U);
  ASSERT_FALSE(file_.Close().IsError());
  EXPECT_EQ(append("a", "b"), EBADF);
  EXPECT_EQ(written_, 0U);
  EXPECT_EQ(file_.SetAppendBuffer(10).GetCode(), EBADF);
}

// --- Held back

class HoldingBack : public Appending {
 protected:
  HoldingBack() { EXPECT_FALSE(file_.SetAppendBuffer(10).IsError()); }
};

TEST_F(HoldingBack, KeepsWhatFits) {
  EXPECT_EQ(append("head", "body"), 0);
  EXPECT_EQ(written_, 8U);
  EXPECT_EQ(bytes(), "old");
  EXPECT_EQ(append("1", "2"), 0);
  EXPECT_EQ(bytes(), "old") << "full, but not overfull";
  EXPECT_EQ(append("3", ""), 0);
  EXPECT_EQ(bytes(), "oldheadbody12");
  EXPECT_FALSE(file_.Close().IsError());
  EXPECT_EQ(bytes(), "oldheadbody123");
  EXPECT_EQ(calls_.writes, 2);
}

TEST_F(HoldingBack, WritesWhatIsLargerThanTheAreaBehindWhatIsHeld) {
  EXPECT_EQ(append("a", "b"), 0);
  EXPECT_EQ(append("head", "longer body"), 0);
  EXPECT_EQ(written_, 15U);
  EXPECT_EQ(bytes(), "oldabheadlonger body");
}

TEST_F(HoldingBack, EveryOtherOperationHandsOver) {
  std::int64_t position = 0;
  std::uint64_t size = 0;
  bool atEnd = false;
  char byte = 0;
  unsigned count = 9;
  std::string expected = "old";
  const auto hold = [&] {
    EXPECT_EQ(append("x", "y"), 0);
    EXPECT_EQ(bytes(), expected);
    expected += "xy";
  };
  hold();
  EXPECT_FALSE(file_.Tell(position).IsError());
  EXPECT_EQ(position, 5);
  EXPECT_EQ(bytes(), expected);
  hold();
  EXPECT_FALSE(file_.Size(size).IsError());
  EXPECT_EQ(size, 7U);
  hold();
  EXPECT_FALSE(file_.IsEOF(atEnd).IsError());
  EXPECT_TRUE(atEnd);
  hold();
  EXPECT_FALSE(file_.Read(&byte, 1, &count).IsError());
  EXPECT_EQ(count, 0U);
  hold();
  EXPECT_FALSE(file_.Seek(0, 0, nullptr).IsError());
  EXPECT_EQ(bytes(), expected);
  hold();
  EXPECT_FALSE(file_.Write("z", 1, nullptr).IsError());
  expected += "z";
  EXPECT_EQ(bytes(), expected);
  hold();
  EXPECT_FALSE(file_.Flush().IsError());
  EXPECT_EQ(bytes(), expected);
  hold();
  EXPECT_FALSE(file_.Truncate(expected.size()).IsError());
  EXPECT_EQ(bytes(), expected);
  hold();
  EXPECT_FALSE(file_.SetAppendBuffer(0).IsError());
  EXPECT_EQ(bytes(), expected);
  EXPECT_EQ(append("x", "y"), 0);
  EXPECT_EQ(bytes(), expected + "xy") << "at once again";
}

TEST_F(HoldingBack, EveryOperationReportsThatHandingOverFails) {
  EXPECT_EQ(append("x", "y"), 0);
  calls_.writeError = ENOSPC;
  std::int64_t position = 0;
  std::uint64_t size = 0;
  bool atEnd = false;
  char byte = 0;
  EXPECT_EQ(file_.Tell(position).GetCode(), ENOSPC);
  EXPECT_EQ(file_.Size(size).GetCode(), ENOSPC);
  EXPECT_EQ(file_.IsEOF(atEnd).GetCode(), ENOSPC);
  EXPECT_EQ(file_.Read(&byte, 1, nullptr).GetCode(), ENOSPC);
  EXPECT_EQ(file_.Seek(0, 0, nullptr).GetCode(), ENOSPC);
  EXPECT_EQ(file_.Write("z", 1, nullptr).GetCode(), ENOSPC);
  EXPECT_EQ(file_.Flush().GetCode(), ENOSPC);
  EXPECT_EQ(file_.Truncate(0).GetCode(), ENOSPC);
  EXPECT_EQ(file_.SetAppendBuffer(0).GetCode(), ENOSPC);
  EXPECT_EQ(bytes(), "old") << "and has done nothing else";
  calls_.writeError = 0;
  EXPECT_FALSE(file_.Flush().IsError());
  EXPECT_EQ(bytes(), "oldxy") << "nothing is lost";
}

TEST_F(HoldingBack, WhatWasNotWrittenIsTriedAgainInOrder) {
  for (std::size_t room = 0; room < 10; ++room) {
    SCOPED_TRACE(room);
    ASSERT_FALSE(file_.Truncate(0).IsError());
    EXPECT_EQ(append("01234", "56789"), 0);
    calls_.writeError = ENOSPC;
    calls_.bytesBeforeError = room;
    EXPECT_EQ(append("a", "b"), ENOSPC);
    EXPECT_EQ(written_, 0U) << "and it is not held back either";
    EXPECT_EQ(bytes(), std::string("0123456789").substr(0, room));
    calls_.bytesBeforeError.reset();
    calls_.writeError = 0;
    EXPECT_EQ(append("c", "d"), 0);
    EXPECT_FALSE(file_.Flush().IsError());
    EXPECT_EQ(bytes(), "0123456789cd");
  }
}

TEST_F(HoldingBack, CloseReportsWhatItGivesUp) {
  EXPECT_EQ(append("x", "y"), 0);
  calls_.writeError = ENOSPC;
  EXPECT_EQ(file_.Close().GetCode(), ENOSPC);
  EXPECT_FALSE(file_.IsValid());
  EXPECT_EQ(bytes(), "old");
  calls_.writeError = 0;
  EXPECT_FALSE(file_.Close().IsError());
  ASSERT_FALSE(file_.Open(path_, CUlFile::Mode::kReadWrite).IsError());
  EXPECT_EQ(append("1", "2"), 0);
  EXPECT_EQ(bytes(), "old12") << "a file that is opened holds nothing back";
}

TEST_F(HoldingBack, DestructorHandsOver) {
  {
    CUlFile other = std::move(file_);
    EXPECT_FALSE(other.Append("x", "y", nullptr).IsError());
    EXPECT_EQ(bytes(), "old");
  }
  EXPECT_EQ(bytes(), "oldxy");
}

TEST_F(HoldingBack, SurvivesAMove) {
  EXPECT_EQ(append("x", "y"), 0);
  CUlFile other = std::move(file_);
  EXPECT_FALSE(other.Append("1", "2", nullptr).IsError());
  EXPECT_EQ(bytes(), "old");
  EXPECT_FALSE(other.Close().IsError());
  EXPECT_EQ(bytes(), "oldxy12");
}

}  // namespace
}  // namespace zqxml
