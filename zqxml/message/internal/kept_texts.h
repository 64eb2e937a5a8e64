// The texts that travel with a message.
#pragma once

#include <zqxml/message/cdata.h>
#include <zqxml/message/xn_message_base.h>

#include <memory>
#include <string>

namespace zqxml {

/// What few messages have beside their fields; null until each is first set. Made as a whole with the first
/// of them: so a message without any costs one null pointer. Not installed.
struct XNMessageBase::KeptTexts {
  std::unique_ptr<std::string> serializedXml;
  std::unique_ptr<std::string> lastSerializedXml;
  std::unique_ptr<std::u16string> serializedXmlUtf16;
  std::unique_ptr<std::u16string> lastError;
  std::unique_ptr<cdata> cdataBuffer;
};

}  // namespace zqxml
