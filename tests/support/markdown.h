#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace zqxml {

/// A fenced block of a document.
struct MarkdownBlock {
  std::string language;
  std::string example;  ///< NAME of a line `<!-- example: NAME -->` between the block before and this one
  std::string file;     ///< NAME of a line that ends in "`NAME`:" likewise
  std::string text;
  std::size_t line = 0;       ///< of its fence, from 1
  bool followsBlock = false;  ///< only empty lines stand between it and the block before
};

/// The blocks of a document in their order. A document that is not there, or a block without an end, fails
/// the test.
std::vector<MarkdownBlock> blocksOf(const std::filesystem::path& document);

/// The content of a file. One that is not there fails the test.
std::string contentOf(const std::filesystem::path& file);

std::vector<std::string> linesOf(const std::string& text);

/// Runs each command of a ```console block ("$ command", its output below) in the folder, with the built
/// programs on the path, and expects the output to be as shown, nothing on standard error and success. Gives
/// their number.
int expectCommandsPrint(const MarkdownBlock& block, const std::string& folder);

}  // namespace zqxml
