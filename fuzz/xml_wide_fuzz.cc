// Wide texts of any units, read into an object.

#include <zqxml/catalogue/generated/XmlRead.h>

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "fuzz/xml_fuzz_common.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  zqxml::fuzz::logToNowhere();
  std::u16string text(size / 2, u'\0');
  std::memcpy(text.data(), data, text.size() * 2);
  zqxml::XmlRead::Node node;
  const zqxml::eXNMsgRet result = zqxml::XMLSerializer().unserialize(node, text.c_str(), false, false);
  if (result == zqxml::XN_MSG_OK) zqxml::fuzz::useMessage(node);
  std::string tag;
  unsigned tagId = 0;
  (void)zqxml::XMLSerializer::GetTagAndTagIDFromXML(text, tag, tagId);
  return 0;
}
