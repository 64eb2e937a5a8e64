// The changes of the fields of one class.
#pragma once

#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "diff_pairs.h"
#include "findings.h"
#include "traps.h"

namespace zqxml::zqcatc {

/// What the changes of a field depend on beyond its class.
class DiffContext {
 public:
  DiffContext(const Snapshot& before, const Snapshot& after);

  /// To be told of every pair of classes before isSameClass() is asked.
  void pair(const ClassShot& before, const ClassShot& after) { newOf_.emplace(&before, &after); }
  /// Whether an old reference and a new one lead to one class.
  bool isSameClass(const ClassPlace& before, const ClassPlace& after) const;
  /// Whether readers of either version make objects of the class for a list or a map.
  bool isElement(const Pair<ClassShot>& record) const;
  /// Whether the new field makes, or is, a sub-object that ends too early in XML.
  bool endsEarly(const FieldShot& field) const { return early_.contains(&field); }
  bool selfNamingBefore(const FieldShot& field) { return selfNamingBefore_.holds(field); }
  bool selfNamingAfter(const FieldShot& field) { return selfNamingAfter_.holds(field); }

 private:
  const Snapshot& before_;
  const Snapshot& after_;
  std::unordered_map<const ClassShot*, const ClassShot*> newOf_;
  std::unordered_map<const ClassShot*, Member> elementsBefore_;
  std::unordered_map<const ClassShot*, Member> elementsAfter_;
  std::unordered_set<const FieldShot*> early_;
  SelfNaming selfNamingBefore_;
  SelfNaming selfNamingAfter_;
};

/// Of a class that both versions have, and that is no enumeration in either.
void compareFields(const Pair<ClassShot>& record, DiffContext& context, std::vector<Finding>& changes);
/// Of an enumeration in both.
void compareEnumerators(const Pair<ClassShot>& record, std::vector<Finding>& changes);

/// The change of an annotation record of `what`; `type` is that of the field, which both versions share.
void compareAnnotations(const std::optional<std::string>& before, const std::optional<std::string>& after,
                        unsigned type, const Position& place, std::string_view what,
                        std::vector<Finding>& changes);

}  // namespace zqxml::zqcatc
