#pragma once

#include <zqxml/platform/ev_debug.h>
#include <zqxml/platform/export.h>
#include <zqxml/platform/format.h>

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace zqxml {

/// The message log: what all code of the library writes its failures and traces to.
///
/// There is one, made on first use and never destroyed, so that code which runs at the very end of the
/// process can still log. Its lines go to the log of the process. When the configuration has the number
/// "XMLMessage_DEBUGLEVEL" in section "EventManager" for the focus of the thread that uses the log first,
/// whatever the number, they also go to a log file of the name "XMLMessage", each with a prefix.
///
/// Nothing throws. Any thread may write at any time.
class ZQXML_EXPORT XmlLogContext {
 public:
  /// The one of this process.
  static XmlLogContext& instance() noexcept;

  XmlLogContext(const XmlLogContext&) = delete;
  XmlLogContext& operator=(const XmlLogContext&) = delete;

  /// A failure: level 0.
  template <typename... Args>
  void error(const char* function, const char* format, const Args&... arguments) noexcept {
    debug(function, 0, format, arguments...);
  }
  /// A trace of the given level.
  template <typename... Args>
  void debug(const char* function, int lineLevel, const char* format, const Args&... arguments) noexcept {
    if (lineLevel > EvDebug::getDebugLevel()) return;
    const std::array<FormatArg, sizeof...(Args)> list{FormatArg(arguments)...};
    write(function, lineLevel, format, list);
  }
  /// A notice: the log's own level, which is 1.
  template <typename... Args>
  void log(const char* function, const char* format, const Args&... arguments) noexcept {
    debug(function, level, format, arguments...);
  }

 private:
  friend struct XmlLogContextTestAccess;
  XmlLogContext() noexcept;
  ~XmlLogContext() = default;

  void openDedicatedLog();
  void write(const char* function, int lineLevel, const char* format,
             std::span<const FormatArg> arguments) noexcept;

  std::string name;
  std::int32_t level = 1;
  std::unique_ptr<EvDebug> dedicatedLog;
  EvDebug* mainLog = &mainLogMember;
  EvDebug mainLogMember;
  EvDebugFileInstance fileInstance;
  std::string prefix;
};

/// Writes a failure (level 0) to the message log. `function` names the operation as "Class::function".
template <typename... Args>
void logError(const char* function, const char* format, const Args&... arguments) noexcept {
  XmlLogContext::instance().error(function, format, arguments...);
}

/// Writes a trace to the message log. Below the level nothing is formatted, and the log is not even made.
template <typename... Args>
void logDebug(const char* function, int level, const char* format, const Args&... arguments) noexcept {
  if (level > EvDebug::getDebugLevel()) return;
  XmlLogContext::instance().debug(function, level, format, arguments...);
}

/// Whether lines of this level are written: for work that only a line needs.
inline bool debugEnabled(int level) noexcept {
  return level <= EvDebug::getDebugLevel();
}

}  // namespace zqxml
