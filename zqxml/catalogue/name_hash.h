// The one 24-bit name hash of the system: field hashes and most class ids.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zqxml {

/// The 24-bit name hash: h = h * 31 + signed byte over all bytes, low 24 bits; 0 for an empty text.
constexpr std::uint32_t nameHash(std::string_view text) {
  std::uint32_t hash = 0;
  for (char byte : text)
    hash = hash * 31 + static_cast<std::uint32_t>(static_cast<std::int32_t>(static_cast<signed char>(byte)));
  return hash & 0xffffff;
}

static_assert(nameHash("errorCode") == 0x9cb015);
static_assert(nameHash("processinginstructioninfo") == 0xcac2c9);

}  // namespace zqxml
