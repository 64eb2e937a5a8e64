// TextBuffer: a text that is written front to back, of a length that shows only at the end. Not installed.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>

namespace zqxml {

/// The beginning stands in the object itself; a text that outgrows it goes on in a string, which then is what
/// the caller gets. A writer makes room, writes there, and tells where it ended.
template <class Char>
class TextBuffer {
 public:
  TextBuffer() : at_(first_), start_(first_), end_(first_ + kFirst) {}
  TextBuffer(const TextBuffer&) = delete;
  TextBuffer& operator=(const TextBuffer&) = delete;

  /// The length that the text may turn out to have: what it grows to, when that is not far more than what it
  /// has already.
  void expect(std::size_t size) { expected_ = size; }
  /// Where the text ends, as far as was told.
  Char* end() const { return at_; }
  /// Room for `count` units at the end, which it gives.
  [[gnu::always_inline]] Char* room(std::size_t count) { return room(at_, count); }
  /// The same behind what was written up to `at`.
  [[gnu::always_inline]] Char* room(Char* at, std::size_t count) {
    if (count > static_cast<std::size_t>(end_ - at)) [[unlikely]] {
      at_ = at;
      grow(count);
      return at_;
    }
    return at;
  }
  void endAt(Char* at) { at_ = at; }
  /// @{
  /// The unit of that number, from 0, by its place, and the other way round: places do not last.
  Char* place(std::size_t number) const { return start_ + number; }
  std::size_t numberOf(const Char* at) const { return static_cast<std::size_t>(at - start_); }
  /// @}

  /// Whether it stands in the object whole.
  bool isShort() const { return start_ == first_; }
  std::size_t size() const { return static_cast<std::size_t>(at_ - start_); }

  /// Replaces `out` by the text, at the end of all. When that fails for want of memory, `out` keeps what it
  /// held.
  void moveTo(std::basic_string<Char>& out) {
    const std::size_t length = size();
    if (isShort() || length < string_.size() / 2) {
      out.assign(start_, length);
    } else {
      string_.resize(length);
      out.swap(string_);
    }
  }

 private:
  static constexpr std::size_t kFirst = 8192 / sizeof(Char);
  static constexpr std::size_t kLeastGrowth = 2;
  static constexpr std::size_t kMostGrowth = 16;

  [[gnu::noinline]] void grow(std::size_t count) {
    const std::size_t used = size();
    const auto capacity = static_cast<std::size_t>(end_ - start_);
    const std::size_t next =
        std::max(used + count, std::clamp(expected_, kLeastGrowth * capacity, kMostGrowth * capacity));
    if (isShort()) {
      string_.reserve(next);
      string_.assign(first_, used);
    }
    string_.resize(next);
    start_ = string_.data();
    at_ = start_ + used;
    end_ = start_ + next;
  }

  Char* at_;
  Char* start_;
  Char* end_;
  std::size_t expected_ = 0;
  std::basic_string<Char> string_;
  Char first_[kFirst];
};

}  // namespace zqxml
