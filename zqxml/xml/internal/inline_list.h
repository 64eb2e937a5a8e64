// InlineList: a growing array whose first elements need no heap. Not installed.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <span>
#include <type_traits>
#include <utility>

namespace zqxml {

/// A block of memory for the elements of a list; none at first.
struct ListMemory {
  std::unique_ptr<std::byte[]> bytes;
  std::size_t size = 0;
};

/// Holds up to `kInline` elements in the object itself, and more of them on the heap. What it has taken it
/// keeps until it ends. Throws std::bad_alloc, and then holds what it held.
template <class T, std::size_t kInline>
class InlineList {
  static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);

 public:
  InlineList() : elements_(reinterpret_cast<T*>(first_)) {}
  InlineList(const InlineList&) = delete;
  InlineList& operator=(const InlineList&) = delete;

  /// Makes room for as many elements in all.
  void reserve(std::size_t count) {
    if (count > capacity_) [[unlikely]]
      grow(std::max(count, capacity_ * 2));
  }
  void push_back(const T& element) {
    if (size_ == capacity_) [[unlikely]]
      growFor(element);
    else
      new (elements_ + size_++) T(element);
  }
  /// Adds as many elements, which the caller fills: their place.
  T* extend(std::size_t count) {
    reserve(size_ + count);
    return elements_ + std::exchange(size_, size_ + count);
  }
  void pop_back() { --size_; }
  void clear() { size_ = 0; }

  /// Takes a block, which ends here when it is no larger than its own memory; what it held is gone.
  void take(ListMemory memory) {
    clear();
    if (memory.size / sizeof(T) <= capacity_) return;
    heap_ = std::move(memory.bytes);
    elements_ = reinterpret_cast<T*>(heap_.get());
    capacity_ = memory.size / sizeof(T);
  }
  /// Gives up the block that its elements are in, to be taken by another list; none when they need no block.
  ListMemory release() {
    ListMemory memory;
    if (heap_ != nullptr) memory = {std::move(heap_), capacity_ * sizeof(T)};
    elements_ = reinterpret_cast<T*>(first_);
    capacity_ = kInline;
    clear();
    return memory;
  }

  std::size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  T& operator[](std::size_t i) { return elements_[i]; }
  const T& operator[](std::size_t i) const { return elements_[i]; }
  T& back() { return elements_[size_ - 1]; }
  const T& back() const { return elements_[size_ - 1]; }
  std::span<const T> view() const { return {elements_, size_}; }

 private:
  void growFor(T element) {
    reserve(size_ + 1);
    push_back(element);
  }
  void grow(std::size_t capacity) {
    std::unique_ptr<std::byte[]> larger = std::make_unique_for_overwrite<std::byte[]>(capacity * sizeof(T));
    std::memcpy(larger.get(), static_cast<const void*>(elements_), size_ * sizeof(T));
    heap_ = std::move(larger);
    elements_ = reinterpret_cast<T*>(heap_.get());
    capacity_ = capacity;
  }

  T* elements_;
  std::size_t size_ = 0;
  std::size_t capacity_ = kInline;
  std::unique_ptr<std::byte[]> heap_;
  alignas(T) std::byte first_[kInline * sizeof(T)];
};

}  // namespace zqxml
