// A block of memory that a thread keeps from one text to the next. Not installed.
#pragma once

#include <zqxml/xml/internal/inline_list.h>
#include <zqxml/xml/internal/thread_kept.h>

#include <cstddef>
#include <utility>

namespace zqxml {

/// The block that the calling thread keeps; whoever uses it takes it away for that time.
class ThreadMemory {
 public:
  /// Bytes of the block, 0 for none.
  static std::size_t size() { return Kept::get() == nullptr ? 0 : size_; }

  /// The block, which the thread then keeps no more; one of no size for none.
  static ListMemory take() {
    const std::size_t bytes = size();
    return {Kept::take(), bytes};
  }

  /// Keeps the block unless it is a large one or the thread has one as large. Memory that is asked for anew
  /// comes as pages that the system has to clear, which takes more time than to scan what is noted in them.
  static void keep(ListMemory memory) {
    constexpr std::size_t kMost = std::size_t{2} << 20;
    if (memory.size > kMost || memory.size <= size()) return;
    size_ = memory.size;
    Kept::keep(std::move(memory.bytes));
  }

 private:
  using Kept = ThreadKept<std::byte[]>;
  static inline constinit thread_local std::size_t size_ = 0;
};

}  // namespace zqxml
