// The road of one logged message: what is copied, formatted, decoded, masked and written.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/wait.h>
#include <tests/logging/counted_allocations.h>
#include <tests/logging/message_logging.h>
#include <tests/support/log_capture.h>
#include <unistd.h>
#include <zqxml/binary/binary_buffer.h>
#include <zqxml/binary/binary_serializer.h>
#include <zqxml/catalogue/generated/Demo.h>
#include <zqxml/logging/xml_logger_helper.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/platform/ev_debug.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

namespace zqxml {
namespace {

using Demo::Guarded;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr char kFunction[] = "Server::receive";

std::string xmlOf(const std::string& attributes) {
  return std::string(kDeclaration) + "<Demo_Guarded" + (attributes.empty() ? "" : " ") + attributes + "/>";
}

/// The binary form of a message with this text.
void fill(BinaryBuffer& buffer, const std::string& open) {
  Guarded message;
  message.setOpen(open);
  ASSERT_NE(message.SerializeBinary(buffer), 0u);
}

class LoggedMessage : public testing::Test {
 protected:
  LoggedMessage() { fill(buffer_, "hello"); }

  /// Logs the buffer, and gives the text of the line.
  template <typename... Args>
  std::string lineOf(const char* format, const Args&... arguments) {
    return lineOf(buffer_, format, arguments...);
  }
  template <typename... Args>
  std::string lineOf(BinaryBuffer& buffer, const char* format, const Args&... arguments) {
    const std::array<FormatArg, sizeof...(Args)> list{FormatArg(arguments)...};
    LogCapture capture;
    helper_.writeToLog(kFunction, 0, 0, format, &buffer, list);
    settle();
    const std::vector<std::string> texts = textsOf(capture, kFunction);
    EXPECT_EQ(texts.size(), 1u);
    return texts.empty() ? std::string() : texts.front();
  }

