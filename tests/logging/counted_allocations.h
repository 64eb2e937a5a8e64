#pragma once

#include <cstddef>
#include <functional>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ZQXML_ALLOCATOR_IS_TAKEN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define ZQXML_ALLOCATOR_IS_TAKEN 1
#endif
#endif

namespace zqxml {

/// How many blocks of the heap this thread has asked for. For programs that are linked with
/// counted_allocations.cc.
std::size_t allocationsOfThisThread();

/// The most bytes that the heap of this process held beyond the present while this ran.
std::size_t peakHeapOf(const std::function<void()>& run);

#ifndef ZQXML_ALLOCATOR_IS_TAKEN
/// Lets the allocation of this thread after `count` more fail, once. A sanitizer's allocator cannot be made
/// to.
void failAllocationAfter(std::size_t count);
/// Calls that off. False when it has failed already.
bool cancelFailure();
/// Blocks of the whole process that are not freed.
long liveBlocks();
#endif

}  // namespace zqxml
