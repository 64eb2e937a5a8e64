// A block of memory that a thread keeps from one text to the next. Not installed.
#pragma once

#include <zqxml/xml/internal/inline_list.h>

#include <cstddef>
#include <utility>

namespace zqxml {

/// What the thread keeps; whoever uses it takes it away for that time. It ends with the thread.
inline ListMemory& threadMemory() {
  thread_local ListMemory memory;
  return memory;
}

/// Keeps the block unless it is a large one or the thread has one. Memory that is asked for anew comes as
/// pages that the system has to clear, which takes more time than to scan what is noted in them.
inline void keepForThread(ListMemory memory) {
  constexpr std::size_t kMost = std::size_t{2} << 20;
  if (memory.size != 0 && memory.size <= kMost && memory.size > threadMemory().size)
    threadMemory() = std::move(memory);
}

}  // namespace zqxml
