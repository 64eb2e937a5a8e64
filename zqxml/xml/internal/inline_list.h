// InlineList: a growing array whose first elements need no heap. Not installed.
#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <span>
#include <type_traits>
#include <utility>

namespace zqxml {

/// Holds up to `kInline` elements in the object itself, and more of them on the heap. What it has taken it
/// keeps until it ends.
template <class T, std::size_t kInline>
class InlineList {
  static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);

 public:
  InlineList() : elements_(reinterpret_cast<T*>(first_)) {}
  InlineList(const InlineList&) = delete;
  InlineList& operator=(const InlineList&) = delete;

  void push_back(const T& element) {
    if (size_ == capacity_) [[unlikely]]
      grow(element);
    else
      new (elements_ + size_++) T(element);
  }
  void pop_back() { --size_; }
  void clear() { size_ = 0; }

  std::size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  const T& operator[](std::size_t i) const { return elements_[i]; }
  const T& back() const { return elements_[size_ - 1]; }
  std::span<const T> view() const { return {elements_, size_}; }

 private:
  void grow(T element) {
    const std::size_t capacity = capacity_ * 4;
    std::unique_ptr<std::byte[]> larger = std::make_unique_for_overwrite<std::byte[]>(capacity * sizeof(T));
    std::memcpy(larger.get(), static_cast<const void*>(elements_), size_ * sizeof(T));
    heap_ = std::move(larger);
    elements_ = reinterpret_cast<T*>(heap_.get());
    capacity_ = capacity;
    push_back(element);
  }

  T* elements_;
  std::size_t size_ = 0;
  std::size_t capacity_ = kInline;
  std::unique_ptr<std::byte[]> heap_;
  alignas(T) std::byte first_[kInline * sizeof(T)];
};

}  // namespace zqxml
