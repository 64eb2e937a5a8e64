// What is found in damaged object files, and what is left of a file when its writer is killed.
#include "tools/zqmsg/object_scan.h"

#include <signal.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <random>
#include <thread>

#include "tests/binary/object_files.h"
#include "tools/zqmsg/byte_source.h"
#include "tools/zqmsg/failure.h"

namespace zqxml::tool {
namespace {

using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

class ObjectScanTest : public ObjectFiles {
 protected:
  /// Goes through a file: the bytes of whole records come into whole_, what is told of the others into
  /// damage_.
  void scan(const std::string& path, RecordFormat format) {
    whole_.clear();
    damage_.clear();
    PlacedFile file(path);
    ObjectScan objects(file, format);
    Stretch stretch;
    std::uint64_t end = format == RecordFormat::kB && !folder_.read("objects").empty() ? 4 : 0;
    for (std::uint64_t number = 1; objects.next(stretch); ++number) {
      EXPECT_EQ(stretch.number, number);
      EXPECT_TRUE(stretch.offset == end || stretch.offset == 0) << "a gap before " << stretch.offset;
      EXPECT_GT(stretch.end, stretch.offset);
      end = stretch.end;
      if (stretch.isWhole()) {
        whole_ += stretch.bytes;
      } else {
        damage_.push_back(std::to_string(stretch.offset) + "-" + std::to_string(stretch.end) + " " +
                          stretch.damage);
      }
    }
    EXPECT_EQ(end, file.size());
  }
  void scanBytes(const std::string& bytes, RecordFormat format = RecordFormat::kA) {
    scan(folder_.write("objects", bytes), format);
  }

