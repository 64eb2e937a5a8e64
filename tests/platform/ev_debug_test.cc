#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <tests/support/log_capture.h>
#include <tests/support/scratch_folder.h>
#include <tests/support/settings.h>
#include <unistd.h>
#include <zqxml/platform/ev_debug.h>

#include <atomic>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace zqxml {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;

// Standard error during a call.
template <typename Call>
std::string standardErrorOf(Call call) {
  testing::internal::CaptureStderr();
  call();
  return testing::internal::GetCapturedStderr();
}

class EvDebugTest : public testing::Test {
 protected:
  EvDebugTest() {
    EvDebug::setDebugLevel(0);
    unsetenv("ZQXML_LOG_DIR");
  }
  ~EvDebugTest() override {
    EvDebug::setSink({});
    EvDebug::setDebugLevel(0);
    unsetenv("ZQXML_LOG_DIR");
  }

  const TestSettings settings_;
  const ScratchFolder folder_;
};

TEST_F(EvDebugTest, SinkGetsEveryPartOfALine) {
  int calls = 0;
  EvDebug::setSink([&](const LogLine& line) {
    ++calls;
    EXPECT_EQ(line.function, "Class::function");
    EXPECT_EQ(line.level, 0);
    EXPECT_EQ(line.text, "text 5 wide");
    EXPECT_EQ(line.threadId, static_cast<std::uint32_t>(gettid()));
    EXPECT_EQ(line.contextValue, 1LL << 40);
    EXPECT_EQ(line.prefix, "");
    EXPECT_EQ(line.log, "");
  });
  EvDebug::DebugLvl("Class::function", 0, 1LL << 40, "text %d %ls", 5, u"wide");
  EXPECT_EQ(calls, 1);
}

TEST_F(EvDebugTest, LinesAboveTheLevelAreNotWritten) {
  LogCapture capture(10);
  EvDebug::DebugLvl("f", 10, 0, "ten");
  EvDebug::DebugLvl("f", 11, 0, "eleven");
  EvDebug::DebugLvl("f", -1, 0, "below");
  EXPECT_THAT(capture.lines(), ElementsAre(CapturedLine{"f", 10, "ten"}, CapturedLine{"f", -1, "below"}));
}

TEST_F(EvDebugTest, LevelBelowZeroSilencesErrorsToo) {
  LogCapture capture(-1);
  EvDebug::DebugLvl("f", 0, 0, "error");
  EvDebug().handleMsgEventDebug_NEW(nullptr, "f", 0, -1, 0, "error", {});
  EXPECT_TRUE(capture.empty());
}

TEST_F(EvDebugTest, LevelCanBeReadBack) {
  EvDebug::setDebugLevel(25);
  EXPECT_EQ(EvDebug::getDebugLevel(), 25);
}

TEST_F(EvDebugTest, StandardErrorIsTheDefault) {
  const std::string out = standardErrorOf([] { EvDebug::DebugLvl("Class::function", 0, 0, "text %s", "x"); });
  EXPECT_THAT(out,
              MatchesRegex("[0-9]+-[0-9]+-[0-9]+ [0-9:]+\\.[0-9]+ +[0-9]+ +0 Class::function - text x\n"));
}

TEST_F(EvDebugTest, MessageContentCannotPassForALine) {
  const std::string out =
      standardErrorOf([] { EvDebug::DebugLvl("f", 0, 0, "%s", "a\nb\x1B[2Jc\rd\te\x7F"); });
  EXPECT_THAT(out, HasSubstr("f - a\n\tb?[2Jc?d\te?\n"));
}

TEST_F(EvDebugTest, ControlsOfTwoBytesAreNotWritten) {
  const std::string out = standardErrorOf([] {
    EvDebug::DebugLvl("f", 0, 0, "%s",
                      "a\xC2\x9B"
                      "2Jb\xC2\x80"
                      "c\xC2\xA0"
                      "d\xC3\x9B"
                      "e\xC2");
  });
  EXPECT_THAT(out, HasSubstr("f - a?2Jb?c\xC2\xA0"
                             "d\xC3\x9B"
                             "e\xC2\n"))
      << "letters stay";
}

