// What accessors log when they cannot reach a field.
#pragma once

#include <zqxml/message/xn_message_base.h>
#include <zqxml/platform/format.h>

#include <string>

namespace zqxml {

/// Schema of the message's class as the accessors ask for it: all fields, all columns. For a message without
/// a class it is empty.
inline std::string schemaOf(const XNMessageBase& message) {
  std::string schema;
  XNMessageBase::getMessageSchemaString(message.getTagID(), schema, true, true);
  return schema;
}

inline std::string invalidMember(const XNMessageBase& message, int memNum) {
  return formatText(
      "Invalid member access. CHECK IF ZqXMLMsgsBase BINARY IS UPDATED PROPERLY.  Given field id [%d]. "
      "Schema of "
      "given message is :\n%s",
      memNum, schemaOf(message));
}

inline std::string invalidIndex(const XNMessageBase& message, int index) {
  return formatText(
      "Invalid member access. CHECK IF ZqXMLMsgsBase BINARY IS UPDATED PROPERLY.  Given index on buffer is "
      "[%d]. "
      "Schema of given message is \n%s",
      index, schemaOf(message));
}

inline std::string noSuchField(const XNMessageBase& message, std::uint32_t hash, std::uint32_t tag) {
  return formatText("Message [%s] with TagID : [%u] does not contain field : [%u]. Message Received : [%u]",
                    message.getTagName(), message.getTagID(), hash, tag);
}

}  // namespace zqxml
