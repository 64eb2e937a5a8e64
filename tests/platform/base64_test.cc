#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>
#include <zqxml/platform/base64.h>

#include <string>

namespace zqxml {
namespace {

using std::string_literals::operator""s;

TEST(UlBase64, GivesTheVectorsOfTheStandard) {
  const std::pair<std::string, std::string> kVectors[] = {{"", ""},
                                                          {"f", "Zg=="},
                                                          {"fo", "Zm8="},
                                                          {"foo", "Zm9v"},
                                                          {"foob", "Zm9vYg=="},
                                                          {"fooba", "Zm9vYmE="},
                                                          {"foobar", "Zm9vYmFy"}};
  for (const auto& [bytes, text] : kVectors) {
    EXPECT_EQ(UlBase64::Encode(bytes), text);
    std::string back = "old";
    EXPECT_TRUE(UlBase64::Decode(text, back));
    EXPECT_EQ(back, bytes);
  }
}

TEST(UlBase64, EveryCharacterOfTheAlphabet) {
  const std::string all = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string bytes;
  ASSERT_TRUE(UlBase64::Decode(all, bytes));
  EXPECT_EQ(bytes.size(), 48U);
  EXPECT_EQ(UlBase64::Encode(bytes), all);
}

TEST(UlBase64, LongTextHasNoBreaks) {
  const std::string text = UlBase64::Encode(std::string(1000, 'x'));
  EXPECT_EQ(text.find_first_of(" \r\n"), std::string::npos);
  EXPECT_EQ(text.size(), UlBase64::encodedLength(1000));
}

TEST(UlBase64, RefusesWhatIsNoBase64) {
  for (const std::string& text :
       {"A"s,    "AB"s,     "ABC"s,   "ABCDE"s,    "AB=="s + "A", "ABC*"s,  "AB-_"s,
        "AB C"s, "Zm9v\n"s, "\nZm9"s, " Zm9"s,     "Zm9 "s,       "===="s,  "A==="s,
        "=ABC"s, "A=BC"s,   "AB=C"s,  "Zg==Zg=="s, "Zm9=Zm9v"s,   "ABC\0"s, "ABC\xC3"s}) {
    std::string out = "kept";
    EXPECT_FALSE(UlBase64::Decode(text, out)) << text;
    EXPECT_EQ(out, "kept");
  }
}

TEST(UlBase64, BitsBehindTheLastByteAreNotLookedAt) {
  std::string out;
  EXPECT_TRUE(UlBase64::Decode("Zh==", out));
  EXPECT_EQ(out, "f");
}

TEST(UlBase64, DecodesIntoItsOwnText) {
  std::string text = "Zm9vYmFy";
  EXPECT_TRUE(UlBase64::Decode(text, text));
  EXPECT_EQ(text, "foobar");
}

RC_GTEST_PROP(UlBase64, BytesComeBack, (const std::string& bytes)) {
  const std::string text = UlBase64::Encode(bytes);
  RC_ASSERT(text.size() == UlBase64::encodedLength(bytes.size()));
  std::string back;
  RC_ASSERT(UlBase64::Decode(text, back));
  RC_ASSERT(back == bytes);
}

RC_GTEST_PROP(UlBase64, AcceptsNothingButItsAlphabet, (const std::string& noise)) {
  std::string out;
  if (!UlBase64::Decode(noise, out)) return;
  RC_ASSERT(noise.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=") ==
            std::string::npos);
  RC_ASSERT(UlBase64::encodedLength(out.size()) == noise.size());
}

}  // namespace
}  // namespace zqxml
