// The road of one logged message: what is copied, formatted, decoded, masked and written.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/annotation/password_routines.h>
#include <tests/logging/counted_allocations.h>
#include <tests/logging/logged_message.h>
#include <tests/logging/message_logging.h>
#include <tests/support/log_capture.h>
#include <zqxml/binary/binary_buffer.h>
#include <zqxml/binary/binary_serializer.h>
#include <zqxml/catalogue/generated/App.h>
#include <zqxml/catalogue/generated/Demo.h>
#include <zqxml/logging/xml_logger_helper.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/platform/ev_debug.h>
#include <zqxml/xml/xml_decoder.h>

#include <atomic>
#include <cstring>
#include <string>
#include <vector>

namespace zqxml {
namespace {

using Demo::Guarded;
using testing::ElementsAre;

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
  EXPECT_EQ(lineOf("got [%bxml_zq]."), "got [   " + guardedXml("open=\"hello\"") + "   ].");
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
            "agent sent 64 bytes:    " + guardedXml("open=\"hello\"") + "   ");
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
  EXPECT_EQ(lineOf("100%%: %bxml_zq"), "100%:    " + guardedXml("open=\"hello\"") + "   ");
  // Here it is formatted to the placeholder's.
  EXPECT_EQ(lineOf("%%bxml_zq"), "   " + guardedXml("open=\"hello\"") + "   ");
  EXPECT_EQ(lineOf("%5%bxml_zq"), "   " + guardedXml("open=\"hello\"") + "   ");
}

TEST_F(LoggedMessage, PlaceholderWithoutItsPercentSignTakesTheXmlBetweenTwoAndThreeBlanks) {
  // The format has the placeholder, the text that is left of it only the argument's.
  EXPECT_EQ(lineOf("%s%bxml_zq", "bxml_zq" + std::string(4088, 'x')),
            "  " + guardedXml("open=\"hello\"") + "   " + std::string(4088, 'x'));
}

TEST_F(LoggedMessage, TextThatIsThePlaceholderButForThePercentSignIsNone) {
  EXPECT_EQ(lineOf("bxml_zq"), "bxml_zq");
  EXPECT_EQ(lineOf("%s", "%bxml_zq"), "%bxml_zq") << "the format has no place for the message";
}

TEST_F(LoggedMessage, OnlyTheFirstPlaceholderIsReplaced) {
  EXPECT_EQ(lineOf("%bxml_zq%bxml_zq"), "   " + guardedXml("open=\"hello\"") + "   %bxml_zq");
}

TEST_F(LoggedMessage, KeepsTakingAnArgumentForThePlaceholder) {
  EXPECT_EQ(lineOf("%s|%bxml_zq", "%bxml_zq"), "   " + guardedXml("open=\"hello\"") + "   |%bxml_zq");
}

TEST_F(LoggedMessage, PercentSignsOfArgumentsPrintAsTheyStand) {
  EXPECT_EQ(lineOf("%s: %bxml_zq", "100% %s %n %d"),
            "100% %s %n %d:    " + guardedXml("open=\"hello\"") + "   ");
  EXPECT_EQ(lineOf("%s", "%s%s%s%n"), "%s%s%s%n");
}

TEST_F(LoggedMessage, PercentSignsOfTheMessagePrintAsTheyStand) {
  BinaryBuffer buffer;
  fill(buffer, "100% %s %n %d %bxml_zq");
  EXPECT_EQ(lineOf(buffer, "%bxml_zq"), "   " + guardedXml("open=\"100% %s %n %d %bxml_zq\"") + "   ");
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
            std::string(4087, 'x') + "   " + guardedXml("open=\"" + std::string(20'000, 'm') + "\"") + "   ");
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
  EXPECT_EQ(lineOf(buffer, "%bxml_zq"),
            "   " + guardedXml("hiddenPassword=\"*******\" open=\"visible\"") + "   ");
}

TEST_F(LoggedMessage, SensitiveValueIsMasked) {
  Guarded message;
  message.setSecretText("hush-2");
  message.setSecretNumber(123456789);
  BinaryBuffer buffer;
  ASSERT_NE(message.SerializeBinary(buffer), 0u);
  EXPECT_EQ(lineOf(buffer, "%bxml_zq"),
            "   " + guardedXml("secretNumber=\"########\" secretText=\"########\"") + "   ");
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

/// The second time that it is called: writing asks it to count first.
bstring throwAtTheSecondCall(bstring text, ZqXMLContextInfo*) {
  static int calls = 0;
  return ++calls % 2 == 0 ? failingRoutine(text, nullptr) : text;
}

TEST_F(LoggedMessage, MessageThatAPasswordRoutineThrowsAtLeavesThePlaceEmpty) {
  constexpr auto kType = Annotation::PasswordEncryptType::BASE64;
  App::AnnotationSample message;
  message.setBase64Password("stored", kType);
  BinaryBuffer buffer;
  ASSERT_NE(message.SerializeBinary(buffer), 0u);
  XMLDecoder::registerPasswordDecAlgo(kType, failingRoutine);
  EXPECT_EQ(lineOf(buffer, "[%bxml_zq]"), "[      ]");

  XMLDecoder::registerPasswordDecAlgo(kType, nullptr);
  XMLDecoder::registerPasswordEncAlgo(kType, throwAtTheSecondCall);
  message.setBase64Password("plain", Annotation::PasswordEncryptType::PLAIN_TEXT);
  LogCapture capture;
  helper_.writeToLog(kFunction, 0, 0, "[%bxml_zq]", &message);
  settle();
  EXPECT_THAT(textsOf(capture, kFunction), ElementsAre("[      ]"));
  XMLDecoder::registerPasswordEncAlgo(kType, nullptr);
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
              ElementsAre("   " + guardedXml("hiddenPassword=\"*******\" open=\"hello\"") + "   "));
}

TEST_F(LoggedMessage, BufferMayBeUsedAgainAtOnce) {
  LogCapture capture;
  helper_.writeToLog(kFunction, 0, 0, "%bxml_zq", &buffer_);
  std::memset(buffer_.getBuffer(), 0, buffer_.getBufferSize());
  settle();
  EXPECT_TRUE(capture.has(kFunction, 0, "   " + guardedXml("open=\"hello\"") + "   "));
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
              ElementsAre(CapturedLine{kFunction, 0, "   " + guardedXml("open=\"new\"") + "   "}));
}

TEST_F(LoggedMessage, WithoutAContentSizeTheCapacityIsTheContent) {
  BinaryBuffer buffer;
  buffer.SetWriteBuffer(buffer_.getBuffer(), buffer_.getDataSize(), true);
  ASSERT_EQ(buffer.getDataSize(), 0u);
  EXPECT_EQ(lineOf(buffer, "%bxml_zq"), "   " + guardedXml("open=\"hello\"") + "   ");
}

TEST_F(LoggedMessage, ContentBeyondTheCapacityEndsThere) {
  BinaryBuffer buffer;
  buffer.SetReadBuffer(buffer_.getBuffer(), buffer_.getDataSize(), true);
  buffer.setDataSize(1'000'000);
  EXPECT_EQ(lineOf(buffer, "%bxml_zq"), "   " + guardedXml("open=\"hello\"") + "   ");
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

}  // namespace
}  // namespace zqxml
