#pragma once

#include <zqxml/message/xn_message_base.h>

#include <string>

namespace zqxml {

/// Every set field of the message with its value, one line each, sub-objects indented: equal texts mean equal
/// values, in maps too, where messages compare equal whatever they hold. Tests compare these texts because a
/// difference then shows itself.
std::string dump(const XNMessageBase& message);

}  // namespace zqxml
