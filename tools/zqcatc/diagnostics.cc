#include "diagnostics.h"

#include <algorithm>
#include <ostream>
#include <tuple>
#include <utility>

namespace zqxml::zqcatc {

std::string shown(std::string_view text) {
  std::string clean;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const auto next = i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : 0u;
    const bool second = byte == 0xc2 && next >= 0x80 && next < 0xa0;  // the controls from U+0080 on
    clean += byte < 0x20 || byte == 0x7f || second ? '?' : text[i];
    if (second) ++i;
  }
  return clean;
}

void Diagnostics::error(const Position& position, std::string text) {
  ++count_;
  if (entries_.size() < kMaxKept) entries_.push_back({position, code_, std::move(text)});
}

void Diagnostics::forEach(
    const std::function<void(const Position&, std::string_view, const std::string&)>& visit) const {
  std::vector<const Entry*> sorted;
  for (const Entry& entry : entries_) sorted.push_back(&entry);
  std::stable_sort(sorted.begin(), sorted.end(), [](const Entry* a, const Entry* b) {
    const auto key = [](const Position& at) { return std::tie(at.file, at.line, at.column); };
    return key(a->position) < key(b->position);
  });
  for (const Entry* entry : sorted) visit(entry->position, entry->code, entry->text);
}

void Diagnostics::print(std::ostream& out) const {
  forEach([&out](const Position& position, std::string_view, const std::string& text) {
    out << shown(position.file);
    if (position.line != 0) out << ':' << position.line << ':' << position.column;
    out << ": error: " << shown(text) << '\n';
  });
  if (count_ > entries_.size()) out << "... and " << count_ - entries_.size() << " more errors\n";
}

}  // namespace zqxml::zqcatc
