#include <gtest/gtest.h>
#include <zqxml/platform/number_text.h>

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <locale>
#include <random>
#include <sstream>
#include <string>

namespace zqxml {
namespace {

using namespace std::string_literals;

std::u16string widened(const std::string& text) {
  return std::u16string(text.begin(), text.end());
}

/// Texts of the kinds that number parsers differ in, made of the characters that matter to them.
std::string randomNumberText(std::mt19937& random) {
  static const std::string kAlphabet = "0123456789012345678901234567890123456789+-. eEaxXinf\t\n";
  std::string text;
  for (auto size = std::uniform_int_distribution<int>(0, 30)(random); size > 0; --size)
    text += kAlphabet[std::uniform_int_distribution<std::size_t>(0, kAlphabet.size() - 1)(random)];
  return text;
}

TEST(NumberText, SignedNumberEndsAtTheFirstOtherCharacter) {
  EXPECT_EQ(parseInt64("12abc"), 12);
  EXPECT_EQ(parseInt64("2020-1-1"), 2020);
  EXPECT_EQ(parseInt64(u"-7 8"), -7);
  EXPECT_EQ(parseInt64("5\0 6"s), 5);
}

TEST(NumberText, EachCharacterAtEachPlaceEndsASignedNumber) {
  const std::string digits = "987654321012345678";
  for (std::size_t size = 1; size <= digits.size(); ++size) {
    const std::string number = digits.substr(0, size);
    EXPECT_EQ(parseInt64(number), std::stoll(number));
    for (std::size_t place = 0; place < size; ++place)
      for (int c = 1; c < 256; ++c) {
        std::string text = number;
        text[place] = static_cast<char>(c);
        EXPECT_EQ(parseInt64(text), std::strtoll(text.c_str(), nullptr, 10)) << text;
      }
  }
}

TEST(NumberText, SignedNumberSkipsLeadingWhiteSpaceAndTakesASign) {
  EXPECT_EQ(parseInt64(" \t\n\v\f\r+15"), 15);
  EXPECT_EQ(parseInt64(u" \t\n\v\f\r-15"), -15);
  EXPECT_EQ(parseInt64("+-15"), 0);
  EXPECT_EQ(parseInt64("- 15"), 0);
}

TEST(NumberText, TextWithoutNumberIsZero) {
  for (const char* text : {"", " ", "-", "+", "abc", "e5", ".", "x1"}) {
    EXPECT_EQ(parseInt64(text), 0) << text;
    EXPECT_EQ(parseInt32(text), 0) << text;
    EXPECT_EQ(parseUInt64(text), 0u) << text;
    EXPECT_EQ(parseUInt32(text), 0u) << text;
    EXPECT_EQ(parseDouble(text), 0.0) << text;
    EXPECT_FALSE(std::signbit(parseDouble(text))) << text;
  }
}

TEST(NumberText, SignedNumbersSaturate) {
  EXPECT_EQ(parseInt64("9223372036854775807"), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(parseInt64("9223372036854775808"), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(parseInt64("-9223372036854775808"), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(parseInt64("-9223372036854775809"), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(parseInt64(u"-99999999999999999999999999"), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(parseInt32("2147483647"), 2147483647);
  EXPECT_EQ(parseInt32("2147483648"), 2147483647);
  EXPECT_EQ(parseInt32("-2147483648"), -2147483647 - 1);
  EXPECT_EQ(parseInt32(u"-2147483649"), -2147483647 - 1);
}

TEST(NumberText, UnsignedNumbersSaturateAndNegateModuloTheirWidth) {
  EXPECT_EQ(parseUInt32("4294967295"), 4294967295u);
  EXPECT_EQ(parseUInt32("4294967296"), 4294967295u);
  EXPECT_EQ(parseUInt32("-1"), 4294967295u);
  EXPECT_EQ(parseUInt32(u"-4294967295"), 1u);
  EXPECT_EQ(parseUInt32("-4294967296"), 4294967295u);
  EXPECT_EQ(parseUInt64("18446744073709551615"), 18446744073709551615u);
  EXPECT_EQ(parseUInt64("18446744073709551616"), 18446744073709551615u);
  EXPECT_EQ(parseUInt64(u"-1"), 18446744073709551615u);
  EXPECT_EQ(parseUInt64("-18446744073709551616"), 18446744073709551615u);
}

TEST(NumberText, DoubleReadsWhatStrtodReads) {
  EXPECT_EQ(parseDouble(" +1.5e3x"), 1500.0);
  EXPECT_EQ(parseDouble(u"-.5"), -0.5);
  EXPECT_EQ(parseDouble("5."), 5.0);
  EXPECT_EQ(parseDouble("1e"), 1.0);
  EXPECT_EQ(parseDouble("0x1.8p1"), 3.0);
  EXPECT_EQ(parseDouble("-0x10"), -16.0);
  EXPECT_EQ(parseDouble("0xg"), 0.0);
  EXPECT_EQ(parseDouble("--1"), 0.0);
  EXPECT_EQ(parseDouble("+-1"), 0.0);
  EXPECT_TRUE(std::signbit(parseDouble("-0")));
  EXPECT_EQ(parseDouble("-INFINITYx"), -std::numeric_limits<double>::infinity());
  EXPECT_TRUE(std::isnan(parseDouble("nan(1)")));
}

TEST(NumberText, DoubleBeyondItsRangeIsInfiniteOrTheNearestSmallNumber) {
  EXPECT_EQ(parseDouble("1e400"), std::numeric_limits<double>::infinity());
  EXPECT_EQ(parseDouble(u"-1e400"), -std::numeric_limits<double>::infinity());
  EXPECT_EQ(parseDouble("1e-400"), 0.0);
  EXPECT_EQ(parseDouble("4.9406564584124654e-324"), std::numeric_limits<double>::denorm_min());
}

TEST(NumberText, WideDoubleMayBeOfAnyLengthAndEndsAtTheFirstUnitBeyondAscii) {
  EXPECT_EQ(parseDouble(u"1" + std::u16string(400, u'0')), std::numeric_limits<double>::infinity());
  EXPECT_EQ(parseDouble(std::u16string(400, u'0') + u"2.5"), 2.5);
  EXPECT_EQ(parseDouble(u"2.5\u0665"), 2.5);
  EXPECT_EQ(parseDouble(u"\u00a02.5"), 0.0);
  EXPECT_EQ(parseInt64(u"25\uff11"), 25);
}

TEST(NumberText, WhiteSpaceIsTrimmedAtBothEndsOnly) {
  EXPECT_EQ(trimSpace(" \t\n\v\f\ra b\r\f\v\n\t "), "a b");
  EXPECT_EQ(trimSpace(u" \t\n\v\f\ra b\r\f\v\n\t "), u"a b");
  EXPECT_EQ(trimSpace(" \t "), "");
  EXPECT_EQ(trimSpace(u"\u00a0"), u"\u00a0");
}

TEST(NumberText, AgreesWithTheCLibraryOnRandomTexts) {
  std::mt19937 random(20260);
  for (int round = 0; round < 100000; ++round) {
    const std::string text = randomNumberText(random);
    SCOPED_TRACE(text);
    ASSERT_EQ(parseInt64(text), std::strtoll(text.c_str(), nullptr, 10));
    ASSERT_EQ(parseInt64(widened(text)), parseInt64(text));
    ASSERT_EQ(parseUInt64(text), std::strtoull(text.c_str(), nullptr, 10));
    ASSERT_EQ(parseUInt64(widened(text)), parseUInt64(text));
    ASSERT_EQ(parseInt32(widened(text)), parseInt32(text));
    ASSERT_EQ(parseUInt32(widened(text)), parseUInt32(text));
    const double expected = std::strtod(text.c_str(), nullptr);
    for (const double value : {parseDouble(text), parseDouble(widened(text))}) {
      ASSERT_EQ(std::isnan(value), std::isnan(expected));
      ASSERT_EQ(std::signbit(value), std::signbit(expected));
      if (!std::isnan(expected)) {
        ASSERT_EQ(value, expected);
      }
    }
  }
}

/// What a stream of the classic locale makes of the text.
template <class T>
bool streamed(const std::string& text, T& value) {
  std::istringstream stream(text);
  stream.imbue(std::locale::classic());
  stream >> value;
  return !stream.fail();
}

template <class T>
void expectReadAsStreamed(const std::string& text) {
  T expected{};
  T value = 77;
  const bool isNumber = streamed(text, expected);
  ASSERT_EQ(readNumber(text, value), isNumber) << text;
  ASSERT_EQ(value, isNumber ? expected : T(77)) << text;
}

TEST(NumberText, ReadNumberAgreesWithStreamsOnRandomIntegers) {
  std::mt19937 random(2026);
  for (int round = 0; round < 30000; ++round) {
    const std::string text = randomNumberText(random);
    expectReadAsStreamed<std::int32_t>(text);
    expectReadAsStreamed<std::uint32_t>(text);
    expectReadAsStreamed<std::int64_t>(text);
  }
}

TEST(NumberText, ReadNumberEndsAtTheBorders) {
  for (const char* text : {"2147483647",
                           "2147483648",
                           "-2147483648",
                           "-2147483649",
                           "4294967295",
                           "4294967296",
                           "-4294967295",
                           "-4294967296",
                           "9223372036854775807",
                           "9223372036854775808",
                           "-9223372036854775808",
                           "-9223372036854775809",
                           "99999999999999999999999",
                           "-1",
                           "-0",
                           "+7",
                           "",
                           " ",
                           "-",
                           "+",
                           "--1",
                           "+-1",
                           "- 1",
                           "12abc",
                           "abc",
                           " \t\n12 3",
                           "1.9",
                           "0x10",
                           "\x80",
                           "007"}) {
    expectReadAsStreamed<std::int32_t>(text);
    expectReadAsStreamed<std::uint32_t>(text);
    expectReadAsStreamed<std::int64_t>(text);
  }
}

TEST(NumberText, ReadNumberAgreesWithStreamsOnFloatingPoint) {
  for (const char* text :
       {"0",     "1.5",   "-1.5",   "+1.5",   "1e6",    "1e+06",      "1e-7",  ".5",  "5.",
        "1e308", "1e309", "-1e309", "3.4e38", "3.5e38", "1e-320",     "1e-50", "",    "-",
        "abc",   "--1",   "+-1",    "1.5x",   " 2",     "123456.789", "1e400", "0.1", "-0"}) {
    expectReadAsStreamed<float>(text);
    expectReadAsStreamed<double>(text);
  }
}

TEST(NumberText, ReadNumberTakesWhatFloatingPointIsWrittenAs) {
  double value = 0;
  EXPECT_TRUE(readNumber("inf", value));
  EXPECT_EQ(value, std::numeric_limits<double>::infinity());
  EXPECT_TRUE(readNumber("-inf", value));
  EXPECT_EQ(value, -std::numeric_limits<double>::infinity());
  EXPECT_TRUE(readNumber("nan", value));
  EXPECT_TRUE(std::isnan(value));
  float narrow = 0;
  EXPECT_TRUE(readNumber("-nan", narrow));
  EXPECT_TRUE(std::isnan(narrow));
  EXPECT_TRUE(readNumber("1e-400", value));
  EXPECT_EQ(value, 0.0);
}

}  // namespace
}  // namespace zqxml
