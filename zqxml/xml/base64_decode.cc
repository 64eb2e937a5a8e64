#include <zqxml/logging/xml_log_context.h>
#include <zqxml/platform/internal/xerces_ptr.h>
#include <zqxml/xml/base64_decode.h>
#include <zqxml/xml/xml_start_up.h>

#include <xercesc/util/Base64.hpp>

namespace zqxml {

bool base64DecodeXmlCh(const char16_t* text, std::string& out) {
  if (!initialize()) return false;
  if (text == nullptr || *text == 0) {
    out.clear();
    return true;
  }
  XMLSize_t length = 0;
  const internal::XercesBlock<XMLByte> bytes(xercesc::Base64::decodeToXMLByte(text, &length));
  if (bytes == nullptr) {
    logError("base64DecodeXmlCh", "Base64::decode failed");
    return false;
  }
  out.append(reinterpret_cast<const char*>(bytes.get()), length);
  return true;
}

}  // namespace zqxml
