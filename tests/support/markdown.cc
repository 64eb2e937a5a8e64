#include "tests/support/markdown.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <sstream>

#include "tests/support/run_program.h"

namespace zqxml {
namespace {

/// Notes the name that a line between blocks gives to the next one.
void noteName(const std::string& line, MarkdownBlock& next) {
  const std::string mark = "<!-- example: ";
  if (line.starts_with(mark)) next.example = line.substr(mark.size(), line.find(" -->") - mark.size());
  if (!line.ends_with("`:")) return;
  const std::size_t start = line.rfind('`', line.size() - 3) + 1;
  next.file = line.substr(start, line.size() - 2 - start);
}

}  // namespace

std::string contentOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  EXPECT_TRUE(stream.is_open()) << file;
  return std::string(std::istreambuf_iterator<char>(stream), {});
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::vector<MarkdownBlock> blocksOf(const std::filesystem::path& document) {
  std::vector<MarkdownBlock> blocks;
  MarkdownBlock next;
  bool inside = false;
  std::size_t number = 0;
  for (const std::string& line : linesOf(contentOf(document))) {
    ++number;
    if (line.starts_with("```")) {
      inside = !inside;
      if (inside) {
        next.language = line.substr(3);
        next.line = number;
        blocks.push_back(next);
      }
      next = {};
      next.followsBlock = true;
    } else if (inside) {
      blocks.back().text += line + '\n';
    } else if (!line.empty()) {
      next.followsBlock = false;
      noteName(line, next);
    }
  }
  EXPECT_FALSE(inside) << document << ": a block has no end";
  return blocks;
}

int expectCommandsPrint(const MarkdownBlock& block, const std::string& folder) {
  const std::vector<std::string> lines = linesOf(block.text);
  const auto isCommand = [&lines](std::size_t i) { return lines[i].starts_with("$ "); };
  int commands = 0;
  for (std::size_t i = 0; i < lines.size(); ++commands) {
    EXPECT_TRUE(isCommand(i)) << lines[i];
    const std::string command = lines[i++].substr(2);
    std::string expected;
    for (; i < lines.size() && !isCommand(i); ++i) expected += lines[i] + '\n';
    const ProgramRun run =
        runProgram({"/bin/sh", "-c", "PATH=\"" ZQXML_BINARY_DIR "/bin:$PATH\"; " + command},
                   {.input = {}, .folder = folder, .environment = {}});
    EXPECT_EQ(run.status, 0) << command;
    EXPECT_EQ(run.out, expected) << command;
    EXPECT_EQ(run.err, "") << command;
  }
  return commands;
}

}  // namespace zqxml
