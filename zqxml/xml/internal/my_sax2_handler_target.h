// What a handler builds its message with, for the library's own parses. Not installed.
#pragma once

#include <zqxml/xml/internal/message_reader.h>

namespace zqxml {

class MySAX2Handler;

/// Takes the same events as the handler, which owns it.
MessageReader& messageReaderOf(MySAX2Handler& handler);

}  // namespace zqxml
