// Field resolution: the part that all accessors share. It finds the record that an accessor acts on, or logs
// why there is none, and keeps the objects that failing accessors hand out.
#pragma once

#include <zqxml/catalogue/field_types.h>
#include <zqxml/catalogue/records.h>
#include <zqxml/message/internal/message_access.h>

#include <cstdint>

namespace zqxml {

/// What an accessor was told about the field it wants.
struct FieldAddress {
  short memNum;
  short index;
  std::uint32_t msgTag;
  std::uint32_t fieldHash;
};

/// @{
/// resolveField and resolvePosition for callers whose numbers are not those of the object's field.
const FieldDef* searchField(const XNMessageBase& message, const char* function, FieldTypeSet fits,
                            FieldAddress address);
int searchPosition(const XNMessageBase& message, const char* function, short memNum, std::uint32_t msgTag,
                   std::uint32_t fieldHash);
/// @}

/// Whether the number is one of a member of the class. False without a class.
inline bool isMember(const _ClassDef* classDef, short memNum) {
  return classDef != nullptr && memNum >= 0 && memNum < classDef->getNumberOfFields();
}

/// The field to act on: slot `index` and bit `memNum` as they are given when the object has the caller's tag,
/// else those of the first field with the hash. Null, after a level 0 line under `function`, when there is no
/// such field or its type is none of `fits`. Where a caller's numbers are those of two fields, the result is
/// the thread's own record, valid until its next call.
inline const FieldDef* resolveField(const XNMessageBase& message, const char* function, FieldTypeSet fits,
                                    FieldAddress address) {
  const _ClassDef* classDef = MessageAccess::classDef(message);
  if (message.getTagID() == address.msgTag && isMember(classDef, address.memNum)) [[likely]] {
    const FieldDef& field = classDef->getFields()[address.memNum];
    if (field.getIndex() == address.index && fits.contains(field.getType())) [[likely]]
      return &field;
  }
  return searchField(message, function, fits, address);
}

/// Position of a member, which is also its bit, without looking at its slot: the given one when the object
/// has the caller's tag, else that of the first field with the hash. -1 after a level 0 line under
/// `function`.
inline int resolvePosition(const XNMessageBase& message, const char* function, short memNum,
                           std::uint32_t msgTag, std::uint32_t fieldHash) {
  if (message.getTagID() == msgTag && isMember(MessageAccess::classDef(message), memNum)) [[likely]]
    return memNum;
  return searchPosition(message, function, memNum, msgTag, fieldHash);
}

/// First field with the hash and one of the types; logs and gives null when there is none.
const FieldDef* findFieldByHash(const XNMessageBase& message, const char* function, FieldTypeSet fits,
                                std::uint32_t msgTag, std::uint32_t fieldHash);
/// The guard's line of the accessors that are told a member number.
void logInvalidMember(const XNMessageBase& message, const char* function, short memNum);

/// The guard's line of the scalar reads, which are told a slot only.
void logInvalidIndex(const XNMessageBase& message, const char* function, short index);

/// What failing accessors of type T hand out: one object per thread, emptied at each failure.
template <class T>
T& emptiedFallback() {
  thread_local T fallback;
  fallback = T();
  return fallback;
}

}  // namespace zqxml
