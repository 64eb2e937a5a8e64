// What the list and map accessors share: read, make and replace a collection that a slot owns.
#pragma once

#include <zqxml/message/internal/field_resolution.h>

#include <type_traits>
#include <utility>

namespace zqxml {

/// Types of list and map fields that are stored as Collection.
template <class Collection>
inline constexpr FieldTypeSet kTypesHolding = FieldTypeSet::ofStorage(Overloaded{
    []<class E>(List<E>) { return std::is_same_v<typename List<E>::Value, Collection>; },
    []<class K, class V>(Map<K, V>) { return std::is_same_v<typename Map<K, V>::Value, Collection>; },
    [](auto) { return false; }});

/// The slot of the collection, made when there is none; marks the bit when markSet.
template <class Collection>
Collection*& contentMade(XNMessageBase& message, const char* function, FieldAddress address, bool markSet) {
  const FieldDef* field = resolveField(message, function, kTypesHolding<Collection>, address);
  if (field == nullptr) return emptiedFallback<Collection*>();
  MessageAccess::make<Collection>(message, *field, markSet);
  return MessageAccess::owned<Collection>(message, *field);
}

/// The collection, null when there is none.
template <class Collection>
const Collection* content(const XNMessageBase& message, const char* function, FieldAddress address) {
  const FieldDef* field = resolveField(message, function, kTypesHolding<Collection>, address);
  return field == nullptr ? nullptr : MessageAccess::owned<Collection>(message, *field);
}

/// Whether an element of a collection is a message, or has one on either side.
template <class Element>
inline constexpr bool kHoldsMessage = std::is_same_v<Element, XNMessageBase>;
template <class Key, class Mapped>
inline constexpr bool kHoldsMessage<std::pair<Key, Mapped>> =
    kHoldsMessage<std::remove_const_t<Key>> || kHoldsMessage<Mapped>;

/// Makes the collection a copy of `value` and marks the bit; null clears the member. Messages are cloned
/// before the old ones end: `value` may be a part of one of them, and assignment between classes throws.
template <class Collection>
void setContent(XNMessageBase& message, const char* function, FieldAddress address, const Collection* value) {
  if (value == nullptr)
    return MessageAccess::deleteMember(message, address.memNum, address.msgTag, address.fieldHash);
  const FieldDef* field = resolveField(message, function, kTypesHolding<Collection>, address);
  if (field == nullptr) return;
  Collection& target = MessageAccess::make<Collection>(message, *field, true);
  if constexpr (kHoldsMessage<typename Collection::value_type>)
    Collection(*value).swap(target);
  else
    target = *value;
}

}  // namespace zqxml
