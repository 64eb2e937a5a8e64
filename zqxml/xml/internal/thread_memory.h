// A block of memory that a thread keeps from one text to the next. Not installed.
#pragma once

#include <zqxml/xml/internal/inline_list.h>

#include <cstddef>
#include <memory>
#include <utility>

namespace zqxml {

/// The block that the calling thread keeps; whoever uses it takes it away for that time. It ends with the
/// thread, which keeps none from then on. In plain variables: while a thread ends, and after main, texts may
/// still be read.
class ThreadMemory {
 public:
  /// Bytes of the block, 0 for none.
  static std::size_t size() { return size_; }

  /// The block, which the thread then keeps no more; one of no size for none.
  static ListMemory take() {
    return {std::unique_ptr<std::byte[]>(std::exchange(block_, nullptr)), std::exchange(size_, 0)};
  }

  /// Keeps the block unless it is a large one or the thread has one as large. Memory that is asked for anew
  /// comes as pages that the system has to clear, which takes more time than to scan what is noted in them.
  static void keep(ListMemory memory) {
    constexpr std::size_t kMost = std::size_t{2} << 20;
    if (memory.size == 0 || memory.size > kMost || memory.size <= size_ || threadEnds_) return;
    static const thread_local Closer closer;
    (void)take();
    block_ = memory.bytes.release();
    size_ = memory.size;
  }

 private:
  struct Closer {
    ~Closer() {
      threadEnds_ = true;
      (void)take();
    }
  };

  static inline constinit thread_local std::byte* block_ = nullptr;
  static inline constinit thread_local std::size_t size_ = 0;
  static inline constinit thread_local bool threadEnds_ = false;
};

}  // namespace zqxml
