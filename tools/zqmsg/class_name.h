#pragma once

#include <zqxml/catalogue/records.h>

#include <string>

namespace zqxml::tool {

/// A class of the catalogue and where it stands.
struct ClassPlace {
  short subsystem = 0;
  int classIndex = 0;
  const _ClassDef* record = nullptr;
};

/// The class or enumeration of this name, SUBSYSTEM_CLASS, or of this tag id, 0x... in hexadecimal. Throws
/// Failure, with the nearest name where there is one.
ClassPlace findClass(const std::string& name);
/// Slot of the subsystem with this name or number. Throws Failure likewise.
short findSubsystem(const std::string& name);

}  // namespace zqxml::tool
