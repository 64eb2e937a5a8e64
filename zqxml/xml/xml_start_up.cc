#include <zqxml/logging/xml_log_context.h>
#include <zqxml/platform/internal/xerces_ptr.h>
#include <zqxml/platform/platform_info.h>
#include <zqxml/xml/internal/xml_start_up_once.h>
#include <zqxml/xml/xml_serializer.h>
#include <zqxml/xml/xml_start_up.h>

#include <cstdint>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLException.hpp>

namespace zqxml {

std::atomic<bool> XMLSerializer::isXercesInitialized = false;

std::atomic<XmlStartUp*> XmlStartUp::replacement = nullptr;

XmlStartUp& XmlStartUp::process() {
  if (XmlStartUp* other = replacement.load(std::memory_order_relaxed)) return *other;
  // Never destroyed: calls may come until the very end of the process.
  static XmlStartUp& instance = *new XmlStartUp(
      XMLSerializer::isXercesInitialized, +[] { xercesc::XMLPlatformUtils::Initialize(); });
  return instance;
}

eXNMsgRet XmlStartUp::startCodec() {
  if (started_.load(std::memory_order_acquire)) return XN_MSG_OK;
  const ZqCriticalSectionLock guard(lock_);
  readSettingOnce();
  if (!startLibrary("XMLSerializer::initialize")) return XN_MSG_XML_LIBRARY_ERROR;
  started_.store(true, std::memory_order_release);
  return XN_MSG_OK;
}

bool XmlStartUp::startLibrary(const char* function) {
  const ZqCriticalSectionLock guard(lock_);
  if (libraryRuns_) return true;
  try {
    startLibrary_();
  } catch (const xercesc::XMLException& error) {
    logError(function, "Error initializing Xerces library. Error : [%s]",
             internal::utf8Of(error.getMessage()));
    return false;
  }
  libraryRuns_ = true;
  return true;
}

void XmlStartUp::readSettingOnce() {
  if (settingRead_) return;
  settingRead_ = true;
  constexpr const char* kSection = "EventManager";
  constexpr const char* kKey = "nDisableXMLValidation";
  std::uint32_t value = 0;
  if (!ZQPlatformInfo().getNumber(kSection, kKey, value) || value == 0) return;
  validationDisabled_.store(true, std::memory_order_relaxed);
  logDebug("XMLSerializer::initialize", 0, "Disabling XML Validation as [%s]/[%s] is set to [%u]", kSection,
           kKey, value);
}

bool initialize() {
  return XmlStartUp::process().startLibrary("initialize");
}

eXNMsgRet XMLSerializer::initialize() {
  return XmlStartUp::process().startCodec();
}

}  // namespace zqxml
