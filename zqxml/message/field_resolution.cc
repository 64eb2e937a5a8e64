#include <zqxml/catalogue/lookup.h>
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/message/internal/field_resolution.h>

namespace zqxml {
namespace {

/// All types of members: the trailing record of a class itself is none, though it has a hash.
constexpr FieldTypeSet kMemberTypes = [] {
  FieldTypeSet types;
  for (unsigned type = FDT_NONE + 1; type < kFieldTypeCount; ++type)
    types = types | FieldTypeSet{static_cast<FieldDataType>(type)};
  return types;
}();

/// The object's class as printable text, for the guard's line.
std::string schemaOf(const XNMessageBase& message) {
  std::string text;
  catalogue::schemaText(text, static_cast<short>(message.getSubsysID()), message.getMessageIndex(), true,
                        true);
  return text;
}

void logNoSuchField(const XNMessageBase& message, const char* function, std::uint32_t msgTag,
                    std::uint32_t fieldHash) {
  logError(function, "Message [%s] with TagID : [%u] does not contain field : [%u]. Message Received : [%u]",
           message.getTagName(), message.getTagID(), fieldHash, msgTag);
}

/// The field whose first slot is `index`, as one with the bit `memNum`; null when no field that fits starts
/// there. Valid until the thread's next call.
const FieldDef* fieldAtIndex(const _ClassDef& classDef, FieldTypeSet fits, short memNum, short index) {
  for (const FieldDef& field : classDef) {
    if (field.getIndex() != index || !fits.contains(field.getType())) continue;
    thread_local FieldDef found;
    found = FieldDef(field.namePointer(), field.getAnnotationFlags(), field.getFieldHashId(),
                     field.getLoczId(), memNum, index, field.getType());
    return &found;
  }
  return nullptr;
}

}  // namespace

void logInvalidMember(const XNMessageBase& message, const char* function, short memNum) {
  logError(
      function,
      "Invalid member access. CHECK IF ZqXMLMsgsBase BINARY IS UPDATED PROPERLY.  Given field id [%d]. Schema of given message is :\n%s",
      memNum, schemaOf(message));
}

void logInvalidIndex(const XNMessageBase& message, const char* function, short index) {
  logError(
      function,
      "Invalid member access. CHECK IF ZqXMLMsgsBase BINARY IS UPDATED PROPERLY.  Given index on buffer is [%d]. Schema of given message is \n%s",
      index, schemaOf(message));
}

const FieldDef* findFieldByHash(const XNMessageBase& message, const char* function, FieldTypeSet fits,
                                std::uint32_t msgTag, std::uint32_t fieldHash) {
  if (const _ClassDef* classDef = MessageAccess::classDef(message)) {
    const int position = catalogue::fieldPositionByHash(*classDef, fieldHash);
    if (position >= 0 && fits.contains(classDef->getFields()[position].getType()))
      return &classDef->getFields()[position];
  }
  logNoSuchField(message, function, msgTag, fieldHash);
  return nullptr;
}

const FieldDef* searchField(const XNMessageBase& message, const char* function, FieldTypeSet fits,
                            FieldAddress address) {
  const _ClassDef* classDef = MessageAccess::classDef(message);
  if (!isMember(classDef, address.memNum)) {
    logInvalidMember(message, function, address.memNum);
    return nullptr;
  }
  if (message.getTagID() != address.msgTag)
    return findFieldByHash(message, function, fits, address.msgTag, address.fieldHash);

  if (address.index < 0 || address.index >= classDef->getNumberOfElements()) {
    logInvalidMember(message, function, address.memNum);
    return nullptr;
  }
  const FieldDef* other = fieldAtIndex(*classDef, fits, address.memNum, address.index);
  if (other == nullptr) logNoSuchField(message, function, address.msgTag, address.fieldHash);
  return other;
}

int searchPosition(const XNMessageBase& message, const char* function, short memNum, std::uint32_t msgTag,
                   std::uint32_t fieldHash) {
  const _ClassDef* classDef = MessageAccess::classDef(message);
  if (!isMember(classDef, memNum)) {
    logInvalidMember(message, function, memNum);
    return -1;
  }
  const FieldDef* field = findFieldByHash(message, function, kMemberTypes, msgTag, fieldHash);
  return field == nullptr ? -1 : static_cast<int>(field - classDef->getFields());
}

}  // namespace zqxml
