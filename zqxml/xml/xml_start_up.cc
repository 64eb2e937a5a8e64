#include <pthread.h>
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/platform/internal/xerces_ptr.h>
#include <zqxml/platform/platform_info.h>
#include <zqxml/xml/internal/xml_start_up_once.h>
#include <zqxml/xml/xml_serializer.h>
#include <zqxml/xml/xml_start_up.h>

#include <cstdint>
#include <new>
#include <string>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLException.hpp>

namespace zqxml {

namespace {
constexpr char kSection[] = "EventManager";
}

std::atomic<bool> XMLSerializer::isXercesInitialized = false;

std::atomic<XmlStartUp*> XmlStartUp::replacement = nullptr;

constinit XmlStartUp XmlStartUp::ofProcess_(
    XMLSerializer::isXercesInitialized, +[] { xercesc::XMLPlatformUtils::Initialize(); });

XmlStartUp& XmlStartUp::process() {
  XmlStartUp* const other = replacement.load(std::memory_order_relaxed);
  return other == nullptr ? ofProcess_ : *other;
}

void XmlStartUp::holdStillAcrossForks() {
  if (this != &ofProcess_) return;
  // A start logs and reads the configuration. What asks last to be held is held first, so these ask before.
  EvDebugFileInstance().path();
  std::string ignored;
  ZQPlatformInfo().getText("", "", ignored);
  // Threads that come here together ask more than once, which does no harm: the lock can be taken again.
  pthread_atfork([] { ofProcess_.lock_.enter(); }, [] { ofProcess_.lock_.leave(); },
                 [] { new (&ofProcess_.lock_) ZqCriticalSection; });
}

eXNMsgRet XmlStartUp::startCodec() {
  if (started_.load(std::memory_order_acquire)) return XN_MSG_OK;
  holdStillAcrossForks();
  const ZqCriticalSectionLock guard(lock_);
  readSettingsOnce();
  if (!startLocked("XMLSerializer::initialize")) return XN_MSG_XML_LIBRARY_ERROR;
  started_.store(true, std::memory_order_release);
  return XN_MSG_OK;
}

bool XmlStartUp::startLibrary(const char* function) {
  if (libraryRuns_.load(std::memory_order_acquire)) return true;
  holdStillAcrossForks();
  const ZqCriticalSectionLock guard(lock_);
  return startLocked(function);
}

bool XmlStartUp::startLocked(const char* function) {
  if (libraryRuns_.load(std::memory_order_relaxed)) return true;
  try {
    startLibrary_();
  } catch (const xercesc::XMLException& error) {
    logError(function, "Error initializing Xerces library. Error : [%s]",
             internal::utf8Of(error.getMessage()));
    return false;
  }
  libraryRuns_.store(true, std::memory_order_release);
  return true;
}

void XmlStartUp::readSettingsOnce() {
  if (settingsRead_) return;
  settingsRead_ = true;
  const auto isOn = [](const char* key, std::uint32_t& value) {
    return ZQPlatformInfo().getNumber(kSection, key, value) && value != 0;
  };
  constexpr const char* kKey = "nDisableXMLValidation";
  std::uint32_t value = 0;
  if (isOn("XMLMessage_DISABLEFASTXML", value)) fastXml_.store(false, std::memory_order_relaxed);
  if (!isOn(kKey, value)) return;
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