  XmlLoggerHelper& helper_ = *XmlLoggerHelper::getXmlLoggerInstance();
  BinaryBuffer buffer_;
};

// --- The level

TEST_F(LoggedMessage, BelowTheLevelNothingIsAllocatedForABuffer) {
  const LogCapture capture(4);
  const std::array<FormatArg, 1> list{FormatArg("an argument")};
  const std::size_t before = allocationsOfThisThread();
  helper_.writeToLog(kFunction, 5, 0, "%s %bxml_zq", &buffer_, list);
  EXPECT_EQ(allocationsOfThisThread(), before);
  settle();
  EXPECT_TRUE(capture.empty());
  helper_.writeToLog(kFunction, 4, 0, "%s %bxml_zq", &buffer_, list);
  EXPECT_GT(allocationsOfThisThread(), before) << "the count counts";
  settle();
}

TEST_F(LoggedMessage, LevelOfTheLineMayEqualThatOfTheProcess) {
  const LogCapture capture(5);
  helper_.writeToLog(kFunction, 5, 0, "at the level", &buffer_);
  helper_.writeToLog(kFunction, 6, 0, "too fine", &buffer_);
  settle();
  EXPECT_THAT(capture.lines(), ElementsAre(CapturedLine{kFunction, 5, "at the level"}));
}

TEST_F(LoggedMessage, KeepsSerializingAnObjectWhoseLineIsFiltered) {
  Guarded message;
  message.setOpen("hello");
  message.SetCachedSize(0);
  const LogCapture capture(0);
  helper_.writeToLog(kFunction, 1, 0, "%bxml_zq", &message);
  EXPECT_NE(message.GetCachedSize(), 0u);
  settle();
  EXPECT_TRUE(capture.empty());
}

// --- The text

TEST_F(LoggedMessage, MessageStandsBetweenThreeBlanks) {
  EXPECT_EQ(lineOf("got [%bxml_zq]."), "got [   " + xmlOf("open=\"hello\"") + "   ].");
}

TEST_F(LoggedMessage, WithoutThePlaceholderThereIsNoXml) {
  EXPECT_EQ(lineOf("no place"), "no place");
  EXPECT_EQ(lineOf(""), "");
}

TEST_F(LoggedMessage, WithoutThePlaceholderTheMessageIsDecodedAndEncodedAllTheSame) {
  // Both passes leave traces.
  const LogCapture capture(15);
  helper_.writeToLog(kFunction, 0, 0, "no place", &buffer_);
  settle();
  EXPECT_TRUE(capture.has("XMLSerializer::serializeXMLRecur", 15, "Writing [Guarded]:[open]"));

  char noise[] = "this is no message";
  BinaryBuffer broken;
  broken.SetReadBuffer(noise, sizeof noise, true);
  helper_.writeToLog(kFunction, 0, 0, "no place", &broken);
  settle();
  EXPECT_TRUE(capture.hasPart("BinarySerializer::unserialize", 0, "Error identifying the object received."));
}

TEST_F(LoggedMessage, ArgumentsAreFormattedIntoTheText) {
  EXPECT_EQ(lineOf("%s sent %d bytes: %bxml_zq", std::string("agent"), 64),
            "agent sent 64 bytes:    " + xmlOf("open=\"hello\"") + "   ");
}

TEST_F(LoggedMessage, ArgumentsNeedNotOutliveTheCall) {
  LogCapture capture;
  {
    std::string argument(1000, 'a');
    const std::array<FormatArg, 1> list{FormatArg(argument)};
    helper_.writeToLog(kFunction, 0, 0, "%s", &buffer_, list);
    argument.assign(1000, 'b');
  }
  settle();
  EXPECT_TRUE(capture.has(kFunction, 0, std::string(1000, 'a')));
}

TEST_F(LoggedMessage, PlaceholderMayFollowAPercentSignOfTheText) {
  EXPECT_EQ(lineOf("100%%: %bxml_zq"), "100%:    " + xmlOf("open=\"hello\"") + "   ");
  // Here it is formatted to the placeholder's.
  EXPECT_EQ(lineOf("%%bxml_zq"), "   " + xmlOf("open=\"hello\"") + "   ");
  EXPECT_EQ(lineOf("%5%bxml_zq"), "   " + xmlOf("open=\"hello\"") + "   ");
}

TEST_F(LoggedMessage, PlaceholderWithoutItsPercentSignTakesTheXmlBetweenTwoAndThreeBlanks) {
  // The format has the placeholder, the text that is left of it only the argument's.
  EXPECT_EQ(lineOf("%s%bxml_zq", "bxml_zq" + std::string(4088, 'x')),
            "  " + xmlOf("open=\"hello\"") + "   " + std::string(4088, 'x'));
}

TEST_F(LoggedMessage, TextThatIsThePlaceholderButForThePercentSignIsNone) {
  EXPECT_EQ(lineOf("bxml_zq"), "bxml_zq");
  EXPECT_EQ(lineOf("%s", "%bxml_zq"), "%bxml_zq") << "the format has no place for the message";
}

TEST_F(LoggedMessage, OnlyTheFirstPlaceholderIsReplaced) {
  EXPECT_EQ(lineOf("%bxml_zq%bxml_zq"), "   " + xmlOf("open=\"hello\"") + "   %bxml_zq");
}

TEST_F(LoggedMessage, KeepsTakingAnArgumentForThePlaceholder) {
  EXPECT_EQ(lineOf("%s|%bxml_zq", "%bxml_zq"), "   " + xmlOf("open=\"hello\"") + "   |%bxml_zq");
}

TEST_F(LoggedMessage, PercentSignsOfArgumentsPrintAsTheyStand) {
  EXPECT_EQ(lineOf("%s: %bxml_zq", "100% %s %n %d"), "100% %s %n %d:    " + xmlOf("open=\"hello\"") + "   ");
  EXPECT_EQ(lineOf("%s", "%s%s%s%n"), "%s%s%s%n");
}

TEST_F(LoggedMessage, PercentSignsOfTheMessagePrintAsTheyStand) {
  BinaryBuffer buffer;
  fill(buffer, "100% %s %n %d %bxml_zq");
  EXPECT_EQ(lineOf(buffer, "%bxml_zq"), "   " + xmlOf("open=\"100% %s %n %d %bxml_zq\"") + "   ");
}

TEST_F(LoggedMessage, TextIsCutAfter4095Characters) {
  EXPECT_EQ(lineOf("%s", std::string(4095, 'x')), std::string(4095, 'x'));
  EXPECT_EQ(lineOf("%s", std::string(4096, 'x')), std::string(4095, 'x'));
  EXPECT_EQ(lineOf(std::string(100'000, 'y').c_str()), std::string(4095, 'y'));
}

TEST_F(LoggedMessage, MessageDoesNotCountForTheCut) {
  BinaryBuffer buffer;
  fill(buffer, std::string(20'000, 'm'));
  EXPECT_EQ(lineOf(buffer, "%s%bxml_zq", std::string(4087, 'x')),
            std::string(4087, 'x') + "   " + xmlOf("open=\"" + std::string(20'000, 'm') + "\"") + "   ");
}

TEST_F(LoggedMessage, PlaceholderThatIsCutTakesNoXml) {
  EXPECT_EQ(lineOf("%s%bxml_zq", std::string(4088, 'x')), std::string(4088, 'x') + "%bxml_z");
}

TEST_F(LoggedMessage, TextEndsAtItsFirstNul) {
  EXPECT_EQ(lineOf("%s%bxml_zq", std::string("a\0b", 3)), "a");
}

TEST_F(LoggedMessage, LineHasFunctionLevelAndContextValue) {
  std::atomic<int> seen = 0;
  EvDebug::setDebugLevel(7);
  EvDebug::setSink([&](const LogLine& line) {
    EXPECT_EQ(line.function, kFunction);
    EXPECT_EQ(line.level, 7);
    EXPECT_EQ(line.contextValue, -5'000'000'000);
    EXPECT_EQ(line.prefix, "");
    EXPECT_EQ(line.log, "");
    ++seen;
  });
  helper_.writeToLog(kFunction, 7, -5'000'000'000, "text", &buffer_);
  settle();
  EvDebug::setSink({});
  EvDebug::setDebugLevel(0);
  EXPECT_EQ(seen, 1);
}

// --- The message

TEST_F(LoggedMessage, PasswordIsMasked) {
  Guarded message;
  message.setOpen("visible");
  message.setHiddenPassword("hush-1");
  BinaryBuffer buffer;
  ASSERT_NE(message.SerializeBinary(buffer), 0u);
  EXPECT_EQ(lineOf(buffer, "%bxml_zq"), "   " + xmlOf("hiddenPassword=\"*******\" open=\"visible\"") + "   ");
}

TEST_F(LoggedMessage, SensitiveValueIsMasked) {
  Guarded message;
  message.setSecretText("hush-2");
  message.setSecretNumber(123456789);
  BinaryBuffer buffer;
  ASSERT_NE(message.SerializeBinary(buffer), 0u);
  EXPECT_EQ(lineOf(buffer, "%bxml_zq"),
            "   " + xmlOf("secretNumber=\"########\" secretText=\"########\"") + "   ");
}

TEST_F(LoggedMessage, NullObjectLeavesThePlaceEmpty) {
  LogCapture capture;
  helper_.writeToLog(kFunction, 0, 0, "[%bxml_zq]", static_cast<XNMessageBase*>(nullptr));
  settle();
  EXPECT_THAT(textsOf(capture, kFunction), ElementsAre("[      ]"));
  EXPECT_TRUE(
      capture.has("BinarySerializer::unserialize", 0, "[Buffer received for unserialization is not set]"));
}

TEST_F(LoggedMessage, NullBufferLeavesThePlaceEmpty) {
  LogCapture capture;
  helper_.writeToLog(kFunction, 0, 0, "[%bxml_zq]", static_cast<BinaryBuffer*>(nullptr));
  settle();
  EXPECT_THAT(textsOf(capture, kFunction), ElementsAre("[      ]"));
}

TEST_F(LoggedMessage, BufferThatIsNoMessageLeavesThePlaceEmpty) {
  std::string noise(100, '\xAA');
  BinaryBuffer buffer;
  buffer.SetReadBuffer(noise.data(), noise.size(), true);
  EXPECT_EQ(lineOf(buffer, "[%bxml_zq]"), "[      ]");
}

TEST_F(LoggedMessage, ObjectWithoutAClassLeavesThePlaceEmpty) {
  LogCapture capture;
  XNMessageBase none;
  helper_.writeToLog(kFunction, 0, 0, "[%bxml_zq]", &none);
  settle();
  EXPECT_THAT(textsOf(capture, kFunction), ElementsAre("[      ]"));
}

TEST_F(LoggedMessage, ObjectIsLoggedAsItsBinaryForm) {
  LogCapture capture;
  Guarded message;
  message.setOpen("hello");
  message.setHiddenPassword("hush");
  helper_.writeToLog(kFunction, 0, 0, "%bxml_zq", &message);
  message.setOpen("changed");
  settle();
  EXPECT_THAT(textsOf(capture, kFunction),
              ElementsAre("   " + xmlOf("hiddenPassword=\"*******\" open=\"hello\"") + "   "));
}

TEST_F(LoggedMessage, BufferMayBeUsedAgainAtOnce) {
  LogCapture capture;
  helper_.writeToLog(kFunction, 0, 0, "%bxml_zq", &buffer_);
  std::memset(buffer_.getBuffer(), 0, buffer_.getBufferSize());
  settle();
  EXPECT_TRUE(capture.has(kFunction, 0, "   " + xmlOf("open=\"hello\"") + "   "));
}

TEST_F(LoggedMessage, BytesBehindTheContentAreNotShown) {
  BinaryBuffer buffer;
  fill(buffer, "an older and longer message");
  BinaryBuffer shorter;
  fill(shorter, "new");
  std::memcpy(buffer.getBuffer(), shorter.getBuffer(), shorter.getDataSize());
  ASSERT_TRUE(buffer.resizeBuffer(shorter.getDataSize()));
  ASSERT_GT(buffer.getBufferSize(), buffer.getDataSize());
  LogCapture capture;
  helper_.writeToLog(kFunction, 0, 0, "%bxml_zq", &buffer);
  settle();
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{kFunction, 0, "   " + xmlOf("open=\"new\"") + "   "}));
}

TEST_F(LoggedMessage, WithoutAContentSizeTheCapacityIsTheContent) {
  BinaryBuffer buffer;
  buffer.SetWriteBuffer(buffer_.getBuffer(), buffer_.getDataSize(), true);
  ASSERT_EQ(buffer.getDataSize(), 0u);
  EXPECT_EQ(lineOf(buffer, "%bxml_zq"), "   " + xmlOf("open=\"hello\"") + "   ");
}

TEST_F(LoggedMessage, ContentBeyondTheCapacityEndsThere) {
  BinaryBuffer buffer;
  buffer.SetReadBuffer(buffer_.getBuffer(), buffer_.getDataSize(), true);
  buffer.setDataSize(1'000'000);
  EXPECT_EQ(lineOf(buffer, "%bxml_zq"), "   " + xmlOf("open=\"hello\"") + "   ");
}

TEST_F(LoggedMessage, NullFunctionAndFormatAreEmptyTexts) {
  LogCapture capture;
  helper_.writeToLog(nullptr, 0, 0, nullptr, &buffer_);
  settle();
  EXPECT_THAT(capture.lines(), ElementsAre(CapturedLine{"", 0, ""}));
}

TEST(MessageContainer, NullIsRefused) {
  EXPECT_EQ(XmlLoggerHelper::writeThroughTreadPool(nullptr), 1u);
}

// --- The pool

TEST_F(LoggedMessage, InstanceIsOneWithTwentyThreads) {
  EXPECT_EQ(XmlLoggerHelper::getXmlLoggerInstance(), &helper_);
  settle();
  EXPECT_EQ(helper_.getCurrentAvailableThreadCount(), 20u);
  EXPECT_FALSE(helper_.initThreadPool("another", 300, 20, 20, 20)) << "it is prepared";
}

TEST_F(LoggedMessage, LineIsWrittenOnAThreadOfThePool) {
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

TEST_F(LoggedMessage, WithAllThreadsBusyTheLineIsWrittenBeforeTheCallReturns) {
  LogCapture capture;
  const BusyPool busy;
  helper_.writeToLog(kFunction, 0, 0, "%bxml_zq", &buffer_);
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{kFunction, 0, "   " + xmlOf("open=\"hello\"") + "   "}));
  EXPECT_EQ(helper_.getCurrentAvailableThreadCount(), 0u);
}

TEST_F(LoggedMessage, LineIsLostWhenNoThreadStarts) {
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

TEST_F(LoggedMessage, WhatASinkThrowsDoesNotEndTheProcess) {
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

TEST_F(LoggedMessage, SinkThatLogsMessagesDoesNotFeedItself) {
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
TEST_F(LoggedMessage, WithoutMemoryTheLineIsLostAndNothingLeaks) {
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