  const std::string a1_ = recordA(form(1)), a2_ = recordA(form(2)), a3_ = recordA(form(3));
  const std::string b1_ = recordB(form(1)), b2_ = recordB(form(2)), b3_ = recordB(form(3));
  std::string whole_;
  std::vector<std::string> damage_;
};

/// Every record is followed by a length that claims all the rest, and by what begins like an object.
TEST_F(ObjectScanTest, WorkOnWrongLengthsHasALimit) {
  constexpr std::size_t kCount = 4000;
  const std::string start = form(1).substr(0, 8) + std::string(8, '\xff');
  const std::size_t size = kCount * (a1_.size() + 4 + start.size()) + 8;
  std::string bytes;
  for (std::size_t i = 0; i < kCount; ++i) {
    bytes += a1_;
    const std::size_t left = size - bytes.size() - 4;
    for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>((left - 1) >> shift & 0xff);
    bytes += start;
  }
  bytes.resize(size);
  scanBytes(bytes);
  EXPECT_THAT(whole_, StartsWith(a1_ + a1_));
  EXPECT_LT(whole_.size(), kCount * a1_.size());
  ASSERT_FALSE(damage_.empty());
  EXPECT_THAT(damage_.back(), testing::HasSubstr("is not looked at, because too much before it is damaged"));
}

TEST_F(ObjectScanTest, WholeFilesHaveNoDamage) {
  for (const std::string& bytes : {""s, a1_, a1_ + a2_ + a3_}) {
    scanBytes(bytes);
    EXPECT_EQ(whole_, bytes);
    EXPECT_THAT(damage_, IsEmpty());
  }
  scanBytes(kVersionField + b1_ + b2_, RecordFormat::kB);
  EXPECT_EQ(whole_, b1_ + b2_);
  EXPECT_THAT(damage_, IsEmpty());
}

TEST_F(ObjectScanTest, TornTailIsNamed) {
  scanBytes(a1_ + a2_.substr(0, 3));
  EXPECT_EQ(whole_, a1_);
  EXPECT_THAT(damage_, ElementsAre("24-27 ends inside its length"));
  scanBytes(a1_ + a2_.substr(0, 4));
  EXPECT_THAT(damage_, ElementsAre("24-28 ends after 0 of 20 bytes"));
  scanBytes(a1_ + a2_.substr(0, 23));
  EXPECT_THAT(damage_, ElementsAre("24-47 ends after 19 of 20 bytes"));
  scanBytes(kVersionField + b1_ + b2_.substr(0, 9), RecordFormat::kB);
  EXPECT_EQ(whole_, b1_);
  EXPECT_THAT(damage_, ElementsAre("28-37 ends after 5 of 20 bytes"));
}

TEST_F(ObjectScanTest, RecordsBehindATornOneAreFound) {
  for (std::size_t torn = 1; torn < a2_.size(); ++torn) {
    scanBytes(a1_ + a2_.substr(0, torn) + a3_);
    EXPECT_EQ(whole_, a1_ + a3_) << torn;
    EXPECT_EQ(damage_.size(), 1u);
    scanBytes(kVersionField + b1_ + b2_.substr(0, torn) + b3_, RecordFormat::kB);
    EXPECT_EQ(whole_, b1_ + b3_) << torn;
    EXPECT_EQ(damage_.size(), 1u);
  }
}

TEST_F(ObjectScanTest, LengthsThatAreNoneAreNamed) {
  scanBytes(std::string(4, '\0') + a1_);
  EXPECT_EQ(whole_, a1_);
  EXPECT_THAT(damage_, ElementsAre("0-4 has the length 0"));
  for (const std::string& length : {"x\0\0\0"s, "\0\0\0\1"s, "1\0\0002"s, "-1\0\0"s}) {
    scanBytes(kVersionField + length + b1_, RecordFormat::kB);
    EXPECT_EQ(whole_, b1_);
    EXPECT_THAT(damage_, ElementsAre("4-8 has a length that is no number"));
  }
}

TEST_F(ObjectScanTest, DataThatDoesNotDecodeIsNamedWithItsPlace) {
  std::string bad = a2_;
  bad[18] = '\x7f';  // the length of the text, of which 2 bytes are there
  bad[21] = '\x7f';
  scanBytes(a1_ + bad + a3_);
  EXPECT_EQ(whole_, a1_ + a3_);
  ASSERT_EQ(damage_.size(), 1u);
  EXPECT_THAT(damage_[0], StartsWith("24-48 cannot be read from byte "));
}

TEST_F(ObjectScanTest, RecordsOfUnknownClassesAreWhole) {
  std::string unknown = a2_;
  unknown[8] = '\x01';
  scanBytes(a1_ + unknown + a3_);
  EXPECT_EQ(whole_, a1_ + unknown + a3_);
  EXPECT_THAT(damage_, IsEmpty());
  unknown[4] = '\x07';  // and of an unknown version
  scanBytes(a1_ + unknown + a3_);
  EXPECT_EQ(whole_, a1_ + a3_);
  EXPECT_THAT(damage_, ElementsAre("24-48 is no message of version 2"));
}

TEST_F(ObjectScanTest, MissingVersionFieldIsDamage) {
  scanBytes("9\0\0\0"s + b1_, RecordFormat::kB);
  EXPECT_EQ(whole_, b1_);
  EXPECT_THAT(damage_, ElementsAre("0-4 is no version field 1"));
}

TEST_F(ObjectScanTest, ForeignFilesAreOneDamage) {
  std::mt19937 random(7);
  std::string bytes(600000, '\0');
  for (char& byte : bytes) byte = static_cast<char>(random());
  for (RecordFormat format : {RecordFormat::kA, RecordFormat::kB}) {
    scanBytes(bytes, format);
    EXPECT_EQ(whole_, "");
    EXPECT_EQ(damage_.size(), 1u);
  }
}

TEST_F(ObjectScanTest, RecordAtTheSeamOfTwoBlocksIsFound) {
  constexpr std::size_t kBlock = std::size_t{1} << 18;
  for (std::size_t junk = kBlock - 30; junk < kBlock + 5; ++junk) {
    scanBytes(std::string(junk, '\xee') + a1_);
    EXPECT_EQ(whole_, a1_) << junk;
  }
}

TEST_F(ObjectScanTest, SearchEndsSoonerOrLater) {
  // Every twelve bytes a record seems to start that has the rest of the file, but for a byte, for its data.
  std::string bytes(1, '\0');
  constexpr std::size_t kHeads = 20000;
  for (std::size_t i = 0; i < kHeads; ++i) {
    bytes += recordA(std::string(12 * (kHeads - i) - 4, ' ')).substr(0, 4);
    bytes += form(1).substr(0, 8);
  }
  scanBytes(bytes + 'x');
  EXPECT_GE(damage_.size(), 1u);
}

TEST_F(ObjectScanTest, FormatIsFoundOutFromTheFirstBytes) {
  const auto format = [&](const std::string& bytes) {
    PlacedFile file(folder_.write("objects", bytes));
    return formatOf(file);
  };
  EXPECT_EQ(format(""), RecordFormat::kA);
  EXPECT_EQ(format(a1_), RecordFormat::kA);
  EXPECT_EQ(format(kVersionField), RecordFormat::kB);
  EXPECT_EQ(format(kVersionField + b1_), RecordFormat::kB);
  for (const std::string& foreign : {"1\0\0"s, "hello"s, "<App_TestMessage2/>"s, kVersionField + "x"s})
    EXPECT_THROW(format(foreign), Failure);
}

TEST_F(ObjectScanTest, PipesAreReadLikeFiles) {
  const std::string path = folder_.path("pipe");
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  std::thread writer([&] { folder_.write("pipe", a1_ + a2_); });
  scan(path, RecordFormat::kA);
  writer.join();
  EXPECT_EQ(whole_, a1_ + a2_);
}

/// Appends messages to a file until it is killed, and counts those that were acknowledged.
class Appender {
 public:
  Appender(const std::string& path, unsigned seed) {
    void* shared = mmap(nullptr, sizeof(Counter), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    acknowledged_ = new (shared) Counter(0);
    child_ = fork();
    if (child_ == 0) append(path, seed);
  }
  ~Appender() { munmap(acknowledged_, sizeof(Counter)); }
  Appender(const Appender&) = delete;
  Appender& operator=(const Appender&) = delete;

  bool runs() const { return child_ > 0; }
  int acknowledged() const { return acknowledged_->load(); }
  /// kill -9; gives the signal that ended the child.
  int kill() {
    ::kill(child_, SIGKILL);
    int status = 0;
    waitpid(child_, &status, 0);
    return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
  }

  /// The message of a number, some of them large: a large write is what a kill can cut.
  static App::TestMessage2 message(unsigned seed, int number) {
    App::TestMessage2 made = numbered(number);
    const unsigned mixed = (seed + static_cast<unsigned>(number)) * 2654435761U >> 16;
    made.setStrField(std::string(mixed % 4 == 0 ? 64000 : mixed % 300, 'x'));
    return made;
  }

 private:
  using Counter = std::atomic<int>;

  [[noreturn]] void append(const std::string& path, unsigned seed) {
    CUlFile file(path, CUlFile::Mode::kReadWrite);
    XNMessageBaseFileHandler handler(&file);
    for (int number = 0; number < 2000; ++number) {
      App::TestMessage2 next = message(seed, number);
      if (handler.AddObjectToFile(next) != FileHandlerSuccess) _exit(1);
      acknowledged_->store(number + 1);
    }
    for (;;) pause();
  }

  Counter* acknowledged_;
  pid_t child_;
};

class KilledAppender : public ObjectScanTest {
 protected:
  /// Reads the whole messages of a file; their number.
  int readAll(unsigned seed) {
    int number = 0;
    for (;; ++number) {
      XNMessageBase* object = nullptr;
      result_ = handler_.GetObjectFromFile(object);
      if (result_ != FileHandlerSuccess) return number;
      const MessagePtr owner(object);
      const App::TestMessage2 expected = Appender::message(seed, number);
      if (object == nullptr || *object != expected) {
        ADD_FAILURE() << "object " << number << " is another one";
        return number;
      }
    }
  }

