#include <zqxml/platform/loc_text.h>
#include <zqxml/render/xml_utils.h>

#include <array>

namespace zqxml {

eXNMsgRet XmlUtils::getLocalizedMessage(std::uint32_t messageId, int localeId, std::string& text) {
  std::array<char, 1024> buffer;
  const bool found = EvGetLocText(messageId, localeId, buffer.data(), buffer.size());
  text = buffer.data();
  return found ? XN_MSG_OK : XN_MSG_FAILED;
}

}  // namespace zqxml
