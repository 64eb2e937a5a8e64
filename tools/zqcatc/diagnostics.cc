#include "diagnostics.h"

#include <algorithm>
#include <ostream>
#include <tuple>
#include <utility>

namespace zqxml::zqcatc {

void Diagnostics::error(const Position& position, std::string text) {
  ++count_;
  if (entries_.size() < kMaxKept) entries_.push_back({position, std::move(text)});
}

void Diagnostics::print(std::ostream& out) const {
  std::vector<const Entry*> sorted;
  for (const Entry& entry : entries_) sorted.push_back(&entry);
  std::stable_sort(sorted.begin(), sorted.end(), [](const Entry* a, const Entry* b) {
    const auto key = [](const Position& at) { return std::tie(at.file, at.line, at.column); };
    return key(a->position) < key(b->position);
  });
  for (const Entry* entry : sorted) {
    out << entry->position.file;
    if (entry->position.line != 0) out << ':' << entry->position.line << ':' << entry->position.column;
    out << ": error: " << entry->text << '\n';
  }
  if (count_ > entries_.size()) out << "... and " << count_ - entries_.size() << " more errors\n";
}

}  // namespace zqxml::zqcatc
