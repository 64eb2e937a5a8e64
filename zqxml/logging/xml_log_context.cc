#include <zqxml/logging/xml_log_context.h>
#include <zqxml/platform/platform_info.h>

#include <cstdint>
#include <new>

namespace zqxml {

XmlLogContext& XmlLogContext::instance() noexcept {
  // In a place of its own, so that neither a full memory at the first line nor the end of the process can
  // take it away.
  alignas(XmlLogContext) static unsigned char place[sizeof(XmlLogContext)];
  static XmlLogContext* const log = new (place) XmlLogContext;
  return *log;
}

XmlLogContext::XmlLogContext() noexcept {
  try {
    openDedicatedLog();
  } catch (...) {
    // Out of memory: the log of the process remains.
    dedicatedLog.reset();
  }
}

void XmlLogContext::openDedicatedLog() {
  const std::string focus = ZQPI_Focus::getFocus();
  if (focus.empty()) return;
  std::int64_t number = 0;
  // The number itself is of no interest: that it is there turns the log of its own on.
  if (!ZQPlatformInfo(focus).getNumber("EventManager", "XMLMessage_DEBUGLEVEL", number)) return;
  dedicatedLog = std::make_unique<EvDebug>(&fileInstance);
  dedicatedLog->initialize(EvDebug::getLogId("XMLMessage"), 0, false, "");
  dedicatedLog->setLogFileSize(5);
  prefix = formatText(" [ %s ] ", name);
}

void XmlLogContext::write(const char* function, int lineLevel, const char* format,
                          std::span<const FormatArg> arguments) noexcept {
  mainLog->handleMsgEventDebug_NEW(nullptr, function, lineLevel, -1, 0, format, arguments);
  if (dedicatedLog) {
    dedicatedLog->handleMsgEventDebug_NEW(prefix.c_str(), function, lineLevel, -1, 0, format, arguments);
  }
}

}  // namespace zqxml
