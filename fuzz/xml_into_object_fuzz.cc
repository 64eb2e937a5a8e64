// Texts of any bytes, read into objects: new ones, ones that keep their values, and one without a class.

#include <zqxml/catalogue/generated/XmlRead.h>
#include <zqxml/catalogue/generated/ZQGui.h>

#include <cstddef>
#include <cstdint>

#include "fuzz/xml_fuzz_common.h"

namespace zqxml {
namespace {

template <class Message>
void readInto(const std::string& text) {
  Message message;
  const eXNMsgRet first = XMLSerializer().unserialize(message, text, false);
  if (first == XN_MSG_OK) fuzz::useMessage(message);
  // On top of itself: whatever was there, the outcome is that of the text.
  fuzz::require(XMLSerializer().unserialize(message, text, true) == first);
  fuzz::require(XMLSerializer().unserialize(message, text, false) == first);
}

}  // namespace
}  // namespace zqxml

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  zqxml::fuzz::logToNowhere();
  const std::string text(reinterpret_cast<const char*>(data), size);
  zqxml::readInto<zqxml::XmlRead::Every>(text);
  zqxml::readInto<zqxml::XmlRead::Node>(text);
  zqxml::readInto<zqxml::XmlRead::Outer>(text);
  zqxml::readInto<zqxml::ZQGui::SaveAlert>(text);
  zqxml::XNMessageBase bare;
  (void)zqxml::XMLSerializer().unserialize(bare, text, false);
  return 0;
}
