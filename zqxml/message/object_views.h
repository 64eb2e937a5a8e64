/// @file
/// ObjectView and ObjectMapView: lists of sub-objects, and maps to them, as objects of their generated class.
///
/// A message keeps them as std::vector<XNMessageBase> and std::map<Key, XNMessageBase>; a view gives their
/// elements the class that the schema says, and new elements that class. It owns nothing and is as cheap as a
/// pointer. It is valid as long as the message is and the field is not unset; references, pointers and
/// iterators that it gave are, for a list, until the list changes its length, for a map, until their entry is
/// erased. `T` is the class, const for what is only read; it must be complete where elements are used, that
/// is, the header of its subsystem included. Threads: as the message.
#pragma once

#include <zqxml/message/xn_message_base.h>

#include <compare>
#include <cstddef>
#include <iterator>
#include <map>
#include <type_traits>
#include <utility>
#include <vector>

namespace zqxml {

/// What the generated accessors call, and what they take. Programs call the accessors.
namespace typed {

/// A message of any class, for containers that hold messages by value.
class AnyMessage : public XNMessageBase {
 public:
  /// Object of a class by the indices of the catalogue; without such a record one without a class.
  AnyMessage(int subsystem, int classIndex) : XNMessageBase(subsystem, classIndex) {}
};

/// `Target`, const where `T` is.
template <class T, class Target>
using ConstAs = std::conditional_t<std::is_const_v<T>, const Target, Target>;

/// Appends a new object of the class, made in its place.
ZQXML_EXPORT XNMessageBase& append(std::vector<XNMessageBase>& list, int subsystem, int classIndex);

/// Takes out the objects from position `first` up to `last`. The others are moved, never assigned: assignment
/// between classes throws.
inline void erase(std::vector<XNMessageBase>& list, std::ptrdiff_t first, std::ptrdiff_t last) {
  std::vector<XNMessageBase> rest;
  rest.reserve(list.size() - static_cast<std::size_t>(last - first));
  rest.insert(rest.end(), std::move_iterator(list.begin()), std::move_iterator(list.begin() + first));
  rest.insert(rest.end(), std::move_iterator(list.begin() + last), std::move_iterator(list.end()));
  list.swap(rest);
}

/// The object at `key`, a new one of the class when there was none.
template <class Key>
XNMessageBase& insert(std::map<Key, XNMessageBase>& map, Key key, int subsystem, int classIndex) {
  const auto place = map.lower_bound(key);
  if (place != map.end() && !(key < place->first)) return place->second;
  return map.emplace_hint(place, std::move(key), AnyMessage(subsystem, classIndex))->second;
}

}  // namespace typed

/// A list of objects: a range with random access.
///
///   for (const Van& van : depot.getVans()) ...
///   depot.mutableVans().add().setPlate("B-XY 1");
template <class T>
class ObjectView {
 public:
  /// @{
  /// What it looks at: the vector that the message holds, the type of its elements there, and that of a copy.
  using Vector = typed::ConstAs<T, std::vector<XNMessageBase>>;
  using Base = typed::ConstAs<T, XNMessageBase>;
  using value_type = std::remove_const_t<T>;
  /// @}

  /// Goes over the elements, with random access. A default one may only be assigned to.
  class iterator {
   public:
    /// @{
    /// What the standard library asks of an iterator.
    using iterator_category = std::random_access_iterator_tag;
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
    T& operator[](difference_type offset) const { return static_cast<T&>(at_[offset]); }
    iterator& operator++() { return *this += 1; }
    iterator& operator--() { return *this -= 1; }
    iterator operator++(int) { return iterator(at_++); }
    iterator operator--(int) { return iterator(at_--); }
    iterator& operator+=(difference_type offset) {
      at_ += offset;
      return *this;
    }
    iterator& operator-=(difference_type offset) {
      at_ -= offset;
      return *this;
    }
    friend iterator operator+(iterator it, difference_type offset) { return it += offset; }
    friend iterator operator+(difference_type offset, iterator it) { return it += offset; }
    friend iterator operator-(iterator it, difference_type offset) { return it -= offset; }
    friend difference_type operator-(iterator a, iterator b) { return a.at_ - b.at_; }
    bool operator==(const iterator&) const = default;
    std::strong_ordering operator<=>(const iterator&) const = default;
    /// @}

   private:
    Base* at_ = nullptr;
  };

  /// Null stands for an empty list; only a view that reads may be made of it.
  explicit ObjectView(Vector* list) : list_(list) {}
  /// A view that writes is one that reads.
  operator ObjectView<const T>() const requires(!std::is_const_v<T>) { return ObjectView<const T>(list_); }

  /// @{
  /// Elements in the list.
  bool empty() const { return size() == 0; }
  std::size_t size() const { return list_ == nullptr ? 0 : list_->size(); }
  /// @}
  /// REQUIRES: position < size().
  T& operator[](std::size_t position) const { return static_cast<T&>((*list_)[position]); }
  /// @{
  /// The first and the last. REQUIRES: !empty().
  T& front() const { return (*this)[0]; }
  T& back() const { return (*this)[size() - 1]; }
  /// @}
  /// @{
  /// The elements in order: `for (auto& element : view)`.
  iterator begin() const { return iterator(list_ == nullptr ? nullptr : list_->data()); }
  iterator end() const { return iterator(list_ == nullptr ? nullptr : list_->data() + list_->size()); }
  /// @}