  XNMessageBaseFileHandlerError result_ = FileHandlerSuccess;
};

TEST_F(KilledAppender, LosesNoAcknowledgedRecordIn200Rounds) {
  std::mt19937 random(std::random_device{}());
  int torn = 0;
  for (unsigned round = 0; round < 200; ++round) {
    SCOPED_TRACE(round);
    open();
    Appender appender(path_, round);
    ASSERT_TRUE(appender.runs());
    const int wanted = static_cast<int>(random() % 12);
    while (appender.acknowledged() < wanted) std::this_thread::yield();
    for (auto spin = random() % 2000; spin != 0; --spin) std::atomic_thread_fence(std::memory_order_seq_cst);
    ASSERT_EQ(appender.kill(), SIGKILL);

    LogCapture log;
    const int acknowledged = appender.acknowledged();
    const int held = readAll(round);
    EXPECT_GE(held, acknowledged);
    EXPECT_LE(held, acknowledged + 1) << "the last one may be whole without having been counted";

    // The tail: nothing, a piece of a length, or a record cut short.
    std::uint64_t size = 0;
    ASSERT_FALSE(file_.Size(size).IsError());
    scan(path_, RecordFormat::kA);
    const std::uint64_t tail = size - whole_.size();
    EXPECT_EQ(result_, tail < 4 ? FileHandlerNoData : FileHandlerInvalidFile)
        << tail << " bytes are left over";
    EXPECT_EQ(log.empty(), tail == 0);
    EXPECT_EQ(damage_.size(), tail == 0 ? 0u : 1u);
    torn += tail != 0;

    // What repair writes takes records again.
    open(whole_);
    App::TestMessage2 next = Appender::message(round, held);
    EXPECT_EQ(handler_.AddObjectToFile(next), FileHandlerSuccess);
    ASSERT_FALSE(file_.Seek(0, 0, nullptr).IsError());
    EXPECT_EQ(readAll(round), held + 1);
    EXPECT_EQ(result_, FileHandlerNoData);
    if (HasFailure()) return;
  }
  RecordProperty("torn", torn);
}

}  // namespace
}  // namespace zqxml::tool
