/// @file
/// What the generated message classes are made of beside XNMessageBase: views of object lists, and reads that
/// never meet a null container.
///
/// A generated class adds no members to XNMessageBase, so a sub-object is used as an object of its class
/// though the runtime made it as an XNMessageBase. Nothing here allocates but where it says so. Threads: as
/// the message.
#pragma once

#include <zqxml/message/xn_message_base.h>

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <type_traits>
#include <vector>

namespace zqxml {

/// A list of sub-objects as objects of their generated class. A view: it does not own the list and is valid
/// until the list changes its length. `T` is the class, const for a list that is only read; it must be
/// complete where elements are used.
template <class T>
class ObjectView {
 public:
  /// @{
  /// What it looks at: the vector that the message holds, and the type of its elements there.
  using Vector =
      std::conditional_t<std::is_const_v<T>, const std::vector<XNMessageBase>, std::vector<XNMessageBase>>;
  using Base = std::conditional_t<std::is_const_v<T>, const XNMessageBase, XNMessageBase>;
  /// @}

  /// Goes over the elements, forwards. Valid as the view is; a default one may only be assigned to.
  class iterator {
   public:
    /// @{
    /// What the standard library asks of an iterator.
    using iterator_category = std::forward_iterator_tag;
    using value_type = std::remove_const_t<T>;
    using difference_type = std::ptrdiff_t;
    using pointer = T*;
    using reference = T&;
    /// @}

    /// @{
    /// As a pointer to an element of the vector.
    iterator() = default;
    explicit iterator(Base* at) : at_(at) {}
    T& operator*() const { return static_cast<T&>(*at_); }
    T* operator->() const { return static_cast<T*>(at_); }
    iterator& operator++() {
      ++at_;
      return *this;
    }
    iterator operator++(int) { return iterator(at_++); }
    bool operator==(const iterator& other) const { return at_ == other.at_; }
    /// @}

   private:
    Base* at_ = nullptr;
  };

  /// Null stands for an empty list.
  explicit ObjectView(Vector* list) : list_(list) {}

  /// @{
  /// Elements in the list.
  bool empty() const { return size() == 0; }
  std::size_t size() const { return list_ == nullptr ? 0 : list_->size(); }
  /// @}
  /// REQUIRES: position < size().
  T& operator[](std::size_t position) const { return static_cast<T&>((*list_)[position]); }
  /// @{
  /// The elements in order: `for (auto& element : view)`.
  iterator begin() const { return iterator(list_ == nullptr ? nullptr : list_->data()); }
  iterator end() const { return iterator(list_ == nullptr ? nullptr : list_->data() + list_->size()); }
  /// @}

 private:
  Vector* list_;
};

/// What the generated accessors call. Programs call the accessors.
namespace typed {

/// Whether it is a message of that class. The tag would not do: classes without an id share one.
inline bool isOf(const XNMessageBase* message, int subsystem, int classIndex) {
  return message != nullptr && message->getSubsysID() == subsystem &&
         message->getMessageIndex() == classIndex;
}

/// The value, or an empty one that lives as long as the process.
template <class Value>
const Value& orEmpty(const Value* value) {
  static const Value kEmpty{};
  return value == nullptr ? kEmpty : *value;
}

/// The value; where the accessor failed (and logged why) a scratch value of the thread, emptied here, so that
/// a write does no harm.
template <class Value>
Value& orScratch(Value* value) {
  if (value != nullptr) return *value;
  thread_local Value scratch;
  if constexpr (!std::is_same_v<Value, XNMessageBase>) scratch = Value{};
  return scratch;
}

/// A message of any class, for containers that hold messages by value.
class AnyMessage : public XNMessageBase {
 public:
  /// Object of a class by the indices of the catalogue; without such a record one without a class.
  AnyMessage(int subsystem, int classIndex) : XNMessageBase(subsystem, classIndex) {}
};

/// Appends a new object of the class.
inline XNMessageBase& append(std::vector<XNMessageBase>& list, int subsystem, int classIndex) {
  return list.emplace_back(AnyMessage(subsystem, classIndex));
}

/// The object at `key`, null when there is none.
template <class Map>
const XNMessageBase* find(const Map& map, const typename Map::key_type& key) {
  const auto found = map.find(key);
  return found == map.end() ? nullptr : &found->second;
}

/// The object at `key`, a new one of the class when there was none.
template <class Map>
XNMessageBase& insert(Map& map, const typename Map::key_type& key, int subsystem, int classIndex) {
  const auto found = map.find(key);
  if (found != map.end()) return found->second;
  return map.emplace(key, AnyMessage(subsystem, classIndex)).first->second;
}

}  // namespace typed

}  // namespace zqxml