TEST_F(EvDebugTest, NullTextsAreEmpty) {
  int calls = 0;
  EvDebug::setSink([&](const LogLine& line) {
    ++calls;
    EXPECT_EQ(line.function, "");
    EXPECT_EQ(line.text, "");
  });
  EvDebug().handleMsgEventDebug_NEW(nullptr, nullptr, 0, -1, 0, nullptr, {});
  EXPECT_EQ(calls, 1);
}

TEST_F(EvDebugTest, WhatASinkThrowsIsDropped) {
  EvDebug::setSink([](const LogLine&) { throw std::runtime_error("sink"); });
  EXPECT_NO_THROW(EvDebug::DebugLvl("f", 0, 0, "text"));
  LogCapture capture;
  EvDebug::DebugLvl("f", 0, 0, "still logs");
  EXPECT_TRUE(capture.has("f", 0, "still logs"));
}

TEST_F(EvDebugTest, LinesThatASinkLogsAreDropped) {
  int calls = 0;
  EvDebug::setSink([&](const LogLine&) {
    ++calls;
    EvDebug::DebugLvl("sink", 0, 0, "again");
  });
  EvDebug::DebugLvl("f", 0, 0, "text");
  EXPECT_EQ(calls, 1);
}

TEST_F(EvDebugTest, LogIdsBelongToNames) {
  const unsigned first = EvDebug::getLogId("EvDebugTestFirst");
  EXPECT_NE(first, 0U);
  EXPECT_NE(EvDebug::getLogId("EvDebugTestSecond"), first);
  EXPECT_EQ(EvDebug::getLogId("EvDebugTestFirst"), first);
  EXPECT_NE(EvDebug::getLogId(nullptr), 0U);
}

TEST_F(EvDebugTest, FileGetsTheLinesOfItsLog) {
  EvDebugFileInstance file;
  EvDebug log(&file);
  ASSERT_TRUE(log.initialize(EvDebug::getLogId("Own"), 0, false, folder_.path()));
  EXPECT_EQ(file.path(), folder_.path("Own.log"));
  const std::string out = standardErrorOf([&] {
    log.handleMsgEventDebug_NEW(" [ x ] ", "f", 0, -1, 0, "to the file", {});
    EvDebug::DebugLvl("f", 0, 0, "to the process");
  });
  EXPECT_THAT(folder_.read("Own.log"), HasSubstr(" 0  [ x ] f - to the file\n"));
  EXPECT_THAT(folder_.read("Own.log"), testing::Not(HasSubstr("to the process")));
  EXPECT_THAT(out, testing::Not(HasSubstr("to the file")));
  EXPECT_THAT(out, HasSubstr("to the process"));
}

TEST_F(EvDebugTest, SinkGetsTheLinesOfLogsWithAFileToo) {
  EvDebugFileInstance file;
  EvDebug log(&file);
  ASSERT_TRUE(log.initialize(EvDebug::getLogId("Own"), 0, false, folder_.path()));
  std::string prefix;
  std::string name;
  EvDebug::setSink([&](const LogLine& line) {
    prefix = line.prefix;
    name = line.log;
  });
  log.handleMsgEventDebug_NEW(" [ x ] ", "f", 0, -1, 0, "text", {});
  EXPECT_EQ(prefix, " [ x ] ");
  EXPECT_EQ(name, "Own");
  EXPECT_EQ(folder_.read("Own.log"), "");
}

TEST_F(EvDebugTest, FolderOfTheFileIsFromEnvironmentOrConfiguration) {
  EvDebugFileInstance file;
  EvDebug log(&file);
  EXPECT_FALSE(log.initialize(EvDebug::getLogId("Own"), 0, false, "")) << "no folder is named";
  setenv("ZQXML_LOG_DIR", folder_.path().c_str(), 1);
  EXPECT_TRUE(log.initialize(EvDebug::getLogId("Own"), 0, false, ""));
  unsetenv("ZQXML_LOG_DIR");
  const TestSettings settings{{"EventManager/LogDirectory", folder_.path("sub")}};
  EXPECT_TRUE(log.initialize(EvDebug::getLogId("Own"), 0, false, ""));
  EXPECT_EQ(file.path(), folder_.path("sub/Own.log"));
}

