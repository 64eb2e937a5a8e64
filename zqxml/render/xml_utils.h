#pragma once

#include <zqxml/catalogue/result.h>
#include <zqxml/platform/export.h>

#include <cstdint>
#include <string>

namespace zqxml {

/// Small services for what writes messages for people.
class ZQXML_EXPORT XmlUtils {
 public:
  /// The text of a message in the language of a locale, at most 1,023 bytes of UTF-8 (EvGetLocText, which
  /// says what a locale is): `text` is replaced by it and the result is XN_MSG_OK. Without a text `text`
  /// becomes empty and the result is XN_MSG_FAILED; nothing is logged. Any thread.
  static eXNMsgRet getLocalizedMessage(std::uint32_t messageId, int localeId, std::string& text);
};

}  // namespace zqxml
