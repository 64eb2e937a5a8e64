// Gaps in C++ text.
#include "code_template.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zqxml::zqcatc {
namespace {

std::string expanded(std::string_view text) {
  // On the heap, so that a look behind the last value is seen.
  const std::vector<TemplateValue> values{{"a", "one"}, {"b", "@a@"}, {"a", "two"}};
  return expand(text, values);
}

TEST(CodeTemplateTest, NamesBecomeTheirFirstValue) {
  EXPECT_EQ(expanded("@a@"), "one");
  EXPECT_EQ(expanded("<@a@@a@> @a@;"), "<oneone> one;");
}

TEST(CodeTemplateTest, ValuesAreNotLookedThrough) {
  EXPECT_EQ(expanded("@b@"), "@a@");
}

TEST(CodeTemplateTest, NameWithoutAValueStays) {
  EXPECT_EQ(expanded("@c@"), "@c@");
  EXPECT_EQ(expanded("x @c@a@ y"), "x @cone y");
  EXPECT_EQ(expand("@a@", {}), "@a@");
}

TEST(CodeTemplateTest, SignThatBeginsNoNameStays) {
  EXPECT_EQ(expanded("@"), "@");
  EXPECT_EQ(expanded("@a"), "@a");
  EXPECT_EQ(expanded("a@"), "a@");
  EXPECT_EQ(expanded("@@"), "@@");
  EXPECT_EQ(expanded("/// @{\n@a@\n/// @}"), "/// @{\none\n/// @}");
  EXPECT_EQ(expanded(""), "");
}

TEST(CodeTemplateTest, EmptyLinesAreNotIndented) {
  EXPECT_EQ(indented("a\n\nb", "  "), "  a\n\n  b");
  EXPECT_EQ(indented("", "  "), "");
}

}  // namespace
}  // namespace zqxml::zqcatc
