// docs/schema.md: its files compile, its commands print what the page shows.
#include <gtest/gtest.h>

#include "tests/support/markdown.h"
#include "tests/support/scratch_folder.h"

namespace zqxml {
namespace {

TEST(SchemaPageTest, FilesAndCommandsWorkAsShown) {
  const ScratchFolder folder;
  int files = 0;
  int commands = 0;
  for (const MarkdownBlock& block : blocksOf(ZQXML_SOURCE_DIR "/docs/schema.md")) {
    if (block.language == "xml") {
      folder.write(block.file, block.text);
      ++files;
    } else if (block.language == "console") {
      commands += expectCommandsPrint(block, folder.path());
    }
  }
  EXPECT_EQ(files, 3);
  EXPECT_EQ(commands, 8);
}

}  // namespace
}  // namespace zqxml
