#include <gtest/gtest.h>
#include <tests/platform/freed_secrets.h>
#include <zqxml/platform/secure_string.h>

#include <memory>
#include <string>
#include <utility>

namespace zqxml {
namespace {

TEST(Cleanse, OverwritesWithZeros) {
  std::string text = "secret";
  cleanse(text.data(), text.size());
  EXPECT_EQ(text, std::string(6, '\0'));
  cleanse(nullptr, 0);
}

TEST(SecureString, HoldsText) {
  const secure_string empty;
  EXPECT_TRUE(empty.empty());
  EXPECT_STREQ(empty.c_str(), "");
  EXPECT_EQ(empty.view(), "");
  const secure_string text("secret");
  EXPECT_EQ(text.view(), "secret");
  EXPECT_EQ(text.size(), 6U);
  EXPECT_EQ(text.length(), 6U);
  EXPECT_STREQ(text.c_str(), "secret");
  EXPECT_STREQ(text.data(), "secret");
  EXPECT_TRUE(secure_string(static_cast<const char*>(nullptr)).empty());
}

TEST(SecureString, CopiesAndMoves) {
  const secure_string text("a secret longer than the short texts' place");
  secure_string copy(text);
  EXPECT_EQ(copy, text);
  secure_string moved(std::move(copy));
  EXPECT_EQ(moved, text);
  EXPECT_TRUE(copy.empty());  // NOLINT(bugprone-use-after-move): what is left behind is defined
  copy = moved;
  EXPECT_EQ(copy, text);
  const secure_string& same = copy;
  copy = same;
  EXPECT_EQ(copy, text);
  copy = secure_string("other");
  EXPECT_EQ(copy.view(), "other");
}

TEST(SecureString, AssignsAppendsAndResizes) {
  secure_string text("one");
  text.append(" two");
  EXPECT_EQ(text.view(), "one two");
  text.append(text.view());
  EXPECT_EQ(text.view(), "one twoone two");
  text.assign(text.view().substr(4, 3));
  EXPECT_EQ(text.view(), "two");
  text.resize(2);
  EXPECT_EQ(text.view(), "tw");
  text.resize(4);
  EXPECT_EQ(text.view(), std::string_view("tw\0\0", 4));
  text.mutableData()[3] = '!';
  EXPECT_EQ(text.view(), std::string_view("tw\0!", 4));
  text.reset();
  EXPECT_TRUE(text.empty());
  EXPECT_EQ(text.mutableData(), nullptr);
}

TEST(SecureString, LeavesNothingInFreedMemory) {
  const FreedSecrets freed;
  const std::string marker(FreedSecrets::kMarker);
  {
    secure_string text(marker);
    text.append(std::string_view(text.view()));
    text.resize(200);
    text.assign("short");
    text.assign(marker);
    secure_string copy(text);
    copy = secure_string(marker);
    copy.reset();
  }
  EXPECT_EQ(freed.count(), 0);
}

TEST(SecureString, LeavesNoLengthInFreedMemory) {
  const std::string plain(31519, 'x');
  const std::size_t size = plain.size();
  const FreedSecrets freed(std::string_view(reinterpret_cast<const char*>(&size), sizeof size));
  {
    secure_string text(plain);
    text.assign("short");
    text.assign(plain);
    text = secure_string(plain);
    const secure_string moved(std::move(text));
  }
  EXPECT_EQ(freed.count(), 0);
}

TEST(SecureString, FreedSecretsAreSeenByTheTest) {
  const FreedSecrets freed;
  std::make_unique<std::string>(FreedSecrets::kMarker).reset();
  EXPECT_GT(freed.count(), 0);
}

TEST(SecureString, WideTextWorksToo) {
  secure_basic_string<char16_t> text(u"geheim");
  text.append(u"!");
  EXPECT_EQ(text.view(), u"geheim!");
}

}  // namespace
}  // namespace zqxml
