// The commands of a document and what it shows of their output.
//
// The commands are the document's ```sh blocks. They run in its order, each block by itself, in one folder. A
// ```text block that follows such a block with nothing but empty lines between is its output, standard error
// included; a line "..." in it stands for any number of lines.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/markdown.h"
#include "tests/support/run_program.h"

namespace zqxml {

/// Whether the lines from `j` on are those shown from `i` on.
inline bool matches(const std::vector<std::string>& shown, std::size_t i,
                    const std::vector<std::string>& printed, std::size_t j) {
  if (i == shown.size()) return j == printed.size();
  if (shown[i] == "...") {
    for (std::size_t next = j; next <= printed.size(); ++next)
      if (matches(shown, i + 1, printed, next)) return true;
    return false;
  }
  return j < printed.size() && shown[i] == printed[j] && matches(shown, i + 1, printed, j + 1);
}

inline std::vector<std::string> withoutTrailingBlanks(const std::string& text) {
  std::vector<std::string> lines = linesOf(text);
  for (std::string& line : lines) line.erase(line.find_last_not_of(" \t") + 1);
  return lines;
}

/// Expects that `run`, called with the text of each block, ends well and prints what the document shows.
template <class Run>
void expectShown(const std::filesystem::path& document, Run run) {
  const std::vector<MarkdownBlock> blocks = blocksOf(document);
  for (std::size_t i = 0; i < blocks.size(); ++i) {
    if (blocks[i].language != "sh") continue;
    const ProgramRun result = run(blocks[i].text);
    const std::string place = document.filename().string() + ':' + std::to_string(blocks[i].line);
    EXPECT_EQ(result.status, 0) << place << '\n' << result;
    const bool shown =
        i + 1 < blocks.size() && blocks[i + 1].language == "text" && blocks[i + 1].followsBlock;
    if (!shown) continue;
    EXPECT_TRUE(matches(withoutTrailingBlanks(blocks[i + 1].text), 0, withoutTrailingBlanks(result.out), 0))
        << place << " prints\n"
        << result.out << "and not\n"
        << blocks[i + 1].text;
  }
}

/// docs/tutorial.md, whose commands build against an installed library.
inline bool isTutorial(const std::filesystem::path& document) {
  return document.filename() == "tutorial.md";
}

}  // namespace zqxml
