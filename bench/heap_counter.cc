#include <bench/heap_counter.h>
#include <malloc.h>

namespace {

bool counting = false;
zqxml::bench::Heap heap;

/// A block costs what the allocator sets aside for it, its own word included.
std::size_t cost(void* block) {
  return malloc_usable_size(block) + sizeof(std::size_t);
}
void* counted(void* block) {
  if (block != nullptr && counting) {
    heap.bytes += cost(block);
    ++heap.blocks;
    ++heap.allocations;
  }
  return block;
}
void uncount(void* block) {
  if (block == nullptr || !counting) return;
  heap.bytes -= cost(block);
  --heap.blocks;
}

}  // namespace

// Every block of the process passes here: these names come before those of the C library.
extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void __libc_free(void*);

void* malloc(std::size_t size) {
  return counted(__libc_malloc(size));
}
void* calloc(std::size_t count, std::size_t size) {
  return counted(__libc_calloc(count, size));
}
void* realloc(void* block, std::size_t size) {
  uncount(block);
  return counted(__libc_realloc(block, size));
}
void free(void* block) {
  uncount(block);
  __libc_free(block);
}
}

namespace zqxml::bench {

HeapCounter::HeapCounter() {
  heap = {};
  counting = true;
}

HeapCounter::~HeapCounter() {
  counting = false;
}

Heap HeapCounter::counted() const {
  return heap;
}

}  // namespace zqxml::bench
