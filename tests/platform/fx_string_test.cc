#include <gtest/gtest.h>
#include <zqxml/platform/fx_string.h>

#include <string>

namespace zqxml {
namespace {

/// The text after the replacement, and the count, as "count:text".
std::string replaced(std::string text, std::string_view left, std::string_view right,
                     std::string_view by = "*", std::size_t start = 0) {
  const int count = FXString::ReplaceAllByMatchingLeftAndRight(text, left, right, by, start);
  return std::to_string(count) + ":" + text;
}

TEST(ReplaceBetween, KeywordsStayAndWhatIsBetweenThemGoes) {
  EXPECT_EQ(replaced("user=a;pwd=secret;x", "pwd=", ";"), "1:user=a;pwd=*;x");
}

TEST(ReplaceBetween, EveryPlaceIsTaken) {
  EXPECT_EQ(replaced("[a][bb][]", "[", "]", "-"), "3:[-][-][-]");
}

TEST(ReplaceBetween, SearchGoesOnBehindTheRightKeyword) {
  // The quotation mark that ends a stretch does not begin the next one.
  EXPECT_EQ(replaced("\"a\"b\"c\"", "\"", "\""), "2:\"*\"b\"*\"");
  // And what stands in place of a stretch is not looked at.
  EXPECT_EQ(replaced("<a><b>", "<", ">", "<x>"), "2:<<x>><<x>>");
}

TEST(ReplaceBetween, LeftKeywordInsideAStretchBelongsToIt) {
  EXPECT_EQ(replaced("<<a>", "<", ">"), "1:<*>");
}

TEST(ReplaceBetween, LeftWithoutARightBehindItStaysAsItIs) {
  EXPECT_EQ(replaced("<a><b", "<", ">"), "1:<*><b");
  EXPECT_EQ(replaced("> <", "<", ">"), "0:> <");
}

TEST(ReplaceBetween, KeywordsMayNotOverlap) {
  EXPECT_EQ(replaced("aba", "ab", "ba"), "0:aba");
  EXPECT_EQ(replaced("abba", "ab", "ba"), "1:ab*ba");
}

TEST(ReplaceBetween, StartsAtTheGivenByte) {
  EXPECT_EQ(replaced("<a><b>", "<", ">", "*", 1), "1:<a><*>");
  EXPECT_EQ(replaced("<a><b>", "<", ">", "*", 4), "0:<a><b>");
  EXPECT_EQ(replaced("<a>", "<", ">", "*", 3), "0:<a>");
  EXPECT_EQ(replaced("<a>", "<", ">", "*", std::string::npos), "0:<a>");
}

TEST(ReplaceBetween, EmptyTextsMatchNothing) {
  EXPECT_EQ(replaced("<a>", "", ">"), "0:<a>");
  EXPECT_EQ(replaced("<a>", "<", ""), "0:<a>");
  EXPECT_EQ(replaced("", "<", ">"), "0:");
  EXPECT_EQ(replaced("<a>", "<", ">", ""), "1:<>");
}

TEST(ReplaceBetween, NulIsACharacterLikeAnyOther) {
  EXPECT_EQ(replaced(std::string("a\0b\0c", 5), std::string_view("\0", 1), std::string_view("\0", 1)),
            std::string("1:a\0*\0c", 7));
}

TEST(ReplaceBetween, LongTextsTakeOnePass) {
  std::string text;
  for (int i = 0; i < 200'000; ++i) text += "<secret>";
  EXPECT_EQ(FXString::ReplaceAllByMatchingLeftAndRight(text, "<", ">", "******", 0), 200'000);
  EXPECT_EQ(text.find("secret"), std::string::npos);
}

}  // namespace
}  // namespace zqxml
