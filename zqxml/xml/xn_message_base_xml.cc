// The members of XNMessageBase that write XML. All of them use default flags and no context.
#include <zqxml/message/internal/kept_texts.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/xml/internal/xml_start_up_once.h>
#include <zqxml/xml/xml_serializer.h>

namespace zqxml {

eXNMsgRet XNMessageBase::Initialize() {
  return XmlStartUp::process().startCodec();
}

eXNMsgRet XNMessageBase::serialize(std::string& out, bool rootOnly) {
  return XMLSerializer().serialize(*this, out, rootOnly);
}

eXNMsgRet XNMessageBase::serializeUTF8(std::string& out, bool rootOnly) {
  return serialize(out, rootOnly);
}

eXNMsgRet XNMessageBase::serializeUTF16(std::u16string& out, bool rootOnly) {
  return XMLSerializer().serializeUTF16(*this, out, rootOnly);
}

eXNMsgRet XNMessageBase::serializeUnicode(std::u16string& out) {
  return serializeUTF16(out, true);
}

std::string XNMessageBase::AsString() {
  std::string text;
  if (serialize(text, false) != XN_MSG_OK) text.clear();
  return text;
}

const char* XNMessageBase::getSerializedXMLString(bool rootOnly) {
  if (serialized_ && texts_ != nullptr && texts_->serializedXml != nullptr)
    return texts_->serializedXml->c_str();
  std::string& text = getSerializedXMLStringRef();
  return serialize(text, rootOnly) == XN_MSG_OK ? text.c_str() : "";
}

const char16_t* XNMessageBase::getSerializedXMLStringUTF16(bool rootOnly) {
  if (!serialized_) {
    std::u16string& text = *(madeTexts().serializedXmlUtf16 = std::make_unique<std::u16string>());
    if (serializeUTF16(text, rootOnly) != XN_MSG_OK) return u"";
  }
  return texts_ == nullptr || texts_->serializedXmlUtf16 == nullptr ? u""
                                                                    : texts_->serializedXmlUtf16->c_str();
}

const char16_t* XNMessageBase::getSerializedXMLStringUTF16() {
  return getSerializedXMLStringUTF16(false);
}

const char16_t* XNMessageBase::getSerializedXMLStringUnicode() {
  return getSerializedXMLStringUTF16(true);
}

int XNMessageBase::dumpXmlToFile(CUlFile* file) {
  return XMLSerializer::dumpXmlToFile(this, file);
}

}  // namespace zqxml
