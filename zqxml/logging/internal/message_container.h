// messageContainer: one request on its way through the pool of XmlLoggerHelper. Not installed.
#pragma once

#include <zqxml/binary/binary_buffer.h>
#include <zqxml/message/xn_message_base.h>

#include <cstdint>
#include <memory>

namespace zqxml {

/// The container and all that it points to are blocks of the C heap, and its own: deAllocate releases them.
struct messageContainer {
  bool flag;               ///< always false
  std::uint32_t threadId;  ///< the system's id of the caller's thread
  char* functionName;      ///< may be null
  std::int64_t contextValue;
  std::int32_t level;
  BinaryBuffer* buffer;   ///< does not own its bytes, which are a block of their own; may be null
  XNMessageBase* object;  ///< set by nobody; deleted if there is one
  char* format;           ///< the text of the line: the caller's arguments are in their places already
  char* arguments;        ///< always null: arguments live no longer than the call that gives them
  bool showsMessage;      ///< whether the caller's format had a place for the message
};

}  // namespace zqxml
