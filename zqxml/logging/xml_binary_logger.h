// XmlBinaryLogger: puts whole messages into the log without paying for their XML on the caller's thread.
#pragma once

#include <zqxml/logging/xml_logger_helper.h>
#include <zqxml/platform/ev_debug.h>
#include <zqxml/platform/export.h>
#include <zqxml/platform/format.h>

#include <array>
#include <cstdint>

namespace zqxml {

class BinaryBuffer;
class XNMessageBase;

/// Lines of the process's log that show a message, masked, where their format says "%bxml_zq":
///
///     XmlBinaryLogger logger;
///     logger.Debug("Server::receive", "from %s: %bxml_zq", &message, peer);
///
/// Debug writes lines of level 0. The message is a BinaryBuffer with the binary form of one, or a message
/// object; null leaves its place empty. It may be used again, or end, as soon as a call returns. Text
/// arguments too. XmlLoggerHelper tells what becomes of a line; nothing throws and nothing is reported. A
/// logger has no state of its own: any number of threads may share one, and may make their own.
class ZQXML_EXPORT XmlBinaryLogger {
 public:
  /// Ready at once.
  XmlBinaryLogger() noexcept { initialize(); }
  /// Finds the logging threads' pool, unless it is known. Always 0.
  int initialize() noexcept;

  /// @{
  /// Writes a line, of level 0 unless one is given; nothing is done for a level above that of the log.
  template <typename... Args>
  void Debug(const char* function, const char* format, BinaryBuffer* message,
             const Args&... arguments) noexcept {
    write(function, 0, 0, format, message, arguments...);
  }
  template <typename... Args>
  void Debug(const char* function, const char* format, XNMessageBase* message,
             const Args&... arguments) noexcept {
    write(function, 0, 0, format, message, arguments...);
  }
  template <typename... Args>
  void DebugLvl(const char* function, int level, const char* format, BinaryBuffer* message,
                const Args&... arguments) noexcept {
    write(function, level, 0, format, message, arguments...);
  }
  template <typename... Args>
  void DebugLvl(const char* function, int level, const char* format, XNMessageBase* message,
                const Args&... arguments) noexcept {
    write(function, level, 0, format, message, arguments...);
  }
  /// @}
  /// @{
  /// `contextValue` goes into the line as it stands.
  template <typename... Args>
  void DebugLvl(const char* function, int level, int contextValue, const char* format, BinaryBuffer* message,
                const Args&... arguments) noexcept {
    write(function, level, contextValue, format, message, arguments...);
  }
  template <typename... Args>
  void DebugLvl(const char* function, int level, int contextValue, const char* format, XNMessageBase* message,
                const Args&... arguments) noexcept {
    write(function, level, contextValue, format, message, arguments...);
  }
  /// @}

 private:
  template <typename... Args>
  void write(const char* function, int level, std::int64_t contextValue, const char* format,
             BinaryBuffer* message, const Args&... arguments) noexcept {
    // Before the arguments are looked at: a level that is switched off costs this line alone.
    if (helper_ == nullptr || level > EvDebug::getDebugLevel()) return;
    const std::array<FormatArg, sizeof...(Args)> list{FormatArg(arguments)...};
    helper_->writeToLog(function, level, contextValue, format, message, list);
  }
  template <typename... Args>
  void write(const char* function, int level, std::int64_t contextValue, const char* format,
             XNMessageBase* message, const Args&... arguments) noexcept {
    if (helper_ == nullptr) return;
    const std::array<FormatArg, sizeof...(Args)> list{FormatArg(arguments)...};
    helper_->writeToLog(function, level, contextValue, format, message, list);
  }

  XmlLoggerHelper* helper_ = nullptr;
};

}  // namespace zqxml
