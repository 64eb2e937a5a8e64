#include <zqxml/xml/zq_xml_context_info.h>

namespace zqxml {

void ZqXMLContextInfo::setError(int code, const std::string& details) {
  errorSet_ = true;
  errorCodes_.push_back(code);
  errorDetails_.push_back(details);
}

std::string ZqXMLContextInfo::getErrorDetails() const {
  std::string all;
  for (const std::string& details : errorDetails_) all += details + '\n';
  return all;
}

void ZqXMLContextInfo::addParam(const std::string& name, void* value) {
  params_.emplace(name, value);
}

void* ZqXMLContextInfo::getParam(const std::string& name) const {
  const auto found = name.empty() ? params_.end() : params_.find(name);
  return found == params_.end() ? nullptr : found->second;
}

}  // namespace zqxml
