#include "model.h"

#include <algorithm>

namespace zqxml::zqcatc {

const Class* Subsystem::find(std::string_view className) const {
  const auto found = byName.find(className);
  return found == byName.end() ? nullptr : found->second;
}

Subsystem* Catalogue::find(std::string_view name) const {
  const auto found =
      std::find_if(subsystems.begin(), subsystems.end(), [&](const auto& s) { return s->name == name; });
  return found == subsystems.end() ? nullptr : found->get();
}

const Subsystem* Catalogue::annotations() const {
  const auto found =
      std::find_if(subsystems.begin(), subsystems.end(), [](const auto& s) { return s->annotations; });
  return found == subsystems.end() ? nullptr : found->get();
}

}  // namespace zqxml::zqcatc
