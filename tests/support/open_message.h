// OpenMessage: a message whose protected operations are open, as generated classes see them; and short ways
// to messages and fields of the tests' catalogue.
#pragma once

#include <zqxml/catalogue/lookup.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/message/xn_message_base.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace zqxml {

class OpenMessage : public XNMessageBase {
 public:
  OpenMessage() = default;
  OpenMessage(int subsystem, int classIndex) : XNMessageBase(subsystem, classIndex) {}
  OpenMessage(int subsystem, int classIndex, std::int64_t* block, int blockSize)
      : XNMessageBase(subsystem, classIndex, block, blockSize) {}

  // clang-format off
  using XNMessageBase::getint64;
  using XNMessageBase::getdouble;
  using XNMessageBase::getfloat;
  using XNMessageBase::setint64;
  using XNMessageBase::setdouble;
  using XNMessageBase::setfloat;
  using XNMessageBase::getint64ByRef;
  using XNMessageBase::getstring;
  using XNMessageBase::getstring_const;
  using XNMessageBase::getstringByRef;
  using XNMessageBase::setstring;
  using XNMessageBase::getwstring;
  using XNMessageBase::getwstring_const;
  using XNMessageBase::getwstringByRef;
  using XNMessageBase::setwstring;
  using XNMessageBase::getbstringobject;
  using XNMessageBase::getbstringobject_const;
  using XNMessageBase::getbstringobjectByRef;
  using XNMessageBase::setbstringobject;
  using XNMessageBase::getpstringobject;
  using XNMessageBase::getpstringobject_const;
  using XNMessageBase::getpstringobjectByRef;
  using XNMessageBase::setpstringobject;
  using XNMessageBase::getcdataobject;
  using XNMessageBase::getcdataobject_const;
  using XNMessageBase::setcdataobject;
#define ZQXML_OPEN(accessor) \
  using XNMessageBase::get##accessor; using XNMessageBase::get##accessor##_const; using XNMessageBase::set##accessor;
  ZQXML_OPEN(listint)
  ZQXML_OPEN(listuint)
  ZQXML_OPEN(listlong)
  ZQXML_OPEN(listulong)
  ZQXML_OPEN(listlonglong)
  ZQXML_OPEN(listulonglong)
  ZQXML_OPEN(listfloat)
  ZQXML_OPEN(listdouble)
  ZQXML_OPEN(liststring)
  ZQXML_OPEN(listwstring)
  ZQXML_OPEN(listbstring)
  ZQXML_OPEN(listobject)
  ZQXML_OPEN(MapInt64AndInt64)
  ZQXML_OPEN(MapInt64AndString)
  ZQXML_OPEN(MapInt64AndObject)
  ZQXML_OPEN(MapStringAndInt64)
  ZQXML_OPEN(MapStringAndString)
  ZQXML_OPEN(MapStringAndObject)
  ZQXML_OPEN(MapObjectAndObject)
#undef ZQXML_OPEN
  using XNMessageBase::getObject;
  using XNMessageBase::getObject_const;
  using XNMessageBase::getObjectAccessor;
  using XNMessageBase::setObject;
  using XNMessageBase::setObjectAccessor;
  using XNMessageBase::setField;
  using XNMessageBase::unsetField;
  using XNMessageBase::reset;
  using XNMessageBase::deleteMember;
  // clang-format on
};
static_assert(sizeof(OpenMessage) == sizeof(XNMessageBase));

/// The same message with its protected operations open: generated classes, too, add nothing to a message.
inline OpenMessage& open(XNMessageBase& message) {
  return static_cast<OpenMessage&>(message);
}
inline const OpenMessage& open(const XNMessageBase& message) {
  return static_cast<const OpenMessage&>(message);
}

/// Slot and class index.
struct ClassIndices {
  short subsystem = 0;
  int index = 0;

  std::uint32_t tag() const {
    std::uint32_t tagId = 0;
    catalogue::tagFromIndices(subsystem, index, tagId);
    return tagId;
  }
  const _ClassDef& record() const { return *catalogue::classAt(subsystem, index); }
};

/// The class "Subsystem_Class"; throws when the catalogue has none of that name.
inline ClassIndices classNamed(std::string_view tagName) {
  const std::size_t split = tagName.find('_');
  ClassIndices found;
  if (!catalogue::subsystemFromName(std::string(tagName.substr(0, split)).c_str(), found.subsystem) ||
      !catalogue::classIndexFromName(std::string(tagName.substr(split + 1)).c_str(), found.subsystem,
                                     found.index))
    throw std::invalid_argument("no class " + std::string(tagName));
  return found;
}

/// A new message of the class "Subsystem_Class".
inline OpenMessage newMessage(std::string_view tagName) {
  const ClassIndices indices = classNamed(tagName);
  return OpenMessage(indices.subsystem, indices.index);
}

/// The field's record; throws when the class has no field of that name. Also finds fields without a hash.
inline const FieldDef& fieldOf(const _ClassDef& record, std::string_view name) {
  for (const FieldDef& field : record)
    if (field.getName() == name) return field;
  throw std::invalid_argument("no field " + std::string(name));
}
inline const FieldDef& fieldOf(const XNMessageBase& message, std::string_view name) {
  return fieldOf(*XNMessageBase::GetClassDef(&message), name);
}

/// Whether the field's bit is set; no accessor in between.
inline bool hasBit(const XNMessageBase& message, std::string_view name) {
  return MessageAccess::isSet(message, fieldOf(message, name).getMemNum());
}
inline void setBit(XNMessageBase& message, std::string_view name, bool on = true) {
  if (on)
    MessageAccess::mark(message, fieldOf(message, name).getMemNum());
  else
    MessageAccess::unmark(message, fieldOf(message, name).getMemNum());
}
/// The first slot of the field as it stands.
inline std::int64_t slotOf(const XNMessageBase& message, std::string_view name) {
  return MessageAccess::slot(message, fieldOf(message, name));
}

// Short ways to set and read by field name.
inline void setInteger(XNMessageBase& message, std::string_view name, std::int64_t value) {
  MessageAccess::setInteger(message, fieldOf(message, name), value);
}
inline void setText(XNMessageBase& message, std::string_view name, const std::string& value) {
  const FieldDef& field = fieldOf(message, name);
  open(message).setstring(field.getMemNum(), field.getIndex(), value, message.getTagID(), 0);
}
inline std::string textOf(const XNMessageBase& message, std::string_view name) {
  const FieldDef& field = fieldOf(message, name);
  return open(message).getstring_const(field.getMemNum(), field.getIndex(), message.getTagID(), 0);
}
/// The vector or map of a field, made and marked.
template <class Collection>
Collection& collectionOf(XNMessageBase& message, std::string_view name) {
  return MessageAccess::make<Collection>(message, fieldOf(message, name), true);
}
/// The vector, map or message that the field owns, or null.
template <class Content>
const Content* ownedBy(const XNMessageBase& message, std::string_view name) {
  return MessageAccess::owned<Content>(message, fieldOf(message, name));
}

}  // namespace zqxml
