// The members of XNMessageBase that read XML. All of them use default flags and no context.
#include <zqxml/message/xn_message_base.h>
#include <zqxml/xml/xml_serializer.h>

namespace zqxml {

eXNMsgRet XNMessageBase::unserialize(std::string& xml) {
  return XMLSerializer().unserialize(*this, xml, false);
}

eXNMsgRet XNMessageBase::unserialize(const std::string& xml) {
  return XMLSerializer().unserialize(*this, xml, false);
}

eXNMsgRet XNMessageBase::unserialize(const char* xml) {
  return unserialize(std::string(xml == nullptr ? "" : xml));
}

eXNMsgRet XNMessageBase::unserialize(const char16_t* xml, bool flag) {
  return XMLSerializer().unserialize(*this, xml, flag, false);
}

int XNMessageBase::readXmlFromFile(CUlFile* file) {
  return XMLSerializer::readXmlFromFile(this, file);
}

}  // namespace zqxml
