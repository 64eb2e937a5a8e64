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
  constexpr XmlStartUp(std::atomic<bool>& started, LibraryStart start)
      : started_(started), startLibrary_(start) {}

  /// The one of this process. It is there from the beginning and to the very end, and a fork waits for a
  /// start that is under way: the child could never use a library that is half started.
  static XmlStartUp& process();
  /// Takes the place of the process's own while it is not null: tests make the start fail with it.
  static std::atomic<XmlStartUp*> replacement;

  /// XMLSerializer::initialize. Costs one atomic read once it has succeeded.
  eXNMsgRet startCodec();
  /// The library alone, without a look at the setting. `function` names the line of a failure.
  bool startLibrary(const char* function);
  /// Whether the setting "EventManager"/"nDisableXMLValidation" was other than 0 when the codec started.
  bool validationDisabled() const { return validationDisabled_.load(std::memory_order_relaxed); }
  /// Whether startCodec has succeeded.
  bool isStarted() const { return started_.load(std::memory_order_acquire); }
  /// Whether XML may take the roads beside the XML library: unless the setting
  /// "EventManager"/"XMLMessage_DISABLEFASTXML" was other than 0 when the codec started.
  bool fastXml() const { return fastXml_.load(std::memory_order_relaxed); }
  /// For tests, in place of the setting; gives what held before.
  bool setFastXml(bool on) { return fastXml_.exchange(on); }

 private:
  static XmlStartUp ofProcess_;

  void holdStillAcrossForks();
  void readSettingsOnce();
  bool startLocked(const char* function);

  ZqCriticalSection lock_;
  std::atomic<bool>& started_;
  const LibraryStart startLibrary_;
  std::atomic<bool> libraryRuns_ = false;
  bool settingsRead_ = false;
  std::atomic<bool> validationDisabled_ = false;
  std::atomic<bool> fastXml_ = true;
};

}  // namespace zqxml
