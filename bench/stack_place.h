// Work at many places of the stack.
//
// A processor may take a read for one of what was just written, and wait, when both are at the same place of
// two pages whose physical addresses look alike to it. What a thread writes on its stack while it reads a
// message takes up to a quarter longer on some pages therefore, and a program that stays on such pages
// measures them.
#pragma once

#include <cstddef>

namespace zqxml::bench {

/// So many places, a page from one to the next, have some that are not slow, and more have no others.
inline constexpr std::size_t kStackPlaces = 32;

/// Calls `work` at that place of the stack; 0 is the caller's own.
template <class Work>
[[gnu::noinline]] void callAtPlace(std::size_t place, Work&& work) {
  constexpr std::size_t kPage = 4096;
  auto* const passed = static_cast<volatile char*>(__builtin_alloca(place * kPage + 1));
  *passed = 0;  // so that it is there
  work();
}

}  // namespace zqxml::bench
