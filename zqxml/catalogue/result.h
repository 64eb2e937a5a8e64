// Results of message-level operations.
#pragma once

namespace zqxml {

/// Result of every message-level operation. The values 2 and 3 have no name and are never returned.
enum eXNMsgRet : int {
  XN_MSG_OK = 0,           ///< success
  XN_MSG_FAILED = 1,       ///< bad argument, object not built, encoding or decoding failed, no label text
  XN_MSG_PARSE_ERROR = 4,  ///< the XML parser reported a parse error
  XN_MSG_XML_LIBRARY_ERROR = 5,    ///< the XML library did not start, or threw anything but a parse error
  XN_MSG_NO_PASSWORD_HANDLER = 6,  ///< a password field needs an algorithm that no one registered
};

}  // namespace zqxml
