#include "tools/zqmsg/path_line.h"

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <string>

namespace zqxml::tool {
namespace {

using namespace std::string_literals;

TEST(PathLineTest, PlainValuesStandAsTheyAre) {
  EXPECT_EQ(pathLine("o[1]/@n", "7"), "o[1]/@n=7\n");
  EXPECT_EQ(pathLine("o[1]/@n", ""), "o[1]/@n=\n");
  EXPECT_EQ(pathLine("o[1]/@n", " a = b # \"c\" "), "o[1]/@n= a = b # \"c\" \n");
  EXPECT_EQ(pathLine("o[1]/@n", "Zoë \U0001F600"), "o[1]/@n=Zoë \U0001F600\n");
}

TEST(PathLineTest, ControlCharactersAndBackslashesAreEscaped) {
  EXPECT_EQ(pathLine("p", "a\\b\nc\td\re\0f\x1b\x7f"s), "p=a\\\\b\\nc\\td\\re\\x00f\\x1b\\x7f\n");
  EXPECT_EQ(pathLine("p", "\xff\xc2\x85"), "p=\\xff\\xc2\\x85\n");
}

TEST(PathLineTest, ReadsWhatItWrites) {
  EXPECT_EQ(readPathLine("o[1]/@n=a\\\\b\\n\\t\\r\\x00\\xfF = "),
            (PathLine{"o[1]/@n", "a\\b\n\t\r\0\xff = "s}));
  EXPECT_EQ(readPathLine("p="), (PathLine{"p", ""}));
  EXPECT_EQ(readPathLine("=v"), (PathLine{"", "v"}));
  EXPECT_EQ(readPathLine("p=raw\ttab"), (PathLine{"p", "raw\ttab"}));
}

TEST(PathLineTest, OtherLinesAreRefused) {
  for (const char* line :
       {"", "p", "p\\x3d", "p=\\", "p=\\a", "p=\\x", "p=\\x1", "p=\\xg0", "p=\\x-1", "p=\\N", "p=a\\"})
    EXPECT_EQ(readPathLine(line), std::nullopt) << line;
}

RC_GTEST_PROP(PathLineLaw, EveryValueComesBack, (const std::string& value)) {
  const std::string line = pathLine("a[1]/@b", value);
  RC_ASSERT(line.find('\n') == line.size() - 1);
  RC_ASSERT(readPathLine(std::string_view(line).substr(0, line.size() - 1)) == (PathLine{"a[1]/@b", value}));
}

}  // namespace
}  // namespace zqxml::tool
