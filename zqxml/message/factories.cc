// Making messages from tag ids, class references and indices.
#include <zqxml/catalogue/generated/ZqEntities.h>
#include <zqxml/catalogue/lookup.h>
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/message/internal/message_access.h>
#include <zqxml/message/xn_message_base.h>

namespace zqxml {
namespace {

/// Ends a half-made object: `error` says why.
eXNMsgRet abandon(XNMessageBase*& out, std::string& error, std::string why) {
  delete out;
  out = nullptr;
  error = std::move(why);
  return XN_MSG_FAILED;
}

}  // namespace

XNMessageBase* XNMessageBase::createObject(std::uint32_t tagId, bool) {
  short subsystem = 0;
  int classIndex = 0;
  if (catalogue::indicesFromTag(tagId, subsystem, classIndex))
    return new XNMessageBase(subsystem, classIndex);
  logError("XNMessageBase::createObject", "TagId : [%lu] could not be resolved to a message.", tagId);
  return nullptr;
}

XNMessageBase* XNMessageBase::createObjectFromClassID(const void* classRef, bool) {
  if (classRef == nullptr) return nullptr;
  const ClassRef ref = ClassRef::read(static_cast<const char*>(classRef));
  if (ref.subsystem < kSubsystemCount) return new XNMessageBase(ref.subsystem, ref.classIndex);
  logError("XNMessageBase::createObjectFromClassID",
           "Error instantiating XNMessageBase with msgSysIndex : [%d], msgIndex : [%d]", ref.subsystem,
           ref.classIndex);
  return nullptr;
}

XNMessageBase* XNMessageBase::createObjectFromIndices(short& msgSysIndex, int& msgIndex) {
  return new XNMessageBase(msgSysIndex, msgIndex);
}

XNMessageBase* XNMessageBase::createFromClassIDIfNotProcessingInstructionInfo(const void* classRef) {
  if (classRef == nullptr) return nullptr;
  const ClassRef ref = ClassRef::read(static_cast<const char*>(classRef));
  std::uint32_t tagId = 0;
  if (!catalogue::tagFromIndices(static_cast<short>(ref.subsystem), ref.classIndex, tagId)) {
    logError("XNMessageBase::createFromClassIDIfNotProcessingInstructionInfo",
             "Error retrieving tagID with msgSysIndex : [%d], msgIndex : [%d]", ref.subsystem,
             ref.classIndex);
    return nullptr;
  }
  if (tagId == ZqEntities::ProcessingInstructionInfo::kTagId) return nullptr;
  return createObjectFromClassID(classRef, false);
}

eXNMsgRet XNMessageBase::ConstructObject(std::uint32_t tagId, const char* xml, XNMessageBase*& out,
                                         bool parse, std::string& error) {
  out = createObject(tagId);
  if (out == nullptr) {
    error = "Unable to construct object with tagID : [" + std::to_string(tagId) + "]";
    return XN_MSG_FAILED;
  }
  if (parse && xml == nullptr) return abandon(out, error, "Received NULL string for unserialization");
  if (parse && out->unserialize(xml) != XN_MSG_OK)
    return abandon(out, error, std::string("Unserialization failed for given xml : [") + xml + "]");
  if (!parse && xml != nullptr) out->setSerializedXMLString(xml, false);
  return XN_MSG_OK;
}

eXNMsgRet XNMessageBase::constructObject(std::uint32_t msgSysIndex, std::uint32_t classId, const char* xml,
                                         XNMessageBase*& out, bool parse, std::string& error) {
  return ConstructObject((msgSysIndex << 24) | classId, xml, out, parse, error);
}

}  // namespace zqxml
