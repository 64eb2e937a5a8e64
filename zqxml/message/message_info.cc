// What a message and a tag id tell about themselves, and the catalogue look-ups under their public names.
#include <zqxml/catalogue/lookup.h>
#include <zqxml/catalogue/xpath_data.h>
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/message/xn_message_base.h>

namespace zqxml {
namespace {

std::string joinedName(int subsystem, const char* className) {
  const char* name = gSubsystemTable[subsystem].name;
  return std::string(name == nullptr ? "" : name) + "_" + (className == nullptr ? "" : className);
}

}  // namespace

const void* FieldDef::getFieldAddrResolved(const XNMessageBase* message) const {
  if (message == nullptr || MessageAccess::classDef(*message) == nullptr) return nullptr;
  // In a message of another class the field's slots may lie outside the store.
  if (index_ < 0 || index_ + fieldTypeFacts(type_).slots > MessageAccess::slotCount(*message)) return nullptr;
  return visitStorage(
      type_,
      Overloaded{[](Nothing) -> const void* { return nullptr; },
                 [&]<class E>(Scalar<E>) -> const void* { return &MessageAccess::slotRef(*message, *this); },
                 [&]<class E>(InPlace<E>) -> const void* { return &MessageAccess::slotRef(*message, *this); },
                 [&]<class Storage>(Storage) -> const void* {
                   return MessageAccess::owned<typename Storage::Value>(*message, *this);
                 }});
}

std::string XNMessageBase::getTagName() const {
  return joinedName(msgSysIndex_, classDef_ == nullptr ? "NoMessage" : classDef_->getName());
}

const char* XNMessageBase::getSubsystemName() const {
  const char* name = gSubsystemTable[msgSysIndex_].name;
  return name == nullptr ? "" : name;
}

int XNMessageBase::getNumberOfFields() const {
  return classDef_ == nullptr ? 0 : classDef_->getNumberOfFields();
}

std::string XNMessageBase::getTagNameFromTagID(std::uint32_t tagId) {
  short subsystem = 0;
  int classIndex = 0;
  if (!catalogue::indicesFromTag(tagId, subsystem, classIndex)) return "";
  return joinedName(subsystem, catalogue::classAt(subsystem, classIndex)->getName());
}

bool XNMessageBase::getNumberOfFields(std::uint32_t tagId, int& count) {
  const _ClassDef* record = catalogue::classDef(tagId);
  if (record == nullptr) return false;
  count = record->getNumberOfFields();
  return true;
}

bool XNMessageBase::getIndicesFromTagID(short& msgSysIndex, int& msgIndex, std::uint32_t tagId) {
  return catalogue::indicesFromTag(tagId, msgSysIndex, msgIndex);
}
bool XNMessageBase::getTagIDFromIndices(short msgSysIndex, short msgIndex, std::uint32_t& tagId) {
  return catalogue::tagFromIndices(msgSysIndex, msgIndex, tagId);
}
const _ClassDef* XNMessageBase::GetClassDef(short msgSysIndex, int msgIndex) {
  return catalogue::classDef(msgSysIndex, msgIndex);
}
const _ClassDef* XNMessageBase::GetClassDef(std::uint32_t tagId) {
  return catalogue::classDef(tagId);
}
const _ClassDef* XNMessageBase::GetClassDef(const XNMessageBase* message) {
  return message == nullptr ? nullptr : message->classDef_;
}
const _ClassDef* XNMessageBase::GetClassDefFromClassID(const FieldDef& field) {
  return catalogue::classOfField(field);
}
const _ClassDef* XNMessageBase::GetClassDefFromClassID(const void* classRef) {
  return catalogue::classOfRef(classRef);
}
bool XNMessageBase::getMessageSystemIndexFromName(const char* name, short& msgSysIndex) {
  return catalogue::subsystemFromName(name, msgSysIndex);
}
bool XNMessageBase::getMessageIndexFromName(const char* name, short& msgSysIndex, int& msgIndex) {
  return catalogue::classIndexFromName(name, msgSysIndex, msgIndex);
}
int XNMessageBase::getFieldNumberFromName(const _ClassDef* classDef, const std::string& name) {
  return catalogue::fieldPosition(classDef, name);
}
const char* XNMessageBase::getEnumString(short msgSysIndex, const char* enumName, int value) {
  return catalogue::enumString(msgSysIndex, enumName, value);
}
const XPathData* XNMessageBase::getXPathData(short subsystem) {
  return catalogue::xpathData(subsystem);
}
bool XNMessageBase::isOldWay(std::uint32_t tagId) {
  return catalogue::isOldWay(tagId);
}
bool XNMessageBase::getMessageSchemaString(std::uint32_t tagId, std::string& text, bool allFields,
                                           bool details) {
  short subsystem = 0;
  int classIndex = 0;
  return catalogue::indicesFromTag(tagId, subsystem, classIndex) &&
         getMessageSchemaString(text, subsystem, classIndex, allFields, details);
}
bool XNMessageBase::getMessageSchemaString(std::string& text, short msgSysIndex, int msgIndex, bool allFields,
                                           bool details) {
  return catalogue::schemaText(text, msgSysIndex, msgIndex, allFields, details);
}

}  // namespace zqxml
