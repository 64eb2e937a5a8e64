// Texts that lie in the message which they are read into. Not installed.
#pragma once

#include <cstddef>

namespace zqxml {

class XNMessageBase;

/// Whether a text of so many bytes may be part of the message: a string of its own fields has that length, or
/// it has a list, a map or an object, which are not searched. False for a message as it was made, unless its
/// class has old-way objects or long defaults.
bool mayHoldText(const XNMessageBase& message, std::size_t bytes);

}  // namespace zqxml
