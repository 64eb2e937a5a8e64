// Name of the root element of a message. Not installed.
#pragma once

#include <string>

namespace zqxml {

class XNMessageBase;

/// Subsystem and class name joined by "_". QUIRK: twelve classes of DistributedIDA carry the prefix
/// "SystemMonitoring", the name that their readers look for.
std::string rootElementName(const XNMessageBase& msg);

}  // namespace zqxml
