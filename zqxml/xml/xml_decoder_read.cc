// XMLDecoder: parsing, and objects by the name of a root tag.
#include <zqxml/catalogue/lookup.h>
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/xml/xml_decoder.h>
#include <zqxml/xml/xml_serializer.h>

#include <new>

namespace zqxml {
namespace {

constexpr char kCreate[] = "XMLDecoder::CreateObjByName";

/// Slot and class index of the class that a root tag names; false, and a line, when there is none.
bool findClass(const std::string& tag, short& subsystem, int& classIndex) {
  const std::size_t separator = tag.find('_');
  const std::string subsystemName = tag.substr(0, separator);
  const std::string className = separator == tag.npos ? std::string() : tag.substr(separator + 1);
  logError(kCreate, "Request to Create Object.Class Name:[%s]", className);
  if (!catalogue::subsystemFromName(subsystemName.c_str(), subsystem)) {
    logError(kCreate, "Subsystem : [%s] does not exist.", subsystemName);
    return false;
  }
  if (!catalogue::classIndexFromName(className.c_str(), subsystem, classIndex)) {
    logError(kCreate, "Subsystem : [%s] does not contain message : [%s].", subsystemName, className);
    return false;
  }
  return true;
}

/// Null, and a line, when there is no memory for the object.
XNMessageBase* makeObject(short subsystem, int classIndex) {
  try {
    return MessageAccess::create(subsystem, classIndex);
  } catch (const std::bad_alloc&) {
    logError(kCreate, "Error instantiating object with subsystem id : [%d]", subsystem);
    return nullptr;
  }
}

}  // namespace

XMLDecoder* XMLDecoder::getXMLDecoderObject() {
  static XMLDecoder decoder;
  return &decoder;
}

int XMLDecoder::unSerialize(XNMessageBase& msg, std::string& xml, ZqXMLContextInfo* context) {
  context_ = context;
  return XMLSerializer(context).unserialize(msg, xml, false);
}

int XMLDecoder::unSerialize(XNMessageBase& msg, const char16_t* xml, ZqXMLContextInfo* context) {
  context_ = context;
  return XMLSerializer(context).unserialize(msg, xml, false, false);
}

XNMessageBase* XMLDecoder::unSerialize(std::string& xml, ZqXMLContextInfo* context) {
  context_ = context;
  return XMLSerializer(context).unserialize(xml, false);
}

void XMLDecoder::CreateObjByName(const std::string& tag, XNMessageBase** out, const char* xml, bool parse) {
  logDebug(kCreate, 25, "Request to Create Object.Tag:[%s]", tag);
  if (tag.empty()) return logError(kCreate, "Failed to Create Object.XML Tag is empty");
  short subsystem = 0;
  int classIndex = 0;
  if (!findClass(tag, subsystem, classIndex)) return;
  if (out == nullptr) return logError(kCreate, "Received Null Message Pointer.");
  *out = makeObject(subsystem, classIndex);
  if (*out == nullptr || xml == nullptr) return;
  if (parse)
    XMLSerializer().unserialize(**out, std::string(xml), false);
  else
    (*out)->setSerializedXMLString(xml, false);
}

}  // namespace zqxml
