// The pool behind logged messages: who writes a line, and what becomes of it when it cannot be written.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/wait.h>
#include <tests/logging/counted_allocations.h>
#include <tests/logging/logged_message.h>
#include <tests/logging/message_logging.h>
#include <tests/support/log_capture.h>
#include <unistd.h>
#include <zqxml/logging/xml_logger_helper.h>
#include <zqxml/platform/ev_debug.h>

#include <array>
#include <atomic>
#include <string>
#include <thread>

namespace zqxml {
namespace {

using Demo::Guarded;
using testing::ElementsAre;

class LoggingPool : public LoggedMessage {};

TEST_F(LoggingPool, InstanceIsOneWithTwentyThreads) {
  EXPECT_EQ(XmlLoggerHelper::getXmlLoggerInstance(), &helper_);
  settle();
  EXPECT_EQ(helper_.getCurrentAvailableThreadCount(), 20u);
  EXPECT_FALSE(helper_.initThreadPool("another", 300, 20, 20, 20)) << "it is prepared";
}

TEST_F(LoggingPool, LineIsWrittenOnAThreadOfThePool) {
  std::thread::id writer;
  char name[16] = "";
  EvDebug::setSink([&](const LogLine&) {
    writer = std::this_thread::get_id();
    pthread_getname_np(pthread_self(), name, sizeof name);
  });
  helper_.writeToLog(kFunction, 0, 0, "text", &buffer_);
  settle();
  EvDebug::setSink({});
  EXPECT_NE(writer, std::this_thread::get_id());
  EXPECT_STREQ(name, "XmlLoggerHelper");
}

TEST_F(LoggingPool, WithAllThreadsBusyTheLineIsWrittenBeforeTheCallReturns) {
  LogCapture capture;
  const BusyPool busy;
  helper_.writeToLog(kFunction, 0, 0, "%bxml_zq", &buffer_);
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{kFunction, 0, "   " + guardedXml("open=\"hello\"") + "   "}));
  EXPECT_EQ(helper_.getCurrentAvailableThreadCount(), 0u);
}

TEST_F(LoggingPool, KeepsLosingTheLineWhenNoThreadStarts) {
  // In a child, whose pool has no thread yet, and which cannot start one with a stack larger than the address
  // space.
  const pid_t child = fork();
  if (child == 0) {
    alarm(60);
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, std::size_t{1} << 60);
    if (pthread_setattr_default_np(&attributes) != 0) _exit(2);
    LogCapture capture;
    helper_.writeToLog(kFunction, 0, 0, "lost", &buffer_);
    const bool lost = capture.empty() && helper_.getCurrentAvailableThreadCount() == 20;
    _exit(lost ? 0 : 1);
  }
  int status = -1;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
}

TEST_F(LoggingPool, WhatASinkThrowsDoesNotEndTheProcess) {
  EvDebug::setSink([](const LogLine&) { throw 5; });
  helper_.writeToLog(kFunction, 0, 0, "text", &buffer_);
  settle();
  {
    const BusyPool busy;
    helper_.writeToLog(kFunction, 0, 0, "text", &buffer_);
  }
  EvDebug::setSink({});
  EXPECT_EQ(lineOf("still here"), "still here");
}

TEST_F(LoggingPool, SinkThatLogsMessagesDoesNotFeedItself) {
  std::atomic<int> lines = 0;
  EvDebug::setSink([&](const LogLine&) {
    ++lines;
    helper_.writeToLog(kFunction, 0, 0, "from the sink", &buffer_);
  });
  helper_.writeToLog(kFunction, 0, 0, "text", &buffer_);
  for (int i = 0; i < 3; ++i) settle();
  EvDebug::setSink({});
  EXPECT_EQ(lines, 1);
}

#ifndef ZQXML_ALLOCATOR_IS_TAKEN
TEST_F(LoggingPool, WithoutMemoryTheLineIsLostAndNothingLeaks) {
  std::atomic<int> lines = 0;
  EvDebug::setSink([&](const LogLine&) { ++lines; });
  const std::string argument(100, 'a');
  const std::array<FormatArg, 1> list{FormatArg(argument)};
  Guarded message;
  message.setOpen("hello");
  for (int i = 0; i < 40; ++i) helper_.writeToLog(kFunction, 0, 0, "%s %bxml_zq", &message, list);
  settle();
  const long before = liveBlocks();
  std::size_t failures = 0;
  for (lines = 0;; ++failures) {
    failAllocationAfter(failures);
    helper_.writeToLog(kFunction, 0, 0, "%s %bxml_zq", &message, list);
    const bool enough = cancelFailure();
    settle();
    if (enough) break;
  }
  EvDebug::setSink({});
  EXPECT_GE(failures, 6u) << "the container and its parts are blocks of their own";
  EXPECT_GE(lines, 1) << "the last one had memory";
  EXPECT_LE(liveBlocks() - before, 2);
}
#endif

}  // namespace
}  // namespace zqxml
