#pragma once

#include <zqxml/platform/export.h>
#include <zqxml/platform/format.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace zqxml {

/// One line of a log. The texts live as long as the call that delivers the line.
struct LogLine {
  std::string_view function;      ///< the operation that writes it, as "Class::function"
  int level = 0;                  ///< 0 for errors; the higher, the finer
  std::string_view text;          ///< the formatted text, without a line end of its own
  std::uint32_t threadId = 0;     ///< the system's id of the writing thread
  std::int64_t contextValue = 0;  ///< as given by the writer; 0 when it has none
  std::string_view prefix;        ///< what a log of its own puts before each text; mostly empty
  std::string_view log;           ///< the name of the log; empty for the log of the process
};

/// The file behind a log of its own. It opens nothing until an EvDebug on it is initialized, and closes the
/// file when it is destroyed. It must outlive the EvDebug objects on it.
class ZQXML_EXPORT EvDebugFileInstance {
 public:
  /// @{
  /// Without a file; closes the one that it has at its end.
  EvDebugFileInstance() noexcept;
  ~EvDebugFileInstance();
  /// @}
  EvDebugFileInstance(const EvDebugFileInstance&) = delete;
  EvDebugFileInstance& operator=(const EvDebugFileInstance&) = delete;

  /// The path of the file; empty before EvDebug::initialize.
  std::string path() const;

 private:
  friend class EvDebug;
  struct Impl;
  Impl& impl();

  std::unique_ptr<Impl> impl_;  // null before EvDebug::initialize or setLogFileSize
};

/// A log: lines with a level, to standard error, a file or a function of the host program.
///
/// Without a file instance it is the log of the process: lines go to standard error, or, as those of
/// every other log, to the function that the host program has set. Each line is written if its level is not
/// above the level of the process, which is read once and without a lock; the arguments of other lines are
/// never formatted.
///
/// No operation throws. All may be called from any thread at any time, also after `fork` in the child.
class ZQXML_EXPORT EvDebug {
 public:
  /// Gets every written line, on the thread that writes it; several threads may be in it at once. What it
  /// throws is dropped, and so are lines that it logs itself. Its first lines may still arrive while setSink
  /// returns, and the last ones of its predecessor too.
  using Sink = std::function<void(const LogLine&)>;

  /// @{
  /// The log of the process, or the log of `file`, which is borrowed.
  EvDebug() = default;
  explicit EvDebug(EvDebugFileInstance* file) : file_(file) {}
  /// @}

  /// @{
  /// The level of the process: 0 at the start, so that only errors are written; below 0 nothing is.
  static int getDebugLevel() noexcept { return level_.load(std::memory_order_relaxed); }
  static void setDebugLevel(int level) noexcept { level_.store(level, std::memory_order_relaxed); }
  /// @}

  /// Hands all lines to `sink` instead of standard error and files. An empty one restores these.
  static void setSink(Sink sink) noexcept;

  /// Whether this thread is in the sink at this moment, so that lines that it writes are dropped.
  static bool isInsideSink() noexcept;

  /// The id of the log with this name, made at the first call. The same name has the same id.
  static unsigned getLogId(const char* name) noexcept;

  /// Opens the file of this log: `<directory>/<name of the log>.log`, appended to. An empty `directory` means
  /// `$ZQXML_LOG_DIR`, else the text "LogDirectory" in section "EventManager" of the configuration. False
  /// when no directory is named, the file cannot be opened, or this is the log of the process; the lines then
  /// go to standard error. The two parameters in the middle are not used.
  bool initialize(unsigned logId, std::int64_t reserved, bool reservedFlag,
                  const std::string& directory) noexcept;

  /// The size, in MiB, at which the file is rotated; three older files are kept (`.1.log` is the newest). 0
  /// is no limit, the state at the start is 5.
  void setLogFileSize(std::uint64_t mebibytes) noexcept;

  /// Writes a line, formatted as formatText does.
  template <typename... Args>
  static void DebugLvl(const char* function, int level, std::int64_t contextValue, const char* format,
                       const Args&... arguments) {
    if (level > getDebugLevel()) return;
    const std::array<FormatArg, sizeof...(Args)> list{FormatArg(arguments)...};
    EvDebug().handleMsgEventDebug_NEW(nullptr, function, level, -1, contextValue, format, list);
  }

  /// Writes a line with a prefix (null: none) to this log. `reserved` is not used; callers give -1.
  void handleMsgEventDebug_NEW(const char* prefix, const char* function, int level, int reserved,
                               std::int64_t contextValue, const char* format,
                               std::span<const FormatArg> arguments) noexcept;

 private:
  static std::atomic<int> level_;

  EvDebugFileInstance* file_ = nullptr;
};

}  // namespace zqxml