TEST_F(EvDebugTest, WithoutAFileLinesGoToStandardError) {
  EvDebugFileInstance file;
  EvDebug log(&file);
  EXPECT_FALSE(log.initialize(EvDebug::getLogId("Own"), 0, false, folder_.write("plain", "x")));
  EXPECT_FALSE(log.initialize(999999, 0, false, folder_.path())) << "an id that was never given";
  EXPECT_FALSE(EvDebug().initialize(EvDebug::getLogId("Own"), 0, false, folder_.path()))
      << "the process's log";
  const std::string out =
      standardErrorOf([&] { log.handleMsgEventDebug_NEW("", "f", 0, -1, 0, "text", {}); });
  EXPECT_THAT(out, HasSubstr("f - text\n"));
}

TEST_F(EvDebugTest, NameOfALogIsNoPath) {
  EvDebugFileInstance file;
  EvDebug log(&file);
  ASSERT_TRUE(log.initialize(EvDebug::getLogId("../escape"), 0, false, folder_.path()));
  EXPECT_EQ(file.path(), folder_.path(".._escape.log"));
}

TEST_F(EvDebugTest, FileIsRotatedAtItsSize) {
  EvDebugFileInstance file;
  EvDebug log(&file);
  ASSERT_TRUE(log.initialize(EvDebug::getLogId("Own"), 0, false, folder_.path()));
  log.setLogFileSize(1);
  const std::string text(100'000, 'x');
  const FormatArg arguments[] = {text};
  for (int i = 0; i < 12; ++i) log.handleMsgEventDebug_NEW("", "f", 0, -1, 0, "%s", arguments);
  EXPECT_GT(folder_.read("Own.1.log").size(), 900'000U);
  EXPECT_LT(folder_.read("Own.log").size(), 300'000U);
}

TEST_F(EvDebugTest, SizeZeroIsNoLimit) {
  EvDebugFileInstance file;
  EvDebug log(&file);
  log.setLogFileSize(0);
  ASSERT_TRUE(log.initialize(EvDebug::getLogId("Own"), 0, false, folder_.path()));
  const std::string text(1'000'000, 'x');
  const FormatArg arguments[] = {text};
  for (int i = 0; i < 7; ++i) log.handleMsgEventDebug_NEW("", "f", 0, -1, 0, "%s", arguments);
  EXPECT_GT(folder_.read("Own.log").size(), 7'000'000U);
}

TEST_F(EvDebugTest, ThreadsLogAtOnceWhileTheSinkChanges) {
  std::atomic<int> lines{0};
  std::atomic<bool> stop{false};
  EvDebug::setSink([&](const LogLine&) { ++lines; });
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&, i] {
      for (int k = 0; k < 500; ++k) EvDebug::DebugLvl("f", 0, i, "line %d", k);
    });
  }
  std::thread changer([&] {
    while (!stop) {
      EvDebug::setSink([&](const LogLine&) { ++lines; });
      EvDebug::setDebugLevel(5);
      EvDebug::getLogId("changing");
    }
  });
  for (std::thread& thread : threads) thread.join();
  stop = true;
  changer.join();
  EXPECT_EQ(lines, 2000);
}

TEST_F(EvDebugTest, ChildOfAForkLogsOn) {
  std::atomic<bool> stop{false};
  EvDebug::setSink([](const LogLine&) {});
  std::thread busy([&] {
    while (!stop) EvDebug::DebugLvl("f", 0, 0, "busy");
  });
  int good = 0;
  for (int i = 0; i < 20; ++i) {
    const pid_t child = fork();
    if (child == 0) {
      alarm(20);
      EvDebug::DebugLvl("f", 0, 0, "child");
      _exit(0);
    }
    int status = -1;
    waitpid(child, &status, 0);
    good += status == 0 ? 1 : 0;
  }
  stop = true;
  busy.join();
  EXPECT_EQ(good, 20);
}

}  // namespace
}  // namespace zqxml
