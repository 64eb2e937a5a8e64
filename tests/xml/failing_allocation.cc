#include <stdlib.h>
#include <tests/xml/failing_allocation.h>

#include <cstddef>
#include <new>

namespace {
thread_local std::size_t countdown = 0;    // of allocations to the one that fails; 0: none does
thread_local std::size_t failingSize = 0;  // 0: any
thread_local std::ptrdiff_t blocks = 0;

/// Whether this is the allocation that fails.
bool fails(std::size_t size) {
  if (countdown == 0 || (failingSize != 0 && failingSize != size)) return false;
  return --countdown == 0;
}
}  // namespace

void* operator new(std::size_t size) {
  void* const block = fails(size) ? nullptr : malloc(size == 0 ? 1 : size);
  if (block == nullptr) throw std::bad_alloc();
  ++blocks;
  return block;
}
void operator delete(void* block) noexcept {
  if (block != nullptr) --blocks;
  free(block);
}
void operator delete(void* block, std::size_t) noexcept {
  operator delete(block);
}

namespace zqxml {

void failNextAllocation(std::size_t size) {
  failAllocation(1, size);
}
void failAllocation(std::size_t number, std::size_t size) {
  countdown = number;
  failingSize = size;
}
bool allocationWillFail() {
  return countdown != 0;
}
std::ptrdiff_t allocatedBlocks() {
  return blocks;
}

}  // namespace zqxml
