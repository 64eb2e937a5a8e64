#pragma once

#include <zqxml/message/xn_message_base.h>
#include <zqxml/xml/xml_serializer.h>

#include <memory>
#include <string>
#include <string_view>

namespace zqxml {

/// A message of a generated class, read from the content and the attributes of a root element.
///
///   const ReadAs<XmlRead::Node> node("<tags val='x'/>", "id='7'");
///   ASSERT_TRUE(node.ok());
template <class Message>
class ReadAs : public Message {
 public:
  explicit ReadAs(std::string_view content, std::string_view attributes = {}) {
    const std::string name = this->getTagName();
    std::string text = "<" + name;
    text.append(" ").append(attributes).append(">").append(content).append("</" + name + ">");
    result_ = XMLSerializer().unserialize(*this, text, false);
  }
  eXNMsgRet result() const { return result_; }
  bool ok() const { return result_ == XN_MSG_OK; }

 private:
  eXNMsgRet result_ = XN_MSG_FAILED;
};

/// A new object made from a text; null on failure.
inline std::unique_ptr<XNMessageBase> readNew(const std::string& text) {
  return std::unique_ptr<XNMessageBase>(XMLSerializer().unserialize(text, false));
}

}  // namespace zqxml
