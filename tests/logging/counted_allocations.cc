#include <tests/logging/counted_allocations.h>

#include <atomic>
#include <utility>

namespace {

thread_local std::size_t made = 0;
std::atomic<long> liveBytes = 0;
std::atomic<long> peakBytes = 0;

void addBytes(std::size_t size) {
  const long now = liveBytes += static_cast<long>(size);
  long peak = peakBytes;
  while (now > peak && !peakBytes.compare_exchange_weak(peak, now)) {
  }
}
void removeBytes(std::size_t size) {
  liveBytes -= static_cast<long>(size);
}

}  // namespace

namespace zqxml {

std::size_t allocationsOfThisThread() {
  return made;
}

std::size_t peakHeapOf(const std::function<void()>& run) {
  const long before = liveBytes;
  peakBytes = before;
  run();
  return static_cast<std::size_t>(peakBytes - before);
}

}  // namespace zqxml

#ifdef ZQXML_ALLOCATOR_IS_TAKEN

#include <sanitizer/allocator_interface.h>

namespace {
[[maybe_unused]] const int installed = __sanitizer_install_malloc_and_free_hooks(
    [](const volatile void*, std::size_t size) {
      ++made;
      addBytes(size);
    },
    [](const volatile void* block) { removeBytes(__sanitizer_get_allocated_size(block)); });
}  // namespace

#else

#include <malloc.h>

namespace {

thread_local std::size_t failing = 0;  // the number of the allocation that fails, from now; 0 for none
std::atomic<long> live = 0;

bool mayAllocate() {
  ++made;
  return failing == 0 || --failing != 0;
}
void* counted(void* block) {
  if (block == nullptr) return block;
  ++live;
  addBytes(malloc_usable_size(block));
  return block;
}
void forgotten(void* block) {
  if (block == nullptr) return;
  --live;
  removeBytes(malloc_usable_size(block));
}

}  // namespace

// Every block of the process passes here: these names come before those of the C library, for what libraries
// allocate too, where they are seen.
#pragma GCC visibility push(default)
extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void __libc_free(void*);

void* malloc(std::size_t size) {
  return mayAllocate() ? counted(__libc_malloc(size)) : nullptr;
}
void* calloc(std::size_t count, std::size_t size) {
  return mayAllocate() ? counted(__libc_calloc(count, size)) : nullptr;
}
void* realloc(void* block, std::size_t size) {
  if (!mayAllocate()) return nullptr;
  forgotten(block);
  return counted(__libc_realloc(block, size));
}
void free(void* block) {
  forgotten(block);
  __libc_free(block);
}
}
#pragma GCC visibility pop

namespace zqxml {

void failAllocationAfter(std::size_t count) {
  failing = count + 1;
}
bool cancelFailure() {
  return std::exchange(failing, 0) != 0;
}
long liveBlocks() {
  return live;
}

}  // namespace zqxml

#endif
