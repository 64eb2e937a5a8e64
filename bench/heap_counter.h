// What is on the heap. A program with heap_counter.cc among its sources has every block counted, and is
// slower.
#pragma once

#include <cstddef>

namespace zqxml::bench {

struct Heap {
  std::size_t bytes = 0;        ///< alive, with what the allocator adds to each block
  std::size_t blocks = 0;       ///< alive
  std::size_t allocations = 0;  ///< also those that are freed again
};

/// Counts while it lives, on every thread together; one at a time.
class HeapCounter {
 public:
  HeapCounter();
  ~HeapCounter();
  HeapCounter(const HeapCounter&) = delete;
  HeapCounter& operator=(const HeapCounter&) = delete;

  /// Since the counter was made.
  Heap counted() const;
};

}  // namespace zqxml::bench
