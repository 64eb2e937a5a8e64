#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>
#include <unicode/unistr.h>
#include <zqxml/platform/internal/text_pieces.h>
#include <zqxml/platform/text.h>

#include <string>

namespace zqxml {
namespace {

using std::string_literals::operator""s;

TEST(Text, AsciiIsTheSameInBoth) {
  const std::string narrow = "The quick brown fox jumps over the lazy dog.";
  const std::u16string wide = u"The quick brown fox jumps over the lazy dog.";
  EXPECT_EQ(toUtf8(wide), narrow);
  EXPECT_EQ(toUtf16(narrow), wide);
}

TEST(Text, EmptyIsEmpty) {
  EXPECT_EQ(toUtf8({}), "");
  EXPECT_EQ(toUtf16({}), u"");
}

TEST(Text, EveryLengthOfACharacter) {
  const std::string narrow = "a\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80z";
  const std::u16string wide = u"a\u00e9\u4e2d\U0001F600z";
  EXPECT_EQ(toUtf8(wide), narrow);
  EXPECT_EQ(toUtf16(narrow), wide);
}

TEST(Text, NulIsACharacter) {
  EXPECT_EQ(toUtf16("a\0b"s), u"a\0b"s);
  EXPECT_EQ(toUtf8(u"a\0b"s), "a\0b"s);
}

TEST(Text, LoneSurrogatesBecomeReplacements) {
  EXPECT_EQ(toUtf8(u"a\xD800"s), "a\xEF\xBF\xBD");
  EXPECT_EQ(toUtf8(u"\xDC00z"s), "\xEF\xBF\xBDz");
  EXPECT_EQ(toUtf8(u"\xDC00\xD800"s), "\xEF\xBF\xBD\xEF\xBF\xBD");
  EXPECT_EQ(toUtf8(u"\xD800\xD83D\xDE00"s), "\xEF\xBF\xBD\xF0\x9F\x98\x80");
}

TEST(Text, BadBytesBecomeReplacements) {
  EXPECT_EQ(toUtf16("a\xFFz"), u"a\uFFFDz");
  EXPECT_EQ(toUtf16("\x80\x80"), u"\uFFFD\uFFFD");
  EXPECT_EQ(toUtf16("\xC3"), u"\uFFFD") << "cut";
  EXPECT_EQ(toUtf16("\xE4\xB8z"), u"\uFFFDz") << "the longest beginning of a character is one mistake";
  EXPECT_EQ(toUtf16("\xC0\xAF"), u"\uFFFD\uFFFD") << "overlong";
  EXPECT_EQ(toUtf16("\xED\xA0\x80"), u"\uFFFD\uFFFD\uFFFD") << "a surrogate";
  EXPECT_EQ(toUtf16("\xF4\x90\x80\x80"), u"\uFFFD\uFFFD\uFFFD\uFFFD") << "beyond the last character";
}

TEST(Text, AppendingKeepsWhatIsThere) {
  std::string narrow = "before ";
  appendUtf8(narrow, u"\u00e9");
  EXPECT_EQ(narrow, "before \xC3\xA9");
  std::u16string wide = u"before ";
  appendUtf16(wide, "\xC3\xA9");
  EXPECT_EQ(wide, u"before \u00e9");
}

TEST(Text, PlatformNamesAreTheSameConversions) {
  EXPECT_EQ(WideChar2UTF8String(u"\u00e9"), "\xC3\xA9");
  EXPECT_EQ(UTF8String2WideChar("\xC3\xA9"), u"\u00e9");
}

TEST(Text, NonAsciiAtEveryPlaceOfALongText) {
  for (std::size_t at = 0; at < 70; ++at) {
    std::string narrow(70, 'x');
    std::u16string wide(70, u'x');
    narrow.replace(at, 1, "\xC3\xA9");
    wide[at] = u'\u00e9';
    EXPECT_EQ(toUtf16(narrow), wide) << at;
    EXPECT_EQ(toUtf8(wide), narrow) << at;
  }
}

rc::Gen<std::u16string> wideNoise() {
  const auto unit = rc::gen::map(rc::gen::arbitrary<std::uint16_t>(), [](std::uint16_t n) {
    constexpr char16_t kInteresting[] = {u'a',   u'\0',  0x7F,   0x80,   0x7FF,  0x800,
                                         0xD7FF, 0xD800, 0xDBFF, 0xDC00, 0xDFFF, 0xE000};
    return n % 3 == 0 ? kInteresting[n % std::size(kInteresting)] : static_cast<char16_t>(n);
  });
  return rc::gen::container<std::u16string>(unit);
}

rc::Gen<std::string> narrowNoise() {
  const auto bytes =
      rc::gen::element("a"s, "\0"s, "\x7F"s, "\x80"s, "\xBF"s, "\xC0"s, "\xC2"s, "\xC3\xA9"s, "\xE0\xA0"s,
                       "\xE4\xB8\xAD"s, "\xED\xA0"s, "\xF0"s, "\xF0\x9F\x98\x80"s, "\xF4\x8F"s, "\xFF"s);
  return rc::gen::map(rc::gen::container<std::vector<std::string>>(bytes),
                      [](const std::vector<std::string>& pieces) {
                        std::string all;
                        for (const std::string& piece : pieces) all += piece;
                        return all;
                      });
}

RC_GTEST_PROP(Text, ConvertsToUtf16AsUnicodeStringDoes, ()) {
  const std::string text = *narrowNoise();
  const icu::UnicodeString expected = icu::UnicodeString::fromUTF8(text);
  const std::u16string_view view(expected.getBuffer(), static_cast<std::size_t>(expected.length()));
  RC_ASSERT(toUtf16(text) == view);
}

RC_GTEST_PROP(Text, ConvertsToUtf8AsUnicodeStringDoes, ()) {
  const std::u16string text = *wideNoise();
  std::string expected;
  icu::UnicodeString(text.data(), static_cast<std::int32_t>(text.size())).toUTF8String(expected);
  RC_ASSERT(toUtf8(text) == expected);
}

RC_GTEST_PROP(Text, WellFormedTextComesBack, ()) {
  const std::u16string once = toUtf16(toUtf8(*wideNoise()));
  RC_ASSERT(toUtf16(toUtf8(once)) == once);
}

RC_GTEST_PROP(Text, PiecesDoNotShow, ()) {
  const std::string narrow = *narrowNoise();
  const std::u16string wide = *wideNoise();
  for (const std::size_t largest : {4U, 5U, 6U, 7U}) {
    std::u16string toWide;
    internal::appendInPieces(toWide, std::string_view(narrow), largest);
    RC_ASSERT(toWide == toUtf16(narrow));
    std::string toNarrow;
    internal::appendInPieces(toNarrow, std::u16string_view(wide), largest);
    RC_ASSERT(toNarrow == toUtf8(wide));
  }
}

}  // namespace
}  // namespace zqxml
