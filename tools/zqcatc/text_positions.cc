#include "text_positions.h"

#include <algorithm>

namespace zqxml::zqcatc {

TextPositions::TextPositions(std::string_view file, std::string_view text) : file_(file), text_(text) {
  lineStarts_.push_back(0);
  Count count;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (i % kBlock == 0) blocks_.push_back(count);
    step(count, text[i]);
    const bool ends = text[i] == '\n' || (text[i] == '\r' && (i + 1 == text.size() || text[i + 1] != '\n'));
    if (ends) lineStarts_.push_back(i + 1);
  }
  blocks_.push_back(count);
}

void TextPositions::step(Count& count, char byte) {
  const auto value = static_cast<unsigned char>(byte);
  if ((value & 0xc0) == 0x80) return;  // inside a character
  count.units += value >= 0xf0 ? 2 : 1;
  ++count.characters;
}

TextPositions::Count TextPositions::countBefore(std::size_t offset) const {
  offset = std::min(offset, text_.size());
  const std::size_t block = offset / kBlock;
  if (block * kBlock >= text_.size()) return blocks_.back();
  Count count = blocks_[block];
  for (std::size_t i = block * kBlock; i < offset; ++i) step(count, text_[i]);
  return count;
}

std::size_t TextPositions::offset(std::uint64_t line, std::uint64_t column) const {
  if (line == 0 || line > lineStarts_.size()) return text_.size();
  const std::size_t wanted = countBefore(lineStarts_[line - 1]).units + (column == 0 ? 0 : column - 1);
  const auto next =
      std::upper_bound(blocks_.begin(), blocks_.end(), wanted,
                       [](std::size_t units, const Count& count) { return units < count.units; });
  const auto block = static_cast<std::size_t>(next - blocks_.begin()) - 1;
  Count count = blocks_[block];
  std::size_t at = std::min(block * kBlock, text_.size());
  while (at < text_.size() && count.units < wanted) step(count, text_[at++]);
  while (at < text_.size() && (static_cast<unsigned char>(text_[at]) & 0xc0) == 0x80) ++at;
  return at;
}

Position TextPositions::position(std::size_t offset) const {
  const auto next = std::upper_bound(lineStarts_.begin(), lineStarts_.end(), offset);
  const std::size_t column = countBefore(offset).characters - countBefore(*(next - 1)).characters;
  return {file_, static_cast<int>(next - lineStarts_.begin()), static_cast<int>(column) + 1};
}

std::size_t TextPositions::tagStart(std::size_t end) const {
  if (end == 0 || end > text_.size() || text_[end - 1] != '>') return end;
  const std::size_t start = text_.rfind('<', end - 1);
  return start == std::string_view::npos ? end : start;
}

std::vector<TextPositions::AttributeName> TextPositions::attributes(std::size_t tag) const {
  // After the tag's name, again and again: blanks, a name, '=' with optional blanks around it, a quoted
  // value.
  std::vector<AttributeName> names;
  std::size_t at = text_.find_first_of(" \t\r\n/>", tag);
  while (at != std::string_view::npos) {
    at = text_.find_first_not_of(" \t\r\n", at);
    if (at == std::string_view::npos || text_[at] == '>' || text_[at] == '/') break;
    const std::size_t nameEnd = text_.find_first_of(" \t\r\n=", at);
    if (nameEnd == std::string_view::npos) break;
    names.push_back({text_.substr(at, nameEnd - at), at});
    const std::size_t quote = text_.find_first_of("\"'", nameEnd);
    if (quote == std::string_view::npos) break;
    const std::size_t closing = text_.find(text_[quote], quote + 1);
    if (closing == std::string_view::npos) break;
    at = closing + 1;
  }
  return names;
}

}  // namespace zqxml::zqcatc
