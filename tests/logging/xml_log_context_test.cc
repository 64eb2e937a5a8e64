#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <tests/support/log_capture.h>
#include <tests/support/scratch_folder.h>
#include <tests/support/settings.h>
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/platform/platform_info.h>

#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace zqxml {

// Makes message logs besides the one of the process, each with a first use of its own.
struct XmlLogContextTestAccess {
  struct Delete {
    void operator()(XmlLogContext* log) const { delete log; }
  };
  static std::unique_ptr<XmlLogContext, Delete> make() {
    return std::unique_ptr<XmlLogContext, Delete>(new XmlLogContext);
  }
  static bool hasDedicatedLog(const XmlLogContext& log) { return log.dedicatedLog != nullptr; }
  static std::string path(const XmlLogContext& log) { return log.fileInstance.path(); }
};

namespace {

using Access = XmlLogContextTestAccess;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr char kSetting[] = "EventManager/XMLMessage_DEBUGLEVEL";

class MessageLog : public testing::Test {
 protected:
  MessageLog() { setenv("ZQXML_LOG_DIR", folder_.path().c_str(), 1); }
  ~MessageLog() override {
    unsetenv("ZQXML_LOG_DIR");
    ZQPI_Focus::setFocus("");
  }

  const ScratchFolder folder_;
};

TEST_F(MessageLog, ErrorHasLevelZero) {
  LogCapture capture;
  Access::make()->error("Class::function", "text %d", 5);
  EXPECT_THAT(capture.lines(), ElementsAre(CapturedLine{"Class::function", 0, "text 5"}));
}

TEST_F(MessageLog, TraceHasTheGivenLevel) {
  LogCapture capture(15);
  Access::make()->debug("Class::function", 15, "text %s", "x");
  Access::make()->debug("Class::function", 16, "too fine");
  EXPECT_THAT(capture.lines(), ElementsAre(CapturedLine{"Class::function", 15, "text x"}));
}

TEST_F(MessageLog, NoticeHasTheLevelOne) {
  LogCapture capture(1);
  Access::make()->log("logXML", "notice");
  EXPECT_THAT(capture.lines(), ElementsAre(CapturedLine{"logXML", 1, "notice"}));
  const LogCapture silent(0);
  Access::make()->log("logXML", "notice");
  EXPECT_TRUE(silent.empty());
}

TEST_F(MessageLog, LinesHaveNoPrefixNoContextAndNoLog) {
  int lines = 0;
  EvDebug::setSink([&lines](const LogLine& line) {
    ++lines;
    EXPECT_EQ(line.prefix, "");
    EXPECT_EQ(line.contextValue, 0);
    EXPECT_EQ(line.log, "");
  });
  Access::make()->error("f", "text");
  EvDebug::setSink({});
  EXPECT_EQ(lines, 1);
}

TEST_F(MessageLog, WithoutFocusThereIsNoDedicatedLog) {
  const TestSettings settings{{kSetting, "5"}};
  const auto log = Access::make();
  EXPECT_FALSE(Access::hasDedicatedLog(*log));
}

TEST_F(MessageLog, WithoutTheSettingThereIsNoDedicatedLog) {
  const TestSettings settings;
  ZQPI_Focus::setFocus("Agent");
  const auto log = Access::make();
  EXPECT_FALSE(Access::hasDedicatedLog(*log));
}

TEST_F(MessageLog, PresenceOfTheSettingIsEnoughForTheDedicatedLog) {
  const TestSettings settings{{kSetting, "0"}};
  ZQPI_Focus::setFocus("Agent");
  const auto log = Access::make();
  EXPECT_TRUE(Access::hasDedicatedLog(*log));
  EXPECT_EQ(Access::path(*log), folder_.path("XMLMessage.log"));
}

TEST_F(MessageLog, SettingIsReadForTheFocus) {
  std::string asked;
  ZQPlatformInfo::setSource([&](std::string_view focus, std::string_view section, std::string_view key) {
    asked += std::string(focus) + "|" + std::string(section) + "|" + std::string(key) + ";";
    return std::nullopt;
  });
  ZQPI_Focus::setFocus("Agent");
  Access::make();
  ZQPlatformInfo::setSource({});
  EXPECT_EQ(asked, "Agent|EventManager|XMLMessage_DEBUGLEVEL;");
}

TEST_F(MessageLog, DedicatedLogRepeatsEachLineWithAPrefix) {
  const TestSettings settings{{kSetting, "1"}};
  ZQPI_Focus::setFocus("Agent");
  const auto log = Access::make();
  std::vector<std::string> lines;
  EvDebug::setSink([&](const LogLine& line) {
    lines.push_back(std::string(line.log) + "|" + std::string(line.prefix) + "|" + std::string(line.text));
  });
  log->error("f", "text %d", 5);
  EvDebug::setSink({});
  EXPECT_THAT(lines, ElementsAre("||text 5", "XMLMessage| [  ] |text 5"));
}

TEST_F(MessageLog, DedicatedLogIsAFile) {
  const TestSettings settings{{kSetting, "1"}};
  ZQPI_Focus::setFocus("Agent");
  const auto log = Access::make();
  testing::internal::CaptureStderr();
  log->error("f", "text");
  EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr(" f - text\n"));
  EXPECT_THAT(folder_.read("XMLMessage.log"), HasSubstr("  [  ] f - text\n"));
}

TEST_F(MessageLog, FileOfTheDedicatedLogTakesFiveMebibytes) {
  const TestSettings settings{{kSetting, "1"}};
  ZQPI_Focus::setFocus("Agent");
  const auto log = Access::make();
  const std::string mebibyte(std::size_t{1} << 20, 'x');
  testing::internal::CaptureStderr();
  for (int i = 0; i < 4; ++i) log->error("f", "%s", mebibyte);
  EXPECT_FALSE(std::filesystem::exists(folder_.path("XMLMessage.1.log")));
  log->error("f", "%s", mebibyte);
  testing::internal::GetCapturedStderr();
  EXPECT_TRUE(std::filesystem::exists(folder_.path("XMLMessage.1.log")));
}

TEST_F(MessageLog, FreeFunctionsWriteToTheLogOfTheProcess) {
  LogCapture capture(10);
  logError("f", "error %s", u"wide");
  logDebug("g", 10, "trace %d", 1);
  logDebug("g", 11, "too fine");
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{"f", 0, "error wide"}, CapturedLine{"g", 10, "trace 1"}));
  EXPECT_EQ(&XmlLogContext::instance(), &XmlLogContext::instance());
}

TEST_F(MessageLog, DebugEnabledFollowsTheLevel) {
  const LogCapture capture(10);
  EXPECT_TRUE(debugEnabled(0));
  EXPECT_TRUE(debugEnabled(10));
  EXPECT_FALSE(debugEnabled(11));
}

TEST_F(MessageLog, ArgumentsAreNoFormats) {
  LogCapture capture;
  logError("f", "%s", "%d %s %n");
  EXPECT_TRUE(capture.has("f", 0, "%d %s %n"));
}

TEST_F(MessageLog, ThreadsWriteAtOnce) {
  LogCapture capture(10);
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([i] {
      for (int k = 0; k < 100; ++k) logDebug("f", 10, "line %d of %d", k, i);
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(capture.lines().size(), 400U);
}

// Writes when the process ends, after nearly everything else.
struct LogsAtTheEnd {
  ~LogsAtTheEnd() {
    EvDebug::setSink([](const LogLine&) {});
    logError("f", "the last line");
    EvDebug::setSink({});
  }
};
LogsAtTheEnd logsAtTheEnd;

}  // namespace
}  // namespace zqxml
