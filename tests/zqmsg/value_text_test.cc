#include "tools/zqmsg/value_text.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "tools/zqmsg/console.h"

namespace zqxml::tool {
namespace {

using namespace std::string_literals;

TEST(ValueText, QuotesAndBackslashesAreEscaped) {
  EXPECT_EQ(quotedText(R"(a "b" \c)"), R"("a \"b\" \\c")");
}

TEST(ValueText, ControlCharactersAreMadeVisible) {
  EXPECT_EQ(quotedText("a\nb\tc\rd\0e\x1b[31m\x7f"s), R"("a\nb\tc\rd\x00e\x1b[31m\x7f")");
  EXPECT_EQ(quotedText("\u009b"), R"("\xc2\x9b")");
}

TEST(ValueText, WellFormedUtf8StandsAsItIs) {
  EXPECT_EQ(quotedText("Zoë \u20ac \U0001F600"), "\"Zoë \u20ac \U0001F600\"");
}

TEST(ValueText, BytesThatAreNoUtf8AreMadeVisible) {
  EXPECT_EQ(quotedText("\xff"), R"("\xff")");
  EXPECT_EQ(quotedText("\xc0\x80"), R"("\xc0\x80")");
  EXPECT_EQ(quotedText("\xe0\x80\x80"), R"("\xe0\x80\x80")");
  EXPECT_EQ(quotedText("\xed\xa0\x80"), R"("\xed\xa0\x80")");
  EXPECT_EQ(quotedText("\xf0\x80\x80\x80"), R"("\xf0\x80\x80\x80")");
  EXPECT_EQ(quotedText("\xf4\x90\x80\x80"), R"("\xf4\x90\x80\x80")");
  EXPECT_EQ(quotedText("a\xe2\x82"), R"("a\xe2\x82")");
}

TEST(ValueText, OfALongTextTheStartIsShown) {
  EXPECT_EQ(quotedText(std::string(60, 'a')), '"' + std::string(60, 'a') + '"');
  EXPECT_EQ(quotedText(std::string(1000, 'a')), '"' + std::string(60, 'a') + "\"... (1000 bytes)");
}

TEST(ValueText, OfALongTextThePlaceOfADifferenceIsShown) {
  std::string text(1000, 'a');
  text[500] = 'X';
  EXPECT_EQ(quotedText(text, 500),
            "...\"" + std::string(16, 'a') + "X" + std::string(43, 'a') + "\"... (1000 bytes)");
  EXPECT_EQ(quotedText(text, 1000), "...\"" + std::string(60, 'a') + "\" (1000 bytes)");
}

TEST(ValueText, ALongTextIsNotCutInsideACharacter) {
  std::string text;
  for (int i = 0; i < 300; ++i) text += "\u20ac";
  EXPECT_EQ(quotedText(text, 451).find("\\x"), std::string::npos);
}

TEST(ValueText, NumbersAreShownInFull) {
  EXPECT_EQ(numberText(0.1), "0.1");
  EXPECT_EQ(numberText(1.0f / 3), "0.33333334");
  EXPECT_EQ(numberText(-0.0), "-0");
  EXPECT_EQ(numberText(std::numeric_limits<double>::infinity()), "inf");
  EXPECT_EQ(numberText(1e300), "1e+300");
}

TEST(ValueText, WhatIsShownToTheUserKeepsItsQuotes) {
  EXPECT_EQ(visible("a \"b\" \\ \x1b[2J"), "a \"b\" \\ \\x1b[2J");
}

}  // namespace
}  // namespace zqxml::tool
