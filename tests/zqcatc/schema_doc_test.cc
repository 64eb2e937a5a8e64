// docs/schema.md: its files compile, its commands print what the page shows.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/run_program.h"
#include "tests/support/scratch_folder.h"

namespace zqxml {
namespace {

struct Block {
  std::string language;
  std::string title;  ///< the file's name before the block, `Name.xml`
  std::vector<std::string> lines;
};

std::vector<Block> blocksOf(const std::string& path) {
  std::vector<Block> blocks;
  std::ifstream page(path);
  std::string title;
  bool inside = false;
  for (std::string line; std::getline(page, line);) {
    if (line.starts_with("```")) {
      inside = !inside;
      if (inside) blocks.push_back({line.substr(3), title, {}});
    } else if (inside) {
      blocks.back().lines.push_back(line);
    } else if (line.ends_with("`:")) {
      const std::size_t open = line.rfind('`', line.size() - 3);
      title = line.substr(open + 1, line.size() - open - 3);
    }
  }
  return blocks;
}

TEST(SchemaPageTest, FilesAndCommandsWorkAsShown) {
  const ScratchFolder folder;
  int files = 0;
  int commands = 0;
  for (const Block& block : blocksOf(ZQXML_SOURCE_DIR "/docs/schema.md")) {
    if (block.language == "xml") {
      std::ofstream file(std::filesystem::path(folder.path()) / block.title);
      for (const std::string& line : block.lines) file << line << '\n';
      ++files;
    }
    if (block.language != "console") continue;
    for (std::size_t i = 0; i < block.lines.size();) {
      ASSERT_TRUE(block.lines[i].starts_with("$ ")) << block.lines[i];
      const std::string command = block.lines[i++].substr(2);
      std::string expected;
      for (; i < block.lines.size() && !block.lines[i].starts_with("$ "); ++i)
        expected += block.lines[i] + "\n";
      const ProgramRun run =
          runProgram({"/bin/sh", "-c", "PATH=\"" ZQXML_BINARY_DIR "/bin:$PATH\"; " + command},
                     {.input = {}, .folder = folder.path(), .environment = {}});
      EXPECT_EQ(run.status, 0) << command;
      EXPECT_EQ(run.out, expected) << command;
      EXPECT_EQ(run.err, "") << command;
      ++commands;
    }
  }
  EXPECT_EQ(files, 2);
  EXPECT_EQ(commands, 6);
}

}  // namespace
}  // namespace zqxml
