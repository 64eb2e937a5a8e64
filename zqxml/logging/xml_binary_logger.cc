#include <zqxml/logging/xml_binary_logger.h>

namespace zqxml {

int XmlBinaryLogger::initialize() noexcept {
  if (helper_ == nullptr) helper_ = XmlLoggerHelper::getXmlLoggerInstance();
  return 0;
}

}  // namespace zqxml
