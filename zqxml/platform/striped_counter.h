#pragma once

#include <zqxml/platform/export.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace zqxml {

/// An int that all threads may raise without disturbing each other, for what is counted often and seldom
/// looked at: a striped counter.
///
/// It is spread over cells on cache lines of their own. A thread raises the cell that is its own, and reading
/// adds them up. Cells are given to threads by turns, at a thread's first raise of any counter: as many
/// threads as there are cells have one each, more than that share them, and the sum is exact in any case.
/// Behind the largest int it goes on with the smallest one.
///
/// There before anything runs, when it is static, and never destroyed. Allocates nothing; nothing fails. All
/// operations may be called by several threads at once.
class ZQXML_EXPORT StripedCounter {
 public:
  /// How many threads have one each.
  static constexpr std::size_t kCells = 8;
  /// Bytes that go from core to core together.
  static constexpr std::size_t kCacheLine = 64;

  /// 0.
  constexpr StripedCounter() = default;
  StripedCounter(const StripedCounter&) = delete;
  StripedCounter& operator=(const StripedCounter&) = delete;

  /// Raises it by one. Orders no other memory access between threads.
  StripedCounter& operator++() noexcept;
  /// Makes it this number, whoever raised it before. A raise at the same time counts or does not, as with any
  /// int; a read gives the number before or the one after.
  StripedCounter& operator=(int value) noexcept;
  /// The number. Exact when the raises of other threads happened before, or will happen after.
  operator int() const noexcept;

 private:
  struct alignas(kCacheLine) Cell {
    std::atomic<std::uint32_t> raises{0};
  };
  std::uint32_t raises() const noexcept;

  std::array<Cell, kCells> cells_{};
  /// What the number is above the raises. An assignment changes this alone, and so is done at once.
  alignas(kCacheLine) std::atomic<std::uint32_t> base_{0};
};

}  // namespace zqxml