  /// @{
  /// Appends a new object, a copy, or the object itself.
  T& add() const requires(!std::is_const_v<T>) {
    return static_cast<T&>(typed::append(*list_, T::kSubsystem, T::kClassIndex));
  }
  T& add(const T& object) const requires(!std::is_const_v<T>) {
    return static_cast<T&>(list_->emplace_back(object));
  }
  T& add(T&& object) const requires(!std::is_const_v<T>) {
    return static_cast<T&>(list_->emplace_back(std::move(object)));
  }
  /// @}
  /// @{
  /// Takes out the objects from `first` up to `last`, or the one at `position`. REQUIRES: they are there.
  void erase(std::size_t position) const requires(!std::is_const_v<T>) {
    erase(begin() + static_cast<std::ptrdiff_t>(position));
  }
  void erase(iterator position) const requires(!std::is_const_v<T>) { erase(position, position + 1); }
  void erase(iterator first, iterator last) const requires(!std::is_const_v<T>) {
    typed::erase(*list_, first - begin(), last - begin());
  }
  /// @}
  /// Takes out all objects; the field stays set.
  void clear() const requires(!std::is_const_v<T>) { list_->clear(); }
  /// Room for `size` objects, so that adding them moves none.
  void reserve(std::size_t size) const requires(!std::is_const_v<T>) { list_->reserve(size); }

 private:
  Vector* list_;
};

/// A map to objects, in the order of its keys. Entries are pairs of references, made as they are asked for:
///
///   for (auto [plate, van] : depot.getByPlate()) ...
///   depot.mutableByPlate().add("B-XY 1").setStops({"North"});
template <class Key, class T>
class ObjectMapView {
 public:
  /// @{
  /// What it looks at: the map that the message holds, and its iterator.
  using Map = typed::ConstAs<T, std::map<Key, XNMessageBase>>;
  using MapIterator = decltype(std::declval<Map&>().begin());
  /// @}

  /// A key and its object, which lie in the map.
  struct Entry {
    const Key& first;  ///< the key
    T& second;         ///< the object
    /// For `it->second`.
    const Entry* operator->() const { return this; }
  };

  /// Goes over the entries, forwards. A default one may only be assigned to.
  class iterator {
   public:
    /// @{
    /// What the standard library asks of an iterator.
    using iterator_category = std::input_iterator_tag;
    using value_type = Entry;
    using difference_type = std::ptrdiff_t;
    using pointer = Entry;
    using reference = Entry;
    /// @}

    /// @{
    /// As the map's own iterator, but that an entry is made as it is asked for.
    iterator() = default;
    explicit iterator(MapIterator at) : at_(at) {}
    Entry operator*() const { return {at_->first, static_cast<T&>(at_->second)}; }
    Entry operator->() const { return **this; }
    iterator& operator++() {
      ++at_;
      return *this;
    }
    iterator operator++(int) { return iterator(at_++); }
    bool operator==(const iterator&) const = default;
    /// @}

   private:
    MapIterator at_{};
  };

  /// Null stands for an empty map; only a view that reads may be made of it.
  explicit ObjectMapView(Map* map) : map_(map) {}
  /// A view that writes is one that reads.
  operator ObjectMapView<Key, const T>() const requires(!std::is_const_v<T>) {
    return ObjectMapView<Key, const T>(map_);
  }

  /// @{
  /// Entries in the map.
  bool empty() const { return size() == 0; }
  std::size_t size() const { return map_ == nullptr ? 0 : map_->size(); }
  /// @}
  /// Whether there is an object at `key`.
  bool contains(const Key& key) const { return map_ != nullptr && map_->contains(key); }
  /// The object at `key`, null when there is none.
  T* find(const Key& key) const {
    if (map_ == nullptr) return nullptr;
    const auto found = map_->find(key);
    return found == map_->end() ? nullptr : static_cast<T*>(&found->second);
  }
  /// @{
  /// The entries in the order of their keys: `for (auto [key, object] : view)`.
  iterator begin() const { return map_ == nullptr ? iterator() : iterator(map_->begin()); }
  iterator end() const { return map_ == nullptr ? iterator() : iterator(map_->end()); }
  /// @}

  /// The object at `key`, a new one when there was none.
  T& add(Key key) const requires(!std::is_const_v<T>) {
    return static_cast<T&>(typed::insert(*map_, std::move(key), T::kSubsystem, T::kClassIndex));
  }
  /// Whether there was an object at `key` to take out.
  bool erase(const Key& key) const requires(!std::is_const_v<T>) { return map_->erase(key) != 0; }
  /// Takes out all objects; the field stays set.
  void clear() const requires(!std::is_const_v<T>) { map_->clear(); }

 private:
  Map* map_;
};

}  // namespace zqxml
