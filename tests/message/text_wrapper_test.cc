// bstring, cdata and pstring: the standard string's interface.
#include <gtest/gtest.h>
#include <zqxml/message/bstring.h>
#include <zqxml/message/cdata.h>
#include <zqxml/message/pstring.h>

#include <sstream>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>

namespace zqxml {
namespace {

template <class Text>
class TextWrappers : public ::testing::Test {};
using Texts = ::testing::Types<bstring, cdata>;
TYPED_TEST_SUITE(TextWrappers, Texts);

TYPED_TEST(TextWrappers, AreBuiltEmptyFromTheirOwnAndFromAString) {
  const TypeParam empty;
  EXPECT_TRUE(empty.empty());
  const TypeParam text(std::string("abc"));
  const TypeParam copy(text);
  EXPECT_EQ(copy.str(), "abc");
}

TYPED_TEST(TextWrappers, HaveAVirtualDestructorAndNothingElseVirtual) {
  EXPECT_TRUE(std::has_virtual_destructor_v<TypeParam>);
}

TYPED_TEST(TextWrappers, AreAssignedTheirOwnAndStrings) {
  TypeParam text;
  text = std::string("abc");
  EXPECT_EQ(text.str(), "abc");
  TypeParam other;
  other = text;
  EXPECT_EQ(other.str(), "abc");
  EXPECT_EQ(&(other = other), &other);
  EXPECT_EQ(text.assign(TypeParam(std::string("d"))).str(), "d");
  EXPECT_EQ(text.assign(std::string("ef")).str(), "ef");
  EXPECT_EQ(text.assign("ghi", 2).str(), "gh");
}

TYPED_TEST(TextWrappers, AppendStringsAndBytes) {
  TypeParam text(std::string("a"));
  EXPECT_EQ(text.append(std::string("b")).append("cd", 1).str(), "abc");
  text += TypeParam(std::string("d"));
  text += std::string("e");
  text += 'f';
  EXPECT_EQ(text.str(), "abcdef");
}

TYPED_TEST(TextWrappers, GiveTheirBytes) {
  TypeParam text(std::string("abc"));
  const TypeParam& constant = text;
  text[0] = 'x';
  text.at(1) = 'y';
  text.str() += 'z';
  EXPECT_EQ(constant[0], 'x');
  EXPECT_EQ(constant.at(1), 'y');
  EXPECT_EQ(constant.str(), "xycz");
  EXPECT_STREQ(constant.c_str(), "xycz");
  EXPECT_EQ(constant.data(), constant.str().data());
  EXPECT_THROW(text.at(4), std::out_of_range);
  EXPECT_THROW(constant.at(4), std::out_of_range);
}

TYPED_TEST(TextWrappers, TellTheirSize) {
  TypeParam text(std::string("abc"));
  EXPECT_EQ(text.size(), 3u);
  EXPECT_EQ(text.length(), 3u);
  EXPECT_FALSE(text.empty());
  text.clear();
  EXPECT_TRUE(text.empty());
}

TYPED_TEST(TextWrappers, AreWalkedBothWays) {
  TypeParam text(std::string("abc"));
  const TypeParam& constant = text;
  *text.begin() = 'x';
  *(text.end() - 1) = 'z';
  EXPECT_EQ(std::string(constant.begin(), constant.end()), "xbz");
  EXPECT_EQ(std::string(constant.cbegin(), constant.cend()), "xbz");
  *text.rbegin() = 'q';
  EXPECT_EQ(std::string(text.rbegin(), text.rend()), "qbx");
  EXPECT_EQ(std::string(constant.rbegin(), constant.rend()), "qbx");
  EXPECT_EQ(std::string(constant.crbegin(), constant.crend()), "qbx");
}

TYPED_TEST(TextWrappers, CompareWithTheirOwnAndStrings) {
  TypeParam a(std::string("a"));
  TypeParam b(std::string("b"));
  EXPECT_TRUE(a == a);
  EXPECT_FALSE(a == b);
  EXPECT_TRUE(a != b);
  EXPECT_TRUE(a == std::string("a"));
  EXPECT_TRUE(a != std::string("b"));
  EXPECT_EQ(a.compare(a), 0);
  EXPECT_LT(a.compare(b), 0);
  EXPECT_GT(b.compare(std::string("a")), 0);
}

TYPED_TEST(TextWrappers, JoinToPlainStrings) {
  const TypeParam a(std::string("a"));
  const TypeParam b(std::string("b"));
  EXPECT_TRUE((std::is_same_v<decltype(a + b), std::string>));
  EXPECT_EQ(a + b, "ab");
  EXPECT_EQ(a + std::string("c"), "ac");
  EXPECT_EQ(std::string("c") + a, "ca");
}

TYPED_TEST(TextWrappers, GiveAPartAsTheirOwnKind) {
  const TypeParam text(std::string("abcd"));
  EXPECT_TRUE((std::is_same_v<decltype(text.substr(1, 2)), TypeParam>));
  EXPECT_EQ(text.substr(1, 2).str(), "bc");
  EXPECT_EQ(text.substr(2, 9).str(), "cd");
  EXPECT_EQ(text.substr(4, 1).str(), "");
  EXPECT_EQ(text.substr(1, -1).str(), "bcd");
  EXPECT_THROW(text.substr(-1, 1), std::out_of_range);
}

TYPED_TEST(TextWrappers, WriteTheirBytes) {
  std::ostringstream out;
  out << TypeParam(std::string("a\0b", 3));
  EXPECT_EQ(out.str(), std::string("a\0b", 3));
}

TEST(Pstring, IsABstringWithAType) {
  const pstring text(std::string("secret"), 5);
  const bstring& base = text;
  EXPECT_EQ(base, std::string("secret"));
  EXPECT_EQ(text.getEncryptionType(), 5);
  EXPECT_EQ(pstring().getEncryptionType(), 1);
  EXPECT_EQ(pstring(std::string("x")).getEncryptionType(), 1);
}

TEST(Pstring, IsCopiedAndMovedWithItsType) {
  pstring text(std::string("secret"), 5);
  const pstring copy(text);
  EXPECT_EQ(copy.getEncryptionType(), 5);
  pstring assigned;
  assigned = text;
  EXPECT_EQ(assigned.getEncryptionType(), 5);
  const pstring moved(std::move(text));
  EXPECT_EQ(moved.getEncryptionType(), 5);
  EXPECT_EQ(moved.str(), "secret");
}

}  // namespace
}  // namespace zqxml
