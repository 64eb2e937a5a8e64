// From the name of a root element to the class that it stands for. Not installed.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace zqxml {

struct RootClass {
  short subsystem;
  int classIndex;
};

/// The class of which the catalogue has the record, nothing when there is none. `hash` is that of the name.
/// Throws std::bad_alloc.
std::optional<RootClass> rootClassOf(std::string_view name, std::uint32_t hash);

}  // namespace zqxml
