// What the tests of the binary reader share: messages of Demo.EveryType made by hand, and the reader's log
// lines.
#pragma once

#include <tests/binary/binary_forms.h>
#include <zqxml/catalogue/generated/Demo.h>

#include <cstdint>
#include <string>

namespace zqxml {

inline constexpr const char* kReader = "BinarySerializer::unserializeBinaryRecur";
inline constexpr const char* kEntry = "BinarySerializer::unserialize";
inline constexpr const char* kFailedEveryType = "Error unserializing from buffer on object [Demo_EveryType]";

/// A message of Demo.EveryType with this body.
inline std::string everyType(const std::string& body, std::uint32_t version = 2) {
  return withHeader(Demo::EveryType::kTagId, body, version);
}

}  // namespace zqxml
