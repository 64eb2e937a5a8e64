// What of one version of a catalogue is what of the other.
#pragma once

#include <unordered_map>
#include <utility>
#include <vector>

#include "snapshot.h"

namespace zqxml::zqcatc {

/// The old thing and the new one; null where there is none.
template <class Thing>
struct Pair {
  const Thing* before = nullptr;
  const Thing* after = nullptr;
};

/// By name; what is left then by slot, as renamed.
std::vector<Pair<SubsystemShot>> pairSubsystems(const Snapshot& before, const Snapshot& after);
/// By name; what is left then by id or index, as renamed, when it is of one kind and shares a field.
std::vector<Pair<ClassShot>> pairClasses(const SubsystemShot& before, const SubsystemShot& after);
/// By name; what is left then by hash, and then as renamed when it has one type, or value, and stands at the
/// same place: at one member number, or behind the same field.
std::vector<Pair<FieldShot>> pairFields(const ClassShot& before, const ClassShot& after);

}  // namespace zqxml::zqcatc
