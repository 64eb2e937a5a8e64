#include "diff_fields.h"

#include <algorithm>

#include "cpp_names.h"
#include "diff_change.h"
#include "field_forms.h"
#include "values.h"

namespace zqxml::zqcatc {

namespace {

constexpr std::string_view kLostWhy =
    "every reader goes astray behind a value of its type, of both versions; write 'longlong' or 'list_longlong'";
constexpr std::string_view kSkipWhy =
    "its objects hold a field of the same name, and a reader that does not know it passes over the first end "
    "tag of that name only";

std::string nameOf(const FieldShot& field, const ClassShot& owner) {
  return cat("field '", field.name, "' of ", owner.fullName);
}

std::string quoted(const std::optional<std::string>& text) {
  return text.has_value() ? cat("'", *text, "'") : "none";
}

/// Compares the fields of one class.
class FieldDiff {
 public:
  FieldDiff(const Pair<ClassShot>& record, DiffContext& context, std::vector<Finding>& changes)
      : record_(record), context_(context), changes_(changes) {}

  void run() {
    const std::vector<Pair<FieldShot>> pairs = pairFields(*record_.before, *record_.after);
    for (const Pair<FieldShot>& pair : pairs) {
      if (pair.before == nullptr) {
        added(*pair.after);
      } else if (pair.after == nullptr) {
        removed(*pair.before);
      } else {
        compare(*pair.before, *pair.after);
      }
    }
    moved(pairs);
  }

 private:
  void add(const Change& change) { changes_.push_back(change.finding()); }

  void added(const FieldShot& field) {
    Change change("field-added", field.position, cat(nameOf(field, *record_.after), " is new"));
    passedOver(field, change, context_.selfNamingAfter(field));
    if (context_.endsEarly(field))
      change.xml(
          "a list or map in a sub-object now has the name of an object field around it, whose end tag "
          "closes the sub-object too early");
    if (change.isSafe()) change.note("a reader that does not know it passes over it");
    add(change);
  }

  void removed(const FieldShot& field) {
    Change change("field-removed", placeOf(field.position, record_.after->position),
                  cat(nameOf(field, *record_.before), " is gone"));
    passedOver(field, change, context_.selfNamingBefore(field));
    change.callers("its accessors are gone, and compiled ones reach what has its numbers now")
        .note("readers without it pass over it otherwise");
    if (record_.after->position.line != 0 && field.position.line != 0)
      change.note(cat("it was at ", field.position.file, ":", field.position.line));
    add(change);
  }

  /// What becomes of a value at a reader that does not know the field.
  static void passedOver(const FieldShot& field, Change& change, bool selfNaming) {
    if (selfNaming && field.hash != 0) change.xml(kSkipWhy);
    if (isLostInBinary(field.type)) change.binary(kLostWhy);
    const bool password = field.type == FDT_PSTRING && !field.annotation.has_value();
    if (password) {
      change.binary(
          "a password without annotation is written as its key alone, and no reader can pass over "
          "it; give it a Password annotation");
    }
  }

  void compare(const FieldShot& before, const FieldShot& after) {
    const Position& place = placeOf(before.position, after.position);
    const std::string what = nameOf(after, *record_.after);
    if (before.name != after.name)
      renamed(before, after, place);
    else if ((before.hash == 0) != (after.hash == 0))
      hashChanged(after, place, what);
    if (before.type != after.type) {
      typeChanged(before, after, place, what);
    } else {
      compareReferences(before, after, place, what);
      compareAnnotations(before.annotation, after.annotation, after.type, place, what, changes_);
    }
    if (before.defaultText != after.defaultText) defaultChanged(before, after, place, what);
    if (before.label != after.label) {
      add(Change("field-label", place,
                 cat("the label of ", what, " is now ", after.label, ", was ", before.label))
              .note("no form carries labels"));
    }
    if (before.name == after.name && before.cppStem != after.cppStem && !before.cppStem.empty() &&
        !after.cppStem.empty()) {
      add(Change("field-cpp-name", place,
                 cat("the accessors of ", what, " are now called get", after.cppStem, " and so on, were get",
                     before.cppStem))
              .callers("sources that use the old names do not compile"));
    }
  }

  void renamed(const FieldShot& before, const FieldShot& after, const Position& place) {
    Change change("field-renamed", place,
                  cat(nameOf(before, *record_.before), " is now called '", after.name, "'"));
    if (before.hash != after.hash) {
      const std::string hashes = cat("now ", hexNumber(after.hash), ", was ", hexNumber(before.hash));
      change.xml(cat("readers find it by the hash of its name, ", hashes))
          .binary("its key on the wire is made of that hash");
    } else {
      change.note("its hash, by which readers find it, is the same");
    }
    add(change.callers("its accessors have another name, and a search by the old hash fails"));
  }

  void hashChanged(const FieldShot& after, const Position& place, std::string_view what) {
    Change change("field-hash", place,
                  cat(what, after.hash == 0 ? " has no hash any more" : " has a hash now"));
    if (after.hash == 0) {
      change.xml("it is not written any more")
          .binary("its key says nothing any more, and no reader finds it")
          .callers("a search by the old hash fails");
    } else {
      change.note("it never travelled before, and readers of the old version pass over it");
    }
    add(change);
  }

