// How the lists of a message grow while their elements arrive. Not installed.
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace zqxml {

/// Room for one more element and the `alike` that are known to follow it, so that a list takes its memory
/// once and its elements stay where they are built. It grows by its own size at least: many short runs move
/// an element no oftener than many single elements do.
template <class T>
void growFor(std::vector<T>& list, std::size_t alike) {
  if (alike == 0 || list.capacity() - list.size() > alike) return;
  list.reserve(std::max(list.size() + 1 + alike, list.capacity() * 2));
}

}  // namespace zqxml
