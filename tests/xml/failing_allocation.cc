#include <stdlib.h>
#include <tests/xml/failing_allocation.h>

#include <cstddef>
#include <new>

namespace {
thread_local bool failNext = false;
}  // namespace

void* operator new(std::size_t size) {
  void* const block = failNext ? nullptr : malloc(size == 0 ? 1 : size);
  failNext = false;
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

void failNextAllocation() {
  failNext = true;
}
bool allocationWillFail() {
  return failNext;
}

}  // namespace zqxml
