// Short ways through the catalogue for tests.
#pragma once

#include <gtest/gtest.h>
#include <zqxml/catalogue/lookup.h>
#include <zqxml/catalogue/name_hash.h>
#include <zqxml/catalogue/records.h>

#include <cstddef>
#include <string>

namespace zqxml {

inline const SubsystemDef& row(int slot) {
  return gSubsystemTable[slot];
}

inline const _ClassDef& record(int slot, int index) {
  return row(slot).classDefs[index];
}

/// Calls `visit(slot, index, record)` for every record that has a name.
template <class Visit>
void forEachClass(Visit visit) {
  for (int slot = 0; slot < kSubsystemCount; ++slot)
    for (int index = 0; index < row(slot).recordCount; ++index)
      if (record(slot, index).getName() != nullptr) visit(slot, index, record(slot, index));
}

inline std::string nameOf(int slot, const _ClassDef& classDef) {
  return std::string(row(slot).name) + "." + classDef.getName();
}

inline ClassRef reference(const FieldDef& field, int number = 0) {
  return ClassRef::read(field.namePointer() + number * static_cast<int>(ClassRef::kSize));
}

inline std::string bytes(const char* text, std::size_t size) {
  return std::string(text, size);
}

}  // namespace zqxml
