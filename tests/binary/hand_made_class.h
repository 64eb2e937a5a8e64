// HandMadeClass: a record that no schema file can have, and messages of it.
#pragma once

#include <tests/support/open_message.h>
#include <zqxml/catalogue/name_hash.h>

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace zqxml {

/// The ClassRef of a class of the tests' catalogue.
inline std::string refTo(std::string_view className) {
  const ClassIndices indices = classNamed(className);
  const auto index = static_cast<unsigned>(indices.index);
  return {static_cast<char>(indices.subsystem), static_cast<char>(index >> 16), static_cast<char>(index >> 8),
          static_cast<char>(index)};
}

/// Up to eight fields of one slot each; in-place strings are not possible. Its messages have the tag id and
/// the store of Demo_Fields8, and must not outlive the class.
class HandMadeClass {
 public:
  /// `prefix` holds the ClassRefs that stand before the name in a type that has them.
  HandMadeClass& field(FieldDataType type, const std::string& name, const std::string& prefix = {},
                       const char* annotation = nullptr) {
    const auto position = static_cast<std::int16_t>(fields_.size());
    names_.push_back(prefix + name);
    fields_.emplace_back(names_.back().c_str(), annotation, nameHash(name), 0, position, position, type);
    return *this;
  }

  OpenMessage message() {
    record_ = _ClassDef("HandMade", fields_.data(), 0, -1, static_cast<std::int16_t>(fields_.size()),
                        static_cast<std::int16_t>(fields_.size()));
    OpenMessage made = newMessage("Demo_Fields8");
    MessageAccess::setClassDef(made, &record_);
    return made;
  }

 private:
  std::deque<std::string> names_;
  std::vector<FieldDef> fields_;
  _ClassDef record_;
};

}  // namespace zqxml
