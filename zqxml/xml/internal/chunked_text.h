// ChunkedText: a text that is written front to back, of a length that shows only at the end. Not installed.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zqxml {

/// Nothing is moved while the text grows: a full chunk stays, and the next one is larger. The first stands in
/// the object itself. A writer makes room, writes at `at()`, and tells where it ended.
template <class Char>
class ChunkedText {
 public:
  ChunkedText() : at_(first_), start_(first_), end_(first_ + kFirst) {}
  ChunkedText(const ChunkedText&) = delete;
  ChunkedText& operator=(const ChunkedText&) = delete;

  /// Room for `count` units at the place that it gives.
  Char* room(std::size_t count) {
    if (count > static_cast<std::size_t>(end_ - at_)) [[unlikely]]
      grow(count);
    return at_;
  }
  void endAt(Char* at) { at_ = at; }

  /// Replaces `out` by the text. When that fails for want of memory, `out` keeps what it held.
  void moveTo(std::basic_string<Char>& out) {
    std::size_t size = static_cast<std::size_t>(at_ - start_);
    for (const Full& chunk : full_) size += chunk.size;
    if (size > out.capacity()) {
      std::basic_string<Char> larger;
      larger.reserve(size);
      out.swap(larger);
    }
    out.clear();
    for (const Full& chunk : full_) out.append(chunk.data, chunk.size);
    out.append(start_, static_cast<std::size_t>(at_ - start_));
  }

 private:
  static constexpr std::size_t kFirst = 2048 / sizeof(Char);
  static constexpr std::size_t kGrowth = 4;

  struct Full {
    const Char* data;
    std::size_t size;
  };

  void grow(std::size_t count) {
    const std::size_t size = std::max(count, kGrowth * static_cast<std::size_t>(end_ - start_));
    std::unique_ptr<Char[]> next = std::make_unique_for_overwrite<Char[]>(size);
    full_.push_back({start_, static_cast<std::size_t>(at_ - start_)});
    owned_.push_back(std::move(next));
    at_ = start_ = owned_.back().get();
    end_ = start_ + size;
  }

  Char* at_;
  Char* start_;
  Char* end_;
  std::vector<Full> full_;
  std::vector<std::unique_ptr<Char[]>> owned_;
  Char first_[kFirst];
};

}  // namespace zqxml
