// A catalogue as two versions of it are compared and looked over: numbers and names alone, whether they come
// from schema files or from a dump of `zqmsg dump-catalogue`.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "diagnostics.h"
#include "model.h"

namespace zqxml::zqcatc {

/// Where a class stands: slot of its subsystem, and index in it.
struct ClassPlace {
  int slot = 0;
  int index = 0;
};

/// A field, or an enumerator, whose value is then its hash.
struct FieldShot {
  std::string name;
  Position position;
  unsigned type = 0;  ///< the type byte, which may be unknown in a dump
  std::uint32_t hash = 0;
  int memNum = 0;
  int index = 0;
  std::int32_t label = 0;
  std::vector<ClassPlace> references;
  std::optional<std::string> annotation;  ///< the packed record
  std::optional<std::string> defaultText;
  std::string cppStem;  ///< what stands behind get and set in C++; "" in a dump, which does not tell
};

struct ClassShot {
  std::string name;
  Position position;
  int index = 0;
  std::uint32_t id = 0;
  bool isEnumeration = false;
  std::vector<FieldShot> fields;
  std::optional<std::string> selfAnnotation;  ///< record of the class itself
  /// "Subsystem_Class", as root elements and messages of this program name it.
  std::string fullName;
  bool old = false;  ///< an old-way subsystem's
};

struct SubsystemShot {
  std::string name;
  Position position;
  int slot = 0;
  int records = 0;
  bool old = false;
  std::vector<ClassShot> classes;
};

/// Positions refer to the files that it was made from.
class Snapshot {
 public:
  std::vector<SubsystemShot> subsystems;

  Snapshot() = default;
  /// Of a catalogue without errors.
  explicit Snapshot(const Catalogue& catalogue);
  Snapshot(Snapshot&&) = default;
  Snapshot& operator=(Snapshot&&) = default;

  /// Makes find() know the classes; to be called when `subsystems` is filled, and changes no more.
  void index();
  /// Null when there is no such class.
  const ClassShot* find(const ClassPlace& place) const;

 private:
  std::unordered_map<std::uint64_t, const ClassShot*> places_;
};

}  // namespace zqxml::zqcatc
