// The set bits: one per field, numbered by memNum.
#include <zqxml/catalogue/lookup.h>
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/message/internal/field_resolution.h>
#include <zqxml/message/xn_message_base.h>

namespace zqxml {

bool XNMessageBase::isSet(short memNum, std::uint32_t msgTag, std::uint32_t fieldHash) const {
  const int position = resolvePosition(*this, "XNMessageBase::isSet", memNum, msgTag, fieldHash);
  return position >= 0 && MessageAccess::isSet(*this, position);
}

bool XNMessageBase::isSet(short position, bool& hasHash, std::string& name) const {
  const int count = getNumberOfFields();
  if (position < 0 || position >= count) {
    logError("XNMessageBase::isSet", "Invalid field Id [%d]. Total number of fields = [%d]. Message = [%s]",
             position, count, getTagName());
    return false;
  }
  const FieldDef& field = classDef_->getFields()[position];
  hasHash = field.getFieldHashId() != 0;
  if (field.getName() != nullptr) name += field.getName();
  return isSet(position, tagId_, field.getFieldHashId());
}

void XNMessageBase::setField(short memNum, std::uint32_t msgTag, std::uint32_t fieldHash) {
  const int position = resolvePosition(*this, "XNMessageBase::setField", memNum, msgTag, fieldHash);
  if (position >= 0) MessageAccess::mark(*this, position);
}

void XNMessageBase::unsetField(short memNum, std::uint32_t msgTag, std::uint32_t fieldHash) {
  const int position = resolvePosition(*this, "XNMessageBase::unsetField", memNum, msgTag, fieldHash);
  if (position >= 0) MessageAccess::unmark(*this, position);
}

void XNMessageBase::setMemberTestBit(const std::string& name, bool on) {
  const int position = catalogue::fieldPosition(classDef_, name);
  if (position < 0) return;
  const FieldDef& field = classDef_->getFields()[position];
  if (field.getType() == FDT_NONE) return;  // the class's own name: its record is no member
  if (!on)
    deleteMember(field.getMemNum(), tagId_, field.getFieldHashId(), false);
  else
    logError("XNMessageBase::setMemberTestBit", "[%s]",
             "You cannot enable a field without passing the value");
}

void XNMessageBase::setPrimitiveBitValue(int position, bool on) {
  static constexpr const char* kFunction = "XNMessageBase::setPrimitiveBitValue";
  if (position < 0 || position >= getNumberOfFields()) {
    logError(kFunction, "Message [%s] does not have member [%d]", getTagName(), position);
    return;
  }
  const FieldDef& field = classDef_->getFields()[position];
  // QUIRK: ulonglong counts as a list here and is refused.
  if (!kXmlPrimitiveTypes.contains(field.getType()) || kListTypes.contains(field.getType())) {
    logError(kFunction, "Received member [%s] is not a primitive type. Given member type is [%d]",
             field.getName(), field.getType());
    return;
  }
  if (on)
    MessageAccess::mark(*this, position);
  else
    MessageAccess::unmark(*this, position);
}

}  // namespace zqxml
