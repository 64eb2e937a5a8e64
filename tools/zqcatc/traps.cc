#include "traps.h"

#include <unordered_set>

namespace zqxml::zqcatc {

namespace {

constexpr FieldTypeSet kOpensObject = FieldTypeSet::ofStorage(Overloaded{
    [](Object) { return true; }, [](List<element::Obj>) { return true; }, [](auto) { return false; }});
constexpr FieldTypeSet kListsOfValues =
    FieldTypeSet::ofStorage(Overloaded{[](List<element::Obj>) { return false; },
                                       []<class E>(List<E>) { return true; }, [](auto) { return false; }});
constexpr FieldTypeSet kMapsOfObjects = FieldTypeSet::ofStorage(
    Overloaded{[]<class K>(Map<K, element::Obj>) { return true; }, [](auto) { return false; }});
constexpr FieldTypeSet kHoldsObjects = kOpensObject | kMapsOfObjects;
constexpr FieldTypeSet kMakesElements =
    FieldTypeSet::ofStorage(Overloaded{[](List<element::Obj>) { return true; }, [](auto) { return false; }}) |
    kMapsOfObjects;

std::unordered_map<const ClassShot*, Member> targetsOf(const Snapshot& catalogue, FieldTypeSet types) {
  std::unordered_map<const ClassShot*, Member> targets;
  for (const SubsystemShot& subsystem : catalogue.subsystems) {
    for (const ClassShot& owner : subsystem.classes) {
      for (const FieldShot& field : owner.fields) {
        if (!types.contains(field.type)) continue;
        for (const ClassPlace& place : field.references)
          if (const ClassShot* target = catalogue.find(place))
            targets.try_emplace(target, Member{&owner, &field});
      }
    }
  }
  return targets;
}

using FieldsByHash = std::unordered_map<std::uint32_t, const FieldShot*>;

/// The fields of one sort that have a hash.
FieldsByHash fieldsOf(const ClassShot& owner, bool (*isWanted)(unsigned)) {
  FieldsByHash fields;
  for (const FieldShot& field : owner.fields)
    if (isWanted(field.type) && field.hash != 0) fields.try_emplace(field.hash, &field);
  return fields;
}

}  // namespace

bool isListOrMapOfValues(unsigned type) {
  return kListsOfValues.contains(type) || kMapTypes.contains(type);
}

bool opensObject(unsigned type) {
  return kOpensObject.contains(type);
}

std::unordered_map<const ClassShot*, Member> heldClasses(const Snapshot& catalogue) {
  return targetsOf(catalogue, kHoldsObjects);
}

std::unordered_map<const ClassShot*, Member> elementClasses(const Snapshot& catalogue) {
  return targetsOf(catalogue, kMakesElements);
}

std::vector<EarlyEnd> earlyEnds(const Snapshot& catalogue) {
  std::unordered_map<const ClassShot*, FieldsByHash> innerFields;
  std::vector<EarlyEnd> found;
  for (const SubsystemShot& subsystem : catalogue.subsystems) {
    for (const ClassShot& around : subsystem.classes) {
      const FieldsByHash objects = fieldsOf(around, opensObject);
      std::unordered_set<const ClassShot*> seen;
      for (const auto& [hash, holder] : objects) {
        const ClassShot* held =
            holder->references.empty() ? nullptr : catalogue.find(holder->references.front());
        if (held == nullptr || !seen.insert(held).second) continue;
        const auto [entry, isNew] = innerFields.try_emplace(held);
        if (isNew) entry->second = fieldsOf(*held, isListOrMapOfValues);
        // Through the smaller of the two: classes are large, and many hold one.
        const FieldsByHash& inner = entry->second;
        const bool fewer = inner.size() < objects.size();
        for (const auto& [name, unused] : fewer ? inner : objects) {
          const auto one = inner.find(name);
          const auto other = objects.find(name);
          if (one == inner.end() || other == objects.end()) continue;
          found.push_back({{held, one->second}, {&around, other->second}});
        }
      }
    }
  }
  return found;
}

bool SelfNaming::holds(const FieldShot& field) {
  std::vector<const ClassShot*> open;
  std::unordered_set<const ClassShot*> seen;
  const auto enter = [&](const FieldShot& holder) {
    if (!kHoldsObjects.contains(holder.type)) return;
    for (const ClassPlace& place : holder.references) {
      const ClassShot* target = catalogue_.find(place);
      if (target != nullptr && seen.insert(target).second) open.push_back(target);
    }
  };
  enter(field);
  while (!open.empty()) {
    const ClassShot& record = *open.back();
    open.pop_back();
    for (const FieldShot& inner : record.fields) {
      if (--budget_ < 0) return true;
      if (inner.name == field.name && inner.hash != 0) return true;
      enter(inner);
    }
  }
  return false;
}

}  // namespace zqxml::zqcatc
