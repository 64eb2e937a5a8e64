/// @file
/// What the generated message classes are made of beside XNMessageBase: reads that never meet a null
/// container, and writes that move.
///
/// A generated class adds no members to XNMessageBase, so a sub-object is used as an object of its class
/// though the runtime made it as an XNMessageBase. Nothing here allocates but where it says so. Threads: as
/// the message.
#pragma once

#include <zqxml/message/object_views.h>
#include <zqxml/message/text_arg.h>
#include <zqxml/message/xn_message_base.h>

#include <initializer_list>
#include <map>
#include <type_traits>
#include <utility>
#include <vector>

/// What the generated accessors call, and what they take. Programs call the accessors.
namespace zqxml::typed {

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

/// Moves `value` into the container or object; where the accessor failed (and logged why) it is dropped.
template <class Value>
void put(Value* target, std::type_identity_t<Value>&& value) {
  if (target != nullptr) *target = std::move(value);
}

/// What the setter of a list of objects takes: typed objects or messages of any class; an rvalue is moved.
template <class T>
class ObjectListArg {
 public:
  /// No objects.
  ObjectListArg() = default;
  /// @{
  /// Copies of these, but for a vector of messages that is an rvalue: it is moved whole.
  ObjectListArg(std::vector<XNMessageBase> objects) : list_(std::move(objects)) {}
  ObjectListArg(std::initializer_list<XNMessageBase> objects) : list_(objects) {}
  ObjectListArg(const std::vector<T>& objects) : list_(objects.begin(), objects.end()) {}
  ObjectListArg(ObjectView<const T> objects) : list_(objects.begin(), objects.end()) {}
  ObjectListArg(ObjectView<T> objects) : list_(objects.begin(), objects.end()) {}
  /// @}
  /// The objects themselves are moved, one by one; `objects` is left empty.
  ObjectListArg(std::vector<T>&& objects) {
    list_.reserve(objects.size());
    for (T& object : objects) list_.push_back(std::move(object));
    objects.clear();
  }

  /// The objects, to be moved on. Once.
  std::vector<XNMessageBase>&& list() { return std::move(list_); }

 private:
  std::vector<XNMessageBase> list_;
};

/// What the setter of a map to objects takes: likewise.
template <class Key, class T>
class ObjectMapArg {
 public:
  /// No objects.
  ObjectMapArg() = default;
  /// @{
  /// Copies of these, but for a map to messages that is an rvalue: it is moved whole.
  ObjectMapArg(std::map<Key, XNMessageBase> objects) : map_(std::move(objects)) {}
  ObjectMapArg(std::initializer_list<std::pair<const Key, XNMessageBase>> objects) : map_(objects) {}
  ObjectMapArg(const std::map<Key, T>& objects) : map_(objects.begin(), objects.end()) {}
  ObjectMapArg(ObjectMapView<Key, const T> objects) {
    for (auto [key, object] : objects) map_.emplace_hint(map_.end(), key, object);
  }
  ObjectMapArg(ObjectMapView<Key, T> objects) : ObjectMapArg(ObjectMapView<Key, const T>(objects)) {}
  /// @}
  /// The keys and objects themselves are moved, one by one; `objects` is left empty.
  ObjectMapArg(std::map<Key, T>&& objects) {
    while (!objects.empty()) {
      auto node = objects.extract(objects.begin());
      map_.emplace_hint(map_.end(), std::move(node.key()), std::move(node.mapped()));
    }
  }

  /// The objects, to be moved on. Once.
  std::map<Key, XNMessageBase>&& map() { return std::move(map_); }

 private:
  std::map<Key, XNMessageBase> map_;
};

/// The object at `key`, null when there is none.
template <class Map>
const XNMessageBase* find(const Map* map, const typename Map::key_type& key) {
  if (map == nullptr) return nullptr;
  const auto found = map->find(key);
  return found == map->end() ? nullptr : &found->second;
}

}  // namespace zqxml::typed