  void typeChanged(const FieldShot& before, const FieldShot& after, const Position& place,
                   std::string_view what) {
    Change change(
        "field-type", place,
        cat(what, " is now of type '", typeText(after.type), "', was '", typeText(before.type), "'"));
    if (xmlForm(before.type) != xmlForm(after.type))
      change.xml("the text of the one is not read as a value of the other");
    if (binaryForm(before.type) != binaryForm(after.type)) {
      change.binary(
          "the reader's type alone says how many bytes a value takes, so a reader of the other "
          "version takes this value, or all that follows it, for something else");
    }
    if (storageForm(before.type) != storageForm(after.type))
      change.callers("its value lies in its slots in another way, and its C++ type is another");
    if (change.isSafe()) change.note("both types have one form and one C++ type");
    add(change);
  }

  void compareReferences(const FieldShot& before, const FieldShot& after, const Position& place,
                         std::string_view what) {
    const bool same = std::equal(
        before.references.begin(), before.references.end(), after.references.begin(), after.references.end(),
        [this](const ClassPlace& old, const ClassPlace& now) { return context_.isSameClass(old, now); });
    if (same) return;
    Change change("field-class", place, cat(what, " refers to another class"));
    if (after.type == FDT_ENUM) {
      change.xml("where enumerators are written as names, the names are others")
          .callers("its C++ type is another");
    } else if (kEnumTypes.contains(after.type)) {
      change.note("a list of enumerators travels as numbers, and is one of numbers in C++");
    } else {
      change.xml("its elements are read by the fields of the other class")
          .binary("its body is read by the fields of the other class")
          .callers("its C++ type is another");
    }
    add(change);
  }

  void defaultChanged(const FieldShot& before, const FieldShot& after, const Position& place,
                      std::string_view what) {
    Change change("field-default", place,
                  cat("the default of ", what, " is now ", quoted(after.defaultText), ", was ",
                      quoted(before.defaultText)));
    if (context_.isElement(record_)) {
      change
          .binary(
              "an object of a list or map starts with its reader's defaults set, so what the writer had "
              "not set arrives as another value")
          .note("XML sets what is written and nothing else");
    } else {
      change.note("a new object starts with it as a set value, and travels with that");
    }
    add(change);
  }

  /// One change for all: a field that comes or goes moves all behind it.
  void moved(const std::vector<Pair<FieldShot>>& pairs) {
    const Pair<FieldShot>* first = nullptr;
    std::string names;
    std::size_t count = 0;
    for (const Pair<FieldShot>& pair : pairs) {
      if (pair.before == nullptr || pair.after == nullptr) continue;
      if (pair.before->memNum == pair.after->memNum && pair.before->index == pair.after->index) continue;
      if (first == nullptr) first = &pair;
      if (++count <= kMostNamed) names += cat(names.empty() ? "'" : ", '", pair.after->name, "'");
    }
    if (first == nullptr) return;
    if (count > kMostNamed) names += cat(" and ", count - kMostNamed, " more");
    const FieldShot& old = *first->before;
    const FieldShot& now = *first->after;
    add(Change("field-moved", placeOf(old.position, now.position),
               cat(count == 1 ? "field " : "fields ", names, " of ", record_.after->fullName, " moved; '",
                   now.name, "' is now member ", now.memNum, " in slot ", now.index, ", was member ",
                   old.memNum, " in slot ", old.index))
            .callers("compiled accessors hold both numbers, and reach another field")
            .note("no form carries positions"));
  }

  static constexpr std::size_t kMostNamed = 8;

  const Pair<ClassShot>& record_;
  DiffContext& context_;
  std::vector<Finding>& changes_;
};

}  // namespace

DiffContext::DiffContext(const Snapshot& before, const Snapshot& after)
    : before_(before),
      after_(after),
      elementsBefore_(elementClasses(before)),
      elementsAfter_(elementClasses(after)),
      selfNamingBefore_(before),
      selfNamingAfter_(after) {
  for (const EarlyEnd& end : earlyEnds(after)) {
    early_.insert(end.inner.field);
    early_.insert(end.around.field);
  }
}

bool DiffContext::isSameClass(const ClassPlace& before, const ClassPlace& after) const {
  const ClassShot* old = before_.find(before);
  const ClassShot* now = after_.find(after);
  if (old == nullptr || now == nullptr)
    return old == now && before.slot == after.slot && before.index == after.index;
  const auto found = newOf_.find(old);
  return found != newOf_.end() && found->second == now;
}

bool DiffContext::isElement(const Pair<ClassShot>& record) const {
  return elementsBefore_.contains(record.before) || elementsAfter_.contains(record.after);
}

void compareFields(const Pair<ClassShot>& record, DiffContext& context, std::vector<Finding>& changes) {
  FieldDiff(record, context, changes).run();
}

}  // namespace zqxml::zqcatc
