/// @file
/// ZqXMLSummary: a message, or its XML text, as something that people can read.
#pragma once

#include <zqxml/catalogue/result.h>
#include <zqxml/platform/export.h>

#include <cstdint>
#include <sstream>
#include <string>

namespace zqxml {

class XNMessageBase;
class ZqXMLRenderContext;

/// Kept for callers; nothing reads it.
struct ZqXMLFormatOptions {
  std::uint32_t options = 0;  ///< not used
};

/// Summaries of messages. No state: each call has a walker and a handler of its own, so any threads may call
/// at once, each with messages and contexts of its own. Messages are not changed. A message without a class
/// gives XN_MSG_OK and an empty summary. Failures are XN_MSG_FAILED; nothing is logged but what reading XML
/// logs.
class ZQXML_EXPORT ZqXMLSummary {
 public:
  /// Writes the message as one line of text (DefaultRenderContext) to `out`, which is not emptied. Fails for
  /// a null message. QUIRK: single enumerations are missing; commas stand for what writes nothing, and for
  /// unset lists.
  static eXNMsgRet getZqSummaryInfo(XNMessageBase* msg, std::ostringstream& out, ZqXMLFormatOptions& options);
  /// Writes the message into a context, in the order and locale of its options. Fails for a null message or
  /// context.
  static eXNMsgRet getZqSummaryInfo(XNMessageBase* msg, ZqXMLRenderContext* context,
                                    ZqXMLFormatOptions& options);

  /// Reads XML and replaces `out` by the text as above. Fails, and leaves `out` alone, for an empty text and
  /// one that does not parse.
  static eXNMsgRet getSummaryInfo(std::string xml, std::string& out);
  /// Reads XML and writes the message into a context. Fails for an empty text, one that does not parse, and a
  /// null context.
  static eXNMsgRet getSummaryInfo(std::string xml, ZqXMLRenderContext* context);
};

}  // namespace zqxml
