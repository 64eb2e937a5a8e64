// XmlLoggerHelper: the pool of threads that turns whole messages into lines of the log.
#pragma once

#include <zqxml/platform/export.h>
#include <zqxml/platform/format.h>
#include <zqxml/platform/thread_pool.h>

#include <cstdint>
#include <span>
#include <string_view>

namespace zqxml {

class BinaryBuffer;
class XNMessageBase;
struct messageContainer;

/// Writes lines that show a message as masked XML, with the work done on a thread of its own pool.
///
/// There is one, made at first use and never destroyed, with at most 20 threads, each of which ends after 300
/// seconds without work. When none of them is free the caller does the work itself: nothing is ever queued,
/// and memory is bounded by the lines that 20 threads write. waitUntilIdle waits for the lines that are under
/// way; those that are not written when the process ends are lost. A child process made by `fork` has a pool
/// of its own, and no line of its parent's.
///
/// Nothing throws and nothing is reported: a line for which there is no memory, or no thread can be started,
/// is lost. What the log's sink logs while it gets a line is dropped. All operations may be called from any
/// thread at any time.
class ZQXML_EXPORT XmlLoggerHelper : public ZqThreadPool {
 public:
  /// What stands in a format for the message.
  static constexpr std::string_view kPlaceholder = "%bxml_zq";
  /// The bytes of a line's own text, without the message; what is longer is cut.
  static constexpr std::size_t kLongestText = 4095;

  /// The one of this process; null only when there is no memory for it.
  static XmlLoggerHelper* getXmlLoggerInstance() noexcept;

  /// Writes a line with the level and context value to the log of the process, if `level` is not above its
  /// level now and when the line is ready.
  ///
  /// `format` is formatted here, with the arguments, as formatText does, and ends at its first NUL and after
  /// kLongestText bytes. Its first "%bxml_zq" is then replaced by the message as XML between blanks;
  /// passwords are written as "*******" and values with the Sensitive annotation as "########". A format
  /// without it gets no XML. A null function, format or message is an empty one; what is no message leaves
  /// the place empty, and the codec logs why; what makes a password routine throw leaves it empty too. All of
  /// `message` is copied before the call returns; its content are the first getDataSize() bytes, or all of
  /// its capacity when that is 0.
  void writeToLog(const char* function, int level, std::int64_t contextValue, const char* format,
                  BinaryBuffer* message, std::span<const FormatArg> arguments = {}) noexcept;
  /// The same with a message object. QUIRK: it is brought into the binary form on the caller's thread
  /// whatever the level.
  void writeToLog(const char* function, int level, std::int64_t contextValue, const char* format,
                  XNMessageBase* message, std::span<const FormatArg> arguments = {}) noexcept;

  /// The job of a pool's thread: writes the line of a messageContainer and releases it. 0, or 1 for null.
  static unsigned writeThroughTreadPool(void* argument) noexcept;

 private:
  XmlLoggerHelper();

  static void deAllocateMessageContainer(messageContainer* container) noexcept;
};

}  // namespace zqxml
