#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <locale.h>
#include <rapidcheck/gtest.h>
#include <zqxml/platform/format.h>

#include <cstdio>
#include <limits>
#include <string>

namespace zqxml {
namespace {

using std::string_literals::operator""s;

template <typename... Args>
std::string byTheCLibrary(const char* format, Args... arguments) {
  char area[4096];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#pragma GCC diagnostic ignored "-Wformat-security"
  const int size = std::snprintf(area, sizeof area, format, arguments...);
#pragma GCC diagnostic pop
  return std::string(area, static_cast<std::size_t>(size));
}

TEST(FormatText, TextWithoutConversionsIsKept) {
  EXPECT_EQ(formatText("plain text\nof two lines"), "plain text\nof two lines");
  EXPECT_EQ(formatText(""), "");
  EXPECT_EQ(formatText("100%% sure"), "100% sure");
}

TEST(FormatText, NullFormatIsEmpty) {
  EXPECT_EQ(formatText(static_cast<const char*>(nullptr), 1), "");
}

TEST(FormatText, WithoutModifierAnIntegerHas32Bits) {
  EXPECT_EQ(formatText("%d %u", -1, -1), "-1 4294967295");
  EXPECT_EQ(formatText("%d", std::int64_t{0x1'0000'0005}), "5");
  EXPECT_EQ(formatText("%u", std::int64_t{-1}), "4294967295");
  EXPECT_EQ(formatText("%d", 4294967295U), "-1");
  EXPECT_EQ(formatText("%x", -1), "ffffffff");
}

TEST(FormatText, ModifiersChooseTheWidthOfAnInteger) {
  EXPECT_EQ(formatText("%hhd %hhu", 300, -1), "44 255");
  EXPECT_EQ(formatText("%hd %hu", 70000, -1), "4464 65535");
  for (const std::string modifier : {"l", "ll", "j", "z", "t", "I64", "L"}) {
    EXPECT_EQ(formatText(("%" + modifier + "d").c_str(), std::numeric_limits<std::int64_t>::min()),
              "-9223372036854775808");
    EXPECT_EQ(formatText(("%" + modifier + "u").c_str(), std::numeric_limits<std::uint64_t>::max()),
              "18446744073709551615");
  }
  EXPECT_EQ(formatText("%I32d", std::int64_t{0x1'0000'0005}), "5");
}

TEST(FormatText, EveryIntegerTypeIsAnArgument) {
  enum class Scoped : std::int8_t { kLast = -3 };
  enum Plain : unsigned { kPlain = 7 };
  EXPECT_EQ(
      formatText("%d %d %d %d %u", true, short{-2}, Scoped::kLast, static_cast<signed char>(-4), kPlain),
      "1 -2 -3 -4 7");
  EXPECT_EQ(formatText("%lu %llu %zu", 1UL, 2ULL, std::size_t{3}), "1 2 3");
}

TEST(FormatText, NarrowAndWideTextGoWithEveryTextConversion) {
  for (const char* format : {"[%s]", "[%ls]", "[%S]"}) {
    EXPECT_EQ(formatText(format, "narrow"), "[narrow]") << format;
    EXPECT_EQ(formatText(format, u"wide \u00e9\u4e2d"), "[wide \xC3\xA9\xE4\xB8\xAD]") << format;
    EXPECT_EQ(formatText(format, std::u16string(u"\U0001F600")), "[\xF0\x9F\x98\x80]") << format;
    EXPECT_EQ(formatText(format, std::string_view("view")), "[view]") << format;
    EXPECT_EQ(formatText(format, std::string("owned")), "[owned]") << format;
  }
}

TEST(FormatText, NullTextIsNamedSo) {
  EXPECT_EQ(formatText("%s|%8s", static_cast<const char*>(nullptr), nullptr), "(null)|  (null)");
  EXPECT_EQ(formatText("%ls", static_cast<const char16_t*>(nullptr)), "(null)");
}

TEST(FormatText, ViewWithoutDataIsEmpty) {
  EXPECT_EQ(formatText("[%s][%s]", std::string_view(), std::u16string_view()), "[][]");
}

TEST(FormatText, TextArgumentsKeepTheirNul) {
  EXPECT_EQ(formatText("%s", std::string_view("a\0b", 3)), "a\0b"s);
}

TEST(FormatText, WidthAndPrecisionOfText) {
  EXPECT_EQ(formatText("[%6s][%-6s][%.2s][%6.2s]", "abc", "abc", "abc", "abc"),
            "[   abc][abc   ][ab][    ab]");
  EXPECT_EQ(formatText("[%*s][%-*s][%.*s]", 5, "a", 5, "a", 1, "bc"), "[    a][a    ][b]");
  EXPECT_EQ(formatText("[%*s]", -4, "a"), "[a   ]");
  EXPECT_EQ(formatText("[%.*s]", -1, "abc"), "[abc]");
}

TEST(FormatText, PrecisionNeverSplitsAWideCharacter) {
  EXPECT_EQ(formatText("[%.2ls]", u"\u4e2d"), "[]");
  EXPECT_EQ(formatText("[%.4ls]", u"\u4e2d\u4e2d"), "[\xE4\xB8\xAD]");
}

TEST(FormatText, CharactersAreBytesOrUtf8) {
  EXPECT_EQ(formatText("%c%c%c", 'a', 0x41, u'\u00e9'), "aA\xC3\xA9");
  EXPECT_EQ(formatText("%c", static_cast<char>(0xE9)), "\xE9");
  EXPECT_EQ(formatText("%lc%C", 0x4E2D, 0x1F600U), "\xE4\xB8\xAD\xF0\x9F\x98\x80");
  EXPECT_EQ(formatText("[%3c][%-3c]", 'a', 'b'), "[  a][b  ]");
  EXPECT_EQ(formatText("%lc", 0x110000U), "\xEF\xBF\xBD");
  EXPECT_EQ(formatText("%lc", u'\xD800'), "\xEF\xBF\xBD");
}

TEST(FormatText, PointersAreHexadecimal) {
  EXPECT_EQ(formatText("%p", reinterpret_cast<const void*>(0x1234)), "0x1234");
  EXPECT_EQ(formatText("%8p|", static_cast<const void*>(nullptr)), "   (nil)|");
}

TEST(FormatText, MissingArgumentLeavesTheConversion) {
  EXPECT_EQ(formatText("%d %s"), "%d %s");
  EXPECT_EQ(formatText("%s and %-08.3lld!", "one"), "one and %-08.3lld!");
  EXPECT_EQ(formatText("%*d %d", 3), "%*d 3");
  EXPECT_EQ(formatText("%*.*f", 3, 4), "%*.*f");
}

TEST(FormatText, SurplusArgumentsAreIgnored) {
  EXPECT_EQ(formatText("%d", 1, 2, "three"), "1");
}

TEST(FormatText, UnknownConversionsTakeNoArgument) {
  EXPECT_EQ(formatText("%bxml %y %d", 5), "%bxml %y 5");
  EXPECT_EQ(formatText("%1$s %d", 5), "%1$s 5");
}

TEST(FormatText, PercentAtTheEndIsKept) {
  EXPECT_EQ(formatText("50%", 1), "50%");
  EXPECT_EQ(formatText("%-5.3l", 1), "%-5.3l");
  EXPECT_EQ(formatText(std::string_view("%5\0d", 4), {}), "%5\0d"s);
}

TEST(FormatText, CountConversionWritesNothingAndTakesNothing) {
  int count = 77;
  EXPECT_EQ(formatText("a%nb%d%hhn%lln", &count), formatText("ab%d", &count));
  EXPECT_EQ(count, 77);
  EXPECT_EQ(formatText("a%nb%d", 5), "ab5");
}

TEST(FormatText, AnArgumentOfAnotherTypeIsWrittenInItsOwnForm) {
  EXPECT_EQ(formatText("%d %x", "text", u"wide"), "text wide");
  EXPECT_EQ(formatText("%s %ls", 5, -5), "5 -5");
  EXPECT_EQ(formatText("%s", std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
  EXPECT_EQ(formatText("%s %d", 1.5, 2.5), "1.5 2.5");
  EXPECT_EQ(formatText("%f", 2), "2.000000");
  EXPECT_EQ(formatText("%p", 5), "5");
  EXPECT_EQ(formatText("%*d", "text", 5), "5");
}

TEST(FormatText, WidthAndPrecisionEndAt1024) {
  EXPECT_EQ(formatText("%999999999d", 1).size(), 1024U);
  EXPECT_EQ(formatText("%99999999999999999999s", "x").size(), 1024U);
  EXPECT_EQ(formatText("%.999999999d", 1).size(), 1024U);
  EXPECT_EQ(formatText("%*d", std::numeric_limits<int>::min(), 1).size(), 1024U);
  EXPECT_EQ(formatText("%.999999999f", 1.0).size(), 1026U);
  EXPECT_EQ(formatText("%.999999999f", -std::numeric_limits<double>::max()).size(), 1U + 309 + 1 + 1024);
  EXPECT_EQ(formatText("%.999999999s", "abc"), "abc");
  EXPECT_EQ(formatText("%999999999d").size(), 11U) << "there is nothing to format";
}

TEST(FormatText, TheLocaleHasNoSay) {
  // A locale with a comma may not be installed; C.utf8 always is, and the thread's own locale must come back.
  const locale_t mine = newlocale(LC_ALL_MASK, "C.utf8", nullptr);
  ASSERT_NE(mine, nullptr);
  const locale_t before = uselocale(mine);
  EXPECT_EQ(formatText("%.1f", 1.5), "1.5");
  EXPECT_EQ(uselocale(before), mine);
  freelocale(mine);
}

TEST(FormatText, TextOfArgumentsIsNoFormat) {
  EXPECT_EQ(formatText("%s %s", "%d%s%n", u"%s"), "%d%s%n %s");
}

RC_GTEST_PROP(FormatText, WritesNumbersAsTheCLibraryDoes, (int number, double value)) {
  const std::string flags = *rc::gen::container<std::string>(rc::gen::elementOf("-+ #0"s));
  const std::string width = *rc::gen::element(""s, "1"s, "7"s, "30"s);
  const std::string precision = *rc::gen::element(""s, "."s, ".0"s, ".3"s, ".20"s);
  const char integer = *rc::gen::elementOf("diuoxX"s);
  const char floating = *rc::gen::elementOf("fFeEgGaA"s);
  const std::string start = "%" + flags + width + precision;
  const std::string one = start + integer;
  const std::string two = start + floating;
  RC_ASSERT(formatText(one.c_str(), number) == byTheCLibrary(one.c_str(), number));
  RC_ASSERT(formatText(two.c_str(), value) == byTheCLibrary(two.c_str(), value));
}

RC_GTEST_PROP(FormatText, EndsOnAnyFormat, (const std::string& noise)) {
  const std::string pieces =
      *rc::gen::container<std::string>(rc::gen::elementOf("%%%d*.-0123456789lhzsSnpcxfgI "s));
  for (const std::string& format : {noise, pieces, "%" + noise}) {
    const FormatArg arguments[] = {1, "text", u"wide", 2.5, static_cast<const void*>(nullptr), -7LL};
    RC_ASSERT(formatText(format, arguments).size() <= format.size() + 6 * 1400);
  }
}

}  // namespace
}  // namespace zqxml
