#include "diff_pairs.h"

#include <algorithm>
#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_set>

namespace zqxml::zqcatc {

namespace {

/// Pairs two lists in rounds, each with a key of its own and, for what still has no partner, a condition.
template <class Thing>
class Pairing {
 public:
  Pairing(const std::vector<Thing>& before, const std::vector<Thing>& after)
      : before_(before), after_(after) {}

  /// `key` gives what has to be equal; of several with one key the first are taken.
  template <class Key, class Accept>
  void round(Key key, Accept accept) {
    using Value = decltype(key(before_.front()));
    std::map<Value, const Thing*> left;
    for (const Thing& thing : before_)
      if (!taken_.contains(&thing)) left.try_emplace(key(thing), &thing);
    for (const Thing& thing : after_) {
      if (partners_.contains(&thing)) continue;
      const auto found = left.find(key(thing));
      if (found == left.end() || !accept(*found->second, thing)) continue;
      partners_.emplace(&thing, found->second);
      taken_.insert(found->second);
      left.erase(found);
    }
  }

  const Thing* partner(const Thing& after) const {
    const auto found = partners_.find(&after);
    return found == partners_.end() ? nullptr : found->second;
  }

  std::vector<Pair<Thing>> pairs() const {
    std::vector<Pair<Thing>> pairs;
    for (const Thing& thing : after_) pairs.push_back({partner(thing), &thing});
    for (const Thing& thing : before_)
      if (!taken_.contains(&thing)) pairs.push_back({&thing, nullptr});
    return pairs;
  }

 private:
  const std::vector<Thing>& before_;
  const std::vector<Thing>& after_;
  std::unordered_map<const Thing*, const Thing*> partners_;
  std::unordered_set<const Thing*> taken_;
};

constexpr auto kAlways = [](const auto&, const auto&) { return true; };
constexpr auto kName = [](const auto& thing) { return std::string_view(thing.name); };

bool isRenamed(const ClassShot& before, const ClassShot& after) {
  if (before.isEnumeration != after.isEnumeration) return false;
  if (before.fields.empty() && after.fields.empty()) return true;
  std::unordered_set<std::string_view> names;
  for (const FieldShot& field : before.fields) names.insert(field.name);
  return std::any_of(after.fields.begin(), after.fields.end(),
                     [&](const FieldShot& field) { return names.contains(field.name); });
}

/// For each field the name of the one before it, "" for the first.
std::unordered_map<const FieldShot*, std::string_view> predecessors(const ClassShot& before,
                                                                    const ClassShot& after) {
  std::unordered_map<const FieldShot*, std::string_view> names;
  for (const ClassShot* record : {&before, &after}) {
    std::string_view last;
    for (const FieldShot& field : record->fields) {
      names.emplace(&field, last);
      last = field.name;
    }
  }
  return names;
}

}  // namespace

std::vector<Pair<SubsystemShot>> pairSubsystems(const Snapshot& before, const Snapshot& after) {
  Pairing<SubsystemShot> pairing(before.subsystems, after.subsystems);
  pairing.round(kName, kAlways);
  pairing.round([](const SubsystemShot& shot) { return shot.slot; }, kAlways);
  return pairing.pairs();
}

std::vector<Pair<ClassShot>> pairClasses(const SubsystemShot& before, const SubsystemShot& after) {
  Pairing<ClassShot> pairing(before.classes, after.classes);
  pairing.round(kName, kAlways);
  pairing.round(
      [](const ClassShot& shot) { return shot.id; },
      [](const ClassShot& old, const ClassShot& now) { return old.id != 0 && isRenamed(old, now); });
  pairing.round([](const ClassShot& shot) { return shot.index; }, isRenamed);
  return pairing.pairs();
}

std::vector<Pair<FieldShot>> pairFields(const ClassShot& before, const ClassShot& after) {
  Pairing<FieldShot> pairing(before.fields, after.fields);
  pairing.round(kName, kAlways);
  if (after.isEnumeration) {
    pairing.round([](const FieldShot& field) { return field.hash; }, kAlways);
    return pairing.pairs();
  }
  pairing.round([](const FieldShot& field) { return field.hash; },
                [](const FieldShot& old, const FieldShot&) { return old.hash != 0; });
  pairing.round([](const FieldShot& field) { return std::tuple(field.type, field.memNum); }, kAlways);
  const auto names = predecessors(before, after);
  pairing.round([&](const FieldShot& field) { return std::tuple(field.type, names.at(&field)); }, kAlways);
  return pairing.pairs();
}

}  // namespace zqxml::zqcatc
