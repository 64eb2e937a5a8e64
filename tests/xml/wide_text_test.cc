// Names and values as the DOM takes them.
#include <gtest/gtest.h>
#include <zqxml/xml/internal/cdata_end.h>
#include <zqxml/xml/internal/wide_text.h>

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

namespace zqxml {
namespace {

using namespace std::string_view_literals;

std::u16string messageText(std::string_view text, bool asCdata = false) {
  WideText wide;
  wide.assign(TextValue<char>{text, asCdata});
  return wide.c_str();
}

std::u16string messageText(std::u16string_view text, bool asCdata = false) {
  WideText wide;
  wide.assign(TextValue<char16_t>{text, asCdata});
  return wide.c_str();
}

std::string escaped(std::string text) {
  escapeCDATAEnd(text);
  return text;
}

TEST(WideName, AsciiNamesOfEveryLengthAreWidened) {
  for (const std::size_t length : {0u, 1u, 62u, 63u, 64u, 65u, 500u}) {
    const std::string name(length, 'n');
    EXPECT_EQ(WideName(name.c_str()).c_str(), std::u16string(length, u'n')) << length;
  }
}

TEST(WideName, NamesConvertAsUtf8) {
  EXPECT_EQ(WideName("größe").c_str(), u"größe"sv);
}

TEST(WideText, IntegersAreDecimal) {
  WideText text;
  text.assign(SignedValue{std::numeric_limits<std::int64_t>::min()});
  EXPECT_EQ(text.c_str(), u"-9223372036854775808"sv);
  text.assign(SignedValue{0});
  EXPECT_EQ(text.c_str(), u"0"sv);
  text.assign(UnsignedValue{std::numeric_limits<std::uint64_t>::max()});
  EXPECT_EQ(text.c_str(), u"18446744073709551615"sv);
}

TEST(WideText, FloatingPointHasSixSignificantDigits) {
  const auto text = [](double value) {
    WideText wide;
    wide.assign(FloatingValue{value});
    return std::u16string(wide.c_str());
  };
  EXPECT_EQ(text(0.1), u"0.1");
  EXPECT_EQ(text(1234567), u"1.23457e+06");
  EXPECT_EQ(text(100000), u"100000");
  EXPECT_EQ(text(1e-5), u"1e-05");
  EXPECT_EQ(text(-0.0), u"-0");
  EXPECT_EQ(text(std::numeric_limits<double>::infinity()), u"inf");
}

TEST(WideText, MessageTextIsUtf8) {
  EXPECT_EQ(messageText("plain text"), u"plain text");
  EXPECT_EQ(messageText("Größe ☃"), u"Größe ☃");
  EXPECT_EQ(messageText("tab\tline\n"), u"tab\tline\n");
  EXPECT_EQ(messageText("\x7f"), u"\x7f");
  EXPECT_EQ(messageText("\xff"), u"\xfffd");
  EXPECT_EQ(messageText(""), u"");
}

TEST(WideText, MessageTextEndsAtItsFirstNul) {
  EXPECT_EQ(messageText("ab\0cd"sv), u"ab");
  EXPECT_EQ(messageText(u"ab\0cd"sv), u"ab");
  EXPECT_EQ(messageText("\0"sv), u"");
}

TEST(WideText, IllegalCharactersAreEncoded) {
  EXPECT_EQ(messageText("A\x01"
                        "B"),
            u"|A|#1!B");
  EXPECT_EQ(messageText(u"A\u0001B"), u"|A|#1!B");
  EXPECT_EQ(messageText("😀"), u"||#D83D!|#DE00!");
  EXPECT_EQ(messageText(u"\xd800"sv), u"||#D800!");
  EXPECT_EQ(messageText("|#"), u"|#");
}

TEST(WideText, EndOfCdataIsEscapedOnlyForCdata) {
  EXPECT_EQ(messageText("a]]>b"), u"a]]>b");
  EXPECT_EQ(messageText("a]]>b", true), u"a]]]]>>b");
  EXPECT_EQ(messageText(u"a]]>b"), u"a]]>b");
  EXPECT_EQ(messageText(u"a]]>b", true), u"a]]]]>>b");
}

TEST(CdataEnd, KeepsTheMarkInsideItsReplacementAndGoesOnBehindIt) {
  EXPECT_EQ(escaped(""), "");
  EXPECT_EQ(escaped("]]"), "]]");
  EXPECT_EQ(escaped("]]>"), "]]]]>>");
  EXPECT_EQ(escaped("]]>]]>"), "]]]]>>]]]]>>");
  EXPECT_EQ(escaped("]]>>]]>"), "]]]]>>>]]]]>>");
  EXPECT_EQ(escaped("]]]>"), "]]]]]>>");
  std::u16string wide = u"x]]>y";
  escapeCDATAEnd(wide);
  EXPECT_EQ(wide, u"x]]]]>>y");
}

TEST(CdataEnd, MarksByTheMillionTakeOnePass) {
  constexpr std::size_t kMarks = 2'000'000;
  std::string text;
  for (std::size_t i = 0; i < kMarks; ++i) text += "]]>";
  escapeCDATAEnd(text);
  EXPECT_EQ(text.size(), kMarks * 6);
  EXPECT_EQ(text.find("]]>]]>"), text.npos);
}

}  // namespace
}  // namespace zqxml
