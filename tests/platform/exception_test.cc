#include <gtest/gtest.h>
#include <zqxml/platform/exception.h>

#include <exception>

namespace zqxml {
namespace {

TEST(ZqException, KnowsItsPlace) {
  const ZqException exception("Class::function", "the text", "file.cc", 12, 34);
  EXPECT_STREQ(exception.what(), "the text");
  EXPECT_EQ(exception.function(), "Class::function");
  EXPECT_EQ(exception.text(), "the text");
  EXPECT_EQ(exception.file(), "file.cc");
  EXPECT_EQ(exception.line(), 12);
  EXPECT_EQ(exception.code(), 34);
}

TEST(ZqException, HasNoFileAndNoNumbersUnlessGiven) {
  const ZqException exception("f", "text");
  EXPECT_EQ(exception.file(), "");
  EXPECT_EQ(exception.line(), -1);
  EXPECT_EQ(exception.code(), -1);
}

TEST(ZqException, IsCaughtAsAStandardException) {
  try {
    throw ZqException("f", "text");
  } catch (const std::exception& exception) {
    EXPECT_STREQ(exception.what(), "text");
  }
}

}  // namespace
}  // namespace zqxml
