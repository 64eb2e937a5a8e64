#include "snapshot.h"

#include "cpp_names.h"

namespace zqxml::zqcatc {

namespace {

FieldShot shotOf(const Field& field) {
  FieldShot shot;
  shot.name = field.name;
  shot.position = field.position;
  shot.type = field.type;
  shot.hash = field.hash;
  shot.memNum = field.memNum;
  shot.index = field.index;
  shot.label = field.label;
  for (const Reference& reference : field.references)
    shot.references.push_back({reference.target->subsystem->slot, reference.target->index});
  shot.annotation = field.annotation;
  if (field.defaultText.has_value()) shot.defaultText = field.defaultText->value;
  if (field.type != FDT_ENUM_VALUE) shot.cppStem = accessorStem(field);
  return shot;
}

ClassShot shotOf(const Class& record) {
  ClassShot shot;
  shot.name = record.name;
  shot.position = record.position;
  shot.index = record.index;
  shot.id = record.id;
  shot.isEnumeration = record.isEnumeration;
  for (const Field& field : record.fields) {
    if (field.isSelf)
      shot.selfAnnotation = field.annotation;
    else
      shot.fields.push_back(shotOf(field));
  }
  return shot;
}

std::uint64_t keyOf(int slot, int index) {
  return static_cast<std::uint64_t>(slot) << 32 | static_cast<std::uint32_t>(index);
}

}  // namespace

Snapshot::Snapshot(const Catalogue& catalogue) {
  for (const auto& subsystem : catalogue.subsystems) {
    SubsystemShot& shot = subsystems.emplace_back();
    shot.name = subsystem->name;
    shot.position = subsystem->position;
    shot.slot = subsystem->slot;
    shot.records = subsystem->records;
    shot.old = subsystem->old;
    for (const auto& record : subsystem->classes) shot.classes.push_back(shotOf(*record));
  }
  index();
}

void Snapshot::index() {
  for (SubsystemShot& subsystem : subsystems) {
    for (ClassShot& record : subsystem.classes) {
      record.fullName = cat(subsystem.name, "_", record.name);
      record.old = subsystem.old;
      places_.emplace(keyOf(subsystem.slot, record.index), &record);
    }
  }
}

const ClassShot* Snapshot::find(const ClassPlace& place) const {
  const auto found = places_.find(keyOf(place.slot, place.index));
  return found == places_.end() ? nullptr : found->second;
}

}  // namespace zqxml::zqcatc
