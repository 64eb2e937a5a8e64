#include "catalogue_diff.h"

#include "cpp_names.h"
#include "diff_change.h"
#include "diff_fields.h"
#include "diff_pairs.h"

namespace zqxml::zqcatc {

namespace {

class CatalogueDiff {
 public:
  CatalogueDiff(const Snapshot& before, const Snapshot& after)
      : subsystems_(pairSubsystems(before, after)), context_(before, after) {}

  std::vector<Finding> run() {
    // References are compared by the classes that they lead to, so these are all known first.
    std::vector<std::vector<Pair<ClassShot>>> classes;
    for (const Pair<SubsystemShot>& pair : subsystems_) {
      std::vector<Pair<ClassShot>>& here = classes.emplace_back();
      if (pair.before == nullptr || pair.after == nullptr) continue;
      here = pairClasses(*pair.before, *pair.after);
      for (const Pair<ClassShot>& record : here)
        if (record.before != nullptr && record.after != nullptr) context_.pair(*record.before, *record.after);
    }
    for (std::size_t i = 0; i < subsystems_.size(); ++i) {
      compare(subsystems_[i]);
      for (const Pair<ClassShot>& record : classes[i]) compare(record, subsystems_[i]);
    }
    return std::move(changes_);
  }

 private:
  void add(const Change& change) { changes_.push_back(change.finding()); }

  void compare(const Pair<SubsystemShot>& pair) {
    if (pair.before == nullptr) {
      return add(
          Change("subsystem-added", pair.after->position, cat("subsystem ", pair.after->name, " is new"))
              .note("nothing knew its messages before"));
    }
    const SubsystemShot& old = *pair.before;
    if (pair.after == nullptr) {
      return add(Change("subsystem-removed", old.position, cat("subsystem ", old.name, " is gone"))
                     .xml("its messages are not read any more")
                     .binary("its messages are not read any more")
                     .callers("its typed classes are gone"));
    }
    const SubsystemShot& now = *pair.after;
    const Position& place = placeOf(old.position, now.position);
    if (old.name != now.name) {
      add(Change("subsystem-renamed", place, cat("subsystem ", old.name, " is now called ", now.name))
              .xml("the root element of each of its messages has another name")
              .callers("the namespace of its typed classes is another"));
    }
    if (old.slot != now.slot) {
      add(Change("subsystem-slot", place,
                 cat("subsystem ", now.name, " is now at slot ", now.slot, ", was at ", old.slot))
              .binary("the slot is part of the tag id, with which each message begins")
              .callers("the slot is part of the tag id, which is compiled in"));
    }
    if (old.old != now.old) {
      add(Change("subsystem-old-way", place,
                 cat("subsystem ", now.name, " is ", now.old ? "now" : "no longer", " an old-way subsystem"))
              .xml("messages of one version carry every field, set or not")
              .binary("an object that its reader makes starts with every field set in one version only")
              .callers("objects are built whole and with all fields set in one version only"));
    }
    if (old.records != now.records) {
      add(Change("subsystem-records", place,
                 cat("subsystem ", now.name, " now has ", now.records, " records, had ", old.records))
              .note("records without a class are nowhere used"));
    }
  }

  void compare(const Pair<ClassShot>& record, const Pair<SubsystemShot>& home) {
    if (record.before == nullptr) {
      return add(Change("class-added", record.after->position, cat(kind(*record.after), " is new"))
                     .note("nothing knew it before"));
    }
    const ClassShot& old = *record.before;
    if (record.after == nullptr) return removed(old, home);
    const ClassShot& now = *record.after;
    const Position& place = placeOf(old.position, now.position);
    if (old.isEnumeration != now.isEnumeration) {
      return add(Change("class-kind", place, cat(kind(old), " is now ", kind(now)))
                     .xml("its values are read as something else")
                     .binary("its values are read as something else")
                     .callers("its C++ type is another"));
    }
    compareNumbers(old, now, place);
    compareAnnotations(old.selfAnnotation, now.selfAnnotation, FDT_NONE, place, kind(now), changes_);
    if (now.isEnumeration)
      compareEnumerators(record, changes_);
    else
      compareFields(record, context_, changes_);
  }

  void removed(const ClassShot& old, const Pair<SubsystemShot>& home) {
    Change change("class-removed", placeOf(old.position, home.after->position), cat(kind(old), " is gone"));
    if (old.isEnumeration) {
      change.note("its numbers still travel");
    } else {
      change.xml("its messages are not read any more").binary("its messages are not read any more");
    }
    add(change.callers("its C++ type is gone"));
  }

  void compareNumbers(const ClassShot& old, const ClassShot& now, const Position& place) {
    if (old.name != now.name) {
      Change change("class-renamed", place, cat(kind(old), " is now called ", now.name));
      if (!now.isEnumeration) change.xml("the root element of its messages has another name");
      add(change.callers("its C++ name is another"));
    }
    if (old.id != now.id && !now.isEnumeration) {
      add(Change("class-id", place,
                 cat("the id of ", kind(now), " is now ", hexNumber(now.id), ", was ", hexNumber(old.id)))
              .binary("the id is part of the tag id, with which each message begins")
              .callers("the tag id is compiled in"));
    }
    if (old.index != now.index) {
      add(Change("class-index", place,
                 cat("the index of ", kind(now), " is now ", now.index, ", was ", old.index))
              .callers("the index is compiled in, here and where a field refers to the class")
              .note("no form carries it"));
    }
  }

  static std::string kind(const ClassShot& record) {
    return cat(record.isEnumeration ? "enumeration " : "class ", record.fullName);
  }

  std::vector<Pair<SubsystemShot>> subsystems_;
  DiffContext context_;
  std::vector<Finding> changes_;
};

}  // namespace

std::vector<Finding> compareCatalogues(const Snapshot& before, const Snapshot& after) {
  return CatalogueDiff(before, after).run();
}

}  // namespace zqxml::zqcatc
