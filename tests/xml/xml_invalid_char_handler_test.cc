#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/log_capture.h>
#include <zqxml/platform/text.h>
#include <zqxml/xml/xml_invalid_char_handler.h>

#include <random>
#include <string>

namespace zqxml {
namespace {

using namespace std::string_literals;
using testing::ElementsAre;

std::u16string encoded(const std::u16string& text) {
  XmlInvalidCharHandler handler;
  const char16_t* result = handler.encodeInvalidChars(text.c_str());
  return result == nullptr ? u"(null)" : result;
}

std::u16string decoded(const std::u16string& text) {
  XmlInvalidCharHandler handler;
  const char16_t* result = handler.decodeInvalidChars(text.c_str());
  return result == nullptr ? u"(null)" : result;
}

TEST(XmlInvalidCharHandler, LegalTextIsLeftAsItIs) {
  EXPECT_EQ(encoded(u"abc"), u"abc");
}

TEST(XmlInvalidCharHandler, LastTwoUnitsAreEscapedAndTheReplacementCharacterPasses) {
  EXPECT_EQ(encoded(u"\xfffe"), u"||#FFFE!");
  EXPECT_EQ(encoded(u"a\xffff"), u"|a|#FFFF!");
  EXPECT_EQ(encoded(u"\xfffd"), u"\xfffd");
}

TEST(XmlInvalidCharHandler, EscapeFormIsReadBack) {
  EXPECT_EQ(decoded(u"|A|#1!B"), u"A\u0001B");
}

TEST(XmlInvalidCharHandler, OrdinaryTextMayBeginWithTheBar) {
  EXPECT_EQ(decoded(u"|plain"), u"|plain");
}

TEST(XmlInvalidCharHandler, SequenceWithOtherCharactersThanDigitsStays) {
  LogCapture capture;
  EXPECT_EQ(decoded(u"|A|#ZZ!B"), u"|A|#ZZ!B");
}

TEST(XmlInvalidCharHandler, SequenceOfFiveDigitsStays) {
  LogCapture capture(25);
  EXPECT_EQ(decoded(u"|A|#12345!B"), u"|A|#12345!B");
  EXPECT_TRUE(capture.empty());
}

TEST(XmlInvalidCharHandler, UnfinishedSequenceStays) {
  EXPECT_EQ(decoded(u"|A|#1"), u"|A|#1");
}

TEST(XmlInvalidCharHandler, KeepsNarrowTextBeyondAsciiInvalidThoughItHasNoControlCharacter) {
  EXPECT_TRUE(XmlInvalidCharHandler::hasXmlInvalidChar("\u00e9"));
  EXPECT_FALSE(XmlInvalidCharHandler::hasControlChar("\u00e9"));
}

// --- Encoding

TEST(XmlInvalidCharEncoding, EachIllegalUnitHasUpperCaseDigitsWithoutLeadingZeros) {
  EXPECT_EQ(encoded(u"A\u0001B"), u"|A|#1!B");
  EXPECT_EQ(encoded(u"\u001f"), u"||#1F!");
  EXPECT_EQ(encoded({u'x', 0xd800, u'y'}), u"|x|#D800!y");
  EXPECT_EQ(encoded(u"\u0001\u0002"), u"||#1!|#2!");
}

TEST(XmlInvalidCharEncoding, PairOfSurrogatesIsTwoIllegalUnits) {
  EXPECT_EQ(encoded(u"\U0001f600"), u"||#D83D!|#DE00!");
}

TEST(XmlInvalidCharEncoding, BarAndHashOfOrdinaryTextAreNotEscaped) {
  EXPECT_EQ(encoded(u"a|#1!"), u"a|#1!");
  EXPECT_EQ(encoded(u"|#\u0001"), u"||#|#1!");
}

TEST(XmlInvalidCharEncoding, LegalUnitsAreExactlyThoseThatXmlAllows) {
  for (unsigned unit = 1; unit <= 0xffff; ++unit) {
    const bool legal = unit == 9 || unit == 10 || unit == 13 || (unit >= 0x20 && unit <= 0xd7ff) ||
                       (unit >= 0xe000 && unit <= 0xfffd);
    const std::u16string text(1, static_cast<char16_t>(unit));
    ASSERT_EQ(XmlInvalidCharHandler::isLegal(static_cast<char16_t>(unit)), legal) << unit;
    ASSERT_EQ(XmlInvalidCharHandler::hasXmlInvalidChar(text), !legal) << unit;
    ASSERT_EQ(encoded(text) == text, legal) << unit;
  }
}

TEST(XmlInvalidCharEncoding, PlainScanFindsAnIllegalUnitAtEveryPosition) {
  std::u16string text(100, u'\u4e2d');
  EXPECT_TRUE(XmlInvalidCharHandler::isPlain(text));
  EXPECT_TRUE(XmlInvalidCharHandler::isPlain(u""));
  for (const char16_t illegal : u"\0\x8\xb\xc\x1f\xd800\xdfff\xfffe\xffff"s) {
    for (std::size_t position = 0; position < text.size(); ++position) {
      std::u16string changed = text;
      changed[position] = illegal;
      ASSERT_FALSE(XmlInvalidCharHandler::isPlain(changed)) << unsigned{illegal} << " at " << position;
    }
  }
  for (const char16_t legal : u"\t\n\r \x7f\xd7ff\xe000\xfffd"s)
    EXPECT_TRUE(XmlInvalidCharHandler::isPlain(std::u16string(70, legal))) << unsigned{legal};
}

TEST(XmlInvalidCharEncoding, NullTextIsLoggedAndNull) {
  LogCapture capture;
  XmlInvalidCharHandler handler;
  EXPECT_EQ(handler.encodeInvalidChars(nullptr), nullptr);
  EXPECT_THAT(capture.lines(),
              ElementsAre(CapturedLine{"XmlInvalidCharHandler::encodeInvalidChars", 0, "Input is NULL"}));
}

TEST(XmlInvalidCharEncoding, EmptyTextIsTracedAndNull) {
  LogCapture capture(25);
  XmlInvalidCharHandler handler;
  EXPECT_EQ(handler.encodeInvalidChars(u""), nullptr);
  EXPECT_THAT(capture.lines(), ElementsAre(CapturedLine{"XmlInvalidCharHandler::encodeInvalidChars", 25,
                                                        "Encoded Data:[NULL]"}));
}

TEST(XmlInvalidCharEncoding, SecondTextReplacesTheResultOfTheFirst) {
  XmlInvalidCharHandler handler;
  handler.encodeInvalidChars(u"a long text that does not fit into the string itself");
  EXPECT_EQ(handler.encodeInvalidChars(u"\u0001"), u"||#1!"s);
}

TEST(XmlInvalidCharEncoding, AppendingLeavesWhatIsThere) {
  std::u16string out = u"before ";
  XmlInvalidCharHandler::appendEncoded(out, u"plain ");
  XmlInvalidCharHandler::appendEncoded(out, u"\u0001\0"s);
  EXPECT_EQ(out, u"before plain ||#1!|#0!");
}

// --- Decoding

TEST(XmlInvalidCharDecoding, SequencesOfOneToFourDigitsOfEitherCaseAreReplaced) {
  EXPECT_EQ(decoded(u"||#d800!|#D83D!"), (std::u16string{0xd800, 0xd83d}));
  EXPECT_EQ(decoded(u"|a|#0041!b"), u"aAb");
  EXPECT_EQ(decoded(u"||#1!"), u"\u0001");
}

TEST(XmlInvalidCharDecoding, KeepsASequenceWithoutDigitsStandingForNul) {
  EXPECT_EQ(ParseAndReplaceUtil(u"|a|#!b"), u"a\0b"s);
  EXPECT_EQ(decoded(u"|a|#!b"), u"a");
}

TEST(XmlInvalidCharDecoding, KeepsSequencesOfLegalUnitsDecoded) {
  EXPECT_EQ(decoded(u"||#41!"), u"A");
}

TEST(XmlInvalidCharDecoding, TextThatDoesNotBeginWithTheBarIsLeftAsItIs) {
  EXPECT_EQ(decoded(u"A|#1!B"), u"A|#1!B");
}

TEST(XmlInvalidCharDecoding, BadSequenceIsLoggedWithItsFirstBadCharacter) {
  LogCapture capture;
  EXPECT_EQ(decoded(u"|A|#1\u20ac!|#2!"), u"A|#1\u20ac!\u0002");
  EXPECT_THAT(
      capture.lines(),
      ElementsAre(CapturedLine{
          "parseForInteger", 0,
          "Decoding of input string [1\u20ac] failed at position[1] for ch[\u20ac]. Treating the sequence as "
          "pattern instead of invalid char."}));
}

TEST(XmlInvalidCharDecoding, BadSequencesAtTheEndStay) {
  LogCapture capture;
  EXPECT_EQ(decoded(u"|A|#1!|#12345!"), u"A\u0001|#12345!");
  EXPECT_EQ(decoded(u"|A|#1!|#x!"), u"A\u0001|#x!");
  EXPECT_EQ(decoded(u"|A|#1!|#2"), u"A\u0001|#2");
  EXPECT_EQ(decoded(u"|A|#1!|#"), u"A\u0001|#");
}

TEST(XmlInvalidCharDecoding, SequenceReachesToTheNextExclamationMark) {
  LogCapture capture;
  // The inner start is part of a sequence that is too long, and so is passed over with it.
  EXPECT_EQ(decoded(u"||#xx|#1!|#2!"), u"|#xx|#1!\u0002");
  EXPECT_TRUE(capture.empty());
}

TEST(XmlInvalidCharDecoding, BarAloneStays) {
  EXPECT_EQ(decoded(u"|"), u"|");
  EXPECT_EQ(decoded(u"||"), u"||");
}

TEST(XmlInvalidCharDecoding, NullTextIsLoggedAndNull) {
  LogCapture capture;
  XmlInvalidCharHandler handler;
  EXPECT_EQ(handler.decodeInvalidChars(nullptr), nullptr);
  EXPECT_THAT(capture.lines(), ElementsAre(CapturedLine{"XmlInvalidCharHandler::decodeInvalidChars", 0,
                                                        "Input data is NULL. Invalid input argument."}));
}

TEST(XmlInvalidCharDecoding, KeepsTheLineOfAnEmptyTextSpeakingOfEncoding) {
  LogCapture capture;
  XmlInvalidCharHandler handler;
  EXPECT_EQ(handler.decodeInvalidChars(u""), nullptr);
  EXPECT_THAT(capture.lines(), ElementsAre(CapturedLine{"XmlInvalidCharHandler::decodeInvalidChars", 0,
                                                        "Failed To Encode Invalid XMLChar"}));
}

TEST(XmlInvalidCharDecoding, AppendingGivesWhatAReaderOfTheResultSees) {
  LogCapture capture;
  for (const std::u16string& text :
       {u""s, u"plain"s, u"|plain"s, u"|A|#1!B"s, u"|A|#0!B"s, u"|#!"s, u"|A|#ZZ!B"s}) {
    std::u16string out = u"before ";
    XmlInvalidCharHandler::appendDecoded(out, text);
    EXPECT_EQ(out, u"before " + (text.empty() ? text : decoded(text)));
  }
}

TEST(ParseAndReplaceUtil, TextIsTakenToHaveItsBarInFront) {
  EXPECT_EQ(ParseAndReplaceUtil(u"|A|#1!B"), u"A\u0001B");
  EXPECT_EQ(ParseAndReplaceUtil(u"xA|#1!B"), u"A\u0001B");
  EXPECT_EQ(ParseAndReplaceUtil(u"xplain"), u"|plain");
  EXPECT_EQ(ParseAndReplaceUtil(u""), u"|");
}

TEST(XmlInvalidCharHandler, EveryTextWithoutSequenceComesBack) {
  std::mt19937 random(20262);
  std::uniform_int_distribution<unsigned> anyUnit(1, 0xffff);
  std::uniform_int_distribution<unsigned> smallUnit(1, 0x40);
  for (int round = 0; round < 20000; ++round) {
    std::u16string text;
    for (unsigned size = smallUnit(random); size > 0; --size)
      text += static_cast<char16_t>(size % 2 == 0 ? anyUnit(random) : smallUnit(random));
    if (text.find(u"|#") != text.npos) continue;
    ASSERT_EQ(decoded(encoded(text)), text) << toUtf8(text);
    std::u16string appended;
    XmlInvalidCharHandler::appendEncoded(appended, text);
    ASSERT_EQ(appended, encoded(text));
    std::u16string back;
    XmlInvalidCharHandler::appendDecoded(back, appended);
    ASSERT_EQ(back, text);
  }
}

// --- Tests of texts

TEST(XmlInvalidCharTests, NarrowTextIsInvalidByControlCharactersButTabAndLineEnds) {
  EXPECT_FALSE(XmlInvalidCharHandler::hasXmlInvalidChar("a\t\n\r~\x7f"));
  EXPECT_TRUE(XmlInvalidCharHandler::hasXmlInvalidChar("\x0b"));
  EXPECT_TRUE(XmlInvalidCharHandler::hasXmlInvalidChar("a\0"s));
  EXPECT_FALSE(XmlInvalidCharHandler::hasXmlInvalidChar(""));
}

TEST(XmlInvalidCharTests, TabAndLineEndsAndDeleteAreControlCharacters) {
  for (const char character : {'\0', '\t', '\n', '\r', '\x1f', '\x7f'}) {
    EXPECT_TRUE(XmlInvalidCharHandler::hasControlChar(std::string(1, character))) << int{character};
    EXPECT_TRUE(XmlInvalidCharHandler::hasControlChar(std::u16string(1, static_cast<char16_t>(character))));
  }
  EXPECT_FALSE(XmlInvalidCharHandler::hasControlChar(" ~\x80\xff"));
  EXPECT_FALSE(XmlInvalidCharHandler::hasControlChar(u" ~\u0080\uffff"));
}

}  // namespace
}  // namespace zqxml
