// Accessors of sub-objects: one slot owning a message.
#include <zqxml/message/internal/field_resolution.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/platform/exception.h>

#include <string>

namespace zqxml {
namespace {

constexpr FieldTypeSet kObjectTypes =
    FieldTypeSet::ofStorage(Overloaded{[](Object) { return true; }, [](auto) { return false; }});

}  // namespace

XNMessageBase*& XNMessageBase::getObject(short memNum, short index, std::uint32_t msgTag,
                                         std::uint32_t fieldHash) {
  static constexpr const char* kFunction = "XNMessageBase::getObject";
  const FieldDef* field = resolveField(*this, kFunction, kObjectTypes, {memNum, index, msgTag, fieldHash});
  if (field != nullptr) return MessageAccess::owned<XNMessageBase>(*this, *field);
  const bool isMember = classDef_ != nullptr && memNum >= 0 && memNum < classDef_->getNumberOfFields();
  const bool isSlot = tagId_ != msgTag || (index >= 0 && index < buffer_.slotCount());
  if (!isMember || !isSlot) return emptiedFallback<XNMessageBase*>();
  throw ZqException(kFunction,
                    "ZqXML does not recognize given field :[" + std::to_string(fieldHash) + "] in Message [" +
                        getTagName() + "] :[" + std::to_string(tagId_) + "]. Message received : [" +
                        std::to_string(msgTag) + "]",
                    "", -1, -1);
}

const XNMessageBase* XNMessageBase::getObject_const(short memNum, short index, std::uint32_t msgTag,
                                                    std::uint32_t fieldHash) const {
  const FieldDef* field =
      resolveField(*this, "XNMessageBase::getObject_const", kObjectTypes, {memNum, index, msgTag, fieldHash});
  return field == nullptr ? nullptr : MessageAccess::owned<XNMessageBase>(*this, *field);
}

XNMessageBase*& XNMessageBase::getObjectAccessor(bool create, bool markSet, short memNum, short index,
                                                 std::uint32_t msgTag, std::uint32_t fieldHash,
                                                 int msgSysIndex, int msgIndex) {
  XNMessageBase*& slot = getObject(memNum, index, msgTag, fieldHash);
  if (slot != nullptr) {
    if (markSet) setField(memNum, msgTag, fieldHash);
    return slot;
  }
  // The thread's fallback slot stays null: an object made in it would belong to no message.
  const bool isOwnSlot = &slot != &emptiedFallback<XNMessageBase*>();
  if ((!create && !markSet) || !isOwnSlot) return slot;
  slot = new XNMessageBase(msgSysIndex, msgIndex);
  setObject(memNum, index, slot, true, msgTag, fieldHash, markSet);
  return slot;
}

void XNMessageBase::setObject(short memNum, short index, const void* value, bool, std::uint32_t msgTag,
                              std::uint32_t fieldHash, bool markSet) {
  if (value == nullptr) {
    deleteMember(memNum, tagId_, 0, false);
    return;
  }
  const FieldDef* field =
      resolveField(*this, "XNMessageBase::setObject", kObjectTypes, {memNum, index, msgTag, fieldHash});
  if (field == nullptr) return;
  // QUIRK: what the slot held is dropped, not freed; callers that replace an object clear the member first.
  MessageAccess::owned<XNMessageBase>(*this, *field) =
      const_cast<XNMessageBase*>(static_cast<const XNMessageBase*>(value));
  if (markSet) MessageAccess::mark(*this, field->getMemNum());
}

void XNMessageBase::setObjectAccessor(const void* value, short memNum, short index, std::uint32_t msgTag,
                                      std::uint32_t fieldHash) {
  if (value == nullptr) {
    deleteMember(memNum, msgTag, fieldHash, false);
    return;
  }
  const XNMessageBase& source = *static_cast<const XNMessageBase*>(value);
  XNMessageBase*& slot = getObject(memNum, index, msgTag, fieldHash);
  if (&slot == &emptiedFallback<XNMessageBase*>()) return;
  if (slot == nullptr)
    setObject(memNum, index, new XNMessageBase(source), true, msgTag, fieldHash, true);
  else
    *slot = source;
  setField(memNum, msgTag, fieldHash);
}

}  // namespace zqxml
