#include <stdlib.h>
#include <tests/xml/failing_allocation.h>

#include <cstddef>
#include <new>

namespace {
thread_local bool failNext = false;
thread_local std::size_t failingSize = 0;  // 0: any
}  // namespace

void* operator new(std::size_t size) {
  const bool fails = failNext && (failingSize == 0 || failingSize == size);
  void* const block = fails ? nullptr : malloc(size == 0 ? 1 : size);
  if (fails) failNext = false;
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
void operator delete(void* block) noexcept {
  free(block);
}
void operator delete(void* block, std::size_t) noexcept {
  free(block);
}

namespace zqxml {

void failNextAllocation(std::size_t size) {
  failNext = true;
  failingSize = size;
}
bool allocationWillFail() {
  return failNext;
}

}  // namespace zqxml
