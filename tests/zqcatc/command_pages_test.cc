// Manual page and completion of zqcatc.
#include "tests/support/command_pages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace zqxml {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

TEST(ZqcatcCommandPages, ManualPageTellsCommandsAndOptions) {
  const std::string shown = CommandPagesOf(ZQCATC).manualPage();
  for (const char* text :
       {"compiles the schema files of the message catalogue", "zqcatc diff [OPTION]... [OLD] [NEW]",
        "--fail-on xml|binary|callers|safe", "--allow", "--out FOLDER", "sensitive-in-clear"})
    EXPECT_THAT(shown, HasSubstr(text));
}

TEST(ZqcatcCommandPages, CommandsOptionsAndValuesAreCompleted) {
  const CommandPagesOf pages(ZQCATC);
  EXPECT_THAT(pages.completed({"zqcatc", "l"}), ElementsAre("lint"));
  EXPECT_THAT(pages.completed({"zqcatc", "diff", "--fail"}), ElementsAre("--fail-on"));
  EXPECT_THAT(pages.completed({"zqcatc", "lint", "--allow", "map"}), ElementsAre("map-in-sub-object"));
  EXPECT_THAT(pages.completed({"zqcatc", "--error-format", ""}), ElementsAre("text", "json"));
}

}  // namespace
}  // namespace zqxml
