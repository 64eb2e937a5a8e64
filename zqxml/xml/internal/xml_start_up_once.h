// XmlStartUp: the guarded, once-only start-up behind the three `initialize` operations. Not installed.
#pragma once

#include <zqxml/catalogue/result.h>
#include <zqxml/platform/critical_section.h>

#include <atomic>

namespace zqxml {

/// One per process serves the library; tests make their own. Any thread may call any operation.
class XmlStartUp {
 public:
  /// Starts the XML library; throws xercesc::XMLException when that fails.
  using LibraryStart = void (*)();

  /// `started` is raised when startCodec succeeds; it outlives this object.
  XmlStartUp(std::atomic<bool>& started, LibraryStart start) : started_(started), startLibrary_(start) {}

  static XmlStartUp& process();
  /// Takes the place of the process's own while it is not null: tests make the start fail with it.
  static std::atomic<XmlStartUp*> replacement;

  /// XMLSerializer::initialize. Costs one atomic read once it has succeeded.
  eXNMsgRet startCodec();
  /// The library alone, without a look at the setting. `function` names the line of a failure.
  bool startLibrary(const char* function);
  /// Whether the setting "EventManager"/"nDisableXMLValidation" was other than 0 when the codec started.
  bool validationDisabled() const { return validationDisabled_.load(std::memory_order_relaxed); }

 private:
  void readSettingOnce();

  ZqCriticalSection lock_;
  std::atomic<bool>& started_;
  const LibraryStart startLibrary_;
  bool libraryRuns_ = false;
  bool settingRead_ = false;
  std::atomic<bool> validationDisabled_ = false;
};

}  // namespace zqxml
