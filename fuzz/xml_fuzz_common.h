// What the fuzz targets of reading XML share.
#pragma once

#include <zqxml/message/xn_message_base.h>
#include <zqxml/platform/ev_debug.h>
#include <zqxml/xml/xml_encoder.h>
#include <zqxml/xml/xml_serializer.h>

#include <cstdlib>
#include <string>

namespace zqxml::fuzz {

/// Ends the run where a promise is broken.
inline void require(bool holds) {
  if (!holds) std::abort();
}

/// Formats every line that the library logs, and drops it.
inline void logToNowhere() {
  static const bool done = [] {
    EvDebug::setSink([](const LogLine&) {});
    EvDebug::setDebugLevel(25);
    return true;
  }();
  (void)done;
}

/// Whatever was read can be copied, written in each form, and read again from there.
inline void useMessage(XNMessageBase& message) {
  XNMessageBase copy(message);
  (void)(copy == message);
  for (const bool useElements : {false, true}) {
    EncodingFlags flags;
    flags.useElements = useElements;
    flags.readable = useElements;
    std::string text;
    std::u16string wide;
    require(XMLEncoder(flags, nullptr).serialize(message, text) == XN_MSG_OK);
    require(XMLEncoder(flags, nullptr).serializeUTF16(message, wide, true) == XN_MSG_OK);
    require(XMLSerializer().unserialize(copy, text, false) == XN_MSG_OK);
    require(XMLSerializer().unserialize(copy, wide.c_str(), false, false) == XN_MSG_OK);
  }
}

}  // namespace zqxml::fuzz
