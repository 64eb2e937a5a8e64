// A message with a value in a field of every type: Demo.EveryType.
#pragma once

#include <zqxml/message/xn_message_base.h>

namespace zqxml {

/// Sets every field of a Demo.EveryType through its own accessor. The values survive every form of XML, and
/// the binary form too but for those that clearBinaryLosses clears.
void fillEveryType(XNMessageBase& message);

/// Clears the two fields that the binary form writes and cannot read back: ulonglongField,
/// listUlonglongField.
void clearBinaryLosses(XNMessageBase& message);

enum class EveryTypeLosses { kNone, kBinary };

/// Expects what fillEveryType has set, and nothing else; with kBinary without the fields of
/// clearBinaryLosses.
void checkEveryType(const XNMessageBase& message, EveryTypeLosses losses = EveryTypeLosses::kNone);

}  // namespace zqxml
