// Messages logged by many threads at once, with the pool full, around a fork and at the end of a process.
//
// The first test takes as many seconds as $ZQXML_LOGGING_SECONDS says, a little more than one without it.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <tests/logging/endless_logging.h>
#include <tests/logging/message_logging.h>
#include <tests/support/run_program.h>
#include <tests/support/scratch_folder.h>
#include <unistd.h>
#include <zqxml/logging/xml_logger_helper.h>
#include <zqxml/platform/ev_debug.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <deque>
#include <latch>
#include <string>
#include <thread>
#include <vector>

// Children of a process with threads may start threads of their own: that is what is tested here.
extern "C" const char* __tsan_default_options();
extern "C" const char* __tsan_default_options() {
  return "die_after_fork=0";
}

namespace zqxml {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr int kThreads = 16;

milliseconds duration() {
  const char* seconds = std::getenv("ZQXML_LOGGING_SECONDS");
  return seconds == nullptr ? milliseconds(1200) : milliseconds(1000 * std::atoi(seconds));
}

/// Threads that log until they are stopped, or so many messages each.
class LoggingThreads {
 public:
  explicit LoggingThreads(int rounds = 0) {
    for (int i = 0; i < kThreads; ++i) {
      threads_.emplace_back([this, i, rounds] {
        EndlessLogging logging(i);
        start_.arrive_and_wait();
        while (!stop_ && (rounds == 0 || logging.rounds() < rounds)) logging.log();
        logged_ += logging.rounds();
      });
    }
  }
  ~LoggingThreads() {
    stop_ = true;
    join();
  }
  /// How many messages they have logged in all.
  int stop() {
    stop_ = true;
    return join();
  }
  int join() {
    for (std::thread& thread : threads_) thread.join();
    threads_.clear();
    return logged_;
  }

 private:
  std::latch start_{kThreads};
  std::atomic<bool> stop_ = false;
  std::atomic<int> logged_ = 0;
  std::vector<std::thread> threads_;
};

/// Looks at every line, without a lock that a child of a fork could find taken.
class LineCheck {
 public:
  LineCheck() {
    EvDebug::setSink([this](const LogLine& line) {
      ++lines_;
      if (line.function != kLoggingFunction || !EndlessLogging::isWhole(std::string(line.text))) ++bad_;
    });
  }
  ~LineCheck() {
    settle();
    EvDebug::setSink({});
    EXPECT_EQ(bad_, 0);
  }
  int lines() const { return lines_; }

 private:
  std::atomic<int> lines_ = 0;
  std::atomic<int> bad_ = 0;
};

TEST(LoggingManyMessages, ThreadsLogAtOnce) {
  LineCheck check;
  LoggingThreads threads;
  std::this_thread::sleep_for(duration());
  const int logged = threads.stop();
  settle();
  EXPECT_GT(check.lines(), kThreads);
  // A thread of the pool that another caller took in the same moment costs a line.
  EXPECT_LE(check.lines(), logged);
  RecordProperty("logged", logged);
  RecordProperty("written", check.lines());
  EXPECT_EQ(XmlLoggerHelper::getXmlLoggerInstance()->getCurrentAvailableThreadCount(), 20u);
}

TEST(LoggingManyMessages, ThreadsWriteTheirOwnLinesWhileThePoolIsFull) {
  LineCheck check;
  const BusyPool busy;
  constexpr int kRounds = 20;
  EXPECT_EQ(LoggingThreads(kRounds).join(), kThreads * kRounds);
  EXPECT_EQ(check.lines(), kThreads * kRounds) << "no line is lost, and none comes later";
}

TEST(LoggingManyMessages, ThreadsLogWhileThePoolFillsAndEmpties) {
  LineCheck check;
  std::deque<Gate> gates(20);  // each outlives its jobs
  LoggingThreads threads;
  for (Gate& gate : gates) {
    int held = 0;
    while (XmlLoggerHelper::getXmlLoggerInstance()->doWork(&Gate::job, &gate) == 0) ++held;
    EXPECT_TRUE(gate.waitForArrivals(held));
    gate.open();
    std::this_thread::sleep_for(milliseconds(5));
  }
  EXPECT_GT(threads.stop(), 0);
  settle();
  EXPECT_GT(check.lines(), 0);
}

TEST(LoggingManyMessages, ThreadsLogWhileTheLevelAndTheSinkChange) {
  std::atomic<int> bad = 0;
  const auto look = [&bad](const LogLine& line) {
    if (line.function == kLoggingFunction && !EndlessLogging::isWhole(std::string(line.text))) ++bad;
  };
  LoggingThreads threads;
  for (int i = 0; i < 100; ++i) {
    EvDebug::setDebugLevel(i % 3 - 1);
    EvDebug::setSink(look);
    std::this_thread::sleep_for(milliseconds(2));
  }
  EvDebug::setDebugLevel(0);
  threads.stop();
  settle();
  EvDebug::setSink({});
  EXPECT_EQ(bad, 0);
}

TEST(LoggingManyMessages, ProcessEndsWhileThreadsLog) {
  for (int i = 0; i < 3; ++i) {
    const ProgramRun run = runProgram({ZQXML_LOG_AT_EXIT});
    EXPECT_EQ(run.status, 0) << run.err.substr(0, 3000);
    // The last line may find no thread at its place in time, but what there is of it is whole.
    if (!run.out.empty()) {
      EXPECT_TRUE(EndlessLogging::isWhole(run.out.substr(0, run.out.size() - 1))) << run.out;
    }
  }
}

#ifdef ZQXML_ALLOCATOR_DOES_NOT_FORK
constexpr bool kThreadsRestAtForks = true;
#else
constexpr bool kThreadsRestAtForks = false;
#endif

/// Ends the child: 0 when it has logged a message by its own pool, to a file by way of standard error.
[[noreturn]] void logInChild(const std::string& file) {
  alarm(60);
  EvDebug::setSink({});
  const int descriptor = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  if (descriptor < 0 || dup2(descriptor, STDERR_FILENO) < 0) _exit(2);
  XmlLoggerHelper& helper = *XmlLoggerHelper::getXmlLoggerInstance();
  if (helper.getCurrentAvailableThreadCount() != 20) _exit(3);
  EndlessLogging(7).log();
  _exit(helper.waitUntilIdle(milliseconds(50'000)) ? 0 : 4);
}

TEST(LoggingManyMessages, ThreadsLogWhileAProcessForks) {
  // Run alone, the first fork meets the threads in the first use of all: the start of the XML library, too.
  const ScratchFolder folder;
  LineCheck check;
  LoggingThreads threads;
  if (kThreadsRestAtForks) {
    while (check.lines() == 0) std::this_thread::sleep_for(milliseconds(1));
    EXPECT_GT(threads.stop(), 0);
    settle();
  }
  for (int i = 0; i < 20; ++i) {
    const pid_t child = fork();
    ASSERT_NE(child, -1);
    if (child == 0) logInChild(folder.path("line"));
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_EQ(status, 0) << "child " << i;
    std::string line = folder.read("line");
    const std::string head = std::string(kLoggingFunction) + " - ";
    ASSERT_NE(line.find(head), std::string::npos) << line;
    line = line.substr(line.find(head) + head.size());
    EXPECT_TRUE(EndlessLogging::isWhole(line.substr(0, line.size() - 1))) << line;
  }
  if (!kThreadsRestAtForks) {
    EXPECT_GT(threads.stop(), 0);
  }
}

}  // namespace
}  // namespace zqxml
