#include "diff_change.h"
#include "diff_fields.h"
#include "values.h"

namespace zqxml::zqcatc {

namespace {

std::int32_t valueOf(const FieldShot& enumerator) {
  return static_cast<std::int32_t>(enumerator.hash);
}

void compareOne(const FieldShot& before, const FieldShot& after, const std::string& what,
                std::vector<Finding>& changes) {
  const Position& place = placeOf(before.position, after.position);
  if (before.name != after.name) {
    Change change("enumerator-renamed", place, cat(what, " is now called '", after.name, "'"));
    if (lower(before.name) != lower(after.name))
      change.xml("where enumerators are written as names, a reader of the other version does not know it");
    else
      change.note("readers do not tell capitals from small letters");
    changes.push_back(change.callers("its C++ name is another").finding());
  }
  if (before.hash != after.hash) {
    changes.push_back(
        Change("enumerator-value", place, cat(what, " is now ", valueOf(after), ", was ", valueOf(before)))
            .xml("the number stands for something else")
            .binary("the number stands for something else")
            .callers("the number is compiled in")
            .finding());
  }
  compareAnnotations(before.annotation, after.annotation, after.type, place, what, changes);
}

}  // namespace

void compareEnumerators(const Pair<ClassShot>& record, std::vector<Finding>& changes) {
  for (const Pair<FieldShot>& pair : pairFields(*record.before, *record.after)) {
    const FieldShot& any = pair.before != nullptr ? *pair.before : *pair.after;
    const std::string what = cat("enumerator '", any.name, "' of ", record.after->fullName);
    if (pair.before == nullptr) {
      changes.push_back(
          Change("enumerator-added", any.position, cat(what, " is new"))
              .note("numbers travel whether a reader knows them or not; a name that it does not "
                    "know leaves the field unset")
              .finding());
    } else if (pair.after == nullptr) {
      changes.push_back(
          Change("enumerator-removed", placeOf(any.position, record.after->position), cat(what, " is gone"))
              .callers("its C++ name is gone")
              .note("its number still travels")
              .finding());
    } else {
      compareOne(*pair.before, *pair.after, what, changes);
    }
  }
}

}  // namespace zqxml::zqcatc
